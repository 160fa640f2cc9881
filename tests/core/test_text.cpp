#include <gtest/gtest.h>

#include <string>

#include "core/text.h"

namespace {

struct Utf8Row {
    const char* name;
    std::string bytes;
    bool valid;
};

class Utf8Validity : public ::testing::TestWithParam<Utf8Row> {};

TEST_P(Utf8Validity, Strict) { EXPECT_EQ(ct::IsValidUtf8(GetParam().bytes), GetParam().valid); }

INSTANTIATE_TEST_SUITE_P(
    Rows, Utf8Validity,
    ::testing::Values(Utf8Row{"Ascii", "\\Bilder|R|", true},
                      Utf8Row{"Umlaut", "M\xC3\xBCll", true},
                      Utf8Row{"Cp1252Umlaut", "M\xFCll", false},
                      Utf8Row{"CutShortAtEnd", "ab\xC3", false},
                      Utf8Row{"LoneContinuation", "\x80", false},
                      Utf8Row{"OverlongSlash", "\xC0\xAF", false},
                      Utf8Row{"Surrogate", "\xED\xA0\x80", false},
                      Utf8Row{"InvalidAfterLongAsciiRun", std::string(40, 'a') + "\xFF", false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Cp1252, EveryByteRoundTrips) {
    for (int b = 0; b < 256; ++b) {
        const std::string one(1, static_cast<char>(b));
        const std::string utf8 = ct::Cp1252ToUtf8(one);
        EXPECT_TRUE(ct::IsValidUtf8(utf8)) << b;
        std::string back;
        ASSERT_TRUE(ct::Utf8ToCp1252(utf8, back)) << b;
        EXPECT_EQ(back, one) << b;
    }
}

// Valid UTF-8 stays; one byte that isn't makes the whole line Windows-1252,
// the way a catalogue written on Windows reads.
TEST(DecodeLine, Utf8StaysElseTheWholeLineIsWindows1252) {
    EXPECT_EQ(ct::DecodeLine("\\M\xC3\xBCll.txt|1|A|"), "\\M\xC3\xBCll.txt|1|A|");
    EXPECT_EQ(ct::DecodeLine("\\M\xFCll.txt|1|A|"), "\\M\xC3\xBCll.txt|1|A|");
    EXPECT_EQ(ct::DecodeLine("\xC3\xA4\xFC"), "\xC3\x83\xC2\xA4\xC3\xBC");
}

struct UpperRow {
    const char* name;
    const char* text;
    const char* upper;
};

class UpperCaseTable : public ::testing::TestWithParam<UpperRow> {};

TEST_P(UpperCaseTable, ByCharacter) {
    EXPECT_EQ(ct::UpperCase(GetParam().text), GetParam().upper);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, UpperCaseTable,
    ::testing::Values(
        UpperRow{"Ascii", "urlaub_2003.jpg", "URLAUB_2003.JPG"},
        UpperRow{"SharpSStays", "stra\xC3\x9F" "e", "STRA\xC3\x9F" "E"},
        UpperRow{"Umlauts", "\xC3\xA4\xC3\xB6\xC3\xBC", "\xC3\x84\xC3\x96\xC3\x9C"},
        UpperRow{"YDiaeresis", "\xC3\xBF", "\xC5\xB8"},
        UpperRow{"DotlessI", "\xC4\xB1", "I"},
        UpperRow{"GreekWithFinalSigma", "\xCE\xB1\xCE\xB2\xCF\x82", "\xCE\x91\xCE\x92\xCE\xA3"},
        UpperRow{"Cyrillic", "\xD0\xBF\xD1\x80\xD1\x91", "\xD0\x9F\xD0\xA0\xD0\x81"},
        UpperRow{"InvalidBytesKept", "a\xFF" "b", "A\xFF" "B"}),
    [](const auto& info) { return std::string(info.param.name); });

// File systems' big-endian UTF-16 names: a pair is one character, a surrogate
// without its partner is U+FFFD (never invalid UTF-8), an odd last byte is
// dropped.
struct Utf16Row {
    const char* name;
    std::string bigEndian;
    const char* utf8;
};

class Utf16BeTable : public ::testing::TestWithParam<Utf16Row> {};

TEST_P(Utf16BeTable, Decodes) {
    const std::string& be = GetParam().bigEndian;
    EXPECT_EQ(ct::Utf16BeToUtf8(reinterpret_cast<const unsigned char*>(be.data()), be.size()),
              GetParam().utf8);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Utf16BeTable,
    ::testing::Values(Utf16Row{"Ascii", std::string("\0A\0b", 4), "Ab"},
                      Utf16Row{"Pair", std::string("\xD8\x3D\xDE\x00", 4), "\xF0\x9F\x98\x80"},
                      Utf16Row{"LoneHighAtEnd", std::string("\0a\xD8\x3D", 4), "a\xEF\xBF\xBD"},
                      Utf16Row{"LoneHighBeforeLetter", std::string("\xD8\x3D\0a", 4), "\xEF\xBF\xBD\x61"},
                      Utf16Row{"LoneLow", std::string("\xDE\x00\0a", 4), "\xEF\xBF\xBD\x61"},
                      Utf16Row{"OddByteDropped", std::string("\0\xE4\0", 3), "\xC3\xA4"}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
