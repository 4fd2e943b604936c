#include "fuzz/Target.h"

namespace fuzz
{

namespace
{

char const * const xmlWords[] = {"<a>",
                                 "</a>",
                                 "<a b='c'/>",
                                 "<![CDATA[",
                                 "]]>",
                                 "<!DOCTYPE a [",
                                 "]>",
                                 "<!ELEMENT a ",
                                 "(b|c)*",
                                 "(b,c+)?",
                                 "<!ATTLIST a b",
                                 " CDATA ",
                                 "#IMPLIED>",
                                 "#PCDATA",
                                 "<!ENTITY e 'f'>",
                                 "&e;",
                                 "&#10;",
                                 "&#x10FFFF;",
                                 "&amp;",
                                 "<?xml encoding=",
                                 "'UTF-16'?>",
                                 "\xFF\xFE",
                                 "\xEF\xBB\xBF",
                                 "<!-- -->",
                                 "<EOL>",
                                 "&lt;EOL&gt;",
                                 "%p;",
                                 "'windows-1252'?>",
                                 "'Shift_JIS'?>",
                                 "SYSTEM 'd'",
                                 "&u;",
                                 "\r\n",
                                 "--",
                                 nullptr};
char const * const xmlSeeds[] = {
    "<?xml version='1.0'?><!DOCTYPE a [<!ELEMENT a (b|(c,d)+)*><!ELEMENT b EMPTY><!ELEMENT c ANY><!ATTLIST a x CDATA "
    "#REQUIRED y (u|v) 'u'><!ENTITY e 'text'><!NOTATION n SYSTEM 'x'>]><a x='1 &amp; &e;&#10;'><b/><c><![CDATA[bytes "
    "]] >]]></c><d z='\xC3\xA4'/>text<!-- comment --><?pi data?></a>",
    "<?xml version='1.0' encoding='EUC-JP'?>\r\n<!DOCTYPE a SYSTEM 'd' [<!ENTITY e SYSTEM 'f'>]><a "
    "b='&#13;&#9;&lt;EOL>' "
    "B='&quot;'>&e;&u;]]&gt;&#13;<![CDATA[ ]]]><![CDATA[]]>\xA5\xBD<b><![CDATA[x]]></b><?p q ?></a><!-- e -->",
    "\xEF\xBB\xBF<a><b c='1'/><B C='2'/></a>", "\xFF\xFE<\0a\0/\0>\0", nullptr};
char const * const lexerWords[] = {"if", "while", "==", "=",    "->",          "//",   "/*",
                                   "*/", "\n",    "\"", "0x1F", "017",         "1.5",  "1.2.3",
                                   "-",  "- 5",   "\a", "\r",   "99999999999", "a_b9", nullptr};
char const * const lexerSeeds[] = {"\1\2\3\4\5\6\7if (x == 10.5) // c\n y = \"text\" /* block */ -17 0x1F 1.2.3",
                                   nullptr};

char const * const packetWords[] = {"VKPF", "FLDR", "BLOB", "NUMB", nullptr};

} // namespace

constinit Target const all[] = {
    {"xml", RunXml, xmlWords, xmlSeeds, false, 4096},           {"paths", RunPaths, nullptr, nullptr, true, 300},
    {"lexer", RunLexer, lexerWords, lexerSeeds, true, 1000},    {"data", RunData, nullptr, nullptr, false, 4096},
    {"packets", RunPackets, packetWords, nullptr, false, 4096},
};
std::span<Target const> const targets(all);

} // namespace fuzz
