// Times two commands against each other, interleaved in one process tree:
// runs A, B, B, A, A, B, ... so that a load change on a shared machine falls
// on both sides alike, and reports for each side the median and the best CPU
// time (user + system, from wait4, to the microsecond) and wall time, and the
// peak resident set of its runs (wait4's ru_maxrss).
//
//   cputime RUNS OUTPREFIX -- A-PROGRAM ARGS... -- B-PROGRAM ARGS...
//
// Each side's standard output goes to OUTPREFIX.a / OUTPREFIX.b (grep treats
// /dev/null as -q and stops early, so a real file it is). One line on stdout:
//   a_cpu_med a_cpu_min a_wall_med a_wall_min b_cpu_med b_cpu_min b_wall_med b_wall_min a_rss b_rss
// times in milliseconds, a_rss and b_rss the largest peak of a side's runs in
// KiB (new fields go at the end, so readers of the first ones stay right). A
// failing run (exit status above 1; grep and the search exit 1 for "nothing
// found") makes the tool exit 2.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

struct Sample {
    double cpu = 0, wall = 0;
    long rssKib = 0;
};

double Ms(const timeval& t) { return t.tv_sec * 1e3 + t.tv_usec / 1e3; }

bool RunOnce(std::vector<char*>& argv, const std::string& out, Sample& s) {
    const auto t0 = std::chrono::steady_clock::now();
    const pid_t pid = fork();
    if (pid < 0) return false;
    if (pid == 0) {
        const int fd = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        if (fd < 0) _exit(127);
        dup2(fd, 1);
        close(fd);
        execvp(argv[0], argv.data());
        _exit(127);
    }
    int status = 0;
    rusage ru{};
    if (wait4(pid, &status, 0, &ru) != pid) return false;
    s.wall = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count();
    s.cpu = Ms(ru.ru_utime) + Ms(ru.ru_stime);
    s.rssKib = ru.ru_maxrss;  // KiB on Linux
    return WIFEXITED(status) && WEXITSTATUS(status) <= 1;
}

double Median(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}
double Min(const std::vector<double>& v) { return v.empty() ? 0 : *std::min_element(v.begin(), v.end()); }

}  // namespace

int main(int argc, char** argv) {
    if (argc < 6 || std::string(argv[3]) != "--") {
        std::fprintf(stderr, "usage: cputime RUNS OUTPREFIX -- A ARGS... -- B ARGS...\n");
        return 2;
    }
    const int runs = std::max(1, std::atoi(argv[1]));
    const std::string prefix = argv[2];
    std::vector<char*> side[2];
    int which = 0;
    for (int i = 4; i < argc; ++i) {
        if (std::string(argv[i]) == "--" && which == 0) {
            which = 1;
            continue;
        }
        side[which].push_back(argv[i]);
    }
    if (side[0].empty() || side[1].empty()) return 2;
    for (auto& s : side) s.push_back(nullptr);
    std::vector<double> cpu[2], wall[2];
    long rss[2] = {0, 0};
    for (int r = 0; r < runs; ++r) {
        // A B, then B A: each side runs first as often as second.
        for (int k = 0; k < 2; ++k) {
            const int w = (r % 2 == 0) ? k : 1 - k;
            Sample s;
            if (!RunOnce(side[w], prefix + (w == 0 ? ".a" : ".b"), s)) {
                std::fprintf(stderr, "cputime: %s failed\n", side[w][0]);
                return 2;
            }
            cpu[w].push_back(s.cpu);
            wall[w].push_back(s.wall);
            rss[w] = std::max(rss[w], s.rssKib);
        }
    }
    for (int w = 0; w < 2; ++w)
        std::printf("%.2f %.2f %.2f %.2f ", Median(cpu[w]), Min(cpu[w]), Median(wall[w]), Min(wall[w]));
    std::printf("%ld %ld\n", rss[0], rss[1]);
    return 0;
}
