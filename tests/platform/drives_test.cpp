#include "platform/drives.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace ct {
namespace {

MountEntry Mount(std::string mountPoint, std::string type, std::string source, unsigned major, unsigned minor,
                 std::string root = "/") {
    MountEntry m;
    m.mountPoint = std::move(mountPoint);
    m.fsType = std::move(type);
    m.source = std::move(source);
    m.major = major;
    m.minor = minor;
    m.root = std::move(root);
    return m;
}

std::vector<std::string> Displays(const std::vector<Drive>& drives) {
    std::vector<std::string> out;
    for (const auto& d : drives) out.push_back(d.display);
    return out;
}

TEST(DrivesOf, DiscsFirstThenRemovableThenTheRestNeverPseudo) {
    const std::vector<MountEntry> mounts = {
        Mount("/", "ext4", "/dev/nvme0n1p2", 259, 2),
        Mount("/proc", "proc", "proc", 0, 20),
        Mount("/run", "tmpfs", "tmpfs", 0, 24),
        Mount("/snap/core/1", "squashfs", "/dev/loop3", 7, 3),
        Mount("/boot/efi", "vfat", "/dev/nvme0n1p1", 259, 1),
        Mount("/home", "btrfs", "/dev/sda1", 8, 1, "/@home"),
        Mount("/media/anna/FOTOS", "vfat", "/dev/sdb1", 8, 17),
        Mount("/run/user/1000/gvfs", "fuse.gvfsd-fuse", "gvfsd-fuse", 0, 50),
        Mount("/srv/export", "ext4", "/dev/nvme0n1p2", 259, 2, "/srv/data"),  // bind of a sub-folder
        Mount("/media/cdrom0", "iso9660", "/dev/sr0", 11, 0),
        Mount("/mnt/nas", "nfs4", "nas:/volume1", 0, 60),
        Mount("/run/media/anna/Urlaub 2003", "udf", "/dev/sr1", 11, 1),
        Mount("/var/lib/docker/overlay2/x/merged", "overlay", "overlay", 0, 70),
        Mount("/data", "xfs", "/dev/sdc1", 8, 33),
        Mount("/mnt/fat-again", "vfat", "/dev/sdb1", 8, 17),  // the stick once more
        Mount("/mnt/win", "fuseblk", "/dev/sdd1", 8, 49),
        Mount("/mnt/ssh", "fuse.sshfs", "anna@host:", 0, 80),
    };
    const std::map<std::string, std::string> labels = {
        {"/media/anna/FOTOS", "FOTOS"}, {"/media/cdrom0", "BACKUP_01"}, {"/run/media/anna/Urlaub 2003", "Urlaub 2003"}};
    const auto drives = DrivesOf(mounts, [&](const std::string& mp) {
        const auto it = labels.find(mp);
        return it == labels.end() ? std::string() : it->second;
    });
    EXPECT_EQ(Displays(drives), (std::vector<std::string>{
                                    "/media/cdrom0 [BACKUP_01]",
                                    "/run/media/anna/Urlaub 2003 [Urlaub 2003]",
                                    "/media/anna/FOTOS [FOTOS]",
                                    "/mnt/nas",
                                    "/mnt/win",
                                    "/mnt/ssh",
                                    "/",
                                    "/boot/efi",
                                    "/home",
                                    "/data",
                                }));
    ASSERT_EQ(drives.size(), 10u);
    EXPECT_TRUE(drives[0].optical);
    EXPECT_TRUE(drives[1].optical);
    EXPECT_FALSE(drives[2].optical);
    EXPECT_EQ(drives[0].mountPoint, "/media/cdrom0");
    EXPECT_EQ(drives[0].volumeName, "BACKUP_01");
    EXPECT_EQ(drives[3].volumeName, "");
}

}  // namespace
}  // namespace ct
