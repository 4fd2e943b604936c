// Keeps an index of a folder's files, read and summed up by worker threads, and tells what has changed since the last
// time; Ctrl-C stops it and leaves the index as it was:
//     example_assetcache FOLDER INDEX.xml [WORKERS]
#include <VekLib.h>
#include <VekStd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <thread>
#include <unordered_map>
#include <vector>

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
{
    auto const bytes = VekReadFile(asset.path.c_str());
    if (!bytes)
        return;
    asset.isRead = true;
    asset.size = bytes->size();
    asset.sum = 14695981039346656037ULL;
    for (char const byte : *bytes)
        asset.sum = (asset.sum ^ static_cast<unsigned char>(byte)) * 1099511628211ULL;
}

/// One for each worker; they share the list of what is to be done.
class ReadAssets final : public CVekThreadCommand
{
public:
    struct Work
    {
        std::vector<Asset> assets;
        std::atomic<std::size_t> next{0}, done{0};
        std::atomic<bool> isStopped{false};
    };

    explicit ReadAssets(std::shared_ptr<Work> work) : m_work(std::move(work)) {} // releases itself

    void Execute() override
    {
        for (std::size_t i = m_work->next++; i < m_work->assets.size() && !m_work->isStopped; i = m_work->next++)
        {
            try // an exception must not leave a command
            {
                Read(m_work->assets[i]);
            }
            catch (std::bad_alloc const &) // the asset counts as one that can't be read
            {
            }
            ++m_work->done;
        }
    }

private:
    std::shared_ptr<Work> m_work; // a worker in a long call may outlive all else
};

volatile std::sig_atomic_t g_isInterrupted = 0;

class Bar final : public CVekRefCounted<IVekProgressController::Callback>
{
public:
    bool OnProgress(double taskProgress, double, wchar_t const * taskName, int) override
    {
        std::fprintf(stderr, "\r%ls: %3.0f %%", taskName, taskProgress);
        return g_isInterrupted == 0;
    }
};

/// False when it was interrupted.
bool ReadAll(std::shared_ptr<ReadAssets::Work> const & work, unsigned long workers)
{
    CVekProgressController progress;
    CVekRef<Bar> const bar{new Bar};
    progress.SetCallback(bar.Get());
    CVekProgressBegin const task(&progress, L"reading", 100, 1, 0);

    std::vector<CVekRef<IVekThread>> threads;
    for (unsigned long i = 0; i < workers; ++i)
    {
        threads.emplace_back(getVekLibKernel()->CreateThread(L"reader", nullptr, false, 0, 0));
        threads.back()->Start();
        getVekLibKernel()->PostThreadCommand(new ReadAssets(work), threads.back().Get());
    }
    for (std::size_t shown = 0; work->done < work->assets.size() && !progress.IsCancelled();)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        std::size_t const done = work->done;
        progress.Progress(100.0 * double(done - shown) / double(work->assets.size()));
        shown = done;
    }
    work->isStopped = true;
    return !progress.IsCancelled();
}

/// The sums of an index by the name; empty when there is no whole one.
std::unordered_map<std::wstring, std::wstring> ReadIndex(wchar_t const * path)
{
    std::unordered_map<std::wstring, std::wstring> sums;
    CVekRef<IVekXMLDocument> const document{getVekLibKernel()->GetXMLManager()->CreateXMLDocument()};
    CVekXMLParser parser;
    if (!fs::exists(path) || !parser.ParseXMLFile(path, document.Get()) || !parser.IsComplete())
        return sums;
    for (IVekXMLElement const & asset : VekChildren(*document->GetRootElement(), L"asset"))
    {
        CVekString<wchar_t> name, sum;
        if (asset.GetAttributeValue(L"name", name, L"") && asset.GetAttributeValue(L"sum", sum, L""))
            sums[VekToStd(name)] = VekToStd(sum);
    }
    return sums;
}

bool WriteIndex(wchar_t const * path, std::vector<Asset> const & assets)
{
    IVekXMLManager * const manager = getVekLibKernel()->GetXMLManager();
    CVekRef<IVekXMLDocument> const document{manager->CreateXMLDocument()};
    CVekRef<IVekXMLElement> const root{manager->CreateXMLElement()};
    root->SetName(L"index");
    for (Asset const & asset : assets)
    {
        CVekRef<IVekXMLElement> const element{manager->CreateXMLElement()};
        element->SetName(L"asset");
        element->AddAttribute(L"name", VekToVariant(asset.name), -1);
        element->AddAttribute(L"size", asset.size, -1);
        element->AddAttribute(L"sum", asset.sum, -1);
        root->AddChild(element.Get(), -1);
    }
    return document->SetRootElement(root.Get()) && VekSaveXMLDocument(path, document.Get());
}

} // namespace

int wmain(int count, wchar_t ** arguments)
{
    CVekLibrary const library;
    if (count < 3 || count > 4 || !library || !fs::is_directory(arguments[1]))
        return 2;
    std::signal(SIGINT, [](int) { g_isInterrupted = 1; });
    auto const work = std::make_shared<ReadAssets::Work>();
    work->assets = FindAssets(arguments[1]);
    if (!ReadAll(work, count == 4 ? std::clamp(std::wcstoul(arguments[3], nullptr, 10), 1UL, 32UL) : 4))
    {
        std::puts("stopped");
        return 1;
    }
    auto const known = ReadIndex(arguments[2]);
    int added = 0, changed = 0, unread = 0;
    for (Asset const & asset : work->assets)
    {
        auto const before = known.find(asset.name);
        unread += !asset.isRead;
        added += before == known.end();
        changed += before != known.end() && before->second != std::to_wstring(asset.sum);
    }
    std::printf("%zu files, %d new, %d changed, %d unreadable\n", work->assets.size(), added, changed, unread);
    return WriteIndex(arguments[2], work->assets) && unread == 0 ? 0 : 1;
}
