// cartulon-cli rename OLD NEW: gives a disc a new label, with the checks of
// the label editor: the label rule, never empty, never one in use.
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/editing.h"
#include "core/failure.h"
#include "core/fileops.h"
#include "platform/walk.h"

namespace ct::cli {

namespace {

int RunRename(Context& ctx) {
    const auto& pos = ctx.args.positional;
    const std::string& oldLabel = pos[0];
    const std::vector<std::string> labels = CatalogueLabels(ctx.dataFolder);
    std::string catalogue;
    if (!CatalogueOfLabel(ctx, oldLabel, catalogue)) return kError;
    const RenameOutcome outcome = RenameDisc(SystemFileOps(), ctx.dataFolder, oldLabel, pos[1], labels);
    switch (outcome.result) {
    case RenameResult::Renamed:
        *ctx.out << outcome.label << "\n";
        return kDone;
    case RenameResult::Unchanged:
        ctx.Refuse({"„%1“ ist schon die Bezeichnung des Datenträgers; nichts zu tun",
                    "'%1' is the disc's label already; nothing to do"},
                   {outcome.label});
        return kDone;
    case RenameResult::EmptyLabel:
        return ctx.Refuse({"abgelehnt: ohne \\ / : * ? \" < > | und die Leerzeichen am Rand bleibt von der "
                           "neuen Bezeichnung nichts übrig",
                           "refused: the new label is empty once \\ / : * ? \" < > | and the blanks around it "
                           "are taken out"});
    case RenameResult::LabelInUse:
        return ctx.Refuse({"abgelehnt: einen Datenträger „%1“ gibt es schon",
                           "refused: a disc labelled '%1' exists already"},
                          {outcome.label});
    case RenameResult::Failed:
        break;
    }
    return ctx.Fail(outcome.failure);
}

Registration reg{{
    .name = "rename",
    .arguments = "OLD NEW",
    .minArgs = 2,
    .maxArgs = 2,
    .summary = {"gibt einem Datenträger eine neue Bezeichnung", "give a disc a new label"},
    .details = {"Die neue Bezeichnung folgt den Regeln des Fensters: \\ / : * ? \" < > | und die Leerzeichen "
                "am Rand fallen weg, leer bleibt sie nie, und eine vergebene wird abgelehnt.",
                "The new label follows the window's rules: \\ / : * ? \" < > | and the blanks around it are "
                "taken out, it is never empty, and one in use is refused."},
    .run = &RunRename,
}};

}  // namespace

}  // namespace ct::cli
