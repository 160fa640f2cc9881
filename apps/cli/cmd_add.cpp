// cartulon-cli add ROOT --label LABEL [--description TEXT]: reads a folder or
// a mounted volume into a new catalogue, by the same procedure as the add
// dialog. A refused label changes nothing.
#include <filesystem>
#include <ostream>

#include "cli.h"
#include "core/adddisc.h"
#include "core/fileops.h"
#include "platform/walk.h"

namespace ct::cli {

namespace {

int RunAdd(Context& ctx) {
    const auto& pos = ctx.args.positional;
    if (pos.size() != 1 || ctx.args.GetAll("--label").empty()) {
        *ctx.err << "usage: cartulon-cli add ROOT --label LABEL [--description TEXT] [--data-folder DIR]\n";
        return kError;
    }
    std::error_code ec;
    // The dialog can't be given a drive that isn't there; a mistyped path
    // here would otherwise become an empty catalogue.
    if (!std::filesystem::is_directory(pos[0], ec)) {
        *ctx.err << "cartulon-cli: '" << pos[0] << "' is not a folder\n";
        return kError;
    }
    if (!std::filesystem::is_directory(ctx.dataFolder, ec)) {
        *ctx.err << "cartulon-cli: the data folder '" << ctx.dataFolder << "' doesn't exist\n";
        return kError;
    }

    AddRequest request;
    request.root = pos[0];
    request.label = ctx.args.Get("--label");
    request.description = ctx.args.Get("--description");
    request.dataFolder = ctx.dataFolder;
    const AddOutcome outcome = AddDisc(request, SystemDiscSource(), SystemFileOps());
    switch (outcome.result) {
    case AddResult::Added:
        *ctx.out << "label: " << outcome.label << "\n"
                 << "folders: " << outcome.folders << "\n"
                 << "files: " << outcome.files << "\n"
                 << "catalogue: " << outcome.cataloguePath << "\n";
        if (outcome.unreadable > 0)
            *ctx.err << "cartulon-cli: note: " << outcome.unreadable
                     << " folders or entries couldn't be read and are missing from the catalogue\n";
        if (outcome.folders > 32767 || outcome.files > 32767)
            *ctx.err << "cartulon-cli: note: more than 32,767 folders or files; all are in the "
                        "catalogue, but counts shown by 16-bit fields may be wrong\n";
        return kDone;
    case AddResult::EmptyLabel:
        *ctx.err << "cartulon-cli: refused: the label is empty; nothing was read or written\n";
        return kError;
    case AddResult::LabelInUse:
        *ctx.err << "cartulon-cli: refused: the label '" << outcome.label
                 << "' is in use: a catalogue of that name lies in " << ctx.dataFolder
                 << "; nothing was read or written\n";
        return kError;
    case AddResult::WriteFailed:
    case AddResult::Cancelled:
        break;
    }
    *ctx.err << "cartulon-cli: the catalogue could not be written, nothing was left under the label: "
             << FailureText(outcome.failure, ctx.language) << "\n";
    return kError;
}

Registration reg{{"add",
                  "add ROOT --label LABEL [--description TEXT]\n"
                  "              read a folder or a mounted volume into a new catalogue",
                  {"--label", "--description"}, &RunAdd}};

}  // namespace

}  // namespace ct::cli
