// The resource file: its byte layout both ways, the reader against damaged
// files, the text packer's refusals, and the real CT.rd of this build.
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <set>
#include <sstream>

#include "core/rddll.h"
#include "core/rdpack.h"
#include "core/text.h"
#include "support/scratch.h"
#include "support/sourcetexts.h"

namespace fs = std::filesystem;

namespace {

// The two-resource file of the format's description, written out literally.
const std::string kWorkedExample =
    "Hallo"
    "Hello!"
    "#000010001" "0000000001" "0000000006"
    "#000020001" "0000000006" "0000000012"
    "0000000002";

using ct::test::ReadAll;


std::string Record(int id, const std::string& start, const std::string& end) {
    std::string idText = std::to_string(id);
    return "#" + std::string(9 - idText.size(), '0') + idText + start + end;
}

class RDFileTest : public ::testing::Test {
protected:
    ct::test::Scratch scratch_;
    fs::path dir_ = scratch_.Path();

    std::string Put(const std::string& bytes, const std::string& name = "CT.rd") {
        return scratch_.Write(name, bytes);
    }
    std::string Get(const std::string& bytes, std::int32_t id) {
        ct::RDDLL rd;
        return rd.RDString(Put(bytes), id);
    }
};

TEST(RDPackLayout, WorkedExampleIsWrittenByteForByte) {
    std::string out, error;
    ASSERT_TRUE(ct::RDPack({{10001, "Hallo"}, {20001, "Hello!"}}, out, &error)) << error;
    EXPECT_EQ(out, kWorkedExample);
}

TEST_F(RDFileTest, WorkedExampleReadsBothResources) {
    EXPECT_EQ(Get(kWorkedExample, 10001), "Hallo");
    EXPECT_EQ(Get(kWorkedExample, 20001), "Hello!");
}

TEST_F(RDFileTest, ShortIdNeverMatchesALongerOne) {
    // Only 100010 present: 10001 must not find it.
    const std::string onlyLong = "X" + Record(100010, "0000000001", "0000000002") + "0000000001";
    EXPECT_EQ(Get(onlyLong, 10001), "");
    EXPECT_EQ(Get(onlyLong, 100010), "X");
    // Both present, the longer one first in the table.
    const std::string both = "LS" + Record(100010, "0000000001", "0000000002") +
                             Record(10001, "0000000002", "0000000003") + "0000000002";
    EXPECT_EQ(Get(both, 10001), "S");
    EXPECT_EQ(Get(both, 100010), "L");
    EXPECT_EQ(Get(both, 1000), "");
}

struct DamagedCase {
    const char* name;
    std::string bytes;
    std::int32_t id;
};

// Every damaged file gives the empty string and nothing worse.
TEST_F(RDFileTest, DamagedFilesGiveTheEmptyString) {
    const std::string body = "Hallo";
    const std::vector<DamagedCase> cases = {
        {"empty file", "", 10001},
        {"count not a number", body + Record(10001, "0000000001", "0000000006") + "       abc", 10001},
        {"count with a sign", body + Record(10001, "0000000001", "0000000006") + "        -1", 10001},
        {"end before start", body + Record(10001, "0000000004", "0000000002") + "0000000001", 10001},
        {"id absent", body + Record(10002, "0000000001", "0000000006") + "0000000001", 10001},
        {"negative id asked", kWorkedExample, -10001},
    };
    for (const DamagedCase& c : cases) EXPECT_EQ(Get(c.bytes, c.id), "") << c.name;
}

TEST_F(RDFileTest, ResourceTextAddsTheLanguageAndDecodesWindows1252) {
    std::string file;
    ASSERT_TRUE(ct::RDPack({{10026, "Gr\xF6\xDF" "e:"}, {20026, "Size:"}}, file, nullptr));
    Put(file);
    EXPECT_EQ(ct::ResourcePath(dir_.string()), (dir_ / "CT.rd").string());
    EXPECT_EQ(ct::ResourceText(dir_.string(), 0, 10026), "Größe:");
    EXPECT_EQ(ct::ResourceText(dir_.string(), 10000, 10026), "Size:");
    EXPECT_EQ(ct::ResourceText(dir_.string(), 20000, 10026), "");
}

// ---- the texts this program ships ----

struct Language {
    const char* file;
    int number;
};
const Language kLanguages[] = {{"texts_de.txt", 0}, {"texts_en.txt", 10000}};

TEST(ShippedTexts, BuiltResourceFileHoldsEveryTextOfBothLanguages) {
    const std::string path = std::string(CARTULON_STAGE_DIR) + "/CT.rd";
    ASSERT_TRUE(fs::exists(path)) << path << " is built by the cartulon_data target";
    ct::RDDLL rd;
    int found = 0;
    for (const Language& lang : kLanguages) {
        const auto source = ct::test::SourceTexts(lang.file);
        for (int base = ct::kFirstBaseId; base <= ct::kLastBaseId; ++base) {
            const std::string body = rd.RDString(path, lang.number + base);
            EXPECT_FALSE(body.empty()) << "id " << lang.number + base;
            EXPECT_EQ(ct::Cp1252ToUtf8(body), source.at(base)) << "id " << lang.number + base;
            found += !body.empty();
        }
    }
    EXPECT_EQ(found, 224);
}

// Captions and help topics are looked up by their text, so they carry no
// access-key mark, and no two topics of a language may share a name.
// '&' shows as an underline only on menu entries, buttons and check boxes;
// anywhere else it would show as itself.
// Within one window (or one menu) no two controls may share an access key.
}  // namespace
