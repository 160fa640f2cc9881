#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "core/adddisc.h"
#include "core/catalogue.h"
#include "platform/walk.h"

namespace fs = std::filesystem;

namespace {

enum class Fault { None, Create, Write, Sync, Close, Rename };

// Files in memory, with a fault that can be put under any step of a write,
// and a log of what was done in which order.
class MemoryFiles : public ct::FileOps {
public:
    std::map<std::string, std::string> files;
    std::vector<std::string> log;
    Fault fault = Fault::None;

    class Out : public ct::OutFile {
    public:
        Out(MemoryFiles& fs, std::string path) : fs_(fs), path_(std::move(path)) {}
        bool Write(std::string_view bytes) override {
            if (fs_.fault == Fault::Write) {
                fs_.files[path_].append(bytes.substr(0, bytes.size() / 2));  // half of it landed
                return false;
            }
            fs_.files[path_].append(bytes);
            return true;
        }
        bool Sync() override { return fs_.fault != Fault::Sync; }
        bool Close() override { return fs_.fault != Fault::Close; }

    private:
        MemoryFiles& fs_;
        std::string path_;
    };

    std::unique_ptr<ct::OutFile> Create(const std::string& path, std::string* error) override {
        log.push_back("create " + path);
        if (fault == Fault::Create) {
            if (error) *error = "No space left on device";
            return nullptr;
        }
        files[path].clear();
        return std::make_unique<Out>(*this, path);
    }
    bool Rename(const std::string& from, const std::string& to, std::string* error) override {
        log.push_back("rename " + from + " " + to);
        if (fault == Fault::Rename || !files.count(from)) {
            if (error) *error = "Read-only file system";
            return false;
        }
        files[to] = files[from];
        files.erase(from);
        return true;
    }
    bool Copy(const std::string&, const std::string&, std::string*) override { return false; }
    bool Remove(const std::string& path, std::string*) override {
        log.push_back("remove " + path);
        return files.erase(path) > 0;
    }
    bool Exists(const std::string& path) override { return files.count(path) > 0; }
    std::FILE* OpenRead(const std::string& path, ct::Failure*) override {
        std::string& content = files[path];
        return content.empty() ? std::fopen("/dev/null", "rb") : fmemopen(content.data(), content.size(), "rb");
    }
    bool SameFileSystem(const std::string&, const std::string&) override { return true; }
};

// A disc in memory; the data folder is whatever the files hold below it, so
// a catalogue just written counts as in use at the next add.
class FakeDisc : public ct::DiscSource {
public:
    FakeDisc(MemoryFiles& files, std::string dataFolder) : files_(files), data_(std::move(dataFolder)) {}
    ct::WalkList folders, files;
    ct::VolumeInfo volume;
    bool volumeKnown = true;
    std::vector<std::string> log;

    void WalkFolder(const std::string& path, ct::WalkList& f, ct::WalkList& fi,
                    const std::function<void(std::size_t)>& progress) override {
        log.push_back("walk " + path);
        if (path == data_) {
            for (const auto& [name, content] : files_.files)
                if (name.rfind(data_ + "/", 0) == 0) fi.push_back({name, ct::Fixed{}, "A", "t"});
            return;
        }
        f.insert(f.end(), folders.begin(), folders.end());
        fi.insert(fi.end(), files.begin(), files.end());
        if (progress) progress(folders.size() + files.size());
    }
    void ReadVolumeInfo(const std::string& root, ct::VolumeInfo& v) override {
        log.push_back("volume " + root);
        if (volumeKnown) v = volume;
    }

private:
    MemoryFiles& files_;
    std::string data_;
};

class AddDiscTest : public ::testing::Test {
protected:
    MemoryFiles ops;
    FakeDisc disc{ops, "/data"};

