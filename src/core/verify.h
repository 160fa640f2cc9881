// Checking a disc against its catalogue: the entries a fresh walk of the disc
// finds, compared by path with the catalogue's folder and file lines. Only
// what the disc itself decides is compared (presence, size, time); the
// descriptions are the user's and never looked at, and nothing is written.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/records.h"

namespace ct {

enum class Difference {
    MissingOnDisc,    // in the catalogue, not found on the disc
    NotInCatalogue,   // found on the disc, not in the catalogue
    SizeChanged,      // a file whose size differs
    TimeChanged,      // a folder or file whose time differs
};

struct VerifyFinding {
    Difference kind = Difference::MissingOnDisc;
    bool folder = false;
    std::string path;            // the catalogue Path, "\Bilder\p1.jpg"
    std::string catalogueValue;  // size or time as the catalogue has it (empty where none)
    std::string discValue;       // size or time as the disc has it (empty where none)
};

struct VerifyReport {
    bool opened = false;  // false: the catalogue could not be read, nothing compared
    std::vector<VerifyFinding> findings;  // disc order first, then what the disc lacks in catalogue order
};

// `root` is the walked root as the walk's Names begin with it.
VerifyReport VerifyDisc(const std::string& cataloguePath, std::string_view root,
                        const WalkList& folders, const WalkList& files);

// "missing", "new", "size", "time": the words of the terminal tool's tables.
std::string_view DifferenceWord(Difference kind);

}  // namespace ct
