#include "Commands.h"
#include "Utf8.h"
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

void Add(CLI::App & app, Command & command)
{
    struct Arguments
    {
        std::string file, language, html;
        bool count = false;
    };
    auto const arguments = std::make_shared<Arguments>();
    CLI::App * const lex = app.add_subcommand("lex", "List or count the tokens of a text file");
    AddText(lex, "FILE", arguments->file, "The file");
    lex->add_option("--lang", arguments->language, "The language: a name, or an XML file")
        ->type_name("c|glsl|LANG.xml");
    lex->add_flag("--count", arguments->count, "Count the tokens by kind");
    lex->add_option("--html", arguments->html, "Write the text with its tokens coloured")->type_name("OUT");
    lex->footer(ABOUT_LANGUAGES);
    RunWith(lex, arguments, command,
            [](Arguments const & given) {
                return RunLex({FromUtf8(given.file), FromUtf8(given.language), FromUtf8(given.html), given.count});
            });
}

} // namespace

CommandGroup const LEX_COMMANDS = {OVERVIEW, Add};

} // namespace tool
