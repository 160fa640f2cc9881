// The statistics window: the worked example, the states before, during and
// after a run, a click or a close in the middle of a run, and the texts.
#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QtTest>
#include <memory>

#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmStatistik.h"
#include "support/GuiFixture.h"
#include "support/TestRunner.h"

using namespace ct;
using ct::test::GuiFixture;

namespace {

std::vector<std::string> Catalogue(const std::string& size, int folders, int files) {
    std::vector<std::string> lines{size + "|0|CDFS|1|1|1|", ""};
    for (int i = 0; i < folders; ++i) lines.push_back("\\f" + std::to_string(i) + "|R|t|");
    lines.push_back("");
    for (int i = 0; i < files; ++i) lines.push_back("\\f" + std::to_string(i) + ".txt|-5|R|t|");
    return lines;
}

QStringList Values(const frmStatistik& w) {
    return {w.lblA->text(), w.lblGG->text(), w.lblGAO->text(), w.lblGAD->text(),
            w.lblDG->text(), w.lblDAO->text(), w.lblDAD->text()};
}

// The example's figures with the decimal separator of the user's locale.
QStringList Example() {
    QStringList v{"2", "1354311424 Bytes (1,26 GB)", "7", "7", "677155712 Bytes (0,63 GB)", "3,5", "3,5"};
    for (QString& s : v) s.replace(',', QLocale::system().decimalPoint());
    return v;
}

struct Setup {
    GuiFixture fixture{CARTULON_STAGE_DIR};
    std::unique_ptr<frmHaupt> main;
    explicit Setup(bool example = true) {
        CT_VERIFY(fixture.IsValid());
        if (example) {
            fixture.WriteCatalogue("A", Catalogue("654311424", 2, 3));
            fixture.WriteCatalogue("B", Catalogue("700000000", 5, 4));
        }
        main = fixture.StartMain();
    }
};

}  // namespace

CT_TEST(firstStateShowsDashes) {
    Setup s;
    frmStatistik w(s.main.get());
    CT_COMPARE(w.windowTitle(), ResourceText(10018));
    CT_COMPARE(w.cmdStatistikErstellen->text(), ResourceText(10056));
    CT_COMPARE(w.lblAnzahl->text(), ResourceText(10057));
    CT_COMPARE(w.lblDurchschnittsanzahlD->text(), ResourceText(10063));
    CT_COMPARE(Values(w), (QStringList{"-", "-", "-", "-", "-", "-", "-"}));
    CT_COMPARE(w.lblAktion->text(), "");
    CT_VERIFY(w.cmdStatistikErstellen->isDefault());
}

CT_TEST(theWorkedExample) {
    Setup s;
    frmStatistik w(s.main.get());
    QList<int> bar;
    QStringList action;
    QObject::connect(w.ProgressBar, &QProgressBar::valueChanged, [&](int v) {
        bar.append(v);
        action.append(w.lblAktion->text());
    });
    w.cmdStatistikErstellen->click();
    CT_COMPARE(Values(w), Example());
    CT_COMPARE(w.ProgressBar->maximum(), 2);
    CT_COMPARE(bar, (QList<int>{1, 2, 0}));
    CT_COMPARE(action.first(), "Statistik wird erstellt:");
    CT_COMPARE(w.lblAktion->text(), "Fertig!");
    CT_VERIFY(!QGuiApplication::overrideCursor());
}

CT_TEST(secondRunGivesTheSameFigures) {
    Setup s;
    frmStatistik w(s.main.get());
    w.cmdStatistikErstellen->click();
    w.cmdStatistikErstellen->click();
    CT_COMPARE(Values(w), Example());
}

CT_TEST(emptyListShowsZeros) {
    Setup s(false);
    frmStatistik w(s.main.get());
    w.cmdStatistikErstellen->click();
    CT_COMPARE(Values(w), (QStringList{"0", "0 Bytes (0 GB)", "0", "0", "0 Bytes (0 GB)", "0", "0"}));
    CT_COMPARE(w.lblAktion->text(), "Fertig!");
}

CT_TEST(textsStayGermanInEnglish) {
    Setup s;
    Start::Language = 10000;
    frmStatistik w(s.main.get());
    QStringList action;
    QObject::connect(w.ProgressBar, &QProgressBar::valueChanged, [&](int) { action.append(w.lblAktion->text()); });
    w.cmdStatistikErstellen->click();
    CT_COMPARE(w.windowTitle(), "Statistics");
    CT_COMPARE(action.first(), "Statistik wird erstellt:");
    CT_COMPARE(w.lblAktion->text(), "Fertig!");
}

CT_TEST(clickDuringARunStartsNoRunInside) {
    Setup s;
    frmStatistik w(s.main.get());
    int nestedRuns = 0;
    bool sawRunning = false;
    // Lands in the run's first yield: a second press while the first runs.
    QTimer::singleShot(0, [&] {
        sawRunning = w.Running();
        const QString before = w.lblAktion->text();
        w.cmdStatistikErstellen->click();
        if (w.lblAktion->text() != before) ++nestedRuns;
    });
    w.cmdStatistikErstellen->click();
    CT_VERIFY(sawRunning);
    CT_COMPARE(nestedRuns, 0);
    CT_COMPARE(Values(w), Example());
}

CT_TEST(closeDuringARunStopsIt) {
    Setup s;
    for (int i = 0; i < 5; ++i) s.fixture.WriteCatalogue("C" + std::to_string(i), Catalogue("1", 1, 1));
    s.main->Aktualisieren();
    frmStatistik w(s.main.get());
    w.show();
    int yields = 0;
    QObject::connect(w.ProgressBar, &QProgressBar::valueChanged, [&](int v) {
        if (v > 0) ++yields;
    });
    QTimer::singleShot(0, [&] { w.close(); });
    w.cmdStatistikErstellen->click();
    CT_VERIFY(!w.isVisible());
    CT_COMPARE(w.result(), int(QDialog::Rejected));
    CT_VERIFY2(yields < 7, std::to_string(yields));
    CT_COMPARE(w.lblA->text(), "7");  // the count is shown when the run starts
    CT_COMPARE(w.lblGG->text(), "-");
    CT_VERIFY(!QGuiApplication::overrideCursor());
}

CT_TEST(helpKeyOpensTheTopic) {
    Setup s;
    frmStatistik w(s.main.get());
    w.show();
    QTest::keyClick(w.cmdStatistikErstellen, Qt::Key_F1);
    CT_COMPARE(s.fixture.helpCalls.size(), std::size_t{1});
    CT_VERIFY(QString::fromStdString(s.fixture.helpCalls[0]).endsWith(", " + ResourceText(10018)));
}

CT_TEST(screenshots) {
    const QString dir = qEnvironmentVariable("CT_SCREENSHOTS");
    if (dir.isEmpty()) return;
    QDir().mkpath(dir);
    for (int language : {0, 10000}) {
        Setup s;
        Start::Language = static_cast<std::int16_t>(language);
        const QString suffix = language == 0 ? "_de" : "_en";
        frmStatistik w(s.main.get());
        w.show();
        QTest::qWait(200);
        w.grab().save(dir + "/frmStatistik_empty" + suffix + ".png");
        QObject::connect(w.ProgressBar, &QProgressBar::valueChanged, [&](int v) {
            if (v == 1) w.grab().save(dir + "/frmStatistik_running" + suffix + ".png");
        });
        w.cmdStatistikErstellen->click();
        QTest::qWait(200);
        w.grab().save(dir + "/frmStatistik" + suffix + ".png");
    }
}

CT_TEST_MAIN()
