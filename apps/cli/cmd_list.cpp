// cartulon-cli list: the discs as the disc list shows them: every catalogue
// in the data folder and its sub-folders, in the list order of the windows.
#include <algorithm>
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/collate.h"
#include "core/text.h"
#include "output.h"
#include "platform/walk.h"

namespace ct::cli {

namespace {

int RunList(Context& ctx) {
    std::vector<std::pair<std::string, std::string>> keyed;
    for (std::string& label : CatalogueLabels(ctx.dataFolder)) keyed.emplace_back(SortKey(DecodeLine(label)), std::move(label));
    std::stable_sort(keyed.begin(), keyed.end());
    if (FormatOf(ctx) == Format::Text) {
        for (const auto& [key, label] : keyed) *ctx.out << label << "\n";
    } else {
        Records records(ctx, {{"label"}, {"description"}});
        for (const auto& [key, label] : keyed) {
            if (ctx.OutputGone()) break;
            CatalogueReader reader(CataloguePath(ctx.dataFolder, label));
            records.Add({Value(ctx, label), Value(ctx, SplitHeader(reader.HeaderLine()).Description)});
        }
    }
    return keyed.empty() ? kNothing : kDone;
}

Registration reg{{
    .name = "list",
    .summary = {"die Datenträger des Datenordners, einer je Zeile", "the discs of the data folder, one a line"},
    .details = {"tsv und json geben Bezeichnung und Beschreibung (label, description).",
                "tsv and json give the label and the description (label, description)."},
    .options = {kFormatOption},
    .run = &RunList,
}};

}  // namespace

}  // namespace ct::cli
