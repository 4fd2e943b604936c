// Formats for scans of a memory stream: every argument gets what the runtime gives it, and no argument is missed.

#include "VekLib.h"

#include "fuzz/Target.h"

#include <cstdio>
#include <memory>
#include <utility>
#include <vector>

namespace fuzz
{

namespace
{

constexpr std::size_t MOST = 64; // arguments of a scan
constexpr std::size_t PLACES = MOST + 6;
constexpr std::size_t PLACE_BYTES = 64;

// What is scanned into; each place a block of its own, so that what is written behind it shows.
struct Places
{
    Places()
    {
        for (auto & place : places)
        {
            place.reset(new char[PLACE_BYTES]);
            std::memset(place.get(), 0x55, PLACE_BYTES);
        }
    }
    std::unique_ptr<char[]> places[PLACES];
};

template <class T>
struct Format
{
    std::basic_string<T> text;
    std::vector<std::size_t> sizes; // of each argument: 0 for a place, otherwise the number itself
};

template <class T>
void Append(std::basic_string<T> & text, char const * from)
{
    for (; *from; ++from)
        text += static_cast<T>(*from);
}

template <class T>
Format<T> MakeFormat(Reader & reader)
{
    static constexpr char const * literals[] = {"", " ", ",", "a", "%%", "\t", "1", "]"};
    static constexpr char const * widths[] = {"", "", "", "1", "3", "12"};
    static constexpr char const * prefixes[] = {"", "", "", "h", "l", "ll", "L", "w"};
    static constexpr char const * sets[] = {"[a-c]", "[^,]", "[]x]", "[^]1]", "[0-9a]"};
    Format<T> format;
    for (unsigned parts = reader.Below(16) ? reader.Below(9) : reader.Below(2 * PLACES / 3); parts > 0; --parts)
    {
        Append(format.text, literals[reader.Below(std::size(literals))]);
        bool const isKept = reader.Below(5) != 0;
        unsigned const kind = reader.Below(20);
        Append(format.text, isKept ? "%" : "%*");
        bool const isText = kind >= 14;
        Append(format.text, isText ? "" : widths[reader.Below(std::size(widths))]);
        Append(format.text, prefixes[reader.Below(kind >= 18 ? 3 : std::size(prefixes))]);
        if (kind >= 18)
            Append(format.text, sets[reader.Below(std::size(sets))]);
        else
            format.text += static_cast<T>("diouxXeEfgGpniscCS"[kind]);
        if (isKept && format.sizes.size() + 2 < PLACES)
            format.sizes.push_back(0);
        else if (isKept)
            break;
        if (isKept && isText)
            format.sizes.push_back(reader.Below(12) + 1);
    }
    return format;
}

template <class Call>
void CallWith(std::vector<std::size_t> const & sizes, Places & places, Call call)
{
    void * arguments[PLACES] = {};
    for (std::size_t i = 0; i < sizes.size(); ++i)
        arguments[i] = sizes[i] ? reinterpret_cast<void *>(sizes[i]) : places.places[i].get();
    [&]<std::size_t... Index>(std::index_sequence<Index...>)
    {
        call(arguments[Index]...);
    }
    (std::make_index_sequence<PLACES>{});
}

int Scan(char const * text, char const * format, auto... arguments)
{
    return sscanf_s(text, format, arguments...);
}
int Scan(wchar_t const * text, wchar_t const * format, auto... arguments)
{
    return swscanf_s(text, format, arguments...);
}

template <class T>
void RunFormat(Reader & reader)
{
    Format<T> const format = MakeFormat<T>(reader);
    std::basic_string<T> text;
    for (std::uint8_t const byte : reader.Rest())
        text += static_cast<T>(byte < 0xF0 ? byte : byte * 0x101);
    CVekMemoryIOStream stream;
    auto const size = static_cast<unsigned int>((text.size() + 1) * sizeof(T));
    Check(stream.Open(nullptr, VEK_IO_READ, size), "it opens");
    std::memcpy(stream.GetBuffer(), text.c_str(), size);
    Places scanned, expected;
    bool answer = false;
    CallWith(format.sizes, scanned, [&](auto... all) { answer = stream.Scanf(format.text.c_str(), all...); });
    bool const fits = format.sizes.size() <= MOST;
    Check(answer == fits && stream.GetPosition() == 0, "a scan of as many arguments as there may be");
    if (fits)
        CallWith(format.sizes, expected, [&](auto... all) { Scan(text.c_str(), format.text.c_str(), all...); });
    for (std::size_t i = 0; i < PLACES; ++i)
        Check(std::memcmp(scanned.places[i].get(), expected.places[i].get(), PLACE_BYTES) == 0,
              "an argument gets what the runtime gives it");
}

} // namespace

void RunScan(Bytes input)
{
    Reader reader(input);
    reader.Below(2) ? RunFormat<wchar_t>(reader) : RunFormat<char>(reader);
}

} // namespace fuzz
