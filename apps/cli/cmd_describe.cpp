// cartulon-cli describe LABEL [PATH] TEXT: stores a description on a disc, a
// folder or a file, through the same rewrite as the description editor.
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/editing.h"
#include "core/failure.h"
#include "core/fileops.h"
#include "core/textrules.h"

namespace ct::cli {

namespace {

// A path as the panes show it; '/' is accepted for '\', since no stored name
// can hold a '/', and a folder may be given with its trailing '\'.
std::string StoredPath(std::string path) {
    for (char& c : path)
        if (c == '/') c = '\\';
    if (!path.empty() && path.front() != '\\') path.insert(path.begin(), '\\');
    while (path.size() > 1 && path.back() == '\\') path.pop_back();
    return path;
}

int RunDescribe(Context& ctx) {
    const auto& pos = ctx.args.positional;
    const std::string& label = pos[0];
    std::string catalogue;
    if (!CatalogueOfLabel(ctx, label, catalogue)) return kError;
    const bool isHeader = pos.size() == 2;
    std::string target, kind = "disc";
    if (!isHeader) {
        target = StoredPath(pos[1]);
        // Which section holds the path says what it is; a path in neither
        // would change nothing, so it is refused rather than "stored".
        CatalogueReader reader(catalogue);
        if (!reader.IsOpen()) return ctx.Fail(reader.OpenFailure());
        std::string line;
        kind.clear();
        while (kind.empty() && reader.NextFolderLine(line))
            if (IsRecordOf(line, target)) kind = "folder";
        while (kind.empty() && reader.NextFileLine(line))
            if (IsRecordOf(line, target)) kind = "file";
        if (kind.empty()) {
            ctx.Refuse({"Der Datenträger „%1“ hat keinen Ordner und keine Datei %2 (Pfade wie gespeichert, "
                        "z. B. \\Bilder\\Urlaub)",
                        "disc '%1' has no folder or file %2 (paths as stored, e.g. \\Bilder\\Urlaub)"},
                       {label, target});
            return kNothing;
        }
    }
    const std::string text = NormaliseDescription(pos.back());
    if (const Failure failure =
            DescriptionRewrite(SystemFileOps(), ctx.dataFolder, label, isHeader, target, text))
        return ctx.Fail(failure);
    *ctx.out << ctx.T(kind == "disc"     ? Tr{"Datenträger", "disc"}
                      : kind == "folder" ? Tr{"Ordner", "folder"}
                                         : Tr{"Datei", "file"})
             << " " << (isHeader ? label : label + "\\" + target) << ": " << text << "\n";
    return kDone;
}

Registration reg{{
    .name = "describe",
    .arguments = "LABEL [PATH] TEXT",
    .minArgs = 2,
    .maxArgs = 3,
    .summary = {"speichert die Beschreibung eines Datenträgers, Ordners oder einer Datei",
                "store the description of a disc, a folder or a file"},
    .details = {"Ohne PATH die des Datenträgers. PATH wie im Katalog (\\Bilder\\Urlaub); „/“ geht statt "
                "„\\“. Ein TEXT, der mit „-“ beginnt, steht hinter „--“.",
                "Without PATH the disc's own. PATH as the catalogue has it (\\Bilder\\Urlaub); '/' does for "
                "'\\'. A TEXT that begins with '-' goes behind '--'."},
    .run = &RunDescribe,
}};

}  // namespace

}  // namespace ct::cli
