#include "xml/XmlSave.h"

#include "VekLib.h"

#include "Console.h"
#include "FileBytes.h"
#include "FileErrors.h"
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

/// Tells the user why when it fails.
bool Write(std::wstring const & path, NewFile const & file, IVekXMLDocument & document, int indentation)
{
    CVekXMLWriter writer;
    writer.SetKeepAll(true);
    writer.SetIndentation(indentation);
    if (writer.WriteXMLFile(file.Path().c_str(), &document))
        return true;
    VekXMLWriteError const error = writer.GetError();
    std::wstring const what = *error.what ? L": " + Printable(error.what) : std::wstring();
    Fail(path,
         error.code == VEK_XML_WRITE_ERROR_FILE ? WhyUnwritable(file.Path()) : L"not written: " + (error.text + what));
    return false;
}

/// The canonical form of what was written, its layout left out; empty when it is no XML.
std::string ReadBack(NewFile const & file, unsigned int * codePage)
{
    std::string bytes;
    CVekRef<IVekXMLDocument> document;
    if (ReadBytes(file.Path(), bytes))
        document = ParseXml(bytes, codePage);
    if (!document)
        return {};
    RemoveLayout(*document->GetRootElement());
    return Canonicalize(*document).text;
}

} // namespace

bool SaveXml(CVekRef<IVekXMLDocument> document, std::wstring const & path, int indentation, unsigned int * codePage)
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
    if (ReadBack(file, codePage) == canonical)
        return file.Place();
    Fail(path, L"not written: what was written reads back as another document");
    return false;
}

} // namespace tool
