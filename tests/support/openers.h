// A test's own read opener for the time of a scope: every catalogue the code
// opens, by path or through a data folder, goes through it, and both the
// read and the folder opener are as before afterwards.
#pragma once

#include "core/fileops.h"

namespace ct::test {

class ReadOpenerScope {
public:
    explicit ReadOpenerScope(ReadOpener opener)
        : folder_(SetFolderOpener(nullptr)), read_(SetReadOpener(opener)) {}
    ~ReadOpenerScope() {
        SetReadOpener(read_);
        SetFolderOpener(folder_);
    }
    // The read opener this one stands in for, for a test opener that hands
    // on what it doesn't refuse.
    ReadOpener Previous() const { return read_; }
    ReadOpenerScope(const ReadOpenerScope&) = delete;
    ReadOpenerScope& operator=(const ReadOpenerScope&) = delete;

private:
    FolderOpener folder_;
    ReadOpener read_;
};

}  // namespace ct::test
