// The drive list: what a user would put in a drive on Windows is, on Linux, a
// mounted volume. Discs come first, then what the desktop mounted for the user,
// then the machine's own file systems; the kernel's bookkeeping never shows.
#include "platform/drives.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <utility>

#include "platform/probe.h"

namespace ct {
namespace {

bool IsPseudo(std::string_view type) {
    static const std::set<std::string_view> kPseudo = {
        "proc",       "sysfs",       "tmpfs",       "devtmpfs",     "cgroup",       "cgroup2",
        "overlay",    "squashfs",    "devpts",      "mqueue",       "debugfs",      "tracefs",
        "securityfs", "pstore",      "bpf",         "autofs",       "configfs",     "fusectl",
        "hugetlbfs",  "ramfs",       "binfmt_misc", "nsfs",         "efivarfs",     "rpc_pipefs",
        "selinuxfs",  "fuse.portal", "fuse.gvfsd-fuse", "fuse.lxcfs", "fuse.snapfuse", "nfsd",
        "none",       "aufs"};
    return kPseudo.count(type) > 0 || type.rfind("cgroup", 0) == 0;
}

bool IsReal(const MountEntry& m) {
    static const std::set<std::string_view> kReal = {
        "iso9660", "udf",   "ext2",  "ext3",     "ext4",  "btrfs",   "xfs",     "vfat",
        "msdos",   "exfat", "ntfs",  "ntfs3",    "fuseblk", "nfs",   "nfs4",    "cifs",
        "smb3",    "smbfs", "zfs",   "f2fs",     "reiserfs", "jfs",  "hfsplus", "hfs",
        "apfs",    "bcachefs", "nilfs2", "minix", "ufs"};
    if (IsPseudo(m.fsType)) return false;
    if (kReal.count(m.fsType)) return true;
    if (m.fsType.rfind("fuse.", 0) == 0) return true;  // sshfs, rclone and the like
    return m.source.rfind("/dev/", 0) == 0;
}

bool IsOpticalMount(const MountEntry& m) {
    return m.fsType == "iso9660" || m.fsType == "udf" || m.source.rfind("/dev/sr", 0) == 0;
}

bool Below(const std::string& path, std::string_view base) {
    return path.size() > base.size() && path.compare(0, base.size(), base) == 0 && path[base.size()] == '/';
}

int Group(const MountEntry& m) {
    if (IsOpticalMount(m)) return 0;
    if (Below(m.mountPoint, "/media") || Below(m.mountPoint, "/run/media") || Below(m.mountPoint, "/mnt"))
        return 1;
    return 2;
}

}  // namespace

std::vector<Drive> DrivesOf(const std::vector<MountEntry>& mounts,
                            const std::function<std::string(const std::string&)>& labelOf) {
    // A mount point mounted twice shows the later mount; a volume mounted in
    // two places shows once, where it was mounted first.
    std::vector<MountEntry> kept;
    for (const auto& m : mounts) {
        if (!IsReal(m)) continue;
        // Bind mounts of a folder inside a volume; btrfs mounts its subvolumes so too.
        if (m.root != "/" && m.fsType != "btrfs") continue;
        auto same = std::find_if(kept.begin(), kept.end(),
                                 [&](const MountEntry& k) { return k.mountPoint == m.mountPoint; });
        if (same != kept.end()) {
            *same = m;
            continue;
        }
        const bool twice = std::any_of(kept.begin(), kept.end(), [&](const MountEntry& k) {
            return k.major == m.major && k.minor == m.minor && k.root == m.root && k.fsType == m.fsType &&
                   k.source == m.source;
        });
        if (!twice) kept.push_back(m);
    }
    std::stable_sort(kept.begin(), kept.end(),
                     [](const MountEntry& a, const MountEntry& b) { return Group(a) < Group(b); });
    std::vector<Drive> drives;
    for (const auto& m : kept) {
        Drive d;
        d.mountPoint = m.mountPoint;
        d.volumeName = labelOf ? labelOf(m.mountPoint) : std::string();
        d.display = d.volumeName.empty() ? d.mountPoint : d.mountPoint + " [" + d.volumeName + "]";
        d.optical = IsOpticalMount(m);
        drives.push_back(std::move(d));
    }
    return drives;
}

std::vector<Drive> ListDrives() {
    // Only the name half of the volume query: a file system statistic of a
    // network share whose server is gone could hang the list.
    const std::vector<MountEntry> mounts = ReadMountInfo();
    return DrivesOf(mounts, [&](const std::string& mountPoint) {
        const MountEntry* top = nullptr;
        for (const auto& m : mounts)
            if (m.mountPoint == mountPoint) top = &m;
        if (!top) return std::string();
        VolumeInfo volume;
        ReadVolumeName(mountPoint, *top, nullptr, volume, VolumeNameSources{});
        return volume.VolumeName;
    });
}

}  // namespace ct
