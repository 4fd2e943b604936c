// What is fed with arbitrary bytes: by the fuzzer of tools/fuzz.sh, and by the tests that replay the corpus and run
// random sequences. A target takes its input apart as it likes and checks every answer.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>

namespace fuzz
{

using Bytes = std::span<std::uint8_t const>;

// What a sensible change looks like.
enum class Grammar
{
    None,
    Xml,
    Data
};

struct Target
{
    char const * name;
    void (*run)(Bytes input);
    // What inputs of this kind are made of, a null behind the last.
    char const * const * words;
    // An input that says much, where random bytes say little; null for none.
    char const * const * seeds;
    // Whether any bytes are a sequence of operations, for the test against a model.
    bool isModel;
    Grammar grammar;
    // How long an input gets in the fuzzer. Short sequences say as much as long ones, and in less time.
    std::size_t longest;
};

extern std::span<Target const> const targets;
void RunXml(Bytes input);
void RunLossless(Bytes input);
void RunEncodings(Bytes input);
void RunSet(Bytes input);
void RunScene(Bytes input);
void RunScan(Bytes input);
void RunPaths(Bytes input);
void RunLexer(Bytes input);
void RunData(Bytes input);
void RunPackets(Bytes input);

// Ends the process when the condition does not hold; what is shown names it.
void Check(bool holds, char const * what);

// Takes an input apart, zeros behind its end.
class Reader
{
public:
    explicit Reader(Bytes input) : m_rest(input) {}

    bool AtEnd() const { return m_rest.empty(); }
    unsigned Byte()
    {
        if (m_rest.empty())
            return 0;
        unsigned const byte = m_rest[0];
        m_rest = m_rest.subspan(1);
        return byte;
    }
    // From 0 up to the limit, the limit excluded.
    unsigned Below(unsigned limit) { return Byte() % limit; }
    // Mostly small, at times beyond every size.
    int Number()
    {
        unsigned const byte = Byte();
        if (byte < 200)
            return static_cast<int>(byte % 40) - 3;
        return static_cast<int>(byte == 255 ? 0x7FFFFFFFu : byte == 254 ? 0x80000000u : byte * 31);
    }
    // A text of few different characters, and of any at times.
    template <class T>
    std::basic_string<T> Text(unsigned longest)
    {
        std::basic_string<T> text;
        unsigned const length = Below(longest + 1);
        for (unsigned i = 0; i < length; ++i)
        {
            unsigned const byte = Byte();
            auto const unit = static_cast<T>(byte < 128 ? "aAbBcC.\\/:{ee"[byte % 13] : byte < 250 ? byte : byte * 257);
            text += unit ? unit : static_cast<T>('0');
        }
        return text;
    }
    Bytes Rest()
    {
        Bytes const rest = m_rest;
        m_rest = {};
        return rest;
    }

private:
    Bytes m_rest;
};

} // namespace fuzz
