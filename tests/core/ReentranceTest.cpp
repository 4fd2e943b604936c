// From inside each callback that the library makes: what a host may do there, to the library and to the very object
// that calls.

#include "VekLib.h"

#include "support/TestStream.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <atomic>
#include <functional>
#include <iterator>
#include <memory>
#include <utility>

namespace
{

constexpr GUID EVENT = {0x2E, 0, 0, {}};
constexpr char TEXT[] = "<a b='1'><c d='2'>x</c><![CDATA[y]]></a>";

IVekKernel & Kernel()
{
    return *getVekLibKernel();
}

std::function<void()> g_inside; // done by the first callback
std::atomic<int> g_calls;
bool g_hasEnded;

void Called()
{
    if (auto const inside = std::exchange(g_inside, nullptr))
        inside();
    ++g_calls;
}

// Who calls: how it comes to do so, and what can be done to it meanwhile.
struct Caller
{
    virtual ~Caller() = default;
    virtual void Call() = 0;
    virtual void Replace() = 0; // the callback, or what is worked on
    virtual void LetGo() = 0;   // of all that the host holds of it
};

struct LogCaller final : Caller
{
    struct Catcher final : CVekRefCounted<IVekCatchLogOutput>
    {
        void OnLogOutput(int, wchar_t const *) override { Called(); }
    };
    ~LogCaller() override { LogCaller::LetGo(); }
    void Call() override
    {
        if (!catcher)
            LogCaller::Replace();
        VekLogOutput(0, L"said");
    }
    void Replace() override
    {
        LetGo();
        catcher = CVekRef<Catcher>(new Catcher);
        Kernel().AddCatchLogOutput(catcher.Get());
    }
    void LetGo() override
    {
        auto const gone = std::move(catcher);
        if (gone && !g_hasEnded) // the end has taken it out
            Kernel().RemoveCatchLogOutput(gone.Get());
    }
    CVekRef<Catcher> catcher;
};

struct EventCaller : Caller
{
    struct Handler final : CVekEventHandler
    {
        explicit Handler(bool callsAtEnd) : m_callsAtEnd(callsAtEnd) {}
        ~Handler() override
        {
            if (m_callsAtEnd)
                Called();
        }
        bool OnEvent(CVekEventData *) override
        {
            if (!m_callsAtEnd)
                Called();
            return true;
        }
        bool m_callsAtEnd;
    };
    ~EventCaller() override { Kernel().UnregisterEvent(EVENT); }
    void Call() override
    {
        if (!container)
            EventCaller::Replace();
        Kernel().FireEvent(EVENT, nullptr);
    }
    void Replace() override
    {
        container = CVekRef<CVekEventHandlerContainer>(new CVekEventHandlerContainer);
        Kernel().RegisterEvent(EVENT);
        Kernel().AddEventHandler(EVENT, container->Add(new Handler(callsAtEnd)));
    }
    void LetGo() override { container.Reset(); }
    CVekRef<CVekEventHandlerContainer> container;
    bool callsAtEnd = false;
};

// The last release of a handler.
struct DestructorCaller final : EventCaller
{
    DestructorCaller() { callsAtEnd = true; }
    void Call() override
    {
        EventCaller::Call();
        container.Reset();
    }
};

struct TickCaller : Caller
{
    struct Tick final : CVekRefCounted<IVekThread::TickCallback>
    {
        void OnTick() override { Called(); }
    };
    void Call() override
    {
        int const before = g_calls;
        if (!worker)
            worker = CVekRef<IVekThread>(Kernel().CreateThread(L"worker", nullptr, false, 0, 0));
        if (!worker->IsRunning())
            worker->Start();
        if (auto const held = worker; !held->IsCurrentThread())
        {
            Ask();
            while (g_calls == before)
                Sleep(1);
        }
    }
    virtual void Ask() { worker->SetTickCallback(CVekRef<Tick>(new Tick).Get()); }
    void Replace() override { worker->SetTickCallback(nullptr); }
    void LetGo() override { worker.Reset(); }
    CVekRef<IVekThread> worker;
};

struct CommandCaller final : TickCaller
{
    struct Command final : CVekThreadCommand
    {
        void Execute() override { Called(); }
    };
    void Ask() override { Kernel().PostThreadCommand(new Command, worker.Get()); }
};

struct ProgressCaller final : Caller
{
    struct Callback final : CVekRefCounted<IVekProgressController::Callback>
    {
        bool OnProgress(double, double, wchar_t const *, int) override
        {
            Called();
            return true;
        }
    };
    void Call() override
    {
        if (!progress)
        {
            progress = CVekRef<IVekProgressController>(Kernel().CreateProgressController());
            progress->SetCallback(CVekRef<Callback>(new Callback).Get());
        }
        progress->BeginTask(L"task", 1, 1, 0);
        if (progress) // it calls back
            progress->EndTask();
    }
    void Replace() override { progress->SetCallback(nullptr); }
    void LetGo() override { progress.Reset(); }
    CVekRef<IVekProgressController> progress;
};

struct LexerCaller final : Caller
{
    struct Callback final : CVekRefCounted<IVekLexer::Callback>
    {
        void OnKeywordFound(wchar_t const *, int, int, int, int) override { Called(); }
        void OnOperatorFound(wchar_t const *, int, int, int, int) override { Called(); }
        void OnIdentifierFound(wchar_t const *, int, int, int) override { Called(); }
        void OnIntegerFound(int, IVekLexer::NUM_FORMAT, int, int, int) override { Called(); }
        void OnFloatFound(double, int, int, int) override { Called(); }
        void OnStringFound(wchar_t const *, int, int, int) override { Called(); }
        void OnInvalidSyntax(wchar_t const *, int, int, int) override { Called(); }
        void OnError(wchar_t const *, int, int, int) override { Called(); }
    };
    void Call() override
    {
        if (!lexer)
        {
            lexer = CVekRef<IVekLexer>(Kernel().CreateLexer());
            lexer->AddKeyword(L"if", 1, true);
            lexer->AddOperator(L"+", 2);
            lexer->AddComment(L"//", L"\n");
            lexer->SetCallback(CVekRef<Callback>(new Callback).Get());
        }
        constexpr wchar_t text[] = L"if a + 1 2.5 \"s\" ? // end\n if b + 3 ";
        lexer->Parse(text, std::size(text) - 1);
    }
    void Replace() override
    {
        lexer->SetCallback(nullptr);
        lexer->RemoveAll();
    }
    void LetGo() override { lexer.Reset(); }
    CVekRef<IVekLexer> lexer;
};

struct Stream final : TestStream
{
    bool Read(void * data, unsigned int count, bool advance) override
    {
        Called();
        return TestStream::Read(data, count, advance);
    }
    bool Write(void const * data, unsigned int count, bool advance) override
    {
        Called();
        return TestStream::Write(data, count, advance);
    }
};

// A document that is parsed into a host's element.
struct ParserCaller : Caller
{
    struct Element final : CVekXMLElement
    {
        int AddAttribute(wchar_t const * name, VEK_VARIANT const & value, int index) override
        {
            Called();
            return CVekXMLElement::AddAttribute(name, value, index);
        }
        int AddChild(IVekXMLElement * child, int index) override
        {
            Called();
            return CVekXMLElement::AddChild(child, index);
        }
    };
    void Prepare()
    {
        if (document)
            return;
        document = CVekRef<IVekXMLDocument>(Kernel().GetXMLManager()->CreateXMLDocument());
        document->SetRootElement(CVekRef<Element>(new Element).Get());
        parser = CVekRef<CVekXMLParser>(new CVekXMLParser);
    }
    void Call() override
    {
        Prepare();
        parser->ParseXMLMemory(TEXT, sizeof TEXT - 1, document.Get());
    }
    void Replace() override { document->SetRootElement(CVekRef<CVekXMLElement>(new CVekXMLElement).Get()); }
    void LetGo() override
    {
        parser.Reset();
        document.Reset();
    }
    CVekRef<IVekXMLDocument> document;
    CVekRef<CVekXMLParser> parser;
};

struct WriterCaller final : Caller
{
    void Call() override
    {
        if (!writer)
        {
            document = CVekRef<IVekXMLDocument>(Kernel().GetXMLManager()->CreateXMLDocument());
            document->SetRootElement(CVekRef<CVekXMLElement>(new CVekXMLElement).Get());
            for (int i = 0; i < 3000; ++i) // more than is given to the stream at once
                document->GetRootElement()->AddChild(
                    CVekRef<CVekXMLElement>(new CVekXMLElement(L"a long name", 11)).Get(), -1);
            writer = CVekRef<IVekXMLWriter>(Kernel().GetXMLManager()->CreateXMLWriter());
        }
        auto const to = CVekRef<Stream>(new Stream);
        writer->WriteXML(to.Get(), document.Get());
    }
    void Replace() override { document->SetRootElement(CVekRef<CVekXMLElement>(new CVekXMLElement).Get()); }
    void LetGo() override
    {
        document.Reset();
        writer.Reset();
    }
    CVekRef<IVekXMLDocument> document;
    CVekRef<IVekXMLWriter> writer;
};

struct TokenizerCaller final : Caller
{
    void Call() override
    {
        if (!tokenizer)
        {
            lexer = CVekRef<IVekLexer>(Kernel().CreateLexer());
            tokenizer = CVekRef<IVekTokenizer>(Kernel().CreateTokenizer());
        }
        auto const from = CVekRef<Stream>(new Stream);
        from->bytes = "a b c";
        tokenizer->Tokenize(lexer.Get(), from.Get());
    }
    void Replace() override { tokenizer->SetFilter(IVekTokenizer::TOKEN_KEYWORD); }
    void LetGo() override
    {
        tokenizer.Reset();
        lexer.Reset();
    }
    CVekRef<IVekLexer> lexer;
    CVekRef<IVekTokenizer> tokenizer;
};

struct DataCaller final : Caller
{
    void Call() override
    {
        auto const stream = CVekRef<Stream>(new Stream);
        writer->WriteInt32(L"number", 5);
        writer->WriteString(L"text", "text");
        writer->Write(stream.Get());
        stream->SetPosition(0, false);
        reader->Read(stream.Get());
    }
    void Replace() override { writer->WriteInt32(L"more", 6); }
    void LetGo() override {}
    std::unique_ptr<CVekTypedDataWriter> writer = std::make_unique<CVekTypedDataWriter>();
    std::unique_ptr<CVekTypedDataReader> reader = std::make_unique<CVekTypedDataReader>();
};

template <class T>
std::unique_ptr<Caller> Make()
{
    return std::make_unique<T>();
}

std::pair<char const *, std::unique_ptr<Caller> (*)()> const CALLERS[] = {
    {"catcher", Make<LogCaller>},
    {"handler", Make<EventCaller>},
    {"destructor", Make<DestructorCaller>},
    {"tick", Make<TickCaller>},
    {"command", Make<CommandCaller>},
    {"progress", Make<ProgressCaller>},
    {"lexer", Make<LexerCaller>},
    {"host's element", Make<ParserCaller>},
    {"writer's stream", Make<WriterCaller>},
    {"tokenizer's stream", Make<TokenizerCaller>},
    {"data stream", Make<DataCaller>},
};

std::pair<char const *, void (*)(Caller &)> const DEEDS[] = {
    {"log", [](Caller &) { VekLogOutput(0, L"said inside"); }},
    {"catchers",
     [](Caller &)
     {
         CVekRef<LogCaller::Catcher> const catcher(new LogCaller::Catcher);
         Kernel().AddCatchLogOutput(catcher.Get());
         VekLogOutput(0, L"said inside");
         Kernel().RemoveCatchLogOutput(catcher.Get());
     }},
    {"events",
     [](Caller &)
     {
         Kernel().FireEvent(EVENT, nullptr);
         Kernel().UnregisterEvent(EVENT);
         EventCaller().Call();
     }},
    {"other objects",
     [](Caller &)
     {
         ParserCaller().Call();
         WriterCaller().Call();
         LexerCaller().Call();
         ProgressCaller().Call();
     }},
    {"worker",
     [](Caller &)
     {
         CVekRef<IVekThread> const worker(Kernel().CreateThread(L"inner", nullptr, false, 0, 1));
         worker->Start();
         worker->Stop();
     }},
    {"again", [](Caller & caller) { caller.Call(); }},
    {"replace", [](Caller & caller) { caller.Replace(); }},
    {"let go", [](Caller & caller) { caller.LetGo(); }},
    {"end",
     [](Caller &)
     {
         VekLibDeinit();
         VekLibInit();
         g_hasEnded = true;
     }},
};

TEST(Reentrance, AnythingMayBeDoneInsideOfACallback)
{
    CVekLibrary const library;
    for (auto const & [callerName, make] : CALLERS)
    {
        for (auto const & [deedName, deed] : DEEDS)
        {
            SCOPED_TRACE(testing::Message() << callerName << ": " << deedName);
            auto const caller = make();
            g_calls = 0;
            g_hasEnded = false;
            g_inside = [&caller, deed] { deed(*caller); };
            caller->Call();
            EXPECT_GT(g_calls, 0);
            EXPECT_FALSE(g_inside);
        }
    }
}

} // namespace
