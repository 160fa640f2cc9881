// Moving the catalogues to a new data folder: every copy stands before any old
// catalogue is deleted, so a failure at any point loses nothing.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "core/options.h"
#include "support/faultyops.h"
#include "support/scratch.h"

namespace {

using ct::test::Fault;
using ct::test::FaultyOps;
using ct::test::ReadAll;
namespace fs = std::filesystem;

class MoveCatalogues : public ::testing::Test {
protected:
    void SetUp() override {
        for (const auto& l : labels) dir.Write("old/" + l + ".idx", Body(l));
        dir.Mkdir("new");
    }
    static std::string Body(const std::string& label) { return label + "|0|||0|0|0|\r\n\r\n\r\n"; }
    ct::test::Scratch dir;
    std::string old = dir / "old", to = dir / "new";
    const std::vector<std::string> labels{"Alpha", "Beta", "Gamma"};
};

TEST_F(MoveCatalogues, AllCopiedThenOldOnesDeleted) {
    dir.Write("new/Beta.idx", "other disc");  // one of the same label is replaced
    FaultyOps ops;
    const ct::MoveOutcome out = ct::MoveCatalogues(ops, labels, old, to);
    EXPECT_TRUE(out.copied);
    EXPECT_TRUE(out.kept.empty());
    for (const auto& l : labels) {
        EXPECT_FALSE(fs::exists(old + "/" + l + ".idx")) << l;
        EXPECT_EQ(ReadAll(to + "/" + l + ".idx"), Body(l));
    }
}

TEST_F(MoveCatalogues, FailedLastCopyLeavesEveryCatalogueInTheOldFolder) {
    FaultyOps ops(Fault::Copy, 3);
    const ct::MoveOutcome out = ct::MoveCatalogues(ops, labels, old, to);
    EXPECT_FALSE(out.copied);
    EXPECT_EQ(out.failedLabel, "Gamma");
    EXPECT_EQ(out.failure.code, ct::FailCode::Copy);  // with both files and the system's reason
    EXPECT_EQ(out.failure.path + " " + out.failure.other, old + "/Gamma.idx " + to + "/Gamma.idx");
    EXPECT_EQ(out.failure.sysError, EIO);
    for (const auto& l : labels) EXPECT_EQ(ReadAll(old + "/" + l + ".idx"), Body(l)) << l;
}

// Regression: the old folder typed again with a closing separator counted as a
// new folder; copying each catalogue onto itself and then deleting "the old
// one" would have destroyed the whole collection.
TEST_F(MoveCatalogues, SameFolderWithTrailingSeparatorLosesNothing) {
    FaultyOps ops;
    EXPECT_TRUE(ct::MoveCatalogues(ops, labels, old, old + "/").copied);
    EXPECT_TRUE(ops.log.empty());
    for (const auto& l : labels) EXPECT_EQ(ReadAll(old + "/" + l + ".idx"), Body(l));
}

TEST_F(MoveCatalogues, UndeletableOldCataloguesAreReportedAndStay) {
    FaultyOps ops(Fault::Remove);
    const ct::MoveOutcome out = ct::MoveCatalogues(ops, labels, old, to);
    EXPECT_TRUE(out.copied);
    EXPECT_EQ(out.kept, labels);
    for (const auto& l : labels) EXPECT_TRUE(fs::exists(old + "/" + l + ".idx") && fs::exists(to + "/" + l + ".idx"));
}

}  // namespace
