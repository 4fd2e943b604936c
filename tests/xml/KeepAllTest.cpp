// What a parser and a writer that keep all do: nothing of a file is lost, and nothing is written that can't be read.
#include "support/GuardHeap.h"
#include "support/TestStream.h"
#include "support/XMLKit.h"

namespace
{

using namespace std::string_literals;

struct KeepAllTest : XMLTest
{
    bool Parse(std::string const & bytes, IVekXMLDocument & document, VEK_XML_KEEP keep = VEK_XML_KEEP_ALL)
    {
        m_parser.SetKeepAll(keep);
        return m_parser.ParseXMLMemory(bytes.data(), static_cast<unsigned int>(bytes.size()), &document);
    }
    std::string Written(IVekXMLDocument & document)
    {
        TestStream stream;
        EXPECT_TRUE(m_writer.WriteXML(&stream, &document));
        return stream.bytes;
    }
    std::wstring Model(std::string const & bytes, VEK_XML_KEEP keep)
    {
        auto const document = NewDocument();
        EXPECT_TRUE(Parse(bytes, *document.Get(), keep));
        return TreeText(*document);
    }
    std::string Copied(std::string const & bytes)
    {
        auto const document = NewDocument();
        EXPECT_TRUE(Parse(bytes, *document.Get()) && m_parser.IsComplete());
        return Written(*document.Get());
    }
    std::wstring Reason() const
    {
        VekXMLWriteError const error = m_writer.GetError();
        return error.text + (*error.what ? L": "s + error.what : L""s);
    }
    void SetUp() override { m_writer.SetKeepAll(true); }

