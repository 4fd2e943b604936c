#include "xml/XMLEscape.h"

#include "support/GuardHeap.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace
{

std::wstring ReplacedAll(std::wstring text, std::wstring const & pattern, std::wstring const & replacement)
{
    for (std::size_t at = text.find(pattern); at != std::wstring::npos;
         at = text.find(pattern, at + replacement.size()))
        text.replace(at, pattern.size(), replacement);
    return text;
}

// The escaping as it is defined: six replacements of the whole text, one after the other.
std::wstring ByPasses(std::wstring text, bool undo)
{
    std::pair<wchar_t const *, wchar_t const *> const passes[] = {
        {L"&", L"&amp;"}, {L"<", L"&lt;"}, {L">", L"&gt;"}, {L"'", L"&apos;"}, {L"\"", L"&quot;"}};
    for (auto const & [plain, escaped] : passes)
        text = undo ? ReplacedAll(text, escaped, plain) : ReplacedAll(text, plain, escaped);
    return undo ? ReplacedAll(text, L"<EOL>", L"\n") : ReplacedAll(text, L"\n", L"&lt;EOL&gt;");
}

TEST(EscapeTest, EqualsTheSixPasses)
{
    std::mt19937 random(7);
    wchar_t const characters[] = L"ab&<>'\";\nEOLamplt\u20AC\xD83D";
    for (int round = 0; round < (VekGuard::Active ? 2000 : 20000); ++round)
    {
        // The offset moves the text over all alignments of the blocks that are scanned.
        std::size_t const offset = random() % 17;
        std::wstring text(offset + random() % 40, L'&');
        for (std::size_t i = offset; i < text.size(); ++i)
            text[i] = characters[random() % (sizeof characters / sizeof characters[0] - 1)];
        wchar_t const * const part = text.c_str() + offset;
        vek::EscapeMeasure const measure = vek::MeasureEscape(part);
        std::wstring const expected = ByPasses(part, false);
        ASSERT_EQ(measure.length, text.size() - offset);
        ASSERT_EQ(measure.escapedLength, expected.size());
        // At an odd address, too.
        alignas(2) char bytes[50 * sizeof(wchar_t)];
        memcpy(bytes + 1, part, (measure.length + 1) * sizeof(wchar_t));
        CVekString<wchar_t> escapedOdd;
        ASSERT_TRUE(vek::EscapeTo(reinterpret_cast<wchar_t const *>(bytes + 1), escapedOdd));
        ASSERT_STREQ(escapedOdd, expected.c_str());
        CVekString<wchar_t> escaped;
        ASSERT_TRUE(vek::EscapeTo(part, escaped));
        ASSERT_STREQ(escaped, expected.c_str());
        CVekString<wchar_t> plain(part);
        vek::Unescape(plain);
        ASSERT_STREQ(plain, ByPasses(part, true).c_str()) << part;
    }
}

} // namespace
