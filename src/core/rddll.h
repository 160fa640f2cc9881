// RDDLL: the reader of the resource data file CT.rd. Bodies lie back to back
// at the start; a table of 30-byte records ("#" + 9-digit id + 10-digit start
// + 10-digit end, 1-based positions) and a 10-character count field sit at the
// end and are found from there. Nothing is cached: every call reads the file
// afresh, so a replaced file takes effect at the next call.
#pragma once

#include <cstdint>
#include <string>

namespace ct {

class RDDLL {
public:
    // The body of resource `ID`, byte for byte. A missing or damaged file, or
    // an id it lacks, gives the empty string: the program carries on.
    std::string RDString(const std::string& RessourceFile, std::int32_t ID);
    // "major.minor" of this program.
    static std::string Version();
};

std::string ResourcePath(const std::string& programFolder);  // <folder>/CT.rd

// The text of base id `baseId` in language `language` (0 or 10000) as UTF-8:
// RDString of id language + baseId, its Windows-1252 body decoded.
std::string ResourceText(const std::string& programFolder, int language, int baseId);

}  // namespace ct
