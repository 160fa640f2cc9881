// cartulon-cli describe LABEL [PATH] TEXT: stores a description on a disc, a
// folder or a file, through the same rewrite as the description editor.
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/editing.h"
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
    if (pos.size() != 2 && pos.size() != 3) {
        *ctx.err << "usage: cartulon-cli describe LABEL [PATH] TEXT\n";
        return kError;
    }
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
        if (!reader.IsOpen()) {
            *ctx.err << "cartulon-cli: " << FailureText(reader.OpenFailure(), ctx.language) << "\n";
            return kError;
        }
        std::string line;
        kind.clear();
        while (kind.empty() && reader.NextFolderLine(line))
            if (IsRecordOf(line, target)) kind = "folder";
        while (kind.empty() && reader.NextFileLine(line))
            if (IsRecordOf(line, target)) kind = "file";
        if (kind.empty()) {
            *ctx.err << "cartulon-cli: disc '" << label << "' has no folder or file " << target
                     << " (paths as stored, e.g. \\Bilder\\Urlaub)\n";
            return kNothing;
        }
    }
    const std::string text = NormaliseDescription(pos.back());
    if (const Failure failure =
            DescriptionRewrite(SystemFileOps(), ctx.dataFolder, label, isHeader, target, text)) {
        *ctx.err << "cartulon-cli: " << FailureText(failure, ctx.language) << "\n";
        return kError;
    }
    *ctx.out << kind << " " << (isHeader ? label : label + "\\" + target) << ": " << text << "\n";
    return kDone;
}

Registration reg{{"describe", "describe LABEL [PATH] TEXT   store the description of a disc, folder or file",
                  {}, &RunDescribe}};

}  // namespace

}  // namespace ct::cli
