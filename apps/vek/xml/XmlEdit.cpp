#include "xml/XmlEdit.h"

#include "Console.h"
#include "FileErrors.h"
#include "LibraryText.h"
#include "Platform.h"
#include "Utf8.h"
#include "XmlFile.h"
#include "xml/LineBreaks.h"
#include "xml/XmlLoss.h"

namespace tool
{

namespace
{

/// The element, or null after telling the user that there is none.
IVekXMLElement * FindElement(IVekXMLDocument & document, std::wstring const & path, std::wstring const & elementPath,
                             bool create)
{
    IVekXMLElement * const element = document.FindElementFromPath(elementPath.c_str(), create);
    if (!element)
        Fail(path, L"no element \"" + Printable(elementPath, 200) + L"\"");
    return element;
}

std::wstring ElementText(std::wstring const & elementPath)
{
    return elementPath.find_first_not_of(L"/\\") == std::wstring::npos ? L"the root element"
                                                                       : L"\"" + Printable(elementPath, 200) + L"\"";
}

/// Whether XML has a place for every character of a value.
bool IsXmlText(std::wstring_view text)
{
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        wchar_t const unit = text[i];
        if (IsHighSurrogate(unit) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]))
            ++i;
        else if (IsHighSurrogate(unit) || IsLowSurrogate(unit) || unit >= 0xFFFE ||
                 (unit < 0x20 && unit != L'\t' && unit != L'\n' && unit != L'\r'))
            return false;
    }
    return true;
}

/// Whether both names lead to one existing file.
bool IsSameFile(std::wstring const & first, std::wstring const & second)
{
    auto const identify = [](std::wstring const & path, BY_HANDLE_FILE_INFORMATION & information)
    {
        HANDLE const file = CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
        if (file == INVALID_HANDLE_VALUE)
            return false;
        bool const known = GetFileInformationByHandle(file, &information) != 0;
        CloseHandle(file);
        return known;
    };
    BY_HANDLE_FILE_INFORMATION a, b;
    return identify(first, a) && identify(second, b) && a.dwVolumeSerialNumber == b.dwVolumeSerialNumber &&
           a.nFileIndexHigh == b.nFileIndexHigh && a.nFileIndexLow == b.nFileIndexLow;
}

/// Restores what the file still tells of its line breaks, and describes what the new file will lack; false, after
/// telling the user, when it would replace a file whose text is lost with it.
bool AcceptLoss(std::wstring const & path, std::wstring const & target, IVekXMLDocument & document, bool dropText,
                std::wstring & lost)
{
    XmlLoss loss;
    if (!FindLoss(path, CountXml(document.GetRootElement(), false), loss))
    {
        Fail(path, L"can't be read again: " + LastErrorText());
        return false;
    }
    RestoreLineBreaks(document.GetRootElement(), loss.lineBreaks);
    lost = loss.Describe();
    if (!loss.IsData() || dropText || !IsSameFile(path, target))
        return true;
    Fail(path,
         L"not replaced, for what would be lost with it: " + lost + L"; write to another file, or add --drop-text");
    return false;
}

int Save(CVekRef<IVekXMLDocument> document, std::wstring const & target, SaveOptions const & options,
         std::wstring const & lost)
{
    if (!SaveXml(std::move(document), target, options))
        return EXIT_FAILED;
    if (!lost.empty())
        Note(target, L"written without " + lost);
    return EXIT_DONE;
}

} // namespace

int RunXmlGet(std::wstring const & path, std::wstring const & elementPath, std::wstring const & attribute)
{
    CVekRef<IVekXMLDocument> const document = LoadXml(path);
    if (!document)
        return EXIT_FAILED;
    IVekXMLElement const * const element = FindElement(*document, path, elementPath, false);
    if (!element)
        return EXIT_FAILED;
    CVekString<wchar_t> value;
    if (!element->GetAttributeValue(attribute.c_str(), value, L""))
        return Fail(path, ElementText(elementPath) + L" has no attribute \"" + Printable(attribute, 200) + L"\"");
    Console & out = Console::Out();
    out.Write(out.IsConsole() ? Printable(View(value)) : std::wstring(View(value)));
    out.Write(L"\n");
    return EXIT_DONE;
}

int RunXmlSet(SetRequest const & request, EditOptions const & options)
{
    if (!IsXmlText(request.value))
        return Fail(request.path, L"not changed: the value holds a character that XML has no place for");
    CVekRef<IVekXMLDocument> document = LoadXml(request.path);
    if (!document)
        return EXIT_FAILED;
    std::wstring const & target = request.target.empty() ? request.path : request.target;
    std::wstring lost;
    if (!AcceptLoss(request.path, target, *document, options.dropText, lost))
        return EXIT_FAILED;
    IVekXMLElement * const element = FindElement(*document, request.path, request.elementPath, request.create);
    if (!element)
        return EXIT_FAILED;
    if (!element->SetAttributeValue(request.attribute.c_str(), VEK_VARIANT(request.value.c_str()), true))
        return Fail(request.path, L"the attribute can't be set");
    std::wstring const stored = EscapeValue(request.value);
    element->SetAttributeValue(element->FindAttributeIndex(request.attribute.c_str()), VEK_VARIANT(stored.c_str()));
    return Save(std::move(document), target, options.save, lost);
}

int RunXmlFormat(std::wstring const & path, std::wstring const & target, EditOptions const & options)
{
    CVekRef<IVekXMLDocument> document = LoadXml(path);
    std::wstring lost;
    if (!document || !AcceptLoss(path, target, *document, options.dropText, lost))
        return EXIT_FAILED;
    return Save(std::move(document), target, options.save, lost);
}

} // namespace tool
