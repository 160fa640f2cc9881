// The UDF reader: anchor, volume descriptor sequence, partition maps, file set,
// then the directory tree. Offsets are those of the on-disc structures; each
// is read through the bounds-checked helpers below, never by casting.
#include "platform/udf.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <set>
#include <vector>

#include "core/text.h"

namespace ct {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr int kMaxDepth = 256;                      // deeper is a loop in all but name
constexpr std::uint64_t kMaxDirectory = 64u << 20;  // bytes of file identifiers in one folder
constexpr std::uint32_t kUnrecorded = 0xFFFFFFFFu;   // a metadata extent allocated, not recorded
constexpr int kMaxChain = 4096;                     // continuation extents, indirect entries, pointers

std::uint16_t Le16(const unsigned char* p) { return static_cast<std::uint16_t>(p[0] | p[1] << 8); }
std::uint32_t Le32(const unsigned char* p) { return Le16(p) | static_cast<std::uint32_t>(Le16(p + 2)) << 16; }
std::uint64_t Le64(const unsigned char* p) { return Le32(p) | static_cast<std::uint64_t>(Le32(p + 4)) << 32; }

// CRC-ITU-T (polynomial 0x1021, start 0), a byte a step: every entry and
// identifier is checked, so this runs once per byte of the tree's metadata.
constexpr std::array<std::uint16_t, 256> kCrcTable = [] {
    std::array<std::uint16_t, 256> t{};
    for (unsigned b = 0; b < 256; ++b) {
        std::uint16_t crc = static_cast<std::uint16_t>(b << 8);
        for (int i = 0; i < 8; ++i) crc = static_cast<std::uint16_t>(crc & 0x8000 ? crc << 1 ^ 0x1021 : crc << 1);
        t[b] = crc;
    }
    return t;
}();

std::uint16_t Crc(const unsigned char* p, std::size_t n) {
    std::uint16_t crc = 0;
    while (n--) crc = static_cast<std::uint16_t>(crc << 8 ^ kCrcTable[(crc >> 8 ^ *p++) & 0xFF]);
    return crc;
}

// A descriptor tag of kind `id` whose checksum and CRC hold, with `available`
// bytes behind `p`.
bool TagOk(const unsigned char* p, std::size_t available, std::uint16_t id) {
    if (available < 16 || Le16(p) != id) return false;
    unsigned sum = 0;
    for (int i = 0; i < 16; ++i)
        if (i != 4) sum += p[i];
    if ((sum & 0xFF) != p[4]) return false;
    const std::size_t crcLength = Le16(p + 10);
    return crcLength == 0 || (16 + crcLength <= available && Crc(p + 16, crcLength) == Le16(p + 8));
}

// OSTA compressed unicode: a first byte of 8 says one byte a character
// (Latin-1), 16 says UTF-16 big-endian; 254 and 255 are their later spellings.
std::string NameOf(const unsigned char* p, std::size_t length) {
    std::string out;
    if (length == 0) return out;
    const unsigned id = p[0];
    if (id == 8 || id == 254) return Latin1ToUtf8({reinterpret_cast<const char*>(p + 1), length - 1});
    if (id == 16 || id == 255) return Utf16BeToUtf8(p + 1, length - 1);
    return out;
}

std::int64_t DaysFromCivil(std::int64_t y, unsigned m, unsigned d) {
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

// A UDF timestamp: a type in the top four bits, the time zone in minutes east
// of UTC in the twelve below (type 1, -2047 meaning none given), then the
// local date and time.
std::int64_t UnixOf(const unsigned char* t) {
    const unsigned typeAndZone = Le16(t);
    int zone = static_cast<int>(typeAndZone & 0xFFF);
    if (zone & 0x800) zone -= 0x1000;
    if (typeAndZone >> 12 != 1 || zone < -1440 || zone > 1440) zone = 0;
    const int year = static_cast<std::int16_t>(Le16(t + 2));
    const unsigned month = t[4] >= 1 && t[4] <= 12 ? t[4] : 1, day = t[5] >= 1 && t[5] <= 31 ? t[5] : 1;
    return DaysFromCivil(year, month, day) * 86400 + t[6] * 3600 + t[7] * 60 + t[8] - zone * 60;
}

struct PartitionMap {
    enum Kind { Physical, Sparable, Virtual, Metadata } kind = Physical;
    std::uint16_t number = 0;  // the partition descriptor's number
    std::uint64_t start = 0, length = 0;
    std::uint32_t packet = 0;                                     // sparable: blocks a remapped packet spans
    std::vector<std::pair<std::uint32_t, std::uint32_t>> spared;  // original, mapped
    std::uint16_t physical = 0;      // virtual, metadata: the map of the blocks below
    std::vector<std::uint32_t> vat;  // virtual block -> block
    std::vector<std::pair<std::uint64_t, std::uint32_t>> extents;  // metadata file: bytes, first block
    std::uint32_t file = 0, mirror = 0;
};

// One file entry or extended file entry, with its allocation descriptors.
struct Icb {
    std::uint8_t fileType = 0;
    unsigned adType = 0;  // 0 short, 1 long, 2 extended, 3 data in the entry itself
    std::uint64_t length = 0;
    std::int64_t mtime = 0;
    std::uint16_t partition = 0;  // where short descriptors point
    Bytes block;
    std::size_t ads = 0, adsLength = 0;
};

class Reader {
public:
    explicit Reader(int fd) : fd_(fd) {
        // An image file's size, or a disc device's (which fstat gives as 0).
        struct stat st {};
        if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) {
            size_ = static_cast<std::uint64_t>(st.st_size);
        } else if (const off_t end = lseek(fd, 0, SEEK_END); end > 0) {
            size_ = static_cast<std::uint64_t>(end);
        }
    }

    UdfResult Open();
    // After Open: the root's identifiers Open read are walked, not read again.
    UdfResult Walk(const std::function<void(const UdfEntry&)>& visit) {
        return Entries(rootData_, "", 0, visit);
    }
    const Bytes& FileSet() const { return fileSet_; }
    // 0 until Open has found the anchor.
    std::uint32_t BlockSize() const { return anchored_ ? bs_ : 0; }

private:
    bool Anchor(Bytes& anchor);
    bool Read(std::uint64_t block, Bytes& out) const {
        out.assign(bs_, 0);
        if (block >= size_ / bs_) return false;
        return pread(fd_, out.data(), bs_, static_cast<off_t>(block * bs_)) == static_cast<ssize_t>(bs_);
    }
    bool Tagged(std::uint64_t block, std::uint16_t id, Bytes& out) const {
        return Read(block, out) && TagOk(out.data(), out.size(), id);
    }
    bool Map(std::uint16_t ref, std::uint32_t lbn, std::uint64_t& block, int depth = 0) const;
    bool Sequence(std::uint32_t start, std::uint32_t length);
    bool Partitions();
    bool ReadIcb(std::uint16_t ref, std::uint32_t lbn, Icb& icb) const;
    bool Data(const Icb& icb, std::uint64_t limit, Bytes& out) const;
    bool Extents(
        const Icb& icb,
        const std::function<bool(unsigned, std::uint64_t, std::uint16_t, std::uint32_t)>& each) const;
    UdfResult Folder(const Icb& dir, const std::string& prefix, int depth,
                     const std::function<void(const UdfEntry&)>& visit);
    UdfResult Entries(const Bytes& d, const std::string& prefix, int depth,
                      const std::function<void(const UdfEntry&)>& visit);

    int fd_;
    std::uint64_t size_ = 0;
    std::uint32_t bs_ = 2048;
    bool anchored_ = false;
    struct Descriptor {
        std::uint32_t sequence = 0;
        Bytes bytes;
    };
    std::vector<Descriptor> partitions_;
    Descriptor volume_;
    std::vector<PartitionMap> maps_;
    Icb root_;
    Bytes rootData_;                   // the root folder's identifiers, read by Open
    std::set<std::uint64_t> folders_;  // the blocks of the folders walked, against loops
    Bytes fileSet_;
};

bool Reader::Map(std::uint16_t ref, std::uint32_t lbn, std::uint64_t& block, int depth) const {
    if (ref >= maps_.size() || depth > 2) return false;
    const PartitionMap& m = maps_[ref];
    switch (m.kind) {
    case PartitionMap::Physical:
    case PartitionMap::Sparable:
        if (lbn >= m.length) return false;
        block = m.start + lbn;
        if (m.packet) {
            const std::uint32_t packet = lbn - lbn % m.packet;
            for (const auto& [original, mapped] : m.spared)
                if (original == packet) block = static_cast<std::uint64_t>(mapped) + (lbn - packet);
        }
        return true;
    case PartitionMap::Virtual:
        return lbn < m.vat.size() && m.vat[lbn] != 0xFFFFFFFFu &&
               Map(m.physical, m.vat[lbn], block, depth + 1);
    case PartitionMap::Metadata: {
        std::uint64_t at = static_cast<std::uint64_t>(lbn) * bs_;
        for (const auto& [bytes, first] : m.extents) {
            if (at < bytes)
                return first != kUnrecorded &&
                       Map(m.physical, first + static_cast<std::uint32_t>(at / bs_), block, depth + 1);
            at -= bytes;
        }
        return false;
    }
    }
    return false;
}

// A volume descriptor sequence: the partition descriptors and the logical
// volume descriptor, each of the highest sequence number where one repeats.
bool Reader::Sequence(std::uint32_t start, std::uint32_t length) {
    Bytes d;
    std::uint64_t at = start, end = start + static_cast<std::uint64_t>(length / bs_);
    for (int steps = 0; at < end && steps < kMaxChain; ++steps, ++at) {
        if (!Read(at, d) || d.size() < 16) return false;
        const std::uint16_t id = Le16(d.data());
        if (!TagOk(d.data(), d.size(), id)) return false;
        if (id == 8) break;  // the terminator
        if (id == 3) {       // a pointer to the sequence's next extent
            at = Le32(d.data() + 24) - 1ull;
            end = at + 1 + Le32(d.data() + 20) / bs_;
            continue;
        }
        const std::uint32_t sequence = Le32(d.data() + 16);
        if (id == 5) {
            bool found = false;
            for (Descriptor& p : partitions_)
                if (Le16(p.bytes.data() + 22) == Le16(d.data() + 22)) {
                    found = true;
                    if (sequence >= p.sequence) p = {sequence, d};
                }
            if (!found) partitions_.push_back({sequence, d});
        } else if (id == 6 && (volume_.bytes.empty() || sequence >= volume_.sequence)) {
            volume_ = {sequence, d};
        }
    }
    return !volume_.bytes.empty() && !partitions_.empty();
}

bool Reader::Partitions() {
    const unsigned char* lvd = volume_.bytes.data();
    const std::uint32_t tableLength = Le32(lvd + 264), count = Le32(lvd + 268);
    if (440ull + tableLength > bs_) return false;
    auto descriptorOf = [&](std::uint16_t number) -> const unsigned char* {
        for (const Descriptor& p : partitions_)
            if (Le16(p.bytes.data() + 22) == number) return p.bytes.data();
        return nullptr;
    };
    std::size_t at = 440;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (at + 2 > 440 + tableLength) return false;
        const unsigned char* p = lvd + at;
        const unsigned type = p[0], length = p[1];
        if (length < 6 || at + length > 440 + tableLength) return false;
        PartitionMap m;
        if (type == 1) {
            m.number = Le16(p + 4);
        } else if (type == 2 && length >= 64) {
            m.number = Le16(p + 38);
            const std::string id(reinterpret_cast<const char*>(p + 5), 23);
            if (id.rfind("*UDF Sparable Partition", 0) == 0) {
                m.kind = PartitionMap::Sparable;
                m.packet = Le16(p + 40);
                const unsigned tables = p[42];
                const std::uint32_t tableSize = Le32(p + 44);
                // The first table that reads whole; its entries that remap a
                // packet are followed, the free and defective ones aren't.
                for (unsigned t = 0; t < tables && t < 4 && 48 + 4 * t + 4 <= length; ++t) {
                    Bytes s(std::max<std::size_t>(tableSize, 56));
                    const off_t at = static_cast<off_t>(Le32(p + 48 + 4 * t)) * bs_;
                    if (tableSize > (1u << 20) ||
                        pread(fd_, s.data(), s.size(), at) != static_cast<ssize_t>(s.size()) ||
                        !TagOk(s.data(), s.size(), 0) ||
                        std::memcmp(s.data() + 17, "*UDF Sparing Table", 18) != 0)
                        continue;
                    const std::size_t entries = Le16(s.data() + 48);
                    for (std::size_t e = 0; e < entries && 56 + 8 * e + 8 <= s.size(); ++e) {
                        const std::uint32_t original = Le32(s.data() + 56 + 8 * e);
                        if (original < 0xFFFFFFF0u)
                            m.spared.emplace_back(original, Le32(s.data() + 60 + 8 * e));
                    }
                    break;
                }
                if (m.packet == 0) return false;
            } else if (id.rfind("*UDF Virtual Partition", 0) == 0) {
                m.kind = PartitionMap::Virtual;
            } else if (id.rfind("*UDF Metadata Partition", 0) == 0) {
                m.kind = PartitionMap::Metadata;
                m.file = Le32(p + 40);
                m.mirror = Le32(p + 44);
            } else {
                return false;
            }
        } else {
            return false;
        }
        const unsigned char* pd = descriptorOf(m.number);
        if (!pd) return false;
        m.start = Le32(pd + 188);
        m.length = Le32(pd + 192);
        maps_.push_back(std::move(m));
        at += length;
    }
    // Virtual and metadata partitions lie on the blocks of the physical
    // partition of their number; a map of it is made where the volume has none.
    for (std::size_t i = 0, n = maps_.size(); i < n; ++i) {
        PartitionMap& m = maps_[i];
        if (m.kind != PartitionMap::Virtual && m.kind != PartitionMap::Metadata) continue;
        std::size_t physical = maps_.size();
        for (std::size_t j = 0; j < n; ++j)
            if (maps_[j].number == m.number && maps_[j].kind <= PartitionMap::Sparable) physical = j;
        if (physical == maps_.size()) {
            PartitionMap plain;
            plain.number = m.number;
            plain.start = m.start;
            plain.length = m.length;
            maps_.push_back(plain);
        }
        maps_[i].physical = static_cast<std::uint16_t>(physical);
    }
    for (std::size_t i = 0; i < maps_.size(); ++i) {
        PartitionMap& m = maps_[i];
        if (m.kind == PartitionMap::Metadata) {
            // The metadata file, or its mirror when the file doesn't read.
            bool read = false;
            for (const std::uint32_t lbn : {m.file, m.mirror}) {
                Icb file;
                std::vector<std::pair<std::uint64_t, std::uint32_t>> extents;
                read = ReadIcb(m.physical, lbn, file) && file.adType != 3 &&
                       Extents(file,
                               [&](unsigned kind, std::uint64_t bytes, std::uint16_t, std::uint32_t first) {
                                   // Space kept for the metadata to grow maps nowhere.
                                   extents.emplace_back(bytes, kind == 0 ? first : kUnrecorded);
                                   return extents.size() < 65536;
                               });
                if (read) {
                    maps_[i].extents = std::move(extents);
                    break;
                }
            }
            if (!read) return false;
        } else if (m.kind == PartitionMap::Virtual) {
            // The virtual allocation table is the file in the last block
            // written; an image may carry a few empty blocks behind it.
            const std::uint64_t blocks = size_ / bs_;
            bool read = false;
            for (std::uint64_t b = blocks; b-- > 0 && blocks - b <= 512 && !read;) {
                const PartitionMap& phys = maps_[m.physical];
                if (b < phys.start || b - phys.start >= phys.length) continue;
                Icb vat;
                if (!ReadIcb(m.physical, static_cast<std::uint32_t>(b - phys.start), vat)) continue;
                Bytes table;
                if ((vat.fileType != 248 && vat.fileType != 0) || !Data(vat, 64u << 20, table)) continue;
                std::size_t first = 0, end = table.size();
                if (vat.fileType == 248) {  // revision 2.00 on: a header first
                    if (table.size() < 2 || Le16(table.data()) > table.size()) continue;
                    first = Le16(table.data());
                } else {  // revision 1.50: a name and a pointer last
                    if (table.size() < 36 ||
                        std::memcmp(table.data() + table.size() - 35, "*UDF Virtual Alloc Tbl", 22) != 0)
                        continue;
                    end -= 36;
                }
                for (std::size_t at = first; at + 4 <= end; at += 4)
                    maps_[i].vat.push_back(Le32(table.data() + at));
                read = true;
            }
            if (!read) return false;
        }
    }
    return true;
}

