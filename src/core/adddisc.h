// Adding a disc: one procedure behind the add dialog and `cartulon-cli add`.
#pragma once

#include <functional>
#include <string>

#include "core/failure.h"
#include "core/fileops.h"
#include "core/records.h"

namespace ct {

// Hears the entries of a walk as they are found; false stops the walk.
class WalkSink {
public:
    virtual ~WalkSink() = default;
    virtual bool Folder(const WalkRecord& folder) = 0;
    virtual bool File(const WalkRecord& file) = 0;
    // Entries found so far, from sources that count for themselves.
    virtual void Progress(std::size_t) {}
};

struct WalkSummary {
    std::size_t unreadable = 0;  // folders or entries that couldn't be read
    bool stopped = false;        // the sink said stop
    Failure failure;             // the source couldn't be read at all (nothing was walked)
};

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
    // The same walk handed to `sink` entry by entry, in the same order, so
    // that memory doesn't grow with the tree. This plain version walks into
    // lists first; the machine's walker streams.
    virtual WalkSummary Walk(const std::string& path, WalkSink& sink);

protected:
    // Hands two walked lists on to `sink`, folders first; stopped when the
    // sink says so.
    static WalkSummary HandOn(const WalkList& folders, const WalkList& files, WalkSink& sink);
};

enum class AddResult {
    Added,
    EmptyLabel,   // the raw label was empty (help topic 10099)
    LabelInUse,   // a catalogue of this label lies in the data folder (topic 10100)
    WriteFailed,  // nothing was left under the label; `failure` says why (a file step, or a disc that couldn't be read)
    Cancelled,    // stopped by the user during the walk; nothing was written
};

struct AddRequest {
    std::string root;         // the walked folder: a mount point or any folder
    std::string label;        // as typed
    std::string description;  // as typed
    std::string dataFolder;
    std::function<void(std::size_t)> progress;
    // Asked now and then during the walk; true stops it.
    std::function<bool()> cancelled;
};

struct AddOutcome {
    AddResult result = AddResult::EmptyLabel;
    std::string label;        // after CleanLabel and trimming (what the box shows)
    std::string description;  // normalised (what the box shows)
    std::size_t folders = 0, files = 0;
    std::size_t unreadable = 0;  // folders or entries the walk couldn't read
    std::string cataloguePath;
    Failure failure;
};

// The label check of the add dialog: walks the data folder (sub-folders
// included) and compares each catalogue's label exactly, case counting.
bool LabelInUse(DiscSource& source, const std::string& dataFolder, const std::string& label);

// Steps 2 to 8 of pressing the add button: empty raw label refused; label
// cleaned and trimmed; description normalised; label in use refused; walk;
// volume query; the catalogue written as the walk finds its entries (folder
// lines into one scratch file, file lines into a second that is appended),
// so memory stays flat in the size of the tree, and put in place only whole
// and only if no other program took the label meanwhile (never half a file
// under the label, never one replaced). Saving the drive and the message are
// the caller's.
AddOutcome AddDisc(const AddRequest& request, DiscSource& source, FileOps& ops);

}  // namespace ct
