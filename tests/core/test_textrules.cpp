#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "core/textrules.h"

namespace {

struct LabelRow {
    const char* name;
    const char* label;
    const char* cleaned;
};

class LabelRule : public ::testing::TestWithParam<LabelRow> {};

TEST_P(LabelRule, RemovesTheNineCharactersOnly) {
    EXPECT_EQ(ct::CleanLabel(GetParam().label), GetParam().cleaned);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, LabelRule,
    ::testing::Values(LabelRow{"ColonAndSlash", "CD: 1/2", "CD 12"},
                      LabelRow{"OnlyRemovedCharacters", "\\/:*?\"<>|", ""},
                      LabelRow{"Stars", "***", ""},
                      LabelRow{"OuterBlanksStayForTheCaller", " Urlaub 2003 ", " Urlaub 2003 "},
                      LabelRow{"CaseAndDotsStay", "Backup.V2.iso", "Backup.V2.iso"},
                      LabelRow{"UmlautsStay", "Ärger über Öl", "Ärger über Öl"},
                      LabelRow{"DeviceNameNotRefused", "CON", "CON"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(LabelTrim, TakesOnlyTheBlank) {
    EXPECT_EQ(ct::TrimBlanks("  a b  "), "a b");
    EXPECT_EQ(ct::TrimBlanks("   "), "");
    EXPECT_EQ(ct::TrimBlanks(""), "");
    EXPECT_EQ(ct::TrimBlanks("\ta\t"), "\ta\t");
}

struct TimeRow {
    const char* name;
    std::int64_t fileTime;
    const char* text;
};

class TimeText : public ::testing::TestWithParam<TimeRow> {};

TEST_P(TimeText, DayMonthYearTime) {
    EXPECT_EQ(ct::FileTimeText(GetParam().fileTime), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, TimeText,
    ::testing::Values(
        TimeRow{"Zero", 0, "01.01.1601 00:00:00"},
        TimeRow{"PaddedFields", 127177957890000000, "05.01.2004 17:03:09"},
        TimeRow{"LeapDay", 125963423990000000, "29.02.2000 23:59:59"},
        TimeRow{"LastSecondWindowsTakes", 9223149887990000000, "31.12.30827 23:59:59"},
        TimeRow{"PastYear30827", 9223149888000000000, "00.00.0 00:00:00"},
        TimeRow{"Negative", -1, "00.00.0 00:00:00"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(TimeFromUnix, EpochAndLimits) {
    EXPECT_EQ(ct::FileTimeFromUnix(0, 0), 116444736000000000);
    EXPECT_EQ(ct::FileTimeText(ct::FileTimeFromUnix(1073322189, 999999999)), "05.01.2004 17:03:09");
    EXPECT_EQ(ct::FileTimeFromUnix(-11644473600, 0), 0);
    // Before 1601 there is no file time: the text of a refused conversion.
    EXPECT_EQ(ct::FileTimeText(ct::FileTimeFromUnix(-11644473601, 0)), "00.00.0 00:00:00");
    EXPECT_EQ(ct::FileTimeText(ct::FileTimeFromUnix(std::numeric_limits<std::int64_t>::max(), 0)),
              "00.00.0 00:00:00");
}

struct DescRow {
    const char* name;
    const char* typed;
    const char* stored;
};

class DescriptionRule : public ::testing::TestWithParam<DescRow> {};

TEST_P(DescriptionRule, OneLineOnePass) {
    EXPECT_EQ(ct::NormaliseDescription(GetParam().typed), GetParam().stored);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DescriptionRule,
    ::testing::Values(DescRow{"TwoBlanksBecomeOne", "a  b", "a b"},
                      DescRow{"ThreeBlanksBecomeTwo", "a   b", "a  b"},
                      DescRow{"FourBlanksBecomeTwo", "a    b", "a  b"},
                      DescRow{"CrLfIsOneBlank", "a\r\nb", "a b"},
                      DescRow{"CrLfThenBlankMerges", "a\r\n b", "a b"},
                      DescRow{"LoneLf", "a\nb", "a b"}, DescRow{"LoneCr", "a\rb", "a b"},
                      DescRow{"OuterBlanksStay", " a ", " a "},
                      DescRow{"BarStays", "a|b", "a|b"}, DescRow{"Empty", "", ""}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
