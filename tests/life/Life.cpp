// veklib_life SECONDS [--tight MB] FOLDER...: works as a tool would, over all files of the folders, for so long: load,
// edit, undo, save, pack, draw, on three worker threads that are paused, cancelled and made anew. Each file has to give
// what it gave the first time, and memory and handles have to stay where they were. With --tight all address space but
// so much is taken away every other round: a file may be refused then, but never be read wrongly.
#include "packetfile/Blob.h"
#include "packetfile/Format.h"
#include "packetfile/Manager.h"

#include "VekLib.h"
#include "VekStd.h"

#include "support/FaultReport.h"
#include "support/Handles.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

namespace
{

namespace fs = std::filesystem;
using Element = CVekRef<IVekXMLElement>;
using Answer = std::optional<unsigned long long>; // nothing when memory was short

constexpr std::size_t WORKERS = 3;
constexpr std::size_t MOST_FILES = 4000;
constexpr std::uintmax_t LARGEST_FILE = 4'000'000;
constexpr std::size_t ROUND = 60; // files
constexpr GUID LOADED = {0x11FE, 0, 0, {}};

std::atomic<int> g_wrong{0}, g_refused{0}, g_events{0};

bool Expect(bool right, fs::path const & file, char const * what)
{
    if (!right && g_wrong++ < 20)
        std::printf("life: wrong: %ls: %s\n", file.c_str(), what);
    return right;
}

class Digest
{
public:
    void Add(std::string_view bytes)
    {
        for (char const byte : bytes)
            m_value = (m_value ^ static_cast<unsigned char>(byte)) * 1099511628211ULL;
    }
    void Add(unsigned long long number) { Add({reinterpret_cast<char const *>(&number), sizeof number}); }
    unsigned long long Get() const { return m_value; }

private:
    unsigned long long m_value = 14695981039346656037ULL;
};

// --- what a tool does with one file; each part gives false when memory is short

struct Job
{
    fs::path const & file;
    std::wstring scratch; // a file to write
    std::string bytes;
    Digest digest;
    std::minstd_rand random{1};
};

std::vector<Element> ElementsOf(IVekXMLElement & root)
{
    std::vector<Element> elements;
    for (IVekXMLElement & element : VekDescendants(root))
        if (elements.size() < 500 && element.GetName()[0] != L'#')
            elements.push_back(Element::Share(&element));
    return elements;
}

bool Change(IVekXMLElement & element, IVekXMLElement & other, Job & job)
{
    unsigned int const number = job.random();
    switch (number % 5)
    {
    case 0:
        return element.SetAttributeValue(L"life", VekToText(1.0 / number), true);
    case 1:
    {
        Element const copy{VekCloneXMLElement(&other)};
        return copy && (copy->GetNumChildren() > 0 || element.AddChild(copy.Get(), -1) >= 0);
    }
    case 2:
        if (element.GetNumChildren() > 0)
            element.RemoveChild(static_cast<int>(number % static_cast<unsigned int>(element.GetNumChildren())));
        return true;
    case 3:
        VekRemoveXMLAttribute(&element, L"life");
        return true;
    default:
        return element.GetNumChildren() > 0 || VekSetCDATAText(element, L"a ]]> b\r\n\u00e9");
    }
}

bool EditAndSave(IVekXMLDocument & document, Job & job)
{
    Element const original{VekCloneXMLElement(document.GetRootElement())};
    if (!original)
        return false;
    auto const elements = ElementsOf(*document.GetRootElement());
    for (int i = 0; i < 20 && !elements.empty(); ++i)
        if (!Change(*elements[job.random() % elements.size()], *elements[job.random() % elements.size()], job))
            return false;
    CVekXMLWriter writer;
    writer.SetKeepAll(true);
    CVekXMLParser reader;
    if (!reader.SetKeepAll(VEK_XML_KEEP_ALL))
        return false;
    bool const isSaved = VekSaveXMLDocument(job.scratch.c_str(), &document, &writer, &reader);
    if (!isSaved &&
        (writer.GetError().code == VEK_XML_WRITE_ERROR_MEMORY || reader.GetError().code == VEK_XML_ERROR_MEMORY))
        return false;
    job.digest.Add(isSaved ? VekReadFile(job.scratch.c_str()).value_or("") : std::to_string(writer.GetError().code));
    return document.SetRootElement(original.Get()); // undo
}

bool LoadAndEdit(Job & job)
{
    auto const create = [] { return CVekRef{getVekLibKernel()->GetXMLManager()->CreateXMLDocument()}; };
    auto const document = create(), again = create();
    CVekXMLParser parser;
    auto const size = static_cast<unsigned int>(job.bytes.size());
    if (!document || !again || !parser.SetKeepAll(VEK_XML_KEEP_ALL) || !parser.SetPlatformEncodings(true))
        return false;
    parser.ParseXMLMemory(job.bytes.data(), size, document.Get());
    VekXMLError const error = parser.GetError();
    if (error.code == VEK_XML_ERROR_MEMORY || error.code == VEK_XML_ERROR_NOT_STARTED)
        return false;
    job.digest.Add(error.code * 1'000'000ULL + error.line);
    if (error.code != VEK_XML_ERROR_NONE)
        return true;
    if (!EditAndSave(*document, job))
        return false;
    parser.ParseXMLMemory(job.bytes.data(), size, again.Get());
    if (!parser.IsComplete())
        return false;
    return VekIsSameXML(document->GetRootElement(), again->GetRootElement());
}

bool Pack(Job & job)
{
    packetfile::Manager manager;
    CVekRef<CVekResourceFilePacket> const packet{manager.CreatePacket(packetfile::TYPE_BLOB, L"file")};
    if (!packet)
        return false;
    static_cast<packetfile::Blob &>(*packet).SetBytes({job.bytes.begin(), job.bytes.end()});
    if (!manager.GetRoot() || manager.GetRoot()->AddChild(packet.Get(), -1) < 0 || !manager.Save(job.scratch.c_str()) ||
        !manager.Open(job.scratch.c_str()))
        return false;
    auto const * const read = static_cast<packetfile::Blob const *>(manager.FindPacket(L"file"));
    return Expect(read && std::equal(read->Bytes().begin(), read->Bytes().end(), job.bytes.begin(), job.bytes.end(),
                                     [](unsigned char a, char b) { return a == static_cast<unsigned char>(b); }),
                  job.file, "what was packed is not what is read");
}

// The words of the text, their places as typed data, and a curve through their lengths.
bool LexAndDraw(Job & job)
{
    std::wstring text(job.bytes.begin(),
                      job.bytes.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(job.bytes.size(), 20'000)));
    std::replace(text.begin(), text.end(), L'\0', L' ');
    CVekLexer lexer;
    CVekTokenizer tokenizer;
    for (wchar_t const * const mark : {L"<", L">", L"/", L"=", L"<!--", L"?>"})
        if (!lexer.AddOperator(mark, 1))
            return false;
    if (!tokenizer.Tokenize(&lexer, text.c_str(), static_cast<int>(text.size())))
        return false;
    CVekTypedDataWriter writer;
    std::vector<CVekVector3D<double>> points{{0, 0, 0}, {1, 0, 0}, {2, 1, 0}, {3, 1, 0}};
    for (auto const & token : VekTokens(tokenizer))
    {
        if (points.size() < 300)
            points.emplace_back(double(points.size()), double(token.GetLength() % 100), 0);
        if (points.size() < 300 && !writer.WriteInt32(VekToText(double(token.GetPosition())), token.GetLine()))
            return false;
        job.digest.Add(static_cast<unsigned long long>(token.GetPosition()) * 16 + token.GetKind());
    }
    CVekRef<IVekMemoryIOStream> const stream{getVekLibKernel()->CreateMemoryIOStream()};
    CVekTypedDataReader reader;
    if (!stream || !stream->Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, 100'000) || !writer.Write(stream.Get()) ||
        !stream->SetPosition(100'000, true) || !reader.Read(stream.Get()))
        return false;
    Expect(reader.GetNumEntries() == static_cast<int>(points.size()) - 4 - (points.size() == 300), job.file,
           "entries are lost");
    CVekNurbsCurve<double> curve;
    if (!curve.CreateInterpolation(3, points.data(), static_cast<unsigned int>(points.size())))
        return false;
    CVekVector3D<double> const middle = curve.GetPoint(0.5);
    job.digest.Add(VekView(VekToText(middle.y)).size());
    return true;
}

// What all workers share: tracked blocks that one allocates and another releases, and a reader that is asked at once by
// all, the first of them making its index.
class Shared
{
public:
    bool Make()
    {
        CVekTypedDataWriter writer;
        for (int i = 0; i < ENTRIES; ++i)
            if (!writer.WriteInt32(VekToText(double(i)), i))
                return false;
        CVekRef<IVekMemoryIOStream> const stream{getVekLibKernel()->CreateMemoryIOStream()};
        return stream && stream->Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, 40'000) && writer.Write(stream.Get()) &&
               stream->SetPosition(40'000, true) && m_reader.Read(stream.Get());
    }
    void Use(Job & job)
    {
        int const number = static_cast<int>(job.random() % ENTRIES);
        int found = -1;
        Expect(m_reader.ReadInt32(VekToText(double(number)), found, -1) && found == number, job.file,
               "an entry is not found");
        for (auto & shared : m_blocks)
        {
            unsigned int const size = job.random() % 300;
            unsigned char * const block = VekAllocMemory(size, __FILE__, __LINE__);
            if (block)
                std::fill_n(block, size, static_cast<unsigned char>(size));
            Release(shared.exchange(block));
        }
    }
    void End()
    {
        for (auto & shared : m_blocks)
            Release(shared.exchange(nullptr));
    }

private:
    static constexpr int ENTRIES = 500;
    static void Release(unsigned char * block)
    {
        Expect(!block || VekDeallocMemory(block, __FILE__, __LINE__), "a tracked block", "is not known");
    }

    CVekTypedDataReader m_reader;
    std::atomic<unsigned char *> m_blocks[16]{};
};
Shared * g_shared;

Answer Visit(fs::path const & file, std::wstring const & scratch)
{
    try
    {
        auto bytes = VekReadFile(file.c_str());
        Job job{file, scratch, bytes ? std::move(*bytes) : std::string(), {}};
        if (!bytes || !LoadAndEdit(job) || !LexAndDraw(job) || !Pack(job))
            return {};
        g_shared->Use(job);
        getVekLibKernel()->FireEvent(LOADED, nullptr);
        return job.digest.Get();
    }
    catch (std::bad_alloc const &)
    {
        return {};
    }
}

// --- the tool: workers that share a list, and a user who cancels

struct Round
{
    std::vector<fs::path> files;
    std::vector<Answer> answers;
    std::vector<char> isVisited;
    std::atomic<std::size_t> next{0}, done{0}, commands{0};
    std::atomic<bool> isCancelled{false};
};

class VisitFiles final : public CVekThreadCommand
{
public:
    VisitFiles(std::shared_ptr<Round> round, std::wstring scratch)
        : m_round(std::move(round)), m_scratch(std::move(scratch))
    {
    }
    void Execute() override
    {
        for (std::size_t i = m_round->next++; i < m_round->files.size() && !m_round->isCancelled; i = m_round->next++)
        {
            m_round->answers[i] = Visit(m_round->files[i], m_scratch);
            m_round->isVisited[i] = 1;
            ++m_round->done;
        }
        ++m_round->commands;
    }

private:
    std::shared_ptr<Round> m_round;
    std::wstring m_scratch;
};

class Counter final : public CVekEventHandler
{
public:
    bool OnEvent(CVekEventData *) override { return ++g_events > 0; }
};

class Bar final : public CVekRefCounted<IVekProgressController::Callback>
{
public:
    explicit Bar(int last) : m_last(last) {}
    bool OnProgress(double, double, wchar_t const *, int) override { return m_calls++ < m_last; }

private:
    int m_last;
    int m_calls = 0;
};

/// Visits the files on workers; the progress bar's user may cancel it.
void Run(std::shared_ptr<Round> const & round, std::wstring const & folder, std::minstd_rand & random)
{
    CVekEventHandlerContainer * const handlers = new CVekEventHandlerContainer;
    getVekLibKernel()->AddEventHandler(LOADED, handlers->Add(new Counter));
    CVekProgressController progress;
    CVekRef<Bar> const bar{new Bar(random() % 4 == 0 ? static_cast<int>(random() % 20) : 1'000'000)};
    progress.SetCallback(bar.Get());
    CVekProgressBegin const task(&progress, L"visiting", 100, 1, 0);
    std::vector<CVekRef<IVekThread>> threads;
    for (std::size_t i = 0; i < WORKERS; ++i)
    {
        CVekRef<IVekThread> thread{getVekLibKernel()->CreateThread(L"visitor", nullptr, false, 0, 0)};
        if (!thread || (thread->Start(), !thread->GetHandle()))
            continue; // no memory for its stack
        getVekLibKernel()->PostThreadCommand(new VisitFiles(round, folder + L"/" + std::to_wstring(i)), thread.Get());
        threads.push_back(std::move(thread));
    }
    while (round->commands < threads.size())
    {
        Sleep(5);
        progress.Progress(100.0 / double(round->files.size()));
        if (progress.IsCancelled())
            round->isCancelled = true;
        if (random() % 4 == 0 && !threads.empty())
        {
            IVekThread & thread = *threads[random() % threads.size()];
            thread.Suspend();
            thread.Resume();
        }
    }
    for (auto const & thread : threads)
        Expect(thread->Stop() == WAIT_OBJECT_0, "a worker", "does not stop");
    handlers->Release();
    g_shared->End();
}

// --- what must not grow

struct Use
{
    std::size_t committed = 0;
    int handles = 0;
};

Use Measure()
{
    Use use;
    MEMORY_BASIC_INFORMATION region;
    for (char * at = nullptr; VirtualQuery(at, &region, sizeof region) && region.RegionSize > 0;
         at = static_cast<char *>(region.BaseAddress) + region.RegionSize)
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE)
            use.committed += region.RegionSize;
    use.handles = CountHandles();
    return use;
}

// Takes all address space but so much.
class Tight
{
public:
    explicit Tight(std::size_t left)
    {
        if (left == 0)
            return;
        void * const hole = VirtualAlloc(nullptr, left, MEM_RESERVE, PAGE_NOACCESS);
        m_taken.reserve(5000);
        for (std::size_t size = std::size_t{1} << 28; size >= 1 << 16; size /= 2)
            while (void * const taken = VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS))
                m_taken.push_back(taken);
        VirtualFree(hole, 0, MEM_RELEASE);
    }
    ~Tight()
    {
        for (void * const taken : m_taken)
            VirtualFree(taken, 0, MEM_RELEASE);
    }
    Tight(Tight const &) = delete;
    Tight & operator=(Tight const &) = delete;

private:
    std::vector<void *> m_taken;
};

std::vector<fs::path> FindFiles(std::vector<fs::path> const & folders)
{
    std::vector<fs::path> files;
    auto const options = fs::directory_options::skip_permission_denied;
    std::error_code error;
    for (fs::path const & folder : folders)
        for (fs::recursive_directory_iterator entry(folder, options, error), end; entry != end; entry.increment(error))
            if (std::error_code none; entry->is_regular_file(none) && entry->file_size(none) < LARGEST_FILE)
                files.push_back(entry->path());
    std::sort(files.begin(), files.end()); // the same ones in every run
    std::shuffle(files.begin(), files.end(), std::minstd_rand{7});
    files.resize(std::min(files.size(), MOST_FILES));
    return files;
}

class Life
{
public:
    Life(std::vector<fs::path> files, std::size_t tight) : m_files(std::move(files)), m_tight(tight)
    {
        m_scratch = fs::temp_directory_path() / (L"veklib_life_" + std::to_wstring(GetCurrentProcessId()));
        fs::create_directories(m_scratch);
    }
    ~Life()
    {
        std::error_code none;
        fs::remove_all(m_scratch, none);
    }

    void Go()
    {
        auto const round = std::make_shared<Round>();
        for (std::size_t i = 0; i < std::min(ROUND, m_files.size()); ++i)
            round->files.push_back(m_files[m_next++ % m_files.size()]);
        round->answers.resize(round->files.size());
        round->isVisited.resize(round->files.size());
        bool const isTight = m_tight > 0 && m_rounds++ % 2 == 1;
        {
            Tight const tight(isTight ? m_tight : 0);
            Run(round, m_scratch, m_random);
        }
        for (std::size_t i = 0; i < round->files.size(); ++i)
            if (round->isVisited[i])
                Check(round->files[i], round->answers[i], isTight);
        m_visits += round->done;
    }
    std::size_t Visits() const { return m_visits; }

private:
    void Check(fs::path const & file, Answer const & answer, bool isTight)
    {
        if (!answer)
        {
            ++g_refused;
            Expect(isTight, file, "refused, with memory enough");
            return;
        }
        auto const first = m_known.emplace(file, *answer).first;
        Expect(first->second == *answer, file, "gives something else than the first time");
    }

    std::vector<fs::path> m_files;
    std::map<fs::path, unsigned long long> m_known;
    fs::path m_scratch;
    std::minstd_rand m_random{5};
    std::size_t m_next = 0, m_visits = 0, m_tight, m_rounds = 0;
};

bool Live(unsigned long seconds, std::size_t tight, std::vector<fs::path> const & folders)
{
    auto files = FindFiles(folders);
    std::printf("life: %zu files, %lu seconds\n", files.size(), seconds);
    Shared shared;
    if (files.empty() || !shared.Make())
        return false;
    g_shared = &shared;
    Use first, last{~std::size_t{0}, INT_MAX}; // the most of the first half, the least of the last quarter
    Life life(std::move(files), tight);
    for (ULONGLONG const begin = GetTickCount64(); GetTickCount64() - begin < 1000ULL * seconds;)
    {
        life.Go();
        Use const use = Measure();
        ULONGLONG const passed = GetTickCount64() - begin;
        if (passed < 500ULL * seconds)
            first = {std::max(first.committed, use.committed), std::max(first.handles, use.handles)};
        else if (passed > 750ULL * seconds)
            last = {std::min(last.committed, use.committed), std::min(last.handles, use.handles)};
    }
    std::printf("  visits %zu, refused %d, events %d; memory %zu then %zu KB, handles %d then %d; wrong %d\n",
                life.Visits(), g_refused.load(), g_events.load(), first.committed / 1024, last.committed / 1024,
                first.handles, last.handles, g_wrong.load());
    return g_wrong == 0 && last.handles <= first.handles + 4 && last.committed <= first.committed + first.committed / 8;
}

} // namespace

int wmain(int count, wchar_t ** arguments)
{
    VekTest::ReportFaults("the long life");
    setvbuf(stdout, nullptr, _IONBF, 0);
    std::vector<fs::path> folders;
    std::size_t tight = 0;
    for (int i = 2; i < count; ++i)
        if (std::wstring_view(arguments[i]) == L"--tight" && i + 1 < count)
            tight = std::wcstoul(arguments[++i], nullptr, 10) << 20;
        else
            folders.emplace_back(arguments[i]);
    CVekLibrary const library;
    if (!library || folders.empty())
        return 2;
    getVekLibKernel()->RegisterEvent(LOADED);
    bool const isGood = Live(std::wcstoul(arguments[1], nullptr, 10), tight, folders);
    std::printf("life: %s\n", isGood ? "good" : "FAILED");
    return isGood ? 0 : 1;
}