    void SetUp() override {
        disc.volume.Size = ct::Fixed::FromInt(654311424);
        disc.volume.SerialNumber = -1029197328;
        disc.volume.FileSystem = "CDFS";
        disc.volume.ClusterCount = 319488;
        disc.volume.SectorsPerCluster = 1;
        disc.volume.BytesPerSector = 2048;
        disc.volume.VolumeName = "PHOTOS";
        disc.folders = {{"/media/cd/Bilder", ct::Fixed{}, "R", "14.03.2003 09:12:40"}};
        disc.files = {{"/media/cd/Bilder/index.htm", ct::Fixed::FromInt(2310), "R", "14.03.2003 09:12:40"},
                      {"/media/cd/liesmich.txt", ct::Fixed::FromInt(1024), "R", "14.03.2003 09:12:40"}};
    }
    ct::AddOutcome Add(const std::string& label, const std::string& description = "") {
        ct::AddRequest r;
        r.root = "/media/cd";
        r.label = label;
        r.description = description;
        r.dataFolder = "/data";
        return ct::AddDisc(r, disc, ops);
    }
};

TEST_F(AddDiscTest, WritesTheCatalogueUnderTheLabel) {
    const ct::AddOutcome o = Add("Photos", "Photos 2003");
    ASSERT_EQ(o.result, ct::AddResult::Added) << ct::FailureText(o.failure, 10000);
    EXPECT_EQ(o.label, "Photos");
    EXPECT_EQ(o.folders, 1u);
    EXPECT_EQ(o.files, 2u);
    EXPECT_EQ(o.cataloguePath, "/data/Photos.idx");
    EXPECT_EQ(ops.files.size(), 1u);  // no scratch file left beside it
    EXPECT_EQ(ops.files["/data/Photos.idx"],
              "654311424|-1029197328|CDFS|319488|1|2048|Photos 2003\r\n"
              "\r\n"
              "\\Bilder|R|14.03.2003 09:12:40|\r\n"
              "\r\n"
              "\\Bilder\\index.htm|2310|R|14.03.2003 09:12:40|\r\n"
              "\\liesmich.txt|1024|R|14.03.2003 09:12:40|\r\n");
}

TEST_F(AddDiscTest, StepsInOrderAndNeverHalfAFileUnderTheLabel) {
    Add("Photos");
    // The catalogue is written as the disc is read, but only into scratch
    // files; the label gets the file only once it is whole.
    EXPECT_EQ(disc.log, (std::vector<std::string>{"walk /data", "volume /media/cd", "walk /media/cd"}));
    ASSERT_EQ(ops.log.size(), 4u);
    EXPECT_EQ(ops.log[3].substr(0, 16), "rename /data/.ct");
    EXPECT_EQ(ops.log[3].substr(ops.log[3].size() - 26), ".idx.part /data/Photos.idx");
}

TEST_F(AddDiscTest, EmptyLabelIsRefusedBeforeAnythingIsRead) {
    const ct::AddOutcome o = Add("", "x  y");
    EXPECT_EQ(o.result, ct::AddResult::EmptyLabel);
    EXPECT_EQ(o.description, "x  y");  // not yet normalised: the box stays as typed
    EXPECT_TRUE(disc.log.empty());
    EXPECT_TRUE(ops.log.empty());
}

struct LabelRow {
    const char* name;
    const char* typed;
    const char* label;
    const char* path;
};

class AddDiscLabel : public AddDiscTest, public ::testing::WithParamInterface<LabelRow> {};

TEST_P(AddDiscLabel, CleanedAndTrimmed) {
    const ct::AddOutcome o = Add(GetParam().typed);
    ASSERT_EQ(o.result, ct::AddResult::Added);
    EXPECT_EQ(o.label, GetParam().label);
    EXPECT_EQ(o.cataloguePath, GetParam().path);
    EXPECT_TRUE(ops.files.count(GetParam().path));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AddDiscLabel,
    ::testing::Values(LabelRow{"ColonAndSlash", " CD: 1/2 ", "CD 12", "/data/CD 12.idx"},
                      // Both pass the emptiness test on the raw text.
                      LabelRow{"OnlyBlanks", "   ", "", "/data/.idx"},
                      LabelRow{"OnlyRemovedCharacters", "***", "", "/data/.idx"},
                      LabelRow{"PathCantEscapeTheDataFolder", "../../etc/x", "....etcx",
                               "/data/....etcx.idx"}),
    [](const auto& info) { return std::string(info.param.name); });

struct InUseRow {
    const char* name;
    const char* existing;
    bool inUse;
};

class AddDiscInUse : public AddDiscTest, public ::testing::WithParamInterface<InUseRow> {};

TEST_P(AddDiscInUse, ComparedExactlyWithTheCataloguesOnDisk) {
    ops.files[GetParam().existing] = "old";
    const ct::AddOutcome o = Add("Photos");
    if (GetParam().inUse) {
        EXPECT_EQ(o.result, ct::AddResult::LabelInUse);
        EXPECT_EQ(ops.files.size(), 1u);
        EXPECT_EQ(ops.files[GetParam().existing], "old");
        EXPECT_EQ(disc.log, std::vector<std::string>{"walk /data"});  // the disc wasn't read
    } else {
        EXPECT_EQ(o.result, ct::AddResult::Added);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AddDiscInUse,
    ::testing::Values(InUseRow{"SameLabel", "/data/Photos.idx", true},
                      InUseRow{"SameLabelInSubfolder", "/data/2003/Photos.idx", true},
                      InUseRow{"OtherCase", "/data/photos.idx", false},
                      InUseRow{"UpperCaseExtensionIsNoCatalogue", "/data/Photos.IDX", false},
                      InUseRow{"LeftoverScratchFile", "/data/Photos.idx.part", false},
                      InUseRow{"LongerLabel", "/data/Photos 2.idx", false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(AddDiscTest, SecondPressWithTheSameLabelIsRefused) {
    EXPECT_EQ(Add("Photos").result, ct::AddResult::Added);
    EXPECT_EQ(Add("Photos").result, ct::AddResult::LabelInUse);
}

TEST_F(AddDiscTest, LabelIsCheckedAfterCleaning) {
    ops.files["/data/CD 12.idx"] = "old";
    EXPECT_EQ(Add("CD: 1/2").result, ct::AddResult::LabelInUse);
}

TEST_F(AddDiscTest, DescriptionIsStoredAsOneNormalisedLine) {
    const ct::AddOutcome o = Add("Photos", "Urlaub\r\nan der  See   ");
    EXPECT_EQ(o.description, "Urlaub an der See  ");
    EXPECT_EQ(ops.files["/data/Photos.idx"].substr(0, ops.files["/data/Photos.idx"].find("\r\n")),
              "654311424|-1029197328|CDFS|319488|1|2048|Urlaub an der See  ");
}

TEST_F(AddDiscTest, DriveWithoutADiscGivesTheZeroCatalogue) {
    disc.volumeKnown = false;
    disc.folders.clear();
    disc.files.clear();
    const ct::AddOutcome o = Add("Leer", "nichts");
    ASSERT_EQ(o.result, ct::AddResult::Added);
    EXPECT_EQ(ops.files["/data/Leer.idx"], "0|0||0|0|0|nichts\r\n\r\n\r\n");
}

TEST_F(AddDiscTest, ProgressIsHeard) {
    std::size_t heard = 0;
    ct::AddRequest r;
    r.root = "/media/cd";
    r.label = "P";
    r.dataFolder = "/data";
    r.progress = [&heard](std::size_t n) { heard = n; };
    ct::AddDisc(r, disc, ops);
    EXPECT_EQ(heard, 3u);
}

struct FaultRow {
    const char* name;
    Fault fault;
    ct::FailCode code;
};

class AddDiscWriteFault : public AddDiscTest, public ::testing::WithParamInterface<FaultRow> {};

TEST_P(AddDiscWriteFault, NothingLeftUnderTheLabel) {
    ops.fault = GetParam().fault;
    const ct::AddOutcome o = Add("Photos");
    EXPECT_EQ(o.result, ct::AddResult::WriteFailed);
    EXPECT_EQ(o.failure.code, GetParam().code);
    EXPECT_EQ(o.failure.path, "/data/Photos.idx");
    EXPECT_TRUE(ops.files.empty());  // neither the catalogue nor its scratch file
}

INSTANTIATE_TEST_SUITE_P(
    Rows, AddDiscWriteFault,
    ::testing::Values(FaultRow{"Create", Fault::Create, ct::FailCode::CreateScratch},
                      FaultRow{"Write", Fault::Write, ct::FailCode::WriteScratch},
                      FaultRow{"Sync", Fault::Sync, ct::FailCode::WriteScratch},
                      FaultRow{"Close", Fault::Close, ct::FailCode::WriteScratch},
                      FaultRow{"Rename", Fault::Rename, ct::FailCode::Replace}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(WholeFile, FailedRenameKeepsTheOldFile) {
    MemoryFiles ops;
    ops.files["/d/a.idx"] = "old";
    ops.fault = Fault::Rename;
    EXPECT_TRUE(ct::WriteWholeFile(ops, "/d/a.idx", "new"));
    EXPECT_EQ(ops.files.size(), 1u);
    EXPECT_EQ(ops.files["/d/a.idx"], "old");
    ops.fault = Fault::None;
    EXPECT_FALSE(ct::WriteWholeFile(ops, "/d/a.idx", "new"));
    EXPECT_EQ(ops.files["/d/a.idx"], "new");
}

TEST(WholeFile, FolderAndName) {
    EXPECT_EQ(ct::FolderOf("/data/sub/a.idx"), "/data/sub");
    EXPECT_EQ(ct::NameOf("/data/sub/a.idx"), "a.idx");
    EXPECT_EQ(ct::FolderOf("a.idx"), "");
    EXPECT_EQ(ct::NameOf("a.idx"), "a.idx");
    EXPECT_EQ(ct::FolderOf("/a.idx"), "/");
}

// The real walker and the real file operations on a real tree: the walked
// names of the platform and the catalogue paths of the core fit together.
TEST(AddDiscOnDisk, RealWalkOfATree) {
    std::random_device rd;
    const fs::path base = fs::temp_directory_path() / ("cartulon-add-" + std::to_string(rd()));
    fs::create_directories(base / "disc/A/B");
    fs::create_directories(base / "data");
    std::ofstream(base / "disc/A/B/f.txt", std::ios::binary) << "12345";

    ct::AddRequest r;
    r.root = (base / "disc").string() + "/";
    r.label = "Tree";
    r.dataFolder = (base / "data").string();
    const ct::AddOutcome o = ct::AddDisc(r, ct::SystemDiscSource(), ct::SystemFileOps());
    ASSERT_EQ(o.result, ct::AddResult::Added) << ct::FailureText(o.failure, 10000);

    std::ifstream in(o.cataloguePath, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    const std::string s = text.str();
    std::vector<std::string> lines;
    for (std::size_t at = 0, eol; (eol = s.find("\r\n", at)) != std::string::npos; at = eol + 2)
        lines.push_back(s.substr(at, eol - at));
    ASSERT_EQ(lines.size(), 6u) << s;
    EXPECT_EQ(lines[1], "");
    EXPECT_EQ(ct::FirstField(lines[2]), "\\A");
    EXPECT_EQ(ct::FirstField(lines[3]), "\\A\\B");
    EXPECT_EQ(lines[4], "");
    const ct::FileRecord f = ct::SplitFile(lines[5]);
    EXPECT_EQ(f.Path, "\\A\\B\\f.txt");
    EXPECT_EQ(f.Size, "5");
    EXPECT_EQ(f.Time.size(), 19u);
    EXPECT_EQ(ct::LabelInUse(ct::SystemDiscSource(), r.dataFolder, "Tree"), true);
    EXPECT_EQ(ct::LabelInUse(ct::SystemDiscSource(), r.dataFolder, "tree"), false);
    EXPECT_FALSE(fs::exists(o.cataloguePath + ".part"));

    // A data folder that can't be written to: nothing under the label.
    r.label = "Second";
    r.dataFolder = (base / "missing").string();
    const ct::AddOutcome failed = ct::AddDisc(r, ct::SystemDiscSource(), ct::SystemFileOps());
    EXPECT_EQ(failed.result, ct::AddResult::WriteFailed);
    EXPECT_NE(failed.failure.path.find("missing/Second.idx"), std::string::npos) << failed.failure.path;
    fs::remove_all(base);
}

}  // namespace
