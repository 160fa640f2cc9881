// ReadVolumeInfo: the figures of the volume a folder lies on, as Windows would
// report them. Two independent halves: name, serial and file system; and the
// geometry. A half that fails leaves its fields as the caller set them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/records.h"

namespace ct {

void ReadVolumeInfo(const std::string& root, VolumeInfo& volume);

// The capacity from the geometry: clusters times sectors per cluster as a
// 32-bit signed product (wrapping as the 32-bit original did), times bytes per
// sector without limit.
Fixed VolumeSize(std::int32_t clusterCount, std::int32_t sectorsPerCluster, std::int32_t bytesPerSector);

// One line of /proc/self/mountinfo, the parts we use.
struct MountEntry {
    std::string mountPoint;  // unescaped (\040 -> blank)
    std::string fsType;      // "iso9660", "vfat", "ext4", "fuseblk" ...
    std::string source;      // "/dev/sr0", "server:/share" ...
    std::string root;        // the mount's root within its file system
    unsigned major = 0, minor = 0;
};
std::vector<MountEntry> ParseMountInfo(std::string_view text);
std::vector<MountEntry> ReadMountInfo();  // /proc/self/mountinfo
// The mount that holds `path` (longest mount point that is a prefix by whole
// components). False when none.
bool MountOf(const std::vector<MountEntry>& mounts, const std::string& path, MountEntry& mount);

// Label and serial as Windows computes them, read from the start of a volume
// (a device or an image file). False when the bytes are no such volume.
struct VolumeLabel {
    std::string name;            // UTF-8
    std::uint32_t serial = 0;
    std::string fileSystem;      // "CDFS", "UDF", "FAT", "FAT32", "exFAT", "NTFS"
    // The UDF volume's logical block size when the bytes of a plain image
    // (session 0) carry one, whichever file system gave the label; else 0.
    std::uint32_t udfBlockSize = 0;
};
// `sessionStartSector`: first sector of the last session (0 for a plain image).
bool ProbeVolumeFile(const std::string& deviceOrImage, VolumeLabel& out,
                     std::uint64_t sessionStartSector = 0);

// The file system name as Windows says it for a Linux type.
std::string WindowsFileSystemName(std::string_view linuxType, bool fat32);

}  // namespace ct
