#include "support/TestStream.h"
#include "support/XMLKit.h"

#include <algorithm>

namespace
{

struct WriterTest : XMLTest
{
    std::string Written(CVekRef<IVekXMLDocument> const & document, int indentation = 3)
    {
        TestStream stream;
        m_writer->SetIndentation(indentation);
        EXPECT_TRUE(m_writer->WriteXML(&stream, document.Get()));
        return stream.bytes;
    }

    CVekRef<IVekXMLWriter> m_writer{XMLManager().CreateXMLWriter()};
};

constexpr char HEADER[] = "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

// A document whose encoding a host decides; everything else is the library's document.
class HostDocument : public CVekRefCounted<IVekXMLDocument>
{
public:
    explicit HostDocument(wchar_t const * encoding) : m_encoding(encoding), m_inner(NewDocument()) {}

    bool SetDocumentType(wchar_t const * name) override { return m_inner->SetDocumentType(name); }
    CVekString<wchar_t> const & GetDocumentType() const override { return m_inner->GetDocumentType(); }
    bool SetEncoding(wchar_t const *) override { return false; }
    CVekString<wchar_t> const & GetEncoding() const override { return m_encoding; }
    bool SetRootElement(IVekXMLElement * element) override { return m_inner->SetRootElement(element); }
    IVekXMLElement * GetRootElement() override { return m_inner->GetRootElement(); }
    IVekXMLElement const * GetRootElement() const override { return m_inner->GetRootElement(); }
    IVekXMLElement * FindElementFromPath(wchar_t const *, bool) override { return nullptr; }
    int GetNumDTDRules() const override { return 0; }
    IVekXMLDTDRule * GetDTDRule(int) override { return nullptr; }
    IVekXMLDTDRule const * GetDTDRule(int) const override { return nullptr; }
    IVekXMLDTDRule * FindDTDRule(wchar_t const *) override { return nullptr; }
    IVekXMLDTDRule const * FindDTDRule(wchar_t const *) const override { return nullptr; }
    int AddDTDRule(wchar_t const *, VEK_XML_DTD_ENTRYTYPE) override { return -1; }
    void RemoveDTDRule(int) override {}
    void RemoveAllDTDRules() override {}
    int GetNumDTDAttributeLists() const override { return 0; }
    IVekXMLDTDAttributeList * GetDTDAttributeList(int) override { return nullptr; }
    IVekXMLDTDAttributeList const * GetDTDAttributeList(int) const override { return nullptr; }
    IVekXMLDTDAttributeList * FindDTDAttributeList(wchar_t const *) override { return nullptr; }
    IVekXMLDTDAttributeList const * FindDTDAttributeList(wchar_t const *) const override { return nullptr; }
    int AddDTDAttributeList(wchar_t const *) override { return -1; }
    void RemoveDTDAttributeList(int) override {}
    void RemoveAllDTDAttributeLists() override {}

private:
    CVekString<wchar_t> m_encoding;
    CVekRef<IVekXMLDocument> m_inner;
};

TEST_F(WriterTest, WritesElements)
{
    std::tuple<char const *, char const *, char const *> const rows[] = {
        {"attributes", "<a x='1' y='&lt;&quot;'/>", "<a x=\"1\" y=\"&lt;&quot;\"/>\n"},
        {"children", "<a><b><c/></b><d/></a>", "<a>\n   <b>\n      <c/>\n   </b>\n   <d/>\n</a>\n"},
        {"CDATA stands at the margin", "<a><b><![CDATA[x\ny]]></b></a>",
         "<a>\n   <b>\n<![CDATA[x\ny]]>\n   </b>\n</a>\n"},
        {"CDATA before children", "<a><b/><![CDATA[t]]></a>", "<a>\n<![CDATA[t]]>\n   <b/>\n</a>\n"},
        {"empty CDATA keeps the tags apart", "<a><![CDATA[]]></a>", "<a>\n</a>\n"},
        {"two- and three-byte characters", "<a v='\xC3\xA9\xE2\x82\xAC'/>", "<a v=\"\xC3\xA9\xE2\x82\xAC\"/>\n"},
        {"kept: halves of a pair are not combined", "<a v='\xF0\x9F\x98\x80'/>",
         "<a v=\"\xED\xA0\xBD\xED\xB8\x80\"/>\n"},
        {"a type without rules is omitted", "<!DOCTYPE a><a/>", "<a/>\n"},
        {"so are lists without rules", "<!DOCTYPE a [<!ATTLIST a id ID #REQUIRED>]><a/>", "<a/>\n"},
        {"a newline in a value", "<a v='1&#10;2'/>", "<a v=\"1&lt;EOL&gt;2\"/>\n"},
    };
    for (auto const & [name, source, written] : rows)
    {
        SCOPED_TRACE(name);
        auto const document = NewDocument();
        ASSERT_TRUE(ParseBytes(source, document));
        EXPECT_EQ(Written(document), std::string(HEADER) + written);
    }
}

TEST_F(WriterTest, IndentsAsTold)
{
    auto const document = NewDocument();
    ASSERT_TRUE(ParseBytes("<!DOCTYPE a [<!ELEMENT a (b)>]><a><b/></a>", document));
    EXPECT_EQ(m_writer->GetIndentation(), 3);
    m_writer->SetIndentation(-1);
    EXPECT_EQ(m_log.Take(), L"CVekXMLWriter::SetIndentation --> Identation can not be negative -1");
    EXPECT_EQ(m_writer->GetIndentation(), 3);
    EXPECT_EQ(Written(document, 0),
              std::string(HEADER) + "<!DOCTYPE a [\n<!ELEMENT a\n(\n b\n)>\n ]>\n<a>\n<b/>\n</a>\n");
    EXPECT_EQ(Written(document, 1),
              std::string(HEADER) + "<!DOCTYPE a [\n <!ELEMENT a\n (\n   b\n )>\n ]>\n<a>\n <b/>\n</a>\n");
    document->SetDocumentType(L"");
    EXPECT_EQ(Written(document), std::string(HEADER) + "<a>\n   <b/>\n</a>\n") << "no rules without a type";
}

TEST_F(WriterTest, WritesTheDocumentType)
{
    std::tuple<char const *, char const *, char const *> const rows[] = {
        {"empty", "<!ELEMENT e EMPTY>", "<!ELEMENT e EMPTY>\n"},
        {"text", "<!ELEMENT e (#PCDATA)>", "<!ELEMENT e ( #PCDATA )>\n"},
        {"kept: any content is an empty group", "<!ELEMENT e ANY>", "<!ELEMENT e\n(\n)>\n"},
        {"kept: one or more has no mark", "<!ELEMENT e (a,b?,c*,d+)>", "<!ELEMENT e\n(\n a, \n b?, \n c*, \n d\n)>\n"},
        {"kept: a choice reads as a sequence", "<!ELEMENT e (a|b)>", "<!ELEMENT e\n(\n a, \n b\n)>\n"},
        {"kept: a group reads as a choice", "<!ELEMENT e (a,(b,c?)*)>",
         "<!ELEMENT e\n(\n a, \n ( \n b |\n c? \n )*\n)>\n"},
        {"groups in groups", "<!ELEMENT e ((a,(b|c)?,d)+,f)>",
         "<!ELEMENT e\n(\n ( \n a |\n ( \n b |\n c \n )?, \n d \n ), \n f\n)>\n"},
        {"a group at a group's end", "<!ELEMENT e ((a,(b|c)))>",
         "<!ELEMENT e\n(\n ( \n a |\n ( \n b |\n c \n )\n )\n)>\n"},
        {"attributes", "<!ELEMENT e EMPTY><!ATTLIST e id ID #REQUIRED a-name-longer-than-columns CDATA #REQUIRED>",
         "<!ELEMENT e EMPTY>\n<!ATTLIST e\n id                   ID #REQUIRED\n"
         " a-name-longer-than-columns CDATA #REQUIRED\n>\n"},
        {"kept: no default of an optional attribute", "<!ELEMENT e EMPTY><!ATTLIST e note CDATA #IMPLIED>",
         "<!ELEMENT e EMPTY>\n<!ATTLIST e\n note                      CDATA\n>\n"},
    };
    for (auto const & [name, declarations, written] : rows)
    {
        SCOPED_TRACE(name);
        auto const document = NewDocument();
        ASSERT_TRUE(ParseBytes(std::string("<!DOCTYPE e [") + declarations + "]><e/>", document));
        EXPECT_EQ(Written(document, 0), std::string(HEADER) + "<!DOCTYPE e [\n" + written + " ]>\n<e/>\n");
    }
}

TEST_F(WriterTest, EncodesAsTheDocumentSays)
{
    constexpr VEK_BYTEORDER BIG = VEK_BYTEORDER_BIG, LITTLE = VEK_BYTEORDER_LITTLE;
    std::string const bigUnits("\0A\0\xE9\x20\xAC", 6), littleUnits("A\0\xE9\0\xAC\x20", 6);
    // A document with one character of every length up to three bytes.
    std::tuple<std::wstring, VEK_BYTEORDER, VEK_BYTEORDER, std::string, std::string, wchar_t const *> const rows[] = {
        // clang-format off
        {L"UTF-8", BIG, BIG, "\xEF\xBB\xBF<?", "A\xC3\xA9\xE2\x82\xAC", L""},
        {L"utf-8", BIG, BIG, "\xEF\xBB\xBF<?", "A\xC3\xA9\xE2\x82\xAC", L""},
        {L"US-ASCII", BIG, BIG, "<?", "A\xE9\xAC", L""}, {L"ISO-8859-1", BIG, BIG, "<?", "A\xE9\xAC", L""},
        {L"UTF-32", BIG, BIG, "\xEF\xBB\xBF<?", "A\xC3\xA9\xE2\x82\xAC",
         L"CVekXMLWriter::SetEncodingType --> Encoding not supported UTF-32"},
        {L"UTF-16", LITTLE, LITTLE, std::string("\xFF\xFE<\0", 4), littleUnits, L""},
        {L"UTF-16", BIG, LITTLE, std::string("\xFE\xFF\0<", 4), bigUnits, L""},
        // kept: the stream's order is marked, but equal orders reverse nothing, so these marks belie the units
        {L"UTF-16", BIG, BIG, std::string("\xFE\xFF<\0", 4), littleUnits, L""},
        {L"UTF-16", LITTLE, BIG, std::string("\xFF\xFE\0<", 4), bigUnits, L""},
        // clang-format on
    };
    for (auto const & [encoding, streamOrder, systemOrder, start, value, message] : rows)
    {
        std::string const name(encoding.begin(), encoding.end());
        SCOPED_TRACE(testing::Message() << name << streamOrder << systemOrder);
        CVekRef<HostDocument> const document(new HostDocument(encoding.c_str()));
        document->SetRootElement(NewElement(L"a").Get());
        document->GetRootElement()->AddAttribute(L"v", L"A\u00E9\u20AC", -1);
        TestStream stream;
        stream.streamOrder = streamOrder;
        stream.systemOrder = systemOrder;
        CVekRef<IVekXMLWriter> const writer(XMLManager().CreateXMLWriter());
        EXPECT_TRUE(writer->WriteXML(&stream, document.Get()));
        EXPECT_EQ(m_log.Take(), message);
        EXPECT_EQ(stream.bytes.substr(0, start.size()), start);
        EXPECT_NE(stream.bytes.find(value), std::string::npos) << stream.bytes;
        EXPECT_EQ(stream.bytes.find("encoding=\"" + name + "\"") != std::string::npos, encoding != L"UTF-16");
    }
}

TEST_F(WriterTest, WritesFilesThatCanBeReadAgain)
{
    for (wchar_t const * const encoding : {L"UTF-8", L"UTF-16", L"ISO-8859-1"})
    {
        SCOPED_TRACE(testing::Message() << encoding);
        CVekRef<HostDocument> const document(new HostDocument(encoding));
        ASSERT_TRUE(ParseBytes("<a x='&lt;\xC3\xA9'><b><![CDATA[1\n2]]></b></a>", document));
        std::wstring const path = TemporaryPath(L"written.xml");
        ASSERT_TRUE(m_writer->WriteXMLFile(path.c_str(), document.Get()));
        auto const again = NewDocument();
        CVekRef<IVekXMLParser> const parser(XMLManager().CreateXMLParser());
        ASSERT_TRUE(parser->ParseXMLFile(path.c_str(), again.Get())) << FileBytes(path);
        EXPECT_EQ(TreeText(*again), TreeText(*document));
        std::string const end = "\r\n   <b>\r\n<![CDATA[1\r\n2]]>\r\n   </b>\r\n</a>\r\n";
        EXPECT_EQ(FileBytes(path).find(end) != std::string::npos, encoding != std::wstring(L"UTF-16"));
    }
}

TEST_F(WriterTest, ReportsWhatCantBeWritten)
{
    TestStream stream;
    CVekRef<IVekFileIOStream> const closed(getVekLibKernel()->CreateFileIOStream());
    auto const document = NewDocument();
    EXPECT_FALSE(m_writer->WriteXMLFile(L"x.xml", nullptr));
    EXPECT_FALSE(m_writer->WriteXML(&stream, nullptr));
    EXPECT_FALSE(m_writer->WriteXMLFile(L"x.xml", document.Get()));
    EXPECT_FALSE(m_writer->WriteXML(&stream, document.Get()));
    document->SetRootElement(NewElement(L"a").Get());
    EXPECT_FALSE(m_writer->WriteXMLFile(TemporaryPath(L"no-folder/x.xml").c_str(), document.Get()));
    EXPECT_FALSE(m_writer->WriteXML(nullptr, document.Get()));
    EXPECT_FALSE(m_writer->WriteXML(closed.Get(), document.Get()));
    EXPECT_EQ(m_log.Take(), L"CVekXMLWriter::WriteXMLFile --> Document is NULL\n"
                            L"CVekXMLWriter::WriteXML --> Document is NULL\n"
                            L"CVekXMLWriter::WriteXMLFile --> Document has no Element\n"
                            L"CVekXMLWriter::WriteXML --> Document has no Element\n"
                            L"CVekFileIOStream::Open --> Failed to open file\n"
                            L"CVekXMLWriter::WriteXMLFile --> Failed to write XML\n"
                            L"CVekXMLWriter::WriteHeader --> Error writing header\n"
                            L"CVekFileIOStream::Write --> File is not opened\n"
                            L"CVekXMLWriter::WriteHeader --> Error writing header");
}

TEST_F(WriterTest, NeverCallsALostByteASuccess)
{
    auto const document = NewDocument();
    std::string const source = "<child long='" + std::string(60000, 'x') + "'/>";
    ASSERT_TRUE(ParseBytes("<a>" + source + source + source + "</a>", document));
    TestStream whole;
    ASSERT_TRUE(m_writer->WriteXML(&whole, document.Get()));
    ASSERT_GE(whole.transfers, 3U);
    std::wstring const header = L"CVekXMLWriter::WriteHeader --> Error writing header";
    std::wstring const child = L"CVekXMLWriter::WriteElement --> Failed to write Element header\n"
                               L"CVekXMLWriter::WriteElement --> Failed to write child Element ";
    std::wstring const last = L"CVekXMLWriter::WriteElement --> Failed to write Element close";
    for (unsigned int n = 1; n <= whole.transfers; ++n)
    {
        SCOPED_TRACE(n);
        TestStream stream;
        stream.failFrom = n;
        EXPECT_FALSE(m_writer->WriteXML(&stream, document.Get()));
        EXPECT_EQ(m_log.Take(), n == 1 ? header : n + 1 >= whole.transfers ? last : child + std::to_wstring(n - 2));
    }
}

} // namespace
