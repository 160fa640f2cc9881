// cartulon-cli: the engine from a terminal. Each command lives in its own file
// and registers itself, so adding a command touches no other file.
//
// Exit codes as ripgrep: 0 done (or found), 1 nothing found, 2 error or
// refused. Messages for the user go to stderr; results to stdout.
#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

namespace ct::cli {

enum Exit { kDone = 0, kNothing = 1, kError = 2 };

struct Args {
    std::vector<std::string> positional;
    // Options in the order given, "--name" -> values. An option may repeat.
    std::vector<std::pair<std::string, std::string>> options;
    std::vector<std::string> flags;  // options without a value ("--yes")
    // Options that take two values ("--name contains URLAUB"), in the order given.
    std::vector<std::pair<std::string, std::pair<std::string, std::string>>> pairs;

    bool Has(const std::string& flag) const;
    // The last value of an option, or `fallback`.
    std::string Get(const std::string& name, const std::string& fallback = {}) const;
    std::vector<std::string> GetAll(const std::string& name) const;
};

struct Context {
    Args args;
    std::string programFolder;
    std::string dataFolder;  // --data-folder, else CT.ini's, else <program folder>/Daten
    int language = 0;        // from CT.ini (0 German, 10000 English)
    std::ostream* out;
    std::ostream* err;
};

struct Command {
    std::string name;
    std::string usage;  // one line, shown by "cartulon-cli help"
    // Options that take a value (everything else starting with "--" is a flag).
    std::vector<std::string> valueOptions;
    std::function<int(Context&)> run;
};

// Registers a command at static initialisation:
//   static ct::cli::Registration reg{{"list", "list [--data-folder DIR]", {}, &RunList}};
struct Registration {
    explicit Registration(Command command);
    // A command whose options in `pairOptions` take two values each.
    Registration(Command command, std::vector<std::string> pairOptions);
};

// The two-value options of a registered command (empty for most).
const std::vector<std::string>& PairOptions(const std::string& command);

const std::vector<Command>& Commands();

// The catalogue of a LABEL argument, through the core's one way in
// (ResolveLabel): a label that could leave the data folder, names no disc or
// names no readable catalogue is refused with a message on stderr, and the
// command ends with kError.
bool CatalogueOfLabel(Context& ctx, const std::string& label, std::string& cataloguePath);

}  // namespace ct::cli
