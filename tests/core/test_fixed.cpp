#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "core/fixed.h"

namespace {

constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();

struct ParseRow {
    const char* name;
    const char* text;
    std::int64_t raw;
};

class FixedParse : public ::testing::TestWithParam<ParseRow> {};

TEST_P(FixedParse, LeadingNumber) {
    EXPECT_EQ(ct::ParseLeadingDecimal(GetParam().text).raw, GetParam().raw) << GetParam().text;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FixedParse,
    ::testing::Values(
        ParseRow{"Empty", "", 0}, ParseRow{"Zero", "0", 0},
        ParseRow{"CatalogueSize", "2310", 23100000},
        ParseRow{"NegativeSizeOfTwoGiB", "-2147483648", -21474836480000},
        ParseRow{"Decimals", "1.5", 15000}, ParseRow{"FourDecimals", "0.0001", 1},
        ParseRow{"FifthDecimalCutNotRounded", "1.99999", 19999},
        ParseRow{"FieldOfLine", "183442|R|", 1834420000},
        ParseRow{"LargestExact", "922337203685477.5807", kMax},
        ParseRow{"SmallestExact", "-922337203685477.5808", kMin},
        ParseRow{"TooLargeSaturates", "99999999999999999999999", kMax},
        ParseRow{"JustPastLargestSaturates", "922337203685477.5808", kMax}),
    [](const auto& info) { return std::string(info.param.name); });

struct TextRow {
    const char* name;
    std::int64_t raw;
    const char* text;
};

class FixedToText : public ::testing::TestWithParam<TextRow> {};

TEST_P(FixedToText, PlainDigits) {
    EXPECT_EQ(ct::FixedText(ct::Fixed{GetParam().raw}), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, FixedToText,
    ::testing::Values(TextRow{"Zero", 0, "0"}, TextRow{"Whole", 6543114240000, "654311424"},
                      TextRow{"NegativeWhole", -21474836480000, "-2147483648"},
                      TextRow{"Half", 15000, "1.5"}, TextRow{"Smallest", 1, "0.0001"},
                      TextRow{"NegativeFraction", -5000, "-0.5"},
                      TextRow{"Largest", kMax, "922337203685477.5807"},
                      TextRow{"MostNegative", kMin, "-922337203685477.5808"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(FixedRoundTrip, TextReadsBackToTheSameValue) {
    for (std::int64_t raw : {std::int64_t{0}, std::int64_t{1}, std::int64_t{-1}, std::int64_t{12345},
                             std::int64_t{-98765432109}, kMax, kMin})
        EXPECT_EQ(ct::ParseLeadingDecimal(ct::FixedText(ct::Fixed{raw})).raw, raw) << raw;
}

}  // namespace
