// Disc images read as the burnt disc would read in a drive, without mounting
// and without root: ISO 9660 (Joliet names where present, else Rock Ridge,
// else the primary names) through libarchive, UDF of every revision through
// our own reader (platform/udf.h).
//
// Contract of the walk: depth first, going down into a folder the moment it is
// met; the entries of one folder in the order the disc records them (ISO 9660
// and Joliet keep each directory sorted by its identifiers, UDF in the order
// of its file identifiers); every entry "R"; sizes as the walker keeps them;
// the recorded date of each entry as its time. Names are the image's path,
// '/', and the path inside the image.
#pragma once

#include <functional>
#include <string>

#include "core/adddisc.h"
#include "core/failure.h"
#include "core/records.h"

namespace ct {

// A regular file that carries an ISO 9660 or UDF volume descriptor.
bool IsDiscImage(const std::string& path);

// Why the image's files can't be read, or no failure: Unreadable when it has
// neither a UDF volume whose root folder reads nor an ISO 9660 side,
// LibraryMissing (the library's name as the path) when it has only the ISO
// 9660 side and libarchive can't be loaded. A folder damaged further down
// shows only in the walk.
Failure ImageFailure(const std::string& image);

// False when the image can't be opened or read whole as either file system
// (a damaged UDF side falls back to the ISO 9660 one); the lists then hold
// what was read before the failure.
bool WalkImage(const std::string& image, WalkList& folders, WalkList& files,
               const std::function<void(std::size_t)>& progress = {});

// The header figures of the image: label, serial and file system as the
// superblock probe computes them, clusters = the volume's blocks, 1 sector
// per cluster, the block's size (2048 bytes on every disc; 512 to 32768 on a
// UDF image of a hard disk) per sector. Leaves `volume` as it was when the
// file is no disc image.
void ReadImageVolumeInfo(const std::string& image, VolumeInfo& volume);

// The system's disc source, except that a path that is a disc image is read
// as the image: so the add procedure walks the image and still asks the real
// data folder whether a label is in use.
DiscSource& DiscSourceWithImages();

}  // namespace ct
