// The block scans against the plain line-by-line reading: the search with its
// prefilter, on the vector and the portable path, at read blocks that put line
// ends, CRs and terms across every boundary, must give the very same hits.
// And the list order every list and the terminal tool share.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "core/collate.h"
#include "core/scan.h"
#include "core/search.h"
#include "support/hitlist.h"
#include "support/scratch.h"


namespace {

using ct::test::HitList;

struct Catalogue {
    const char* name;
    std::string bytes;
};

const std::string kLines =  // folder lines, empty line, file lines; EOL stands for the line end
    "1|2|UDF|3|1|2048|Konzert mit Xylophon EOL"
    "EOL"
    "\\Xylophon|R|01.02.2003 04:05:06|EOL"
    "\\Musik\\xylophon|A|01.02.2003 04:05:06|Konzert EOL"
    "\\Musik\\Orchester|A|01.02.2003 04:05:06|EOL"
    "EOL"
    "\\Musik\\Orchester\\XYLOPHON|12|A|01.02.2003 04:05:06|EOL"
    "\\Musik\\xylophon\\alt Xylophon.mp3|-5|R H|31.12.1999 23:59:59|Konzert EOL"
    "\\Xylophon\\Spiel|70000|A|01.02.2003 04:05:06|zwei | Xylophon EOL"
    "\\Musik\\M\xe4rchen Xylophon|7|A|01.02.2003 04:05:06|\xc4rger EOL"
    "\\Musik\\Gr\xc3\xbc\xc3\x9f\x65 xylophon|8|A|01.02.2003 04:05:06|Konzert EOL"
    "\\ohne Trenner Xylophon EOL"
    "\\Band|+12| A|1.2.2003 4:05:06|EOL"
    "\\Lied| 70000.5|A|31.02.2003 04:05:06|EOL"
    "\\Ende|-12|A|01.02.2003 04:05:06EOL"
    "\\Gross|99999999999999999|A| 1.02.2003 04:05:06|EOL"
    "\\Null|0|A|01.02.2003 04:05:06|EOL"
    "\\Vorne|0070000|A|01.02.2003 04:05:06|EOL"
    "\\Zeichen|7x|A|01.02.2003 04:05:06|EOL"
    "\\Musik\\xylophonxylophon|9||01.02.2003 04:05:06|EOL";

std::string With(std::string text, const std::string& eol) {
    for (std::size_t at; (at = text.find("EOL")) != std::string::npos;) text.replace(at, 3, eol);
    return text;
}

std::vector<Catalogue> Catalogues() {
    std::string padded = kLines;  // a long line moves every later line across blocks
    padded.insert(padded.find("\\Musik\\Orchester|"), "\\" + std::string(300, 'x') + "Xylophon|R||EOL");
    std::vector<Catalogue> all = {
        {"CrLf", With(kLines, "\r\n")},
        {"LfOnly", With(kLines, "\n")},
        {"LoneCr", With(kLines, "\r")},
        {"NoFinalLineEnd", With(kLines.substr(0, kLines.size() - 3), "\r\n")},
        {"LongLine", With(padded, "\r\n")},
        {"EmptySections", With("1|2|||||EOLEOLEOL", "\r\n")},
        {"NoFolders", With("1|2|||||EOLEOLEOL\\Xylophon.txt|1|||EOL", "\r\n")},
        {"CutInFolders", With("1|2|||||EOLEOL\\Xylophon|||", "\r\n")},
        {"EmptyLineAmongFiles", With("1|2|||||EOLEOLEOL\\a|1|||EOLEOL\\Xylophon|1|||EOL", "\r\n")},
    };
    // Each section's first line longer by `shift`: every CR LF, empty line
    // and term once astride the end of a vector step, which counts from it.
    for (int shift = 1; shift < 64; shift += 3) {
        std::string lines = kLines;
        for (const char* first : {"\\Xylophon|R|", "\\Musik\\Orchester\\XYLOPHON|"})
            lines.insert(lines.find(first) + 1, std::string(shift, 'x'));
        all.push_back({"Shifted", With(lines, "\r\n")});
    }
    return all;
}

struct Query {
    const char* name;
    std::size_t hits;  // on the CrLf catalogue: the comparison alone would pass a fixture that finds nothing
    int kind;
    ct::SearchOp nameOp;
    const char* term;
    ct::SearchOp descriptionOp = ct::SearchOp::None;
    const char* description = "";
    ct::SearchOp sizeOp = ct::SearchOp::None;
    const char* size = "";
    ct::SearchOp dateOp = ct::SearchOp::None;
    const char* date = "";
};
constexpr ct::SearchOp kNone = ct::SearchOp::None;

const Query kQueries[] = {
    {"Contains", 8, 2, ct::SearchOp::Contains, "xYLOphon"},
    {"ContainsFilesOnly", 6, 0, ct::SearchOp::Contains, "xylophon"},
    {"ContainsFoldersOnly", 3, 1, ct::SearchOp::Contains, "Xylophon"},
    {"Begins", 2, 2, ct::SearchOp::BeginsWith, "xylophon"},
    {"Ends", 6, 2, ct::SearchOp::EndsWith, "XYLOPHON"},
    {"EndsWithBackslashes", 5, 2, ct::SearchOp::EndsWith, "xylophon\\\\"},
    {"Equal", 1, 2, ct::SearchOp::Equal, "\\musik\\xylophon"},
    {"NotContains", 10, 2, ct::SearchOp::NotContains, "xylophon"},
    {"OneLetter", 13, 2, ct::SearchOp::Contains, "n"},
    {"DotlessIMayFold", 6, 2, ct::SearchOp::Contains, "i"},
    {"NonAsciiTerm", 1, 2, ct::SearchOp::Contains, "\xc3\xa4rchen"},
    {"Description", 4, 2, ct::SearchOp::None, "", ct::SearchOp::Contains, "Konzert "},
    {"DescriptionEquals", 1, 2, ct::SearchOp::None, "", ct::SearchOp::Equal, "Konzert"},
    {"NameAndDescription", 1, 2, ct::SearchOp::Contains, "phon", ct::SearchOp::EndsWith, "Xylophon"},
    {"DateEqual", 12, 0, kNone, "", kNone, "", kNone, "", ct::SearchOp::Equal, "1.2.03 4:05:06"},
    {"DateGreater", 15, 2, kNone, "", kNone, "", kNone, "", ct::SearchOp::Greater, "31.12.1999 23:59:59"},
    {"DateNotEqual", 2, 0, kNone, "", kNone, "", kNone, "", ct::SearchOp::NotEqual, "01.02.2003 04:05:06"},
    {"SizeLess", 8, 0, kNone, "", kNone, "", ct::SearchOp::Less, "12"},
    {"SizeGreater", 2, 0, kNone, "", kNone, "", ct::SearchOp::Greater, "70000.4"},
    {"SizeEqualAndDateLess", 2, 0, kNone, "", kNone, "", ct::SearchOp::Equal, "-12", ct::SearchOp::Less, "2.2.2003"},
    {"NameAndSize", 5, 0, ct::SearchOp::Contains, "xylophon", kNone, "", ct::SearchOp::NotEqual, "8"},
    {"SizeGreaterByLength", 6, 0, kNone, "", kNone, "", ct::SearchOp::Greater, "9"},
    {"SizeEqualWhole", 3, 0, kNone, "", kNone, "", ct::SearchOp::Equal, "70000"},
    {"SizeLessZero", 3, 0, kNone, "", kNone, "", ct::SearchOp::Less, "0"},
};

std::vector<std::string> Hits(const std::string& folder, const Query& q, bool prefilter, std::size_t block) {
    ct::SearchCriteria c;
    c.kind = q.kind;
    c.checkName = q.nameOp != ct::SearchOp::None;
    c.nameOperator = q.nameOp;
    c.nameTerm = q.term;
    c.checkDescription = c.descriptionOperatorChosen = q.descriptionOp != ct::SearchOp::None;
    c.descriptionOperator = q.descriptionOp;
    c.descriptionText = q.description;
    c.checkSize = c.sizeOperatorChosen = q.sizeOp != kNone;
    c.sizeOperator = q.sizeOp;
    c.sizeText = q.size;
    c.checkDate = c.dateOperatorChosen = q.dateOp != kNone;
    c.dateOperator = q.dateOp;
    c.dateText = q.date;
    c.discs = {{"Disc", true}};
    ct::SearchHooks hooks;
    hooks.prefilter = prefilter;
    hooks.readBlock = block;
    HitList sink;
    ct::RunSearch(folder, c, sink, hooks);
    return sink.hits;
}

TEST(FastScan, SameHitsAsThePlainReader) {
    const ct::test::Scratch dir;
    for (const Catalogue& cat : Catalogues()) {
        dir.Write("Disc.idx", cat.bytes);
        for (const Query& q : kQueries) {
            ct::scan::UseVectors(true);
            const std::vector<std::string> want = Hits(dir.Path(), q, false, 1 << 16);
            if (std::string_view(cat.name) == "CrLf") {
                EXPECT_EQ(want.size(), q.hits) << q.name;
            }
            for (unsigned width : {64u, 32u, 16u, 0u}) {
                ct::scan::UseWidth(width);
                for (std::size_t block : {1u, 5u, 16u, 17u, 33u, 64u, 100u, 1u << 16}) {
                    SCOPED_TRACE(std::string(cat.name) + " " + q.name + " width " + std::to_string(width) +
                                 " block " + std::to_string(block));
                    EXPECT_EQ(Hits(dir.Path(), q, true, block), want);
                    if (block < 64) {
                        EXPECT_EQ(Hits(dir.Path(), q, false, block), want);
                    }
                }
            }
        }
    }
    ct::scan::UseVectors(true);
}

TEST(FastScan, LineEndsAndBarsFoundAlikeOnBothPaths) {
    std::mt19937 random(7);
    const char bytes[] = {'\r', '\n', 'a', '|', '\\'};
    for (int round = 0; round < 200; ++round) {
        std::string s(random() % 300, 'x');
        for (char& c : s) c = bytes[random() % 5];
        std::int64_t plain = 0;
        for (std::size_t i = 0; i < s.size(); ++i)
            plain += s[i] == '\n' || (s[i] == '\r' && (i + 1 == s.size() || s[i + 1] != '\n'));
        for (unsigned vectors : {64u, 32u, 16u, 0u}) {
            ct::scan::UseWidth(vectors);
            EXPECT_EQ(ct::scan::CountLineEnds(s.data(), s.size()), plain) << round << vectors;
            EXPECT_EQ(ct::scan::FindLineEnd(s.data(), s.size()), s.find_first_of("\r\n") == std::string::npos
                                                                     ? s.size()
                                                                     : s.find_first_of("\r\n"));
            std::size_t at[4], want[4], n = 0;
            for (std::size_t i = 0; i < s.size() && n < 4; ++i)
                if (s[i] == '|') want[n++] = i;
            ASSERT_EQ(ct::scan::FindBars(s.data(), s.size(), at, 4), n);
            EXPECT_TRUE(std::equal(at, at + n, want));
            std::vector<std::uint64_t> bars((s.size() + 63) / 64), ends(bars.size()), slashes(bars.size()),
                wantBars(bars.size()), wantEnds(bars.size()), wantSlashes(bars.size());
            for (std::size_t i = 0; i < s.size(); ++i) {
                wantBars[i / 64] |= std::uint64_t{s[i] == '|'} << i % 64;
                wantEnds[i / 64] |= std::uint64_t{s[i] == '\r' || s[i] == '\n'} << i % 64;
                wantSlashes[i / 64] |= std::uint64_t{s[i] == '\\'} << i % 64;
            }
            ct::scan::BlockMasks(s.data(), s.size(), bars.data(), ends.data());
            EXPECT_EQ(bars, wantBars) << round << vectors;
            EXPECT_EQ(ends, wantEnds) << round << vectors;
            std::fill(bars.begin(), bars.end(), 0);
            ct::scan::BlockMasks(s.data(), s.size(), bars.data(), ends.data(), slashes.data());
            EXPECT_EQ(bars, wantBars) << round << vectors;
            EXPECT_EQ(slashes, wantSlashes) << round << vectors;
        }
    }
    ct::scan::UseVectors(true);
}

struct OrderRow {
    const char* name;
    std::vector<std::string> sorted;  // the list order; the test sorts it reversed
};

class ListOrder : public ::testing::TestWithParam<OrderRow> {};

TEST_P(ListOrder, SortsAsAReaderExpects) {
    std::vector<std::string> v(GetParam().sorted.rbegin(), GetParam().sorted.rend());
    ct::SortForList(v);
    EXPECT_EQ(v, GetParam().sorted);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ListOrder,
    ::testing::Values(
        OrderRow{"UmlautBesideItsBase", {"Apfel", "Äpfel", "Birne"}},
        OrderRow{"AllThreeUmlauts", {"Ol", "Öl", "Oma", "Uber", "über", "Udo"}},
        OrderRow{"SharpSAsSs", {"Strasse", "Straße", "Strasze"}},
        OrderRow{"CaseIgnoredTiesByExactText", {"APFEL", "Apfel", "apfel", "Äpfel", "äpfel", "apfelbaum"}},
        OrderRow{"OtherLatinLetters", {"Ærø", "Aesop", "Cote", "Côte", "Łódź", "Lodz2", "Œuvre", "Zoe"}},
        OrderRow{"DiscBeforeItsHits", {"Urlaub", "Urlaub\\\\a", "urlaub\\\\B", "Urlaub_x", "Urlaubx"}},
        OrderRow{"Windows1252LeftoverBytes", {"a", "a\xe4", "b"}}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace

// A run keeps its needle while the term stays; any change must make a new one.
TEST(FastScan, NeedleKeptOnlyForTheSameTerm) {
    const ct::scan::Needle folded("Xylophon\\", true), exact("Konzert", false);
    EXPECT_TRUE(folded.Is("XYLOPHON\\", true));
    EXPECT_TRUE(folded.Is("xylophon\\", true));
    EXPECT_FALSE(folded.Is("XYLOPHON", true));  // an "ends with" term that lost its backslash
    EXPECT_FALSE(folded.Is("XYLOPHON\\", false));
    EXPECT_TRUE(exact.Is("Konzert", false));
    EXPECT_FALSE(exact.Is("KONZERT", false));
    EXPECT_FALSE(exact.Is("Konzert", true));
}
