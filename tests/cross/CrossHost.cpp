// A host that gets everything from the kernel, built by either compiler, and run with the DLL of either:
//     cross_host VEKLIB.DLL FOLDER [OTHER-VEKLIB.DLL]
// With the second DLL, whose objects are a host's own for the first, it hands objects of each to the other.

#include "support/FaultReport.h"
#include "support/ForeignElement.h"
#include "support/TestStream.h"

#include <VekLib.h>

#include <cmath>
#include <cstdio>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace
{

int failures = 0;

void Check(bool passed, char const * what, int line)
{
    if (passed)
        return;
    std::printf("FAILED, line %d: %s\n", line, what);
    ++failures;
}
#define CHECK(...) Check((__VA_ARGS__), #__VA_ARGS__, __LINE__)

// A text object's characters without an import: it is one pointer, null when empty.
std::wstring Chars(CVekString<wchar_t> const & text)
{
    wchar_t const * chars;
    std::memcpy(&chars, static_cast<void const *>(&text), sizeof chars);
    return chars ? chars : L"";
}

class Library
{
public:
    explicit Library(wchar_t const * path) : m_module(LoadLibraryW(path))
    {
        auto const init = Find<bool (*)()>("VekLibInit");
        auto const kernel = Find<IVekKernel * (*)()>("getVekLibKernel");
        if (init && kernel && init())
            m_kernel = kernel();
    }
    ~Library()
    {
        Find<void (*)()>("VekLibDeinit")();
        FreeLibrary(m_module);
    }
    Library(Library const &) = delete;
    Library & operator=(Library const &) = delete;

    explicit operator bool() const { return m_kernel; }
    IVekKernel * operator->() const { return m_kernel; }
    IVekXMLManager & XML() const { return *m_kernel->GetXMLManager(); }

private:
    template <class Function>
    Function Find(char const * name) const
    {
        return m_module ? reinterpret_cast<Function>(reinterpret_cast<void *>(GetProcAddress(m_module, name)))
                        : nullptr;
    }

    HMODULE m_module;
    IVekKernel * m_kernel = nullptr;
};

template <class T>
CVekRef<T> Made(T * object)
{
    return CVekRef<T>::Adopt(object);
}

struct Catcher : CVekRefCounted<IVekCatchLogOutput>
{
    void OnLogOutput(int level, wchar_t const * text) override
    {
        levels += level;
        log += text;
    }
    std::wstring log;
    int levels = 0;
};

struct Words : CVekRefCounted<IVekLexer::Callback>
{
    using Text = wchar_t const *;
    void Note(wchar_t kind, std::wstring const & text, int id, int position, int line, int column)
    {
        found += kind + text + L"," + std::to_wstring(id) + L"@" + std::to_wstring(position) + L":" +
                 std::to_wstring(line) + L":" + std::to_wstring(column) + L" ";
    }
    void OnKeywordFound(Text text, int id, int p, int l, int c) override { Note(L'K', text, id, p, l, c); }
    void OnOperatorFound(Text text, int id, int p, int l, int c) override { Note(L'O', text, id, p, l, c); }
    void OnIdentifierFound(Text text, int p, int l, int c) override { Note(L'I', text, 0, p, l, c); }
    void OnIntegerFound(int value, IVekLexer::NUM_FORMAT format, int p, int l, int c) override
    {
        Note(L'N', std::to_wstring(value), format, p, l, c);
    }
    void OnFloatFound(double value, int p, int l, int c) override { Note(L'F', std::to_wstring(value), 0, p, l, c); }
    void OnStringFound(Text text, int p, int l, int c) override { Note(L'S', text, 0, p, l, c); }
    void OnInvalidSyntax(Text text, int p, int l, int c) override { Note(L'?', text, 0, p, l, c); }
    void OnError(Text text, int p, int l, int c) override { Note(L'!', text, 0, p, l, c); }
    std::wstring found;
};

struct Bar : CVekRefCounted<IVekProgressController::Callback>
{
    bool OnProgress(double task, double whole, wchar_t const * name, int param) override
    {
        shown +=
            std::to_wstring(task) + L" " + std::to_wstring(whole) + L" " + name + L" " + std::to_wstring(param) + L";";
        return task < 50;
    }
    std::wstring shown;
};

struct Ticks : CVekRefCounted<IVekThread::TickCallback>
{
    void OnTick() override { InterlockedIncrement(&count); }
    long volatile count = 0;
};

void Services(Library const & library)
{
    CHECK(library->GetPerformanceFrequency() > 1'000'000);
    CHECK(std::fabs(library->GetCPUSpeed() * 1'048'576 / static_cast<double>(library->GetPerformanceFrequency()) - 1) <
          1e-9);
    auto const timer = Made(library->CreateTimer());
    CHECK(timer->Start() && timer->IsRunning() && timer->GetElapsedSeconds() >= 0 && timer->GetElapsedTicks() >= 0);
    float const value = Made(library->CreateRandomizer())->GetRandomValue(2.5F, 3.5F);
    CHECK(value >= 2.5F && value <= 3.5F);
    CHECK(!Made(library->CreateCameraUIController())->Manipulate(0, nullptr));
    GUID const id = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};
    CHECK(library->RegisterEvent(id) && library->IsEventRegistered(id) && !library->FireEvent(id, nullptr));
    library->UnregisterEvent(id);
    CHECK(!library->IsEventRegistered(id));
}

