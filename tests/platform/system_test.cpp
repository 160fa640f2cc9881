#include "platform/system.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <thread>

#include "support/scratch.h"

namespace ct {
namespace {

using test::ReadAll;
using test::Scratch;

std::string Executable(const Scratch& s, const std::string& name, const std::string& script = "#!/bin/sh\n") {
    const std::string path = s.File(name, script);
    chmod(path.c_str(), 0755);
    return path;
}

// Waits a little for a file that a started program writes.
std::string AwaitFile(const std::string& path) {
    for (int i = 0; i < 200; ++i) {
        struct stat st{};
        if (stat(path.c_str(), &st) == 0 && st.st_size > 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            return ReadAll(path);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return {};
}

TEST(SplitCommandLine, ProgramFolderWithBlanks) {
    Scratch s;
    s.Folder("x y");
    const std::string viewer = Executable(s, "x y/folihelp.exe");
    std::string program, argument;
    ASSERT_TRUE(SplitCommandLine(viewer + " " + s.Path() + "/x y/CT0.fhp, Index", program, argument));
    EXPECT_EQ(program, viewer);
    EXPECT_EQ(argument, s.Path() + "/x y/CT0.fhp, Index");
}

TEST(StartCommandLine, HandsTheRestOverAsOneArgumentAndLeavesNoChild) {
    Scratch s;
    s.Folder("x y");
    const std::string out = s / "args";
    const std::string viewer =
        Executable(s, "x y/folihelp.exe", "#!/bin/sh\nprintf '%s|' \"$#\" \"$@\" > '" + out + ".tmp'\nmv '" + out +
                                              ".tmp' '" + out + "'\n");
    ASSERT_TRUE(StartCommandLine(viewer + " " + s.Path() + "/x y/CT1.fhp, Inhalt"));
    EXPECT_EQ(AwaitFile(out), "1|" + s.Path() + "/x y/CT1.fhp, Inhalt|");
    // The program was never our child, so nothing is left to reap.
    int status = 0;
    EXPECT_EQ(waitpid(-1, &status, WNOHANG), -1);
    EXPECT_EQ(errno, ECHILD);
}

}  // namespace
}  // namespace ct
