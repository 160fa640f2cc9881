// cartulon-cli verify LABEL PATH: walks PATH (a mounted disc, a folder or a
// disc image) as add would and tells what differs from the catalogue. Exit 0
// identical, 1 different, 2 error. Nothing is written; descriptions are never
// looked at.
#include <unistd.h>

#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/fileops.h"
#include "core/verify.h"
#include "output.h"
#include "platform/image.h"
#include "platform/walk.h"

namespace ct::cli {

namespace {

Tr WordOf(Difference kind) {
    switch (kind) {
    case Difference::MissingOnDisc: return {"fehlt auf dem Datenträger", "missing on the disc"};
    case Difference::NotInCatalogue: return {"nicht im Katalog", "not in the catalogue"};
    case Difference::SizeChanged: return {"Größe geändert", "size changed"};
    case Difference::TimeChanged: return {"Zeit geändert", "time changed"};
    }
    return {};
}

int RunVerify(Context& ctx) {
    const std::string& label = ctx.args.positional[0];
    const std::string& root = ctx.args.positional[1];
    std::string catalogue;
    if (!CatalogueOfLabel(ctx, label, catalogue)) return kError;
    if (!DiscRootReadable(ctx, root)) return kError;

    // The count of entries found so far, as a terminal line that rewrites
    // itself; nothing when stderr is no terminal.
    const bool showProgress = isatty(STDERR_FILENO) == 1;
    std::function<void(std::size_t)> progress;
    if (showProgress)
        progress = [&](std::size_t n) {
            *ctx.err << '\r' << ctx.T({"%1 Einträge gelesen", "%1 entries read"}, {std::to_string(n)})
                     << std::flush;
        };
    WalkList folders, files;
    // An image read only in part would tell of entries missing that aren't.
    bool walked = true;
    if (IsDiscImage(root))
        walked = WalkImage(root, folders, files, progress);
    else
        SystemDiscSource().WalkFolder(root, folders, files, progress);
    if (showProgress) *ctx.err << "\r\033[K" << std::flush;
    if (!walked)
        return RefuseImage(ctx, ct::Fail(FailCode::Unreadable, root));

    const VerifyReport report = VerifyDisc(catalogue, root, folders, files);
    if (!report.opened)
        return ctx.Refuse({"der Katalog „%1“ kann nicht gelesen werden", "the catalogue '%1' can't be read"},
                          {catalogue});
    const Format format = FormatOf(ctx);
    if (format == Format::Text) {
        for (const VerifyFinding& f : report.findings) {
            *ctx.out << ctx.T(WordOf(f.kind)) << ": " << Value(ctx, f.path, true) << (f.folder ? "\\" : "");
            if (f.kind == Difference::SizeChanged || f.kind == Difference::TimeChanged)
                *ctx.out << " (" << f.catalogueValue << " -> " << f.discValue << ")";
            *ctx.out << "\n";
        }
        if (report.findings.empty())
            *ctx.out << ctx.T({"gleich: %1 Ordner, %2 Dateien", "identical: %1 folders, %2 files"},
                              {std::to_string(folders.size()), std::to_string(files.size())})
                     << "\n";
    } else {
        Records records(ctx, {{"difference"}, {"kind"}, {"path"}, {"catalogue"}, {"disc"}});
        for (const VerifyFinding& f : report.findings)
            records.Add({std::string(DifferenceWord(f.kind)), f.folder ? "folder" : "file",
                         Value(ctx, f.path, true), f.catalogueValue, f.discValue});
    }
    return report.findings.empty() ? kDone : kNothing;
}

Registration reg{{
    .name = "verify",
    .arguments = "LABEL PATH",
    .minArgs = 2,
    .maxArgs = 2,
    .summary = {"prüft einen Datenträger, Ordner oder ein Abbild gegen seinen Katalog",
                "check a disc, a folder or a disc image against its catalogue"},
    .details = {"Liest PATH wie add und meldet, was fehlt, was neu ist und wessen Größe oder Zeit sich "
                "geändert hat. Exit 0: gleich, 1: verschieden, 2: Fehler. Nichts wird geschrieben. tsv und "
                "json: difference (missing, new, size, time), kind (folder, file), path, catalogue, disc.",
                "Reads PATH as add does and reports what is missing, what is new and whose size or time "
                "changed. Exit 0: identical, 1: different, 2: error. Nothing is written. tsv and json: "
                "difference (missing, new, size, time), kind (folder, file), path, catalogue, disc."},
    .options = {kFormatOption, kSlashesOption},
    .run = &RunVerify,
}};

}  // namespace

}  // namespace ct::cli
