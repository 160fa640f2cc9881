// The options window: a save writes the settings, a new language reaches the
// main window at once, and a new data folder moves the catalogues only when
// the user says Yes and every copy stands. The copying itself is the core's test.
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>
#include <filesystem>

#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmOptionen.h"
#include "support/GuiFixture.h"
#include "support/scratch.h"

using namespace ct;
using namespace ct::test;
namespace fs = std::filesystem;

class TstFrmOptionen : public QObject {
    Q_OBJECT
private slots:
    void languageReachesTheMainWindow() {
        GuiFixture fx(CARTULON_STAGE_DIR);
        fx.WriteIni("0", "/media/cd");
        auto haupt = fx.StartMain();
        {
            frmOptionen o(haupt.get());
            QCOMPARE(o.txtLaufwerksbuchstabe->text(), QString("/media/cd"));
            o.cboSprache->setCurrentIndex(1);
            o.cmdSpeichern->click();
        }
        QCOMPARE(int(Start::Language), 10000);
        QCOMPARE(haupt->cmdSuchen->text(), ResourceText(10015));
        QCOMPARE(fx.ReadIni(), CrLf({"10000", "/media/cd"}) + fx.DataFolder() + "\r\n");
        QVERIFY(fx.messages.empty());
    }

    void newDataFolder_data() {
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("target");  // below the program folder
        QTest::addColumn<bool>("moved");
        QTest::addColumn<int>("messages");
        QTest::newRow("Yes moves the catalogues") << int(QMessageBox::Yes) << "Neu" << true << 1;
        QTest::newRow("No keeps the old folder") << int(QMessageBox::No) << "Neu" << false << 1;
        QTest::newRow("missing target keeps everything") << int(QMessageBox::Yes) << "gibt-es-nicht" << false << 2;
    }
    void newDataFolder() {
        QFETCH(int, answer);
        QFETCH(QString, target);
        QFETCH(bool, moved);
        QFETCH(int, messages);
        GuiFixture fx(CARTULON_STAGE_DIR);
        fx.WriteCatalogue("Alpha", ExampleCatalogue());
        auto haupt = fx.StartMain();
        const std::string old = fx.DataFolder();
        const std::string to = fx.Folder() + "/" + target.toStdString();
        if (target == "Neu") fs::create_directories(to);
        fx.answers.push_back(QMessageBox::StandardButton(answer));
        frmOptionen o(haupt.get());
        o.txtDatenpfad->setText(QString::fromStdString(to));
        o.cmdSpeichern->click();
        QCOMPARE(int(fx.messages.size()), messages);
        QCOMPARE(fx.messages[0].text, ResourceText(10093));
        QCOMPARE(Start::DataFolder, moved ? to : old);
        QCOMPARE(fs::exists(to + "/Alpha.idx"), moved);
        QCOMPARE(fs::exists(old + "/Alpha.idx"), !moved);
        if (messages == 2) QCOMPARE(fx.messages[1].icon, QMessageBox::Critical);
    }
};

QTEST_MAIN(TstFrmOptionen)
#include "tst_frmoptionen.moc"
