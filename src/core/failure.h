// What went wrong, as plain values. The core never words a failure: it says
// which step failed, on which file, and the system's own error number; the
// window and the terminal tool turn that into a sentence of the language the
// user chose (FailureText), so that a German user never reads an English
// sentence under a German heading.
#pragma once

#include <string>

namespace ct {

enum class FailCode {
    None,
    CreateScratch,   // the scratch file beside `path` couldn't be made
    WriteScratch,    // writing, syncing or closing it failed (disk full, gone read-only)
    Replace,         // it couldn't be renamed into the place of `path`
    Busy,            // another program is changing `path` right now
    NotFound,        // `path` isn't there
    NotACatalogue,   // `path` is no regular file (a folder, a FIFO, a device)
    Unreadable,      // `path` can't be opened or read
    Copy,            // copying `path` to `other` failed
    Remove,          // `path` couldn't be deleted
    Rename,          // `path` couldn't be renamed to `other`
    FolderMissing,   // the folder `path` doesn't exist
    BadLabel,        // `path` is a label that would leave the data folder
    NoDisc,          // no disc is labelled `path`
    Cancelled,       // the user stopped it; nothing was written
    ReadOnly,        // `path` may not be changed (no write permission)
    SetAside,        // `path` couldn't be set aside for a re-read; it stays as it was
    BadText,         // the text for `path` holds a line break, which no line can keep
    LibraryMissing,  // the shared library `path`, loaded only when needed, can't be loaded
};

struct Failure {
    FailCode code = FailCode::None;
    std::string path;   // the file or folder the step was about
    std::string other;  // the second file of a copy or a rename
    int sysError = 0;   // errno of the failed call, 0 when none applies

    explicit operator bool() const { return code != FailCode::None; }
};

inline Failure Fail(FailCode code, std::string path, int sysError = 0, std::string other = {}) {
    return Failure{code, std::move(path), std::move(other), sysError};
}

// One sentence for `failure` in `language` (0 German, 10000 English), naming
// the file and, where there is one, the system's reason.
std::string FailureText(const Failure& failure, int language);

}  // namespace ct
