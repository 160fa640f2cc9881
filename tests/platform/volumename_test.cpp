// The name half of the volume query, with device images and udev's notes put
// in folders of the test's own.
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "platform/probe.h"
#include "support/scratch.h"

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
        ReadVolumeName(scratch.Path(), mount, clusters ? &clusters : nullptr, v, sources);
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
    const std::string iso = test::ReadAll(scratch / "s.iso");
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
}  // namespace
}  // namespace ct
