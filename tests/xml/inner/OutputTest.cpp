// Short pieces of text are encoded with what stands behind them: whatever that is, and at a page that can't be read.

#include "xml/XMLOutput.h"

#include "VekRef.h"

#include "support/FencedPage.h"
#include "support/TestStream.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

namespace
{

TEST(Output, EncodesPiecesOfAnyLengthWithOneOtherUnitAnywhere)
{
    struct Row
    {
        vek::XMLEncoding encoding;
        wchar_t unit;
        std::string bytes;
    };
    Row const rows[] = {{vek::XMLEncoding::UTF8, L'\x7F', "\x7F"},
                        {vek::XMLEncoding::UTF8, L'\x80', "\xC2\x80"},
                        {vek::XMLEncoding::UTF8, L'\xFF41', "\xEF\xBD\x81"},
                        {vek::XMLEncoding::LATIN1, L'\xFF', "\xFF"},
                        {vek::XMLEncoding::ASCII, L'\x141', "A"},
                        {vek::XMLEncoding::UTF8, L'\n', "\r\n"}};
    FencedPage const page;
    for (Row const & row : rows)
        for (size_t behind = 0; behind < 12; ++behind)
        {
            CVekRef<TestStream> const stream(new TestStream);
            vek::XMLOutput output(*stream.Get(), row.encoding, vek::XMLOutput::NewLines::CARRIAGE_RETURN_FIRST);
            std::string expected;
            for (size_t length = 1; length < 28; ++length)
                for (size_t at = 0; at <= length; ++at)
                {
                    wchar_t * const text = page.Last<wchar_t>(length + behind);
                    std::fill(text, text + length, L'x');
                    std::fill(text + length, text + length + behind, L'\xFFFF');
                    std::string plain(length, 'x');
                    if (at < length)
                    {
                        text[at] = row.unit;
                        plain.replace(at, 1, row.bytes);
                    }
                    output.Text(text, length);
                    output.Text(L"=\"\n");
                    output.Spaces(length + behind);
                    expected += plain + "=\"\r\n" + std::string(length + behind, ' ');
                }
            ASSERT_TRUE(output.Finish());
            ASSERT_EQ(stream->bytes, expected) << static_cast<int>(row.unit) << " with " << behind << " units behind";
        }
}

} // namespace
