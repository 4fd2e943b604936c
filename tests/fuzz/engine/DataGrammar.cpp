#include "fuzz/engine/Grammar.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace fuzz
{

namespace
{

// Of each type's numbers, and how many those are; texts and buffers have a length of their own.
constexpr std::size_t SIZES[] = {0, 1, 1, 1, 2, 2, 2, 4, 4, 4, 8, 1, 2, 1, 4, 4, 4, 8, 4, 8, 0, 1};
constexpr std::size_t TYPES = std::size(SIZES), FIRST_TEXT = 11, LAST_TEXT = 12, FIRST_MATRIX = 18, BUFFER = 21;

std::string Stored(std::uint32_t number, bool reversed)
{
    std::string bytes(sizeof number, '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    if (reversed)
        std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

bool HasLength(std::size_t type)
{
    return type == FIRST_TEXT || type == LAST_TEXT || type == BUFFER;
}

std::size_t CountOf(std::size_t type)
{
    return type >= FIRST_MATRIX ? 16 : type > LAST_TEXT ? 4 : 1;
}

std::string MakeEntry(Dice & dice, bool reversed)
{
    std::string const name = std::string("\0a\0B\0c", 6).substr(0, 2 * dice.Below(4));
    std::size_t const type = dice.Below(TYPES);
    std::string entry = Stored(static_cast<std::uint32_t>(name.size() / 2), reversed);
    for (std::size_t i = 0; i < name.size(); i += 2)
        entry += reversed ? name.substr(i, 2) : std::string{name[i + 1], name[i]};
    entry += Stored(static_cast<std::uint32_t>(type), reversed);
    std::size_t const count = HasLength(type) ? dice.Below(6) : CountOf(type);
    if (HasLength(type))
        entry += Stored(static_cast<std::uint32_t>(count), reversed);
    for (std::size_t i = count * SIZES[type]; i > 0; --i)
        entry += static_cast<char>(dice.Below(3) ? dice.Any() % 3 : dice.Any());
    return entry;
}

// The entries of a file, as far as they are whole, and where its lengths, types and counts stand.
struct Layout
{
    Layout(std::string const & input, bool isReversed) : reversed(isReversed)
    {
        for (std::size_t at = 5; at < input.size();)
        {
            std::size_t end = at;
            std::size_t const name = Take(input, end) * 2;
            end += std::min(name, input.size());
            std::size_t const type = Take(input, end);
            std::size_t const count = type < TYPES && HasLength(type) ? Take(input, end) : CountOf(type);
            end += type < TYPES ? std::min(count, input.size()) * SIZES[type] : 0;
            if (end > input.size())
                return;
            entries.push_back(input.substr(at, end - at));
            at = end;
        }
    }

    std::uint32_t Take(std::string const & input, std::size_t & at)
    {
        std::uint32_t number = 0;
        if (at + 4 <= input.size())
        {
            std::string bytes = input.substr(at, 4);
            if (reversed)
                std::reverse(bytes.begin(), bytes.end());
            std::memcpy(&number, bytes.data(), sizeof number);
        }
        at += 4;
        return number;
    }

    bool reversed;
    std::vector<std::string> entries;
};

} // namespace

std::uint32_t OddNumber(Dice & dice)
{
    static constexpr std::uint32_t values[] = {0,          1,          2,          0x7F,    0x80,
                                               0xFF,       0x400,      0x401,      0x7FFF,  0xFFFF,
                                               0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0x10000, 0x40000000};
    return dice.Of(values);
}

void ChangeData(std::string & input, Dice & dice)
{
    if (input.empty())
        input = "\1";
    bool const reversed = static_cast<unsigned char>(input[0]) % 2 != 0;
    std::vector<std::string> entries = Layout(input, reversed).entries;
    std::size_t const at = dice.Below(entries.size() + 1);
    auto const place = entries.begin() + static_cast<std::ptrdiff_t>(at);
    if (at == entries.size() || dice.Below(2))
        entries.insert(place, MakeEntry(dice, reversed));
    else if (dice.Below(2))
        entries.insert(place, std::string(*place));
    else
        entries.erase(place);
    input.resize(1);
    input += Stored(static_cast<std::uint32_t>(entries.size()), reversed);
    std::size_t const liar = dice.Below(2) ? dice.Below(entries.size() + 1) : entries.size() + 1;
    for (std::size_t i = 0; i < entries.size(); ++i)
    {
        // The length of its name, its type or the length of its value, when the name is short.
        std::size_t const field = dice.Below(3) * 4;
        if (i == liar && field + 4 <= entries[i].size())
            entries[i].replace(field, 4, Stored(OddNumber(dice), reversed));
        input += entries[i];
    }
    if (liar == entries.size())
        input.replace(1, 4, Stored(OddNumber(dice), reversed));
}

} // namespace fuzz
