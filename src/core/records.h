// What the walker and the volume query deliver: plain values shared by the
// platform layer (which fills them) and the core (which writes catalogues).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/fixed.h"

namespace ct {

// One entry found by WalkFolder.
struct WalkRecord {
    std::string Name;        // full file-system path: walked path, '/', entry name (raw bytes)
    Fixed Size;              // low 32 bits of the size read as signed 32-bit; 0 for a folder
    std::string Attributes;  // marks "R H S A N T C" as set, one blank apart, or empty
    std::string Date;        // FileTimeText of the creation time
};
using WalkList = std::vector<WalkRecord>;

// The figures of a volume, as ReadVolumeInfo fills them. A failed half of the
// query leaves its fields as the caller set them (0 and empty in both callers).
struct VolumeInfo {
    std::string VolumeName;
    Fixed Size;                    // ClusterCount * SectorsPerCluster (32-bit) * BytesPerSector
    std::int32_t SerialNumber = 0;  // the 32 bits read as signed
    std::string FileSystem;
    std::int32_t ClusterCount = 0;
    std::int32_t SectorsPerCluster = 0;
    std::int32_t BytesPerSector = 0;
};

}  // namespace ct
