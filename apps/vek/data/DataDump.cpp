#include "data/DataDump.h"

#include "Console.h"
#include "LibraryText.h"
#include "data/DataText.h"

namespace tool
{

namespace
{

constexpr std::size_t LONGEST = 120;

std::wstring EntryLine(CVekTypedDataEntry const & entry)
{
    VEK_VARIANT const & value = entry.Val();
    std::wstring type(TypeName(value.GetType()));
    if (type.empty())
        type = Format(L"type %d", static_cast<int>(value.GetType()));
    type.resize(std::max<std::size_t>(type.size(), 7), L' ');
    std::wstring line = type + L"  " + Printable(EscapeText(View(entry.GetName())), LONGEST);
    std::wstring const text = Printable(ValueText(value, LONGEST), LONGEST);
    if (value.GetType() == VEK_DT_BUFFER)
        line += Format(L" = %d bytes ", value.GetBufferSize()) + text;
    else if (!text.empty() || value.GetType() == VEK_DT_STRINGA || value.GetType() == VEK_DT_STRINGW)
        line += L" = " + text;
    return line + L"\n";
}

} // namespace

int RunDataDump(std::wstring const & path, DataOptions const & options)
{
    CVekTypedDataReader reader;
    unsigned int bytesBehind = 0;
    bool const loaded = LoadData(path, options, reader, bytesBehind);
    for (int i = 0; i < reader.GetNumEntries(); ++i)
        Console::Out().Write(EntryLine(*reader.GetEntry(i)));
    if (loaded && bytesBehind != 0)
        Note(path, Format(L"%u bytes follow behind the last entry", bytesBehind));
    return loaded ? EXIT_DONE : EXIT_FAILED;
}

} // namespace tool
