// Changing what a catalogue says, its label, or whether it exists: the file
// work behind the description editor, the label editor and the delete
// command, and behind `cartulon-cli describe|rename|delete`.
//
// Nothing here may lose a catalogue: a rewrite writes the new file completely
// beside the old one and swaps it in only when it is safely on disk; a rename
// never replaces another file.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/fileops.h"

namespace ct {

// A hit text of a folder ("label\\Path\") or a file ("label\\Path") taken
// apart: the label ends at the first "\\", the target path starts at the
// second backslash of it, and a trailing '\' (a folder) is dropped. False for
// a disc hit, which is the bare label and names no record, and for anything
// that leaves no path.
bool TargetFromHit(std::string_view hitText, std::string& label, std::string& targetPath,
                   bool* isFolder = nullptr);

// The scratch file a rewrite of `label` writes before it is swapped in: in the
// program folder's "Daten" when that lies on the data folder's file system (a
// rename there is one step), else beside the catalogue. Its name never ends in
// ".idx", so no disc list shows it and a disc labelled "temp" is safe.
std::string RewriteScratchPath(FileOps& ops, const std::string& programFolder,
                               const std::string& dataFolder, const std::string& label);

// Leftovers of a rewrite that was cut off (a crash between writing and
// swapping in): they hold nothing the catalogue lacks, since the catalogue is
// only ever replaced whole. Removes them from both places a scratch file can
// lie; returns how many went.
int CleanScratchFiles(FileOps& ops, const std::string& programFolder, const std::string& dataFolder);

// Stores `newText` as the description of one record of the catalogue of
// `label`: the header (`isHeader`) or the line whose whole first field is
// `targetPath`. That line keeps everything up to and including its last '|'
// and gets `newText` behind it; a line in Windows-1252 is made UTF-8 first so
// it stays one encoding. Every other byte of the file, line ends included,
// stays as it is. A target that matches no line rewrites the file unchanged.
// `newText` is taken as stored (already normalised) and must hold no line
// break.
//
// False when anything fails (catalogue missing or read-only, scratch folder
// gone, disk full, any file step): then the catalogue is as it was, no scratch
// file is left, and `error` says what failed.
bool DescriptionRewrite(FileOps& ops, const std::string& programFolder,
                        const std::string& dataFolder, const std::string& label, bool isHeader,
                        const std::string& targetPath, const std::string& newText,
                        std::string* error);

enum class RenameResult {
    Renamed,
    Unchanged,   // the cleaned label is the old one: nothing to do
    EmptyLabel,  // nothing left after cleaning and trimming (help topic 10099)
    LabelInUse,  // another catalogue has the label already (help topic 10100)
    Failed,      // the file system refused; the catalogue is as it was
};

struct RenameOutcome {
    RenameResult result = RenameResult::EmptyLabel;
    std::string label;  // the new label after CleanLabel and trimming (what the box shows)
    std::string error;  // for Failed
};

// Gives the catalogue of `oldLabel` the label `newLabelRaw`, put through
// CleanLabel and trimmed. `labels` is the data folder's disc list, compared
// exactly; a file that already stands under the new name is never replaced.
RenameOutcome RenameDisc(FileOps& ops, const std::string& dataFolder, const std::string& oldLabel,
                         const std::string& newLabelRaw, const std::vector<std::string>& labels);

// Deletes the catalogue of `label`. True when no catalogue of that label is
// left (also when it had gone already); false with `error` while it still
// stands.
bool DeleteDisc(FileOps& ops, const std::string& dataFolder, const std::string& label,
                std::string* error);

}  // namespace ct
