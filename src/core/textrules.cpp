#include "core/textrules.h"

#include <limits>

namespace ct {

std::string CleanLabel(std::string_view label) {
    // All nine are ASCII, so removing them bytewise can't split a character.
    static constexpr std::string_view kRemoved = "\\/:*?\"<>|";
    std::string out;
    out.reserve(label.size());
    for (char c : label)
        if (kRemoved.find(c) == std::string_view::npos) out += c;
    return out;
}

std::string TrimBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    const std::size_t last = text.find_last_not_of(' ');
    return std::string(text.substr(first, last - first + 1));
}

namespace {

// Days since 1970-01-01 to a civil date (proleptic Gregorian), after Howard
// Hinnant's algorithm; exact for every day a file time can name.
void CivilFromDays(std::int64_t z, std::int64_t& y, unsigned& m, unsigned& d) {
    z += 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const auto doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    y = static_cast<std::int64_t>(yoe) + era * 400;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    d = doy - (153 * mp + 2) / 5 + 1;
    m = mp < 10 ? mp + 3 : mp - 9;
    if (m <= 2) ++y;
}

void AppendTwo(std::string& out, unsigned v) {
    out += static_cast<char>('0' + v / 10 % 10);
    out += static_cast<char>('0' + v % 10);
}

constexpr std::int64_t kTicksPerSecond = 10'000'000;
constexpr std::int64_t kDaysFrom1601To1970 = 134774;
constexpr std::int64_t kSecondsFrom1601To1970 = kDaysFrom1601To1970 * 86400;

}  // namespace

std::string FileTimeText(std::int64_t fileTime) {
    // What the conversion leaves when it refuses the value: all fields zero.
    if (fileTime < 0) return "00.00.0 00:00:00";
    const std::int64_t seconds = fileTime / kTicksPerSecond;
    const std::int64_t days = seconds / 86400;
    const auto secondOfDay = static_cast<unsigned>(seconds % 86400);
    std::int64_t year;
    unsigned month, day;
    CivilFromDays(days - kDaysFrom1601To1970, year, month, day);
    if (year > 30827) return "00.00.0 00:00:00";

    std::string out;
    out.reserve(19);
    AppendTwo(out, day);
    out += '.';
    AppendTwo(out, month);
    out += '.';
    out += std::to_string(year);
    out += ' ';
    AppendTwo(out, secondOfDay / 3600);
    out += ':';
    AppendTwo(out, secondOfDay / 60 % 60);
    out += ':';
    AppendTwo(out, secondOfDay % 60);
    return out;
}

std::int64_t FileTimeFromUnix(std::int64_t seconds, std::uint32_t nanoseconds) {
    constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
    // Out of the file time's range: a value FileTimeText refuses.
    if (seconds < -kSecondsFrom1601To1970) return -1;
    if (seconds > kMax / kTicksPerSecond - kSecondsFrom1601To1970 - 1) return -1;
    return (seconds + kSecondsFrom1601To1970) * kTicksPerSecond +
           static_cast<std::int64_t>(nanoseconds % 1'000'000'000u / 100);
}

std::string NormaliseDescription(std::string_view text) {
    // A catalogue line can't hold a line break: CR LF, and a lone CR or LF,
    // become one blank first.
    std::string flat;
    flat.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\r') {
            if (i + 1 < text.size() && text[i + 1] == '\n') ++i;
            flat += ' ';
        } else if (c == '\n') {
            flat += ' ';
        } else {
            flat += c;
        }
    }
    // One pass, pairs taken left to right without overlap: n blanks become
    // ceil(n/2), so a long run may still hold double blanks.
    std::string out;
    out.reserve(flat.size());
    for (std::size_t i = 0; i < flat.size(); ++i) {
        out += flat[i];
        if (flat[i] == ' ' && i + 1 < flat.size() && flat[i + 1] == ' ') ++i;
    }
    return out;
}

}  // namespace ct

