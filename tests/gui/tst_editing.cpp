// The editing windows and commands: the description editor from its callers,
// the label editor and deleting a disc — which line or file they change, which
// topic a refusal opens, and that a failing disk loses nothing. How a line is
// rewritten byte for byte is the core's test.
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextEdit>
#include <QtTest>

#include "gui/Start.h"
#include "gui/frmBeschreibungAendern.h"
#include "gui/frmBezeichnungAendern.h"
#include "gui/frmHaupt.h"
#include "gui/frmSuchen.h"
#include "gui/seams.h"
#include "gui/windows.h"
#include "support/GuiFixture.h"
#include "support/faultyops.h"
#include "support/scratch.h"

using namespace ct;
using namespace ct::test;

namespace {
QString Q(const char* s) { return QString::fromUtf8(s); }

std::string Joined(std::vector<std::string> lines, int index = -1, const std::string& line = {}) {
    if (index >= 0) lines[static_cast<std::size_t>(index)] = line;
    std::string text;
    for (const std::string& l : lines) text += l + "\r\n";
    return text;
}

struct OpsScope {
    explicit OpsScope(FileOps* ops) { seams::SetFiles(ops); }
    ~OpsScope() { seams::SetFiles(nullptr); }
};

struct Setup {
    GuiFixture fx{CARTULON_STAGE_DIR};
    std::unique_ptr<frmHaupt> main;
    std::string catalogue;
    Setup() {
        catalogue = fx.WriteCatalogue("CD1", ExampleCatalogue());
        fx.WriteCatalogue("CD2", {"1|0||0|0|0|", "", ""});
        main = fx.StartMain();
        Select(main->lstDaten, "CD1");
    }
};
}  // namespace

class TstEditing : public QObject {
    Q_OBJECT
private slots:
    // Each caller's button edits its own line.
    void descriptionFromMain_data() {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("oldText");
        QTest::addColumn<int>("line");
        QTest::addColumn<QString>("newLine");
        QTest::newRow("disc") << "C" << "" << "" << "Photos 2003" << 0
                              << "654311424|-1029197328|CDFS|319488|1|2048|neu text";
        QTest::newRow("folder") << "O" << "\\Bilder\\Urlaub" << "" << "Trip to the coast" << 3
                                << "\\Bilder\\Urlaub|R|14.03.2003 09:12:41|neu text";
        QTest::newRow("file") << "D" << "\\Bilder\\Urlaub" << "p1.jpg" << "First day" << 6
                              << "\\Bilder\\Urlaub\\p1.jpg|183442|R|14.03.2003 09:12:41|neu text";
    }
    void descriptionFromMain() {
        QFETCH(QString, button);
        QFETCH(QString, folder);
        QFETCH(QString, file);
        QFETCH(QString, oldText);
        QFETCH(int, line);
        QFETCH(QString, newLine);
        Setup s;
        frmHaupt& h = *s.main;
        if (!folder.isEmpty()) QVERIFY(Select(h.lstOrdner, folder) >= 0);
        if (!file.isEmpty()) QVERIFY(Select(h.lstDateien, file) >= 0);
        QString shown;
        WhenUp<frmBeschreibungÄndern>([&](frmBeschreibungÄndern& d) {
            shown = d.txtNeueBeschreibung->toPlainText();
            d.txtNeueBeschreibung->setPlainText(Q("neu  text"));  // two blanks are stored as one
            d.cmdÄndern->click();
        });
        QTextEdit* box = button == "C" ? h.txtBeschreibungC : button == "O" ? h.txtBeschreibungO : h.txtBeschreibungD;
        (button == "C" ? h.cmdÄndernC : button == "O" ? h.cmdÄndernO : h.cmdÄndernD)->click();
        QCOMPARE(shown, oldText);
        QCOMPARE(box->toPlainText(), Q("neu text"));
        QCOMPARE(ReadAll(s.catalogue), Joined(ExampleCatalogue(), line, newLine.toStdString()));
        QCOMPARE(DataFiles(s.fx), (QStringList{"CD1.idx", "CD2.idx"}));
    }

