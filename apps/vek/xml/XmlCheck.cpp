#include "xml/XmlCheck.h"

#include "VekLib.h"

#include "Console.h"
#include "FileTree.h"
#include "Interrupt.h"
#include "ProgressBar.h"
#include "xml/CheckRun.h"

#include <algorithm>

namespace tool
{

namespace
{

constexpr unsigned long POLL_MILLISECONDS = 20;

/// Prints results in the order of the files, as far as they are there.
class Report
{
public:
    Report(std::vector<std::wstring> const & files, bool onlyBad) : m_files(files), m_onlyBad(onlyBad) {}

    void PrintReady(CheckRun const & run, ProgressBar & bar)
    {
        for (; m_next < m_files.size() && run.IsReady(m_next); ++m_next)
        {
            CheckResult const & result = run.Result(m_next);
            (result.isGood ? m_good : m_bad) += 1;
            m_bytes += result.bytes;
            if (result.isGood && m_onlyBad)
                continue;
            bar.Hide();
            Console::Out().Write((result.isGood ? L"good  " + Printable(m_files[m_next]) : result.message) + L"\n");
        }
    }
    bool IsComplete() const { return m_next == m_files.size(); }
    bool HasBad() const { return m_bad > 0; }

    void PrintSummary(std::uint64_t skipped) const
    {
        Console & out = Console::Out();
        out.Write(L"files     " + std::to_wstring(m_good) + L" good, " + std::to_wstring(m_bad) + L" bad\n");
        if (skipped > 0)
            out.Write(L"skipped   " + std::to_wstring(skipped) +
                      (skipped == 1 ? L" file of another name\n" : L" files of other names\n"));
    }
    void PrintStats(CheckRun const & run, double seconds, double cpuUsage) const
    {
        Console & out = Console::Out();
        out.Write(L"bytes     " + Format(L"%.3f MB\n", static_cast<double>(m_bytes) / 1e6));
        out.Write(L"elapsed   " + Format(L"%.2f s\n", seconds));
        out.Write(L"CPU usage " + Format(L"%.0f %%\n", cpuUsage));
        out.Write(L"tracked   " + Format(L"%.3f MB at most\n", static_cast<double>(run.PeakTrackedBytes()) / 1e6));
    }

private:
    std::vector<std::wstring> const & m_files;
    bool m_onlyBad;
    std::size_t m_next = 0;
    std::uint64_t m_good = 0;
    std::uint64_t m_bad = 0;
    std::uint64_t m_bytes = 0;
};

/// The process's share of the processors' time within its scope. The meter takes any clock that never goes back: steps
/// of more than a second make it measure when it is asked.
class CpuMeter
{
public:
    CpuMeter() : m_usage(getVekLibKernel()->CreateCPUUsage())
    {
        Measure();
        Measure();
    }
    double Usage()
    {
        Measure();
        return m_usage ? m_usage->GetUsage() : 0.0;
    }

private:
    void Measure()
    {
        m_now += 2.0;
        if (m_usage)
            m_usage->Update(m_now);
    }

    CVekRef<IVekCPUUsage> m_usage;
    double m_now = 0.0;
};

/// Waits for the workers and shows how far they are, until all is done or Ctrl-C was pressed.
void Watch(CheckRun & run, Report & report, IVekProgressController & progress, ProgressBar & bar)
{
    double shown = 0.0;
    while (!report.IsComplete())
    {
        report.PrintReady(run, bar);
        double const done = run.DonePercent();
        progress.Progress(done - shown);
        shown = done;
        if (progress.IsCancelled())
            return;
        run.Wait(POLL_MILLISECONDS);
    }
}

} // namespace

int RunXmlCheck(CheckRequest const & request)
{
    std::vector<std::wstring> files;
    std::uint64_t skipped = 0;
    bool isComplete = true;
    for (std::wstring const & folder : request.folders)
        isComplete = CollectXmlFiles(folder, request.names, files, skipped) && isComplete;

    Interrupt const interrupt;
    CVekRef<IVekProgressController> const progress(getVekLibKernel()->CreateProgressController());
    CVekRef<IVekTimer> const timer(getVekLibKernel()->CreateTimer());
    CVekRef<ProgressBar> const bar(new ProgressBar);
    if (!progress || !timer)
        return Fail(L"check", L"out of memory");
    progress->SetCallback(bar.Get());
    timer->Start();
    CpuMeter cpu;
    CheckRun run(files, std::min(request.jobs, static_cast<int>(std::max<std::size_t>(files.size(), 1))));
    Report report(files, request.onlyBad);
    if (!run.Start())
        return Fail(L"check", L"can't start worker threads");
    {
        CVekProgressBegin const task(progress.Get(), L"checking", 100.0, 1.0, 0);
        Watch(run, report, *progress, *bar);
    }
    bar->Hide();
    run.Stop();
    bool const isCancelled = progress->IsCancelled();
    report.PrintReady(run, *bar);
    report.PrintSummary(skipped);
    if (request.stats)
        report.PrintStats(run, timer->GetElapsedSeconds(), cpu.Usage());
    if (isCancelled)
        return Fail(L"check", L"stopped by Ctrl-C");
    return isComplete && !report.HasBad() ? EXIT_DONE : EXIT_FAILED;
}

} // namespace tool
