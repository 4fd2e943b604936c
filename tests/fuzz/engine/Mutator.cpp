#include "fuzz/engine/Mutator.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace fuzz
{

Mutator::Mutator(char const * const * words, unsigned int seed) : m_random(seed)
{
    for (; words && *words; ++words)
        m_words.push_back(*words);
}

std::string Mutator::Change(std::string input, std::vector<std::string> const & corpus, std::size_t longest)
{
    for (std::size_t changes = std::size_t{1} << Below(4); changes > 0; --changes)
        ChangeOnce(input, corpus);
    if (input.size() > longest)
        input.resize(longest);
    return input;
}

void Mutator::ChangeOnce(std::string & input, std::vector<std::string> const & corpus)
{
    std::size_t const at = Below(input.size() + 1);
    std::size_t const count = std::min(Below(16) == 0 ? Below(input.size() + 1) : Below(8) + 1, input.size() - at);
    switch (Below(10))
    {
    case 0:
        if (at < input.size())
            input[at] = static_cast<char>(input[at] ^ (1 << Below(8)));
        break;
    case 1:
        if (at < input.size())
            input[at] = static_cast<char>(m_random());
        break;
    case 2:
        input.erase(at, count);
        break;
    case 3:
        input.insert(at, Below(4) + 1, static_cast<char>(m_random()));
        break;
    case 4: // a part of its own, often many times over
        input.insert(Below(input.size() + 1), input.substr(at, count));
        break;
    case 5:
        CopyPart(input, corpus[Below(corpus.size())]);
        break;
    case 6:
        ChangeNumber(input);
        break;
    case 7: // the front of one and the back of another
    {
        std::string const & other = corpus[Below(corpus.size())];
        input = input.substr(0, at) + other.substr(Below(other.size() + 1));
        break;
    }
    default:
        if (!m_words.empty())
            input.replace(at, Below(2) ? count : 0, m_words[Below(m_words.size())]);
    }
}

void Mutator::ChangeNumber(std::string & input)
{
    static constexpr std::uint32_t values[] = {0,          1,          2,          0x7F,    0x80,
                                               0xFF,       0x400,      0x401,      0x7FFF,  0xFFFF,
                                               0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0x10000, 0x40000000};
    if (input.size() < 4)
        return;
    std::size_t const at = Below(input.size() - 3);
    std::uint32_t number;
    std::memcpy(&number, input.data() + at, sizeof number);
    number = Below(2) ? values[Below(std::size(values))] : number + static_cast<std::uint32_t>(Below(9)) - 4;
    std::memcpy(input.data() + at, &number, std::size_t{1} << Below(3));
}

void Mutator::CopyPart(std::string & input, std::string const & from)
{
    std::size_t const begin = Below(from.size() + 1);
    std::string const part = from.substr(begin, Below(from.size() - begin + 1));
    std::size_t const at = Below(input.size() + 1);
    if (Below(2))
        input.insert(at, part);
    else
        input.replace(at, part.size(), part);
}

} // namespace fuzz
