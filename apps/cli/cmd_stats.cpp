// cartulon-cli stats: the statistics window's seven figures, over every disc
// of the data folder, with the locale's decimal separator.
#include <clocale>
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/rddll.h"
#include "core/statistics.h"
#include "platform/walk.h"

namespace ct::cli {

namespace {

std::string DecimalSeparator() {
    std::setlocale(LC_ALL, "");
    const std::lconv* conv = std::localeconv();
    return conv && conv->decimal_point && *conv->decimal_point ? conv->decimal_point : ".";
}

int RunStats(Context& ctx) {
    WalkList folders, files;
    WalkFolder(ctx.dataFolder, folders, files);
    const StatisticsTotals totals = CollectStatistics(ctx.dataFolder, LabelsOf(files));
    const StatisticsFigures f = FormatStatistics(totals, DecimalSeparator());

    // The window's captions in the language in force; plain English if
    // CT.rd can't be read.
    const struct {
        int baseId;
        const char* fallback;
        const std::string& value;
    } rows[] = {
        {10057, "Number of discs:", f.discs},
        {10058, "Total size:", f.totalSize},
        {10059, "Total number of folders:", f.folders},
        {10060, "Total number of files:", f.files},
        {10061, "Average size:", f.averageSize},
        {10062, "Average number of folders:", f.averageFolders},
        {10063, "Average number of files:", f.averageFiles},
    };
    for (const auto& row : rows) {
        std::string caption = ResourceText(ctx.programFolder, ctx.language, row.baseId);
        if (caption.empty()) caption = row.fallback;
        *ctx.out << caption << " " << row.value << "\n";
    }
    return kDone;
}

Registration reg{{
    .name = "stats",
    .summary = {"die Zahlen der Sammlung: Datenträger, Größe, Ordner, Dateien und die Mittelwerte je Datenträger",
                "the collection's figures: discs, size, folders, files and the averages per disc"},
    .run = &RunStats,
}};

}  // namespace

}  // namespace ct::cli
