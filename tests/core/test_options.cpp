// Moving the data folder must never lose a catalogue, whatever fails.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/options.h"

namespace fs = std::filesystem;

namespace {

// The real file system with one copy made to fail, as a full disc would.
class FailingCopyOps : public ct::FileOps {
public:
    explicit FailingCopyOps(int failAtCopy, bool failRemoves = false)
        : failAt_(failAtCopy), failRemoves_(failRemoves) {}
    std::unique_ptr<ct::OutFile> Create(const std::string& p, std::string* e) override {
        return ct::SystemFileOps().Create(p, e);
    }
    bool Rename(const std::string& a, const std::string& b, std::string* e) override {
        return ct::SystemFileOps().Rename(a, b, e);
    }
    bool Copy(const std::string& a, const std::string& b, std::string* e) override {
        if (++copies_ == failAt_) {
            if (e) *e = "No space left on device";
            return false;
        }
        return ct::SystemFileOps().Copy(a, b, e);
    }
    bool Remove(const std::string& p, std::string* e) override {
        if (failRemoves_) {
            if (e) *e = "Permission denied";
            return false;
        }
        return ct::SystemFileOps().Remove(p, e);
    }
    bool Exists(const std::string& p) override { return ct::SystemFileOps().Exists(p); }
    bool SameFileSystem(const std::string& a, const std::string& b) override {
        return ct::SystemFileOps().SameFileSystem(a, b);
    }
    int copies_ = 0;

private:
    int failAt_;
    bool failRemoves_;
};

std::string Read(const fs::path& p) {
    std::ifstream in(p, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

void Write(const fs::path& p, const std::string& text) {
    std::ofstream(p, std::ios::binary) << text;
}

class MoveCatalogues : public ::testing::Test {
protected:
    void SetUp() override {
        root_ = fs::temp_directory_path() /
                ("ct_move_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "_" +
                 ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(root_);
        fs::create_directories(root_ / "old");
        fs::create_directories(root_ / "new");
        for (const char* label : {"Alpha", "Beta", "Gamma"})
            Write(root_ / "old" / (std::string(label) + ".idx"), std::string(label) + "|0|||0|0|0|\r\n\r\n\r\n");
    }
    void TearDown() override { fs::remove_all(root_); }
    std::string Old() const { return (root_ / "old").string(); }
    std::string New() const { return (root_ / "new").string(); }
    fs::path root_;
    const std::vector<std::string> labels_{"Alpha", "Beta", "Gamma"};
};

TEST_F(MoveCatalogues, AllCopiedThenOldOnesDeleted) {
    FailingCopyOps ops(0);
    const ct::MoveOutcome out = ct::MoveCatalogues(ops, labels_, Old(), New());
    EXPECT_TRUE(out.copied);
    EXPECT_TRUE(out.kept.empty());
    for (const auto& l : labels_) {
        EXPECT_FALSE(fs::exists(root_ / "old" / (l + ".idx"))) << l;
        EXPECT_EQ(Read(root_ / "new" / (l + ".idx")), l + "|0|||0|0|0|\r\n\r\n\r\n");
    }
}

TEST_F(MoveCatalogues, FailedLastCopyLeavesEveryCatalogueInTheOldFolder) {
    FailingCopyOps ops(3);
    const ct::MoveOutcome out = ct::MoveCatalogues(ops, labels_, Old(), New());
    EXPECT_FALSE(out.copied);
    EXPECT_EQ(out.failedLabel, "Gamma");
    EXPECT_EQ(out.error, "No space left on device");
    for (const auto& l : labels_) EXPECT_TRUE(fs::exists(root_ / "old" / (l + ".idx"))) << l;
    // The copies made so far stay in the target.
    EXPECT_TRUE(fs::exists(root_ / "new" / "Alpha.idx"));
    EXPECT_TRUE(fs::exists(root_ / "new" / "Beta.idx"));
}

TEST_F(MoveCatalogues, MissingTargetFolderFailsOnTheFirstCopy) {
    FailingCopyOps ops(0);
    const ct::MoveOutcome out = ct::MoveCatalogues(ops, labels_, Old(), (root_ / "nowhere").string());
    EXPECT_FALSE(out.copied);
    EXPECT_EQ(out.failedLabel, "Alpha");
    EXPECT_FALSE(out.error.empty());
    for (const auto& l : labels_) EXPECT_TRUE(fs::exists(root_ / "old" / (l + ".idx"))) << l;
}

// Regression: the old folder typed again with a closing separator counts as a
// new folder; copying each catalogue onto itself and then deleting "the old
// one" would have destroyed the whole collection.
TEST_F(MoveCatalogues, SameFolderWithTrailingSeparatorLosesNothing) {
    FailingCopyOps ops(0);
    const ct::MoveOutcome out = ct::MoveCatalogues(ops, labels_, Old(), Old() + "/");
    EXPECT_TRUE(out.copied);
    EXPECT_EQ(ops.copies_, 0);
    for (const auto& l : labels_)
        EXPECT_EQ(Read(root_ / "old" / (l + ".idx")), l + "|0|||0|0|0|\r\n\r\n\r\n");
}

TEST_F(MoveCatalogues, ACatalogueOfTheSameLabelInTheTargetIsReplaced) {
    Write(root_ / "new" / "Beta.idx", "other disc\r\n\r\n\r\n");
    FailingCopyOps ops(0);
    ASSERT_TRUE(ct::MoveCatalogues(ops, labels_, Old(), New()).copied);
    EXPECT_EQ(Read(root_ / "new" / "Beta.idx"), "Beta|0|||0|0|0|\r\n\r\n\r\n");
}

TEST_F(MoveCatalogues, UndeletableOldCataloguesAreReportedAndStay) {
    FailingCopyOps ops(0, /*failRemoves=*/true);
    const ct::MoveOutcome out = ct::MoveCatalogues(ops, labels_, Old(), New());
    EXPECT_TRUE(out.copied);
    EXPECT_EQ(out.kept, labels_);
    for (const auto& l : labels_) {
        EXPECT_TRUE(fs::exists(root_ / "old" / (l + ".idx")));
        EXPECT_TRUE(fs::exists(root_ / "new" / (l + ".idx")));
    }
}

TEST_F(MoveCatalogues, AnEmptyListMovesNothing) {
    FailingCopyOps ops(1);
    EXPECT_TRUE(ct::MoveCatalogues(ops, {}, Old(), (root_ / "nowhere").string()).copied);
}

}  // namespace
