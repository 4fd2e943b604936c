#include "xml/XMLEscape.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace
{

// The escaping as it is defined: six replacements of the whole text, one after the other.
std::wstring ReplacedAll(std::wstring text, wchar_t const * from, wchar_t const * to)
{
    std::wstring const pattern = from;
    std::wstring const replacement = to;
    for (std::size_t at = text.find(pattern); at != std::wstring::npos;
         at = text.find(pattern, at + replacement.size()))
        text.replace(at, pattern.size(), replacement);
    return text;
}

std::wstring EscapedByPasses(std::wstring text)
{
    text = ReplacedAll(text, L"&", L"&amp;");
    text = ReplacedAll(text, L"<", L"&lt;");
    text = ReplacedAll(text, L">", L"&gt;");
    text = ReplacedAll(text, L"'", L"&apos;");
    text = ReplacedAll(text, L"\"", L"&quot;");
    return ReplacedAll(text, L"\n", L"&lt;EOL&gt;");
}

std::wstring UnescapedByPasses(std::wstring text)
{
    text = ReplacedAll(text, L"&amp;", L"&");
    text = ReplacedAll(text, L"&lt;", L"<");
    text = ReplacedAll(text, L"&gt;", L">");
    text = ReplacedAll(text, L"&apos;", L"'");
    text = ReplacedAll(text, L"&quot;", L"\"");
    return ReplacedAll(text, L"<EOL>", L"\n");
}

TEST(EscapeTest, EqualsTheSixPasses)
{
    std::mt19937 random(7);
    wchar_t const characters[] = L"ab&<>'\";\nEOLamplt\u20AC\xD83D";
    for (int round = 0; round < 20000; ++round)
    {
        // The offset moves the text over all alignments of the blocks that are scanned.
        std::size_t const offset = random() % 9;
        std::wstring text(offset + random() % 40, L'&');
        for (std::size_t i = offset; i < text.size(); ++i)
            text[i] = characters[random() % (sizeof characters / sizeof characters[0] - 1)];
        wchar_t const * const part = text.c_str() + offset;
        vek::EscapeMeasure const measure = vek::MeasureEscape(part);
        std::wstring const expected = EscapedByPasses(part);
        ASSERT_EQ(measure.length, text.size() - offset);
        ASSERT_EQ(measure.escapedLength, expected.size());
        CVekString<wchar_t> escaped;
        ASSERT_TRUE(vek::EscapeTo(part, escaped));
        ASSERT_STREQ(escaped, expected.c_str());
        CVekString<wchar_t> plain(part);
        vek::Unescape(plain);
        ASSERT_STREQ(plain, UnescapedByPasses(part).c_str()) << part;
    }
}

TEST(EscapeTest, MeasuresATextAtAnOddAddress)
{
    wchar_t const text[] = L"<odd>";
    char bytes[sizeof text + 1];
    memcpy(bytes + 1, text, sizeof text);
    vek::EscapeMeasure const measure = vek::MeasureEscape(reinterpret_cast<wchar_t const *>(bytes + 1));
    EXPECT_EQ(measure.length, 5U);
    EXPECT_EQ(measure.escapedLength, 11U);
}

TEST(EscapeTest, UndoesTheAmpersandFirst)
{
    CVekString<wchar_t> text(L"&amp;lt; &lt;EOL&gt;");
    vek::Unescape(text);
    EXPECT_STREQ(text, L"< \n") << "deliberate: the order of the passes";
}

} // namespace
