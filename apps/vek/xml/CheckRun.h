#pragma once

#include "VekLib.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace tool
{

struct CheckResult
{
    bool isGood = false;
    std::uint64_t bytes = 0;
    std::wstring message; // of a bad file, with its name and place
};

/// Reads files with worker threads of the library. Each file is a thread command, which queues the next one on its
/// worker when it is done.
class CheckRun
{
public:
    CheckRun(std::vector<std::wstring> const & files, int jobs);
    CheckRun(CheckRun const &) = delete;
    CheckRun & operator=(CheckRun const &) = delete;
    ~CheckRun();

    bool Start();
    /// Waits until something has happened, or that long.
    void Wait(unsigned long milliseconds);
    /// Lets the workers finish the file each of them is reading, and ends them.
    void Stop();

    bool IsReady(std::size_t index) const { return m_isReady[index]; }
    /// A result that is ready.
    CheckResult const & Result(std::size_t index) const { return m_results[index]; }
    double DonePercent() const;
    /// The most bytes that were held in tracked memory at one time.
    std::uint64_t PeakTrackedBytes() const { return m_peakBytes; }

private:
    class FileCommand;

    void QueueNext(IVekThread & worker);
    void CheckFile(std::size_t index);
    CheckResult Read(std::wstring const & path);
    void CountTracked(std::int64_t bytes);

    std::vector<std::wstring> const & m_files;
    std::vector<CVekRef<IVekThread>> m_workers;
    std::vector<CheckResult> m_results;
    std::vector<std::atomic<bool>> m_isReady;
    std::atomic<std::size_t> m_next = 0;
    std::atomic<std::size_t> m_done = 0;
    std::atomic<int> m_queued = 0;
    std::atomic<bool> m_stops = false;
    std::atomic<std::uint64_t> m_trackedBytes = 0;
    std::atomic<std::uint64_t> m_peakBytes = 0;
};

} // namespace tool
