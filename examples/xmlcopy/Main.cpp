// Copies XML files through the document model, with everything that is in them:
//     example_xmlcopy FROM TO [FROM TO ...]
// Prints "copied" or "refused" for each, in a line of its own, and ends with 1 when one was refused.
#include <VekLib.h>
#include <VekRef.h>

#include <cstdio>

static bool Copy(wchar_t const * from, wchar_t const * to)
{
    CVekRef<IVekXMLDocument> const document{getVekLibKernel()->GetXMLManager()->CreateXMLDocument()};
    CVekXMLParser parser;
    parser.SetKeepAll(VEK_XML_KEEP_ALL);
    CVekXMLWriter writer;
    writer.SetKeepAll(true);
    // A file that ends early is read without an error, but is not one to copy.
    return document && parser.ParseXMLFile(from, document.Get()) && parser.IsComplete() &&
           writer.WriteXMLFile(to, document.Get());
}

int wmain(int count, wchar_t ** arguments)
{
    if (count < 3 || count % 2 == 0 || !VekLibInit())
        return 2;
    bool done = true;
    for (int i = 1; i + 1 < count; i += 2)
    {
        bool const isCopied = Copy(arguments[i], arguments[i + 1]);
        std::puts(isCopied ? "copied" : "refused");
        done = done && isCopied;
    }
    VekLibDeinit();
    return done ? 0 : 1;
}
