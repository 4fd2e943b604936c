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

char const * const encodingsWords[] = {"\x80\x81\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x8D\x8E\x8F",
                                       "\x90\x91\x92\x93\x94\x95\x96\x97\x98\x99\x9A\x9B\x9C\x9D\x9E\x9F",
                                       "\xA0\xA1\xA2\xA3\xA4\xA5\xA6\xA7\xA8\xA9\xAA\xAB\xAC\xAD\xAE\xAF",
                                       "\xB0\xB1\xB2\xB3\xB4\xB5\xB6\xB7\xB8\xB9\xBA\xBB\xBC\xBD\xBE\xBF",
                                       "\xC0\xC1\xC2\xC3\xC4\xC5\xC6\xC7\xC8\xC9\xCA\xCB\xCC\xCD\xCE\xCF",
                                       "\xD0\xD1\xD2\xD3\xD4\xD5\xD6\xD7\xD8\xD9\xDA\xDB\xDC\xDD\xDE\xDF",
                                       "\xE0\xE1\xE2\xE3\xE4\xE5\xE6\xE7\xE8\xE9\xEA\xEB\xEC\xED\xEE\xEF",
                                       "\xF0\xF1\xF2\xF3\xF4\xF5\xF6\xF7\xF8\xF9\xFA\xFB\xFC\xFD\xFE\xFF",
                                       "<\xE4>",
                                       "\xB0\xA1",
                                       "\x81\x40",
                                       "\xA4\xA2\xA4\xA4",
                                       "&#8364;",
                                       nullptr};
char const * const encodingsSeeds[] = {"\3<a b='\x83\x41'><c>\xB1&#177;</c></a>", "\4<a>\xA4\xA2\x8E\xB1</a>",
                                       "\13<!DOCTYPE a [<!ENTITY e '\xE4'>]><\xE4 \xF6='&e;'/>", nullptr};
char const * const setSeeds[] = {"\1\1\1\5abcdefghijklmnop<a x='1'>\n <b a=\"2\" A = '&lt;'/>\n <b>t</b></a>", nullptr};
char const * const sceneWords[] = {" color='1,2,3'",
                                   " min='0 0 0'",
                                   " max='1 2 3'",
                                   " at='1,1,1e3'",
                                   " a='0 0 0'",
                                   " b='1 0 0'",
                                   " c='0 1 0'",
                                   "<curve>",
                                   "</curve>",
                                   "<point ",
                                   "<triangle ",
                                   "<box ",
                                   "<grid ",
                                   "<camera ",
                                   " size='5'",
                                   " step='2'",
                                   " plane='xy'",
                                   " degree='2'",
                                   " knots='0 0 0 1 1 1'",
                                   " eye='1 2 3'",
                                   " target='0,0,0'",
                                   " up='0 1 0'",
                                   " weight='2'",
                                   " angle='60'",
                                   " projection='orthographic'",
                                   " system='left-handed'",
                                   "1e9",
                                   "-1e9",
                                   "1e-9",
                                   nullptr};
char const * const sceneSeeds[] = {
    "<scene><box min='-1 -1 -1' max='1 1 1' color='9,8,7'/><triangle a='0 0 0' b='1 0 0' c='0 1 0' name='t'/><grid "
    "size='4' step='2' center='0 1 0' plane='xy'/></scene>",
    "<scene><camera eye='5 4 9' target='0 0 0' up='0 1 0' angle='50' projection='orthographic' "
    "system='left-handed'/><curve degree='2'><point at='0 0 0'/><point at='1,1,0' weight='3'/><point at='2 0 "
    "1'/></curve></scene>",
    "<scene><curve degree='1' knots='0 0 1 1'><point at='0 0 0'/><point at='1e9 1 -1e9'/></curve></scene>", nullptr};

} // namespace

constinit Target const all[] = {
    {"xml", RunXml, xmlWords, xmlSeeds, false, Grammar::Xml, 2000},
    {"lossless", RunLossless, xmlWords, xmlSeeds, false, Grammar::Xml, 2000},
    {"encodings", RunEncodings, encodingsWords, encodingsSeeds, false, Grammar::Xml, 1000},
    {"set", RunSet, xmlWords, setSeeds, false, Grammar::Xml, 1000},
    {"scene", RunScene, sceneWords, sceneSeeds, false, Grammar::Xml, 1000},
    {"data", RunData, nullptr, nullptr, false, Grammar::Data, 1000},
    {"packets", RunPackets, packetWords, nullptr, false, Grammar::None, 4096},
    {"lexer", RunLexer, lexerWords, lexerSeeds, true, Grammar::None, 1000},
    {"paths", RunPaths, nullptr, nullptr, true, Grammar::None, 300},
    {"scan", RunScan, nullptr, nullptr, true, Grammar::None, 200},
};
std::span<Target const> const targets(all);

} // namespace fuzz
