#include "support/XMLKit.h"

namespace
{

using namespace std::string_literals;

using ParserTest = XMLTest;

TEST_F(ParserTest, BuildsTheTree)
{
    std::tuple<char const *, std::string, wchar_t const *, bool> const rows[] = {
        {"attributes in order", "<a x='1' y=\"2\"/>", L"a[x=1 y=2]", true},
        {"text outside CDATA is dropped", "<a>text<b>in<c/></b>more<d/></a>", L"a{b{c} d}", true},
        {"CDATA beside children", "<a><b/><![CDATA[x<y&z\r\n\xC3\xA9]]><c/></a>", L"a'x<y&z\n\u00E9'{b c}", true},
        {"empty CDATA", "<a><![CDATA[]]></a>", L"a''", true},
        {"values are stored escaped", "<a v='&lt;&#38;&gt;&quot;&apos;&#10;'/>",
         L"a[v=&lt;&amp;&gt;&quot;&apos;&lt;EOL&gt;]", true},
        {"names that differ in case are one attribute", "<a Name='1' name='2' NAME='3' b='4'/>", L"a[Name=1 b=4]",
         true},
        {"entity in a value", "<!DOCTYPE a [<!ENTITY e 'ex'>]><a v='&e;pand'/>", L"a[v=expand]", true},
        {"entity with elements", "<!DOCTYPE a [<!ENTITY e '<b/><c/>'>]><a>&e;</a>", L"a{b c}", true},
        {"default attribute", "<!DOCTYPE a [<!ATTLIST a d CDATA 'v'>]><a/>", L"a[d=v]", true},
        {"comments and instructions", "<?xml version='1.0'?><!-- c --><?pi d?><a><!-- <b/> --></a>", L"a", true},
        {"UTF-8 with mark", "\xEF\xBB\xBF<a v='\xC3\xA9'/>", L"a[v=\u00E9]", true},
        {"UTF-8 beyond the basic plane", "<a v='\xF0\x9F\x98\x80'/>", L"a[v=\xD83D\xDE00]", true},
        {"ISO-8859-1", "<?xml version='1.0' encoding='ISO-8859-1'?><a v='\xE9'/>", L"a[v=\u00E9]", true},
        {"UTF-16 little-endian", "\xFF\xFE<\0a\0 \0v\0=\0'\0\xAC\x20'\0/\0>\0"s, L"a[v=\u20AC]", true},
        {"UTF-16 big-endian", "\xFE\xFF\0<\0a\0 \0v\0=\0'\x20\xAC\0'\0/\0>"s, L"a[v=\u20AC]", true},
        {"kept: an unclosed element is no error", "<a>\n <b>\n\n", L"a{b}", false},
        {"kept: a cut tag is no error", "<a><b/><c at", L"a{b}", false},
        {"kept: no element at all is no error", "<!-- nothing -->", L"", false},
        {"kept: an empty text is no error", "", L"", false},
        {"kept: nor a declaration alone", "<?xml version='1.0'?>", L"", false},
        {"what is cut after the root is not missed", "<a/> <!-- cut", L"a", true},
    };
    CVekRef<CVekXMLParser> const parser(new CVekXMLParser);
    EXPECT_FALSE(parser->IsComplete());
    EXPECT_EQ(parser->GetError().code, VEK_XML_ERROR_NOT_STARTED);
    for (auto const & [name, bytes, tree, complete] : rows)
    {
        SCOPED_TRACE(name);
        auto const document = NewDocument();
        EXPECT_TRUE(parser->ParseXMLMemory(bytes.data(), static_cast<unsigned int>(bytes.size()), document.Get()));
        EXPECT_EQ(TreeText(*document), tree);
        EXPECT_EQ(parser->IsComplete(), complete);
        VekXMLError const error = parser->GetError();
        EXPECT_EQ(error.isIncomplete, !complete);
        EXPECT_EQ(error.code, complete ? VEK_XML_ERROR_NONE : *tree ? VEK_XML_ERROR_ENDS_EARLY : VEK_XML_ERROR_EMPTY);
        EXPECT_EQ(error.line, complete ? 0u : 1u + static_cast<unsigned>(std::count(bytes.begin(), bytes.end(), '\n')));
        EXPECT_EQ(m_log.Take(), L"");
    }
}

TEST_F(ParserTest, ReportsMalformedTextWithItsPlace)
{
    std::tuple<char const *, VEK_XML_ERROR, unsigned int, std::string, int, wchar_t const *, int, int> const rows[] = {
        // its code and byte; what the message tells
        {"mismatched tag", VEK_XML_ERROR_TAG_MISMATCH, 10, "<a>\n <b></a>", 7, L"mismatched tag", 2, 6},
        {"not XML", VEK_XML_ERROR_SYNTAX, 0, "hello <a/>", 2, L"syntax error", 1, 0},
        {"two roots", VEK_XML_ERROR_BEHIND_ROOT, 4, "<a/><b/>", 9, L"junk after document element", 1, 4},
        {"same attribute twice", VEK_XML_ERROR_ATTRIBUTE_TWICE, 13, "<a>\n<b x='1' x='2'/></a>", 8,
         L"duplicate attribute", 2, 9},
        {"zero byte", VEK_XML_ERROR_TOKEN, 3, std::string("<a>\0</a>", 8), 4, L"not well-formed (invalid token)", 1, 3},
        {"only zero bytes", VEK_XML_ERROR_TOKEN, 0, std::string(64, '\0'), 4, L"not well-formed (invalid token)", 1, 0},
        {"undefined entity", VEK_XML_ERROR_UNKNOWN_ENTITY, 3, "<a>&nothing;</a>", 11, L"undefined entity", 1, 3},
        {"lone surrogate in UTF-8", VEK_XML_ERROR_TOKEN, 6, "<a v='\xED\xA0\x80'/>", 4,
         L"not well-formed (invalid token)", 1, 6},
        {"lone surrogate in UTF-16", VEK_XML_ERROR_TOKEN, 14, "\xFF\xFE<\0a\0 \0v\0=\0'\0\0\xDCx\0'\0/\0>\0"s, 4,
         L"not well-formed (invalid token)", 1, 7},
        {"reference to a surrogate", VEK_XML_ERROR_CHARACTER_NUMBER, 6, "<a v='&#xD800;'/>", 14,
         L"reference to invalid character number", 1, 6},
        {"bytes that are not the default encoding", VEK_XML_ERROR_TOKEN, 6, "<a v='\xE9'/>", 4,
         L"not well-formed (invalid token)", 1, 6},
        {"lying declaration", VEK_XML_ERROR_ENCODING, 30, "<?xml version='1.0' encoding='UTF-16'?><a/>", 19,
         L"encoding specified in XML declaration is incorrect", 1, 30},
        {"unknown encoding", VEK_XML_ERROR_ENCODING, 30, "<?xml version='1.0' encoding='x-none'?><a/>", 18,
         L"unknown encoding", 1, 30},
        {"recursive entity", VEK_XML_ERROR_ENTITY, 35, "<!DOCTYPE a [<!ENTITY e '&e;'>]><a>&e;</a>", 12,
         L"recursive entity reference", 1, 35},
    };
    CVekXMLParser parser;
    for (auto const & [name, code, offset, bytes, number, text, line, column] : rows)
    {
        SCOPED_TRACE(name);
        EXPECT_TRUE(parser.ParseXMLMemory("<a/>", 4, NewDocument().Get()) && parser.IsComplete());
        EXPECT_FALSE(parser.ParseXMLMemory(bytes.data(), static_cast<unsigned int>(bytes.size()), NewDocument().Get()));
        EXPECT_FALSE(parser.IsComplete());
        EXPECT_EQ(m_log.Take(), L"CVekXMLParser::Parse --> Parse error occured\n   Error code "s +
                                    std::to_wstring(number) + L" " + text + L"\n\n      at line " +
                                    std::to_wstring(line) + L", col " + std::to_wstring(column) +
                                    L"\n\nCVekXMLParser::ParseXMLFile --> Failed on parsing");
        VekXMLError const error = parser.GetError();
        EXPECT_EQ(error.code, code);
        EXPECT_STREQ(error.text, text);
        EXPECT_EQ(std::tuple(error.line, error.column, error.offset, error.systemCode, error.isIncomplete),
                  std::tuple(unsigned(line), unsigned(column) + (bytes[0] != '\xFF'), offset, 0u, false))
            << "the byte order mark is no column";
    }
}

// The larger part of a text is handed to the tokenizer in another way than its beginning.
TEST_F(ParserTest, EndsAndFaultsAreTheSameWhereverTheyStand)
{
    std::tuple<std::string, bool, VEK_XML_ERROR, std::size_t> const rows[] = {
        // behind <a>: whether it can be read, what GetError tells, and of which byte
        {"</a>\n", true, VEK_XML_ERROR_NONE, 0},
        {"<b>\n", true, VEK_XML_ERROR_ENDS_EARLY, 4},
        {"<b v='>", true, VEK_XML_ERROR_ENDS_EARLY, 0},
        {"<!-- >", true, VEK_XML_ERROR_ENDS_EARLY, 0},
        {"<![CDATA[x>", true, VEK_XML_ERROR_ENDS_EARLY, 11},
        {"text]]", true, VEK_XML_ERROR_ENDS_EARLY, 4},
        {"text\r", true, VEK_XML_ERROR_ENDS_EARLY, 4},
        {"</a>\r\n<!-- >", true, VEK_XML_ERROR_NONE, 0},
        {"&tag;>", false, VEK_XML_ERROR_SYNTAX, 0},
        {"&section;>", false, VEK_XML_ERROR_SYNTAX, 0},
        {"</b>", false, VEK_XML_ERROR_TAG_MISMATCH, 2},
        {"</a> <b/>", false, VEK_XML_ERROR_BEHIND_ROOT, 5},
        {"\x01>", false, VEK_XML_ERROR_TOKEN, 0},
    };
    std::string const type = "<!DOCTYPE a [<!ENTITY tag '<b'><!ENTITY section '<![CDATA[x'>]>\n";
    std::string const filler(3000, '\n');
    auto const widened = [](std::string const & text)
    {
        std::string wide = "\xFF\xFE";
        for (char const unit : text)
            (wide += unit) += '\0';
        return wide;
    };
    for (auto const & [tail, isRead, plainCode, plainPlace] : rows)
        for (std::string const & lead :
             {type + "<a>", type + filler + "<a>", type + "<!--" + filler + ">--><a>", type + "<a>" + filler})
            for (int const way : {0, 1, 2, 3})
            {
                SCOPED_TRACE(tail + " behind " + std::to_string(lead.size()) + ", way " + std::to_string(way));
                bool const isWide = way % 2 != 0, keepsAll = way > 1;
                // Who keeps all misses what is cut behind the outermost element.
                bool const isCut = keepsAll && tail.ends_with("<!-- >") && tail != "<!-- >";
                VEK_XML_ERROR const code = isCut ? VEK_XML_ERROR_ENDS_EARLY : plainCode;
                std::size_t const place = isCut ? 6 : plainPlace;
                std::string const bytes = isWide ? widened(lead + tail) : lead + tail;
                CVekRef<CVekXMLParser> const parser(new CVekXMLParser);
                parser->SetKeepAll(keepsAll ? VEK_XML_KEEP_ALL : VEK_XML_KEEP_NOTHING);
                EXPECT_EQ(
                    parser->ParseXMLMemory(bytes.data(), static_cast<unsigned int>(bytes.size()), NewDocument().Get()),
                    isRead);
                VekXMLError const error = parser->GetError();
                EXPECT_EQ(error.code, code);
                EXPECT_EQ(error.isIncomplete, isRead && code != VEK_XML_ERROR_NONE);
                EXPECT_EQ(error.offset, code == VEK_XML_ERROR_NONE ? 0
                                        : isWide                   ? 2 + 2 * (lead.size() + place)
                                                                   : lead.size() + place);
                EXPECT_EQ(error.line, code == VEK_XML_ERROR_NONE ? 0
                                                                 : 1 + std::count(lead.begin(), lead.end(), '\n') +
                                                                       (tail == "<b>\n" || isCut));
            }
    m_log.Take();
}

// Elements of one file share what they can. None of it shows.
TEST_F(ParserTest, NamesAreEachElementsOwn)
{
    std::string text = "<a>";
    for (int i = 0; i < 2000; ++i)
        text += "<part size='" + std::to_string(i) + "' other='value'><![CDATA[" + std::string(i % 9 * 700, 'c') +
                "]]></part>";
    CVekRef<IVekXMLElement> kept;
    {
        auto const document = NewDocument();
        ASSERT_TRUE(ParseBytes(text + "</a>", document));
        IVekXMLElement & root = *document->GetRootElement();
        IVekXMLElement & first = *root.GetChild(0);
        first.SetName(L"p");
        EXPECT_TRUE(first.RenameAttribute(L"size", L"s"));
        EXPECT_TRUE(first.SetAttributeValue(L"other", VEK_VARIANT(L"n"), false));
        EXPECT_EQ(TreeText(first), L"p[s=0 other=n]''");
        EXPECT_STREQ(root.GetChild(1)->GetName(), L"part");
        EXPECT_STREQ(root.GetChild(1)->GetAttributeName(0), L"size");
        EXPECT_STREQ(root.GetChild(1)->GetAttributeValue(1), L"value");
        kept = CVekRef<IVekXMLElement>::Share(root.GetChild(1999));
    }
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(ParseBytes(text + "</a>", NewDocument()));
    EXPECT_EQ(TreeText(*kept), L"part[size=1999 other=value]'" + std::wstring(1999 % 9 * 700, L'c') + L"'");
}

TEST_F(ParserTest, MergesIntoAnExistingRoot)
{
    auto const document = NewDocument();
    ASSERT_TRUE(ParseBytes("<old Keep='1' both='2'><first/></old>", document));
    ASSERT_TRUE(ParseBytes("<new BOTH='x' more='3'><second/></new>", document));
    EXPECT_FALSE(ParseBytes("<new><third x='1'/><fourth></new>", document));
    EXPECT_EQ(TreeText(*document), L"new[Keep=1 both=2 more=3]{first second third[x=1] fourth}")
        << "what was read before an error is kept";
}

TEST_F(ParserTest, ReadsTheDocumentType)
{
    auto const document = NewDocument();
    EXPECT_TRUE(ParseBytes("<!DOCTYPE scene SYSTEM 'not-opened.dtd' [\n"
                           "<!ELEMENT empty EMPTY><!ELEMENT any ANY><!ELEMENT text (#PCDATA)>\n"
                           "<!ELEMENT mixed (#PCDATA|a|b)*><!ELEMENT seq (a,b?,c*,d+)><!ELEMENT choice (a|b)>\n"
                           "<!ELEMENT deep (a,(b|(c,d)+)?,e)*><!ELEMENT seq (other)>\n"
                           "<!ATTLIST seq id ID #REQUIRED kind (x|y) 'x' note CDATA #IMPLIED fixed CDATA #FIXED 'f'>\n"
                           "<!ENTITY e 'v'><!NOTATION n SYSTEM 's'><!ENTITY u SYSTEM 'f' NDATA n>\n"
                           "]><scene/>",
                           document));
    EXPECT_STREQ(document->GetDocumentType(), L"scene");
    EXPECT_EQ(DTDText(*document), L"empty=0{} any=2{} text=3{} mixed=3{a:1:0 b:1:0} seq=5{a:1:0 b:1:1 c:1:2 d:1:3} "
                                  L"choice=4{a:1:0 b:1:0} deep=5{a:1:0 :4:1(b:1:0 :5:3(c:1:0 d:1:0)) e:1:0} "
                                  L"seq[id:ID! kind:(x|y) note:CDATA fixed:CDATA!] ");
    EXPECT_EQ(m_log.Take(), L"CVekXMLDocument::AddDTDRule --> DTD rule with same name already exist");
}

TEST_F(ParserTest, ReportsWhatIsThereTwice)
{
    auto const document = NewDocument();
    EXPECT_TRUE(ParseBytes("<!DOCTYPE a [<!ELEMENT a (b,B,(c|c|d))><!ATTLIST a x CDATA #REQUIRED X CDATA #REQUIRED>]>"
                           "<a x=''><![CDATA[1]]><![CDATA[2]]></a>",
                           document));
    EXPECT_EQ(m_log.Take(), L"CVekXMLDTDRule::AddRuleEntry --> Entry with same name already exist\n"
                            L"CVekXMLParser::OnElementDecl --> Failed to add element entry\n"
                            L"CVekXMLDTDRuleEntry::AddChild --> Name already used c\n"
                            L"CVekXMLParser::AddChildEntries --> Failed to add element entry\n"
                            L"CVekXMLDTDAttributeList::AddAttributeEntry --> Entry with same name already exist\n"
                            L"CVekXMLParser::OnAttlistDecl --> Failed to add new attribute\n"
                            L"CVekXMLElement::AddCDATASection --> This Element already has CDATA section");
    EXPECT_EQ(DTDText(*document), L"a=5{b:1:0 :4:0(c:1:0 d:1:0)} a[x:CDATA!] ");
    EXPECT_EQ(TreeText(*document), L"a[x=]'1'");
}

TEST_F(ParserTest, NeverOpensExternalEntities)
{
    std::wstring const secret = WriteFileBytes(L"secret.dtd", "<!ELEMENT stolen EMPTY><!ENTITY s 'stolen'>");
    std::string const url(secret.begin(), secret.end());
    for (std::string const & bytes :
         {"<!DOCTYPE a SYSTEM '" + url + "'><a/>", "<!DOCTYPE a [<!ENTITY % p SYSTEM '" + url + "'>%p;]><a/>",
          "<!DOCTYPE a [<!ENTITY g SYSTEM '" + url + "'>]><a>&g;</a>"})
    {
        SCOPED_TRACE(bytes);
        auto const document = NewDocument();
        EXPECT_TRUE(ParseBytes(bytes, document));
        EXPECT_EQ(TreeText(*document), L"a");
        EXPECT_EQ(DTDText(*document), L"");
    }
}

TEST_F(ParserTest, StopsEntityBombs)
{
    std::string bomb = "<!DOCTYPE a [<!ENTITY e0 'aaaaaaaaaaaaaaaa'>";
    for (int i = 1; i < 12; ++i)
    {
        std::string const inner = "&e" + std::to_string(i - 1) + ";";
        bomb += "<!ENTITY e" + std::to_string(i) + " '" + inner + inner + inner + inner + inner + inner + inner + "'>";
    }
    for (std::string const body : {"<a>&e11;</a>", "<a v='&e11;'/>"})
    {
        SCOPED_TRACE(body);
        auto const document = NewDocument();
        EXPECT_FALSE(ParseBytes(bomb + "]>" + body, document));
        EXPECT_NE(
            m_log.Take().find(L"   Error code 43 limit on input amplification factor (from DTD and entities) breached"),
            std::wstring::npos);
    }
}

TEST_F(ParserTest, ReportsWhatCantBeRead)
{
    CVekRef<CVekXMLParser> const parser(new CVekXMLParser);
    auto const document = NewDocument();
    EXPECT_TRUE(parser->ParseXMLMemory("<a/>", 4, document.Get()) && parser->IsComplete());
    EXPECT_FALSE(parser->ParseXMLMemory(nullptr, 4, document.Get()) || parser->IsComplete());
    EXPECT_EQ(m_log.Take(), L"CVekXMLParser::ParseXMLMemory --> Text is NULL\n"
                            L"CVekXMLParser::ParseXMLFile --> Failed on parsing");
    EXPECT_FALSE(parser->ParseXMLMemory("<a/>", 4, nullptr));
    EXPECT_FALSE(parser->ParseXMLFile(L"any.xml", nullptr));
    EXPECT_EQ(m_log.Take(), L"CVekXMLParser::ParseXMLFile --> Document is NULL\n"
                            L"CVekXMLParser::ParseXMLFile --> Document is NULL");
    std::wstring const empty = WriteFileBytes(L"empty.xml", "");
    EXPECT_TRUE(parser->ParseXMLFile(empty.c_str(), document.Get())) << "kept: an empty file is no error";
    EXPECT_EQ(m_log.Take(), L"");
    EXPECT_FALSE(parser->ParseXMLFile(nullptr, document.Get()));
    EXPECT_EQ(m_log.Take(),
              L"CVekFileIOStream::Open --> Filename is NULL\nCVekXMLParser::Parse --> Failed to open file \n"
              L"CVekXMLParser::ParseXMLFile --> Failed on parsing");

    wchar_t const * const folder = _wgetenv(L"VEK_TEST_TMP");
    for (std::wstring const & path :
         {TemporaryPath(L"missing.xml"), std::wstring(folder ? folder : L"."), std::wstring(5000, L'x')})
    {
        SCOPED_TRACE(path.size());
        EXPECT_FALSE(parser->ParseXMLFile(path.c_str(), document.Get()));
        std::wstring const log = m_log.Take();
        EXPECT_EQ(
            log.find(L"CVekFileIOStream::Open --> Failed to open file\nCVekXMLParser::Parse --> Failed to open file " +
                     path.substr(0, 4000)),
            0U);
        EXPECT_NE(log.find(L"\nCVekXMLParser::ParseXMLFile --> Failed on parsing"), std::wstring::npos);
        EXPECT_EQ(parser->GetError().code, VEK_XML_ERROR_FILE);
        EXPECT_NE(parser->GetError().systemCode, 0u);
    }
}

} // namespace
