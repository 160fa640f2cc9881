#include "TestRunner.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>
#include <QWidget>
#include <cstdio>
#include <exception>

namespace ct::test {

namespace {
struct Case {
    std::string name, row;
    std::function<void()> body;
};
std::vector<Case>& Cases() {
    static std::vector<Case> cases;
    return cases;
}

bool Selected(const Case& c, int argc, char** argv) {
    bool any = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg.empty() || arg[0] == '-') continue;
        any = true;
        if (arg == c.name || arg == c.name + ":" + c.row) return true;
    }
    return !any;
}

// What one case leaves behind must not reach the next.
void Tidy() {
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->isVisible() && w->isModal()) w->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    while (QGuiApplication::overrideCursor()) QGuiApplication::restoreOverrideCursor();
}
}  // namespace

void Register(const char* name, const char* row, std::function<void()> body) {
    Cases().push_back({name, row ? row : "", std::move(body)});
}

int RunAll(int argc, char** argv) {
    int passed = 0, failed = 0;
    const std::string program = argc > 0 ? argv[0] : "test";
    std::printf("********* Start testing of %s *********\n", program.c_str());
    for (const Case& c : Cases()) {
        if (!Selected(c, argc, argv)) continue;
        const std::string title = c.row.empty() ? c.name + "()" : c.name + "(" + c.row + ")";
        try {
            c.body();
            ++passed;
            std::printf("PASS   : %s\n", title.c_str());
        } catch (const CheckFailed& f) {
            ++failed;
            std::printf("FAIL!  : %s %s\n   Loc: [%s(%d)]\n", title.c_str(), f.message.c_str(), f.file, f.line);
        } catch (const std::exception& e) {
            ++failed;
            std::printf("FAIL!  : %s threw: %s\n", title.c_str(), e.what());
        }
        std::fflush(stdout);
        Tidy();
    }
    std::printf("Totals: %d passed, %d failed\n********* Finished testing of %s *********\n", passed, failed,
                program.c_str());
    return failed > 127 ? 127 : failed;
}

}  // namespace ct::test
