// cartulon-cli stats: the statistics window's seven figures, over every disc
// of the data folder, with the locale's decimal separator; for scripts plain
// numbers with a point.
#include <clocale>
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/fixed.h"
#include "core/rddll.h"
#include "core/statistics.h"
#include "output.h"
#include "platform/walk.h"

namespace ct::cli {

namespace {

std::string DecimalSeparator() {
    // Only the numbers' part of the locale: loading all of it costs more
    // than counting a small collection.
    std::setlocale(LC_NUMERIC, "");
    const std::lconv* conv = std::localeconv();
    return conv && conv->decimal_point && *conv->decimal_point ? conv->decimal_point : ".";
}

int RunStats(Context& ctx) {
    const StatisticsTotals totals = CollectStatistics(ctx.dataFolder, CatalogueLabels(ctx.dataFolder));

    if (FormatOf(ctx) != Format::Text) {
        const double discs = totals.discs ? static_cast<double>(totals.discs) : 1.0;
        const double size = static_cast<double>(totals.totalSize.raw) / Fixed::kScale;
        const std::vector<std::pair<const char*, std::string>> figures = {
            {"discs", std::to_string(totals.discs)},
            {"total_size", FixedText(totals.totalSize)},
            {"folders", std::to_string(totals.folders)},
            {"files", std::to_string(totals.files)},
            {"average_size", Round2Text(size / discs, ".")},
            {"average_folders", Round2Text(static_cast<double>(totals.folders) / discs, ".")},
            {"average_files", Round2Text(static_cast<double>(totals.files) / discs, ".")},
        };
        if (FormatOf(ctx) == Format::Tsv) {
            Records records(ctx, {{"figure"}, {"value", true}});
            for (const auto& [name, value] : figures) records.Add({name, value});
        } else {
            std::vector<Field> fields;
            std::vector<std::string> values;
            for (const auto& [name, value] : figures) {
                fields.push_back({name, true});
                values.push_back(value);
            }
            Records(ctx, fields, true).Add(values);
        }
        return kDone;
    }

    const StatisticsFigures f = FormatStatistics(totals, DecimalSeparator());
    // The window's captions in the language in force, from CT.rd; the same
    // words from here if it can't be read (kept equal to data/texts_*.txt).
    const struct {
        int baseId;
        Tr fallback;
        const std::string& value;
    } rows[] = {
        {10057, {"Anzahl der CDs / DVDs:", "Number of discs:"}, f.discs},
        {10058, {"Gesamtgröße:", "Total size:"}, f.totalSize},
        {10059, {"Ordner insgesamt:", "Total folders:"}, f.folders},
        {10060, {"Dateien insgesamt:", "Total files:"}, f.files},
        {10061, {"Mittlere Größe je CD / DVD:", "Average size per disc:"}, f.averageSize},
        {10062, {"Mittlere Ordnerzahl je CD / DVD:", "Average folders per disc:"}, f.averageFolders},
        {10063, {"Mittlere Dateizahl je CD / DVD:", "Average files per disc:"}, f.averageFiles},
    };
    for (const auto& row : rows) {
        std::string caption = ResourceText(ctx.programFolder, ctx.language, row.baseId);
        if (caption.empty()) caption = ctx.T(row.fallback);
        *ctx.out << caption << " " << row.value << "\n";
    }
    return kDone;
}

Registration reg{{
    .name = "stats",
    .summary = {"die Zahlen der Sammlung: Datenträger, Größe, Ordner, Dateien und die Mittelwerte je Datenträger",
                "the collection's figures: discs, size, folders, files and the averages per disc"},
    .details = {"tsv gibt je Zeile einen Namen und seinen Wert, json ein Objekt; Größen in Bytes, Zahlen mit "
                "Punkt: discs, total_size, folders, files, average_size, average_folders, average_files.",
                "tsv gives a name and its value a line, json one object; sizes in bytes, numbers with a "
                "point: discs, total_size, folders, files, average_size, average_folders, average_files."},
    .options = {kFormatOption},
    .run = &RunStats,
}};

}  // namespace

}  // namespace ct::cli
