// The description rewrite, the label change and the delete: what they change,
// what they leave byte for byte, and that no failure at any step loses the
// catalogue.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <memory>

#include "core/catalogue.h"
#include "core/editing.h"
#include "support/faultyops.h"
#include "support/scratch.h"

namespace fs = std::filesystem;

namespace {

using ct::test::Fault;
using ct::test::FaultyOps;

using ct::test::ReadAll;


// Everything in a folder, by name, so a test sees any file left behind.
std::vector<std::string> Names(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(folder)) names.push_back(e.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string Replaced(std::string text, std::string_view from, std::string_view to) {
    const std::size_t pos = text.find(from);
    EXPECT_NE(pos, std::string::npos) << from;
    if (pos != std::string::npos) text.replace(pos, from.size(), to);
    return text;
}

// One program folder with its Daten; the catalogues lie there too unless a
// test moves the data folder.
class Editing : public ::testing::Test {
protected:
    void SetUp() override {
        program = scratch.Mkdir("prog");
        data = scratch.Mkdir("prog/Daten");
    }
    ct::test::Scratch scratch;
    std::string program, data;
    FaultyOps ops;
};

// A catalogue with every trap in it: a root file and a file of the same name
// in a folder, \a beside \a\b, \Bilder beside \Bilder\Urlaub, a description
// holding '|', lines in Windows-1252, one with a bare LF, one with a bare CR
// (the readers end a line at either), and a last line
// without its CR LF.
const std::string kCatalogue =
    "654311424|-1029197328|CDFS|319488|1|2048|Photos 2003\r\n"
    "\r\n"
    "\\Bilder|R|14.03.2003 09:12:40|\r\n"
    "\\Bilder\\Urlaub|R|14.03.2003 09:12:41|Trip to the coast\r\n"
    "\\a|R|01.01.2000 00:00:00|folder a\r\n"
    "\\a\\b|R|01.01.2000 00:00:00|folder b\r\n"
    "\\B\xFC" "cher|R|01.01.2000 00:00:00|alte B\xFC" "cher\r\n"
    "\\Musik|A|01.01.2000 00:00:00|lf only\n"
    "\\Alt|A|01.01.2000 00:00:00|cr only\r"
    "\r\n"
    "\\Bilder\\index.htm|2310|R|14.03.2003 09:12:40|\r\n"
    "\\Bilder\\Urlaub\\p1.jpg|183442|R|14.03.2003 09:12:41|First day\r\n"
    "\\p1.jpg|5|R|14.03.2003 09:12:40|a|b\r\n"
    "\\Gr\xFC\xDF" "e.txt|7||14.03.2003 09:12:40|Gr\xFC\xDF" "e\r\n"
    "\\liesmich.txt|1024|R|14.03.2003 09:12:40|";

struct RewriteRow {
    const char* name;
    bool isHeader;
    const char* target;
    const char* text;
    const char* oldLine;  // empty: the file stays as it was
    const char* newLine;
};

class RewriteTable : public Editing, public ::testing::WithParamInterface<RewriteRow> {};

TEST_P(RewriteTable, ChangesOnlyTheOneLine) {
    const RewriteRow& row = GetParam();
    scratch.Write("prog/Daten/CD1.idx", kCatalogue);
    std::string error;
    ASSERT_FALSE(ct::DescriptionRewrite(ops, data, "CD1", row.isHeader, row.target, row.text))
        << error;
    const std::string expected =
        *row.oldLine ? Replaced(kCatalogue, row.oldLine, row.newLine) : kCatalogue;
    EXPECT_EQ(ReadAll(data + "/CD1.idx"), expected);
    EXPECT_EQ(Names(data), std::vector<std::string>{"CD1.idx"}) << "no scratch file left";
}

INSTANTIATE_TEST_SUITE_P(
    Catalogue, RewriteTable,
    ::testing::Values(
        RewriteRow{"Header", true, "", "Fotos 2004",
                   "|2048|Photos 2003\r\n", "|2048|Fotos 2004\r\n"},
        RewriteRow{"FolderNotItsPrefix", false, "\\a", "A",
                   "\\a|R|01.01.2000 00:00:00|folder a\r\n", "\\a|R|01.01.2000 00:00:00|A\r\n"},
        RewriteRow{"RootFileNotTheOneInAFolder", false, "\\p1.jpg", "c",
                   "\\p1.jpg|5|R|14.03.2003 09:12:40|a|b\r\n", "\\p1.jpg|5|R|14.03.2003 09:12:40|a|c\r\n"},
        RewriteRow{"LastLineWithoutLineEnd", false, "\\liesmich.txt", "read me",
                   "\\liesmich.txt|1024|R|14.03.2003 09:12:40|",
                   "\\liesmich.txt|1024|R|14.03.2003 09:12:40|read me"},
        RewriteRow{"Windows1252LineStays1252", false, "\\B\xC3\xBC" "cher", "neue B\xC3\xBC" "cher \xE2\x82\xAC \xE6\x97\xA5",
                   "\\B\xFC" "cher|R|01.01.2000 00:00:00|alte B\xFC" "cher\r\n",
                   "\\B\xFC" "cher|R|01.01.2000 00:00:00|neue B\xFC" "cher \x80 ?\r\n"},
        RewriteRow{"NoSuchRecordLeavesFile", false, "\\Bilder\\Urlau", "x", "", ""},
        RewriteRow{"CaseCounts", false, "\\bilder", "x", "", ""}),
    [](const auto& info) { return std::string(info.param.name); });

// --- Faults -------------------------------------------------------------------

struct FaultRow {
    const char* name;
    Fault fault;
    ct::FailCode says;
};

class FaultTable : public Editing, public ::testing::WithParamInterface<FaultRow> {};

TEST_P(FaultTable, CatalogueStaysWholeAndErrorSaysSo) {
    ops.fault = GetParam().fault;
    scratch.Write("prog/Daten/CD1.idx", kCatalogue);
    const ct::Failure failure = ct::DescriptionRewrite(ops, data, "CD1", false, "\\a", "new");
    EXPECT_EQ(ReadAll(data + "/CD1.idx"), kCatalogue);
    EXPECT_EQ(Names(data), std::vector<std::string>{"CD1.idx"}) << "scratch file removed";
    EXPECT_EQ(failure.code, GetParam().says);
    EXPECT_EQ(failure.path, data + "/CD1.idx");
}

INSTANTIATE_TEST_SUITE_P(
    Steps, FaultTable,
    ::testing::Values(FaultRow{"Create", Fault::Create, ct::FailCode::CreateScratch},
                      FaultRow{"Write", Fault::Write, ct::FailCode::WriteScratch},
                      FaultRow{"Rename", Fault::Rename, ct::FailCode::Replace}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(Editing, ReadOnlyCatalogueIsRefusedAndKept) {
    scratch.Write("prog/Daten/CD1.idx", kCatalogue);
    fs::permissions(data + "/CD1.idx", fs::perms::owner_read | fs::perms::group_read);
    EXPECT_EQ(ct::DescriptionRewrite(ops, data, "CD1", true, "", "x").code, ct::FailCode::ReadOnly);
    EXPECT_EQ(ReadAll(data + "/CD1.idx"), kCatalogue);
    EXPECT_EQ(Names(data), std::vector<std::string>{"CD1.idx"});
}

// --- Label change -----------------------------------------------------------------

struct RenameRow {
    const char* name;
    const char* typed;
    ct::RenameResult result;
    const char* label;
};

class RenameTable : public Editing, public ::testing::WithParamInterface<RenameRow> {};

TEST_P(RenameTable, RenamesOrRefusesWithoutLoss) {
    const RenameRow& row = GetParam();
    scratch.Write("prog/Daten/CD1.idx", kCatalogue);
    scratch.Write("prog/Daten/CD2.idx", "other");
    scratch.Write("prog/Daten/Lost.idx", "not in the list");
    const auto outcome = ct::RenameDisc(ops, data, "CD1", row.typed, {"CD1", "CD2"});
    EXPECT_EQ(outcome.result, row.result);
    EXPECT_EQ(outcome.label, row.label);
    EXPECT_EQ(ReadAll(data + "/CD2.idx"), "other");
    EXPECT_EQ(ReadAll(data + "/Lost.idx"), "not in the list");
    if (row.result == ct::RenameResult::Renamed) {
        EXPECT_FALSE(fs::exists(data + "/CD1.idx"));
        EXPECT_EQ(ReadAll(data + "/" + row.label + ".idx"), kCatalogue) << "byte for byte";
    } else {
        EXPECT_EQ(ReadAll(data + "/CD1.idx"), kCatalogue);
        EXPECT_EQ(Names(data).size(), 3u);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Labels, RenameTable,
    ::testing::Values(
        RenameRow{"Renamed", "Fotos 2004", ct::RenameResult::Renamed, "Fotos 2004"},
        RenameRow{"CleanedAndTrimmed", "  Fo/to:s*?  ", ct::RenameResult::Renamed, "Fotos"},
        RenameRow{"EmptyAfterCleaning", "  \\/:*  ", ct::RenameResult::EmptyLabel, ""},
        RenameRow{"InUseByListedDisc", "CD2", ct::RenameResult::LabelInUse, "CD2"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(Editing, FailedRenameKeepsTheOldLabel) {
    scratch.Write("prog/Daten/CD1.idx", kCatalogue);
    ops.fault = Fault::Rename;
    const auto outcome = ct::RenameDisc(ops, data, "CD1", "New", {"CD1"});
    EXPECT_EQ(outcome.result, ct::RenameResult::Failed);
    EXPECT_EQ(outcome.failure.code, ct::FailCode::Rename);
    EXPECT_EQ(Names(data), std::vector<std::string>{"CD1.idx"});
}

// --- Delete ------------------------------------------------------------------------

TEST_F(Editing, DeleteTakesOnlyTheChosenCatalogue) {
    scratch.Write("prog/Daten/CD1.idx", "1");
    scratch.Write("prog/Daten/CD10.idx", "10");
    scratch.Write("prog/Daten/CD1.idx.bak", "keep");
    EXPECT_FALSE(ct::DeleteDisc(ops, data, "CD1"));
    EXPECT_EQ(Names(data), (std::vector<std::string>{"CD1.idx.bak", "CD10.idx"}));
}

TEST_F(Editing, DeleteThatFailsKeepsTheFileAndSaysWhy) {
    scratch.Write("prog/Daten/CD1.idx", "1");
    ops.fault = Fault::Remove;
    EXPECT_EQ(ct::DeleteDisc(ops, data, "CD1").code, ct::FailCode::Remove);
    EXPECT_EQ(ReadAll(data + "/CD1.idx"), "1");
}

}  // namespace
