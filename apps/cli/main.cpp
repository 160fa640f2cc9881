// The frame around every command: the argument parser driven by the commands'
// tables, the language, the data folder, and stdout as a pipe may close it.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <streambuf>

#include "cli.h"
#include "core/failure.h"
#include "core/fileops.h"
#include "core/settings.h"
#include "help.h"
#include "platform/system.h"

namespace ct::cli {

namespace {

std::vector<Command>& Registry() {
    static std::vector<Command> commands;
    return commands;
}

// stdout through write(2), so that a closed pipe is seen as EPIPE (SIGPIPE is
// ignored) and the command can end quietly instead of dying mid-line or
// reporting an error nobody asked for.
class StdoutBuf : public std::streambuf {
public:
    StdoutBuf() { setp(buffer_, buffer_ + sizeof buffer_); }
    ~StdoutBuf() override { sync(); }
    int error() const { return error_; }

protected:
    int_type overflow(int_type ch) override {
        if (Drain() != 0) return traits_type::eof();
        if (!traits_type::eq_int_type(ch, traits_type::eof())) {
            *pptr() = traits_type::to_char_type(ch);
            pbump(1);
        }
        return traits_type::not_eof(ch);
    }
    int sync() override { return Drain(); }

private:
    int Drain() {
        const char* p = pbase();
        while (p < pptr() && error_ == 0) {
            const ssize_t n = ::write(STDOUT_FILENO, p, static_cast<std::size_t>(pptr() - p));
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) error_ = n < 0 ? errno : EIO;
            else p += n;
        }
        setp(buffer_, buffer_ + sizeof buffer_);  // after an error, output is dropped
        return error_ == 0 ? 0 : -1;
    }
    char buffer_[1 << 16];
    int error_ = 0;
};

StdoutBuf* g_stdout = nullptr;

const Tr kDataFolderMissing = {"den Datenordner „%1“ gibt es nicht", "the data folder \"%1\" doesn't exist"};

const Tr kUnknownCommand = {"unbekannter Befehl „%1“; „cartulon-cli help“ zeigt die Befehle",
                            "unknown command '%1'; \"cartulon-cli help\" lists the commands"};

// The language when CT.ini names none: the locale the user runs under.
int LanguageOfEnvironment() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(name);
        if (value && *value) return std::strncmp(value, "de", 2) == 0 ? 0 : 10000;
    }
    return 10000;
}

const Command* Find(std::string_view name) {
    for (const Command& c : Commands())
        if (c.name == name) return &c;
    return nullptr;
}

const Option* FindOption(const std::vector<Option>& options, std::string_view name) {
    for (const Option& o : options)
        if (o.name == name || (!o.shortName.empty() && o.shortName == name)) return &o;
    return nullptr;
}

// A refused command line: what was wrong, the command's usage, exit 2.
int Misuse(const Context& ctx, Tr text, std::initializer_list<std::string_view> fill) {
    ctx.Refuse(text, fill);
    *ctx.err << UsageText(*ctx.command, ctx.language);
    return kError;
}

std::string Joined(const std::vector<std::string>& words) {
    std::string out;
    for (const std::string& w : words) out += (out.empty() ? "" : ", ") + w;
    return out;
}

// Fills ctx.args from argv[first..]; kDone when the command may run, else the
// exit code. --help has been answered already.
int Parse(Context& ctx, int argc, char** argv, int first) {
    const Command& command = *ctx.command;
    const std::vector<Option> options = AllOptions(command);
    bool optionsEnd = false;
    for (int i = first; i < argc; ++i) {
        std::string a = argv[i];
        if (optionsEnd || a.size() < 2 || a[0] != '-') {
            ctx.args.positional.push_back(a);
            continue;
        }
        if (a == "--") {
            optionsEnd = true;
            continue;
        }
        std::string inlineValue;
        bool hasInline = false;
        if (a.rfind("--", 0) == 0) {
            if (const auto eq = a.find('='); eq != std::string::npos) {
                inlineValue = a.substr(eq + 1);
                a.resize(eq);
                hasInline = true;
            }
        }
        const Option* o = FindOption(options, a);
        if (!o) return Misuse(ctx, {"unbekannte Option „%1“", "unknown option '%1'"}, {a});
        if (o->takes == Takes::Nothing) {
            if (hasInline) return Misuse(ctx, {"%1 nimmt keinen Wert", "%1 takes no value"}, {o->name});
            ctx.args.flags.push_back(o->name);
            continue;
        }
        std::vector<std::string> values;
        if (hasInline) values.push_back(inlineValue);
        const std::size_t wanted = o->takes == Takes::Pair ? 2 : 1;
        while (values.size() < wanted && i + 1 < argc) values.push_back(argv[++i]);
        if (values.size() < wanted)
            return Misuse(ctx, {"%1 braucht %2", "%1 needs %2"}, {o->name, o->metavar});
        if (!o->choices.empty() &&
            std::find(o->choices.begin(), o->choices.end(), values[0]) == o->choices.end())
            return Misuse(ctx, {"%1 nimmt %2, nicht „%3“", "%1 takes %2, not '%3'"},
                          {o->name, Joined(o->choices), values[0]});
        if (o->takes == Takes::Pair) ctx.args.pairs.push_back({o->name, {values[0], values[1]}});
        else ctx.args.options.emplace_back(o->name, values[0]);
    }
    for (const Option& o : options) {
        const bool given = std::any_of(ctx.args.options.begin(), ctx.args.options.end(),
                                       [&](const auto& kv) { return kv.first == o.name; });
        if (o.required && !given) return Misuse(ctx, {"%1 fehlt", "%1 is missing"}, {o.name});
    }
    const std::size_t n = ctx.args.positional.size();
    if (n < command.minArgs)
        return Misuse(ctx, {"zu wenige Argumente", "too few arguments"}, {});
    if (n > command.maxArgs)
        return Misuse(ctx, {"unerwartetes Argument „%1“", "unexpected argument '%1'"},
                      {ctx.args.positional[command.maxArgs]});
    return kDone;
}

