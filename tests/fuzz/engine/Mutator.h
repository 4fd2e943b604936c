// Makes new inputs out of known ones.
#pragma once

#include "fuzz/Target.h"
#include "fuzz/engine/Grammar.h"

#include <vector>

namespace fuzz
{

constexpr std::size_t SHORT_INPUT = 250;

class Mutator
{
public:
    Mutator(Target const & target, unsigned int seed);

    // The input with one to eight changes, no longer than the limit. The corpus gives the parts of other inputs.
    std::string Change(std::string input, std::vector<std::string> const & corpus, std::size_t longest);
    std::size_t Below(std::size_t limit) { return m_dice.Below(limit); }

private:
    void ChangeOnce(std::string & input, std::vector<std::string> const & corpus);
    void ChangeNumber(std::string & input);
    void CopyPart(std::string & input, std::string const & from);

    Grammar m_grammar;
    std::vector<std::string> m_words;
    Dice m_dice;
};

} // namespace fuzz
