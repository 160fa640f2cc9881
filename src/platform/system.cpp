// The program folder and the starting of other programs. A started program is
// detached at once (a grandchild of ours, adopted by init), so that the
// program neither waits for it nor leaves a zombie behind.
#include "platform/system.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <vector>

namespace ct {
namespace {

std::string& ProgramFolderOverride() {
    static std::string folder;
    return folder;
}

bool IsExecutableFile(const std::string& path) {
    struct stat st{};
    return !path.empty() && stat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode) &&
           access(path.c_str(), X_OK) == 0;
}

// Starts `program` with `args` in a process of its own session. True once the
// program has been executed; false when it couldn't be.
bool SpawnDetached(const std::string& program, const std::vector<std::string>& args) {
    // Everything the children use is built before fork: after it only
    // async-signal-safe calls are allowed.
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(program.c_str()));
    for (const auto& a : args) argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);

    int report[2];
    if (pipe2(report, O_CLOEXEC) != 0) return false;
    const pid_t child = fork();
    if (child < 0) {
        close(report[0]);
        close(report[1]);
        return false;
    }
    if (child == 0) {
        close(report[0]);
        const pid_t grandchild = fork();
        if (grandchild == 0) {
            setsid();
            execv(argv[0], argv.data());
            const int error = errno;
            (void)!write(report[1], &error, sizeof error);
            _exit(127);
        }
        if (grandchild < 0) {
            const int error = errno;
            (void)!write(report[1], &error, sizeof error);
        }
        _exit(0);
    }
    close(report[1]);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    // The pipe closes without a word when exec succeeded.
    int error = 0;
    ssize_t n = 0;
    do {
        n = read(report[0], &error, sizeof error);
    } while (n < 0 && errno == EINTR);
    close(report[0]);
    return n == 0;
}

std::string FindInPath(const std::string& name) {
    const char* path = std::getenv("PATH");
    std::string dirs = path && *path ? path : "/usr/local/bin:/usr/bin:/bin";
    std::size_t at = 0;
    while (at <= dirs.size()) {
        std::size_t end = dirs.find(':', at);
        if (end == std::string::npos) end = dirs.size();
        std::string candidate = end > at ? dirs.substr(at, end - at) : std::string(1, '.');
        candidate.append(1, '/').append(name);
        if (IsExecutableFile(candidate)) return candidate;
        at = end + 1;
    }
    return {};
}

}  // namespace

std::string ProgramFolder() {
    if (!ProgramFolderOverride().empty()) return ProgramFolderOverride();
    char buf[PATH_MAX];
    const ssize_t n = readlink("/proc/self/exe", buf, sizeof buf - 1);
    if (n <= 0) return ".";
    const std::string exe(buf, static_cast<std::size_t>(n));
    const auto slash = exe.rfind('/');
    return slash == std::string::npos ? std::string(".") : exe.substr(0, slash);
}

void SetProgramFolderForTesting(const std::string& folder) { ProgramFolderOverride() = folder; }

bool SplitCommandLine(const std::string& commandLine, std::string& program, std::string& argument) {
    for (std::size_t blank = commandLine.find(' '); blank != std::string::npos;
         blank = commandLine.find(' ', blank + 1)) {
        const std::string prefix = commandLine.substr(0, blank);
        if (IsExecutableFile(prefix)) {
            program = prefix;
            argument = commandLine.substr(blank + 1);
            return true;
        }
    }
    if (IsExecutableFile(commandLine)) {
        program = commandLine;
        argument.clear();
        return true;
    }
    return false;
}

bool StartCommandLine(const std::string& commandLine) {
    std::string program, argument;
    if (!SplitCommandLine(commandLine, program, argument)) return false;
    if (program.size() == commandLine.size()) return SpawnDetached(program, {});
    return SpawnDetached(program, {argument});
}

bool OpenTarget(const std::string& target) {
    const std::string opener = FindInPath("xdg-open");
    if (opener.empty() || target.empty()) return false;
    return SpawnDetached(opener, {target});
}

}  // namespace ct
