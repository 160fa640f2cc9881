// Figures over the whole collection: how many discs, how much they hold, how
// many folders and files, and the same per disc. Worked out afresh on every
// run from the catalogues of a given disc list; nothing is kept.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/catalogue.h"
#include "core/fixed.h"

namespace ct {

struct StatisticsTotals {
    std::int64_t discs = 0;
    Fixed totalSize;  // sum of the headers' first field (the volumes' capacities)
    std::int64_t folders = 0;
    std::int64_t files = 0;
    bool complete = true;  // false when the progress callback stopped the run
};

// Hears, before each catalogue is opened, its number counted from 1 and the
// number of discs, so a window can move its bar and let events run. Returning
// false stops the run there (the window was closed).
using StatisticsProgress = std::function<bool(std::size_t disc, std::size_t discs)>;

// Reads every catalogue of `labels` in `dataFolder` by the counting way. Every
// label counts as a disc; a catalogue that can't be opened adds nothing else,
// and one that is cut short adds what could be read.
StatisticsTotals CollectStatistics(const std::string& dataFolder,
                                   const std::vector<std::string>& labels,
                                   const StatisticsProgress& progress = {});

// `value` rounded to two decimals the way the figures have always been
// rounded: the value times 100, a tie going to the even neighbour, so 2.125
// (exact in binary) gives 2.12 and 0.125 gives 0.12. Printed with `separator`
// and only the decimals needed: "2,5", "3", "0,05". No group separator.
std::string Round2Text(double value, const std::string& separator);

// The seven value texts, in the order the window shows them.
struct StatisticsFigures {
    std::string discs;            // "2"
    std::string totalSize;        // "1354311424 Bytes (1,26 GB)"
    std::string folders;          // "7"
    std::string files;            // "7"
    std::string averageSize;      // "677155712 Bytes (0,63 GB)"
    std::string averageFolders;   // "3,5"
    std::string averageFiles;     // "3,5"
};

// GB is 1024^3 bytes; every division is done on doubles, in the order
// S / 1024 / 1024 / 1024 / n. No discs gives 0 for every figure.
StatisticsFigures FormatStatistics(const StatisticsTotals& totals, const std::string& separator);

}  // namespace ct