// The entry at (ref, lbn), an indirect entry followed to the entry it names.
bool Reader::ReadIcb(std::uint16_t ref, std::uint32_t lbn, Icb& icb) const {
    for (int hop = 0; hop < kMaxChain; ++hop) {
        std::uint64_t block = 0;
        if (!Map(ref, lbn, block) || !Read(block, icb.block)) return false;
        const unsigned char* p = icb.block.data();
        const std::uint16_t id = Le16(p);
        if (id == 259 && TagOk(p, bs_, 259)) {
            lbn = Le32(p + 40);
            ref = Le16(p + 44);
            continue;
        }
        const bool extended = id == 266;
        if ((id != 261 && !extended) || !TagOk(p, bs_, id)) return false;
        const std::size_t base = extended ? 216 : 176;
        const std::uint64_t eaLength = Le32(p + base - 8), adLength = Le32(p + base - 4);
        if (base + eaLength + adLength > bs_) return false;
        icb.fileType = p[27];
        icb.adType = Le16(p + 34) & 7;
        icb.length = Le64(p + 56);
        icb.mtime = UnixOf(p + (extended ? 92 : 84));
        icb.partition = ref;
        icb.ads = base + eaLength;
        icb.adsLength = adLength;
        return icb.adType <= 3;
    }
    return false;
}

