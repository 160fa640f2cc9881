// Label and serial read from volume images made here at run time; nothing is
// mounted, so no root is needed.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <unistd.h>
#include <string>
#include <vector>

#include "platform/volume.h"
#include "support/discsums.h"
#include "support/scratch.h"

namespace ct {
namespace {

using test::DescriptorSums;
using test::ReadAll;
using test::Scratch;

bool HaveTool(const std::string& name) {
    return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

std::string Quote(const std::string& text) {
    std::string out = "'";
    for (const char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

bool RunQuiet(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

std::string MakeIso(const Scratch& s, const std::string& name, const std::string& label, bool joliet) {
    const std::string tree = s.Folder("tree");
    s.File("tree/a.txt", "content");
    const std::string image = s / name;
    const bool ok = RunQuiet("xorriso -as mkisofs " + std::string(joliet ? "-J " : "") + "-V " + Quote(label) +
                        " -o " + Quote(image) + " " + Quote(tree));
    return ok ? image : std::string();
}

TEST(ProbeVolumeFile, JolietLabelAndSerialFromTheJolietDescriptor) {
    if (!HaveTool("xorriso")) GTEST_SKIP() << "xorriso is missing";
    for (const std::string name : {"Urlaub 2003", "B\xC3\xBC" "cher", "A", "SIXTEEN_CHARS_AB"}) {
        Scratch s;
        const std::string image = MakeIso(s, "disc.iso", name, true);
        ASSERT_FALSE(image.empty()) << name;
        const std::string bytes = ReadAll(image);
        // xorriso writes the primary descriptor at 16 and the Joliet one at 17.
        ASSERT_EQ(bytes[17 * 2048], 2) << name;
        ASSERT_EQ(bytes.substr(17 * 2048 + 88, 3), "%/E") << name;

        VolumeLabel label;
        ASSERT_TRUE(ProbeVolumeFile(image, label)) << name;
        EXPECT_EQ(label.name, name);
        EXPECT_EQ(label.fileSystem, "CDFS");
        EXPECT_EQ(label.serial, DescriptorSums(bytes, 17)) << name;
        EXPECT_NE(label.serial, DescriptorSums(bytes, 16)) << name;
    }
}

// A FAT boot sector made with a fixed serial and label.
std::string MakeFat(const Scratch& s, const std::string& name, const std::string& options, int kib) {
    const std::string image = s / name;
    const bool ok = RunQuiet("mkfs.vfat -C " + options + " " + Quote(image) + " " + std::to_string(kib));
    return ok ? image : std::string();
}

TEST(ProbeVolumeFile, FatSerialAndLabel) {
    if (!HaveTool("mkfs.vfat")) GTEST_SKIP() << "mkfs.vfat is missing";
    const struct {
        const char* options;
        int kib;
        std::uint32_t serial;
        const char* name;
        const char* fileSystem;
    } rows[] = {
        {"-i 1234ABCD -n FOTOS", 8192, 0x1234ABCD, "FOTOS", "FAT"},
        {"-F 12 -i 0000BEEF -n 'A B'", 1440, 0x0000BEEF, "A B", "FAT"},
        {"-F 32 -i 89ABCDEF -n 'DATEN 1'", 34000, 0x89ABCDEF, "DATEN 1", "FAT32"},
        {"-F 32 -i 00000001", 34000, 0x00000001, "", "FAT32"},  // "NO NAME" is no name
        {"-i 7FFFFFFF", 4096, 0x7FFFFFFF, "", "FAT"},
    };
    for (const auto& row : rows) {
        Scratch s;
        const std::string image = MakeFat(s, "fat.img", row.options, row.kib);
        ASSERT_FALSE(image.empty()) << row.options;
        VolumeLabel label;
        ASSERT_TRUE(ProbeVolumeFile(image, label)) << row.options;
        EXPECT_EQ(label.serial, row.serial) << row.options;
        EXPECT_EQ(label.name, row.name) << row.options;
        EXPECT_EQ(label.fileSystem, row.fileSystem) << row.options;
    }
}

TEST(ProbeVolumeFile, DamagedOrForeignBytesAreNoVolume) {
    Scratch s;
    std::string noise(64 * 1024, '\0');
    for (std::size_t i = 0; i < noise.size(); ++i) noise[i] = static_cast<char>((i * 7919 + 13) % 251);
    std::string badFat(512, '\0');
    badFat.replace(0, 3, "\xEB\x3C\x90", 3);
    badFat[11] = 0x00;  // 0 bytes per sector
    badFat[12] = 0x00;
    badFat[13] = 4;
    const struct {
        const char* name;
        std::string bytes;
    } rows[] = {
        {"empty", ""},
        {"short", "\xEB\x3C\x90MSDOS5.0"},
        {"noise", noise},
        {"bad FAT geometry", badFat},
        {"descriptor header cut off", std::string(16 * 2048, '\0') + "\x01" "CD0"},
    };
    for (const auto& row : rows) {
        s.Write("img", row.bytes);
        VolumeLabel label;
        label.name = "untouched";
        EXPECT_FALSE(ProbeVolumeFile(s / "img", label)) << row.name;
        EXPECT_EQ(label.name, "untouched") << row.name;
    }
    VolumeLabel label;
    EXPECT_FALSE(ProbeVolumeFile(s / "missing", label));
}

}  // namespace
}  // namespace ct
