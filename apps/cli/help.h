// Everything cartulon-cli says about itself, printed from the commands'
// tables: the help, the usage after a refused command line, and, through
// hidden options the build calls, the man pages of cartulon and cartulon-cli
// and the bash completion. One source, so they can't drift apart.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "cli.h"

namespace ct::cli {

// `pattern` with %1..%9 replaced, in one pass.
std::string Fill(std::string_view pattern, std::initializer_list<std::string_view> fill);

// The command's own options, then those every command takes.
std::vector<Option> AllOptions(const Command& command);

// "usage: cartulon-cli show LABEL [FOLDER] [--format text|tsv|json] ..." and a
// pointer to the help.
std::string UsageText(const Command& command, int language);
std::string GeneralHelp(int language);
std::string CommandHelp(const Command& command, int language);

// argv[0] is one of the hidden options (--man-page PROGRAM LANG,
// --bash-completion): prints the text and gives 0, or 2 on a wrong call.
// -1 when argv[0] is none of them.
int HiddenOutput(const Context& ctx, int argc, char** argv);

}  // namespace ct::cli