// Calls `each` with every extent of the entry: its kind (0 recorded, 1 and 2
// not), its length in bytes and where it starts; continuation extents are
// followed. False when a descriptor is damaged or `each` says stop.
bool Reader::Extents(
    const Icb& icb,
    const std::function<bool(unsigned, std::uint64_t, std::uint16_t, std::uint32_t)>& each) const {
    const std::size_t size = icb.adType == 0 ? 8 : icb.adType == 1 ? 16 : 20;
    Bytes area(icb.block.begin() + static_cast<std::ptrdiff_t>(icb.ads),
               icb.block.begin() + static_cast<std::ptrdiff_t>(icb.ads + icb.adsLength));
    for (int hop = 0; hop < kMaxChain; ++hop) {
        bool continued = false;
        for (std::size_t at = 0; at + size <= area.size() && !continued; at += size) {
            const unsigned char* a = area.data() + at;
            const std::uint32_t raw = Le32(a), bytes = raw & 0x3FFFFFFF, kind = raw >> 30;
            if (bytes == 0) return true;
            const std::uint32_t lbn = Le32(a + (icb.adType == 2 ? 12 : 4));
            const std::uint16_t ref = icb.adType == 0 ? icb.partition : Le16(a + (icb.adType == 2 ? 16 : 8));
            if (kind == 3) {  // the descriptors go on in an allocation extent
                std::uint64_t block = 0;
                Bytes next;
                if (!Map(ref, lbn, block) || !Tagged(block, 258, next)) return false;
                const std::uint64_t length = Le32(next.data() + 20);
                if (24 + length > bs_) return false;
                area.assign(next.begin() + 24, next.begin() + 24 + static_cast<std::ptrdiff_t>(length));
                continued = true;
            } else if (!each(kind, bytes, ref, lbn)) {
                return false;
            }
        }
        if (!continued) return true;
    }
    return false;
}

