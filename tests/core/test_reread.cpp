// Setting a catalogue aside for a re-read and bringing it back, over an
// in-memory file system that can be told to fail.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "core/reread.h"

namespace {

using ct::RestoreResult;
using ct::SetAsideFile;

// Files as path -> content; folders are implied by the paths.
class MemoryDisk : public ct::FileOps, public ct::DiscSource {
public:
    std::map<std::string, std::string> files;
    std::set<std::string> failRename;  // source paths whose rename fails
    std::set<std::string> failRemove;

    // FileOps
    std::unique_ptr<ct::OutFile> Create(const std::string&, std::string* error) override {
        if (error) *error = "not used here";
        return nullptr;
    }
    bool Rename(const std::string& from, const std::string& to, std::string* error) override {
        if (failRename.count(from) || !files.count(from)) {
            if (error) *error = "rename refused: " + from;
            return false;
        }
        files[to] = files[from];
        files.erase(from);
        return true;
    }
    bool Copy(const std::string&, const std::string&, std::string*) override { return false; }
    bool Remove(const std::string& path, std::string* error) override {
        if (failRemove.count(path) || !files.erase(path)) {
            if (error) *error = "remove refused: " + path;
            return false;
        }
        return true;
    }
    bool Exists(const std::string& path) override { return files.count(path) > 0; }
    bool SameFileSystem(const std::string&, const std::string&) override { return true; }

