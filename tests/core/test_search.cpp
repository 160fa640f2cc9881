#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "core/search.h"
#include "support/scratch.h"
#include "support/hitlist.h"

namespace fs = std::filesystem;

namespace {

using ct::test::HitList;

using enum ct::SearchOp;

// The data folder: a scratch folder that takes catalogues by label.
struct TempDir : ct::test::Scratch {
    std::string str() const { return Path(); }
    void Write(const std::string& label, const std::vector<std::string>& lines) {
        std::string text;
        for (const auto& l : lines) text += l + "\r\n";
        WriteRaw(label, text);
    }
    void WriteRaw(const std::string& label, const std::string& bytes) { Scratch::Write(label + ".idx", bytes); }
};

// Two discs in the form the program writes. "Archiv" holds a Windows-1252
// line (Straße, Märchen) beside a UTF-8 one, as catalogues made on Windows do.
void WriteCollection(TempDir& dir) {
    dir.Write("Urlaub", {
        "654311424|-1029197328|CDFS|319488|1|2048|Photos 2003",
        "",
        "\\Bilder|R|14.03.2003 09:12:40|",
        "\\Bilder\\Urlaub|R|14.03.2003 09:12:41|Trip to the coast",
        "\\FOTOS|A|01.01.2001 00:00:00|",
        "\\FOTOS\\2001||02.01.2001 10:00:00|Urlaub",
        "",
        "\\Bilder\\index.htm|2310|R|14.03.2003 09:12:40|",
        "\\Bilder\\Urlaub\\p1.jpg|183442|R|14.03.2003 09:12:41|First day",
        "\\liesmich.txt|1024|R H|14.03.2003 00:00:00|",
        "\\FOTOS\\2001\\bild.jpg|-5|R H S|02.01.2001 00:00:00|urlaub am Meer",
        "\\a*b.txt|0||00.00.0 00:00:00|x|y",
    });
    dir.Write("Archiv", {
        "0|0||0|0|0|alte a|b Urlaubsbilder f\xfcr Oma",
        "",
        "\\Urlaub2004|A|05.06.2004 12:00:00|",
        "",
        "\\Urlaub2004\\strand.JPG|2147483647|A|05.06.2004 12:00:01|Sommer",
        "\\Urlaub2004\\Stra\xdf" "e.txt|15|A|05.06.2004 12:00:00|M\xe4rchen",
        "\\Urlaub2004\\MÄRCHEN.TXT|1|R|05.06.2004 12:00:02|",
    });
}

ct::SearchCriteria Criteria(int kind, ct::SearchOp op, const std::string& term) {
    ct::SearchCriteria c;
    c.kind = kind;
    c.checkName = true;
    c.nameOperator = op;
    c.nameTerm = term;
    c.noAttributesText = "(ohne Attribute)";
    c.discs = {{"Urlaub", true}, {"Archiv", true}};
    return c;
}

// Only the field criteria: the name check box cleared, the term empty, so
// that each disc is a hit in its own right (an empty term is contained in
// every label).
ct::SearchCriteria FieldsOnly() {
    auto c = Criteria(2, Contains, "");
    c.checkName = false;
    return c;
}

std::vector<std::string> Hits(const TempDir& dir, const ct::SearchCriteria& c,
                             ct::SearchEnd* end = nullptr) {
    HitList sink;
    const ct::SearchEnd e = ct::RunSearch(dir.str(), c, sink);
    if (end) *end = e;
    return sink.hits;
}

struct Row {
    const char* name;
    std::function<ct::SearchCriteria()> criteria;
    std::vector<std::string> hits;  // in walk order
};

class SearchTable : public ::testing::TestWithParam<Row> {};

TEST_P(SearchTable, HitsInWalkOrder) {
    TempDir dir;
    WriteCollection(dir);
    const Row& row = GetParam();
    EXPECT_EQ(Hits(dir, row.criteria()), row.hits);
}

ct::SearchCriteria WithSize(ct::SearchOp op, const std::string& value) {
    auto c = Criteria(0, Contains, ".");  // every file name has a dot, no label or description
    c.checkSize = true;
    c.sizeOperatorChosen = true;
    c.sizeOperator = op;
    c.sizeText = value;
    return c;
}
ct::SearchCriteria WithAttributes(const std::string& text, const std::string& noAttributes = "(ohne Attribute)") {
    auto c = FieldsOnly();
    c.checkAttributes = true;
    c.attributesChosen = true;
    c.attributes = text;
    c.noAttributesText = noAttributes;
    return c;
}
ct::SearchCriteria WithDate(ct::SearchOp op, const std::string& value) {
    auto c = FieldsOnly();
    c.checkDate = true;
    c.dateOperatorChosen = true;
    c.dateOperator = op;
    c.dateText = value;
    return c;
}
ct::SearchCriteria WithDescription(ct::SearchOp op, const std::string& value) {
    auto c = FieldsOnly();
    c.checkDescription = true;
    c.descriptionOperatorChosen = true;
    c.descriptionOperator = op;
    c.descriptionText = value;
    return c;
}

const Row kRows[] = {
    // Names: discs by label or description, folders by whole path, files by own name.
    {"ContainsFindsDiscFolderButNoFileOfThatFolder", [] { return Criteria(2, Contains, "URLAUB"); },
     {"Urlaub", "Urlaub\\\\Bilder\\Urlaub\\", "Archiv", "Archiv\\\\Urlaub2004\\"}},
    {"FilesOnlyByExtension", [] { return Criteria(0, Contains, "jpg"); },
     {"Urlaub\\\\Bilder\\Urlaub\\p1.jpg", "Urlaub\\\\FOTOS\\2001\\bild.jpg", "Archiv\\\\Urlaub2004\\strand.JPG"}},
    {"EqualFolderNeedsWholePath", [] { return Criteria(1, Equal, "\\fotos\\2001"); },
     {"Urlaub\\\\FOTOS\\2001\\"}},
    {"EqualIsNoPrefix", [] { return Criteria(0, Equal, "P1"); }, {}},
    {"EqualFileByOwnName", [] { return Criteria(0, Equal, "BILD.JPG"); }, {"Urlaub\\\\FOTOS\\2001\\bild.jpg"}},
    {"DiscByDescriptionBehindLastBar", [] { return Criteria(0, BeginsWith, "b urlaubs"); }, {"Archiv"}},
    {"DiscDescriptionInWindows1252", [] { return Criteria(0, Contains, "bilder für"); }, {"Archiv"}},
    {"Windows1252LineDecoded", [] { return Criteria(0, BeginsWith, "straße"); },
     {"Archiv\\\\Urlaub2004\\Straße.txt"}},
    // The closing backslash: folder lines with "ends with" take one off for good.
    // Sizes: files only, folders never size-tested.
    {"SizeLettersCountAsZero", [] { return WithSize(Greater, "abc"); },
     {"Urlaub\\\\Bilder\\index.htm", "Urlaub\\\\Bilder\\Urlaub\\p1.jpg", "Urlaub\\\\liesmich.txt",
      "Archiv\\\\Urlaub2004\\strand.JPG", "Archiv\\\\Urlaub2004\\Straße.txt", "Archiv\\\\Urlaub2004\\MÄRCHEN.TXT"}},
    {"NegativeSizeIsLessThanZero", [] { return WithSize(Less, "0"); }, {"Urlaub\\\\FOTOS\\2001\\bild.jpg"}},
    // Attributes: the whole field.
    {"NoAttributesLiteral", [] { return WithAttributes("(ohne Attribute)"); },
     {"Urlaub", "Urlaub\\\\FOTOS\\2001\\", "Urlaub\\\\a*b.txt", "Archiv"}},
    {"AttributesWholeFieldOnly", [] { return WithAttributes("R H"); }, {"Urlaub", "Urlaub\\\\liesmich.txt", "Archiv"}},
    {"SingleMark", [] { return WithAttributes("A"); },
     {"Urlaub", "Urlaub\\\\FOTOS\\", "Archiv", "Archiv\\\\Urlaub2004\\", "Archiv\\\\Urlaub2004\\strand.JPG",
      "Archiv\\\\Urlaub2004\\Straße.txt"}},
    // Dates: to the second; a date without time is midnight.
    {"DateWithoutTimeIsMidnight", [] { return WithDate(Equal, "14.03.2003"); },
     {"Urlaub", "Urlaub\\\\liesmich.txt", "Archiv"}},
    {"LaterSameDay", [] { return WithDate(Greater, "14.03.2003"); },
     {"Urlaub", "Urlaub\\\\Bilder\\", "Urlaub\\\\Bilder\\Urlaub\\", "Urlaub\\\\Bilder\\index.htm",
      "Urlaub\\\\Bilder\\Urlaub\\p1.jpg", "Archiv", "Archiv\\\\Urlaub2004\\", "Archiv\\\\Urlaub2004\\strand.JPG",
      "Archiv\\\\Urlaub2004\\Straße.txt", "Archiv\\\\Urlaub2004\\MÄRCHEN.TXT"}},
    {"UnreadableTimeFailsOnlyItsLine", [] { return WithDate(Less, "01.01.2002"); },
     {"Urlaub", "Urlaub\\\\FOTOS\\", "Urlaub\\\\FOTOS\\2001\\", "Urlaub\\\\FOTOS\\2001\\bild.jpg", "Archiv"}},
    // Descriptions: case counts, the whole rest of the line.
    {"DescriptionRespectsCase", [] { return WithDescription(Contains, "Urlaub"); },
     {"Urlaub", "Urlaub\\\\FOTOS\\2001\\", "Archiv"}},
    // All criteria joined by "and".
    {"AllFiveCriteria",
     [] {
         auto c = WithSize(Greater, "100");
         c.kind = 2;
         c.nameOperator = Contains;
         c.nameTerm = "j";
         c.checkAttributes = c.attributesChosen = true;
         c.attributes = "R";
         c.checkDate = c.dateOperatorChosen = true;
         c.dateOperator = Greater;
         c.dateText = "1.1.2003";
         c.checkDescription = c.descriptionOperatorChosen = true;
         c.descriptionOperator = Contains;
         c.descriptionText = "First";
         return c;
     },
     {"Urlaub\\\\Bilder\\Urlaub\\p1.jpg"}},
};

INSTANTIATE_TEST_SUITE_P(Search, SearchTable, ::testing::ValuesIn(kRows),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(SearchOperators, EmptyTermRules) {
    EXPECT_TRUE(ct::CompareText(ct::SearchOp::Contains, "A", ""));
    EXPECT_FALSE(ct::CompareText(ct::SearchOp::Contains, "", ""));
    EXPECT_TRUE(ct::CompareText(ct::SearchOp::BeginsWith, "", ""));
    EXPECT_TRUE(ct::CompareText(ct::SearchOp::EndsWith, "", ""));
    EXPECT_TRUE(ct::CompareText(ct::SearchOp::NotContains, "", "A"));
}

// --- Dates -----------------------------------------------------------------------------

struct DateRow {
    const char* name;
    const char* text;
    const char* full;  // nullptr: not a date
};
class Dates : public ::testing::TestWithParam<DateRow> {};
TEST_P(Dates, ReadAndWrittenInFull) {
    const auto& r = GetParam();
    ct::SearchTime t = 0;
    const bool ok = ct::ReadDate(r.text, t);
    ASSERT_EQ(ok, r.full != nullptr);
    if (ok) {
        EXPECT_EQ(ct::DateText(t), r.full);
    }
    EXPECT_EQ(ct::FullDateText(r.text), r.full ? r.full : r.text);
}
const DateRow kDateRows[] = {
    {"DateOnly", "14.03.2003", "14.03.2003 00:00:00"},
    {"ShortTime", "01.02.2003 4:5", "01.02.2003 04:05:00"},
    {"LeapDay", "29.02.2004", "29.02.2004 00:00:00"},
};
INSTANTIATE_TEST_SUITE_P(Search, Dates, ::testing::ValuesIn(kDateRows),
                         [](const auto& info) { return std::string(info.param.name); });

// --- The run ------------------------------------------------------------------------------

TEST(SearchRun, StopEndsAfterTheDiscInHand) {
    TempDir dir;
    WriteCollection(dir);
    auto c = Criteria(2, Contains, "urlaub");
    c.discs = {{"Urlaub", true}, {"Unmarkiert", false}, {"Archiv", true}};
    bool stop = false;
    std::vector<std::pair<int, std::size_t>> seen;
    ct::SearchHooks hooks;
    hooks.stopRequested = &stop;
    hooks.afterDisc = [&](int n, std::size_t hits) {
        seen.emplace_back(n, hits);
        stop = true;
    };
    HitList sink;
    EXPECT_EQ(ct::RunSearch(dir.str(), c, sink, hooks), ct::SearchEnd::Stopped);
    EXPECT_EQ(sink.hits, (std::vector<std::string>{"Urlaub", "Urlaub\\\\Bilder\\Urlaub\\"}));
    EXPECT_EQ(seen, (std::vector<std::pair<int, std::size_t>>{{1, 2}}));
}

// The name test upper-cases the name before comparing: the dotless i and the
// long s become I and S, so an ASCII term finds them, in either encoding.
}  // namespace
