// cartulon-cli add ROOT --label LABEL [--description TEXT]: reads a folder, a
// mounted volume or a disc image (ISO 9660, UDF) into a new catalogue, by the
// same procedure as the add dialog. A refused label changes nothing.
#include <ostream>

#include "cli.h"
#include "core/adddisc.h"
#include "core/failure.h"
#include "core/fileops.h"
#include "platform/image.h"
#include "platform/walk.h"

namespace ct::cli {

namespace {

int RunAdd(Context& ctx) {
    const auto& pos = ctx.args.positional;
    if (!DiscRootReadable(ctx, pos[0])) return kError;

    AddRequest request;
    request.root = pos[0];
    request.label = ctx.args.Get("--label");
    request.description = ctx.args.Get("--description");
    request.dataFolder = ctx.dataFolder;
    const AddOutcome outcome = AddDisc(request, DiscSourceWithImages(), SystemFileOps());
    switch (outcome.result) {
    case AddResult::Added:
        *ctx.out << ctx.T({"Bezeichnung: %1\nOrdner: %2\nDateien: %3\nKatalog: %4",
                           "label: %1\nfolders: %2\nfiles: %3\ncatalogue: %4"},
                          {outcome.label, std::to_string(outcome.folders), std::to_string(outcome.files),
                           outcome.cataloguePath})
                 << "\n";
        if (outcome.unreadable > 0)
            ctx.Refuse({"Hinweis: %1 Ordner oder Einträge waren nicht lesbar und fehlen im Katalog",
                        "note: %1 folders or entries couldn't be read and are missing from the catalogue"},
                       {std::to_string(outcome.unreadable)});
        if (outcome.folders > 32767 || outcome.files > 32767)
            ctx.Refuse({"Hinweis: mehr als 32.767 Ordner oder Dateien; alle stehen im Katalog, aber Zähler "
                        "mit 16 Bit können falsch anzeigen",
                        "note: more than 32,767 folders or files; all are in the catalogue, but counts shown "
                        "by 16-bit fields may be wrong"});
        return kDone;
    case AddResult::EmptyLabel:
        return ctx.Refuse({"abgelehnt: die Bezeichnung ist leer; nichts wurde gelesen oder geschrieben",
                           "refused: the label is empty; nothing was read or written"});
    case AddResult::LabelInUse:
        return ctx.Refuse({"abgelehnt: die Bezeichnung „%1“ ist vergeben: ein Katalog dieses Namens liegt in "
                           "%2; nichts wurde gelesen oder geschrieben",
                           "refused: the label '%1' is in use: a catalogue of that name lies in %2; nothing "
                           "was read or written"},
                          {outcome.label, ctx.dataFolder});
    case AddResult::WriteFailed:
    case AddResult::Cancelled:
        break;
    }
    return ctx.Refuse({"der Katalog konnte nicht geschrieben werden, unter der Bezeichnung blieb nichts "
                       "zurück: %1",
                       "the catalogue could not be written, nothing was left under the label: %1"},
                      {FailureText(outcome.failure, ctx.language)});
}

Registration reg{{
    .name = "add",
    .arguments = "ROOT",
    .minArgs = 1,
    .maxArgs = 1,
    .summary = {"liest einen Ordner, einen eingehängten Datenträger oder ein Abbild (ISO 9660, UDF) in "
                "einen neuen Katalog ein",
                "read a folder, a mounted volume or a disc image (ISO 9660, UDF) into a new catalogue"},
    .details = {"Die Bezeichnung wird wie im Fenster bereinigt; ist sie vergeben, wird nichts gelesen oder "
                "geschrieben. Ein Abbild wird gelesen wie die gebrannte Scheibe im Laufwerk, ohne es "
                "einzuhängen: ISO 9660 mit Joliet oder Rock Ridge, UDF jeder Revision bis 2.60 (DVD, "
                "Blu-ray). Ein beschädigtes Abbild ergibt keinen Katalog.",
                "The label is cleaned as in the window; one in use is refused, and nothing is read or "
                "written. An image file is read as the burnt disc would read in a drive, without "
                "mounting it: ISO 9660 with Joliet or Rock Ridge, UDF of every revision up to 2.60 "
                "(DVD, Blu-ray). A damaged image gives no catalogue."},
    .options = {{"--label", Takes::Value, "LABEL", {"die Bezeichnung (Pflicht)", "the label (required)"}, "", {}, true},
                {"--description", Takes::Value, "TEXT",
                 {"die Beschreibung des Datenträgers", "the disc's description"}}},
    .run = &RunAdd,
}};

}  // namespace

}  // namespace ct::cli
