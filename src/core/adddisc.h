// Adding a disc: one procedure behind the add dialog and `cartulon-cli add`.
#pragma once

#include <functional>
#include <string>

#include "core/fileops.h"
#include "core/records.h"

namespace ct {

// What reading a disc needs of the system; the platform layer gives the real
// one, tests give fakes.
class DiscSource {
public:
    virtual ~DiscSource() = default;
    // `progress`, when set, hears the number of entries found so far now and
    // then; it doesn't change what is found.
    virtual void WalkFolder(const std::string& path, WalkList& folders, WalkList& files,
                            const std::function<void(std::size_t)>& progress) = 0;
    virtual void ReadVolumeInfo(const std::string& root, VolumeInfo& volume) = 0;
};

enum class AddResult {
    Added,
    EmptyLabel,   // the raw label was empty (help topic 10099)
    LabelInUse,   // a catalogue of this label lies in the data folder (topic 10100)
    WriteFailed,  // nothing was left under the label; `error` says why
};

struct AddRequest {
    std::string root;         // the walked folder: a mount point or any folder
    std::string label;        // as typed
    std::string description;  // as typed
    std::string dataFolder;
    std::function<void(std::size_t)> progress;
};

struct AddOutcome {
    AddResult result = AddResult::EmptyLabel;
    std::string label;        // after CleanLabel and trimming (what the box shows)
    std::string description;  // normalised (what the box shows)
    std::size_t folders = 0, files = 0;
    std::string cataloguePath;
    std::string error;
};

// The label check of the add dialog: walks the data folder (sub-folders
// included) and compares each catalogue's label exactly, case counting.
bool LabelInUse(DiscSource& source, const std::string& dataFolder, const std::string& label);

// Steps 2 to 8 of pressing the add button: empty raw label refused; label
// cleaned and trimmed; description normalised; label in use refused; walk;
// volume query; catalogue written in one go (never half a file under the
// label). Saving the drive and the message are the caller's.
AddOutcome AddDisc(const AddRequest& request, DiscSource& source, FileOps& ops);

}  // namespace ct
