#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "core/catalogue.h"
#include "support/scratch.h"

namespace {

// The catalogue of a small disc as it stands after descriptions were added to
// the disc, to the folder Urlaub and to the file p1.jpg.
const std::string kExample =
    "654311424|-1029197328|CDFS|319488|1|2048|Photos 2003\r\n"
    "\r\n"
    "\\Bilder|R|14.03.2003 09:12:40|\r\n"
    "\\Bilder\\Urlaub|R|14.03.2003 09:12:41|Trip to the coast\r\n"
    "\r\n"
    "\\Bilder\\index.htm|2310|R|14.03.2003 09:12:40|\r\n"
    "\\Bilder\\Urlaub\\p1.jpg|183442|R|14.03.2003 09:12:41|First day\r\n"
    "\\liesmich.txt|1024|R|14.03.2003 09:12:40|\r\n";

ct::VolumeInfo ExampleVolume() {
    ct::VolumeInfo v;
    v.Size = ct::Fixed::FromInt(654311424);
    v.SerialNumber = -1029197328;
    v.FileSystem = "CDFS";
    v.ClusterCount = 319488;
    v.SectorsPerCluster = 1;
    v.BytesPerSector = 2048;
    return v;
}

ct::WalkRecord Rec(std::string name, std::int64_t size, std::string attributes, std::string date) {
    return ct::WalkRecord{std::move(name), ct::Fixed::FromInt(size), std::move(attributes),
                          std::move(date)};
}

struct Sections {
    std::string header;
    std::vector<std::string> folders, files;
};

Sections ReadSections(const std::string& path) {
    ct::CatalogueReader r(path);
    Sections s;
    s.header = r.HeaderLine();
    std::string line;
    while (r.NextFolderLine(line)) s.folders.push_back(line);
    while (r.NextFileLine(line)) s.files.push_back(line);
    return s;
}

// --- Writing ---------------------------------------------------------------

TEST(CatalogueWrite, ExampleDiscByteForByte) {
    const std::string root = "/media/cdrom";
    const ct::WalkList folders = {Rec(root + "/Bilder", 0, "R", "14.03.2003 09:12:40"),
                                  Rec(root + "/Bilder/Urlaub", 0, "R", "14.03.2003 09:12:41")};
    const ct::WalkList files = {
        Rec(root + "/Bilder/index.htm", 2310, "R", "14.03.2003 09:12:40"),
        Rec(root + "/Bilder/Urlaub/p1.jpg", 183442, "R", "14.03.2003 09:12:41"),
        Rec(root + "/liesmich.txt", 1024, "R", "14.03.2003 09:12:40")};
    std::string text = ct::CatalogueText(root, ExampleVolume(), "Photos 2003", folders, files);

    // New folder and file lines end in a bar: the descriptions are added by
    // replacing what stands behind the last bar.
    const auto describe = [&text](const std::string& line, const std::string& description) {
        const std::size_t at = text.find(line + "\r\n");
        ASSERT_NE(at, std::string::npos) << line;
        text.replace(at, line.size(), ct::WithDescription(line, description));
    };
    describe("\\Bilder\\Urlaub|R|14.03.2003 09:12:41|", "Trip to the coast");
    describe("\\Bilder\\Urlaub\\p1.jpg|183442|R|14.03.2003 09:12:41|", "First day");
    EXPECT_EQ(text, kExample);
}

struct ShapeRow {
    const char* name;
    ct::WalkList folders, files;
    const char* description;
    bool volumeKnown;
    std::string text;
};

class CatalogueShape : public ::testing::TestWithParam<ShapeRow> {};

TEST_P(CatalogueShape, Text) {
    const ShapeRow& row = GetParam();
    const ct::VolumeInfo volume = row.volumeKnown ? ExampleVolume() : ct::VolumeInfo{};
    EXPECT_EQ(ct::CatalogueText("/mnt/d", volume, row.description, row.folders, row.files), row.text);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CatalogueShape,
    ::testing::Values(
        ShapeRow{"NoFoldersGivesTwoEmptyLinesBeforeFiles", {},
                 {Rec("/mnt/d/a.txt", 5, "A", "01.01.2000 00:00:00")}, "x", true,
                 "654311424|-1029197328|CDFS|319488|1|2048|x\r\n\r\n\r\n"
                 "\\a.txt|5|A|01.01.2000 00:00:00|\r\n"},
        ShapeRow{"FailedVolumeQueryGivesZeroHeader", {}, {}, "Leer", false,
                 "0|0||0|0|0|Leer\r\n\r\n\r\n"},
        ShapeRow{"SizeOfTwoGiBIsNegative", {},
                 {Rec("/mnt/d/big.iso", -2147483648LL, "", "01.01.2000 00:00:00")}, "", false,
                 "0|0||0|0|0|\r\n\r\n\r\n\\big.iso|-2147483648||01.01.2000 00:00:00|\r\n"},
        ShapeRow{"LineBreakInDescriptionCantBreakTheHeader", {}, {}, "a\r\nb", false,
                 "0|0||0|0|0|a  b\r\n\r\n\r\n"}),
    [](const auto& info) { return std::string(info.param.name); });

struct EntryPathRow {
    const char* name;
    std::string root, walked, path;
};

class CatalogueEntryPathTable : public ::testing::TestWithParam<EntryPathRow> {};

TEST_P(CatalogueEntryPathTable, PathFromTheRoot) {
    EXPECT_EQ(ct::CatalogueEntryPath(GetParam().root, GetParam().walked), GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CatalogueEntryPathTable,
    ::testing::Values(
        EntryPathRow{"Nested", "/media/cd", "/media/cd/Bilder/Urlaub", "\\Bilder\\Urlaub"},
        EntryPathRow{"ControlCharacters", "/r", "/r/a\tb\nc\x7F", "\\a?b?c?"},
        EntryPathRow{"BarAndBackslashInAPrintableName", "/r", "/r/a|b\\c", "\\a?b?c"},
        EntryPathRow{"C1ControlInUtf8", "/r", "/r/a\xC2\x85" "b", "\\a?b"},
        EntryPathRow{"Latin1NameMadeUtf8", "/r", "/r/M\xFCll/ok", "\\M\xC3\xBCll\\ok"}),
    [](const auto& info) { return std::string(info.param.name); });

// --- Line rules ------------------------------------------------------------

// Every field in its place; whatever follows the last field's bar belongs to the description.
TEST(CatalogueLines, SplitFromTheLeft) {
    const ct::DiscHeader h = ct::SplitHeader("654311424|-1029197328|CDFS|319488|1|2048|a|b");
    EXPECT_EQ((std::vector<std::string>{h.HeaderSize, h.SerialNumber, h.FileSystem, h.ClusterCount,
                                        h.SectorsPerCluster, h.BytesPerSector, h.Description}),
              (std::vector<std::string>{"654311424", "-1029197328", "CDFS", "319488", "1", "2048", "a|b"}));
    const ct::FolderRecord d = ct::SplitFolder("\\Bilder|R H|14.03.2003 09:12:40|x|y");
    EXPECT_EQ((std::vector<std::string>{d.Path, d.Attributes, d.Time, d.Description}),
              (std::vector<std::string>{"\\Bilder", "R H", "14.03.2003 09:12:40", "x|y"}));
    const ct::FileRecord f = ct::SplitFile("\\a\\b.txt|12|A|01.01.2000 00:00:00|c:\\temp|z");
    EXPECT_EQ((std::vector<std::string>{f.Path, f.Size, f.Attributes, f.Time, f.Description}),
              (std::vector<std::string>{"\\a\\b.txt", "12", "A", "01.01.2000 00:00:00", "c:\\temp|z"}));
}

// --- Reading ---------------------------------------------------------------

TEST(CatalogueRead, ExampleBySections) {
    ct::test::Scratch dir;
    const std::string path = dir.File("Photos.idx", kExample);
    const Sections s = ReadSections(path);
    EXPECT_EQ(ct::SplitHeader(s.header).Description, "Photos 2003");
    ASSERT_EQ(s.folders.size(), 2u);
    EXPECT_EQ(s.folders[1], "\\Bilder\\Urlaub|R|14.03.2003 09:12:41|Trip to the coast");
    ASSERT_EQ(s.files.size(), 3u);
    EXPECT_EQ(s.files[2], "\\liesmich.txt|1024|R|14.03.2003 09:12:40|");

    const ct::CatalogueCounts c = ct::CountCatalogue(path);
    EXPECT_TRUE(c.opened);
    EXPECT_EQ(c.headerLine, s.header);
    EXPECT_EQ(c.folders, 2);
    EXPECT_EQ(c.files, 3);

    std::string line;
    ASSERT_TRUE(ct::FindRecordLine(path, "\\Bilder", line));
    EXPECT_EQ(line, "\\Bilder|R|14.03.2003 09:12:40|");
    ASSERT_TRUE(ct::FindRecordLine(path, "\\Bilder\\Urlaub\\p1.jpg", line));
    EXPECT_EQ(ct::SplitFile(line).Description, "First day");
    EXPECT_FALSE(ct::FindRecordLine(path, "\\bilder", line));
    EXPECT_FALSE(ct::FindRecordLine(path, "\\Bild", line));
}

struct DamagedRow {
    const char* name;
    std::string content;
    std::string header;
    std::size_t folders, files;         // as the section readers see them
    std::int64_t countFolders, countFiles;  // as the counting way sees them
};

class CatalogueDamaged : public ::testing::TestWithParam<DamagedRow> {};

TEST_P(CatalogueDamaged, ReadsWhatIsThere) {
    const DamagedRow& row = GetParam();
    ct::test::Scratch dir;
    const std::string path = dir.File("d.idx", row.content);
    const Sections s = ReadSections(path);
    EXPECT_EQ(s.header, row.header);
    EXPECT_EQ(s.folders.size(), row.folders);
    EXPECT_EQ(s.files.size(), row.files);
    const ct::CatalogueCounts c = ct::CountCatalogue(path);
    EXPECT_TRUE(c.opened);
    EXPECT_EQ(c.headerLine, row.header);
    EXPECT_EQ(c.folders, row.countFolders);
    EXPECT_EQ(c.files, row.countFiles);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CatalogueDamaged,
    ::testing::Values(
        DamagedRow{"Empty", "", "", 0, 0, 0, 0},
        DamagedRow{"CutShortInFiles", "h\r\n\r\n\\a|R|t|\r\n\r\n\\a\\f|1|A|t|\r\n\\a\\g|", "h", 1, 2,
                   1, 2},
        // The section readers stop at an empty line; the counting way goes on
        // to the end of the file.
        DamagedRow{"Windows1252Header", "0|0||0|0|0|M\xFCll\r\n", "0|0||0|0|0|M\xC3\xBCll", 0, 0, 0,
                   0}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(CatalogueRead, Windows1252RecordFoundByItsUtf8Path) {
    ct::test::Scratch dir;
    const std::string path =
        dir.File("w.idx", "h\r\n\r\n\r\n\\M\xFCll.txt|1|A|t|Gr\xFC\xDF" "e\r\n\\Mull.txt|2|A|t|\r\n");
    std::string line;
    ASSERT_TRUE(ct::FindRecordLine(path, "\\M\xC3\xBCll.txt", line));
    EXPECT_EQ(line, "\\M\xC3\xBCll.txt|1|A|t|Gr\xC3\xBC\xC3\x9F" "e");
    ASSERT_TRUE(ct::FindRecordLine(path, "\\Mull.txt", line));
    EXPECT_EQ(ct::SplitFile(line).Size, "2");
}

}  // namespace