    // DiscSource: every file below `path`, at any depth.
    void WalkFolder(const std::string& path, ct::WalkList&, ct::WalkList& found,
                    const std::function<void(std::size_t)>&) override {
        for (const auto& [name, content] : files)
            if (name.starts_with(path + "/")) found.push_back(ct::WalkRecord{name, {}, {}, {}});
    }
    void ReadVolumeInfo(const std::string&, ct::VolumeInfo&) override {}
};

const std::string kData = "/data";

TEST(SetAsideName, RoundTrip) {
    struct Row {
        const char* name;
        std::string label;
        int number;
        const char* expected;
    };
    const Row rows[] = {
        {"plain", "FOTOS", 1, ".FOTOS.idx.reread"},
        {"second", "FOTOS", 2, ".FOTOS.idx.reread2"},
        {"empty label", "", 1, "..idx.reread"},
        {"label ending in digits", "Disc 12", 1, ".Disc 12.idx.reread"},
        {"label holding the suffix", "a.idx.reread", 3, ".a.idx.reread.idx.reread3"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string name = ct::SetAsideName(row.label, row.number);
        EXPECT_EQ(name, row.expected);
        std::string label = "?";
        EXPECT_TRUE(ct::IsSetAsideName(name, &label));
        EXPECT_EQ(label, row.label);
    }
}

TEST(SetAsideName, OtherNamesAreNot) {
    for (const char* name : {"FOTOS.idx", ".FOTOS.idx", "FOTOS.idx.reread", ".idx.reread", ".x.IDX.REREAD",
                             ".x.idx.reread.part", "temp.idx", ""}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(ct::IsSetAsideName(name));
    }
}

TEST(SetAside, HidesTheCatalogueAndRestoreBringsItBackUnchanged) {
    MemoryDisk disk;
    disk.files[kData + "/FOTOS.idx"] = "header\r\n\r\n";
    SetAsideFile file;
    std::string error;
    ASSERT_TRUE(ct::SetAside(disk, kData, "FOTOS", file, &error)) << error;
    EXPECT_EQ(file.path, "/data/.FOTOS.idx.reread");
    EXPECT_EQ(file.home, "/data/FOTOS.idx");
    EXPECT_FALSE(disk.Exists("/data/FOTOS.idx"));
    // The add dialog's check now lets the disc's own label pass.
    EXPECT_FALSE(ct::LabelInUse(disk, kData, "FOTOS"));

    EXPECT_EQ(ct::Restore(disk, disk, kData, file, &error), RestoreResult::Restored);
    EXPECT_EQ(disk.files, (std::map<std::string, std::string>{{"/data/FOTOS.idx", "header\r\n\r\n"}}));
}

TEST(SetAside, MissingCatalogueChangesNothing) {
    MemoryDisk disk;
    disk.files[kData + "/sub/FOTOS.idx"] = "x";  // listed, but not where the path rule looks
    SetAsideFile file;
    std::string error;
    EXPECT_FALSE(ct::SetAside(disk, kData, "FOTOS", file, &error));
    EXPECT_NE(error.find("/data/FOTOS.idx"), std::string::npos) << error;
    EXPECT_EQ(disk.files.size(), 1u);
}

TEST(SetAside, RenameFailureChangesNothing) {
    MemoryDisk disk;
    disk.files[kData + "/FOTOS.idx"] = "x";
    disk.failRename.insert(kData + "/FOTOS.idx");
    SetAsideFile file;
    std::string error;
    EXPECT_FALSE(ct::SetAside(disk, kData, "FOTOS", file, &error));
    EXPECT_NE(error.find("/data/FOTOS.idx"), std::string::npos) << error;
    EXPECT_TRUE(disk.Exists(kData + "/FOTOS.idx"));
}

TEST(SetAside, AnOlderSetAsideFileIsNeverReplaced) {
    MemoryDisk disk;
    disk.files[kData + "/FOTOS.idx"] = "new";
    disk.files[kData + "/.FOTOS.idx.reread"] = "older";
    SetAsideFile file;
    ASSERT_TRUE(ct::SetAside(disk, kData, "FOTOS", file, nullptr));
    EXPECT_EQ(file.path, "/data/.FOTOS.idx.reread2");
    EXPECT_EQ(disk.files["/data/.FOTOS.idx.reread"], "older");
    EXPECT_EQ(disk.files["/data/.FOTOS.idx.reread2"], "new");
}

TEST(Restore, KeepsTheSetAsideFileWhenTheLabelWasTakenMeanwhile) {
    struct Row {
        const char* name;
        std::string newcomer;
        RestoreResult expected;
    };
    const Row rows[] = {
        {"same place", "/data/FOTOS.idx", RestoreResult::LabelTaken},
        {"in a sub-folder", "/data/old/FOTOS.idx", RestoreResult::LabelTaken},
        {"other case is another label", "/data/fotos.idx", RestoreResult::Restored},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        MemoryDisk disk;
        disk.files[kData + "/FOTOS.idx"] = "old";
        SetAsideFile file;
        ASSERT_TRUE(ct::SetAside(disk, kData, "FOTOS", file, nullptr));
        disk.files[row.newcomer] = "new";
        EXPECT_EQ(ct::Restore(disk, disk, kData, file, nullptr), row.expected);
        EXPECT_EQ(disk.files[row.newcomer], "new");
        if (row.expected == RestoreResult::LabelTaken)
            EXPECT_EQ(disk.files[file.path], "old");
        else
            EXPECT_EQ(disk.files[file.home], "old");
    }
}

TEST(Restore, RenameFailureKeepsTheSetAsideFile) {
    MemoryDisk disk;
    disk.files[kData + "/FOTOS.idx"] = "old";
    SetAsideFile file;
    ASSERT_TRUE(ct::SetAside(disk, kData, "FOTOS", file, nullptr));
    disk.failRename.insert(file.path);
    std::string error;
    EXPECT_EQ(ct::Restore(disk, disk, kData, file, &error), RestoreResult::Failed);
    EXPECT_NE(error.find("/data/.FOTOS.idx.reread"), std::string::npos) << error;
    EXPECT_EQ(disk.files[file.path], "old");
}

TEST(Discard, RemovesOnlyTheSetAsideFile) {
    MemoryDisk disk;
    disk.files[kData + "/FOTOS.idx"] = "old";
    SetAsideFile file;
    ASSERT_TRUE(ct::SetAside(disk, kData, "FOTOS", file, nullptr));
    disk.files[kData + "/FOTOS.idx"] = "re-read";
    EXPECT_TRUE(ct::Discard(disk, file, nullptr));
    EXPECT_EQ(disk.files, (std::map<std::string, std::string>{{"/data/FOTOS.idx", "re-read"}}));

    std::string error;
    EXPECT_FALSE(ct::Discard(disk, file, &error));  // already gone
    EXPECT_FALSE(error.empty());
}

TEST(RestoreLeftovers, PutsBackWhatACrashLeftBehind) {
    MemoryDisk disk;
    disk.files["/data/.A.idx.reread"] = "a";
    disk.files["/data/sub/.B.idx.reread"] = "b";        // restored in its own folder
    disk.files["/data/.C.idx.reread"] = "c-old";
    disk.files["/data/C.idx"] = "c-new";                 // label taken: stays aside
    disk.files["/data/.D.idx.reread"] = "d1";
    disk.files["/data/.D.idx.reread2"] = "d2";           // second of a label: stays aside
    disk.files["/data/E.idx"] = "e";                     // untouched
    disk.files["/data/.F.idx.reread.part"] = "scratch";  // not a set-aside file
    disk.files["/other/.G.idx.reread"] = "g";            // outside the data folder

    const auto outcomes = ct::RestoreLeftovers(disk, disk, kData);

    std::map<std::string, RestoreResult> byPath;
    for (const auto& outcome : outcomes) byPath[outcome.file.path] = outcome.result;
    EXPECT_EQ(byPath, (std::map<std::string, RestoreResult>{
                          {"/data/.A.idx.reread", RestoreResult::Restored},
                          {"/data/sub/.B.idx.reread", RestoreResult::Restored},
                          {"/data/.C.idx.reread", RestoreResult::LabelTaken},
                          {"/data/.D.idx.reread", RestoreResult::Restored},
                          {"/data/.D.idx.reread2", RestoreResult::LabelTaken},
                      }));
    EXPECT_EQ(disk.files, (std::map<std::string, std::string>{
                              {"/data/A.idx", "a"},
                              {"/data/sub/B.idx", "b"},
                              {"/data/.C.idx.reread", "c-old"},
                              {"/data/C.idx", "c-new"},
                              {"/data/D.idx", "d1"},
                              {"/data/.D.idx.reread2", "d2"},
                              {"/data/E.idx", "e"},
                              {"/data/.F.idx.reread.part", "scratch"},
                              {"/other/.G.idx.reread", "g"},
                          }));
}

TEST(RestoreLeftovers, NothingToDoInAnEmptyOrMissingFolder) {
    MemoryDisk disk;
    EXPECT_TRUE(ct::RestoreLeftovers(disk, disk, kData).empty());
}

}  // namespace
