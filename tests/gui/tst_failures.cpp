// A failure the windows report names what didn't happen and why, in the
// language in force, with the system's own reason: an unreadable disc, a
// re-read that can't set the old catalogue aside, a leftover of a crash that
// can't go back at start, a move of the catalogues whose copy fails.
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>
#include <cerrno>

#include "core/fileops.h"
#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmHinzufuegen.h"
#include "gui/frmOptionen.h"
#include "gui/seams.h"
#include "gui/windows.h"
#include "support/GuiFixture.h"
#include "support/faultyops.h"
#include "support/openers.h"
#include "support/scratch.h"

using namespace ct;
using namespace ct::test;

namespace {

ReadOpener gReal = nullptr;

// As root reads every file, a catalogue without read permission is played by
// an opener that refuses it as the system would.
ReadFile DenyGeheim(const std::string& path, Failure* failure, std::uint64_t* size) {
    if (path.ends_with("/Geheim.idx")) {
        if (failure) *failure = Fail(FailCode::Unreadable, path, EACCES);
        return nullptr;
    }
    return gReal(path, failure, size);
}

}  // namespace

class TstFailures : public QObject {
    Q_OBJECT
private slots:
    void reportedWithTheReason_data() {
        QTest::addColumn<QString>("step");
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("head");
        QTest::addColumn<QString>("reason");
        const QString de = QStringLiteral("0"), en = QStringLiteral("10000");
        QTest::newRow("unreadable disc de") << "click" << de << "Der Datenträger „Geheim“ kann nicht angezeigt werden.\n\n„" << "Zugriff verweigert";
        QTest::newRow("unreadable disc en") << "click" << en << "The disc \"Geheim\" cannot be shown.\n\nCannot read \"" << "Permission denied";
        QTest::newRow("re-read de") << "reread" << de << "Die CD / DVD wird nicht neu eingelesen.\n\n„" << "Ein-/Ausgabefehler";
        QTest::newRow("re-read en") << "reread" << en << "The disc is not read anew.\n\nCannot set \"" << "Input/output error";
        QTest::newRow("leftover en") << "start" << en << "The old catalogue could not be put back." << "Input/output error";
        QTest::newRow("move de") << "move" << de << "" << "Ein-/Ausgabefehler";
    }
    void reportedWithTheReason() {
        QFETCH(QString, step);
        QFETCH(QString, language);
        QFETCH(QString, head);
        QFETCH(QString, reason);
        GuiFixture fx(CARTULON_STAGE_DIR);
        fx.WriteIni(language.toStdString(), "/media/cdrom");
        fx.WriteCatalogue("Fotos", ExampleCatalogue());
        fx.WriteCatalogue("Geheim", ExampleCatalogue());
        if (step == "start") fx.WriteFileRaw(fx.DataFolder() + "/.Alt.idx.reread", "x|0|||0|0|0|\r\n\r\n\r\n");
        FaultyOps ops(step == "move" ? Fault::Copy : Fault::Rename);
        seams::SetFiles(&ops);
        auto haupt = fx.StartMain();
        if (step != "start") fx.messages.clear();
        if (step == "click") {
            {
                const test::ReadOpenerScope deny(&DenyGeheim);
                gReal = deny.Previous();
                Select(haupt->lstDaten, QStringLiteral("Geheim"));
            }
            QCOMPARE(haupt->lstOrdner->ListCount(), 0);  // no disc without folders
            QVERIFY(haupt->lblGC->text().isEmpty());
        } else if (step == "reread") {
            Select(haupt->lstDaten, QStringLiteral("Fotos"));
            fx.answers.push_back(QMessageBox::Yes);
            DoNeuEinlesen();
            QVERIFY(Items(haupt->lstDaten).contains(QStringLiteral("Fotos")));
        } else if (step == "move") {
            head = ResourceText(10095);
            fx.answers.push_back(QMessageBox::Yes);
            frmOptionen o(haupt.get());
            o.txtDatenpfad->setText(QString::fromStdString(fx.Folder()));
            o.cmdSpeichern->click();
        }
        QVERIFY(!fx.messages.empty());
        const QString text = fx.messages.back().text;
        QVERIFY2(text.startsWith(head), qPrintable(text));
        if (step == "reread") QCOMPARE(fx.messages.back().title, TitleText(10011));  // the menu entry without its '&'
        QVERIFY2(text.endsWith(QStringLiteral(" (%1).").arg(reason)),  // the reason in the chosen language
                 qPrintable(text));
        QVERIFY(QGuiApplication::overrideCursor() == nullptr);  // a message box sees the normal pointer
        for (const MessageCall& m : fx.messages) QVERIFY2(!m.waitPointer, qPrintable(m.text));
    }

    // The add window's boxes come after the read: the wait pointer has gone.
    void addWindowBoxesSeeTheNormalPointer_data() {
        QTest::addColumn<int>("fault");
        QTest::addColumn<QString>("title");
        QTest::newRow("added") << int(Fault::None) << "Fertig!";
        QTest::newRow("write failed") << int(Fault::Rename) << "Hinzufügen";
    }
    void addWindowBoxesSeeTheNormalPointer() {
        QFETCH(int, fault);
        QFETCH(QString, title);
        GuiFixture fx(CARTULON_STAGE_DIR);
        Scratch disc;
        disc.Write("liesmich.txt", "Hallo");
        frmHinzufügen::DriveList = [&disc] { return std::vector<Drive>{{disc.Path(), "EINS", disc.Path(), false}}; };
        auto haupt = fx.StartMain();
        FaultyOps ops{static_cast<Fault>(fault)};
        seams::SetFiles(&ops);
        {
            frmHinzufügen d(haupt.get());
            d.txtBezeichnung->setText(QStringLiteral("Fotos"));
            d.cmdHinzufügen->click();
        }
        seams::SetFiles(nullptr);
        frmHinzufügen::DriveList = {};
        QCOMPARE(fx.messages.size(), std::size_t{1});
        QVERIFY(!fx.messages.back().waitPointer);
        QCOMPARE(fx.messages.back().title, title);
    }
};

QTEST_MAIN(TstFailures)
#include "tst_failures.moc"