// The entry's data, `limit` bytes at most: the bytes in the entry itself, or
// its extents; extents not recorded read as zeros.
bool Reader::Data(const Icb& icb, std::uint64_t limit, Bytes& out) const {
    if (icb.length > limit || icb.length > size_) return false;
    out.clear();
    if (icb.adType == 3) {
        if (icb.length > icb.adsLength) return false;
        const auto first = icb.block.begin() + static_cast<std::ptrdiff_t>(icb.ads);
        out.assign(first, first + static_cast<std::ptrdiff_t>(icb.length));
        return true;
    }
    Bytes b;
    // The walk over the extents stops early once the data is whole, so its
    // answer says nothing: the length gathered does.
    Extents(icb, [&](unsigned kind, std::uint64_t bytes, std::uint16_t ref, std::uint32_t lbn) {
        for (std::uint64_t done = 0; done < bytes && out.size() < icb.length; done += bs_) {
            const std::size_t take = static_cast<std::size_t>(std::min<std::uint64_t>(bs_, bytes - done));
            std::uint64_t block = 0;
            if (kind != 0) {
                out.insert(out.end(), take, 0);
            } else if (Map(ref, lbn + static_cast<std::uint32_t>(done / bs_), block) && Read(block, b)) {
                out.insert(out.end(), b.begin(), b.begin() + static_cast<std::ptrdiff_t>(take));
            } else {
                return false;
            }
        }
        return out.size() < icb.length;
    });
    if (out.size() < icb.length) return false;
    out.resize(static_cast<std::size_t>(icb.length));
    return true;
}

