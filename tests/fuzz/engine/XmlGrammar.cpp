#include "fuzz/engine/Grammar.h"

#include <algorithm>
#include <vector>

namespace fuzz
{

namespace
{

struct Range
{
    std::size_t begin, end;
};

constexpr char const * NAMES[] = {"a", "b", "c", "A", "x:y", "\xC3\xA4"};
constexpr char const * VALUES[] = {"",      "1",     "a b",   "&lt;", "&#10;", "&e;",    "&#x1F600;", "\xE2\x82\xAC",
                                   "0 1 2", "<EOL>", "&#38;", "'",    "\t",    "&quot;", "1e9",       "urn:u"};
constexpr char const * PIECES[] = {
    "text",   "&e;",   "&amp;", "<!-- c -->", "<?p q?>",          "<![CDATA[d]]>", "<![CDATA[]]>",      "]]",
    "\r\n  ", "&#13;", "<b/>",  "<a></a>",    "\xF0\x9F\x98\x80", "&#60;",         "<x:y xmlns:x='u'/>"};
constexpr char const * DECLARATIONS[] = {"<!ELEMENT a (b|(c,d)+)*>",
                                         "<!ELEMENT b (#PCDATA|a)*>",
                                         "<!ELEMENT c EMPTY>",
                                         "<!ELEMENT d ANY>",
                                         "<!ELEMENT a ((b?,c)|(c*,(a|b)))>",
                                         "<!ATTLIST a b CDATA #IMPLIED>",
                                         "<!ATTLIST a c (u|v) 'u' d ID #REQUIRED>",
                                         "<!ATTLIST b x NMTOKENS '  p q '>",
                                         "<!ENTITY e 'f'>",
                                         "<!ENTITY e '<b c=\"1\">&g;</b>'>",
                                         "<!ENTITY g '&#38;lt;'>",
                                         "<!ENTITY % p '<!ENTITY h \"i\">'>%p;",
                                         "<!ENTITY u SYSTEM 'v' NDATA n>",
                                         "<!NOTATION n PUBLIC 'o'>",
                                         "<!-- c -->",
                                         "<?p q?>"};

// Behind the next end of that kind.
std::size_t Behind(std::string const & text, std::size_t at, char const * end)
{
    std::size_t const found = text.find(end, at);
    return found == text.npos ? text.size() : found + std::char_traits<char>::length(end);
}

// Behind a tag or a declaration, whose quotes may hold anything.
std::size_t BehindTag(std::string const & text, std::size_t at)
{
    char quote = 0;
    int open = 0; // a document type's own declarations
    for (; at < text.size(); ++at)
    {
        char const byte = text[at];
        if (quote || byte == '"' || byte == '\'')
            quote = quote == byte ? char{} : quote ? quote : byte;
        else if (byte == '[' || byte == ']')
            open += byte == '[' ? 1 : -1;
        else if (byte == '>' && open <= 0)
            return at + 1;
    }
    return text.size();
}

// All elements, each behind those that it holds.
std::vector<Range> FindElements(std::string const & text)
{
    std::vector<Range> elements;
    std::vector<std::size_t> open;
    for (std::size_t at = text.find('<'); at < text.size(); at = text.find('<', at))
    {
        std::size_t const begin = at;
        if (text.compare(at, 4, "<!--") == 0)
            at = Behind(text, at, "-->");
        else if (text.compare(at, 9, "<![CDATA[") == 0)
            at = Behind(text, at, "]]>");
        else if (text.compare(at, 2, "<?") == 0)
            at = Behind(text, at, "?>");
        else
        {
            at = BehindTag(text, at + 1);
            char const kind = begin + 1 < text.size() ? text[begin + 1] : char{};
            bool const isEnd = kind == '/', isWhole = at - begin > 2 && text[at - 2] == '/';
            if (isWhole && !isEnd && kind != '!')
                elements.push_back({begin, at});
            else if (isEnd && !open.empty())
            {
                elements.push_back({open.back(), at});
                open.pop_back();
            }
            else if (!isEnd && kind != '!')
                open.push_back(begin);
        }
    }
    return elements;
}

std::string MakeAttribute(Dice & dice)
{
    static constexpr char const *blanks[] = {" ", " ", " ", "\n  ", "\t"}, *equals[] = {"=", "=", "=", " = ", "=\r\n "};
    std::string const value = dice.Of(VALUES), quote = value != "'" && dice.Below(3) == 0 ? "'" : "\"";
    return std::string(dice.Of(blanks)) + dice.Of(NAMES) + dice.Of(equals) + quote + value + quote;
}

std::string MakeElement(Dice & dice)
{
    std::string const name = dice.Of(NAMES);
    std::string element = "<" + name;
    for (std::size_t count = dice.Below(3); count > 0; --count)
        element += MakeAttribute(dice);
    element += ">";
    for (std::size_t count = dice.Below(4); count > 0; --count)
        element += dice.Of(PIECES);
    return element + "</" + name + ">";
}

void AddDeclaration(std::string & text, Dice & dice)
{
    std::size_t const type = text.find("<!DOCTYPE"), open = text.find('[', type);
    if (type != text.npos && open < text.find('>', type))
    {
        text.insert(open + 1, dice.Of(DECLARATIONS));
        return;
    }
    std::size_t const declared = text.find("?>"), at = declared == text.npos ? text.find('<') : declared + 2;
    if (type == text.npos && at < text.size())
        text.insert(at, std::string("<!DOCTYPE ") + dice.Of(NAMES) + " [" + dice.Of(DECLARATIONS) + "]>");
}

} // namespace

void ChangeXml(std::string & text, std::string const & other, Dice & dice)
{
    std::vector<Range> const elements = FindElements(text);
    if (elements.empty())
    {
        text.resize(std::min(text.find('<'), text.size()));
        text += MakeElement(dice);
        return;
    }
    Range const chosen = elements[dice.Below(elements.size())];
    std::string const element = text.substr(chosen.begin, chosen.end - chosen.begin);
    std::size_t const tagEnd = BehindTag(text, chosen.begin), isWhole = tagEnd == chosen.end;
    // Where something has a place: behind the start tag, or around one that has no other tag.
    std::size_t const place = !isWhole ? tagEnd : dice.Below(2) ? chosen.begin : chosen.end;
    switch (dice.Below(8))
    {
    case 0:
    {
        std::vector<Range> const others = FindElements(other);
        Range const from = others.empty() ? Range{0, 0} : others[dice.Below(others.size())];
        std::size_t const replaced = dice.Below(2) ? element.size() : 0;
        text.replace(replaced ? chosen.begin : place, replaced, other, from.begin, from.end - from.begin);
        break;
    }
    case 1:
        text.insert(place, element);
        break;
    case 2:
        text.erase(chosen.begin, element.size());
        break;
    case 3:
    {
        std::string const name = dice.Of(NAMES);
        text.replace(chosen.begin, element.size(),
                     "<" + name + MakeAttribute(dice) + ">" + element + "</" + name + ">");
        break;
    }
    case 4:
        text.insert(tagEnd - (isWhole ? 2 : 1), MakeAttribute(dice));
        break;
    case 5:
        text.insert(place, dice.Of(PIECES));
        break;
    case 6:
        AddDeclaration(text, dice);
        break;
    default:
        text.insert(place, MakeElement(dice));
    }
}

} // namespace fuzz