    CVekXMLParser m_parser;
    CVekXMLWriter m_writer;
};

TEST_F(KeepAllTest, ModelHoldsWhatIsKept)
{
    constexpr auto ALL = VEK_XML_KEEP_ALL;
    std::tuple<char const *, std::string, VEK_XML_KEEP, wchar_t const *> const rows[] = {
        {"text among elements", "<a>x<b>y</b>&amp;z</a>", ALL, L"a{#text'x' b{#text'y'} #text'&z'}"},
        {"white space", "<a>\r\n <b/>\t</a>", ALL, L"a{#text'\n ' b #text'\t'}"},
        {"text alone", "<a> <b/>x y<!--c--> z</a>", VEK_XML_KEEP_TEXT, L"a{b #text'x y z'}"},
        {"white space alone", "<a> <b/>x</a>", VEK_XML_KEEP_WHITE_SPACE, L"a{#text' ' b}"},
        {"comments and instructions", "<?p?><a><!-- c --><?q  d ?><?r?></a><!--e-->", ALL,
         L"a{#comment' c ' #processing-instruction[target=q]'d ' #processing-instruction[target=r]''}"},
        {"comments alone", "<a>x<!--c--><![CDATA[s]]></a>", VEK_XML_KEEP_COMMENTS, L"a's'{#comment'c'}"},
        {"a section alone is its element's own", "<a><![CDATA[x<y]]></a>", ALL, L"a'x<y'"},
        {"so is an empty one", "<a><![CDATA[]]></a>", ALL, L"a''"},
        {"white space that is dropped changes nothing", "<a>\n<![CDATA[x]]>\n</a>",
         VEK_XML_KEEP_TEXT | VEK_XML_KEEP_CDATA, L"a'x'"},
        {"white space that is kept does", "<a>\n<![CDATA[x]]></a>", ALL, L"a{#text'\n' #cdata-section'x'}"},
        {"sections in order", "<a><![CDATA[1]]>t<![CDATA[2]]><b/><![CDATA[]]></a>", ALL,
         L"a{#cdata-section'1' #text't' #cdata-section'2' b #cdata-section''}"},
        {"sections without borders", "<a>t<![CDATA[1]]><b><![CDATA[2]]></b></a>", VEK_XML_KEEP_TEXT,
         L"a{#text't1' b'2'}"},
        {"an empty one of these is nothing", "<a><![CDATA[]]><b/></a>", VEK_XML_KEEP_TEXT, L"a{b}"},
        {"entities are text", "<!DOCTYPE a [<!ENTITY e 'x<b/>y'>]><a>1&e;2</a>", ALL, L"a{#text'1x' b #text'y2'}"},
        {"entities that are not read", "<!DOCTYPE a SYSTEM 'd' [<!ENTITY e SYSTEM 'f'>]><a>1&e;&u;</a>", ALL,
         L"a{#text'1' #entity-reference'e' #entity-reference'u'}"},
        {"entities that are not known to be there", "<!DOCTYPE a [%u;]><a>1&v;</a>", ALL,
         L"a{#text'1' #entity-reference'v'}"},
        {"values", "<a x='&#10;&#9;&lt;EOL>&quot;' X='&amp;lt;'/>", ALL, L"a[x=\n\t&lt;EOL&#62;&quot; X=&amp;lt;]"},
        {"cut", "<a>x<b>y", ALL, L"a{#text'x' b{#text'y'}}"},
    };
    for (auto const & [name, bytes, keep, tree] : rows)
    {
        SCOPED_TRACE(name);
        EXPECT_EQ(Model(bytes, keep), tree);
        EXPECT_EQ(m_log.Take(), L"");
    }
    EXPECT_EQ(Model("<a> x<!--c--><![CDATA[s]]>\n</a>", VEK_XML_KEEP_NOTHING), L"a's'");
    auto const document = NewDocument();
    EXPECT_TRUE(Parse("<a/><!-- cut", *document.Get()));
    EXPECT_FALSE(m_parser.IsComplete()) << "it would be written as it is";
}

// Text is read in the source, or comes from the tokenizer where an entity is declared: nobody can tell.
TEST_F(KeepAllTest, TextIsTheSameWhoeverReadsIt)
{
    std::string together, apart;
    for (int i = 0; i < 40; ++i)
    {
        std::string const text =
            std::string(static_cast<std::size_t>(i), 'x') + "\xC3\xA9 \xD0\x94 \xEF\xBC\xA1\xF0\x9F\x98\x80&gt;\r\n";
        together += text;
        apart += "<b>" + text + "</b>";
    }
    std::pair<char const *, std::string> const rows[] = {
        {"white space", "\n  <b/>\r\n\t<b/>\r<b> </b>&#32;\n</a>"},
        {"references", "&lt;&amp;&quot;&apos;&#13;&#x1F600;<b/>&#65;</a>"},
        {"characters", together + apart + "</a>"},
        {"markup", "x<!--c--> <?p?>z<![CDATA[<&lt;\r\n\xC3\xA9]]]><b>\n<![CDATA[]]></b>]&gt;<![CDATA[s]]></a>"},
        {"sections alone", "<b><![CDATA[ \r]]></b><b><!--c--><![CDATA[s]]></b></a>"},
        {"cut", "x<b> y<c/>\n"},
        {"cut in a tag", "x<b>]]<c v='>"},
        {"cut in a section", "x<b>y<![CDATA[z>"},
        {"cut in a character", "x<b>y\xE2\x82"},
        {"cut in brackets", "x<b>y]]"},
    };
    for (auto const & [name, content] : rows)
    {
        for (unsigned keep = 0; keep <= VEK_XML_KEEP_ALL; ++keep)
        {
            SCOPED_TRACE(name + (" " + std::to_string(keep)));
            EXPECT_EQ(Model("<a>" + content, static_cast<VEK_XML_KEEP>(keep)),
                      Model("<!DOCTYPE a [<!ENTITY e ''>]><a>" + content, static_cast<VEK_XML_KEEP>(keep)));
        }
    }
    m_log.Take(); // of second sections
}

TEST_F(KeepAllTest, NoReferenceIsLost)
{
    // What the document type declares, the root element, and the tree; null where "u", which is not read, would be
    // lost.
    std::tuple<char const *, char const *, char const *, wchar_t const *> const rows[] = {
        {"a value", "<!ENTITY e ''>", "<a b='&lt;&#65;&e;'/>", L"a[b=&lt;A]"},
        {"one with it", "<!ENTITY e ''>", "<a><b c='&lt;&u;'/></a>", nullptr},
        {"text of an entity", "<!ENTITY e 'x&u;y'>", "<a>&e;</a>", L"a{#text'x' #entity-reference'u' #text'y'}"},
        {"a value in such text", "<!ENTITY e '<b c=\"&f;&lt;\"/>'><!ENTITY f '&#38;#60;'>", "<a>&e;</a>",
         L"a{b[c=&lt;&lt;]}"},
        {"one with it", "<!ENTITY e '<b c=\"&u;\"/>'>", "<a>&e;</a>", nullptr},
        {"one behind a second entity", "<!ENTITY f '&e;'><!ENTITY e '<b c=\"&u;\"/>'>", "<a>&f;</a>", nullptr},
        {"an entity's text in a value", "<!ENTITY e '&f;'><!ENTITY f 'x'>", "<a b='&e;'/>", L"a[b=x]"},
        {"one with it", "<!ENTITY e '&f;'><!ENTITY f '&u;'>", "<a b='&e;'/>", nullptr},
        {"a default", "<!ENTITY e 'x'><!ATTLIST a b CDATA '&e;&amp;' c CDATA ''>", "<a/>", L"a[b=x&amp; c=]"},
        {"one with it", "<!ATTLIST a b CDATA #FIXED '&#65;&u;'>", "<a/>", nullptr},
        {"one before its declaration", "<!ATTLIST a b CDATA '&e;'><!ENTITY e 'x'>", "<a/>", nullptr},
        {"one in a parameter entity", "<!ENTITY % p '<!ATTLIST a b CDATA \"&u;\">'>%p;", "<a/>", nullptr},
        {"none there", "<!ENTITY % p '<!ATTLIST a b CDATA \"x\">'>%p;<!ENTITY e '&u;'>", "<a/>", L"a[b=x]"},
    };
    for (auto const & [name, declarations, root, tree] : rows)
    {
        SCOPED_TRACE(name);
        auto const document = NewDocument();
        EXPECT_EQ(Parse("<!DOCTYPE a SYSTEM 'd' ["s + declarations + "]>" + root, *document.Get()), tree != nullptr);
        if (tree)
            EXPECT_EQ(TreeText(*document), tree);
        else
            EXPECT_EQ(m_parser.GetError().code, VEK_XML_ERROR_UNKNOWN_ENTITY);
        std::wstring const log = m_log.Take();
        EXPECT_TRUE(tree ? log.empty() : log.find(L"an entity that is not read: ") != std::wstring::npos)
            << log.c_str();
    }
}

TEST_F(KeepAllTest, CopiesSayTheSame)
{
    // Null stands for the source itself.
    std::tuple<char const *, std::string, char const *> const rows[] = {
        {"bare", "<a/>", nullptr},
        {"no white space of its own", "<a><b><c/></b><d>t</d></a>", nullptr},
        {"prolog and epilog",
         "<?xml version=\"1.0\" encoding='utf-8' standalone='no'?>\n<!-- 1 --><!DOCTYPE a PUBLIC 'p' \"s\" [\n<!ENTITY "
         "% "
         "p '<!ELEMENT b ANY>'>%p;<!ENTITY e '&#60;b/>'>\n]>\n<?pi?>\n<a b=\"1\"/>\n<!--2-->\n",
         nullptr},
        {"a mark", "\xEF\xBB\xBF<a>\xE2\x82\xAC</a>", nullptr},
        {"line ends", "<?xml version='1.0'?>\r\n<a>\r\n<![CDATA[\r\n]]></a>\r\n", nullptr},
        {"line ends of UTF-16", "\xFF\xFE<\0a\0>\0\r\0\n\0<\0/\0a\0>\0\r\0\n\0"s, nullptr},
        {"UTF-16 big-endian", "\xFE\xFF\0<\0a\0>\xD8\x3D\xDE\x00\0<\0/\0a\0>"s, nullptr},
        {"beyond the basic plane", "<a v=\"\xF0\x9F\x98\x80\">\xF4\x8F\xBF\xBD<!--\xF0\x9F\x98\x80--></a>", nullptr},
        {"values", "<a v=\"&#10;&#9;&#13;&lt;&amp;&quot;&apos;&lt;EOL&#62;&amp;#10;\"/>", nullptr},
        {"names that differ in case", "<a B=\"1\" b=\"2\"/>", nullptr},
        {"text", "<a>&lt;&amp;> ]&gt; ]]&gt;\"'&#13;\n\t</a>", nullptr},
        {"sections", "<a><![CDATA[<&]] >]]><![CDATA[]]><b><![CDATA[]]></b></a>", nullptr},
        {"references", "<!DOCTYPE a SYSTEM \"d\"><a>&u;<b/>&v;</a>", nullptr},
        {"instructions", "<a><?p q ?><?r?></a>", nullptr},
        {"another encoding", "<?xml version='1.0' encoding='ISO-8859-1'?>\r\n<a b=\"\xE9\">\xE9&#8364;&#128512;</a>",
         nullptr},
        {"with a reference in a value",
         "<?xml version='1.0' encoding='windows-1252'?><!DOCTYPE a [<!ENTITY e '&#1046;'>]><a b='\x80&e;'/>",
         "<?xml version='1.0' encoding='windows-1252'?><!DOCTYPE a [<!ENTITY e '&#1046;'>]><a b=\"\x80&#1046;\"/>"},
        {"without a place for one",
         "<?xml version='1.0' encoding='US-ASCII'?><!DOCTYPE a [<!ENTITY e '<!--&#233;-->'>]><a>&e;</a>",
         "<?xml version='1.0' encoding='UTF-8'?><!DOCTYPE a [<!ENTITY e '<!--&#233;-->'>]><a><!--\xC3\xA9--></a>"},
    };
    for (auto const & [name, bytes, written] : rows)
    {
        SCOPED_TRACE(name);
        EXPECT_EQ(Copied(bytes), written ? written : bytes);
        EXPECT_EQ(m_log.Take(), L"");
    }
}

TEST_F(KeepAllTest, WritesWhatHostsMade)
{
    auto const document = NewDocument();
    Parse("<a><b/>x<c><d/><e y='1'><!--f--></e></c></a>", *document.Get());
    IVekXMLElement & c = *document->FindElementFromPath(L"c", false);
    c.SetAttributeValue(L"v", VEK_VARIANT(L"1\n2"), true);
    c.AddAttribute(L"w", VEK_VARIANT(L""), -1);
    c.SetAttributeValue(1, VEK_VARIANT(L"a&b<c \"&#128512;&#0;&nbsp;<EOL>"));
    constexpr wchar_t section[] = L"x]]>y\r]]";
    c.AddCDATASection(reinterpret_cast<unsigned char const *>(section), sizeof section - sizeof *section);
    char const * const all =
        "<a><b/>x<c v=\"1&#10;2\" w=\"a&amp;b&lt;c &quot;&#128512;&amp;#0;&amp;nbsp;&#10;\"><![CDATA["
        "x]]]]><![CDATA[>y]]>&#13;<![CDATA[]]]]><d/><e y=\"1\"><!--f--></e></c></a>";
    EXPECT_EQ(Written(*document.Get()), all);
    c.RemoveCDATASection();
    c.RemoveAllAttributes();
    m_writer.SetIndentation(1);
    EXPECT_EQ(Written(*document.Get()), "<a><b/>x<c><d/><e y=\"1\"><!--f--></e></c></a>") << "below text";
    document->GetRootElement()->RemoveChild(1);
    EXPECT_EQ(Written(*document.Get()), "<a>\n <b/>\n <c>\n  <d/>\n  <e y=\"1\">\n   <!--f-->\n  </e>\n </c>\n</a>");
    m_writer.SetKeepAllEncoding(VEK_XML_ENCODING_UTF16_BIG);
    VekSetXMLProlog(*document.Get(), L"<?xml version='1.0' encoding='UTF-8'?>\r\n");
    EXPECT_EQ(Written(*document.Get()).substr(0, 8), "\xFE\xFF\0<\0?\0x"s);
    EXPECT_STREQ(VekGetXMLProlog(*document.Get()), L"<?xml version='1.0' encoding='UTF-8'?>\n");
    EXPECT_STREQ(VekGetXMLEpilog(*NewDocument().Get()), L"");

    auto const fresh = NewDocument();
    fresh->SetRootElement(NewElement(L"r").Get());
    m_writer.SetKeepAllEncoding(VEK_XML_ENCODING_AS_SOURCE);
    EXPECT_EQ(Written(*fresh.Get()), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<r/>\n");
}

TEST_F(KeepAllTest, RefusesWhatNobodyCouldRead)
{
    using Change = void (*)(IVekXMLDocument &, IVekXMLElement &);
    constexpr wchar_t const * COMMENT = L"comment with \"--\" can not be written";
    constexpr wchar_t const * PROLOG = L"prolog, epilog or a reference to an entity can not be written";
    std::tuple<char const *, wchar_t const *, wchar_t const *, wchar_t const *, Change> const rows[] = {
        {"no name", L"", nullptr, L"name can not be written", nullptr},
        {"a name with a blank", L"a b", nullptr, L"name can not be written: a b", nullptr},
        {"a name that begins with a digit", L"1", nullptr, L"name can not be written: 1", nullptr},
        {"a name of no node", L"#other", nullptr, L"name can not be written: #other", nullptr},
        {"a name beyond the basic plane", L"a\xD83D\xDE00", nullptr, L"name can not be written: a\xD83D\xDE00",
         nullptr},
        {"a sign as a name", L"\u20AC", nullptr, L"name can not be written: \u20AC", nullptr},
        {"a control character", L"#text", L"a\x1", L"character can not be written: U+0001", nullptr},
        {"half a character", L"#text", L"\xDE00\xD83D", L"character can not be written: U+DE00", nullptr},
        {"no character", L"#cdata-section", L"\xFFFF", L"character can not be written: U+FFFF", nullptr},
        {"two hyphens", L"#comment", L"a--b", COMMENT, nullptr},
        {"a hyphen at the end", L"#comment", L"a-", COMMENT, nullptr},
        {"a return in a comment", L"#comment", L"\r", L"character can not be written: U+000D", nullptr},
        {"no target", L"#processing-instruction", L"x",
         L"processing instruction can not be written: #processing-instruction", nullptr},
        {"an instruction's end", L"#processing-instruction", L"x?>", L"processing instruction can not be written: t",
         [](auto &, auto & node) { node.AddAttribute(L"target", VEK_VARIANT(L"t"), -1); }},
        {"a reserved target", L"#processing-instruction", L"x", L"processing instruction can not be written: XML",
         [](auto &, auto & node) { node.AddAttribute(L"target", VEK_VARIANT(L"XML"), -1); }},
        {"an entity that isn't there", L"#entity-reference", L"e", PROLOG, nullptr},
        {"children of text", L"#text", L"x", L"children or attributes can not be written below: #text",
         [](auto &, auto & node) { node.FindChild(L"b", true); }},
        {"control characters in a value", L"e", nullptr, L"character can not be written: U+0008",
         [](auto &, auto & node) { node.AddAttribute(L"a", VEK_VARIANT(L"\b"), -1); }},
        {"a name twice", L"e", nullptr, L"two attributes of one name can not be written: c",
         [](auto &, auto & node)
         {
             for (wchar_t const * name : {L"a", L"b", L"c"})
                 node.AddAttribute(name, VEK_VARIANT(L""), -1);
             node.RenameAttribute(L"a", L"c");
         }},
        {"an open comment", L"e", nullptr, PROLOG,
         [](auto & document, auto &) { VekSetXMLProlog(document, L"<!-- "); }},
        {"a root before the root", L"e", nullptr, PROLOG,
         [](auto & document, auto &) { VekSetXMLProlog(document, L"<a>"); }},
        {"two roots", L"e", nullptr, PROLOG, [](auto & document, auto &) { VekSetXMLEpilog(document, L"<a/>"); }},
    };
    std::wstring const path = TemporaryPath(L"kept.xml");
    for (auto const & [name, element, text, reason, change] : rows)
    {
        SCOPED_TRACE(name);
        auto const document = NewDocument();
        auto const root = NewElement(L"r");
        document->SetRootElement(root.Get());
        EXPECT_TRUE(m_writer.WriteXMLFile(path.c_str(), document.Get()));
        std::string const before = FileBytes(path);
        auto const node = NewElement(element);
        root->AddChild(node.Get(), -1);
        if (text)
            node->AddCDATASection(reinterpret_cast<unsigned char const *>(text),
                                  static_cast<int>(std::wcslen(text) * sizeof *text));
        if (change)
            change(*document.Get(), *node.Get());
        EXPECT_FALSE(m_writer.WriteXMLFile(path.c_str(), document.Get()));
        EXPECT_EQ(Reason(), reason);
        EXPECT_EQ(m_log.Take().find(L"CVekXMLWriter::WriteXML --> "s + reason), 0u);
        EXPECT_EQ(FileBytes(path), before) << "the old file stays";
    }
    auto const document = NewDocument();
    EXPECT_FALSE(m_writer.WriteXMLFile(path.c_str(), document.Get()));
    EXPECT_EQ(m_writer.GetError().code, VEK_XML_WRITE_ERROR_NO_DOCUMENT);
    document->SetRootElement(NewElement(L"r").Get());
    for (bool const keepsAll : {true, false})
    {
        m_writer.SetKeepAll(keepsAll);
        EXPECT_FALSE(m_writer.WriteXMLFile(TemporaryPath(L"none/x.xml").c_str(), document.Get()));
        EXPECT_EQ(m_writer.GetError().code, VEK_XML_WRITE_ERROR_FILE);
        EXPECT_EQ(m_writer.GetError().systemCode, 3u);
        TestStream full;
        full.failFrom = 1;
        EXPECT_FALSE(m_writer.WriteXML(&full, document.Get()));
        EXPECT_EQ(m_writer.GetError().code, VEK_XML_WRITE_ERROR_STREAM);
        EXPECT_TRUE(m_writer.WriteXMLFile(path.c_str(), document.Get()));
        EXPECT_EQ(Reason(), L"");
    }
}

TEST_F(KeepAllTest, ReadsTheEncodingsOfTheSystem)
{
    std::tuple<char const *, char const *, wchar_t const *, unsigned int> const rows[] = {
        {"windows-1252", "\x80\xE9", L"\u20AC\u00E9", 1252},
        {"Windows-1251", "\xC0", L"\u0410", 1251},
        {"ISO-8859-15", "\xA4", L"\u20AC", 28605},
        {"KOI8-R", "\xC1", L"\u0430", 20866},
        {"Shift_JIS", "\x83\x5C\xB1", L"\u30BD\uFF71", 932},
        {"EUC-JP", "\xA5\xBD\x8E\xB1\x8F\xB0\xA1", L"\u30BD\uFF71\u4E02", 20932},
        {"GBK", "\xC4\xE3", L"\u4F60", 936},
        {"Big5", "\xA4\x40", L"\u4E00", 950},
        {"EUC-KR", "\xB0\xA1", L"\uAC00", 949},
    };
    for (auto const & [name, bytes, text, codePage] : rows)
    {
        SCOPED_TRACE(name);
        std::string const source =
            "<?xml version='1.0' encoding='"s + name + "'?><!--" + bytes + "--><a>" + bytes + "</a>";
        auto const document = NewDocument();
        EXPECT_FALSE(ParseBytes(source, document)) << "kept: without being asked it is unknown";
        EXPECT_TRUE(Parse(source, *document.Get()));
        EXPECT_EQ(TreeText(*document), L"a{#text'"s + text + L"'}");
        EXPECT_EQ(std::wstring(VekGetXMLProlog(*document.Get())).substr(34 + std::strlen(name) + 3),
                  L"<!--"s.substr(4) + text + L"-->");
        EXPECT_EQ(m_parser.GetSourceCodePage(), codePage);
        EXPECT_EQ(Written(*document.Get()), source);
        m_writer.SetKeepAllEncoding(VEK_XML_ENCODING_UTF8);
        EXPECT_EQ(Written(*document.Get()).find("<?xml version='1.0' encoding='UTF-8'?><!--"), 0u);
        m_writer.SetKeepAllEncoding(VEK_XML_ENCODING_AS_SOURCE);
        m_log.Take();
    }
    for (char const * name : {"UTF-7", "ISO-2022-JP", "GB18030", "x"})
    {
        auto const document = NewDocument();
        EXPECT_FALSE(Parse("<?xml version='1.0' encoding='"s + name + "'?><a/>", *document.Get())) << name;
        EXPECT_NE(m_log.Take().find(L"Encoding not supported"), std::wstring::npos);
    }
}

TEST_F(KeepAllTest, TellsPositions)
{
    std::tuple<char const *, std::string> const rows[] = {
        {"UTF-8", "<?xml version='1.0'?>\n<a>\n  <b x = '1' y=\"\xC3\xA9>/\"\n z=''/><c></c></a>"},
        {"with a mark", "\xEF\xBB\xBF<a><b x = '1' y=\"\xC3\xA9>/\" z=''/><c></c></a>"},
        {"UTF-16",
         "\xFF\xFE<\0a\0>\0\n\0<\0b\0 \0x\0=\0'\0\x31\0'\0 \0y\0=\0\"\0\xE9\0>\0/\0\"\0 \0z\0=\0'\0'\0/\0>\0<\0c\0>\0<\0/\0c\0>\0<\0/\0a\0>\0"s},
    };
    m_parser.SetKeepPositions(true);
    for (auto const & [name, bytes] : rows)
    {
        SCOPED_TRACE(name);
        auto const document = NewDocument();
        ASSERT_TRUE(Parse(bytes, *document.Get(), VEK_XML_KEEP_NOTHING));
        IVekXMLElement * const b = document->FindElementFromPath(L"b", false);
        VekXMLPosition at;
        ASSERT_TRUE(m_parser.GetPosition(b, at));
        auto const plain = [bytes = bytes](unsigned from, unsigned to)
        {
            std::string text = bytes.substr(from, to - from);
            std::erase(text, '\0');
            return text;
        };
        std::string const tag = plain(at.offset, at.offset + at.length);
        EXPECT_TRUE(tag.starts_with("<b") && tag.ends_with("/>")) << tag;
        EXPECT_EQ(at.end, at.offset + at.length);
        std::string const before = plain(0, at.offset);
        EXPECT_EQ(at.line, 1u + static_cast<unsigned>(std::count(before.begin(), before.end(), '\n')));
        char const * const values[] = {"1", nullptr, ""};
        for (int i : {0, 2})
        {
            unsigned int offset = 0;
            unsigned int length = 9;
            EXPECT_TRUE(m_parser.GetAttributePosition(b, i, offset, length));
            EXPECT_EQ(plain(offset, offset + length), values[i]);
            EXPECT_TRUE(bytes[offset - (bytes[1] == '\xFE' ? 2 : 1)] == '\'');
        }
        ASSERT_TRUE(m_parser.GetPosition(document->FindElementFromPath(L"c", false), at));
        EXPECT_EQ(plain(at.offset, at.end), "<c></c>");
        ASSERT_TRUE(m_parser.GetPosition(document->GetRootElement(), at));
        EXPECT_EQ(at.end, bytes.size());
        EXPECT_EQ(at.column, 1u) << "a mark is no column";
    }
    auto const document = NewDocument();
    EXPECT_TRUE(Parse("<!DOCTYPE a [<!ENTITY e '<b x=\"1\"/>'><!ATTLIST a d CDATA 'v'>]><a w='&lt;'>\n&e;<c/></a>",
                      *document.Get()));
    VekXMLPosition at;
    unsigned int offset = 0;
    unsigned int length = 0;
    IVekXMLElement * const root = document->GetRootElement();
    EXPECT_FALSE(m_parser.GetPosition(document->FindElementFromPath(L"b", false), at)) << "of an entity's text";
    EXPECT_TRUE(m_parser.GetPosition(document->FindElementFromPath(L"c", false), at));
    EXPECT_EQ(at.line, 2u);
    EXPECT_EQ(at.column, 4u);
    EXPECT_TRUE(m_parser.GetAttributePosition(root, 0, offset, length));
    EXPECT_FALSE(m_parser.GetAttributePosition(root, 1, offset, length)) << "a default";
    EXPECT_FALSE(m_parser.GetAttributePosition(root, -1, offset, length));
    EXPECT_FALSE(m_parser.GetPosition(nullptr, at));
    m_parser.SetKeepPositions(false);
    EXPECT_TRUE(m_parser.GetPosition(root, at)) << "until the next parse";
    EXPECT_TRUE(Parse("<a/>", *NewDocument().Get()));
    EXPECT_FALSE(m_parser.GetPosition(root, at));
}

TEST_F(KeepAllTest, BearsAnyAmount)
{
    constexpr std::size_t many = VekGuard::Active ? 5'000 : 300'000;
    std::string text = "<a>" + std::string(many * 100, '\n') + "&amp;";
    std::string const nested = "x<a>", closed = "</a>y";
    for (std::size_t i = 0; i < many; ++i)
        text += nested;
    text += "z";
    for (std::size_t i = 0; i < many; ++i)
        text += closed;
    for (std::size_t i = 0; i < many; ++i)
        text += "<!--c-->";
    text += "</a>";
    EXPECT_TRUE(Copied(text) == text);
}

} // namespace
