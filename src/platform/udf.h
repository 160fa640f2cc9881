// A read-only UDF directory reader, for disc images read without mounting.
//
// It reads every revision a disc carries (1.02 to 2.60), with the 2048-byte
// blocks of a disc or the 512 to 32768 of a hard disk's image: file entries and
// extended file entries; short, long, extended and embedded allocation
// descriptors with their continuation extents; physical, sparable, virtual
// (VAT, as written on DVD-R and BD-R) and metadata partitions (Blu-ray), the
// metadata file's mirror standing in for a damaged metadata file. The
// libraries of the field stop at revision 2.01 or give no file times, which
// the catalogue needs.
//
// Damaged input is survived: every length and offset is checked against the
// block and the image, every tag's checksum and CRC are checked, loops and
// depth are bounded, and a directory met twice is a failure. Nothing is
// written, nothing is mapped; the descriptor is read with pread only.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace ct {

struct UdfEntry {
    std::string path;        // the names from the root down, joined by '/'
    bool folder = false;     // the identifier's "directory" characteristic
    bool hidden = false;     // its "existence" characteristic, which a drive shows as hidden
    std::uint64_t size = 0;  // the information length (0 for folders)
    std::int64_t mtime = 0;  // the modification time, Unix seconds, its time zone applied
};

enum class UdfResult {
    Ok,
    NotUdf,       // no anchor, or no logical volume behind it
    Unsupported,  // a layout this reader doesn't follow (a volume whose block isn't its anchor's)
    Damaged,      // a bad tag, a length beyond its block, a loop: the walk stopped there
};

// Walks the tree on the open image `fd` depth first, going down into a folder
// the moment it is met, the entries of a folder in the order of their file
// identifiers, deleted and parent identifiers left out. `visit` hears each
// entry; with `visit` empty only the volume and the root folder are read.
// On a failure `visit` has heard the entries read before it.
UdfResult ReadUdfTree(int fd, const std::function<void(const UdfEntry&)>& visit);

// Whether the volume recognition sequence 32 KiB behind byte `start` names a
// UDF volume (NSR02 or NSR03). Its descriptors lie 2048 bytes apart, or a
// block apart where the logical block is larger (4096 bytes on some hard
// disks), so every spacing up to 32 KiB is tried.
bool UdfRecognised(int fd, std::uint64_t start);

// What the label probe needs of a UDF volume, from one opening of it.
struct UdfVolume {
    // The logical block size, a power of two from 512 to 32768: that of the
    // anchor, found as the reader finds it; 0 when there is none.
    std::uint32_t blockSize = 0;
    // The file set descriptor's block as the volume maps it (through a
    // metadata or virtual partition where the volume has one); empty when the
    // volume can't be opened.
    std::vector<unsigned char> fileSet;
};
UdfVolume ReadUdfVolume(int fd);

}  // namespace ct
