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
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <string>
#include <vector>

#include "core/adddisc.h"
#include "core/catalogue.h"
#include "core/fileops.h"
#include "core/textrules.h"
#include "platform/image.h"
#include "platform/volume.h"
#include "support/scratch.h"

namespace ct {
namespace {

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

TEST(ReadImageVolumeInfo, HeaderFromTheDescriptors) {
    if (!Have("xorriso") || !Have("mkudffs")) GTEST_SKIP() << "xorriso or mkudffs is missing";
    Scratch s;
    s.Write("tree/a.txt", "content");
    const std::string iso = s / "disc.iso", udf = s / "disc.udf";
    ASSERT_TRUE(Shell("xorriso -as mkisofs -J -V 'Urlaub 2003' -o " + iso + " " + (s / "tree")));
    ASSERT_TRUE(Shell("truncate -s 4M " + udf + " && mkudffs -b 2048 --media-type=hd --label=Leer " + udf));

    std::uint32_t isoBlocks = 0;  // the descriptor's block count, little-endian half (as is this machine)
    std::memcpy(&isoBlocks, ReadAll(iso).data() + 16 * 2048 + 80, 4);
    // mkudffs says the serial Windows shows ("winserialnum=0x..."): a check
    // from outside the project's own probe.
    FILE* info = popen(("udfinfo " + udf + " 2>/dev/null").c_str(), "r");
    ASSERT_NE(info, nullptr);
    char line[256];
    std::uint32_t udfSerial = 0;
    while (std::fgets(line, sizeof line, info))
        if (std::string(line).rfind("winserialnum=", 0) == 0) udfSerial = std::strtoul(line + 13, nullptr, 16);
    pclose(info);
    VolumeLabel isoProbe;
    ASSERT_TRUE(ProbeVolumeFile(iso, isoProbe));

    const struct {
        const char* name;
        std::string image, label, fileSystem;
        std::uint32_t serial, blocks;
    } rows[] = {
        {"Iso", iso, "Urlaub 2003", "CDFS", isoProbe.serial, isoBlocks},
        {"Udf", udf, "Leer", "UDF", udfSerial, 4u * 1024 * 1024 / 2048},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        VolumeInfo v;
        ReadImageVolumeInfo(row.image, v);
        EXPECT_EQ(v.VolumeName, row.label);
        EXPECT_EQ(v.FileSystem, row.fileSystem);
        EXPECT_EQ(static_cast<std::uint32_t>(v.SerialNumber), row.serial);
        EXPECT_NE(row.serial, 0u);
        EXPECT_EQ(v.ClusterCount, static_cast<std::int32_t>(row.blocks));
        EXPECT_EQ(v.SectorsPerCluster, 1);
        EXPECT_EQ(v.BytesPerSector, 2048);
        EXPECT_EQ(v.Size.raw, static_cast<std::int64_t>(row.blocks) * 2048 * Fixed::kScale);
    }
    // Anything else is no image, and its figures stay as the caller set them.
    VolumeInfo none;
    ReadImageVolumeInfo(s / "tree/a.txt", none);
    EXPECT_EQ(none.FileSystem, "");
    EXPECT_FALSE(IsDiscImage(s / "tree/a.txt"));
    EXPECT_FALSE(IsDiscImage(s / "tree"));
    // libudf reads no extended file entries: such an image is refused, not
    // catalogued as empty.
    EXPECT_TRUE(ImageReadable(iso));
    EXPECT_FALSE(ImageReadable(udf));
}

// A UDF image libudf can't read (extended file entries), with no ISO side, must not become an
// empty catalogue under the label.
TEST(AddImage, UnreadableImageAddsNothing) {
    if (!Have("mkudffs")) GTEST_SKIP() << "mkudffs is missing";
    Scratch s;
    const std::string udf = s / "bd.udf";
    ASSERT_TRUE(Shell("truncate -s 4M " + udf + " && mkudffs -b 2048 --media-type=hd " + udf));
    std::filesystem::create_directories(s / "Daten");
    AddRequest request;
    request.root = udf;
    request.label = "BD";
    request.dataFolder = s / "Daten";
    const AddOutcome out = AddDisc(request, DiscSourceWithImages(), SystemFileOps());
    EXPECT_EQ(out.result, AddResult::WriteFailed);
    EXPECT_EQ(out.failure.code, FailCode::Unreadable);
    EXPECT_TRUE(std::filesystem::is_empty(s / "Daten"));
}

}  // namespace
}  // namespace ct
