#include "XmlFile.h"

#include "Console.h"
#include "Platform.h"

namespace tool
{

namespace
{

enum class Reading
{
    Done,
    Failed,
    Incomplete
};

Held<IVekXMLDocument> CreateDocument()
{
    return Held<IVekXMLDocument>(getVekLibKernel()->GetXMLManager()->CreateXMLDocument());
}

Reading Read(std::wstring const & path, IVekXMLDocument & document)
{
    // The interface's parser takes a file that ends early for a good one; the class can tell.
    CVekXMLParser parser;
    if (!parser.ParseXMLFile(path.c_str(), &document))
        return Reading::Failed;
    return parser.IsComplete() ? Reading::Done : Reading::Incomplete;
}

} // namespace

Held<IVekXMLDocument> LoadXml(std::wstring const & path)
{
    Held<IVekXMLDocument> document = CreateDocument();
    Reading const reading = document ? Read(path, *document) : Reading::Failed;
    if (reading == Reading::Done)
        return document;
    Fail(path,
         reading == Reading::Incomplete ? WhyIncomplete(*document) : WhyUnreadable(path, L"can't be read as XML"));
    return nullptr;
}

Held<IVekXMLDocument> TryLoadXml(std::wstring const & path)
{
    CVekSetDebugOutputLevel const silence(-1);
    Held<IVekXMLDocument> document = CreateDocument();
    if (document && Read(path, *document) != Reading::Done)
        document.reset();
    return document;
}

wchar_t const * WhyIncomplete(IVekXMLDocument const & document)
{
    return document.GetRootElement()->GetName().IsEmpty() ? L"contains no element"
                                                          : L"ends before its outermost element is closed";
}

std::wstring WhyUnreadable(std::wstring const & path, wchar_t const * otherwise)
{
    DWORD const attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return L"can't be read: " + LastErrorText();
    if (attributes & FILE_ATTRIBUTE_DIRECTORY)
        return L"is a directory";
    HANDLE const file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return L"can't be read: " + LastErrorText();
    CloseHandle(file);
    return otherwise;
}

std::wstring LastErrorText()
{
    DWORD const code = GetLastError();
    wchar_t text[256];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code, 0, text,
                                  256, nullptr);
    while (length > 0 && (text[length - 1] <= L' ' || text[length - 1] == L'.'))
        --length;
    if (length == 0)
        return Format(L"error %u", static_cast<unsigned int>(code));
    if (text[0] >= L'A' && text[0] <= L'Z')
        text[0] = static_cast<wchar_t>(text[0] + 32);
    return Printable(std::wstring_view(text, length));
}

std::wstring PrintableName(CVekString<wchar_t> const & name)
{
    return Printable(View(name), 200);
}

} // namespace tool