bool AsksForHelp(int argc, char** argv, int first) {
    for (int i = first; i < argc; ++i) {
        const std::string_view a = argv[i];
        if (a == "--") return false;
        if (a == "--help" || a == "-h") return true;
    }
    return false;
}

// Ends the process with `code`, unless stdout couldn't be written for another
// reason than a closed pipe: that is an error the user must hear of.
int Finish(const Context& ctx, int code) {
    ctx.out->flush();
    const int error = g_stdout->error();
    if (error != 0 && error != EPIPE) {
        *ctx.err << "cartulon-cli: " << std::strerror(error) << "\n";
        return kError;
    }
    return code;
}

}  // namespace

const Tr kNoDisc = {"keinen Datenträger „%1“ in %2", "no disc '%1' in %2"};

Registration::Registration(Command command) { Registry().push_back(std::move(command)); }

const std::vector<Command>& Commands() { return Registry(); }

bool Args::Has(const std::string& flag) const {
    return std::find(flags.begin(), flags.end(), flag) != flags.end();
}
std::string Args::Get(const std::string& name, const std::string& fallback) const {
    std::string value = fallback;
    for (const auto& [k, v] : options)
        if (k == name) value = v;
    return value;
}
std::vector<std::string> Args::GetAll(const std::string& name) const {
    std::vector<std::string> values;
    for (const auto& [k, v] : options)
        if (k == name) values.push_back(v);
    return values;
}

std::string Context::T(Tr text, std::initializer_list<std::string_view> fill) const {
    return Fill(language == 0 ? text.de : text.en, fill);
}

int Context::Refuse(Tr text, std::initializer_list<std::string_view> fill) const {
    *err << "cartulon-cli" << (command ? " " + command->name : std::string()) << ": " << T(text, fill)
         << "\n";
    return kError;
}

int Context::Fail(const Failure& failure) const {
    *err << "cartulon-cli" << (command ? " " + command->name : std::string()) << ": "
         << FailureText(failure, language) << "\n";
    return kError;
}

bool Context::OutputGone() const { return g_stdout && g_stdout->error() != 0; }

}  // namespace ct::cli

int main(int argc, char** argv) {
    using namespace ct::cli;
    std::signal(SIGPIPE, SIG_IGN);
    static StdoutBuf stdoutBuf;
    g_stdout = &stdoutBuf;
    std::ostream out(&stdoutBuf);

    Context ctx;
    ctx.out = &out;
    ctx.err = &std::cerr;
    ctx.programFolder = ct::ProgramFolder();
    const ct::LoadedSettings loaded = ct::LoadSettings(ctx.programFolder);
    ctx.language = loaded.firstRun ? LanguageOfEnvironment() : loaded.settings.Language;
    ctx.dataFolder = loaded.firstRun ? ct::DefaultDataFolder(ctx.programFolder) : loaded.settings.DataFolder;

    // Options before the command: only --data-folder, and what asks about the
    // program itself.
    int at = 1;
    std::string dataFolderOption;
    while (at < argc) {
        const std::string_view a = argv[at];
        if (a == "--version" || a == "-V") {
            out << "cartulon-cli " << CARTULON_VERSION << "\n";
            return Finish(ctx, kDone);
        }
        if (a == "--help" || a == "-h") {
            out << GeneralHelp(ctx.language);
            return Finish(ctx, kDone);
        }
        if (const int code = HiddenOutput(ctx, argc - at, argv + at); code >= 0) return Finish(ctx, code);
        if (a == "--data-folder") {
            if (at + 1 >= argc) return ctx.Refuse({"%1 braucht %2", "%1 needs %2"}, {a, "DIR"});
            dataFolderOption = argv[at + 1];
            at += 2;
            continue;
        }
        break;
    }
    if (at >= argc) {
        std::cerr << GeneralHelp(ctx.language);
        return kError;
    }
    const std::string name = argv[at];
    if (name == "help") {
        if (at + 1 >= argc) {
            out << GeneralHelp(ctx.language);
            return Finish(ctx, kDone);
        }
        const Command* asked = Find(argv[at + 1]);
        if (!asked) {
            return ctx.Refuse(kUnknownCommand, {argv[at + 1]});
        }
        out << CommandHelp(*asked, ctx.language);
        return Finish(ctx, kDone);
    }
    ctx.command = Find(name);
    if (!ctx.command) {
        return ctx.Refuse(kUnknownCommand, {name});
    }
    if (AsksForHelp(argc, argv, at + 1)) {
        out << CommandHelp(*ctx.command, ctx.language);
        return Finish(ctx, kDone);
    }
    if (const int code = Parse(ctx, argc, argv, at + 1); code != kDone) return code;

    if (!dataFolderOption.empty()) ctx.dataFolder = dataFolderOption;
    ctx.dataFolder = ctx.args.Get("--data-folder", ctx.dataFolder);
    while (ctx.dataFolder.size() > 1 && ctx.dataFolder.back() == '/') ctx.dataFolder.pop_back();
    std::error_code ec;
    if (!std::filesystem::is_directory(ctx.dataFolder, ec)) return ctx.Refuse(kDataFolderMissing, {ctx.dataFolder});
    // What a crashed writer left behind; a scratch file another program is
    // writing right now stays.
    ct::CleanScratchFiles(ct::SystemFileOps(),
                          {ctx.programFolder, ct::DefaultDataFolder(ctx.programFolder), ctx.dataFolder});

    return Finish(ctx, ctx.command->run(ctx));
}
