#include "core/duplicates.h"

#include <algorithm>
#include <charconv>
#include <string_view>
#include <unordered_map>

#include "core/catalogue.h"
#include "core/search.h"
#include "core/text.h"

namespace ct {
namespace {

struct Copies {
    std::uint32_t firstDisc = 0;
    bool manyDiscs = false;
    std::string name;
    std::vector<std::string> hits;
};

struct KeyHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
};

// The key of a pair: the size's digits, a NUL, the upper-cased name. Plain
// ASCII names are upper-cased in place; others go the search's way.
void MakeKey(std::string& key, std::string_view size, std::string_view rawName) {
    key.assign(size);
    key += '\0';
    bool ascii = true;
    for (const char c : rawName) ascii = ascii && static_cast<unsigned char>(c) < 0x80;
    if (ascii) {
        for (const char c : rawName) key += (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
    } else {
        key += UpperCase(DecodeLine(rawName));
    }
}

}  // namespace

std::int64_t Bytes(std::int64_t storedSize) {
    return storedSize < 0 && storedSize >= INT32_MIN ? storedSize + (std::int64_t{1} << 32) : storedSize;
}

std::vector<DuplicateGroup> FindDuplicates(
    const std::string& dataFolder, const std::vector<std::string>& labels, std::int64_t minSize,
    const std::function<bool(std::size_t, std::size_t)>& progress) {
    std::unordered_map<std::string, Copies, KeyHash, std::equal_to<>> pairs;
    std::string key;
    for (std::size_t disc = 0; disc < labels.size(); ++disc) {
        if (progress && !progress(disc + 1, labels.size())) break;
        LineReader lines(CataloguePath(dataFolder, labels[disc]));
        if (!lines.IsOpen()) continue;
        std::string_view line;
        // Header, the empty line, the folders up to the next empty line.
        if (!lines.NextRaw(line) || !lines.NextRaw(line)) continue;
        while (lines.NextRaw(line) && !line.empty()) {}
        while (lines.NextRaw(line) && !line.empty()) {
            const std::size_t bar = line.find('|');
            if (bar == std::string_view::npos) continue;
            const std::size_t bar2 = line.find('|', bar + 1);
            const std::string_view sizeText = line.substr(bar + 1, bar2 == std::string_view::npos
                                                                       ? std::string_view::npos
                                                                       : bar2 - bar - 1);
            std::int64_t size = 0;
            const auto [end, ec] = std::from_chars(sizeText.data(), sizeText.data() + sizeText.size(), size);
            if (ec != std::errc() || end != sizeText.data() + sizeText.size() || Bytes(size) < minSize) continue;
            const std::string_view path = line.substr(0, bar);
            const std::size_t slash = path.rfind('\\');
            const std::string_view rawName = slash == std::string_view::npos ? path : path.substr(slash + 1);
            MakeKey(key, sizeText, rawName);
            auto it = pairs.find(std::string_view(key));
            const std::string hit = labels[disc] + "\\" + DecodeLine(path);
            if (it == pairs.end()) {
                Copies c;
                c.firstDisc = static_cast<std::uint32_t>(disc);
                c.name = DecodeLine(rawName);
                c.hits.push_back(hit);
                pairs.emplace(key, std::move(c));
                continue;
            }
            it->second.manyDiscs = it->second.manyDiscs || it->second.firstDisc != disc;
            it->second.hits.push_back(hit);
        }
    }

    std::vector<DuplicateGroup> groups;
    for (auto& [k, c] : pairs) {
        if (!c.manyDiscs) continue;
        DuplicateGroup g;
        g.name = std::move(c.name);
        std::from_chars(k.data(), k.data() + k.find('\0'), g.size);
        g.hits = std::move(c.hits);
        groups.push_back(std::move(g));
    }
    std::sort(groups.begin(), groups.end(), [](const DuplicateGroup& a, const DuplicateGroup& b) {
        if (a.size != b.size) return Bytes(a.size) > Bytes(b.size);
        if (ListOrderLess(a.name, b.name)) return true;
        if (ListOrderLess(b.name, a.name)) return false;
        return a.hits < b.hits;
    });
    return groups;
}

}  // namespace ct
