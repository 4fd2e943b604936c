// Documents of a size and shape that no host makes on purpose: all of them simply work.
#include "support/GuardHeap.h"
#include "support/TestStream.h"
#include "support/XMLKit.h"

namespace
{

// The guard heap spends two pages on each block.
constexpr int MANY = VekGuard::Active ? 20'000 : 1'000'000;

struct HostileXMLTest : XMLTest
{
    // Writes the document without indentation, reads it back, and returns the bytes.
    std::string RoundTrip(CVekRef<IVekXMLDocument> const & document)
    {
        CVekRef<IVekXMLWriter> const writer(XMLManager().CreateXMLWriter());
        writer->SetIndentation(0);
        TestStream stream;
        EXPECT_TRUE(writer->WriteXML(&stream, document.Get()));
        auto const again = NewDocument();
        EXPECT_TRUE(ParseBytes(stream.bytes, again));
        TestStream second;
        EXPECT_TRUE(writer->WriteXML(&second, again.Get()));
        EXPECT_TRUE(stream.bytes == second.bytes);
        return std::move(stream.bytes);
    }
};

std::string Repeated(std::string const & text, int count)
{
    std::string all;
    all.reserve(text.size() * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

TEST_F(HostileXMLTest, NestedElements)
{
    auto const document = NewDocument();
    ASSERT_TRUE(ParseBytes(Repeated("<e>", MANY) + Repeated("</e>", MANY), document));
    RoundTrip(document);
    int depth = 1;
    for (IVekXMLElement const * at = document->GetRootElement(); at->GetNumChildren(); at = at->GetChild(0))
        ++depth;
    EXPECT_EQ(depth, MANY);
    EXPECT_TRUE(ParseBytes(Repeated("<e>", MANY), NewDocument())) << "unclosed";
}

TEST_F(HostileXMLTest, ChildrenAndAttributesOfOneElement)
{
    constexpr int count = MANY / 10;
    std::string text = "<r";
    for (int i = 0; i < count; ++i)
        text += " a" + std::to_string(i) + "='" + std::to_string(i) + "'";
    auto const document = NewDocument();
    ASSERT_TRUE(ParseBytes(text + ">" + Repeated("<e/>", MANY) + "</r>", document));
    IVekXMLElement const & root = *document->GetRootElement();
    EXPECT_EQ(root.GetNumChildren(), MANY);
    ASSERT_EQ(root.GetNumAttributes(), count);
    EXPECT_STREQ(root.GetAttributeValue(count - 1), std::to_wstring(count - 1).c_str());
    RoundTrip(document);
}

TEST_F(HostileXMLTest, ValueOfManyMegabytes)
{
    constexpr std::size_t size = MANY * std::size_t{64};
    auto const document = NewDocument();
    ASSERT_TRUE(ParseBytes("<r v='" + std::string(size, 'v') + "'/>", document));
    EXPECT_EQ(document->GetRootElement()->GetAttributeValue(0).GetLength(), static_cast<int>(size));
}

TEST_F(HostileXMLTest, NamesLongerThanTheLogBuffer)
{
    std::string const name(1 << 20, 'n');
    auto const document = NewDocument();
    ASSERT_TRUE(ParseBytes("<!DOCTYPE " + name + " [<!ELEMENT " + name + " (" + name + "," + name + ")><!ATTLIST " +
                               name + " " + name + " CDATA #REQUIRED>]><" + name + " " + name + "='1'/>",
                           document));
    EXPECT_EQ(document->GetRootElement()->GetName().GetLength(), 1 << 20);
    EXPECT_FALSE(ParseBytes("<a><" + name + "></a>", NewDocument()));
}

TEST_F(HostileXMLTest, GroupsNestedInADeclaration)
{
    constexpr int depth = MANY / 10;
    auto const document = NewDocument();
    ASSERT_TRUE(ParseBytes("<!DOCTYPE r [<!ELEMENT r " + Repeated("(", depth) + "a" + Repeated(")", depth) + ">]><r/>",
                           document))
        << m_log.Take();
    RoundTrip(document);
}

TEST_F(HostileXMLTest, EntityValueThatEndsInASurrogatePairAtTheBuffersEnd)
{
    // 1,023 characters and a pair: the pair straddles the tokenizer's buffer of 1,024 units.
    std::u16string text =
        u"\uFEFF<!DOCTYPE r [<!ENTITY e '" + std::u16string(1023, u'x') + u"\xD83D\xDE00'>]><r v='&e;'/>";
    std::string const bytes(reinterpret_cast<char const *>(text.data()), text.size() * sizeof(char16_t));
    auto const document = NewDocument();
    ASSERT_TRUE(ParseBytes(bytes, document));
    CVekString<wchar_t> const & value = document->GetRootElement()->GetAttributeValue(0);
    ASSERT_EQ(value.GetLength(), 1025);
    EXPECT_STREQ(static_cast<wchar_t const *>(value) + 1023, L"\xD83D\xDE00");
}

} // namespace