void Callbacks(Library const & library)
{
    CVekRef<Bar> const bar(new Bar);
    auto progress = Made(library->CreateProgressController());
    progress->SetCallback(bar.Get());
    progress->SetParam(7);
    progress->BeginTask(L"whole", 100, 12.5, 1);
    progress->Progress(-1);
    CHECK(!progress->IsCancelled());
    progress->Progress(37.5);
    CHECK(progress->IsCancelled() && progress->GetCallback() == bar.Get());
    CHECK(bar->shown.find(L"12.500000 0.000000 whole 7;50.000000 0.000000 whole 7;") != std::wstring::npos);
    progress.Reset();
    CHECK(bar->GetRefCount() == 1);

    CVekRef<Ticks> const ticks(new Ticks);
    auto thread = Made(library->CreateThread(L"ticking", ticks.Get(), true, 0, 3));
    CHECK(Chars(thread->GetName()) == L"ticking" && thread->GetMaxTickCount() == 3 && thread->GetCreateFlag());
    thread->Start();
    for (int i = 0; i < 1000 && ticks->count < 3; ++i)
        Sleep(10);
    CHECK(thread->Stop() != 258 && ticks->count == 3);
    thread.Reset();
    CHECK(ticks->GetRefCount() == 1);
}

char const * const PROGRAM = "if x1 += 012 -3.5 \"s\" # /*c*/";
wchar_t const * const FOUND = L"Kif,5@0:0:0 Ix1,0@3:0:3 O+=,6@6:0:6 N10,2@9:0:9 F-3.500000,0@13:0:13 Ss,0@18:0:18 "
                              L"?#,0@22:0:22 ";
void SetUp(IVekLexer & lexer)
{
    lexer.AddKeyword(L"if", 5, true);
    lexer.AddOperator(L"+=", 6);
    lexer.AddComment(L"/*", L"*/");
}

void Lexing(Library const & library)
{
    auto lexer = Made(library->CreateLexer());
    SetUp(*lexer);
    CVekRef<Words> const words(new Words);
    lexer->SetCallback(words.Get());
    std::wstring const text(PROGRAM, PROGRAM + std::strlen(PROGRAM));
    CHECK(lexer->Parse(text.c_str(), static_cast<int>(text.size())) == static_cast<int>(text.size()));
    CHECK(words->found == FOUND);
    CVekRef<TestStream> const stream(new TestStream);
    stream->bytes = PROGRAM;
    auto const tokenizer = Made(library->CreateTokenizer());
    CHECK(tokenizer->Tokenize(lexer.Get(), stream.Get()) && tokenizer->GetNumTokens() == 7);
    CHECK(tokenizer->GetToken(4)->GetFloat() == -3.5 && tokenizer->GetToken(2)->GetText() == std::wstring(L"+="));
    CHECK(lexer->GetCallback() == words.Get());
    lexer.Reset();
    CHECK(words->GetRefCount() == 1 && stream->GetRefCount() == 1);
}