UdfResult Reader::Folder(const Icb& dir, const std::string& prefix, int depth,
                         const std::function<void(const UdfEntry&)>& visit) {
    Bytes d;
    if (depth > kMaxDepth || !Data(dir, kMaxDirectory, d)) return UdfResult::Damaged;
    return Entries(d, prefix, depth, visit);
}

UdfResult Reader::Entries(const Bytes& d, const std::string& prefix, int depth,
                          const std::function<void(const UdfEntry&)>& visit) {
    for (std::size_t at = 0; at < d.size();) {
        const unsigned char* f = d.data() + at;
        if (at + 38 > d.size() || !TagOk(f, d.size() - at, 257)) return UdfResult::Damaged;
        const unsigned characteristics = f[18], nameLength = f[19], useLength = Le16(f + 36);
        const std::size_t length = 38 + useLength + nameLength;
        if (at + length > d.size()) return UdfResult::Damaged;
        at += (length + 3) & ~std::size_t{3};
        if (characteristics & (4 | 8)) continue;  // deleted, or the parent
        UdfEntry e;
        e.path = prefix + NameOf(f + 38 + useLength, nameLength);
        if (e.path.size() == prefix.size()) continue;
        e.folder = characteristics & 2;
        e.hidden = characteristics & 1;
        Icb icb;
        const std::uint16_t entryRef = Le16(f + 28);
        std::uint64_t block = 0;
        if (!ReadIcb(entryRef, Le32(f + 24), icb) || !Map(entryRef, Le32(f + 24), block))
            return UdfResult::Damaged;
        e.mtime = icb.mtime;
        if (!e.folder) e.size = icb.length;
        if (visit) visit(e);
        if (e.folder) {
            if (!folders_.insert(block).second) return UdfResult::Damaged;
            const UdfResult r = Folder(icb, e.path + '/', depth + 1, visit);
            if (r != UdfResult::Ok) return r;
        }
    }
    return UdfResult::Ok;
}

