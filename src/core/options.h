// Moving the catalogues to another data folder, behind the options window.
// Every listed catalogue is copied first; only when all copies stand are the
// old ones deleted, so a failure at any point leaves every catalogue in the old
// folder.
#pragma once

#include <string>
#include <vector>

#include "core/failure.h"
#include "core/fileops.h"

namespace ct {

struct MoveOutcome {
    bool copied = false;             // every catalogue stands in the new folder
    std::string failedLabel;         // the catalogue whose copy failed
    Failure failure;                 // why: Copy of the failed catalogue to its target
    std::vector<std::string> kept;   // old catalogues that couldn't be deleted after all copies
};

// Copies "<from>/<label>.idx" to "<to>/<label>.idx" for each label in order,
// replacing a file of that name in the target; then deletes the old ones in the
// same order. A target that is the very same file as its source (the same
// folder written another way, as with a trailing separator) is neither copied
// onto itself nor deleted.
MoveOutcome MoveCatalogues(FileOps& ops, const std::vector<std::string>& labels,
                           const std::string& from, const std::string& to);

}  // namespace ct