    void descriptionFromSearch() {
        Setup s;
        frmSuchen search(s.main.get());
        search.lstDateien->AddItem(Q("CD1\\\\Bilder\\Urlaub\\p1.jpg"));
        search.lstDateien->SetListIndex(0);
        WhenUp<frmBeschreibungÄndern>([&](frmBeschreibungÄndern& d) {
            d.txtNeueBeschreibung->setPlainText(Q("aus der Suche"));
            d.cmdÄndern->click();
        });
        search.cmdÄndern_Click();
        QTRY_COMPARE(search.txtBeschreibungText->toPlainText(), Q("aus der Suche"));
        QCOMPARE(ReadAll(s.catalogue),
                 Joined(ExampleCatalogue(), 6, "\\Bilder\\Urlaub\\p1.jpg|183442|R|14.03.2003 09:12:41|aus der Suche"));
    }

    void labelEditor_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("closes");
        QTest::addColumn<int>("helpTopic");  // 0: none
        QTest::addColumn<QStringList>("files");
        QTest::newRow("renamed") << "  Ur:laub 2003*  " << true << 0 << QStringList{"CD2.idx", "Urlaub 2003.idx"};
        QTest::newRow("empty refused") << "  :/*  " << false << 10099 << QStringList{"CD1.idx", "CD2.idx"};
        QTest::newRow("in use refused") << "CD2" << false << 10100 << QStringList{"CD1.idx", "CD2.idx"};
    }
    void labelEditor() {
        QFETCH(QString, typed);
        QFETCH(bool, closes);
        QFETCH(int, helpTopic);
        QFETCH(QStringList, files);
        Setup s;
        QString offered;
        bool open = true;
        WhenUp<frmBezeichnungÄndern>([&](frmBezeichnungÄndern& d) {
            offered = d.txtBezeichnung->text();
            d.txtBezeichnung->setText(typed);
            d.cmdÄndern->click();
            open = d.isVisible();
            if (open) d.cmdAbbrechen->click();
        });
        s.main->mnuBezeichnungÄndern->trigger();
        QCOMPARE(offered, Q("CD1"));
        QCOMPARE(!open, closes);
        if (helpTopic) QVERIFY(HelpShows(s.fx, helpTopic));
        else QVERIFY(s.fx.helpCalls.empty());
        QCOMPARE(DataFiles(s.fx), files);
        QCOMPARE(Items(s.main->lstDaten), QStringList(files).replaceInStrings(".idx", ""));
    }

    void deleteDisc_data() {
        QTest::addColumn<bool>("choose");
        QTest::addColumn<int>("answer");
        QTest::addColumn<QStringList>("files");
        QTest::newRow("yes") << true << int(QMessageBox::Yes) << QStringList{"CD2.idx"};
        QTest::newRow("no") << true << int(QMessageBox::No) << QStringList{"CD1.idx", "CD2.idx"};
        QTest::newRow("nothing chosen") << false << int(QMessageBox::Yes) << QStringList{"CD1.idx", "CD2.idx"};
    }
    void deleteDisc() {
        QFETCH(bool, choose);
        QFETCH(int, answer);
        QFETCH(QStringList, files);
        Setup s;
        if (!choose) s.main->lstDaten->SetListIndex(-1);
        s.fx.answers.push_back(QMessageBox::StandardButton(answer));
        s.main->mnuLöschen->trigger();
        if (choose) {
            QCOMPARE(s.fx.messages.size(), std::size_t{1});
            QCOMPARE(s.fx.messages[0].text, ResourceText(10090));
        } else {
            QVERIFY(HelpShows(s.fx, 10098));
        }
        QCOMPARE(DataFiles(s.fx), files);
        QCOMPARE(Items(s.main->lstDaten), QStringList(files).replaceInStrings(".idx", ""));
    }

    void helpKeysOpenTheDialogsTopics() {
        Setup s;
        WhenUp<frmBeschreibungÄndern>([](frmBeschreibungÄndern& d) {
            QTest::keyClick(d.txtNeueBeschreibung, Qt::Key_F1);
            d.cmdAbbrechen->click();
        });
        s.main->cmdÄndernC->click();
        QVERIFY(HelpShows(s.fx, 10001));
        WhenUp<frmBezeichnungÄndern>([](frmBezeichnungÄndern& d) {
            QTest::keyClick(d.txtBezeichnung, Qt::Key_F1);
            d.cmdAbbrechen->click();
        });
        s.main->mnuBezeichnungÄndern->trigger();
        QVERIFY(HelpShows(s.fx, 10005));
    }
};

QTEST_MAIN(TstEditing)
#include "tst_editing.moc"
