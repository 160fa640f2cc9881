#include "core/rdpack.h"

#include <limits>
#include <map>

#include "core/text.h"

namespace ct {

namespace {

void SetError(std::string* error, std::string message) {
    if (error) *error = std::move(message);
}

std::string Padded(std::int64_t value, int width) {
    std::string digits = std::to_string(value);
    if (static_cast<int>(digits.size()) < width) digits.insert(0, width - digits.size(), '0');
    return digits;
}

bool IsBlankLine(std::string_view line) {
    for (char c : line)
        if (c != ' ' && c != '\t') return false;
    return true;
}

std::string Where(const std::string& fileName, int lineNo) {
    return fileName + ":" + std::to_string(lineNo) + ": ";
}

// Resolves the three escapes; anything else after a backslash is refused, so
// that a typo like "\m" doesn't slip into a text unseen.
bool Unescape(std::string_view text, std::string& out, std::string& problem) {
    out.clear();
    for (std::size_t i = 0; i < text.size(); ++i) {
        char c = text[i];
        if (c != '\\') {
            out += c;
            continue;
        }
        if (i + 1 == text.size()) {
            problem = "a lone backslash ends the text (write \\\\ for a backslash)";
            return false;
        }
        char next = text[++i];
        switch (next) {
            case 'n': out += '\n'; break;
            case 't': out += '\t'; break;
            case '\\': out += '\\'; break;
            default:
                problem = std::string("unknown escape \\") + next +
                          " (only \\n, \\t and \\\\ are known)";
                return false;
        }
    }
    return true;
}

}  // namespace

bool RDPack(const std::vector<RDEntry>& entries, std::string& out, std::string* error) {
    constexpr std::int64_t kMaxLength = std::numeric_limits<std::int32_t>::max();
    std::int64_t bodies = 0;
    for (const RDEntry& e : entries) {
        if (e.id < 0 || e.id > 999'999'999) {
            SetError(error, "id " + std::to_string(e.id) + " doesn't fit nine digits");
            return false;
        }
        bodies += static_cast<std::int64_t>(e.body.size());
    }
    const std::int64_t total = bodies + 30 * static_cast<std::int64_t>(entries.size()) + 10;
    if (total > kMaxLength) {
        SetError(error, "the resource file would be larger than 2147483647 bytes");
        return false;
    }
    out.clear();
    out.reserve(static_cast<std::size_t>(total));
    for (const RDEntry& e : entries) out += e.body;
    std::int64_t start = 1;
    for (const RDEntry& e : entries) {
        const std::int64_t end = start + static_cast<std::int64_t>(e.body.size());
        out += '#';
        out += Padded(e.id, 9);
        out += Padded(start, 10);
        out += Padded(end, 10);
        start = end;
    }
    out += Padded(static_cast<std::int64_t>(entries.size()), 10);
    return true;
}

bool ParseTexts(std::string_view content, const std::string& fileName,
                std::vector<RDEntry>& texts, std::string* error) {
    texts.clear();
    // An editor may have put a byte-order mark in front; it is no part of a text.
    if (content.substr(0, 3) == "\xEF\xBB\xBF") content.remove_prefix(3);

    std::map<int, int> lineOf;  // base id -> line where it stood
    std::map<int, std::string> bodies;
    int lineNo = 0;
    std::size_t pos = 0;
    while (pos < content.size()) {
        std::size_t nl = content.find('\n', pos);
        std::string_view line = content.substr(pos, nl == std::string_view::npos ? nl : nl - pos);
        pos = nl == std::string_view::npos ? content.size() : nl + 1;
        ++lineNo;
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (IsBlankLine(line) || line.front() == '#') continue;

        bool digits = line.size() >= 6 && line[5] == '\t';
        for (std::size_t i = 0; digits && i < 5; ++i)
            if (line[i] < '0' || line[i] > '9') digits = false;
        if (!digits) {
            SetError(error, Where(fileName, lineNo) +
                                "malformed line, expected five digits, a tab and the text");
            return false;
        }
        const int id = std::stoi(std::string(line.substr(0, 5)));
        const std::string idText = "id " + std::to_string(id);
        if (id < kFirstBaseId || id > kLastBaseId) {
            SetError(error, Where(fileName, lineNo) + idText + " is out of range " +
                                std::to_string(kFirstBaseId) + ".." + std::to_string(kLastBaseId));
            return false;
        }
        if (auto seen = lineOf.find(id); seen != lineOf.end()) {
            SetError(error, Where(fileName, lineNo) + idText + " appears twice (first on line " +
                                std::to_string(seen->second) + ")");
            return false;
        }
        std::string_view raw = line.substr(6);
        if (!IsValidUtf8(raw)) {
            SetError(error, Where(fileName, lineNo) + idText + ": the text isn't valid UTF-8");
            return false;
        }
        std::string text, problem;
        if (!Unescape(raw, text, problem)) {
            SetError(error, Where(fileName, lineNo) + idText + ": " + problem);
            return false;
        }
        if (text.empty()) {
            SetError(error, Where(fileName, lineNo) + idText + ": the text is empty");
            return false;
        }
        std::string body;
        if (!Utf8ToCp1252(text, body)) {
            SetError(error, Where(fileName, lineNo) + idText +
                                ": the text holds a character that Windows-1252 can't hold");
            return false;
        }
        lineOf[id] = lineNo;
        bodies[id] = std::move(body);
    }
    for (int id = kFirstBaseId; id <= kLastBaseId; ++id) {
        if (!bodies.count(id)) {
            SetError(error, fileName + ": id " + std::to_string(id) + " is missing");
            return false;
        }
    }
    for (auto& [id, body] : bodies) texts.push_back(RDEntry{id, std::move(body)});
    return true;
}

}  // namespace ct
