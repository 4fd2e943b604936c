#include "Commands.h"
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

Languages are c (files .c .h .cpp ...) and glsl (.glsl .vert .frag ...); without --lang the file's name decides, and
c is taken for any other. A language of your own is an XML file like this, its lists separated by blanks:

  <language name="basic" files="bas" escape="\">
     <keywords kind="keyword" case="FALSE" text="if then else"/>
     <operators text="+ * / = ( )"/>
     <comment start="rem"/>
     <comment start="(*" end="*)"/>
  </language>

"kind" is what the list calls such keywords, case="FALSE" finds them in any case, a comment without "end" reaches to the
end of its line, and "escape" is the character that takes its meaning from a quote in a string.

The lexer's rules are its own: a minus sign begins a number, 0x is none, and strings stand in double quotes.)help";

void Add(Command & program)
{
    auto const request = std::make_shared<LexRequest>();
    program.AddCommand("lex", "List or count the tokens of a text file")
        .AddText("FILE", request->file, "The file")
        .AddOption("--lang", "c|glsl|LANG.xml", request->language, "The language: a name, or an XML file")
        .AddFlag("--count", request->count, "Count the tokens by kind")
        .AddOption("--html", "OUT", request->html, "Write the text with its tokens coloured")
        .SetFooter(ABOUT_LANGUAGES)
        .SetWork([request] { return RunLex(*request); });
}

} // namespace

CommandGroup const LEX_COMMANDS = {OVERVIEW, Add};

} // namespace tool
