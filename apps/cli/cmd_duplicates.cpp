// cartulon-cli duplicates [--min-size N] [--disc LABEL]...: the files kept on
// more than one disc under the same name and size, largest first, each copy
// by its hit text.
#include <algorithm>
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/collate.h"
#include "core/duplicates.h"
#include "core/search.h"
#include "output.h"
#include "platform/walk.h"

namespace ct::cli {

namespace {

int RunDuplicates(Context& ctx) {
    std::int64_t minSize = INT64_MIN;
    const std::string sizeText = ctx.args.Get("--min-size");
    if (!sizeText.empty()) {
        std::string bytes;
        if (!ParseSize(sizeText, bytes) || bytes.size() > 18)
            return ctx.Refuse({"--min-size nimmt eine Zahl von Bytes, auch mit K, M, G oder T (100K, 5M), nicht „%1“",
                               "--min-size takes a number of bytes, or with K, M, G or T (100K, 5M), not '%1'"},
                              {sizeText});
        minSize = std::stoll(bytes);
    }

    std::vector<std::string> labels = CatalogueLabels(ctx.dataFolder);
    SortForList(labels);
    const std::vector<std::string> wanted = ctx.args.GetAll("--disc");
    for (const std::string& label : wanted)
        if (std::find(labels.begin(), labels.end(), label) == labels.end())
            return ctx.Refuse(kNoDisc, {label, ctx.dataFolder});
    if (!wanted.empty())
        std::erase_if(labels, [&](const std::string& l) {
            return std::find(wanted.begin(), wanted.end(), l) == wanted.end();
        });

    const Format format = FormatOf(ctx);
    std::string value;  // one copy's text, its room used again
    std::size_t groups = 0;
    if (format == Format::Text) {
        groups = FindDuplicates(ctx.dataFolder, labels, minSize, [&](const DuplicateGroup& g) {
            *ctx.out << Value(ctx, g.name) << "  "
                     << ctx.T({"%1 Bytes, %2 Kopien", "%1 bytes, %2 copies"},
                              {std::to_string(g.size), std::to_string(g.hits.size())})
                     << "\n";
            for (const std::string_view hit : g.hits) {
                ValueInto(ctx, hit, true, value);
                *ctx.out << "  " << value << "\n";
            }
            return !ctx.OutputGone();
        });
    } else {
        Records records(ctx, {{"group", true}, {"name"}, {"size", true}, {"hit"}});
        // One record a copy: the group's fields are made once, not per copy,
        // and a hit (UTF-8 already) goes out as it stands unless its
        // backslashes are to be slashes.
        const bool slashes = ctx.args.Has("--slashes");
        std::string number, name, size;
        std::size_t listed = 0;
        groups = FindDuplicates(ctx.dataFolder, labels, minSize, [&](const DuplicateGroup& g) {
            number = std::to_string(++listed);
            ValueInto(ctx, g.name, false, name);
            size = std::to_string(g.size);
            records.Lead({number, name, size});
            for (const std::string_view h : g.hits) {
                if (slashes) ValueInto(ctx, h, true, value);
                records.AddLed(slashes ? std::string_view(value) : h);
            }
            return !ctx.OutputGone();
        });
    }
    return groups == 0 ? kNothing : kDone;
}

Registration reg{{
    .name = "duplicates",
    .summary = {"Dateien, die auf mehr als einem Datenträger liegen (gleicher Name und gleiche Größe)",
                "files kept on more than one disc (same name and size)"},
    .details = {"Der Name wird ohne Rücksicht auf Groß- und Kleinschreibung verglichen, wie bei der Suche "
                "nach Namen. Gruppen nach Größe, die größten zuerst, jede Kopie als Treffer "
                "BEZEICHNUNG\\PFAD. Exit 1, wenn es keine gibt. tsv und json: group, name, size, hit.",
                "Names are compared with case ignored, as the name search compares them. Groups by size, "
                "largest first, each copy as a hit LABEL\\PATH. Exit 1 when there are none. tsv and json: "
                "group, name, size, hit."},
    .options = {{"--min-size", Takes::Value, "N",
                 {"nur Dateien ab N Bytes (auch 100K, 5M, 2G)", "only files of at least N bytes (also 100K, 5M, 2G)"}},
                {"--disc", Takes::Value, "LABEL",
                 {"nur diese Datenträger (wiederholbar); sonst alle", "only these discs (may repeat); else all"}},
                kFormatOption,
                kSlashesOption},
    .run = &RunDuplicates,
}};

}  // namespace

}  // namespace ct::cli
