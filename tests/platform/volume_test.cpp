#include "platform/volume.h"

#include <gtest/gtest.h>
#include <sys/statvfs.h>

#include <string>
#include <vector>

#include "support/scratch.h"

namespace ct {
namespace {

TEST(ParseMountInfo, FieldsEscapesAndOptionalTags) {
    const std::string text =
        "26 1 254:0 / / rw,relatime shared:1 - ext4 /dev/vda rw,discard\n"
        "90 26 11:0 / /media/anna/Urlaub\\0402003 ro,nosuid shared:77 master:3 - iso9660 /dev/sr0 ro,uid=1000\n"
        "91 26 8:17 / /mnt/back\\134slash\\011tab rw - vfat /dev/sdb1 rw\n"
        "92 26 0:52 /home/anna/share /srv/bind rw - ext4 /dev/vda rw\n"
        "93 26 0:53 / /net rw - nfs4 server:/export\\040all rw,vers=4.2";  // no final newline
    const auto m = ParseMountInfo(text);
    ASSERT_EQ(m.size(), 5u);
    EXPECT_EQ(m[0].mountPoint, "/");
    EXPECT_EQ(m[0].fsType, "ext4");
    EXPECT_EQ(m[0].source, "/dev/vda");
    EXPECT_EQ(m[0].root, "/");
    EXPECT_EQ(m[0].major, 254u);
    EXPECT_EQ(m[0].minor, 0u);
    EXPECT_EQ(m[1].mountPoint, "/media/anna/Urlaub 2003");
    EXPECT_EQ(m[1].fsType, "iso9660");
    EXPECT_EQ(m[1].source, "/dev/sr0");
    EXPECT_EQ(m[1].major, 11u);
    EXPECT_EQ(m[2].mountPoint, "/mnt/back\\slash\ttab");
    EXPECT_EQ(m[2].minor, 17u);
    EXPECT_EQ(m[3].root, "/home/anna/share");
    EXPECT_EQ(m[4].source, "server:/export all");
}

std::vector<MountEntry> SampleMounts() {
    auto at = [](std::string mp, std::string type) {
        MountEntry m;
        m.mountPoint = std::move(mp);
        m.fsType = std::move(type);
        m.root = "/";
        return m;
    };
    return {at("/", "ext4"), at("/media/cd", "iso9660"), at("/home", "btrfs"), at("/media/cdrom", "udf"),
            at("/home/anna/mnt", "vfat"), at("/media/cd", "tmpfs")};
}

TEST(MountOf, LongestMountByWholeComponents) {
    const auto mounts = SampleMounts();
    const struct {
        const char* path;
        const char* mountPoint;
        const char* type;
    } rows[] = {
        {"/", "/", "ext4"},
        {"/etc/passwd", "/", "ext4"},
        {"/media", "/", "ext4"},
        {"/media/cdrom", "/media/cdrom", "udf"},
        {"/media/cdrom/x", "/media/cdrom", "udf"},
        {"/media/cdr", "/", "ext4"},              // not "/media/cd" by half a name
        {"/media/cd/", "/media/cd", "tmpfs"},     // a trailing slash; the later mount lies on top
        {"/home/anna/mnt/DCIM", "/home/anna/mnt", "vfat"},
        {"/home/anna/mntx", "/home", "btrfs"},
    };
    for (const auto& row : rows) {
        MountEntry m;
        ASSERT_TRUE(MountOf(mounts, row.path, m)) << row.path;
        EXPECT_EQ(m.mountPoint, row.mountPoint) << row.path;
        EXPECT_EQ(m.fsType, row.type) << row.path;
    }
    MountEntry m;
    EXPECT_FALSE(MountOf({}, "/x", m));
    EXPECT_FALSE(MountOf(mounts, "relative/path", m));
}

TEST(ReadVolumeInfo, FolderOnThisMachineGivesItsVolumesFigures) {
    test::Scratch s;
    const std::string sub = s.Folder("sub");
    VolumeInfo v;
    ReadVolumeInfo(sub, v);
    MountEntry mount;
    char* real = realpath(sub.c_str(), nullptr);
    ASSERT_NE(real, nullptr);
    ASSERT_TRUE(MountOf(ReadMountInfo(), real, mount));
    std::free(real);
    EXPECT_EQ(v.FileSystem, WindowsFileSystemName(mount.fsType, v.FileSystem == "FAT32"));
    EXPECT_GE(v.BytesPerSector, 512);
    EXPECT_GE(v.SectorsPerCluster, 1);
    EXPECT_GT(v.ClusterCount, 0);
    EXPECT_EQ(v.Size, VolumeSize(v.ClusterCount, v.SectorsPerCluster, v.BytesPerSector));
    struct statvfs vfs{};
    ASSERT_EQ(statvfs(sub.c_str(), &vfs), 0);
    if (vfs.f_blocks <= 0x7FFFFFFF) {
        EXPECT_EQ(static_cast<std::uint64_t>(v.ClusterCount) * v.SectorsPerCluster * v.BytesPerSector,
                  static_cast<std::uint64_t>(vfs.f_blocks) * vfs.f_frsize);
    }
}

}  // namespace
}  // namespace ct
