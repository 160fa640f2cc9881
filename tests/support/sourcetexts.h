// The texts of one of the source text files in data/ (texts_de.txt,
// texts_en.txt), by id, as UTF-8: what the built CT.rd must hold.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "core/rdpack.h"
#include "core/text.h"
#include "support/scratch.h"

namespace ct::test {

inline std::map<int, std::string> SourceTexts(const std::string& file) {
    const std::string path = std::string(CARTULON_SOURCE_DIR) + "/data/" + file;
    std::vector<RDEntry> entries;
    std::string error;
    EXPECT_TRUE(ParseTexts(ReadAll(path), path, entries, &error)) << error;
    std::map<int, std::string> texts;
    for (const RDEntry& e : entries) texts[e.id] = Cp1252ToUtf8(e.body);
    return texts;
}

}  // namespace ct::test