void Streams(Library const & library)
{
    auto const stream = Made(library->CreateMemoryIOStream());
    CHECK(stream->Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, 200) && stream->GetSize() == 200);
    stream->SetSystemByteOrder(VEK_BYTEORDER_LITTLE);
    stream->WriteChar('c', true);
    stream->WriteWChar(L'\x263A', true);
    stream->WriteInt16(-2, true);
    stream->WriteInt64(-3, true);
    stream->WriteQWord(0x123456789ABCDEF0, true);
    stream->WriteFloat(1.25F, true);
    stream->WriteDouble(-1e300, true);
    CHECK(stream->GetPosition() == 33 && stream->GetBuffer()[2] == 0x3A && stream->GetBuffer()[13] == 0x12);
    CHECK(stream->MovePosition(-33));
    CHECK(stream->ReadChar(true) == 'c' && stream->ReadWChar(true) == L'\x263A' && stream->ReadInt16(true) == -2);
    CHECK(stream->ReadInt64(true) == -3 && stream->ReadQWord(true) == 0x123456789ABCDEF0);
    CHECK(stream->ReadFloat(true) == 1.25F && stream->ReadDouble(true) == -1e300);
    stream->MovePosition(-33);
    int whole = 0;
    double real = 0;
    wchar_t word[8] = L"";
    CHECK(stream->Printf(L"%d %.2f %s", 41, 0.5, L"text") && stream->Scanf(L"%d %lf %s", &whole, &real, word, 8));
    CHECK(whole == 41 && real == 0.5 && word == std::wstring(L"text"));
    stream->MovePosition(-stream->GetPosition());
    CHECK(stream->Printf("%d %.2f %s", 42, 1.5, "text") && stream->Scanf("%d %lf", &whole, &real));
    CHECK(whole == 42 && real == 1.5);
}

char const * const XML = "<r v='1, 2.5, -3, 4' c='1, 0.5, 0.25, 0' b='TRUE' i='-7' d='0.125'><a/><b>\n</b></r>";
char const * const WRITTEN = "<r v=\"1, 2.5, -3, 4\" c=\"1, 0.5, 0.25, 0\" b=\"TRUE\" i=\"-7\" d=\"0.125\">\n"
                             "   <a/>\n   <b/>\n</r>\n";

CVekRef<IVekXMLDocument> Parsed(Library const & library, std::wstring const & path)
{
    auto document = Made(library.XML().CreateXMLDocument());
    CHECK(Made(library.XML().CreateXMLParser())->ParseXMLFile(path.c_str(), document.Get()));
    return document;
}

bool WritesTo(Library const & library, IVekXMLDocument * document, char const * expected)
{
    CVekRef<TestStream> const stream(new TestStream);
    bool const written = Made(library.XML().CreateXMLWriter())->WriteXML(stream.Get(), document);
    std::string const & bytes = stream->bytes;
    std::size_t const length = std::strlen(expected);
    return written && stream->GetRefCount() == 1 && bytes.size() > length &&
           bytes.substr(bytes.size() - length) == expected;
}

template <class T>
T Read(IVekXMLElement const & element, wchar_t const * name)
{
    T byName{}, byIndex{};
    CHECK(element.GetAttributeValue(name, byName, T{}));
    CHECK(element.GetAttributeValue(element.FindAttributeIndex(name), byIndex, T{}) && byName == byIndex);
    return byName;
}

void Documents(Library const & library, std::wstring const & path)
{
    auto const document = Parsed(library, path);
    IVekXMLElement & root = *document->GetRootElement();
    CHECK(Read<CVekVector4D<double>>(root, L"v") == CVekVector4D<double>(1, 2.5, -3, 4));
    CHECK(Read<CVekVector4D<float>>(root, L"v") == CVekVector4D<float>(1, 2.5F, -3, 4));
    CHECK(Read<CVekVector4D<int>>(root, L"v")[0] == 1);
    CHECK(Read<CVekRGBA<float>>(root, L"c") == CVekRGBA<float>(1, 0.5F, 0.25F, 0));
    CHECK(Read<CVekRGBA<unsigned char>>(root, L"c") == CVekRGBA<unsigned char>(1, 0, 0, 0));
    CHECK(Read<bool>(root, L"b") && Read<int>(root, L"i") == -7);
    CHECK(Read<double>(root, L"d") == 0.125 && Read<float>(root, L"d") == 0.125F);
    CHECK(Chars(root.GetAttributeName(2)) == L"b" && Chars(root.GetAttributeValue(2)) == L"TRUE");
    CHECK(WritesTo(library, document.Get(), WRITTEN));
    CHECK(root.FindChild(L"B", false) == root.GetChild(1) && root.FindChild(L"new", true) == root.GetChild(2));
    root.RemoveChild(L"NEW");
    int const rule = document->AddDTDRule(L"r", VEK_XML_DTD_SEQUENCE);
    CHECK(document->GetDTDRule(rule)->AddRuleEntry(L"a", VEK_XML_DTD_ELEMENT, 2) == 0);
    CHECK(document->FindDTDRule(L"r")->GetRuleEntry(0)->GetOccurrence() == 2);
    CVekRef<TestStream> const refusing(new TestStream);
    refusing->failFrom = 1;
    CHECK(!Made(library.XML().CreateXMLWriter())->WriteXML(refusing.Get(), document.Get()));
}

