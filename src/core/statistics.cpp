#include "core/statistics.h"

#include <charconv>
#include <cmath>
#include <memory>

#include "core/catalogue.h"
#include "core/text.h"

namespace ct {

namespace {

// A fixed-point value as a double without going through raw * 1e-4, which
// would lose whole bytes once a total passes 2^53 / 10,000 (about 900 GB).
double ToDouble(Fixed value) {
    const std::int64_t whole = value.raw / Fixed::kScale;
    const std::int64_t part = value.raw % Fixed::kScale;
    return static_cast<double>(whole) + static_cast<double>(part) / Fixed::kScale;
}

std::string SizeText(const std::string& bytes, double gigabytes, const std::string& separator) {
    return bytes + " Bytes (" + Round2Text(gigabytes, separator) + " GB)";
}

}  // namespace

StatisticsTotals CollectStatistics(const std::string& dataFolder,
                                   const std::vector<std::string>& labels,
                                   const StatisticsProgress& progress) {
    StatisticsTotals totals;
    totals.discs = static_cast<std::int64_t>(labels.size());
    CatalogueCounter counter;
    const std::unique_ptr<ReadFolder> folder = OpenFolderForReading(dataFolder);
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (progress && !progress(i + 1, labels.size())) {
            totals.complete = false;
            break;
        }
        const CatalogueCounts counts = counter.Count(*folder, CatalogueName(labels[i]));
        totals.totalSize += ParseLeadingDecimal(FirstField(counts.headerLine));
        totals.folders += counts.folders;
        totals.files += counts.files;
    }
    return totals;
}

std::string Round2Text(double value, const std::string& separator) {
    if (!std::isfinite(value)) return "0";
    const double scaled = value * 100.0;
    // Beyond this the double has no hundredths left to round, and the
    // integer below would overflow.
    if (std::fabs(scaled) >= 9.0e17) {
        char buf[400];
        auto res = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed, 0);
        return std::string(buf, res.ptr);
    }
    // x - floor(x) is exact, so a tie is seen only where the double really is
    // one, and goes to the even neighbour.
    const double low = std::floor(scaled);
    const double rest = scaled - low;
    double rounded = low;
    if (rest > 0.5 || (rest == 0.5 && std::fmod(low, 2.0) != 0.0)) rounded = low + 1.0;

    const std::int64_t hundredths = static_cast<std::int64_t>(rounded);
    const std::uint64_t magnitude = hundredths < 0 ? 0 - static_cast<std::uint64_t>(hundredths)
                                                   : static_cast<std::uint64_t>(hundredths);
    std::string text = hundredths < 0 ? "-" : "";
    text += std::to_string(magnitude / 100);
    const unsigned cents = static_cast<unsigned>(magnitude % 100);
    if (cents != 0) {
        text += separator;
        text += static_cast<char>('0' + cents / 10);
        if (cents % 10 != 0) text += static_cast<char>('0' + cents % 10);
    }
    return text;
}

StatisticsFigures FormatStatistics(const StatisticsTotals& totals, const std::string& separator) {
    StatisticsFigures f;
    const double s = ToDouble(totals.totalSize);
    const double n = static_cast<double>(totals.discs);
    const double folders = static_cast<double>(totals.folders);
    const double files = static_cast<double>(totals.files);

    f.discs = std::to_string(totals.discs);
    f.totalSize = SizeText(FixedText(totals.totalSize), s / 1024 / 1024 / 1024, separator);
    f.folders = std::to_string(totals.folders);
    f.files = std::to_string(totals.files);
    if (totals.discs == 0) {
        f.averageSize = SizeText("0", 0, separator);
        // Filled rather than assigned from a literal: GCC 12 at -O3 takes the
        // literal assignment for an overlapping copy and fails the build.
        f.averageFolders.assign(1, '0');
        f.averageFiles.assign(1, '0');
        return f;
    }
    f.averageSize = SizeText(Round2Text(s / n, separator), s / 1024 / 1024 / 1024 / n, separator);
    f.averageFolders = Round2Text(folders / n, separator);
    f.averageFiles = Round2Text(files / n, separator);
    return f;
}

}  // namespace ct
