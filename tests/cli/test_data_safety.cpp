// Faults that lost or touched data: two writers at once, labels that leave the
// data folder, FIFOs named like catalogues, deep trees, cancelled re-reads.
// Every child process runs under alarm(), so a hang fails instead of blocking.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>

#include "core/adddisc.h"
#include "core/editing.h"
#include "core/fixed.h"
#include "core/reread.h"
#include "platform/walk.h"
#include "support/scratch.h"

namespace ct {
namespace {

using test::ReadAll;
using test::Scratch;

struct CliRun {
    int code = -1;  // exit code, or -1 when killed (a hang ended by the alarm)
    std::string output;
};

// Runs cartulon-cli on `data`, stdout and stderr into one text.
CliRun Cli(const Scratch& s, const std::string& data, std::vector<std::string> args) {
    const std::string log = s / "cli.log";
    args.insert(args.begin(), CARTULON_CLI);
    args.insert(args.end(), {"--data-folder", data});
    const pid_t pid = fork();
    if (pid == 0) {
        alarm(3);  // survives exec: a blocked open ends here
        setenv("LC_ALL", "de_DE.UTF-8", 1);  // no CT.ini beside the built tool: the locale picks German
        const int fd = open(log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        dup2(fd, 1);
        dup2(fd, 2);
        close(0);
        std::vector<char*> argv;
        for (std::string& a : args) argv.push_back(a.data());
        argv.push_back(nullptr);
        execv(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return CliRun{WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadAll(log)};
}

std::string Catalogue(const std::string& tag, int files) {
    std::string text = "0|0||0|0|0|disc " + tag + "\r\n\r\n\r\n";
    for (int i = 0; i < files; ++i) text += "\\" + tag + std::to_string(i) + "|1|||\r\n";
    return text;
}

// Two processes describe files of one or of two catalogues, each its own
// lines, many rounds. Each reports what it stored; afterwards every reported
// success stands in the file, every line belongs to its own catalogue.
class TwoWriters : public ::testing::TestWithParam<bool> {};

TEST_P(TwoWriters, NoEditLostAndNoCatalogueMixedUp) {
    const bool sameCatalogue = GetParam();
    Scratch s;
    const std::string data = s.Folder("data");
    s.File("data/A.idx", Catalogue("A", 4000));
    s.File("data/B.idx", Catalogue("B", 4000));
    constexpr int kRounds = 40;
    pid_t children[2];
    for (int k = 0; k < 2; ++k) {
        if ((children[k] = fork()) == 0) {
            alarm(60);
            const std::string label = sameCatalogue || k == 0 ? "A" : "B";
            std::ofstream report(s / ("report" + std::to_string(k)));
            for (int r = 0; r < kRounds; ++r) {
                const std::string path = "\\" + label + std::to_string(k * 1000 + r);
                const std::string text = "k" + std::to_string(k) + "r" + std::to_string(r);
                const Failure f = DescriptionRewrite(SystemFileOps(), data, label, false, path, text);
                report << label << ' ' << path << "|1|||" << text << ' ' << (f ? int(f.code) : 0) << std::endl;
            }
            _exit(0);
        }
    }
    for (pid_t child : children) {
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "a writer hung or crashed";
    }
    std::map<std::string, std::string> files{{"A", ReadAll(data + "/A.idx")}, {"B", ReadAll(data + "/B.idx")}};
    int stored = 0;
    for (int k = 0; k < 2; ++k) {
        std::ifstream report(s / ("report" + std::to_string(k)));
        std::string label, edit;
        int code = 0;
        while (report >> label >> edit >> code) {
            const bool present = files[label].find(edit + "\r\n") != std::string::npos;
            EXPECT_EQ(present, code == 0) << edit << " failed with " << code;
            EXPECT_TRUE(code == 0 || code == int(FailCode::Busy)) << code;
            stored += code == 0;
        }
    }
    EXPECT_GT(stored, kRounds);
    for (const auto& [label, text] : files) {
        std::istringstream lines(text);
        std::string line;
        int count = 0;
        while (std::getline(lines, line)) ++count;
        EXPECT_EQ(count, 4003) << label;
        EXPECT_EQ(text.find(label == "A" ? "\\B" : "\\A"), std::string::npos) << label << " holds the other's lines";
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(data), {}), 2) << "scratch files left";
}

INSTANTIATE_TEST_SUITE_P(Catalogues, TwoWriters, ::testing::Values(false, true),
                         [](const auto& info) { return info.param ? "Same" : "Different"; });

// Labels typed in a terminal never reach a file outside the data folder.
TEST(LabelArguments, HostileLabelsAreRefused) {
    Scratch s;
    const std::string data = s.Folder("data");
    s.Folder("out");
    const std::string victim = s.File("out/victim.idx", Catalogue("V", 1));
    s.File("data/CD.idx", Catalogue("C", 1));
    for (const char* label : {"../out/victim", "..", ".", "a/b", "..\\out\\victim", "nodisc", "x\tb"}) {
        for (std::vector<std::string> args : std::vector<std::vector<std::string>>{
                 {"show", label}, {"describe", label, "x"}, {"rename", label, "New"}, {"delete", label, "--yes"}}) {
            const CliRun run = Cli(s, data, args);
            EXPECT_EQ(run.code, 2) << args[0] << " " << label << ": " << run.output;
        }
    }
    EXPECT_EQ(ReadAll(victim), Catalogue("V", 1));
    EXPECT_EQ(ReadAll(data + "/CD.idx"), Catalogue("C", 1));
}

// A FIFO, a folder and a link to a FIFO named like catalogues: every command
// answers at once, lists none of them, and says what they are.
TEST(OddFiles, NoCommandHangsOnANonCatalogue) {
    Scratch s;
    const std::string data = s.Folder("data");
    s.File("data/CD.idx", Catalogue("C", 1));
    ASSERT_EQ(mkfifo((data + "/fifo.idx").c_str(), 0644), 0);
    s.Folder("data/folder.idx");
    ASSERT_EQ(symlink("fifo.idx", (data + "/link.idx").c_str()), 0);
    const CliRun list = Cli(s, data, {"list"});
    EXPECT_EQ(list.code, 0);
    EXPECT_EQ(list.output, "CD\n");
    EXPECT_EQ(Cli(s, data, {"stats"}).code, 0);
    EXPECT_NE(Cli(s, data, {"search", "--name", "contains", "C"}).code, -1);
    for (const char* label : {"fifo", "folder", "link"}) {
        for (std::vector<std::string> args :
             std::vector<std::vector<std::string>>{{"show", label}, {"describe", label, "x"}}) {
            const CliRun run = Cli(s, data, args);
            EXPECT_EQ(run.code, 2) << args[0] << " " << label << ": " << run.output;
            // Not "no disc"; in the language of the environment, as no CT.ini names one.
            EXPECT_TRUE(run.output.find("Katalogdatei") != std::string::npos ||
                        run.output.find("catalogue file") != std::string::npos)
                << run.output;
        }
    }
}

TEST(CleanUp, TakesOnlyScratchFilesNobodyHolds) {
    Scratch s;
    const std::string data = s.Folder("data");
    std::string held;
    auto writing = SystemFileOps().CreateScratch(data, ".idx.part", held, nullptr);
    ASSERT_NE(writing, nullptr);
    const std::vector<std::string> leftovers = {s.File("data/.ct-dead01.idx.part"), s.File("data/.old.idx.part"),
                                                s.File("data/CT.ini.part"), held};
    s.File("data/CD.idx");
    s.File("data/.hidden.idx");
    const struct timespec old[2] = {{1000000000, 0}, {1000000000, 0}};
    for (const std::string& f : leftovers) utimensat(AT_FDCWD, f.c_str(), old, 0);
    EXPECT_EQ(CleanScratchFiles(SystemFileOps(), {data}), 3);
    std::set<std::string> names;
    for (const auto& e : std::filesystem::directory_iterator(data)) names.insert(e.path().string());
    EXPECT_EQ(names, (std::set<std::string>{held, data + "/CD.idx", data + "/.hidden.idx"}));
}

// A tree deeper than the descriptors a process may hold is walked whole.
TEST(Walk, DepthCostsNoDescriptors) {
    Scratch s;
    std::string deep = s.Folder("disc");
    for (int i = 0; i < 120; ++i) deep = s.Folder(deep.substr(s.Path().size() + 1) + "/d");
    s.File(deep.substr(s.Path().size() + 1) + "/bottom.txt", "x");
    const pid_t pid = fork();
    if (pid == 0) {
        alarm(30);
        const struct rlimit few = {40, 40};
        setrlimit(RLIMIT_NOFILE, &few);
        WalkList folders, files;
        WalkFolder(s / "disc", folders, files);
        _exit(folders.size() == 120 && files.size() == 1 ? 0 : 1);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

// A re-read stopped during the walk writes nothing and puts the old
// catalogue back, byte for byte.
TEST(ReRead, CancelledWalkRestoresTheOldCatalogue) {
    Scratch s;
    const std::string data = s.Folder("data");
    s.Folder("disc");
    for (int i = 0; i < 2000; ++i) s.File("disc/f" + std::to_string(i));
    const std::string old = Catalogue("C", 3) + std::string("\xE4|\xFF\r\n", 5);
    s.File("data/CD.idx", old);
    SetAsideFile aside;
    ASSERT_TRUE(SetAside(SystemFileOps(), data, "CD", aside, nullptr));
    AddRequest request{s / "disc", "CD", "", data, {}, {}};
    std::size_t asked = 0;
    request.cancelled = [&asked] { return ++asked == 3; };
    const AddOutcome outcome = AddDisc(request, SystemDiscSource(), SystemFileOps());
    EXPECT_EQ(outcome.result, AddResult::Cancelled);
    EXPECT_LT(outcome.files, 2000u);
    EXPECT_EQ(Restore(SystemDiscSource(), SystemFileOps(), data, aside, nullptr), RestoreResult::Restored);
    EXPECT_EQ(ReadAll(data + "/CD.idx"), old);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(data), {}), 1) << "scratch files left";
}

TEST(Fixed, SumsSaturateInsteadOfWrapping) {
    const Fixed tb900 = Fixed::FromInt(900'000'000'000'000);
    EXPECT_EQ(FixedText(tb900 + tb900), "922337203685477.5807");
    Fixed sum;
    sum += tb900;
    sum += tb900;
    EXPECT_GT(sum.raw, 0);
    EXPECT_EQ((Fixed{-tb900.raw} + Fixed{-tb900.raw}).raw, std::numeric_limits<std::int64_t>::min());
}

}  // namespace
}  // namespace ct
