// The probing of volume bytes behind ProbeVolumeFile, on an open descriptor and
// with a choice of which kinds to try first: a disc that carries both UDF and
// ISO 9660 shows the label of the one it is mounted as.
#pragma once

#include <cstdint>
#include <string>

#include "platform/volume.h"

namespace ct {

enum class ProbeOrder { BootSectorFirst, IsoFirst, UdfFirst };

bool ProbeVolume(int fd, VolumeLabel& out, std::uint64_t sessionStartSector, ProbeOrder order);

// Where the name half of ReadVolumeInfo looks: the devices by number, and
// udev's notes on them. Tests put image files and notes in folders of their own.
struct VolumeNameSources {
    std::string devBlock = "/dev/block";      // <major>:<minor>
    std::string udevData = "/run/udev/data";  // b<major>:<minor>
};

// The name half of ReadVolumeInfo for the folder `path` on `mount`: volume
// name, serial and file system. `clusters` is statvfs's block count where
// known (a last hint whether FAT is FAT32).
void ReadVolumeName(const std::string& path, const MountEntry& mount, const std::uint64_t* clusters,
                    VolumeInfo& volume, const VolumeNameSources& sources);

}  // namespace ct
