#include "core/rddll.h"

#include <fstream>
#include <limits>
#include <string_view>

#include "core/text.h"

namespace ct {

namespace {

constexpr std::int64_t kMaxPosition = std::numeric_limits<std::int32_t>::max();

// A fixed-width number field: blanks around it and zeros in front are padding.
// Anything else (a sign, a letter, nothing at all) makes the field unreadable,
// so that a damaged table gives up instead of reading from a wrong place.
bool ReadField(std::string_view field, std::int64_t& value) {
    std::size_t first = field.find_first_not_of(' ');
    if (first == std::string_view::npos) return false;
    std::size_t last = field.find_last_not_of(' ');
    field = field.substr(first, last - first + 1);
    value = 0;
    for (char c : field) {
        if (c < '0' || c > '9') return false;
        value = value * 10 + (c - '0');
        if (value > kMaxPosition) return false;
    }
    return true;
}

bool ReadAt(std::ifstream& in, std::int64_t offset, std::size_t length, std::string& out) {
    out.assign(length, '\0');
    in.seekg(offset);
    if (!in) return false;
    in.read(out.data(), static_cast<std::streamsize>(length));
    return static_cast<std::size_t>(in.gcount()) == length;
}

}  // namespace


std::string RDDLL::RDString(const std::string& RessourceFile, std::int32_t ID) {
    if (ID < 0 || ID > 999'999'999) return {};
    std::ifstream in(RessourceFile, std::ios::binary);
    if (!in) return {};
    in.seekg(0, std::ios::end);
    const std::int64_t length = static_cast<std::int64_t>(in.tellg());
    if (length < 10 || length > kMaxPosition) return {};

    std::string field;
    std::int64_t count = 0;
    if (!ReadAt(in, length - 10, 10, field) || !ReadField(field, count)) return {};
    const std::int64_t tableSize = 30 * count + 10;
    if (tableSize > length) return {};

    // The table and, behind it, the count field again.
    std::string table;
    if (!ReadAt(in, length - tableSize, static_cast<std::size_t>(tableSize), table)) return {};

    std::string key = std::to_string(ID);
    key.insert(0, 9 - key.size(), '0');
    key.insert(0, 1, '#');
    const std::size_t at = table.find(key);
    if (at == std::string::npos || at + 30 > table.size()) return {};

    std::int64_t start = 0, end = 0;
    if (!ReadField(std::string_view(table).substr(at + 10, 10), start) ||
        !ReadField(std::string_view(table).substr(at + 20, 10), end))
        return {};
    // 1-based positions; end lies just behind the body, at most one past the file.
    if (start < 1 || end < start || end > length + 1) return {};

    std::string body;
    if (!ReadAt(in, start - 1, static_cast<std::size_t>(end - start), body)) return {};
    return body;
}

std::string RDDLL::Version() {
    return std::to_string(CARTULON_VERSION_MAJOR) + "." + std::to_string(CARTULON_VERSION_MINOR);
}

std::string ResourcePath(const std::string& programFolder) { return programFolder + "/CT.rd"; }

std::string ResourceText(const std::string& programFolder, int language, int baseId) {
    const std::int64_t id = static_cast<std::int64_t>(language) + baseId;
    if (id < 0 || id > 999'999'999) return {};
    RDDLL rd;
    return Cp1252ToUtf8(rd.RDString(ResourcePath(programFolder), static_cast<std::int32_t>(id)));
}

}  // namespace ct