// The anchor lies at block 256, else at the last block or 256 before it. The
// block size is the first whose anchor is intact and records its own place:
// 2048 on every disc, the others on images of hard disks and sticks.
bool Reader::Anchor(Bytes& anchor) {
    for (const std::uint32_t bs : {2048u, 512u, 1024u, 4096u, 8192u, 16384u, 32768u}) {
        bs_ = bs;
        const std::uint64_t n = size_ / bs;
        for (const std::uint64_t at : {std::uint64_t{256}, n - 256, n - 1})
            if (at < n && Tagged(at, 2, anchor) && Le32(anchor.data() + 12) == at) {
                anchored_ = true;
                return true;
            }
    }
    return false;
}

UdfResult Reader::Open() {
    Bytes anchor;
    if (!Anchor(anchor)) return UdfResult::NotUdf;
    const unsigned char* a = anchor.data();
    if (!Sequence(Le32(a + 20), Le32(a + 16))) {
        partitions_.clear();
        volume_ = {};
        if (!Sequence(Le32(a + 28), Le32(a + 24))) return UdfResult::NotUdf;
    }
    if (Le32(volume_.bytes.data() + 212) != bs_) return UdfResult::Unsupported;
    if (!Partitions()) return UdfResult::Damaged;
    // The file set, then the root folder's entry.
    const unsigned char* lvd = volume_.bytes.data();
    std::uint64_t block = 0;
    if (!Map(Le16(lvd + 256), Le32(lvd + 252), block) || !Tagged(block, 256, fileSet_)) return UdfResult::Damaged;
    const std::uint16_t rootRef = Le16(fileSet_.data() + 408);
    const std::uint32_t rootLbn = Le32(fileSet_.data() + 404);
    if (!ReadIcb(rootRef, rootLbn, root_) || !Map(rootRef, rootLbn, block)) return UdfResult::Damaged;
    folders_.insert(block);
    return Data(root_, kMaxDirectory, rootData_) ? UdfResult::Ok : UdfResult::Damaged;
}

}  // namespace