// An element of a host's own is no child, and no root to read into; but a document with it can be written.
void ForeignElements(Library const & library, IVekXMLElement & foreign, std::wstring const & path)
{
    auto const top = Made(library.XML().CreateXMLElement());
    CHECK(top->AddChild(&foreign, -1) == 0 && top->GetChild(0) == nullptr && foreign.GetRefCount() == 2);
    foreign.Release();
    top->RemoveChild(&foreign);
    CHECK(top->GetNumChildren() == 0 && foreign.GetRefCount() == 1);
    auto const document = Made(library.XML().CreateXMLDocument());
    document->SetRootElement(&foreign);
    CHECK(!Made(library.XML().CreateXMLParser())->ParseXMLFile(path.c_str(), document.Get()));
    CHECK(WritesTo(library, document.Get(), "<mine>\n   <inner/>\n</mine>\n"));
    CHECK(document->FindElementFromPath(L"inner", false) == foreign.GetChild(0));
}

void Test(Library const & library, std::wstring const & path)
{
    CVekRef<Catcher> const catcher(new Catcher);
    library->AddCatchLogOutput(catcher.Get());
    Services(library);
    Callbacks(library);
    Lexing(library);
    Streams(library);
    Documents(library, path);
    {
        CVekRef<ForeignElement> const mine = Made(new ForeignElement(library.XML().CreateXMLElement(), L"mine"));
        mine->FindChild(L"inner", true);
        mine->AddChild(Made(library.XML().CreateXMLElement()).Get(), -1);
        mine->GetChild(0)->SetName(L"inner");
        ForeignElements(library, *mine, path);
    }
    CHECK(catcher->log.find(L"CVekXMLParser::PushElement --> pElement is NULL\n") != std::wstring::npos);
    CHECK(catcher->levels == 0);
    library->RemoveCatchLogOutput(catcher.Get());
    CHECK(catcher->GetRefCount() == 1);
}

// Objects of one library for the other.
void Mix(Library const & library, Library const & other, std::wstring const & path)
{
    auto const document = Parsed(other, path);
    CHECK(WritesTo(library, document.Get(), WRITTEN));
    auto const stream = Made(other->CreateMemoryIOStream());
    stream->Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, 1000);
    CHECK(Made(library.XML().CreateXMLWriter())->WriteXML(stream.Get(), document.Get()));
    CHECK(std::strstr(reinterpret_cast<char const *>(stream->GetBuffer()), "<b/>\n</r>"));
    auto const file = Made(other->CreateFileIOStream());
    CHECK(file->Open((path + L".out").c_str(), VEK_IO_WRITE | VEK_IO_BINARY, 0));
    CHECK(Made(library.XML().CreateXMLWriter())->WriteXML(file.Get(), document.Get()));
    file->Close();
    CHECK(Parsed(library, path + L".out")->GetRootElement()->GetNumChildren() == 2);

    auto const empty = Made(other.XML().CreateXMLDocument());
    CHECK(Made(library.XML().CreateXMLParser())->ParseXMLFile(path.c_str(), empty.Get()));
    CHECK(empty->GetRootElement()->GetNumChildren() == 2 && WritesTo(other, empty.Get(), WRITTEN));
    auto const mine = Made(other.XML().CreateXMLElement());
    mine->SetName(L"mine");
    mine->FindChild(L"inner", true);
    ForeignElements(library, *mine, path);

    auto const lexer = Made(other->CreateLexer());
    SetUp(*lexer);
    auto const program = Made(other->CreateMemoryIOStream());
    auto const size = static_cast<unsigned int>(std::strlen(PROGRAM));
    program->Open(nullptr, VEK_IO_READ | VEK_IO_WRITE, size);
    std::memcpy(program->GetBuffer(), PROGRAM, size);
    auto const tokenizer = Made(library->CreateTokenizer());
    CHECK(tokenizer->Tokenize(lexer.Get(), program.Get()) && tokenizer->GetNumTokens() == 7);
}

} // namespace

int wmain(int count, wchar_t ** arguments)
{
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    VekTest::ReportFaults("the host");
    if (count < 3)
        return 2;
    std::wstring const path = std::wstring(arguments[2]) + L"\\cross.xml";
    FILE * const file = _wfopen(path.c_str(), L"wb");
    if (!file || std::fputs(XML, file) < 0 || std::fclose(file) != 0)
        return std::puts("can't write the document"), 2;
    Library const library(arguments[1]);
    if (!library)
        return std::puts("can't load and start the library"), 2;
    Test(library, path);
    if (count > 3)
    {
        Library const other(arguments[3]);
        CHECK(other && other.operator->() != library.operator->());
        Test(other, path);
        Mix(library, other, path);
        Mix(other, library, path);
    }
    std::printf("%d failures\n", failures);
    return failures ? 1 : 0;
}
