// Re-reading a disc without risking its catalogue. The old catalogue isn't
// deleted before the add dialog opens: it is set aside under a hidden name
// that neither the disc list nor the label check sees (it doesn't end in
// ".idx"), so the dialog accepts the disc's own label again. When the dialog
// closes, the set-aside file is dropped if a disc was added, and otherwise
// put back. A set-aside file that a crash left behind is put back at the next
// start.
#pragma once

#include <string>
#include <vector>

#include "core/adddisc.h"
#include "core/fileops.h"

namespace ct {

// ".<label>.idx.reread", or with a number behind it (2, 3, ...) when an older
// set-aside file of the same label still lies there.
std::string SetAsideName(const std::string& label, int number = 1);
// Whether `name` (a bare file name) is a set-aside name; on true `label`
// receives the label it belongs to.
bool IsSetAsideName(const std::string& name, std::string* label = nullptr);

struct SetAsideFile {
    std::string path;   // where the catalogue lies now
    std::string home;   // where it lay: <data folder>/<label>.idx
    std::string label;
};

// Renames <dataFolder>/<label>.idx to a free set-aside name in the same folder.
// False, with nothing changed, when the catalogue isn't there or can't be
// renamed: `failure` is NotFound, Busy or NotACatalogue for the catalogue, or
// SetAside with the system's reason.
bool SetAside(FileOps& ops, const std::string& dataFolder, const std::string& label,
              SetAsideFile& out, Failure* failure);

enum class RestoreResult {
    Restored,    // back under its own name
    LabelTaken,  // a catalogue of that label appeared meanwhile; the set-aside file stays
    Failed,      // the rename failed; the set-aside file stays, `failure` says why (Rename)
};

// Puts a set-aside catalogue back under its label, but only while the label
// is free in the whole data folder (the add dialog's own check), so that
// nothing is ever overwritten.
RestoreResult Restore(DiscSource& source, FileOps& ops, const std::string& dataFolder,
                      const SetAsideFile& file, Failure* failure);

// Drops a set-aside catalogue once its disc has been read anew; on false
// `failure` is Remove with the system's reason.
bool Discard(FileOps& ops, const SetAsideFile& file, Failure* failure);

struct LeftoverOutcome {
    SetAsideFile file;
    RestoreResult result = RestoreResult::Restored;
    Failure failure;  // why it stays, when the rename failed
};

// Finds every set-aside file in the data folder (sub-folders included, as the
// disc list looks there too) and restores each into its own folder. Files
// that stay set aside are reported with the reason.
std::vector<LeftoverOutcome> RestoreLeftovers(DiscSource& source, FileOps& ops,
                                              const std::string& dataFolder);

}  // namespace ct
