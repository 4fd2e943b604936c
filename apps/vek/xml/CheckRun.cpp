#include "xml/CheckRun.h"

#include "VekLib.h"

#include "Console.h"
#include "FileErrors.h"
#include "Platform.h"
#include "XmlFile.h"

#include <limits>

namespace tool
{

/// Reads one file on a worker. It is released once it has run.
class CheckRun::FileCommand final : public CVekThreadCommand
{
public:
    FileCommand(CheckRun & run, IVekThread & worker, std::size_t index) : m_run(run), m_worker(worker), m_index(index)
    {
    }
    void Execute() override
    {
        m_run.CheckFile(m_index);
        m_run.QueueNext(m_worker);
        --m_run.m_queued;
    }

private:
    CheckRun & m_run;
    IVekThread & m_worker;
    std::size_t m_index;
};

CheckRun::CheckRun(std::vector<std::wstring> const & files, int jobs)
    : m_files(files), m_workers(static_cast<std::size_t>(jobs)), m_results(files.size()), m_isReady(files.size())
{
}

CheckRun::~CheckRun()
{
    Stop();
}

bool CheckRun::Start()
{
    for (std::size_t i = 0; i < m_workers.size(); ++i)
    {
        std::wstring const name = L"check " + std::to_wstring(i + 1);
        m_workers[i].Reset(getVekLibKernel()->CreateThread(name.c_str(), nullptr, false, 0, 0));
        if (!m_workers[i])
            return false;
        m_workers[i]->Start();
        if (!m_workers[i]->GetHandle())
            return false;
        QueueNext(*m_workers[i]);
    }
    return true;
}

void CheckRun::Wait(unsigned long milliseconds)
{
    std::size_t const done = m_done;
    unsigned long const begin = GetTickCount();
    while (m_done == done && GetTickCount() - begin < milliseconds)
        Sleep(1);
}

void CheckRun::Stop()
{
    m_stops = true;
    // A file may take longer than a worker is given to end: its command must be over first.
    while (m_queued > 0)
        Sleep(1);
    for (CVekRef<IVekThread> const & worker : m_workers)
    {
        if (worker && worker->GetHandle())
            worker->Stop();
    }
    m_workers.clear();
}

void CheckRun::QueueNext(IVekThread & worker)
{
    if (m_stops)
        return;
    std::size_t const index = m_next++;
    if (index >= m_files.size())
        return;
    ++m_queued;
    worker.AddCommand(new FileCommand(*this, worker, index));
}

void CheckRun::CheckFile(std::size_t index)
{
    try
    {
        m_results[index] = Read(m_files[index]);
    }
    catch (std::bad_alloc const &)
    {
        m_results[index].message.clear(); // even a short text may not fit
    }
    m_isReady[index] = true;
    ++m_done;
}

CheckResult CheckRun::Read(std::wstring const & path)
{
    CheckResult result;
    CVekFileIOStream stream;
    CVekRef<IVekXMLDocument> const document(getVekLibKernel()->GetXMLManager()->CreateXMLDocument());
    if (!document || !stream.Open(path.c_str(), VEK_IO_READ | VEK_IO_BINARY, 0))
    {
        result.message = FaultLine(path, 0, 0, L"can't be read: " + ErrorText(stream.GetError().systemCode));
        return result;
    }
    unsigned int const size = stream.GetSize();
    unsigned char * const bytes = size < static_cast<unsigned int>(std::numeric_limits<int>::max())
                                      ? VekAllocMemory(size, __FILE__, __LINE__)
                                      : nullptr;
    if (!bytes)
    {
        result.message = FaultLine(path, 0, 0, L"is too large for memory");
        return result;
    }
    CountTracked(size);
    CVekXMLParser parser;
    result.bytes = size;
    if (size > 0 && !stream.Read(bytes, size, true))
        result.message = FaultLine(path, 0, 0, L"can't be read whole");
    else
    {
        parser.ParseXMLMemory(bytes, size, document.Get());
        VekXMLError const error = parser.GetError();
        result.isGood = error.code == VEK_XML_ERROR_NONE;
        if (!result.isGood)
            result.message = FaultLine(path, error.line, error.column, Describe(error));
    }
    VekDeallocMemory(bytes, __FILE__, __LINE__);
    CountTracked(-static_cast<std::int64_t>(size));
    return result;
}

void CheckRun::CountTracked(std::int64_t bytes)
{
    std::uint64_t const now = m_trackedBytes += static_cast<std::uint64_t>(bytes);
    std::uint64_t peak = m_peakBytes;
    while (bytes > 0 && now > peak && !m_peakBytes.compare_exchange_weak(peak, now))
        ;
}

double CheckRun::DonePercent() const
{
    return m_files.empty() ? 100.0 : 100.0 * static_cast<double>(m_done) / static_cast<double>(m_files.size());
}

} // namespace tool
