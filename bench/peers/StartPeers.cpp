#include "../Documents.h"
#include "Peers.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <thread>

namespace bench
{

namespace
{

namespace fs = std::filesystem;

constexpr int XML_FILES = 24;
constexpr std::size_t XML_FILE_BYTES = 1'000'000;

fs::path ProgramFolder()
{
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return fs::path(path).parent_path();
}

/// A folder that is gone with the last row that uses it.
class Folder
{
public:
    explicit Folder(wchar_t const * name)
        : m_path(fs::temp_directory_path() / (name + std::to_wstring(GetCurrentProcessId())))
    {
        fs::create_directory(m_path);
    }
    ~Folder()
    {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    Folder(Folder const &) = delete;
    Folder & operator=(Folder const &) = delete;

    fs::path const & Path() const { return m_path; }

private:
    fs::path m_path;
};

template <class Function>
Function * Find(HMODULE module, char const * name)
{
    return reinterpret_cast<Function *>(reinterpret_cast<void *>(GetProcAddress(module, name)));
}

/// Loads a DLL and calls a function of it; ending it does not count.
Work Loading(fs::path const & dll, char const * begin, char const * end)
{
    return [=]
    {
        Stopwatch watch;
        HMODULE const module = LoadLibraryW(dll.c_str());
        if (!module)
            return 0.0;
        Find<bool()>(module, begin)();
        double const seconds = watch.Lap();
        if (end)
            Find<void()>(module, end)();
        FreeLibrary(module);
        return seconds;
    };
}

/// This process has the library's DLL already: a copy under another name is loaded anew.
void AddLoad(Duels & duels)
{
    auto const folder = std::make_shared<Folder>(L"veklib-peers-load-");
    fs::path const copy = folder->Path() / L"VekLibCopy.dll";
    fs::copy_file(ProgramFolder() / L"VekLib.dll", copy);
    Work const own = Loading(copy, "VekLibInit", "VekLibDeinit");
    Work const trivial = Loading(ProgramFolder() / L"veklib_trivial.dll", "TrivialInit", nullptr);
    duels.Expect(own() > 0 && trivial() > 0, "loading a DLL");
    duels.Add(
        "load the DLL, and VekLibInit", "DLL with one empty function", 0, [folder, own] { return own(); }, trivial);
}

double RunProgram(std::wstring command)
{
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES; // without handles: its output is of no interest
    PROCESS_INFORMATION process = {};
    Stopwatch watch;
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        return 0;
    WaitForSingleObject(process.hProcess, INFINITE);
    double const seconds = watch.Lap();
    DWORD status = 1;
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return status == 0 ? seconds : 0;
}

void AddJobs(Duels & duels)
{
    fs::path const vek = ProgramFolder() / L"vek.exe";
    if (!fs::exists(vek))
        return;
    auto const folder = std::make_shared<Folder>(L"veklib-peers-jobs-");
    for (int i = 0; i < XML_FILES; ++i)
        std::ofstream(folder->Path() / (std::to_wstring(i) + L".xml"), std::ios::binary)
            << ElementHeavy(XML_FILE_BYTES);
    unsigned int const jobs = std::max(2u, std::thread::hardware_concurrency());
    std::wstring const command = L'"' + vek.wstring() + L"\" xml check \"" + folder->Path().wstring() + L"\" --jobs ";
    Work const several = [folder, command, jobs] { return RunProgram(command + std::to_wstring(jobs)); };
    Work const one = [folder, command, jobs] { return RunProgram(command + L"1") / jobs; };
    duels.Expect(several() > 0 && one() > 0, "vek xml check");
    std::string const count = std::to_string(jobs);
    duels.Add("vek xml check --jobs " + count + ", 24 MB", "one job, " + count + " times as fast", 0, several, one);
}

} // namespace

void AddStart(Duels & duels)
{
    AddLoad(duels);
    AddJobs(duels);
}

} // namespace bench
