// Adding a disc: the catalogue written under the cleaned label in one step,
// the label checked against the catalogues on disk, and nothing left under
// the label when any step of the write fails.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/adddisc.h"
#include "core/catalogue.h"
#include "platform/walk.h"
#include "support/faultyops.h"
#include "support/scratch.h"

namespace {

using ct::test::Fault;
using ct::test::FaultyOps;
using ct::test::ReadAll;

// A disc the test describes; the data folder is walked for real, so a
// catalogue just written counts as in use at the next add.
class FakeDisc : public ct::DiscSource {
public:
    ct::WalkList folders = {{"/media/cd/Bilder", ct::Fixed{}, "R", "14.03.2003 09:12:40"}};
    ct::WalkList files = {{"/media/cd/Bilder/index.htm", ct::Fixed::FromInt(2310), "R", "14.03.2003 09:12:40"},
                          {"/media/cd/liesmich.txt", ct::Fixed::FromInt(1024), "R", "14.03.2003 09:12:40"}};
    bool volumeKnown = true;
    std::vector<std::string> log;
    void WalkFolder(const std::string& path, ct::WalkList& f, ct::WalkList& fi,
                    const std::function<void(std::size_t)>& progress) override {
        log.push_back("walk " + path);
        if (path != "/media/cd") return ct::WalkFolder(path, f, fi, progress);
        f = folders;
        fi = files;
    }
    void ReadVolumeInfo(const std::string& root, ct::VolumeInfo& v) override {
        log.push_back("volume " + root);
        if (!volumeKnown) return;
        v.Size = ct::Fixed::FromInt(654311424);
        v.SerialNumber = -1029197328;
        v.FileSystem = "CDFS";
        v.ClusterCount = 319488;
        v.SectorsPerCluster = 1;
        v.BytesPerSector = 2048;
    }
};

class AddDiscTest : public ::testing::Test {
protected:
    ct::test::Scratch dir;
    std::string data = dir.Mkdir("data");
    FaultyOps ops;
    FakeDisc disc;
    ct::AddOutcome Add(const std::string& label, const std::string& description = "") {
        ct::AddRequest r;
        r.root = "/media/cd";
        r.label = label;
        r.description = description;
        r.dataFolder = data;
        return ct::AddDisc(r, disc, ops);
    }
};

TEST_F(AddDiscTest, WritesTheCatalogueUnderTheLabelInOneStep) {
    const ct::AddOutcome o = Add(" Pho:tos ", "Photos\r\n2003  x");
    ASSERT_EQ(o.result, ct::AddResult::Added) << ct::FailureText(o.failure, 10000);
    EXPECT_EQ(o.cataloguePath, data + "/Photos.idx");
    EXPECT_EQ(ReadAll(o.cataloguePath),
              "654311424|-1029197328|CDFS|319488|1|2048|Photos 2003 x\r\n"
              "\r\n"
              "\\Bilder|R|14.03.2003 09:12:40|\r\n"
              "\r\n"
              "\\Bilder\\index.htm|2310|R|14.03.2003 09:12:40|\r\n"
              "\\liesmich.txt|1024|R|14.03.2003 09:12:40|\r\n");
    // Written as the disc is read, but only into scratch files: the label
    // gets the file once it is whole.
    EXPECT_EQ(disc.log, (std::vector<std::string>{"walk " + data, "volume /media/cd", "walk /media/cd"}));
    ASSERT_EQ(ops.log.size(), 4u);
    EXPECT_EQ(ops.log[3].rfind("rename " + data + "/.ct-", 0), 0u) << ops.log[3];
    EXPECT_TRUE(ops.log[3].ends_with(".idx.part " + data + "/Photos.idx")) << ops.log[3];
    EXPECT_EQ(Add("Photos").result, ct::AddResult::LabelInUse);  // a second press
}

TEST_F(AddDiscTest, EmptyLabelIsRefusedBeforeAnythingIsRead) {
    EXPECT_EQ(Add("").result, ct::AddResult::EmptyLabel);
    EXPECT_TRUE(disc.log.empty());
    EXPECT_TRUE(ops.log.empty());
}

TEST_F(AddDiscTest, DriveWithoutADiscGivesTheZeroCatalogue) {
    disc.volumeKnown = false;
    disc.folders.clear();
    disc.files.clear();
    ASSERT_EQ(Add("Leer", "nichts").result, ct::AddResult::Added);
    EXPECT_EQ(ReadAll(data + "/Leer.idx"), "0|0||0|0|0|nichts\r\n\r\n\r\n");
}

struct InUseRow {
    const char* name;
    const char* existing;  // below the data folder
    bool inUse;
};

class AddDiscInUse : public AddDiscTest, public ::testing::WithParamInterface<InUseRow> {};

TEST_P(AddDiscInUse, ComparedExactlyWithTheCataloguesOnDisk) {
    dir.Write(std::string("data/") + GetParam().existing, "old");
    EXPECT_EQ(Add("Photos").result, GetParam().inUse ? ct::AddResult::LabelInUse : ct::AddResult::Added);
    EXPECT_EQ(ReadAll(data + "/" + GetParam().existing), "old");
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AddDiscInUse,
    ::testing::Values(InUseRow{"SameLabel", "Photos.idx", true},
                      InUseRow{"SameLabelInSubfolder", "2003/Photos.idx", true},
                      InUseRow{"OtherCase", "photos.idx", false}),
    [](const auto& info) { return std::string(info.param.name); });

struct FaultRow {
    const char* name;
    Fault fault;
};

class AddDiscWriteFault : public AddDiscTest, public ::testing::WithParamInterface<FaultRow> {};

TEST_P(AddDiscWriteFault, NothingLeftUnderTheLabel) {
    ops.fault = GetParam().fault;
    const ct::AddOutcome o = Add("Photos");
    EXPECT_EQ(o.result, ct::AddResult::WriteFailed);
    EXPECT_EQ(o.failure.path, data + "/Photos.idx");
    EXPECT_TRUE(std::filesystem::is_empty(data));  // neither the catalogue nor its scratch file
}

INSTANTIATE_TEST_SUITE_P(Rows, AddDiscWriteFault,
                         ::testing::Values(FaultRow{"Create", Fault::Create}, FaultRow{"Write", Fault::Write},
                                           FaultRow{"Sync", Fault::Sync}, FaultRow{"Close", Fault::Close},
                                           FaultRow{"Rename", Fault::Rename}),
                         [](const auto& info) { return std::string(info.param.name); });

// The real walker on a real tree: the walked names of the platform and the
// catalogue paths of the core fit together.
TEST(AddDiscOnDisk, RealWalkOfATree) {
    ct::test::Scratch dir;
    dir.Write("disc/A/B/f.txt", "12345");
    ct::AddRequest r;
    r.root = dir / "disc/";
    r.label = "Tree";
    r.dataFolder = dir.Mkdir("data");
    const ct::AddOutcome o = ct::AddDisc(r, ct::SystemDiscSource(), ct::SystemFileOps());
    ASSERT_EQ(o.result, ct::AddResult::Added) << ct::FailureText(o.failure, 10000);
    const std::string s = ReadAll(o.cataloguePath);
    const std::size_t files = s.find("\r\n\r\n\\A\\B\\f.txt|5|");
    ASSERT_NE(files, std::string::npos) << s;
    EXPECT_NE(s.find("\r\n\r\n\\A|"), std::string::npos) << s;
    EXPECT_NE(s.find("\r\n\\A\\B|"), std::string::npos) << s;
    EXPECT_EQ(s.size() - files, std::string("\r\n\r\n\\A\\B\\f.txt|5|").size() + 22 + 2) << s;  // time, "|", CR LF
}

}  // namespace
