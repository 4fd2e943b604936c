// Shows the library's messages in a host of one's own: a catcher, and the debug output level that filters for it.
//     example_logcatcher
#include <VekLib.h>

#include <stdio.h>

// CVekRefCounted counts the references; what is left to write is OnLogOutput. It is called on the thread that reports,
// one call at a time in the whole process, and must not add or remove catchers.
class PrintingCatcher final : public CVekRefCounted<IVekCatchLogOutput>
{
public:
    void OnLogOutput(int level, wchar_t const * text) override // the text ends in a newline
    {
        ++m_messages;
        printf("[%d] ", level);
        fputws(text, stdout);
    }
    int Messages() const { return m_messages; }

private:
    int m_messages = 0;
};

static void ReportOnce(wchar_t const * when)
{
    VekLogOutput(0, L"%s: level 0, as all messages of the library", when);
    VekLogOutput(5, L"%s: level 5, some detail of a host's own", when);
}

int wmain()
{
    IVekKernel * const kernel = getVekLibKernel();
    CVekRef<PrintingCatcher> const catcher{new PrintingCatcher}; // count 1, ours
    kernel->AddCatchLogOutput(catcher.Get());                    // the kernel's own reference
    CVekLibrary const library;                                   // four lines about the system
    if (!library)
        return 1;

    ReportOnce(L"at first"); // the level is 0: messages up to 0 are shown
    {
        CVekSetDebugOutputLevel const everything(5);
        ReportOnce(L"with level 5");
    }
    {
        CVekSetDebugOutputLevel const silence(-1);
        ReportOnce(L"with level -1");
    }

    CVekRef<IVekXMLDocument> const document{kernel->GetXMLManager()->CreateXMLDocument()};
    CVekRef<IVekXMLParser> const parser{kernel->GetXMLManager()->CreateXMLParser()};
    parser->ParseXMLFile(L"no such file.xml", document.Get()); // says why it failed

    kernel->RemoveCatchLogOutput(catcher.Get()); // the library's end would remove it too
    printf("%d messages caught\n", catcher->Messages());
    return 0;
}
