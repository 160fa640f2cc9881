#include <algorithm>
#include <iostream>

#include "cli.h"
#include "core/fileops.h"
#include "core/settings.h"
#include "platform/system.h"

namespace ct::cli {

namespace {
std::vector<Command>& Registry() {
    static std::vector<Command> commands;
    return commands;
}

std::vector<std::pair<std::string, std::vector<std::string>>>& PairRegistry() {
    static std::vector<std::pair<std::string, std::vector<std::string>>> pairs;
    return pairs;
}
}  // namespace

Registration::Registration(Command command) { Registry().push_back(std::move(command)); }
Registration::Registration(Command command, std::vector<std::string> pairOptions) {
    PairRegistry().emplace_back(command.name, std::move(pairOptions));
    Registry().push_back(std::move(command));
}
const std::vector<std::string>& PairOptions(const std::string& command) {
    static const std::vector<std::string> none;
    for (const auto& [name, options] : PairRegistry())
        if (name == command) return options;
    return none;
}
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

}  // namespace ct::cli

namespace {

int Usage(std::ostream& os) {
    os << "usage: cartulon-cli COMMAND [ARGS] [--data-folder DIR]\n";
    auto commands = ct::cli::Commands();
    std::sort(commands.begin(), commands.end(),
              [](const auto& a, const auto& b) { return a.name < b.name; });
    for (const auto& c : commands) os << "  cartulon-cli " << c.usage << "\n";
    return ct::cli::kError;
}

}  // namespace

int main(int argc, char** argv) {
    using namespace ct::cli;
    if (argc < 2) return Usage(std::cerr);
    const std::string name = argv[1];
    if (name == "help" || name == "--help" || name == "-h") {
        Usage(std::cout);
        return kDone;
    }
    const auto& commands = Commands();
    auto it = std::find_if(commands.begin(), commands.end(),
                           [&](const Command& c) { return c.name == name; });
    if (it == commands.end()) {
        std::cerr << "cartulon-cli: unknown command '" << name << "'\n";
        return Usage(std::cerr);
    }

    Context ctx;
    ctx.out = &std::cout;
    ctx.err = &std::cerr;
    for (int i = 2; i < argc; ++i) {
        std::string a = argv[i];
        if (a.size() > 2 && a.rfind("--", 0) == 0) {
            const auto& pairOptions = PairOptions(it->name);
            if (std::find(pairOptions.begin(), pairOptions.end(), a) != pairOptions.end()) {
                if (i + 2 >= argc) {
                    std::cerr << "cartulon-cli: " << a << " needs two values\n";
                    return kError;
                }
                ctx.args.pairs.push_back({a, {argv[i + 1], argv[i + 2]}});
                i += 2;
                continue;
            }
            bool takesValue = a == "--data-folder" ||
                std::find(it->valueOptions.begin(), it->valueOptions.end(), a) != it->valueOptions.end();
            if (takesValue) {
                if (i + 1 >= argc) {
                    std::cerr << "cartulon-cli: " << a << " needs a value\n";
                    return kError;
                }
                ctx.args.options.emplace_back(a, argv[++i]);
            } else {
                ctx.args.flags.push_back(a);
            }
        } else {
            ctx.args.positional.push_back(a);
        }
    }

    ctx.programFolder = ct::ProgramFolder();
    const ct::LoadedSettings loaded = ct::LoadSettings(ctx.programFolder);
    ctx.language = loaded.settings.Language;
    ctx.dataFolder = loaded.firstRun ? ct::DefaultDataFolder(ctx.programFolder)
                                     : loaded.settings.DataFolder;
    ctx.dataFolder = ctx.args.Get("--data-folder", ctx.dataFolder);
    while (ctx.dataFolder.size() > 1 && ctx.dataFolder.back() == '/') ctx.dataFolder.pop_back();
    // What a crashed writer left behind; a scratch file another program is
    // writing right now stays.
    ct::CleanScratchFiles(ct::SystemFileOps(), {ctx.programFolder, ct::DefaultDataFolder(ctx.programFolder),
                                                ctx.dataFolder});
    return it->run(ctx);
}
