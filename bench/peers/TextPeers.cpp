#include "Peers.h"
#include "VekText.h"

#include <memory>
#include <random>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace bench
{

namespace
{

using String = CVekString<wchar_t>;

constexpr int PIECES = 10000;
constexpr wchar_t const * PIECE[] = {L"<", L"vertex", L" id=", L"\"v12\"", L" x=", L"\"0.125\"", L"/>", L"\n"};

/// The seconds for one of so many appends to a string that begins empty. The text stays in result.
template <class Text, class Append>
Work Appending(std::shared_ptr<Text> result, Append append)
{
    return [result, append]
    {
        Stopwatch watch;
        Text text;
        for (int i = 0; i < PIECES; ++i)
            append(text, i);
        double const seconds = watch.Lap() / PIECES;
        *result = text;
        return seconds;
    };
}

template <class Append>
void AddAppend(Duels & duels, char const * what, Append append)
{
    auto const own = std::make_shared<String>();
    auto const standard = std::make_shared<std::wstring>();
    Work const appendOwn = Appending(own, append), appendStandard = Appending(standard, append);
    appendOwn(), appendStandard();
    duels.Expect(*own == standard->c_str(), what);
    duels.Add(what, "std::wstring", 0, appendOwn, appendStandard);
}

void AddCompare(Duels & duels, char const * what, int length, int count)
{
    std::wstring lower, upper;
    for (int i = 0; i < length; ++i)
    {
        lower += static_cast<wchar_t>(L'a' + i % 26);
        upper += static_cast<wchar_t>(L'A' + i % 26);
    }
    auto const first = std::make_shared<String>(lower.c_str()), second = std::make_shared<String>(upper.c_str());
    auto const sum = std::make_shared<int>(0);
    duels.Expect(first->Compare(*second, false) == 0 &&
                     CompareStringOrdinal(*first, length, *second, length, TRUE) == CSTR_EQUAL,
                 what);
    duels.Add(what, "CompareStringOrdinal", 0, Repeat(count, [=] { *sum += first->Compare(*second, false); }),
              Repeat(count, [=] { *sum += CompareStringOrdinal(*first, length, *second, length, TRUE); }));
}

/// Looks for a text that stands at the end only.
void AddFind(Duels & duels, char const * what, wchar_t const * pattern)
{
    std::mt19937 random(1); // NOLINT(cert-msc32-c): the same text each time
    std::wstring text;
    while (text.size() < 500000)
        text += L"eeetttaaoinshrdlucm    "[random() % 23];
    text += pattern;
    auto const own = std::make_shared<String>(text.c_str());
    auto const standard = std::make_shared<std::wstring>(text);
    auto const sum = std::make_shared<int>(0);
    duels.Expect(own->Find(pattern) == static_cast<int>(standard->find(pattern)), what);
    duels.Add(what, "std::wstring", 0, Repeat(5, [=] { *sum += own->Find(pattern); }),
              Repeat(5, [=] { *sum += static_cast<int>(standard->find(pattern)); }));
}

} // namespace

void AddText(Duels & duels)
{
    AddAppend(duels, "append short pieces",
              [](auto & text, int i) { text += PIECE[static_cast<std::size_t>(i) % std::size(PIECE)]; });
    AddAppend(duels, "append single characters",
              [](auto & text, int i) { text += static_cast<wchar_t>(L'a' + i % 26); });
    AddCompare(duels, "compare without case, 1,000 characters", 1000, 2000);
    AddCompare(duels, "compare without case, 12 characters", 12, 50000);
    AddFind(duels, "find 6 characters, the first one rare", L"zodiac");
    AddFind(duels, "find 6 characters, the first one common", L"e zodi");
}

} // namespace bench
