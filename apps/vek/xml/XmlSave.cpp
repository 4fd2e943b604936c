#include "xml/XmlSave.h"

#include "VekLib.h"

#include "Console.h"
#include "FileBytes.h"
#include "FileErrors.h"
#include "LogToStderr.h"
#include "NewFile.h"
#include "xml/XmlCanonical.h"
#include "xml/XmlCount.h"
#include "xml/XmlLayout.h"
#include "xml/XmlSource.h"

namespace tool
{

namespace
{

// More blanks than this are a mistake, not a layout.
constexpr std::uint64_t MOST_INDENTATION = 0x40000000;

/// What the library says of a document that it can't write; empty when the file is at fault.
std::wstring WhyNotXml(std::wstring const & messages)
{
    std::size_t const begin = messages.find(L"--> "), end = messages.find(L'\n', begin);
    bool const isDocument = messages.find(L"can not be written") != messages.npos;
    return isDocument && begin != messages.npos ? Printable(messages.substr(begin + 4, end - begin - 4))
                                                : std::wstring();
}

/// Tells the user why when it fails.
bool Write(std::wstring const & path, NewFile const & file, IVekXMLDocument & document, int indentation)
{
    CVekXMLWriter writer;
    writer.SetKeepAll(true);
    writer.SetIndentation(indentation);
    std::wstring messages;
    bool done = false;
    {
        LogToStderr::Diversion const diversion(messages);
        CVekSetDebugOutputLevel const speech(0);
        done = writer.WriteXMLFile(file.Path().c_str(), &document);
    }
    std::wstring const why = WhyNotXml(messages);
    if (!done)
        Fail(path, why.empty() ? WhyUnwritable(file.Path()) : L"not written: " + why);
    return done;
}

/// The canonical form of what was written, its layout left out; empty when it is no XML.
std::string ReadBack(NewFile const & file)
{
    std::string bytes;
    CVekRef<IVekXMLDocument> document;
    if (ReadBytes(file.Path(), bytes))
        document = ParseXml(bytes);
    if (!document)
        return {};
    RemoveLayout(*document->GetRootElement());
    return Canonicalize(*document).text;
}

} // namespace

bool SaveXml(CVekRef<IVekXMLDocument> document, std::wstring const & path, int indentation)
{
    if (!IsWritable(path))
        return false;
    std::uint64_t const levels = CountXml(document->GetRootElement()).tagLevels;
    if (levels * static_cast<unsigned int>(indentation) > MOST_INDENTATION)
    {
        Fail(path,
             Format(L"not written: so deep a document would be indented by more than %d MB of blanks; use --indent 0",
                    static_cast<int>(MOST_INDENTATION >> 20)));
        return false;
    }
    NewFile file(path);
    if (!Write(path, file, *document, indentation))
        return false;
    std::string const canonical = Canonicalize(*document).text;
    document.Reset(); // a large one leaves no room for its twin
    if (ReadBack(file) == canonical)
        return file.Place();
    Fail(path, L"not written: what was written reads back as another document");
    return false;
}

} // namespace tool
