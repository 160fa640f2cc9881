// The help file reader on damaged input, the viewer's argument split, and the
// proof that every topic the program can open stands in both help files.
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "core/helpfile.h"
#include "core/rdpack.h"
#include "core/text.h"
#include "support/scratch.h"
#include "support/sourcetexts.h"

namespace {

using ct::HelpBlock;
using ct::HelpSpan;

// ---------------------------------------------------------------- arguments

struct ArgCase {
    const char* name;
    std::vector<std::string> argv;
    std::string file, topic;
};

void PrintTo(const ArgCase& c, std::ostream* os) { *os << c.name; }

class HelpArgument : public testing::TestWithParam<ArgCase> {};

TEST_P(HelpArgument, SplitsAtTheFirstFhpComma) {
    const auto& c = GetParam();
    std::string file, topic;
    ct::SplitHelpArgument(c.argv, file, topic);
    EXPECT_EQ(file, c.file);
    EXPECT_EQ(topic, c.topic);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, HelpArgument,
    testing::Values(
        ArgCase{"OneArgument", {"/opt/Cartulon/CT0.fhp, Inhalt"}, "/opt/Cartulon/CT0.fhp", "Inhalt"},
        ArgCase{"ShellSplitIt", {"/opt/Cartulon/CT1.fhp,", "Add", "a", "CD"}, "/opt/Cartulon/CT1.fhp", "Add a CD"},
        ArgCase{"BlanksInFolder", {"/home/a b/Cartulon/CT0.fhp, Index"}, "/home/a b/Cartulon/CT0.fhp", "Index"},
        ArgCase{"TopicHoldsCommaAndFhp", {"/p/CT0.fhp, a.fhp, b"}, "/p/CT0.fhp", "a.fhp, b"}),
    [](const testing::TestParamInfo<ArgCase>& info) { return std::string(info.param.name); });

// ---------------------------------------------------------------- the real files

// The texts the program shows, by id, as the packer reads them.
struct Language {
    const char* name;
    const char* texts;
    const char* help;
};

void PrintTo(const Language& l, std::ostream* os) { *os << l.name; }

class RealHelpFile : public testing::TestWithParam<Language> {
protected:
    std::string Source(const char* rel) { return std::string(CARTULON_SOURCE_DIR) + "/data/" + rel; }
};

TEST_P(RealHelpFile, HoldsEveryTopicTheProgramOpens) {
    const auto texts = ct::test::SourceTexts(GetParam().texts);
    ct::HelpFile help;
    ASSERT_TRUE(ct::LoadHelpFile(Source(GetParam().help), help));

    std::vector<int> ids = {10001, 10005, 10010, 10015, 10017, 10018, 10022, 10023};
    for (int id = 10098; id <= 10112; ++id) ids.push_back(id);
    EXPECT_NE(help.Find(ct::kHelpContents), nullptr) << "no topic \"Inhalt\"";
    for (int id : ids) {
        const auto it = texts.find(id);
        ASSERT_NE(it, texts.end()) << GetParam().texts << " lacks id " << id;
        EXPECT_NE(help.Find(it->second), nullptr) << "no topic for " << id << ": \"" << it->second << "\"";
    }
}

INSTANTIATE_TEST_SUITE_P(Both, RealHelpFile,
                         testing::Values(Language{"German", "texts_de.txt", "help_de.fhp"},
                                         Language{"English", "texts_en.txt", "help_en.fhp"}),
                         [](const testing::TestParamInfo<Language>& info) { return std::string(info.param.name); });

}  // namespace
