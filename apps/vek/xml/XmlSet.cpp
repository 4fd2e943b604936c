#include "xml/XmlSet.h"

#include "Console.h"
#include "FileBytes.h"
#include "StandardFiles.h"
#include "Utf8.h"
#include "xml/XmlCanonical.h"

#include <algorithm>

namespace tool
{

namespace
{

/// Adds the edits of a list: a line for each, its path, attribute and value separated by tabs.
bool ReadList(std::wstring const & path, std::vector<XmlEdit> & edits)
{
    std::string bytes;
    if (!ReadBytes(path, bytes))
        return false;
    std::wstring const text = FromUtf8(bytes.starts_with("\xEF\xBB\xBF") ? bytes.substr(3) : bytes);
    unsigned int number = 1;
    for (std::size_t begin = 0, end = 0; begin < text.size(); begin = end + 1, ++number)
    {
        end = std::min(text.find(L'\n', begin), text.size());
        std::wstring line = text.substr(begin, end - begin);
        if (line.ends_with(L'\r'))
            line.pop_back();
        if (line.empty())
            continue;
        std::size_t const name = line.find(L'\t');
        std::size_t const value = name == line.npos ? name : line.find(L'\t', name + 1);
        if (value == line.npos)
        {
            FailAt(path, number, 1, L"no PATH, ATTRIBUTE and VALUE with tabs between them");
            return false;
        }
        edits.push_back({XmlEdit::Kind::Set, line.substr(0, name), line.substr(name + 1, value - name - 1),
                         line.substr(value + 1)});
    }
    return true;
}

bool ReadsAs(std::string const & bytes, std::string const & canonical)
{
    CVekRef<IVekXMLDocument> const document = ParseXml(bytes);
    return document && Canonicalize(*document).text == canonical;
}

} // namespace

int RunXmlEdits(EditRequest const & request)
{
    std::unique_ptr<XmlSource> const source = XmlSource::Load(request.path);
    std::vector<XmlEdit> edits = request.edits;
    auto const read = [&edits](std::wstring const & list) { return ReadList(list, edits) ? EXIT_DONE : EXIT_FAILED; };
    if (!source || (!request.list.empty() && WithInput(request.list, read) != EXIT_DONE))
        return EXIT_FAILED;
    XmlChange change(*source, request.creates);
    for (XmlEdit const & edit : edits)
    {
        if (!change.Add(edit))
            return EXIT_FAILED;
    }
    if (!change.Finish())
        return EXIT_FAILED;
    XmlPatch const & patch = change.Patch();
    std::string const bytes = patch.Apply(source->Bytes());
    std::string const canonical = Canonicalize(source->Document()).text;
    source->ReleaseDocument(); // a large one leaves no room for its twin
    if (!ReadsAs(bytes, canonical))
        return Fail(request.path, L"not changed: the new file would not be read as what was asked for");
    if (request.isDryRun)
    {
        Console::Out().Write(patch.Describe(request.path, source->Bytes(), source->Encoding()));
        return EXIT_DONE;
    }
    bool const isInPlace = request.target == request.path;
    if (isInPlace && patch.IsEmpty())
        return EXIT_DONE;
    return ReplaceBytes(request.target, bytes, isInPlace ? &source->Bytes() : nullptr) ? EXIT_DONE : EXIT_FAILED;
}

} // namespace tool
