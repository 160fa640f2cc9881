// Setting a catalogue aside for a re-read and bringing it back: nothing is
// ever replaced, and what a crash left behind comes back at the next start.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <map>

#include "core/adddisc.h"
#include "platform/walk.h"
#include "core/reread.h"
#include "support/faultyops.h"
#include "support/scratch.h"

namespace {

using ct::RestoreResult;
using ct::SetAsideFile;
using ct::test::Fault;
using ct::test::FaultyOps;
using ct::test::ReadAll;
namespace fs = std::filesystem;

TEST(SetAsideName, RoundTripAndOtherNames) {
    EXPECT_EQ(ct::SetAsideName("FOTOS", 1), ".FOTOS.idx.reread");
    EXPECT_EQ(ct::SetAsideName("Disc 12", 2), ".Disc 12.idx.reread2");
    std::string label;
    EXPECT_TRUE(ct::IsSetAsideName(".a.idx.reread.idx.reread3", &label));
    EXPECT_EQ(label, "a.idx.reread");
    // A label as long as a name allows keeps its set-aside name as short as "<label>.idx".
    const std::string longest(251, 'L');
    EXPECT_EQ(ct::SetAsideName(longest), "." + longest + ".rr");
    EXPECT_TRUE(ct::IsSetAsideName("." + longest + ".rr", &label));
    EXPECT_EQ(label, longest);
    EXPECT_FALSE(ct::IsSetAsideName(".x.rr"));
    for (const char* name : {"FOTOS.idx", ".FOTOS.idx", "FOTOS.idx.reread", ".x.IDX.REREAD", ".x.idx.reread.part"})
        EXPECT_FALSE(ct::IsSetAsideName(name)) << name;
}

class Reread : public ::testing::Test {
protected:
    ct::test::Scratch dir;
    std::string data = dir.Mkdir("data");
    FaultyOps ops;
    ct::DiscSource& source = ct::SystemDiscSource();
    std::string At(const std::string& rel) { return data + "/" + rel; }
};

TEST_F(Reread, SetAsideAndRestoreUnchanged) {
    dir.Write("data/FOTOS.idx", "old");
    dir.Write("data/.FOTOS.idx.reread", "older");  // an older one is never replaced
    SetAsideFile file;
    ct::Failure error;
    ASSERT_TRUE(ct::SetAside(ops, data, "FOTOS", file, &error)) << ct::FailureText(error, 10000);
    EXPECT_EQ(file.path, At(".FOTOS.idx.reread2"));
    EXPECT_FALSE(fs::exists(At("FOTOS.idx")));
    EXPECT_FALSE(ct::LabelInUse(source, data, "FOTOS"));  // the add dialog lets the disc's own label pass
    EXPECT_EQ(ct::Restore(source, ops, data, file, &error), RestoreResult::Restored);
    EXPECT_EQ(ReadAll(At("FOTOS.idx")), "old");
    EXPECT_EQ(ReadAll(At(".FOTOS.idx.reread")), "older");
}

// Each failure comes back as its code, the file and the system's reason, so
// that the window can word it in the user's language.
TEST_F(Reread, FailuresChangeNothingAndSayWhy) {
    SetAsideFile file;
    ct::Failure aside, restore, discard;
    EXPECT_FALSE(ct::SetAside(ops, data, "FOTOS", file, &aside));  // no catalogue
    dir.Write("data/FOTOS.idx", "old");
    FaultyOps failing(Fault::Rename), undeletable(Fault::Remove);
    ct::Failure renamed;
    EXPECT_FALSE(ct::SetAside(failing, data, "FOTOS", file, &renamed));
    ASSERT_TRUE(ct::SetAside(ops, data, "FOTOS", file, nullptr));
    EXPECT_EQ(ct::Restore(source, failing, data, file, &restore), RestoreResult::Failed);
    EXPECT_FALSE(ct::Discard(undeletable, file, &discard));
    EXPECT_EQ(ReadAll(file.path), "old");
    struct Row {
        const char* step;
        ct::Failure got;
        ct::FailCode code;
        std::string path, other;
        int sysError;
    } rows[] = {
        {"missing", aside, ct::FailCode::NotFound, At("FOTOS.idx"), "", 0},
        {"set aside", renamed, ct::FailCode::SetAside, At("FOTOS.idx"), "", EIO},
        {"restore", restore, ct::FailCode::Rename, file.path, At("FOTOS.idx"), EIO},
        {"discard", discard, ct::FailCode::Remove, file.path, "", EIO},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(r.got.code, r.code) << r.step;
        EXPECT_EQ(r.got.path, r.path) << r.step;
        EXPECT_EQ(r.got.other, r.other) << r.step;
        EXPECT_EQ(r.got.sysError, r.sysError) << r.step;
    }
}

TEST_F(Reread, LabelTakenMeanwhileKeepsTheSetAsideFile) {
    dir.Write("data/FOTOS.idx", "old");
    SetAsideFile file;
    ASSERT_TRUE(ct::SetAside(ops, data, "FOTOS", file, nullptr));
    dir.Write("data/sub/FOTOS.idx", "new");
    EXPECT_EQ(ct::Restore(source, ops, data, file, nullptr), RestoreResult::LabelTaken);
    EXPECT_EQ(ReadAll(file.path), "old");
    EXPECT_TRUE(ct::Discard(ops, file, nullptr));
    EXPECT_FALSE(fs::exists(file.path));
    EXPECT_EQ(ReadAll(At("sub/FOTOS.idx")), "new");
}

TEST_F(Reread, LeftoversOfACrashComeBack) {
    dir.Write("data/.A.idx.reread", "a");
    dir.Write("data/sub/.B.idx.reread", "b");  // restored in its own folder
    dir.Write("data/.C.idx.reread", "c-old");
    dir.Write("data/C.idx", "c-new");          // label taken: stays aside
    dir.Write("data/.F.idx.reread.part", "scratch");
    std::map<std::string, RestoreResult> byPath;
    for (const auto& outcome : ct::RestoreLeftovers(source, ops, data)) byPath[outcome.file.path] = outcome.result;
    EXPECT_EQ(byPath, (std::map<std::string, RestoreResult>{{At(".A.idx.reread"), RestoreResult::Restored},
                                                            {At("sub/.B.idx.reread"), RestoreResult::Restored},
                                                            {At(".C.idx.reread"), RestoreResult::LabelTaken}}));
    EXPECT_EQ(ReadAll(At("A.idx")), "a");
    EXPECT_EQ(ReadAll(At("sub/B.idx")), "b");
    EXPECT_EQ(ReadAll(At("C.idx")), "c-new");
    EXPECT_EQ(ReadAll(At(".F.idx.reread.part")), "scratch");
    EXPECT_TRUE(ct::RestoreLeftovers(source, ops, dir / "missing").empty());
}

}  // namespace
