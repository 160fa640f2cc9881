#include "core/statistics.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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

// One catalogue's bytes, block by block, through the states of the counting
// way. Line ends are those of LineReader: CR LF, LF, or a lone CR.
class CountScan {
public:
    void Feed(const char* p, std::size_t n) {
        std::size_t i = 0;
        if (afterCr_) {
            afterCr_ = false;
            if (n > 0 && p[0] == '\n') i = 1;
        }
        // The next CR and LF, found once per block and then only when passed,
        // so a file with one kind of line end isn't scanned again per line.
        std::size_t crAt = 0, lfAt = 0;
        bool crKnown = false, lfKnown = false;
        auto find = [&](char c, std::size_t from) {
            const void* hit = std::memchr(p + from, c, n - from);
            return hit ? static_cast<std::size_t>(static_cast<const char*>(hit) - p) : n;
        };
        while (i < n) {
            if (at_ == At::Files) {
                CountFiles(p + i, n - i);
                return;
            }
            if (!crKnown || crAt < i) crAt = find('\r', i), crKnown = true;
            if (!lfKnown || lfAt < i) lfAt = find('\n', i), lfKnown = true;
            const std::size_t eol = std::min(crAt, lfAt);
            if (eol == n) {
                Partial(p + i, n - i);
                return;
            }
            EndLine(p + i, eol - i);
            std::size_t next = eol + 1;
            if (p[eol] == '\r') {
                if (next < n) {
                    if (p[next] == '\n') ++next;
                } else {
                    afterCr_ = true;  // its LF, if any, opens the next block
                }
            }
            i = next;
        }
    }

    void Finish(CatalogueCounts& counts) {
        if ((at_ == At::Folders && partial_)) ++folders_;
        if (at_ == At::Files && partial_) ++files_;
        counts.headerLine = DecodeLine(header_);
        counts.folders = folders_;
        counts.files = files_;
    }

private:
    enum class At { Header, Line2, Folders, Files };

    void Partial(const char* p, std::size_t len) {
        if (at_ == At::Header) header_.append(p, len);
        if (len > 0) partial_ = true;
    }

    void EndLine(const char* p, std::size_t len) {
        switch (at_) {
        case At::Header:
            header_.append(p, len);
            at_ = At::Line2;
            break;
        case At::Line2:
            at_ = At::Folders;
            break;
        case At::Folders:
            if (len > 0 || partial_)
                ++folders_;
            else
                at_ = At::Files;
            break;
        case At::Files:
            break;
        }
        partial_ = false;
    }

    // Every line end is a file line, empty lines included; a CR LF is one.
    void CountFiles(const char* p, std::size_t n) {
        const char* end = p + n;
        for (const char* c = p; (c = static_cast<const char*>(std::memchr(c, '\n', end - c))); ++c) ++files_;
        for (const char* c = p; (c = static_cast<const char*>(std::memchr(c, '\r', end - c))); ++c) {
            if (c + 1 < end) {
                if (c[1] != '\n') ++files_;
            } else {
                ++files_;
                afterCr_ = true;
            }
        }
        partial_ = end[-1] != '\n' && end[-1] != '\r';
    }

    At at_ = At::Header;
    std::string header_;
    std::int64_t folders_ = 0, files_ = 0;
    bool afterCr_ = false;
    bool partial_ = false;  // the current line has bytes not yet ended
};

}  // namespace

CatalogueCounter::CatalogueCounter(std::size_t blockSize) : buffer_(std::max<std::size_t>(1, blockSize)) {}

CatalogueCounts CatalogueCounter::Count(const std::string& path) {
    CatalogueCounts counts;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(OpenForReading(path), &std::fclose);
    if (!file) return counts;
    counts.opened = true;
    std::setvbuf(file.get(), nullptr, _IONBF, 0);  // our own blocks; a stdio buffer would only copy
    CountScan scan;
    for (;;) {
        const std::size_t got = std::fread(buffer_.data(), 1, buffer_.size(), file.get());
        if (got == 0) break;  // the end, or a read error: both end the file, as for every reader
        scan.Feed(buffer_.data(), got);
    }
    scan.Finish(counts);
    return counts;
}

StatisticsTotals CollectStatistics(const std::string& dataFolder,
                                   const std::vector<std::string>& labels,
                                   const StatisticsProgress& progress) {
    StatisticsTotals totals;
    totals.discs = static_cast<std::int64_t>(labels.size());
    CatalogueCounter counter;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (progress && !progress(i + 1, labels.size())) {
            totals.complete = false;
            break;
        }
        const CatalogueCounts counts = counter.Count(CataloguePath(dataFolder, labels[i]));
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
