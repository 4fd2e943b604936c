#include "fuzz/engine/Mutator.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace fuzz
{

Mutator::Mutator(Target const & target, unsigned int seed) : m_grammar(target.grammar), m_dice(seed)
{
    for (char const * const * words = target.words; words && *words; ++words)
        m_words.push_back(*words);
}

std::string Mutator::Change(std::string input, std::vector<std::string> const & corpus, std::size_t longest)
{
    // Most stay short: they say as much in less time.
    longest = Below(8) ? std::min(longest, std::max(SHORT_INPUT, input.size())) : longest;
    // Where there is a grammar, a third of the inputs changes by it alone, a third by half.
    std::size_t const sensible = m_grammar == Grammar::None ? 0 : Below(3) * 4;
    for (std::size_t changes = std::size_t{1} << Below(4); changes > 0; --changes)
    {
        std::string changed = input;
        if (Below(8) >= sensible)
            ChangeOnce(changed, corpus);
        else if (m_grammar == Grammar::Xml)
            ChangeXml(changed, corpus[Below(corpus.size())], m_dice);
        else
            ChangeData(changed, m_dice);
        if (changed.size() <= longest)
            input = std::move(changed);
    }
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
            input[at] = static_cast<char>(m_dice.Any());
        break;
    case 2:
        input.erase(at, count);
        break;
    case 3:
        input.insert(at, Below(4) + 1, static_cast<char>(m_dice.Any()));
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
    if (input.size() < 4)
        return;
    std::size_t const at = Below(input.size() - 3);
    std::uint32_t number;
    std::memcpy(&number, input.data() + at, sizeof number);
    number = Below(2) ? OddNumber(m_dice) : number + static_cast<std::uint32_t>(Below(9)) - 4;
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
