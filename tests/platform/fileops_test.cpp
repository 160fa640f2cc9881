#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "core/bigblock.h"
#include "core/fileops.h"
#include "core/statistics.h"
#include "support/scratch.h"

namespace ct {
namespace {

using test::ReadAll;
using test::Scratch;

TEST(SystemFileOps, CopyReplacesAndKeepsTheSource) {
    Scratch s;
    std::string big(300 * 1024, 'x');
    for (std::size_t i = 0; i < big.size(); ++i) big[i] = static_cast<char>(i * 31 % 256);
    s.File("from.idx", big);
    s.File("to.idx", "older and longer than nothing");
    std::string error;
    ASSERT_TRUE(SystemFileOps().Copy(s / "from.idx", s / "to.idx", &error)) << error;
    EXPECT_EQ(ReadAll(s / "to.idx"), big);
    EXPECT_EQ(ReadAll(s / "from.idx"), big);
}

TEST(SystemFileOps, CopyOntoItselfLosesNothing) {
    Scratch s;
    s.File("same.idx", "content");
    EXPECT_TRUE(SystemFileOps().Copy(s / "same.idx", s / "same.idx", nullptr));
    EXPECT_TRUE(SystemFileOps().Copy(s / "same.idx", s.Path() + "/./same.idx", nullptr));
    EXPECT_EQ(ReadAll(s / "same.idx"), "content");
}

// Failures a user can meet: a folder that is gone, a file that is gone, a
// place nobody may write (root may write anywhere, so /proc stands in).
TEST(SystemFileOps, FailuresSayWhatAndWhy) {
    Scratch s;
    s.File("there.idx", "x");
    FileOps& ops = SystemFileOps();
    const std::string noEntry = std::strerror(ENOENT);
    const std::string missing = s / "gone/a.idx";
    struct Row {
        const char* name;
        bool ok;
        std::string error;
        std::string mentions;
    };
    std::vector<Row> rows;
    auto add = [&](const char* name, auto call, const std::string& mentions) {
        Row r{name, false, {}, mentions};
        r.ok = call(&r.error);
        rows.push_back(r);
    };
    add("create in missing folder", [&](std::string* e) { return ops.Create(missing, e) != nullptr; }, missing);
    add("rename missing", [&](std::string* e) { return ops.Rename(s / "nope", s / "b", e); }, s / "nope");
    add("rename into missing folder", [&](std::string* e) { return ops.Rename(s / "there.idx", missing, e); },
        missing);
    add("copy missing source", [&](std::string* e) { return ops.Copy(s / "nope", s / "b", e); }, s / "nope");
    add("copy into /proc", [&](std::string* e) { return ops.Copy(s / "there.idx", "/proc/x.idx", e); },
        "/proc/x.idx");
    add("remove missing", [&](std::string* e) { return ops.Remove(s / "nope", e); }, s / "nope");
    for (const auto& r : rows) {
        EXPECT_FALSE(r.ok) << r.name;
        EXPECT_NE(r.error.find(r.mentions), std::string::npos) << r.name << ": " << r.error;
    }
    EXPECT_NE(rows[0].error.find(noEntry), std::string::npos) << rows[0].error;
    EXPECT_EQ(ReadAll(s / "there.idx"), "x");
    EXPECT_FALSE(ops.Exists(s / "b"));
    // A null error pointer is allowed.
    EXPECT_FALSE(ops.Remove(s / "nope", nullptr));
}

struct InPlaceRow {
    const char* name;
    std::string bytes;  // from the first block's end on (the header block is added)
};

// Line ends of every kind, and a CR LF astride every window end once.
std::vector<InPlaceRow> InPlaceRows() {
    std::string lines;
    for (int i = 0; lines.size() < 5 * 4096; ++i) lines += "\\f" + std::string(i % 97, 'x') + "|1|A||\r\n";
    return {{"CrLf", lines},
            {"LfOnly", std::string(9000, 'a') + "\n" + std::string(8000, 'b') + "\nc"},
            {"LoneCrAndCrAtTheEnd", std::string(4095, 'a') + "\r\r\n" + std::string(5000, 'b') + "\r"},
            {"NoFinalLineEnd", std::string(4095, 'a') + "\r\n" + std::string(9000, 'b')}};
}

// A large file section is counted where it stands, window by window, and
// gives what reading it gives.
TEST(ScanInPlace, CountsAsReadingDoes) {
    Scratch dir;
    SetMapWindowForTesting(4096);
    for (const InPlaceRow& row : InPlaceRows()) {
        // The header and an empty folder section fill the first block exactly.
        std::string head = "1|2|UDF|3|1|2048|";
        head += std::string(4096 - head.size() - 6, 'd') + "\r\n\r\n\r\n";
        const std::string path = dir.Write("c.idx", head + row.bytes);
        CatalogueCounter inPlace(8192, 1), reading(8192, UINT64_MAX);
        const CatalogueCounts a = inPlace.Count(path), b = reading.Count(path);
        EXPECT_EQ(a.files, b.files) << row.name;
        EXPECT_GT(a.files, 0) << row.name;
    }
    SetMapWindowForTesting(std::size_t{4} << 20);
}

// A file another program cuts short under the scan costs the scan, not the
// program: the guard leaves it and the caller reads again.
TEST(ScanInPlace, FileCutShortUnderTheScanIsSurvived) {
    Scratch dir;
    const std::string path = dir.Write("c.idx", std::string(3 * 4096, 'x'));
    std::uint64_t size = 0;
    const ReadFile file = OpenForReading(path, nullptr, &size);
    ASSERT_TRUE(file);
    std::size_t seen = 0;
    EXPECT_TRUE(file->ScanInPlace(0, size, [&](const char* p, std::size_t n) {
        seen += static_cast<std::size_t>(std::count(p, p + n, 'x'));
    }));
    EXPECT_EQ(seen, size);
    EXPECT_FALSE(file->ScanInPlace(100, size, [](const char*, std::size_t) {}));  // not on a page
    bool cut = false;
    EXPECT_FALSE(file->ScanInPlace(0, size, [&](const char* p, std::size_t n) {
        ASSERT_EQ(truncate(path.c_str(), 0), 0);
        cut = true;
        seen = static_cast<unsigned char>(p[n - 1]);  // beyond the new end: SIGBUS
    }));
    EXPECT_TRUE(cut);
}

// The system is asked for large pages for a megabyte or more, on the 2 MiB
// they come in; a vector that grows across that line moves between the two
// kinds of memory and keeps what it held.
struct Advised {
    void* at;
    std::size_t bytes;
};
std::vector<Advised> gAdvised;

TEST(BigBlocks, FromAMegabyteAlignedAndAdvised) {
    SystemFileOps();
    const BigBlockAdvice system = SetBigBlockAdvice([](void* at, std::size_t bytes) { gAdvised.push_back({at, bytes}); });
    EXPECT_NE(system, nullptr) << "the platform gives no advice";
    const struct {
        const char* name;
        std::size_t bytes, advised;
    } rows[] = {
        {"a page", 4096, 0},
        {"a byte short of a megabyte", (1u << 20) - 1, 0},
        {"a megabyte", 1u << 20, 2u << 20},
        {"a block", 2u << 20, 2u << 20},
        {"a block and a byte", (2u << 20) + 1, 4u << 20},
    };
    for (const auto& row : rows) {
        gAdvised.clear();
        void* at = AllocateBig(row.bytes);
        std::memset(at, 0x5a, row.bytes);
        if (row.advised) {
            ASSERT_EQ(gAdvised.size(), 1u) << row.name;
            EXPECT_EQ(gAdvised[0].at, at) << row.name;
            EXPECT_EQ(gAdvised[0].bytes, row.advised) << row.name;
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(at) % kBigBlock, 0u) << row.name;
        } else {
            EXPECT_TRUE(gAdvised.empty()) << row.name;
        }
        FreeBig(at, row.bytes);
    }
    std::vector<std::uint32_t, BigAllocator<std::uint32_t>> grown;
    for (std::uint32_t i = 0; i < 1000000; ++i) grown.push_back(i * 2654435761u);
    std::uint32_t wrong = 0;
    for (std::uint32_t i = 0; i < grown.size(); ++i) wrong += grown[i] != i * 2654435761u;
    EXPECT_EQ(wrong, 0u);
    EXPECT_FALSE(gAdvised.empty());
    SetBigBlockAdvice(system);
}

}  // namespace
}  // namespace ct
