#include "Commands.h"
#include "StandardFiles.h"
#include "lex/Lex.h"

namespace tool
{

namespace
{

constexpr char const * OVERVIEW =
    R"(  vek lex FILE [--lang L] [--count] [--html OUT]   the tokens of a text file
)";

constexpr char const * ABOUT_LANGUAGES =
    R"help(A list has the line and the column (from 1), the kind and the text of each token. The file is UTF-8, or UTF-16 with a
byte order mark.

Languages are c (files .c .h .cpp ...), glsl (.glsl .vert .frag ...) and obj (.obj .mtl); without --lang the file's
name decides, and c is taken for any other. A language of your own is an XML file like this, its lists separated by
blanks:

  <language name="basic" files="bas" escape="\">
     <keywords kind="keyword" case="FALSE" text="if then else"/>
     <operators text="+ * / = ( )"/>
     <comment start="rem"/>
     <comment start="(*" end="*)"/>
  </language>

Numbers may have exponents, suffixes and the prefixes 0x and 0b. Minus signs are operators if the language has any that
begin so; signed="TRUE" leaves them to the numbers behind them all the same, and quote="'" opens texts as a
double quote does. "kind" is what the list calls such keywords, case="FALSE" finds them in any case, a comment without
"end" reaches to the end of its line, and "escape" is the character that takes its meaning from a quote in a string.)help";

void Add(Command & program)
{
    auto const request = std::make_shared<LexRequest>();
    program.AddCommand("lex", "List or count the tokens of a text file")
        .AddText("FILE", request->file, "The file, \"-\" for standard input")
        .AddOption("--lang", "c|glsl|obj|LANG.xml", request->language, "The language: a name, or an XML file")
        .AddFlag("--count", request->count, "Count the tokens by kind")
        .AddOption("--html", "OUT", request->html, "Write the text with its tokens coloured")
        .SetFooter(ABOUT_LANGUAGES)
        .SetWork(
            [request]
            {
                LexRequest lex = *request;
                return WithFiles(request->file, request->html,
                                 [&lex](std::wstring const & from, std::wstring const & to)
                                 {
                                     lex.file = from;
                                     lex.html = to;
                                     return RunLex(lex);
                                 });
            });
}

} // namespace

CommandGroup const LEX_COMMANDS = {OVERVIEW, Add};

} // namespace tool
