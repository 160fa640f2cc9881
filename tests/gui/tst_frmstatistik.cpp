// The statistics window: a run over the listed discs fills the figures, the
// progress bar counts the discs, and a close in the middle stops the run. The
// sums and averages themselves are the core's test.
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QPushButton>
#include <QtTest>

#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmStatistik.h"
#include "support/GuiFixture.h"

using namespace ct;
using namespace ct::test;

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
}  // namespace

class TstFrmStatistik : public QObject {
    Q_OBJECT
private slots:
    void runFillsTheFigures() {
        GuiFixture fx(CARTULON_STAGE_DIR);
        fx.WriteCatalogue("A", Catalogue("654311424", 2, 3));
        fx.WriteCatalogue("B", Catalogue("700000000", 5, 4));
        auto main = fx.StartMain();
        frmStatistik w(main.get());
        QCOMPARE(Values(w), (QStringList{"-", "-", "-", "-", "-", "-", "-"}));
        QList<int> bar;
        QObject::connect(w.ProgressBar, &QProgressBar::valueChanged, [&](int v) { bar.append(v); });
        w.cmdStatistikErstellen->click();
        QStringList expected{"2", "1354311424 Bytes (1,26 GB)", "7", "7", "677155712 Bytes (0,63 GB)", "3,5", "3,5"};
        for (QString& s : expected) s.replace(',', QLocale::system().decimalPoint());
        QCOMPARE(Values(w), expected);
        QCOMPARE(bar, (QList<int>{1, 2, 0}));
        QCOMPARE(w.lblAktion->text(), QString("Fertig!"));
        QVERIFY(!QGuiApplication::overrideCursor());
    }

    void closeDuringARunStopsIt() {
        GuiFixture fx(CARTULON_STAGE_DIR);
        fx.WriteCatalogue("A", Catalogue("1", 1, 1));
        fx.WriteCatalogue("B", Catalogue("1", 1, 1));
        auto main = fx.StartMain();
        frmStatistik w(main.get());
        w.show();
        QObject::connect(w.ProgressBar, &QProgressBar::valueChanged, &w, [&](int v) {
            if (v == 1) w.close();
        });
        w.cmdStatistikErstellen->click();
        QTRY_VERIFY(!w.isVisible());
        QVERIFY(!w.Running());
        QCOMPARE(w.lblGG->text(), QString("-"));  // the run ended before its figures
    }
};

QTEST_MAIN(TstFrmStatistik)
#include "tst_frmstatistik.moc"
