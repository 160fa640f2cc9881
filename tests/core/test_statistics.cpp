// The collection's figures: the worked example, the rounding, and catalogues
// that are missing or cut short.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "core/statistics.h"
#include "support/scratch.h"

namespace fs = std::filesystem;

namespace {

class Statistics : public ::testing::Test {
protected:
    ct::test::Scratch scratch;
    fs::path data = scratch.Path();

    void Catalogue(const std::string& label, const std::string& size, int folders, int files,
                   const std::string& tail = {}) {
        std::string text = size + "|0|CDFS|1|1|1|desc\r\n\r\n";
        for (int i = 0; i < folders; ++i) text += "\\f" + std::to_string(i) + "|R|t|\r\n";
        text += "\r\n";
        for (int i = 0; i < files; ++i) text += "\\f" + std::to_string(i) + ".txt|-5|R|t|\r\n";
        Write(label, text + tail);
    }
    void Write(const std::string& label, const std::string& text) {
        std::ofstream(data / (label + ".idx"), std::ios::binary) << text;
    }
};

std::vector<std::string> All(const ct::StatisticsFigures& f) {
    return {f.discs, f.totalSize, f.folders, f.files, f.averageSize, f.averageFolders, f.averageFiles};
}

TEST_F(Statistics, TheWorkedExample) {
    Catalogue("A", "654311424", 2, 3);
    Catalogue("B", "700000000", 5, 4);
    const auto totals = ct::CollectStatistics(data.string(), {"A", "B"});
    EXPECT_EQ(All(ct::FormatStatistics(totals, ",")),
              (std::vector<std::string>{"2", "1354311424 Bytes (1,26 GB)", "7", "7",
                                        "677155712 Bytes (0,63 GB)", "3,5", "3,5"}));
    EXPECT_EQ(All(ct::FormatStatistics(totals, ".")),
              (std::vector<std::string>{"2", "1354311424 Bytes (1.26 GB)", "7", "7",
                                        "677155712 Bytes (0.63 GB)", "3.5", "3.5"}));
}

TEST_F(Statistics, MissingAndCutShortCataloguesCountWhatCanBeRead) {
    Catalogue("A", "1000", 2, 3);
    Write("Cut", "500|0|CDFS|1|1|1|\r\n\r\n\\f1|||\r\n\\f2|||");  // no end of the folders
    Write("Empty", "");
    std::vector<std::size_t> seen;
    const auto totals = ct::CollectStatistics(
        data.string(), {"A", "Cut", "Gone", "Empty"},
        [&](std::size_t disc, std::size_t discs) {
            EXPECT_EQ(discs, 4u);
            seen.push_back(disc);
            return true;
        });
    EXPECT_EQ(seen, (std::vector<std::size_t>{1, 2, 3, 4}));
    EXPECT_EQ(totals.discs, 4);
    EXPECT_EQ(totals.totalSize, ct::Fixed::FromInt(1500));
    EXPECT_EQ(totals.folders, 4);
    EXPECT_EQ(totals.files, 3);
    EXPECT_TRUE(totals.complete);
}

struct RoundRow {
    const char* name;
    double value;
    const char* text;
};

class Round2 : public ::testing::TestWithParam<RoundRow> {};

TEST_P(Round2, TiesGoToEvenAndOnlyNeededDecimalsShow) {
    EXPECT_EQ(ct::Round2Text(GetParam().value, ","), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Values, Round2,
    ::testing::Values(RoundRow{"TieDown", 2.125, "2,12"},
                      RoundRow{"OneDecimal", 2.5, "2,5"},
                      RoundRow{"NoGroupSeparator", 1234567.891, "1234567,89"},
                      RoundRow{"GigabytesOfTheExample", 1354311424.0 / 1024 / 1024 / 1024, "1,26"}),
    [](const auto& info) { return std::string(info.param.name); });

}  // namespace
