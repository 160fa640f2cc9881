// WalkFolder: lists everything below a folder into two arrays, depth first,
// going down into a folder the moment it is met, entries of one folder in the
// order the file system delivers them, never sorted, "." and ".." never
// listed. One statx per entry; symbolic links are not followed (a link to a
// folder is recorded as a file), and the walk never leaves the file system of
// the walked root. A folder that can't be read adds its own record and
// nothing below it, and counts as unreadable in the summary. The depth of
// the tree costs no descriptors beyond a fixed few.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "core/adddisc.h"
#include "core/records.h"

namespace ct {

// `path` with or without a trailing '/'. Names are path + '/' + entry name.
void WalkFolder(const std::string& path, WalkList& folders, WalkList& files,
                const std::function<void(std::size_t)>& progress = {});

// The same walk handed entry by entry to `sink`.
WalkSummary WalkTree(const std::string& path, WalkSink& sink);

// The labels of the catalogues below `dataFolder`, for the disc list and
// every command: each regular file, or link to one, whose name ends in
// ".idx", in sub-folders too (links to folders not followed), in the order
// the file system gives. From the names and types the listing delivers:
// only a link or an entry of unknown type costs a stat, where the walker's
// statx and attribute look-up for every catalogue cost a search of many
// small catalogues a third of its time.
std::vector<std::string> CatalogueLabels(const std::string& dataFolder);

// The DiscSource of the real machine: WalkFolder and ReadVolumeInfo.
DiscSource& SystemDiscSource();

}  // namespace ct
