// Keeps an index of a folder's files, read and summed up by worker threads, and tells what has changed since the last
// time; Ctrl-C stops it and leaves the index as it was:
//     example_assetcache FOLDER INDEX.xml [WORKERS]
#include <VekLib.h>
#include <VekStd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <unordered_map>

namespace
{

namespace fs = std::filesystem;

struct Asset
{
    std::wstring name; // within the folder
    std::wstring path;
    unsigned long long size = 0;
    unsigned long long sum = 0;
    bool isRead = false;
};

std::vector<Asset> FindAssets(fs::path const & folder)
{
    std::vector<Asset> assets;
    for (fs::directory_entry const & entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file())
            assets.push_back({entry.path().lexically_relative(folder).wstring(), entry.path().wstring()});
    return assets;
}

void Read(Asset & asset)
try
{
    std::string const bytes = VekReadFile(asset.path.c_str()).value();
    asset.size = bytes.size();
    asset.sum = 14695981039346656037ULL;
    for (unsigned char const byte : bytes)
        asset.sum = (asset.sum ^ byte) * 1099511628211ULL;
    asset.isRead = true;
}
catch (...) // it can't be read, or is too large for memory; no exception may leave a worker
{
}

volatile std::sig_atomic_t g_isInterrupted = 0;

/// False when it was interrupted.
bool ReadAll(std::vector<Asset> & assets, unsigned long workers)
{
    CVekProgressController progress;
    VekSetProgressCallback(progress,
                           [](double percent, wchar_t const * task)
                           {
                               std::fprintf(stderr, "\r%ls: %3.0f %%", task, percent);
                               return g_isInterrupted == 0;
                           });
    CVekProgressBegin const task(&progress, L"reading", 100, 1, 0);
    return VekRunOnWorkers(
        assets.size(), workers, [&](std::size_t i) { Read(assets[i]); }, &progress);
}

/// The sums of an index by the name; empty when there is no whole one.
std::unordered_map<std::wstring, std::wstring> ReadIndex(wchar_t const * path)
{
    std::unordered_map<std::wstring, std::wstring> sums;
    auto const document = fs::exists(path) ? VekLoadXMLDocument(path) : nullptr;
    if (!document)
        return sums;
    for (IVekXMLElement const & asset : VekChildren(*document->GetRootElement(), L"asset"))
        if (auto const name = VekAttributeText(asset, L"name"), sum = VekAttributeText(asset, L"sum"); name && sum)
            sums[*name] = *sum;
    return sums;
}

bool WriteIndex(wchar_t const * path, std::vector<Asset> const & assets)
{
    auto const document = VekNewXMLDocument(L"index");
    for (Asset const & asset : assets)
    {
        IVekXMLElement * const element = document ? VekAddXMLChild(*document->GetRootElement(), L"asset") : nullptr;
        if (!element)
            return false;
        element->AddAttribute(L"name", VekToVariant(asset.name), -1);
        element->AddAttribute(L"size", asset.size, -1);
        element->AddAttribute(L"sum", asset.sum, -1);
    }
    return VekSaveXMLDocument(path, document.Get());
}

} // namespace

int wmain(int count, wchar_t ** arguments)
{
    CVekLibrary const library;
    if (count < 3 || count > 4 || !library || !fs::is_directory(arguments[1]))
        return 2;
    std::signal(SIGINT, [](int) { g_isInterrupted = 1; });
    std::vector<Asset> assets = FindAssets(arguments[1]);
    if (!ReadAll(assets, count == 4 ? std::clamp(std::wcstoul(arguments[3], nullptr, 10), 1UL, 32UL) : 4))
    {
        std::puts("stopped");
        return 1;
    }
    auto const known = ReadIndex(arguments[2]);
    int added = 0, changed = 0, unread = 0;
    for (Asset const & asset : assets)
    {
        auto const before = known.find(asset.name);
        unread += !asset.isRead;
        added += before == known.end();
        changed += before != known.end() && before->second != std::to_wstring(asset.sum);
    }
    std::printf("%zu files, %d new, %d changed, %d unreadable\n", assets.size(), added, changed, unread);
    return WriteIndex(arguments[2], assets) && unread == 0 ? 0 : 1;
}
