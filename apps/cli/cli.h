// cartulon-cli: the engine from a terminal. Each command lives in its own file
// and registers itself with one table (its arguments, options and help in both
// languages), so adding a command touches no other file, and the help, the man
// page and the shell completion are all printed from those tables.
//
// Exit codes as ripgrep: 0 done (or found), 1 nothing found, 2 error or
// refused. Messages for the user go to stderr; results to stdout.
//
// Adding a command, in a new file cmd_NAME.cpp:
//
//   int RunFoo(Context& ctx) { ... return kDone; }
//   Registration reg{{
//       .name = "foo", .arguments = "LABEL", .minArgs = 1, .maxArgs = 1,
//       .summary = {"deutsch", "english"},
//       .options = {{"--bar", Takes::Value, "N", {"deutsch", "english"}}, kFormatOption},
//       .run = &RunFoo}};
//
// The framework has then refused unknown options, missing values, values
// outside `choices`, the wrong number of arguments and a missing data folder,
// and answered --help; RunFoo reads ctx.args.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ct {
struct Failure;
}

namespace ct::cli {

enum Exit { kDone = 0, kNothing = 1, kError = 2 };

// A text in both languages; the one in force is picked when it is printed.
struct Tr {
    const char* de = "";
    const char* en = "";
};

enum class Takes { Nothing, Value, Pair };

struct Option {
    std::string name = {};  // "--label"
    Takes takes = Takes::Nothing;
    std::string metavar = {};  // "LABEL"; "OP TERM" for a pair
    Tr help = {};
    std::string shortName = {};  // "-y", or empty
    // The words the (first) value may be; empty: anything.
    std::vector<std::string> choices = {};
    bool required = false;  // the command can't run without it
};

// "no disc '%1' in %2": a label with no catalogue in the data folder.
extern const Tr kNoDisc;

// Options several commands share (inline, so that they are set up before
// any command's Registration that uses them).
inline const Option kFormatOption{"--format", Takes::Value, "text|tsv|json",
                                  {"Ausgabe für Menschen (text, Vorgabe) oder für Programme: tsv (ein Datensatz "
                                   "je Zeile, Felder durch Tabulator getrennt) oder json; immer UTF-8",
                                   "output for people (text, the default) or for programs: tsv (one record a "
                                   "line, fields separated by tabs) or json; always UTF-8"},
                                  "", {"text", "tsv", "json"}};
inline const Option kSlashesOption{"--slashes", Takes::Nothing, "",
                                   {"Pfade mit „/“ statt „\\“ (tsv, json, -0)",
                                    "paths with '/' in place of '\\' (tsv, json, -0)"}};
inline const Option kNullOption{"--null", Takes::Nothing, "",
                                {"nur die Pfade der Treffer, jeder mit einem NUL-Zeichen abgeschlossen (für "
                                 "xargs -0)",
                                 "only the hits' paths, each ended by a NUL character (for xargs -0)"},
                                "-0"};

struct Args {
    std::vector<std::string> positional;
    // Options in the order given, "--name" -> value. An option may repeat.
    std::vector<std::pair<std::string, std::string>> options;
    std::vector<std::string> flags;  // options without a value ("--yes"), by long name
    // Options that take two values ("--name contains URLAUB"), in the order given.
    std::vector<std::pair<std::string, std::pair<std::string, std::string>>> pairs;

    bool Has(const std::string& flag) const;
    // The last value of an option, or `fallback`.
    std::string Get(const std::string& name, const std::string& fallback = {}) const;
    std::vector<std::string> GetAll(const std::string& name) const;
};

struct Command;

struct Context {
    Args args;
    const Command* command = nullptr;
    std::string programFolder;
    std::string dataFolder;  // --data-folder, else CT.ini's, else <program folder>/Daten
    int language = 0;        // 0 German, 10000 English: CT.ini's, else LC_ALL/LC_MESSAGES/LANG
    std::ostream* out;
    std::ostream* err;

    // `text` in the language in force, %1..%9 replaced by `fill`.
    std::string T(Tr text, std::initializer_list<std::string_view> fill = {}) const;
    // "cartulon-cli COMMAND: " and the text on stderr; kError.
    int Refuse(Tr text, std::initializer_list<std::string_view> fill = {}) const;
    // A core failure in the language in force, on stderr; kError.
    int Fail(const Failure& failure) const;
    // stdout has gone (the reader closed the pipe): stop producing output.
    bool OutputGone() const;
};

struct Command {
    std::string name = {};
    std::string arguments = {};  // the positional arguments as the usage shows them: "LABEL [FOLDER]"
    std::size_t minArgs = 0;
    std::size_t maxArgs = 0;  // kMany: no limit
    Tr summary = {};          // one line, in the list of commands
    Tr details = {};          // more about it, for "help COMMAND" and the man page
    std::vector<Option> options = {};
    std::function<int(Context&)> run = {};
    bool hidden = false;  // not listed in the help
};
constexpr std::size_t kMany = SIZE_MAX;

// Registers a command at static initialisation.
struct Registration {
    explicit Registration(Command command);
};

const std::vector<Command>& Commands();

// Refuses a disc image that `why` says can't be read: damaged or cut short,
// or the library for its file system can't be loaded.
int RefuseImage(const Context& ctx, const Failure& why);
// Whether `root` is a folder or a readable disc image; else refused (false).
// A mistyped path would otherwise be read as an empty disc.
bool DiscRootReadable(Context& ctx, const std::string& root);

// --- Values shared by several commands ----------------------------------------

// "100", "1.5K", "5M", "2G", "1T" (K, M, G, T powers of 1024; "KB", "KiB" too)
// as a decimal number of bytes; false for anything else.
bool ParseSize(std::string_view text, std::string& bytes);
// "14.03.2003", "14.03.2003 10:20[:30]", "2003-03-14", "2003-03-14 10:20[:30]"
// (also with 'T') as "dd.mm.yyyy hh:mm:ss"; false when no such date exists.
bool ParseDate(std::string_view text, std::string& date);

// The catalogue of a LABEL argument, through the core's one way in
// (ResolveLabel): a label that could leave the data folder, names no disc or
// names no readable catalogue is refused with a message on stderr, and the
// command ends with kError.
bool CatalogueOfLabel(Context& ctx, const std::string& label, std::string& cataloguePath);

}  // namespace ct::cli
