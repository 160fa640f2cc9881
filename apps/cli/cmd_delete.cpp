// cartulon-cli delete LABEL [--yes]: deletes a disc's catalogue, and with it
// every description on it, after one question (or --yes).
#include <unistd.h>

#include <iostream>
#include <string>

#include "cli.h"
#include "core/catalogue.h"
#include "core/editing.h"
#include "core/failure.h"
#include "core/fileops.h"

namespace ct::cli {

namespace {

int RunDelete(Context& ctx) {
    const std::string& label = ctx.args.positional[0];
    std::string catalogue;
    if (!CatalogueOfLabel(ctx, label, catalogue)) return kError;
    if (!ctx.args.Has("--yes")) {
        // Nothing is deleted unasked: without a terminal to ask on, the
        // caller has to say --yes.
        if (!isatty(STDIN_FILENO))
            return ctx.Refuse({"abgelehnt: „%1“ zu löschen braucht --yes, wenn kein Terminal gefragt werden kann",
                               "refused: deleting '%1' needs --yes when no terminal can be asked"},
                              {label});
        *ctx.err << ctx.T({"Den Datenträger „%1“ mit allen Beschreibungen löschen? Das lässt sich nicht "
                           "rückgängig machen. [j/N] ",
                           "Delete the disc '%1' with all its descriptions? This can't be undone. [y/N] "},
                          {label})
                 << std::flush;
        std::string answer;
        std::getline(std::cin, answer);
        if (answer != "y" && answer != "Y" && answer != "yes" && answer != "j" && answer != "J" &&
            answer != "ja") {
            *ctx.err << ctx.T({"Nichts gelöscht.", "Nothing deleted."}) << "\n";
            return kNothing;
        }
    }
    if (const Failure failure = DeleteDisc(SystemFileOps(), ctx.dataFolder, label)) return ctx.Fail(failure);
    *ctx.out << ctx.T({"%1 gelöscht", "deleted %1"}, {label}) << "\n";
    return kDone;
}

Registration reg{{
    .name = "delete",
    .arguments = "LABEL",
    .minArgs = 1,
    .maxArgs = 1,
    .summary = {"löscht den Katalog eines Datenträgers mit allen Beschreibungen darin",
                "delete a disc's catalogue with every description in it"},
    .details = {"Gefragt wird einmal im Terminal; ohne Terminal braucht es --yes.",
                "It asks once on the terminal; without a terminal it needs --yes."},
    .options = {{"--yes", Takes::Nothing, "", {"nicht fragen", "don't ask"}, "-y"}},
    .run = &RunDelete,
}};

}  // namespace

}  // namespace ct::cli
