// The main window's wiring: settings in, the language asked on a first run,
// the three panes filled from the chosen disc, folder and file, the help keys
// and the edit buttons. How a damaged catalogue reads is the core's test.
#include <QAction>
#include <QDialog>
#include <QLineEdit>
#include <QtTest>

#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmSprache.h"
#include "support/GuiFixture.h"

using namespace ct;
using namespace ct::test;

namespace {
QString Q(const char* s) { return QString::fromUtf8(s); }

// The five groups of the enable rules: disc list, disc details, folder,
// folder description, file; "1" on, "0" off, "?" mixed.
QString StateOf(const frmHaupt& h) {
    auto all = [](std::initializer_list<QWidget*> ws) {
        bool on = true, off = true;
        for (QWidget* w : ws) (w->isEnabled() ? off : on) = false;
        return on ? '1' : off ? '0' : '?';
    };
    const char state[] = {all({h.lblDaten, h.lstDaten}), all({h.lblInfoC, h.cmdÄndernC, h.txtBeschreibungC}),
                          all({h.lblOrdner, h.lstOrdner, h.lblInfoO}),
                          all({h.lblBeschreibungO, h.cmdÄndernO, h.txtBeschreibungO}),
                          all({h.lblDateien, h.lstDateien, h.lblInfoD, h.cmdÄndernD, h.txtBeschreibungD}), 0};
    return QString::fromLatin1(state);
}
}  // namespace

class TstFrmHaupt : public QObject {
    Q_OBJECT
private slots:
    void normalStart() {
        GuiFixture fx(CARTULON_STAGE_DIR);
        QVERIFY(fx.IsValid());
        fx.WriteIni("10000", "/media/cd");
        fx.WriteCatalogue("Fotos", ExampleCatalogue());
        fx.WriteCatalogue("alt", ExampleCatalogue(), "sub");
        auto h = fx.StartMain();
        QCOMPARE(Start::Language, 10000);
        QCOMPARE(Start::DriveLetter, std::string("/media/cd"));
        QCOMPARE(Start::DataFolder, fx.DataFolder());
        QCOMPARE(h->cmdSuchen->text(), ResourceText(10015));
        QVERIFY(h->cmdSuchen->isDefault());
        QCOMPARE(Items(h->lstDaten), (QStringList{"alt", "Fotos"}));
        QCOMPARE(h->lstDaten->ListIndex(), -1);
        QCOMPARE(StateOf(*h), Q("10000"));
        QVERIFY(!QGuiApplication::overrideCursor());
    }

    // A first run asks the language; only a choice made is stored.
    void firstRun_data() {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("how");
        QTest::addColumn<int>("language");
        QTest::addColumn<QString>("iniLine1");
        QTest::newRow("German by OK") << 0 << "ok" << 0 << "0";
        QTest::newRow("English by Enter") << 1 << "enter" << 10000 << "10000";
        QTest::newRow("English by Esc") << 1 << "esc" << 10000 << "10000";
        QTest::newRow("nothing chosen gives German") << -1 << "ok" << 0 << "0";
        QTest::newRow("close box keeps the marker") << 1 << "close" << 0 << "-1";
    }
    void firstRun() {
        QFETCH(int, index);
        QFETCH(QString, how);
        QFETCH(int, language);
        QFETCH(QString, iniLine1);
        GuiFixture fx(CARTULON_STAGE_DIR);
        fx.WriteIniRaw("-1\r\nX\r\n/nowhere\r\n");  // a first run takes the defaults, not lines 2 and 3
        WhenUp<frmSprache>([&](frmSprache& d) {
            if (index >= 0) d.cboSprache->setCurrentIndex(index);
            if (how == "ok") d.cmdOK->click();
            else if (how == "enter") QTest::keyClick(&d, Qt::Key_Return);
            else if (how == "esc") QTest::keyClick(&d, Qt::Key_Escape);
            else d.close();
        });
        auto h = fx.StartMain();
        QCOMPARE(int(Start::Language), language);
        const QString ini = QString::fromStdString(fx.ReadIni());
        QCOMPARE(ini.section("\r\n", 0, 0), iniLine1);
        if (iniLine1 != "-1") QCOMPARE(ini, iniLine1 + "\r\nC\r\n" + QString::fromStdString(fx.DataFolder()) + "\r\n");
        QCOMPARE(h->lblDaten->text(), ResourceText(10024));
    }

