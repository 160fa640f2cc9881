// Disc images made here by the image tools, read without mounting: the
// catalogue of the image must be the tree as the tool recorded it, and the
// header the figures of the image's descriptors.
#include <gtest/gtest.h>
#include <utime.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <map>
#include <string>
#include <vector>

#include "core/adddisc.h"
#include "core/catalogue.h"
#include "core/fileops.h"
#include "core/textrules.h"
#include "core/verify.h"
#include "platform/image.h"
#include "platform/volume.h"
#include "support/discsums.h"
#include "support/scratch.h"

namespace ct {
namespace {

using test::DescriptorSums;
using test::ReadAll;
using test::Scratch;

bool Shell(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }
bool Have(const char* tool) { return Shell(std::string("command -v ") + tool); }

// name, size, time: the tree on the disc, in the order a drive lists it
// (Joliet sorts by UCS-2 code units: capitals before small letters).
struct Entry {
    const char* path;  // '/' between names; a folder ends in '/'
    int size;
    std::int64_t mtime;
};
const Entry kTree[] = {
    {"Long name with blanks, more than 31 characters.txt", 2, 1047633160},
    {"Zeta/", 0, 1000000000},
    {"Zeta/Unter/", 0, 1100000000},
    {"Zeta/Unter/c.txt", 3, 1200000000},
    {"Zeta/z.txt", 5, 1300000000},
    {"alpha/", 0, 1400000000},
    {"alpha/\xC3\xA4rger \xE2\x82\xAC.txt", 4, 1500000000},
    {"b.txt", 0, 1600000000},
    {"big.bin", 300000, 1700000000},
};

std::string MakeTree(const Scratch& s) {
    for (const Entry& e : kTree) {
        const std::string p = s / (std::string("tree/") + e.path);
        if (p.back() == '/') s.Folder(std::string("tree/") + e.path);
        else s.Write(std::string("tree/") + e.path, std::string(static_cast<std::size_t>(e.size), 'x'));
    }
    // Times last, deepest first, so that making an entry doesn't touch its folder's.
    for (auto it = std::rbegin(kTree); it != std::rend(kTree); ++it) {
        const utimbuf t{static_cast<time_t>(it->mtime), static_cast<time_t>(it->mtime)};
        utime((s / (std::string("tree/") + it->path)).c_str(), &t);
    }
    return s / "tree";
}

// The catalogue lines the tree must give, in walk order: folders, then files.
std::vector<std::string> ExpectedLines() {
    std::vector<std::string> folders, files;
    for (const Entry& e : kTree) {
        std::string path = "\\" + std::string(e.path);
        std::replace(path.begin(), path.end(), '/', '\\');
        const std::string time = FileTimeText(FileTimeFromUnix(e.mtime, 0));
        if (path.back() == '\\') {
            path.pop_back();
            folders.push_back(path + "|R|" + time + "|");
        } else {
            files.push_back(path + "|" + std::to_string(e.size) + "|R|" + time + "|");
        }
    }
    folders.insert(folders.end(), files.begin(), files.end());
    return folders;
}

std::vector<std::string> ImageLines(const std::string& image, bool& ok) {
    WalkList folders, files;
    ok = WalkImage(image, folders, files);
    std::vector<std::string> lines;
    for (const auto& f : folders) lines.push_back(FolderLineOf(image, f));
    for (const auto& f : files) lines.push_back(FileLineOf(image, f));
    return lines;
}

TEST(WalkImage, GivesTheTreeAsTheImageToolRecordedIt) {
    const struct {
        const char* name;
        const char* tool;
        const char* command;  // %s: image, then tree
    } rows[] = {
        {"JolietAndRockRidge", "xorriso", "xorriso -as mkisofs -J -R -V FOTOS -o %s %s"},
        {"RockRidgeOnly", "xorriso", "xorriso -as mkisofs -R -V FOTOS -o %s %s"},
        {"UdfBridge", "genisoimage", "genisoimage -udf -J -R -V FOTOS -o %s %s"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        if (!Have(row.tool)) GTEST_SKIP() << row.tool << " is missing";
        Scratch s;
        const std::string tree = MakeTree(s), image = s / "disc.iso";
        char command[1024];
        std::snprintf(command, sizeof command, row.command, image.c_str(), tree.c_str());
        ASSERT_TRUE(Shell(command));
        ASSERT_TRUE(IsDiscImage(image));
        bool ok = false;
        const std::vector<std::string> lines = ImageLines(image, ok);
        EXPECT_TRUE(ok);
        EXPECT_EQ(lines, ExpectedLines());
    }
}

// The image tools set no hidden flag, so the test sets it in the Joliet
// records of `names` (their length byte says they are names, not file data).
void HideInJoliet(const std::string& image, std::initializer_list<const char*> names) {
    std::string bytes = ReadAll(image);
    for (const char* name : names) {
        std::string ucs2;
        for (const char* c = name; *c; ++c) ucs2 += std::string(1, '\0') + *c;
        for (std::size_t at = bytes.find(ucs2); at != std::string::npos; at = bytes.find(ucs2, at + 1))
            if (at >= 33 && static_cast<unsigned char>(bytes[at - 1]) == ucs2.size()) bytes[at - 33 + 25] |= 1;
    }
    std::ofstream(image, std::ios::binary | std::ios::trunc) << bytes;
}

TEST(WalkImage, HiddenFlagBecomesH) {
    if (!Have("xorriso")) GTEST_SKIP() << "xorriso is missing";
    Scratch s;
    const std::string tree = MakeTree(s), image = s / "disc.iso";
    ASSERT_TRUE(Shell("xorriso -as mkisofs -J -R -o " + image + " " + tree));
    HideInJoliet(image, {"Zeta", "b.txt"});
    bool ok = false;
    std::vector<std::string> expected = ExpectedLines();
    for (std::string& line : expected)
        if (line.rfind("\\Zeta|", 0) == 0 || line.rfind("\\b.txt|", 0) == 0) line.replace(line.find("|R|"), 3, "|R H|");
    EXPECT_EQ(ImageLines(image, ok), expected);
}

// The header's figures: label, serial, file system and blocks.
void ExpectHeader(const std::string& image, const std::string& label, const char* fileSystem,
                  std::uint32_t serial, std::uint32_t blocks, std::int32_t bs = 2048) {
    VolumeInfo v;
    ReadImageVolumeInfo(image, v);
    EXPECT_EQ(v.VolumeName, label);
    EXPECT_EQ(v.FileSystem, fileSystem);
    EXPECT_EQ(static_cast<std::uint32_t>(v.SerialNumber), serial);
    EXPECT_NE(serial, 0u);
    EXPECT_EQ(v.ClusterCount, static_cast<std::int32_t>(blocks));
    EXPECT_EQ(v.SectorsPerCluster, 1);
    EXPECT_EQ(v.BytesPerSector, bs);
    EXPECT_EQ(v.Size.raw, static_cast<std::int64_t>(blocks) * bs * Fixed::kScale);
}

TEST(ReadImageVolumeInfo, HeaderFromTheDescriptors) {
    if (!Have("xorriso")) GTEST_SKIP() << "xorriso is missing";
    Scratch s;
    s.Write("tree/a.txt", "content");
    const std::string iso = s / "disc.iso";
    ASSERT_TRUE(Shell("xorriso -as mkisofs -J -V 'Urlaub 2003' -o " + iso + " " + (s / "tree")));
    const std::string bytes = ReadAll(iso);
    std::uint32_t isoBlocks = 0;  // the descriptor's block count, little-endian half (as is this machine)
    std::memcpy(&isoBlocks, bytes.data() + 16 * 2048 + 80, 4);
    ASSERT_EQ(bytes.substr(17 * 2048 + 88, 3), "%/E");  // the serial's descriptor: the Joliet one at 17
    ExpectHeader(iso, "Urlaub 2003", "CDFS", DescriptorSums(bytes, 17), isoBlocks);
    // Anything else is no image, and its figures stay as the caller set them.
    VolumeInfo none;
    ReadImageVolumeInfo(s / "tree/a.txt", none);
    EXPECT_EQ(none.FileSystem, "");
    EXPECT_FALSE(IsDiscImage(s / "tree/a.txt"));
    EXPECT_FALSE(IsDiscImage(s / "tree"));
    EXPECT_FALSE(ImageFailure(iso));
}

// --- UDF -------------------------------------------------------------------
// mkudffs makes empty volumes of every revision and nothing here can mount
// one, so this writes kTree into such a volume as a UDF writer would: an
// entry of the kind mkudffs chose (file entry or extended file entry) per item,
// each on its own block at the partition's middle, the folders' identifiers
// in the root's entry and in a block of their own below, files' data in the
// entry or in two extents, times one hour east of UTC, a deleted identifier in
// the root. On write-once media (VAT) the table moves to the new last block. With `metadata`
// the folders move into a metadata partition, as on Blu-ray discs, whose
// metadata file is broken so that its mirror must be read.
std::uint16_t Crc(const unsigned char* p, std::size_t n) {
    std::uint16_t crc = 0;
    while (n--) {
        crc ^= static_cast<std::uint16_t>(*p++ << 8);
        for (int i = 0; i < 8; ++i) crc = static_cast<std::uint16_t>(crc & 0x8000 ? crc << 1 ^ 0x1021 : crc << 1);
    }
    return crc;
}
void P16(unsigned char* p, unsigned v) { p[0] = static_cast<unsigned char>(v), p[1] = static_cast<unsigned char>(v >> 8); }
void P32(unsigned char* p, std::uint64_t v) { P16(p, v & 0xFFFF), P16(p + 2, (v >> 16) & 0xFFFF); }
unsigned G16(const unsigned char* p) { return p[0] | p[1] << 8; }
std::uint32_t G32(const unsigned char* p) { return G16(p) | G16(p + 2) << 16; }

struct Udf {
    std::string img;
    std::uint32_t bs = 2048, pstart = 0, vat = 0, meta = 0, next = 0, data = 0;
    unsigned id = 0, version = 0;
    std::map<std::string, std::uint32_t> blocks;  // item -> its entry's block

    unsigned char* At(std::uint32_t block) { return reinterpret_cast<unsigned char*>(img.data()) + std::uint64_t{block} * bs; }
    bool InMeta(std::uint32_t b) const { return meta && b >= meta && b < meta + 256; }
    std::uint32_t Lbn(std::uint32_t b) const { return InMeta(b) ? b - meta : b - pstart; }
    void Tag(unsigned char* p, unsigned tag, std::uint32_t at, std::size_t crcLength) {
        P16(p, tag), P16(p + 2, version), P16(p + 8, Crc(p + 16, crcLength)), P16(p + 10, crcLength), P32(p + 12, at);
        unsigned sum = 0;
        for (int i = 0; i < 16; ++i) sum += i == 4 ? 0 : p[i];
        p[4] = static_cast<unsigned char>(sum);
    }
    // A short (8 bytes), long (16) or extended (20) allocation descriptor.
    std::string Ad(std::uint64_t length, std::uint32_t block, int size) {
        std::string a(size, '\0');
        auto* p = reinterpret_cast<unsigned char*>(a.data());
        const int at = size == 20 ? 12 : 4;
        P32(p, length), P32(p + at, Lbn(block));
        if (size > 8) P16(p + at + 4, InMeta(block));
        return a;
    }
    void Icb(std::uint32_t block, int type, std::uint64_t length, std::int64_t mtime, unsigned ads,
               const std::string& descriptors) {
        unsigned char* p = At(block);
        const std::uint32_t at = p[0] ? G32(p + 12) : Lbn(block);  // the root keeps its place
        const std::size_t base = id == 266 ? 216 : 176;
        std::memset(p, 0, bs);
        P16(p + 20, 4), P16(p + 24, 1), p[27] = static_cast<unsigned char>(type), P16(p + 34, ads);
        P16(p + 48, 1), P32(p + 56, length), P32(p + 64, id == 266 ? length : 0);
        const time_t east = mtime + 3600;
        tm t{};
        gmtime_r(&east, &t);
        unsigned char* s = p + (id == 266 ? 92 : 84);
        P16(s, 0x1000 | 60), P16(s + 2, t.tm_year + 1900);
        s[4] = t.tm_mon + 1, s[5] = t.tm_mday, s[6] = t.tm_hour, s[7] = t.tm_min, s[8] = t.tm_sec;
        P32(p + base - 4, descriptors.size());
        std::memcpy(p + base, descriptors.data(), descriptors.size());
        Tag(p, id, at, base + descriptors.size() - 16);
    }
    std::string Fid(unsigned characteristics, const std::string& utf8, std::uint32_t block) {
        std::u16string units;  // names here are of the first plane
        for (std::size_t i = 0; i < utf8.size();) {
            const unsigned char c = utf8[i];
            const int n = c < 0x80 ? 1 : c < 0xE0 ? 2 : 3;
            char16_t u = n == 1 ? c : n == 2 ? c & 0x1F : c & 0x0F;
            for (int k = 1; k < n; ++k) u = static_cast<char16_t>(u << 6 | (utf8[i + k] & 0x3F));
            units += u, i += n;
        }
        const bool wide = std::any_of(units.begin(), units.end(), [](char16_t u) { return u > 0xFF; });
        std::string name = units.empty() ? "" : wide ? "\x10" : "\x08";
        for (char16_t u : units) name += wide ? std::string{static_cast<char>(u >> 8), static_cast<char>(u)} : std::string(1, static_cast<char>(u));
        std::string f(38 + name.size(), '\0');
        auto* p = reinterpret_cast<unsigned char*>(f.data());
        P16(p + 16, 1), p[18] = static_cast<unsigned char>(characteristics), p[19] = static_cast<unsigned char>(name.size());
        std::memcpy(p + 20, Ad(bs, block, 16).data(), 16);
        std::memcpy(p + 38, name.data(), name.size());
        Tag(p, 257, 0, f.size() - 16);
        return f.append((4 - f.size() % 4) % 4, '\0');
    }
    void Folder(const std::string& path, std::uint32_t block, std::uint32_t parent, std::int64_t mtime) {
        // Deleted identifiers first: in the root's entry one, elsewhere enough
        // that the living ones cross from the folder's first block to its second.
        const bool inEntry = path.empty() && !meta && bs >= 2048;  // the root's, where it fits
        std::string fids = Fid(8 | 2, "", parent) + Fid(4, "weg.txt", 0);
        while (fids.size() < bs - 48 && !inEntry) fids += Fid(4, std::string(200, 'w'), 0);
        for (const Entry& e : kTree) {
            const std::string p = e.path;
            if (p.rfind(path, 0) != 0 || p == path || p.find('/', path.size()) < p.size() - 1) continue;
            const std::uint32_t b = blocks[p] = next++;
            if (p.back() == '/') {
                Folder(p, b, block, e.mtime);
            } else if (e.size <= 64) {
                Icb(b, 5, e.size, e.mtime, e.size ? 3 : 0, std::string(e.size, 'x'));
            } else {
                Icb(b, 5, e.size, e.mtime, 1, Ad(e.size, data, 16));
                data += (e.size + bs - 1) / bs;
            }
            const std::string name = p.substr(path.size(), p.size() - path.size() - (p.back() == '/'));
            fids += Fid(p.back() == '/' ? 2 : 0, name, b);
        }
        if (inEntry) return Icb(block, 4, fids.size(), mtime, 3, fids);
        // Two extents; short, long or extended descriptors by folder, Zeta's
        // second one in a continuation.
        const std::size_t half = bs, rest = (fids.size() - half + bs - 1) / bs;  // blocks of the second
        const std::uint32_t d = next, more = d + 1 + rest;
        next += 2 + rest;
        std::memcpy(At(d), fids.data(), half), std::memcpy(At(d + 1), fids.data() + half, fids.size() - half);
        const int size = path == "alpha/" ? 20 : path == "Zeta/Unter/" ? 16 : 8;
        std::string second = Ad(fids.size() - half, d + 1, size);
        if (path == "Zeta/") {
            unsigned char* m = At(more);
            P32(m + 20, second.size()), std::memcpy(m + 24, second.data(), second.size());
            Tag(m, 258, Lbn(more), 24 + second.size() - 16);
            second = Ad(3u << 30 | bs, more, size);
        }
        Icb(block, 4, fids.size(), mtime, size == 20 ? 2 : size == 16, Ad(half, d, size) + second);
    }
};

// An 8 MiB image mkudffs makes for `media` at `revision` with blocks of `bs`
// bytes, filled with kTree.
Udf MakeUdf(const std::string& image, const char* media, const char* revision, bool metadata,
            std::uint32_t bs = 2048) {
    Udf u;
    u.bs = bs;
    if (!Shell("truncate -s 8M " + image + " && mkudffs -b " + std::to_string(bs) +
               " --label=Sicherung --media-type=" + media +
               " --udfrev=" + revision + " " + image))
        return u;
    u.img = ReadAll(image);
    std::uint32_t root = 0, lvd = 0;
    for (std::uint32_t b = 16; b < u.img.size() / bs; ++b) {
        const unsigned char* p = u.At(b);
        const unsigned tag = G16(p);
        if (tag == 6 && !lvd) lvd = b;
        if (tag == 5 && !u.pstart) u.pstart = G32(p + 188);
        if ((tag == 261 || tag == 266) && p[27] == 4 && !root) root = b, u.id = tag, u.version = G16(p + 2);
        if ((tag == 261 || tag == 266) && p[27] == 248) u.vat = b;
    }
    const std::string vatEntry = u.vat ? u.img.substr(std::uint64_t{u.vat} * bs, bs) : "";
    u.next = u.vat ? u.vat : u.img.size() / bs / 2;
    u.data = u.next + (2u << 20) / bs;
    if (metadata) {  // the file set and the folders into blocks 2048..2303, the files' data above
        u.meta = u.next, u.next = u.meta + 1;
        unsigned char* l = u.At(lvd);
        unsigned char* map = l + 446;
        map[0] = 2, map[1] = 64, std::memcpy(map + 5, "*UDF Metadata Partition", 23);
        P16(map + 36, 1), P16(map + 38, G16(l + 444)), P32(map + 40, u.meta - 2 - u.pstart), P32(map + 44, u.meta - 1 - u.pstart);
        P32(l + 264, 70), P32(l + 268, 2);
        const std::uint32_t fsd = u.pstart + G32(l + 252);
        P32(l + 252, 0), P16(l + 256, 1), u.Tag(l, 6, G32(l + 12), 440 + 70 - 16);
        std::memcpy(u.At(u.meta), u.At(fsd), 2048);
        root = u.next++;
        P32(u.At(u.meta) + 404, root - u.meta), P16(u.At(u.meta) + 408, 1);
        u.Tag(u.At(u.meta), 256, 0, G16(u.At(u.meta) + 10));
        std::string ad(16, '\0');  // the partition's blocks, not its own, and room to grow
        auto* a = reinterpret_cast<unsigned char*>(ad.data());
        P32(a, 256 * 2048), P32(a + 4, u.meta - u.pstart), P32(a + 8, 1u << 30 | 64 * 2048);
        for (std::uint32_t b : {u.meta - 2, u.meta - 1}) u.Icb(b, 250 + (b == u.meta - 1), 256 * 2048, 0, 0, ad);
        u.At(u.meta - 2)[200] ^= 1;  // the metadata file breaks; its mirror holds
    }
    u.Folder("", root, root, 0);
    const unsigned char* map = u.At(lvd) + 440;
    if (map[0] == 2 && std::memcmp(map + 5, "*UDF Sparable", 13) == 0) {  // the folders' packet moves, as if worn
        const std::uint32_t packet = G16(map + 40), lbn = u.blocks["Zeta/"] - u.pstart, first = lbn - lbn % packet;
        const std::uint32_t to = u.data + packet - u.data % packet;
        std::memcpy(u.At(to), u.At(u.pstart + first), packet * bs);
        std::memset(u.At(u.pstart + first), 0, packet * bs);
        for (unsigned t = 0; t < map[42]; ++t) {
            unsigned char* table = u.At(G32(map + 48 + 4 * t));
            P32(table + 56, first), P32(table + 60, to), u.Tag(table, 0, G32(table + 12), G16(table + 10));
        }
    }
    if (u.vat) {
        const std::uint32_t last = std::max(u.next, u.data);
        std::memcpy(u.At(last), vatEntry.data(), bs);
        u.Tag(u.At(last), u.id, last - u.pstart, G16(u.At(last) + 10));
        u.img.resize((last + 1ull) * bs);
    }
    std::ofstream(image, std::ios::binary | std::ios::trunc) << u.img;
    return u;
}

std::string UdfInfo(const std::string& image, const std::string& key) {
    FILE* info = popen(("udfinfo " + image + " 2>/dev/null").c_str(), "r");
    char line[256];
    std::string value;
    while (info && std::fgets(line, sizeof line, info))
        if (std::string(line).rfind(key + "=", 0) == 0) value.assign(line + key.size() + 1, std::strcspn(line + key.size() + 1, "\n"));
    if (info) pclose(info);
    return value;
}

// The image added as `label` to a data folder of its own in `s`.
AddOutcome AddImage(const Scratch& s, const std::string& image, const char* label) {
    std::filesystem::create_directories(s / "Daten");
    AddRequest request;
    request.root = image;
    request.label = label;
    request.dataFolder = s / "Daten";
    return AddDisc(request, DiscSourceWithImages(), SystemFileOps());
}

TEST(WalkImage, UdfOfEveryRevision) {
    if (!Have("mkudffs") || !Have("udfinfo")) GTEST_SKIP() << "udftools is missing";
    const struct {
        const char* name;
        const char* media;
        const char* revision;
        bool metadata;
        std::uint32_t bs;  // the logical block: a disc's sector, or a hard disk's
    } rows[] = {
        {"Udf102", "hd", "1.02", false, 2048},          {"Udf150Sparable", "dvdrw", "1.50", false, 2048},
        {"Udf201Extended", "hd", "2.01", false, 2048},  {"Udf250Vat", "bdr", "2.50", false, 2048},
        {"Udf260Vat", "dvdr", "2.60", false, 2048},     {"MetadataPartitionMirror", "hd", "2.01", true, 2048},
        {"Blocks512", "hd", "1.02", false, 512},        {"Blocks1024", "hd", "2.01", false, 1024},
        {"Blocks4096", "hd", "2.01", false, 4096},      {"Blocks8192", "hd", "2.00", false, 8192},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Scratch s;
        const std::string image = s / "disc.udf";
        ASSERT_FALSE(MakeUdf(image, row.media, row.revision, row.metadata, row.bs).img.empty());
        ASSERT_TRUE(IsDiscImage(image));
        bool ok = false;
        EXPECT_EQ(ImageLines(image, ok), ExpectedLines());
        EXPECT_TRUE(ok);
        // The tool's own reading of the volume: label, the serial Windows shows, its blocks.
        ExpectHeader(image, UdfInfo(image, "label"), "UDF",
                     static_cast<std::uint32_t>(std::stoul(UdfInfo(image, "winserialnum"), nullptr, 16)),
                     static_cast<std::uint32_t>(std::stoul(UdfInfo(image, "blocks"))),
                     static_cast<std::int32_t>(std::stoul(UdfInfo(image, "blocksize"))));
        // The catalogue it adds is the one the image checks against.
        ASSERT_EQ(AddImage(s, image, "Platte").result, AddResult::Added);
        WalkList folders, files;
        ASSERT_TRUE(WalkImage(image, folders, files));
        const VerifyReport report = VerifyDisc(s / "Daten/Platte.idx", image, folders, files);
        EXPECT_TRUE(report.opened);
        EXPECT_TRUE(report.findings.empty());
    }
}

// A damaged image is a failure that adds nothing, never a crash, a hang or a
// catalogue that looks whole.
TEST(AddImage, DamagedUdfAddsNothing) {
    if (!Have("mkudffs")) GTEST_SKIP() << "mkudffs is missing";
    const struct {
        const char* name;
        void (*damage)(Udf&);
    } rows[] = {
        {"Intact", [](Udf&) {}},
        {"CutShort", [](Udf& u) { u.img.resize(u.img.size() / 2 + 8 * u.bs); }},
        {"BadTag", [](Udf& u) { u.At(u.blocks["Zeta/Unter/"])[60] ^= 1; }},
        {"Loop", [](Udf& u) { std::memcpy(u.At(u.blocks["Zeta/Unter/"]), u.At(u.blocks["Zeta/"]), u.bs); }},
        {"DescriptorsBeyondBlock", [](Udf& u) {
             unsigned char* p = u.At(u.blocks["Zeta/"]);
             P32(p + 212, 4000), u.Tag(p, 266, G32(p + 12), 216 + 8 - 16);
         }},
        {"FolderBeyondItsData", [](Udf& u) {
             unsigned char* p = u.At(u.blocks["alpha/"]);
             P32(p + 56, 100000), u.Tag(p, 266, G32(p + 12), 216 + 8 - 16);
         }},
    };
    for (const std::uint32_t bs : {2048u, 512u, 4096u})  // the checks hold at every block size
        for (const auto& row : rows) {
            SCOPED_TRACE(std::string(row.name) + " in blocks of " + std::to_string(bs));
            Scratch s;
            const std::string image = s / "bd.udf";
            Udf u = MakeUdf(image, "hd", "2.01", false, bs);
            row.damage(u);
            std::ofstream(image, std::ios::binary | std::ios::trunc) << u.img;
            const AddOutcome out = AddImage(s, image, "BD");
            const bool intact = row.name == std::string("Intact");
            EXPECT_EQ(out.result, intact ? AddResult::Added : AddResult::WriteFailed);
            EXPECT_EQ(out.failure.code, intact ? FailCode::None : FailCode::Unreadable);
            EXPECT_EQ(std::filesystem::is_empty(s / "Daten"), !intact);
        }
}

}  // namespace
}  // namespace ct
