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

#include "core/failure.h"
#include "core/fileops.h"

namespace ct {

// A hit text of a folder ("label\\Path\") or a file ("label\\Path") taken
// apart: the label ends at the first "\\", the target path starts at the
// second backslash of it, and a trailing '\' (a folder) is dropped. False for
// a disc hit, which is the bare label and names no record, and for anything
// that leaves no path.
bool TargetFromHit(std::string_view hitText, std::string& label, std::string& targetPath,
                   bool* isFolder = nullptr);

// The only way from a label typed outside the program (a terminal argument)
// to a catalogue path. Refuses (BadLabel) "." and "..", and any label holding
// a character the label rule removes ('/', '\\', ':' ...) or a control
// character, so no argument can name a file outside the data folder; a label
// without a readable catalogue gives NoDisc, NotACatalogue (a FIFO, a folder)
// or Unreadable with the system's reason.
Failure ResolveLabel(const std::string& dataFolder, const std::string& label, std::string& cataloguePath);

// Stores `newText` as the description of one record of the catalogue of
// `label`: the header (`isHeader`) or the line whose whole first field is
// `targetPath`. That line keeps every byte up to and including its last '|'
// and gets `newText` behind it in the line's own encoding: Windows-1252 when
// the line is 1252 ('?' for a character 1252 lacks), else UTF-8. Every other
// byte of the file, line ends included, stays as it is. A target that matches
// no line rewrites the file unchanged. `newText` is taken as stored (already
// normalised) and must hold no line break. Runs under the catalogue's write
// lock, in time linear in the file's size whatever its lines' lengths.
//
// On failure (Busy, NotFound, NotACatalogue, ReadOnly, a scratch or rename
// step) the catalogue is as it was and no scratch file is left.
Failure DescriptionRewrite(FileOps& ops, const std::string& dataFolder, const std::string& label,
                           bool isHeader, const std::string& targetPath, const std::string& newText);

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
    Failure failure;    // for Failed
};

// Gives the catalogue of `oldLabel` the label `newLabelRaw`, put through
// CleanLabel and trimmed. `labels` is the data folder's disc list, compared
// exactly; a file that already stands under the new name is never replaced.
RenameOutcome RenameDisc(FileOps& ops, const std::string& dataFolder, const std::string& oldLabel,
                         const std::string& newLabelRaw, const std::vector<std::string>& labels);

// Deletes the catalogue of `label` under its write lock. No failure when no
// catalogue of that label is left (also when it had gone already).
Failure DeleteDisc(FileOps& ops, const std::string& dataFolder, const std::string& label);

}  // namespace ct
