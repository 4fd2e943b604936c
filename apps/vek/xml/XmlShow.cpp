#include "xml/XmlShow.h"

#include "VekLib.h"

#include "Console.h"
#include "Interrupt.h"
#include "LibraryText.h"
#include "Platform.h"
#include "ProgressBar.h"
#include "StandardFiles.h"
#include "WalkTree.h"
#include "XmlFile.h"
#include "xml/XmlCount.h"

#include <algorithm>
#include <chrono>

namespace tool
{

namespace
{

// What a line of the tree shows of one element.
constexpr int SHOWN_ATTRIBUTES = 16;
constexpr std::size_t SHOWN_VALUE = 80;
constexpr std::size_t SHOWN_INDENTATION = 40;

double FileMegabytes(std::wstring const & path)
{
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data))
        return 0;
    return (static_cast<double>(data.nFileSizeHigh) * 4294967296.0 + static_cast<double>(data.nFileSizeLow)) / 1e6;
}

void PrintInfo(std::wstring const & path, IVekXMLDocument & document, double milliseconds)
{
    IVekXMLElement * const root = document.GetRootElement();
    XmlCount const count = CountXml(root);
    double const megabytes = FileMegabytes(path);
    Console & out = Console::Out();
    auto const line = [&out](wchar_t const * label, std::wstring const & value)
    { out.Write(Format(L"  %-18s", label) + value + L"\n"); };

    out.Write(ShownName(path) + L"\n");
    line(L"root element", PrintableName(root->GetName()));
    line(L"document type",
         document.GetDocumentType().IsEmpty() ? L"(none)" : PrintableName(document.GetDocumentType()));
    line(L"elements", std::to_wstring(count.elements));
    line(L"attributes", std::to_wstring(count.attributes));
    line(L"CDATA sections", std::to_wstring(count.cdataSections));
    line(L"DTD rules", std::to_wstring(document.GetNumDTDRules()));
    line(L"attribute lists", std::to_wstring(document.GetNumDTDAttributeLists()));
    line(L"depth", std::to_wstring(count.depth));
    line(L"read", Format(L"%.3f MB in %.1f ms, %.1f MB/s", megabytes, milliseconds,
                         milliseconds > 0 ? megabytes * 1000.0 / milliseconds : 0.0));
}

void PrintElement(IVekXMLElement const & element, std::size_t level, bool isCut)
{
    std::wstring line = level <= SHOWN_INDENTATION ? std::wstring(2 * level, L' ')
                                                   : std::wstring(2 * SHOWN_INDENTATION, L' ') +
                                                         Format(L"[%u] ", static_cast<unsigned int>(level));
    line += PrintableName(element.GetName());
    int const attributes = element.GetNumAttributes();
    for (int i = 0; i < std::min(attributes, SHOWN_ATTRIBUTES); ++i)
        line += L" " + PrintableName(element.GetAttributeName(i)) + L"=\"" +
                Printable(View(element.GetAttributeValue(i)), SHOWN_VALUE) + L"\"";
    if (attributes > SHOWN_ATTRIBUTES)
        line += Format(L" (%d more attributes)", attributes - SHOWN_ATTRIBUTES);
    if (element.HasCDATASection())
        line += Format(L" [CDATA, %d characters]", element.GetCDATASectionSize() / 2);
    if (isCut)
        line += Format(element.GetNumChildren() == 1 ? L" (1 child)" : L" (%d children)", element.GetNumChildren());
    Console::Out().Write(line + L"\n");
}

bool ShowInfo(std::wstring const & path)
{
    auto const begin = std::chrono::steady_clock::now();
    CVekRef<IVekXMLDocument> const document = LoadXml(path);
    std::chrono::duration<double, std::milli> const taken = std::chrono::steady_clock::now() - begin;
    if (document)
        PrintInfo(path, *document, taken.count());
    return document != nullptr;
}

} // namespace

int RunXmlInfo(std::vector<std::wstring> const & paths)
{
    Interrupt const interrupt;
    CVekRef<IVekProgressController> const progress(getVekLibKernel()->CreateProgressController());
    CVekRef<ProgressBar> const bar(new ProgressBar);
    if (!progress)
        return Fail(L"info", L"out of memory");
    progress->SetCallback(bar.Get());
    progress->BeginTask(L"reading", 100.0, 100.0 / static_cast<double>(paths.size()), 0);
    int code = EXIT_DONE;
    for (std::wstring const & path : paths)
    {
        if (progress->IsCancelled())
            return Fail(L"info", L"stopped by Ctrl-C");
        bar->Hide();
        if (WithInput(path, [](std::wstring const & file) { return ShowInfo(file) ? EXIT_DONE : EXIT_FAILED; }))
            code = EXIT_FAILED;
        progress->Progress(-1.0);
    }
    progress->EndTask();
    bar->Hide();
    return code;
}

int RunXmlTree(std::wstring const & path, std::size_t depth)
{
    CVekRef<IVekXMLDocument> const document = LoadXml(path);
    if (!document)
        return EXIT_FAILED;
    WalkTree(document->GetRootElement(),
             [depth](IVekXMLElement * element, std::size_t level)
             {
                 bool const isCut = level + 1 >= depth && element->GetNumChildren() > 0;
                 PrintElement(*element, level, isCut);
                 return !isCut;
             });
    return EXIT_DONE;
}

} // namespace tool
