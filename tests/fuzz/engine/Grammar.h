// Changes that know what inputs look like inside.
#pragma once

#include <random>
#include <string>

namespace fuzz
{

class Dice
{
public:
    explicit Dice(unsigned int seed) : m_random(seed) {}

    unsigned int Any() { return static_cast<unsigned int>(m_random()); }
    // From 0 up to the limit, the limit excluded.
    std::size_t Below(std::size_t limit) { return limit ? m_random() % limit : 0; }
    template <class T, std::size_t COUNT>
    T const & Of(T const (&all)[COUNT])
    {
        return all[Below(COUNT)];
    }

private:
    std::mt19937 m_random;
};

// What a counter or a length lies with.
std::uint32_t OddNumber(Dice & dice);

// One change to a document that leaves its tags balanced if they were: elements and what stands between them come, go
// and get wrapped, elements of another document among them; attributes and declarations come.
void ChangeXml(std::string & text, std::string const & other, Dice & dice);

// An entry of typed data more, twice or less, each with the right lengths and their number put right; at times one of
// those lies. The input is the target's: a byte for the order, then the file.
void ChangeData(std::string & input, Dice & dice);

} // namespace fuzz
