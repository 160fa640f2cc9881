// cartulon-cli rename OLD NEW: gives a disc a new label, with the checks of
// the label editor: the label rule, never empty, never one in use.
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/editing.h"
#include "core/fileops.h"
#include "platform/walk.h"

namespace ct::cli {

namespace {

int RunRename(Context& ctx) {
    const auto& pos = ctx.args.positional;
    if (pos.size() != 2) {
        *ctx.err << "usage: cartulon-cli rename OLD NEW\n";
        return kError;
    }
    const std::string& oldLabel = pos[0];
    WalkList folders, files;
    WalkFolder(ctx.dataFolder, folders, files);
    const std::vector<std::string> labels = LabelsOf(files);
    std::string catalogue;
    if (!CatalogueOfLabel(ctx, oldLabel, catalogue)) return kError;
    const RenameOutcome outcome = RenameDisc(SystemFileOps(), ctx.dataFolder, oldLabel, pos[1], labels);
    switch (outcome.result) {
    case RenameResult::Renamed:
        *ctx.out << outcome.label << "\n";
        return kDone;
    case RenameResult::Unchanged:
        *ctx.err << "cartulon-cli: '" << outcome.label << "' is the disc's label already; nothing to do\n";
        return kDone;
    case RenameResult::EmptyLabel:
        *ctx.err << "cartulon-cli: refused: the new label is empty once \\ / : * ? \" < > | and the "
                    "blanks around it are taken out\n";
        return kError;
    case RenameResult::LabelInUse:
        *ctx.err << "cartulon-cli: refused: a disc labelled '" << outcome.label << "' exists already\n";
        return kError;
    case RenameResult::Failed:
        break;
    }
    *ctx.err << "cartulon-cli: " << FailureText(outcome.failure, ctx.language) << "\n";
    return kError;
}

Registration reg{{"rename", "rename OLD NEW               give a disc a new label", {}, &RunRename}};

}  // namespace

}  // namespace ct::cli
