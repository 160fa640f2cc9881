// The name half of the volume query, with device images and udev's notes put
// in folders of the test's own.
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "platform/probe.h"
#include "scratch.h"

namespace ct {
namespace {

using test::Scratch;

class VolumeName : public ::testing::Test {
protected:
    VolumeName() {
        sources.devBlock = scratch.Folder("dev-block");
        sources.udevData = scratch.Folder("udev");
    }
    void Udev(unsigned major, unsigned minor, const std::string& lines) {
        std::ofstream(sources.udevData + "/b" + std::to_string(major) + ":" + std::to_string(minor)) << lines;
    }
    std::string Device(unsigned major, unsigned minor) {
        return sources.devBlock + "/" + std::to_string(major) + ":" + std::to_string(minor);
    }
    static MountEntry Mount(const std::string& type, unsigned major, unsigned minor,
                            const std::string& mountPoint = "/media/disc") {
        MountEntry m;
        m.fsType = type;
        m.major = major;
        m.minor = minor;
        m.mountPoint = mountPoint;
        m.root = "/";
        m.source = "not-a-device";
        return m;
    }
    VolumeInfo Read(const MountEntry& mount, std::uint64_t clusters = 0) {
        VolumeInfo v;
        ReadVolumeName(scratch.path(), mount, clusters ? &clusters : nullptr, v, sources);
        return v;
    }
    bool Make(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

    Scratch scratch;
    VolumeNameSources sources;
};

TEST_F(VolumeName, CdReadFromTheLastSessionUdevNamed) {
    if (std::system("command -v xorriso >/dev/null 2>&1") != 0) GTEST_SKIP() << "xorriso is missing";
    scratch.Folder("tree");
    ASSERT_TRUE(Make("xorriso -as mkisofs -J -V Zweite -o " + scratch / "s.iso" + " " + scratch / "tree"));
    const std::string iso = test::ReadFile(scratch / "s.iso");
    std::ofstream(Device(11, 0), std::ios::binary) << std::string(100 * 2048, '\0') << iso;
    Udev(11, 0, "S:cdrom\nE:ID_CDROM_MEDIA_SESSION_LAST_OFFSET=204800\nE:ID_FS_LABEL=Falsch\n");
    const VolumeInfo v = Read(Mount("iso9660", 11, 0));
    EXPECT_EQ(v.VolumeName, "Zweite");
    EXPECT_EQ(v.FileSystem, "CDFS");
    EXPECT_NE(v.SerialNumber, 0);
}

TEST_F(VolumeName, FatStickReadFromTheDevice) {
    if (std::system("command -v mkfs.vfat >/dev/null 2>&1") != 0) GTEST_SKIP() << "mkfs.vfat is missing";
    ASSERT_TRUE(Make("mkfs.vfat -F 32 -i CAFEF00D -n FOTOS -C " + Device(8, 17) + " 34000"));
    const VolumeInfo v = Read(Mount("vfat", 8, 17));
    EXPECT_EQ(v.VolumeName, "FOTOS");
    EXPECT_EQ(v.FileSystem, "FAT32");
    EXPECT_EQ(static_cast<std::uint32_t>(v.SerialNumber), 0xCAFEF00Du);  // top bit set: negative
    EXPECT_LT(v.SerialNumber, 0);
}

// Where the device can't be read, udev's notes stand in.
TEST_F(VolumeName, UnreadableDeviceTakesUdevsNotes) {
    const struct {
        const char* name;
        const char* type;
        const char* udev;
        std::uint64_t clusters;
        const char* volumeName;
        std::uint32_t serial;
        const char* fileSystem;
    } rows[] = {
        {"FAT", "vfat", "E:ID_FS_LABEL=Urlaub_2003\nE:ID_FS_LABEL_ENC=Urlaub\\x202003\nE:ID_FS_UUID=ABCD-1234\n"
                        "E:ID_FS_VERSION=FAT32\n", 0, "Urlaub 2003", 0xABCD1234, "FAT32"},
        {"FAT16 by udev", "vfat", "E:ID_FS_UUID=0000-0001\nE:ID_FS_VERSION=FAT16\n", 100000, "", 1, "FAT"},
        {"FAT32 by cluster count", "vfat", "", 65525, "", 0, "FAT32"},
        {"small FAT by cluster count", "vfat", "", 65524, "", 0, "FAT"},
        {"exFAT", "exfat", "E:ID_FS_LABEL=X\nE:ID_FS_UUID=1A2B-3C4D\n", 0, "X", 0x1A2B3C4D, "exFAT"},
        {"NTFS", "ntfs3", "E:ID_FS_UUID=0123456789ABCDEF\n", 0, "", 0x89ABCDEF, "NTFS"},
        {"ntfs-3g", "fuseblk", "E:ID_FS_TYPE=ntfs\nE:ID_FS_UUID=00000000DEADBEEF\n", 0, "", 0xDEADBEEF, "NTFS"},
        {"CD: its UUID is a date", "iso9660", "E:ID_FS_LABEL=DISC\nE:ID_FS_UUID=2003-05-04-12-00-00-00\n", 0,
         "DISC", 0, "CDFS"},
        {"ext4: its UUID is no serial", "ext4", "E:ID_FS_LABEL=home\nE:ID_FS_UUID=0123-4567\n", 0, "home", 0,
         "ext4"},
        {"bad UUID", "vfat", "E:ID_FS_UUID=ABCD-12G4\n", 0, "", 0, "FAT"},
        {"no notes", "xfs", "", 0, "", 0, "xfs"},
    };
    unsigned minor = 0;
    for (const auto& row : rows) {
        ++minor;
        Udev(8, minor, row.udev);
        const VolumeInfo v = Read(Mount(row.type, 8, minor), row.clusters);
        EXPECT_EQ(v.VolumeName, row.volumeName) << row.name;
        EXPECT_EQ(static_cast<std::uint32_t>(v.SerialNumber), row.serial) << row.name;
        EXPECT_EQ(v.FileSystem, row.fileSystem) << row.name;
    }
}

TEST_F(VolumeName, DesktopMountPointNamesTheVolume) {
    const passwd* pw = getpwuid(geteuid());
    ASSERT_NE(pw, nullptr);
    const std::string user = pw->pw_name;
    const struct {
        std::string mountPoint;
        const char* volumeName;
    } rows[] = {
        {"/media/" + user + "/Urlaub 2003", "Urlaub 2003"},
        {"/run/media/" + user + "/STICK", "STICK"},
        {"/media/someone-else-" + user + "/STICK", ""},
        {"/mnt/STICK", ""},
        {"/media/" + user + "/a/b", ""},
    };
    for (const auto& row : rows) {
        const VolumeInfo v = Read(Mount("vfat", 9, 9, row.mountPoint));
        EXPECT_EQ(v.VolumeName, row.volumeName) << row.mountPoint;
    }
}

}  // namespace
}  // namespace ct
