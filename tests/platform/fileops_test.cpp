#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstring>
#include <string>

#include "core/fileops.h"
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
    add("create in /proc", [&](std::string* e) { return ops.Create("/proc/cartulon.idx", e) != nullptr; },
        "/proc/cartulon.idx");
    add("rename missing", [&](std::string* e) { return ops.Rename(s / "nope", s / "b", e); }, s / "nope");
    add("rename into missing folder", [&](std::string* e) { return ops.Rename(s / "there.idx", missing, e); },
        missing);
    add("copy missing source", [&](std::string* e) { return ops.Copy(s / "nope", s / "b", e); }, s / "nope");
    add("copy into missing folder", [&](std::string* e) { return ops.Copy(s / "there.idx", missing, e); }, missing);
    add("copy into /proc", [&](std::string* e) { return ops.Copy(s / "there.idx", "/proc/x.idx", e); },
        "/proc/x.idx");
    add("remove missing", [&](std::string* e) { return ops.Remove(s / "nope", e); }, s / "nope");
    for (const auto& r : rows) {
        EXPECT_FALSE(r.ok) << r.name;
        EXPECT_NE(r.error.find(r.mentions), std::string::npos) << r.name << ": " << r.error;
        EXPECT_FALSE(r.error.empty()) << r.name;
    }
    EXPECT_NE(rows[0].error.find(noEntry), std::string::npos) << rows[0].error;
    EXPECT_EQ(ReadAll(s / "there.idx"), "x");
    EXPECT_FALSE(ops.Exists(s / "b"));
    // A null error pointer is allowed.
    EXPECT_FALSE(ops.Remove(s / "nope", nullptr));
}

}  // namespace
}  // namespace ct
