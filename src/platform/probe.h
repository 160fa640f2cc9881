// The probing of volume bytes behind ProbeVolumeFile, on an open descriptor and
// with a choice of which kinds to try first: a disc that carries both UDF and
// ISO 9660 shows the label of the one it is mounted as.
#pragma once

#include <cstdint>

#include "platform/volume.h"

namespace ct {

enum class ProbeOrder { BootSectorFirst, IsoFirst, UdfFirst };

bool ProbeVolume(int fd, VolumeLabel& out, std::uint64_t sessionStartSector, ProbeOrder order);

}  // namespace ct
