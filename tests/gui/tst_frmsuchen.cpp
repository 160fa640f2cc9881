// The search window's wiring: the controls reach the engine, hits and their
// details come back, a refused run opens its topic, a stop ends the run, and
// the change button edits from the hit list. The engine's rules are the core's test.
#include <QProgressBar>
#include <QtTest>

#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmSuchen.h"
#include "support/GuiFixture.h"

using namespace ct;
using namespace ct::test;

namespace {
// The example disc "Urlaub" and "Archiv", whose description holds the word,
// with a folder of that name.
void WriteDiscs(GuiFixture& fx) {
    fx.WriteCatalogue("Urlaub", ExampleCatalogue());
    fx.WriteCatalogue("Archiv", {"0|0||0|0|0|alte Urlaubsbilder", "", "\\Urlaub2004|A|05.06.2004 12:00:00|", "",
                                 "\\Urlaub2004\\strand.jpg|0||05.06.2004 12:00:01|"});
}
}  // namespace

class TstFrmSuchen : public QObject {
    Q_OBJECT
private slots:
    void runShowsSortedHitsAndTheirDetails() {
        GuiFixture fx(CARTULON_STAGE_DIR);
        WriteDiscs(fx);
        auto haupt = fx.StartMain();
        frmSuchen s(haupt.get());
        s.txtSuchen->setText("urlaub");
        s.cmdSuchen->click();
        QCOMPARE(Items(s.lstDateien),
                 QStringList({"Archiv", "Archiv\\\\Urlaub2004\\", "Urlaub", "Urlaub\\\\Bilder\\Urlaub\\"}));
        QCOMPARE(s.lblAktion->text(), QString("Fertig!"));
        QCOMPARE(s.lblT->text(), QString("4"));
        s.lstDateien->SetListIndex(3);
        QCOMPARE((QStringList{s.lblG->text(), s.lblA->text(), s.lblD->text(), s.txtBeschreibungText->toPlainText()}),
                 (QStringList{"-", "R", "14.03.2003 09:12:41", "Trip to the coast"}));
        // Files only, by size: the size combo's "greater" reaches the engine.
        s.cboSuchen->setCurrentIndex(0);
        s.txtSuchen->setText("JPG");
        s.CheckDateigröße->click();
        s.cboDateigröße->setCurrentIndex(2);
        s.txtDateigröße->setText("0");
        s.cmdSuchen->click();
        QCOMPARE(Items(s.lstDateien), QStringList({"Urlaub\\\\Bilder\\Urlaub\\p1.jpg"}));
        QCOMPARE((QStringList{s.lblG->text(), s.lblA->text(), s.txtBeschreibungText->toPlainText()}),
                 (QStringList{"183442", "R", "First day"}));
        // Only marked discs are searched.
        s.CheckDateigröße->click();
        for (int i = 0; i < s.lstDaten->count(); ++i)
            s.lstDaten->item(i)->setCheckState(s.lstDaten->item(i)->text() == "Archiv" ? Qt::Checked : Qt::Unchecked);
        s.cmdSuchen->click();
        QCOMPARE(Items(s.lstDateien), QStringList({"Archiv\\\\Urlaub2004\\strand.jpg"}));
    }

    void refusedRunOpensItsTopic_data() {
        QTest::addColumn<QString>("term");
        QTest::addColumn<int>("dateOperator");  // -1: date test off
        QTest::addColumn<QString>("date");
        QTest::addColumn<bool>("marked");
        QTest::addColumn<QString>("topic");
        QTest::newRow("no term") << "" << -1 << "" << true << "Kein Suchbegriff eingegeben";
        QTest::newRow("no date operator") << "x" << -2 << "01.02.2003" << true << "Kein Vergleich für das Datum gewählt";
        QTest::newRow("bad date") << "x" << 0 << "31.02.2003" << true << "Ungültiges Datum";
        QTest::newRow("no disc marked") << "x" << -1 << "" << false << "Keine CD / DVD zum Durchsuchen markiert";
    }
    void refusedRunOpensItsTopic() {
        QFETCH(QString, term);
        QFETCH(int, dateOperator);
        QFETCH(QString, date);
        QFETCH(bool, marked);
        QFETCH(QString, topic);
        GuiFixture fx(CARTULON_STAGE_DIR);
        WriteDiscs(fx);
        auto haupt = fx.StartMain();
        frmSuchen s(haupt.get());
        s.txtSuchen->setText(term);
        if (dateOperator != -1) {
            s.CheckDatum->click();
            s.txtDatum->setText(date);
            if (dateOperator >= 0) s.cboDatum->setCurrentIndex(dateOperator);
        }
        if (!marked) s.cmdAlleNichtMarkieren->click();
        s.cmdSuchen->click();
        QVERIFY(!fx.helpCalls.empty());
        QVERIFY2(QString::fromStdString(fx.helpCalls.back()).endsWith(", " + topic), fx.helpCalls.back().c_str());
        QCOMPARE(s.lblT->text(), QString("-"));
        QVERIFY(!s.lstDateien->isEnabled());
    }

    // The close box while the engine lets events run after the first disc.
    void closeStopsTheRun() {
        GuiFixture fx(CARTULON_STAGE_DIR);
        WriteDiscs(fx);
        auto haupt = fx.StartMain();
        frmSuchen s(haupt.get());
        s.show();
        s.txtSuchen->setText("urlaub");
        QObject::connect(s.ProgressBar, &QProgressBar::valueChanged, &s, [&](int value) {
            if (value == 1) s.close();
        });
        s.cmdSuchen->click();
        QVERIFY(s.StopRequested);
        QTRY_VERIFY(!s.isVisible());
        QCOMPARE(s.lstDateien->count(), 2);  // the first disc's hits only
    }

    void changeButtonEditsFromTheHitList() {
        GuiFixture fx(CARTULON_STAGE_DIR);
        WriteDiscs(fx);
        auto haupt = fx.StartMain();
        frmSuchen s(haupt.get());
        QCOMPARE(SearchWindow(), &s);
        s.cmdÄndern->setEnabled(true);
        s.cmdÄndern->click();
        QCOMPARE(Start::EditTarget, std::string("Suchen"));
    }
};

QTEST_MAIN(TstFrmSuchen)
#include "tst_frmsuchen.moc"
