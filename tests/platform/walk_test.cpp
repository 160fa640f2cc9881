#include "platform/walk.h"

#include <dirent.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

#include "support/scratch.h"

namespace ct {
namespace {

using test::Scratch;

std::vector<std::string> Names(const WalkList& list) {
    std::vector<std::string> names;
    for (const auto& r : list) names.push_back(r.Name);
    return names;
}

// The order the file system itself delivers, read here independently: the
// walker must neither sort nor reorder.
void ReaddirWalk(const std::string& path, std::vector<std::string>& folders, std::vector<std::string>& files) {
    DIR* dir = opendir(path.c_str());
    ASSERT_NE(dir, nullptr);
    while (const dirent* e = readdir(dir)) {
        const std::string name = e->d_name;
        if (name == "." || name == "..") continue;
        const std::string full = path + "/" + name;
        struct stat st{};
        ASSERT_EQ(lstat(full.c_str(), &st), 0);
        if (S_ISDIR(st.st_mode)) {
            folders.push_back(full);
            ReaddirWalk(full, folders, files);
        } else {
            files.push_back(full);
        }
    }
    closedir(dir);
}

const WalkRecord* Find(const WalkList& list, const std::string& name) {
    for (const auto& r : list)
        if (r.Name == name) return &r;
    return nullptr;
}

TEST(WalkFolder, DepthFirstInDeliveryOrderGoingDownAtOnce) {
    Scratch s;
    // Enough entries that the file system's order is no accident of creation.
    for (int i = 0; i < 12; ++i) s.File("f" + std::to_string(i) + ".txt", "x");
    s.Folder("sub/deeper");
    s.File("sub/a.jpg", "abc");
    s.File("sub/deeper/z.bin", "12345");
    s.Folder("other");
    s.File("other/o.txt");
    std::vector<std::string> folders, files;
    ReaddirWalk(s.Path(), folders, files);

    WalkList gotFolders, gotFiles;
    WalkFolder(s.Path(), gotFolders, gotFiles);
    EXPECT_EQ(Names(gotFolders), folders);
    EXPECT_EQ(Names(gotFiles), files);
    // A folder's own record stands before the folders below it.
    EXPECT_EQ(Names(gotFolders).size(), 3u);
}

// Samba keeps the hidden and system flags a Windows client set in an xattr.
TEST(WalkFolder, SambaHiddenAndSystemFlagsCount) {
    Scratch s;
    // attrib_hex "", version, level, padding, valid flags, flags, times.
    const std::string level4 =
        std::string("\0\0\x04\0\x04\0\0\0\x11\0\0\0\x26\0\0\0", 16) + std::string(16, '\0');
    const std::string level3 =
        std::string("\0\0\x03\0\x03\0\0\0\x01\0\0\0\x04\0\0\0", 16) + std::string(24, '\0');
    const struct {
        const char* name;
        std::string value;
        const char* attributes;
    } rows[] = {
        {"hex-hidden", std::string("0x2\0", 4), "H A"},
        {"hex-readonly-ignored", std::string("0x21\0", 5), "A"},
        {"level4-hidden-system", level4, "H S A"},
        {"level3-system", level3, "S A"},
        {"garbage", std::string("\xFF\xFF\xFF", 3), "A"},
    };
    for (const auto& row : rows) {
        const std::string file = s.File(row.name);
        if (setxattr(file.c_str(), "user.DOSATTRIB", row.value.data(), row.value.size(), 0) != 0)
            GTEST_SKIP() << "no user xattrs here";
    }
    WalkList folders, files;
    WalkFolder(s.Path(), folders, files);
    for (const auto& row : rows) {
        const WalkRecord* r = Find(files, s / row.name);
        ASSERT_NE(r, nullptr) << row.name;
        EXPECT_EQ(r->Attributes, row.attributes) << row.name;
    }
}

// The creation time where the file system keeps one, else the last write,
// always as UTC text.
TEST(WalkFolder, DateIsTheCreationTimeInUtc) {
    Scratch s;
    const std::string file = s.File("dated");
    struct timespec times[2] = {{1000000000, 0}, {1000000000, 0}};  // 09.09.2001 01:46:40 UTC
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    struct statx st{};
    ASSERT_EQ(statx(AT_FDCWD, file.c_str(), AT_SYMLINK_NOFOLLOW, STATX_BTIME | STATX_MTIME, &st), 0);
    std::string expected = "09.09.2001 01:46:40";
    if (st.stx_mask & STATX_BTIME) {
        const std::time_t t = st.stx_btime.tv_sec;
        std::tm tm{};
        gmtime_r(&t, &tm);
        char buf[64];
        std::snprintf(buf, sizeof buf, "%02d.%02d.%d %02d:%02d:%02d", tm.tm_mday, tm.tm_mon + 1,
                      tm.tm_year + 1900, tm.tm_hour, tm.tm_min, tm.tm_sec);
        expected = buf;
    }
    WalkList folders, files;
    WalkFolder(s.Path(), folders, files);
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(files[0].Date, expected);
}

// The discs of a data folder, from a tree of everything that may stand in
// one: no folder, FIFO or link to a FIFO, and a link to nothing counts.
TEST(CatalogueLabels, OnlyWhatReadsAsACatalogue) {
    test::Scratch dir;
    const std::string data = dir.Mkdir("data");
    dir.File("data/Fotos.idx", "x");
    dir.File("data/unter/Alt.idx", "x");
    dir.File("data/notiz.txt", "x");
    dir.Mkdir("data/Ordner.idx");
    dir.File("elsewhere/Fremd.idx", "x");
    ASSERT_EQ(mkfifo((data + "/Rohr.idx").c_str(), 0600), 0);
    ASSERT_EQ(symlink((dir / "elsewhere/Fremd.idx").c_str(), (data + "/Verweis.idx").c_str()), 0);
    ASSERT_EQ(symlink((data + "/Rohr.idx").c_str(), (data + "/AufRohr.idx").c_str()), 0);
    ASSERT_EQ(symlink((dir / "fehlt").c_str(), (data + "/Leer.idx").c_str()), 0);
    ASSERT_EQ(symlink((dir / "elsewhere").c_str(), (data + "/woanders").c_str()), 0);

    std::vector<std::string> listed = CatalogueLabels(data);
    std::sort(listed.begin(), listed.end());
    EXPECT_EQ(listed, (std::vector<std::string>{"Alt", "Fotos", "Leer", "Verweis"}));
}

}  // namespace
}  // namespace ct