    // A click in one pane fills the next; each row ends on one file.
    void panes_data() {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QStringList>("folderValues");  // size, files, attributes, date, description
        QTest::addColumn<QStringList>("fileValues");    // size, attributes, date, description
        QTest::newRow("root") << "." << "liesmich.txt" << QStringList{"1024", "1", "-", "-", ""}
                              << QStringList{"1024", "R", "14.03.2003 09:12:40", ""};
        QTest::newRow("Urlaub") << "\\Bilder\\Urlaub" << "p1.jpg"
                                << QStringList{"183442", "1", "R", "14.03.2003 09:12:41", "Trip to the coast"}
                                << QStringList{"183442", "R", "14.03.2003 09:12:41", "First day"};
    }
    void panes() {
        QFETCH(QString, folder);
        QFETCH(QString, file);
        QFETCH(QStringList, folderValues);
        QFETCH(QStringList, fileValues);
        GuiFixture fx(CARTULON_STAGE_DIR);
        fx.WriteCatalogue("Fotos", ExampleCatalogue());
        auto h = fx.StartMain();
        QVERIFY(Select(h->lstDaten, "Fotos") >= 0);
        QCOMPARE((QStringList{h->lblGC->text(), h->lblSerC->text(), h->lblDC->text(), h->lblOA->text(),
                              h->lblDA->text(), h->txtBeschreibungC->toPlainText()}),
                 (QStringList{"654311424", "-1029197328", "CDFS", "2", "3", "Photos 2003"}));
        QCOMPARE(Items(h->lstOrdner), (QStringList{".", "\\Bilder", "\\Bilder\\Urlaub"}));
        QCOMPARE(h->lstOrdner->Text(), Q("."));
        QVERIFY(Select(h->lstOrdner, folder) >= 0);
        QCOMPARE((QStringList{h->lblGO->text(), h->lblDAO->text(), h->lblAO->text(), h->lblDO->text(),
                              h->txtBeschreibungO->toPlainText()}),
                 folderValues);
        QCOMPARE(h->lstDateien->Text(), file);
        QCOMPARE((QStringList{h->lblGD->text(), h->lblAD->text(), h->lblDD->text(),
                              h->txtBeschreibungD->toPlainText()}),
                 fileValues);
        QCOMPARE(StateOf(*h), folder == "." ? Q("11101") : Q("11111"));
        QVERIFY(!QGuiApplication::overrideCursor());
    }

    void helpMenuAndKeys() {
        GuiFixture fx(CARTULON_STAGE_DIR);
        fx.WriteIni("10000");
        auto h = fx.StartMain();
        h->mnuInhalt->trigger();
        QVERIFY(QString::fromStdString(fx.helpCalls.back()).endsWith("/CT1.fhp, Inhalt"));
        h->mnuIndex->trigger();
        QVERIFY(QString::fromStdString(fx.helpCalls.back()).endsWith("/CT1.fhp, Index"));
        QCOMPARE(HelpCommandLine(Q("Größe")), fx.Folder() + "/folihelp.exe " + fx.Folder() + "/CT1.fhp, Größe");
        // The dialogs' key handler: F1 with any modifier opens the topic, other keys pass.
        QDialog dialog;
        auto* edit = new QLineEdit(&dialog);
        InstallHelpKey(&dialog, 10018);
        QTest::keyClick(edit, Qt::Key_F2);
        QCOMPARE(fx.helpCalls.size(), std::size_t{2});
        QTest::keyClick(edit, Qt::Key_F1, Qt::ShiftModifier);
        QVERIFY(HelpShows(fx, 10018));
    }
};

QTEST_MAIN(TstFrmHaupt)
#include "tst_frmhaupt.moc"
