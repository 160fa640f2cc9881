// The drive list on Linux: the mounted volumes a user would catalogue, in the
// order optical discs, removable volumes (/media, /run/media, /mnt), other
// real file systems; never pseudo file systems.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/volume.h"

namespace ct {

struct Drive {
    std::string mountPoint;  // the Drive value: what is walked and stored in DriveLetter
    std::string volumeName;  // may be empty
    std::string display;     // "/media/cd [FOTOS]" or "/home"
    bool optical = false;
};

// From a parsed mount table; `labelOf` gives a volume name for a mount point
// (the real one asks ReadVolumeInfo).
std::vector<Drive> DrivesOf(const std::vector<MountEntry>& mounts,
                            const std::function<std::string(const std::string&)>& labelOf);
std::vector<Drive> ListDrives();

}  // namespace ct
