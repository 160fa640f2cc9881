// cartulon-cli delete LABEL [--yes]: deletes a disc's catalogue, and with it
// every description on it, after one question (or --yes).
#include <unistd.h>

#include <iostream>
#include <string>

#include "cli.h"
#include "core/catalogue.h"
#include "core/editing.h"
#include "core/fileops.h"

namespace ct::cli {

namespace {

int RunDelete(Context& ctx) {
    const auto& pos = ctx.args.positional;
    if (pos.size() != 1) {
        *ctx.err << "usage: cartulon-cli delete LABEL [--yes]\n";
        return kError;
    }
    const std::string& label = pos[0];
    std::string catalogue;
    if (!CatalogueOfLabel(ctx, label, catalogue)) return kError;
    if (!ctx.args.Has("--yes")) {
        // Nothing is deleted unasked: without a terminal to ask on, the
        // caller has to say --yes.
        if (!isatty(STDIN_FILENO)) {
            *ctx.err << "cartulon-cli: refused: deleting '" << label
                     << "' needs --yes when no terminal can be asked\n";
            return kError;
        }
        *ctx.err << "Delete the disc '" << label
                 << "' with all its descriptions? This can't be undone. [y/N] " << std::flush;
        std::string answer;
        std::getline(std::cin, answer);
        if (answer != "y" && answer != "Y" && answer != "yes" && answer != "j" && answer != "J" &&
            answer != "ja") {
            *ctx.err << "Nothing deleted.\n";
            return kNothing;
        }
    }
    if (const Failure failure = DeleteDisc(SystemFileOps(), ctx.dataFolder, label)) {
        *ctx.err << "cartulon-cli: " << FailureText(failure, ctx.language) << "\n";
        return kError;
    }
    *ctx.out << "deleted " << label << "\n";
    return kDone;
}

Registration reg{{"delete", "delete LABEL [--yes]         delete a disc's catalogue", {}, &RunDelete}};

}  // namespace

}  // namespace ct::cli
