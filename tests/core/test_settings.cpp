// CT.ini: what each kind of file reads as, and that a save leaves exactly the
// three lines or, when it fails, the old file.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>

#include "core/settings.h"
#include "support/faultyops.h"
#include "support/scratch.h"

namespace fs = std::filesystem;

namespace {

using ct::test::ReadAll;

class SettingsTest : public ::testing::Test {
protected:
    ct::test::Scratch scratch_;
    fs::path folder_ = scratch_.Path();

    std::string Folder() const { return folder_.string(); }
    void WriteIni(const std::string& bytes) { std::ofstream(folder_ / "CT.ini", std::ios::binary) << bytes; }
    std::string Ini() const { return ReadAll(folder_ / "CT.ini"); }

};

struct LoadCase {
    const char* name;
    std::optional<std::string> file;  // nullopt: no CT.ini at all
    bool firstRun;
    std::int16_t language;
    const char* drive;
    const char* dataFolder;  // nullptr: the default, <folder>/Daten
};

TEST_F(SettingsTest, WhatEachFileReadsAs) {
    const std::vector<LoadCase> cases = {
        {"marker ignores the other lines", "-1\r\nD\r\n/elsewhere\r\n", true, 0, "C", nullptr},
        {"no file", std::nullopt, true, 0, "C", nullptr},
        {"two lines only", "10000\r\nD\r\n", true, 0, "C", nullptr},
        {"German", "0\r\nC\r\n/data\r\n", false, 0, "C", "/data"},
        {"English", "10000\r\n/media/cdrom\r\n/home/u/Kataloge\r\n", false, 10000, "/media/cdrom",
         "/home/u/Kataloge"},
        {"marker with more behind it is a number", "-1x\r\nD\r\n/d\r\n", false, -1, "D", "/d"},
        {"beyond 16 bits is held at the top", "99999\r\nD\r\n/d\r\n", false, 32767, "D", "/d"},
        {"last line without line end", "0\r\nD\r\n/d", false, 0, "D", "/d"},
        {"lines taken whole, blanks and all", "0\r\n D \r\n/a b/ \r\n", false, 0, " D ", "/a b/ "},
        {"Windows-1252 data folder", "0\r\nD\r\n/Gr\xF6\xDF" "e\r\n", false, 0, "D", "/Größe"},
    };
    for (const LoadCase& c : cases) {
        fs::remove(folder_ / "CT.ini");
        if (c.file) WriteIni(*c.file);
        const ct::LoadedSettings loaded = ct::LoadSettings(Folder());
        EXPECT_EQ(loaded.firstRun, c.firstRun) << c.name;
        EXPECT_EQ(loaded.settings.Language, c.language) << c.name;
        EXPECT_EQ(loaded.settings.DriveLetter, c.drive) << c.name;
        EXPECT_EQ(loaded.settings.DataFolder, c.dataFolder ? std::string(c.dataFolder)
                                                           : ct::DefaultDataFolder(Folder()))
            << c.name;
    }
}

// Regression: a folder in the place of CT.ini made the reader throw, and the
// program died before its window appeared.
TEST_F(SettingsTest, AFolderNamedCtIniIsAFirstRun) {
    std::filesystem::create_directory(ct::IniPath(Folder()));
    const ct::LoadedSettings loaded = ct::LoadSettings(Folder());
    EXPECT_TRUE(loaded.firstRun);
    EXPECT_EQ(loaded.settings.DataFolder, ct::DefaultDataFolder(Folder()));
}

TEST_F(SettingsTest, SavingTwiceLeavesExactlyThreeLines) {
    WriteIni("-1\r\n");
    const ct::Settings s{10000, "/media/cdrom", "/home/u/Kataloge"};
    std::string error;
    ASSERT_TRUE(ct::SaveSettings(ct::SystemFileOps(), Folder(), s, &error)) << error;
    ASSERT_TRUE(ct::SaveSettings(ct::SystemFileOps(), Folder(), s, &error)) << error;
    EXPECT_EQ(Ini(), "10000\r\n/media/cdrom\r\n/home/u/Kataloge\r\n");  // reads back as the "English" row above
}

TEST_F(SettingsTest, FailedSaveKeepsTheOldFile) {
    const std::string old = "0\r\nC\r\n/old\r\n";
    for (auto fail : {ct::test::Fault::Create, ct::test::Fault::Write, ct::test::Fault::Rename}) {
        WriteIni(old);
        ct::test::FaultyOps ops(fail);
        std::string error;
        EXPECT_FALSE(ct::SaveSettings(ops, Folder(), ct::Settings{10000, "D", "/new"}, &error));
        EXPECT_FALSE(error.empty());
        EXPECT_EQ(Ini(), old);
        // Nothing but CT.ini is left in the program folder: no scratch file.
        int files = 0;
        for (const auto& entry : fs::directory_iterator(folder_)) files += entry.is_regular_file();
        EXPECT_EQ(files, 1);
    }
}

}  // namespace
