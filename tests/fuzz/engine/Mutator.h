// Makes new inputs out of known ones.
#pragma once

#include <random>
#include <string>
#include <vector>

namespace fuzz
{

class Mutator
{
public:
    Mutator(char const * const * words, unsigned int seed);

    // The input with one to eight changes, no longer than the limit. The corpus gives the parts of other inputs.
    std::string Change(std::string input, std::vector<std::string> const & corpus, std::size_t longest);
    // From 0 up to the limit, the limit excluded.
    std::size_t Below(std::size_t limit) { return limit ? m_random() % limit : 0; }

private:
    void ChangeOnce(std::string & input, std::vector<std::string> const & corpus);
    void ChangeNumber(std::string & input);
    void CopyPart(std::string & input, std::string const & from);

    std::vector<std::string> m_words;
    std::mt19937 m_random;
};

} // namespace fuzz
