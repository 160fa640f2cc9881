#include "core/duplicates.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <string_view>

#include "core/catalogue.h"
#include "core/search.h"
#include "core/text.h"

namespace ct {
namespace {

// One distinct (name, size): where its first copy stands. The raw bytes of
// every kept path live in one arena, so a pair costs no allocation of its own.
struct Pair {
    std::uint64_t hash = 0;
    std::int64_t size = 0;
    std::uint32_t disc = 0;
    std::uint32_t pathAt = 0, pathLen = 0;
    std::uint32_t nameAt = 0;  // within the path
    bool manyDiscs = false;
};

// A later copy of a pair.
struct Copy {
    std::uint32_t pair = 0, disc = 0, pathAt = 0, pathLen = 0;
};

std::string_view NameOf(std::string_view path) {
    const std::size_t slash = path.rfind('\\');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// The name as the name search compares it: plain ASCII upper-cased in
// place, anything else the search's way.
void UpperName(std::string& out, std::string_view raw) {
    out.clear();
    for (const char c : raw) {
        if (static_cast<unsigned char>(c) >= 0x80) {
            out = UpperCase(DecodeLine(raw));
            return;
        }
        out += (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
    }
}

std::uint64_t Mix(std::uint64_t h) {
    h ^= h >> 33;
    h *= 0xff51afd7ed558ccdULL;
    h ^= h >> 33;
    return h;
}

// Open addressing over indices into the pairs; grown at half load.
class PairTable {
public:
    PairTable() : slots_(1 << 16, 0) {}
    // The slot where `hash` stands or would stand, starting at its home.
    std::uint32_t& Slot(std::uint64_t hash, std::size_t probe) {
        return slots_[(Mix(hash) + probe) & (slots_.size() - 1)];
    }
    std::size_t Size() const { return slots_.size(); }
    void Grow(const std::vector<Pair>& pairs) {
        std::vector<std::uint32_t> old(slots_.size() * 2, 0);
        old.swap(slots_);
        for (const std::uint32_t index : old) {
            if (!index) continue;
            std::size_t probe = 0;
            while (Slot(pairs[index - 1].hash, probe)) ++probe;
            Slot(pairs[index - 1].hash, probe) = index;
        }
    }

private:
    std::vector<std::uint32_t> slots_;  // pair index + 1; 0 is free
};

}  // namespace

std::int64_t Bytes(std::int64_t storedSize) {
    return storedSize < 0 && storedSize >= INT32_MIN ? storedSize + (std::int64_t{1} << 32) : storedSize;
}

std::vector<DuplicateGroup> FindDuplicates(
    const std::string& dataFolder, const std::vector<std::string>& labels, std::int64_t minSize,
    const std::function<bool(std::size_t, std::size_t)>& progress) {
    std::vector<Pair> pairs;
    std::vector<Copy> copies;
    std::string arena, upper, other;
    PairTable table;
    for (std::size_t disc = 0; disc < labels.size(); ++disc) {
        if (progress && !progress(disc + 1, labels.size())) break;
        // A block of a typical catalogue's size: a fresh megabyte per disc
        // would cost more in page faults than the reading itself.
        LineReader lines(CataloguePath(dataFolder, labels[disc]), std::size_t{1} << 17);
        if (!lines.IsOpen()) continue;
        std::string_view line;
        // Header, the empty line, the folders up to the next empty line.
        if (!lines.NextRaw(line) || !lines.NextRaw(line)) continue;
        while (lines.NextRaw(line) && !line.empty()) {}
        while (lines.NextRaw(line) && !line.empty()) {
            const std::size_t bar = line.find('|');
            if (bar == std::string_view::npos) continue;
            const char* first = line.data() + bar + 1;
            const char* last = line.data() + line.size();
            std::int64_t size = 0;
            const auto [end, ec] = std::from_chars(first, last, size);
            if (ec != std::errc() || (end != last && *end != '|') || Bytes(size) < minSize) continue;
            const std::string_view path = line.substr(0, bar), name = NameOf(path);
            UpperName(upper, name);
            const std::uint64_t hash = std::hash<std::string_view>{}(upper) ^ Mix(static_cast<std::uint64_t>(size));

            std::size_t probe = 0;
            std::uint32_t found = 0;
            for (;; ++probe) {
                const std::uint32_t index = table.Slot(hash, probe);
                if (!index) break;
                const Pair& p = pairs[index - 1];
                if (p.hash != hash || p.size != size) continue;
                // Equal hashes: the names decide.
                const std::string_view kept(arena.data() + p.pathAt + p.nameAt, p.pathLen - p.nameAt);
                UpperName(other, kept);
                if (other == upper) {
                    found = index;
                    break;
                }
            }
            const auto at = static_cast<std::uint32_t>(arena.size());
            if (found) {
                Pair& p = pairs[found - 1];
                p.manyDiscs = p.manyDiscs || p.disc != disc;
                arena.append(path);
                copies.push_back({found - 1, static_cast<std::uint32_t>(disc), at,
                                  static_cast<std::uint32_t>(path.size())});
                continue;
            }
            arena.append(path);
            pairs.push_back({hash, size, static_cast<std::uint32_t>(disc), at,
                             static_cast<std::uint32_t>(path.size()),
                             static_cast<std::uint32_t>(path.size() - name.size()), false});
            table.Slot(hash, probe) = static_cast<std::uint32_t>(pairs.size());
            if (pairs.size() * 2 > table.Size()) table.Grow(pairs);
        }
    }

    // Only the pairs on more than one disc become groups, with their copies
    // in the order they were met.
    std::vector<std::int32_t> groupOf(pairs.size(), -1);
    std::vector<DuplicateGroup> groups;
    auto hit = [&](std::uint32_t disc, std::uint32_t pathAt, std::uint32_t pathLen) {
        return labels[disc] + "\\" + DecodeLine(std::string_view(arena.data() + pathAt, pathLen));
    };
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const Pair& p = pairs[i];
        if (!p.manyDiscs) continue;
        groupOf[i] = static_cast<std::int32_t>(groups.size());
        DuplicateGroup g;
        g.name = DecodeLine(std::string_view(arena.data() + p.pathAt + p.nameAt, p.pathLen - p.nameAt));
        g.size = p.size;
        g.hits.push_back(hit(p.disc, p.pathAt, p.pathLen));
        groups.push_back(std::move(g));
    }
    for (const Copy& c : copies)
        if (groupOf[c.pair] >= 0) groups[static_cast<std::size_t>(groupOf[c.pair])].hits.push_back(hit(c.disc, c.pathAt, c.pathLen));

    std::sort(groups.begin(), groups.end(), [](const DuplicateGroup& a, const DuplicateGroup& b) {
        if (a.size != b.size) return Bytes(a.size) > Bytes(b.size);
        if (ListOrderLess(a.name, b.name)) return true;
        if (ListOrderLess(b.name, a.name)) return false;
        return a.hits < b.hits;
    });
    return groups;
}

}  // namespace ct