bool UdfRecognised(int fd, std::uint64_t start) {
    for (const std::uint64_t step : {2048u, 4096u, 8192u, 16384u, 32768u}) {
        unsigned char d[6];
        for (std::uint64_t i = 0; i < 64; ++i) {
            if (pread(fd, d, sizeof d, static_cast<off_t>(start + 32768 + i * step)) != sizeof d) break;
            const std::string id(reinterpret_cast<const char*>(d) + 1, 5);
            if (id == "NSR02" || id == "NSR03") return true;
            // TEA01, or anything else, ends the sequence.
            if (id != "BEA01" && id != "CD001" && id != "BOOT2" && id != "CDW02") break;
        }
    }
    return false;
}

UdfVolume ReadUdfVolume(int fd) {
    Reader reader(fd);
    UdfVolume volume;
    const bool opened = reader.Open() == UdfResult::Ok;
    volume.blockSize = reader.BlockSize();
    if (opened) volume.fileSet = reader.FileSet();
    return volume;
}

UdfResult ReadUdfTree(int fd, const std::function<void(const UdfEntry&)>& visit) {
    Reader reader(fd);
    const UdfResult opened = reader.Open();
    if (opened != UdfResult::Ok || !visit) return opened;
    return reader.Walk(visit);
}

}  // namespace ct
