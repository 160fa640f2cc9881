// The add dialog and the re-read command, as wiring: the drive's name proposed
// as label, the refusals and their topics, the catalogue written and the drive
// saved, the main window refreshed on close, and a re-read answered No, left
// without adding, or completed. The catalogue's bytes are the core's test.
#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QtTest>
#include <cstdlib>
#include <map>

#include "core/adddisc.h"
#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmHinzufuegen.h"
#include "gui/seams.h"
#include "platform/walk.h"
#include "support/GuiFixture.h"
#include "support/scratch.h"

using namespace ct;
using namespace ct::test;

namespace {
QString Q(const std::string& s) { return QString::fromStdString(s); }

// The real walker, with volume names the test decides (a scratch folder has none).
class TestSource : public DiscSource {
public:
    std::map<std::string, std::string> names;
    std::function<void()> duringWalk;  // runs while a disc (not the data folder) is read
    void WalkFolder(const std::string& path, WalkList& folders, WalkList& files,
                    const std::function<void(std::size_t)>& progress) override {
        ct::WalkFolder(path, folders, files, progress);
        if (duringWalk && progress) duringWalk();
    }
    void ReadVolumeInfo(const std::string& root, VolumeInfo& volume) override {
        const auto it = names.find(root);
        if (it != names.end()) volume.VolumeName = it->second;
    }
};

// Two "drives", EINS and ZWEI, in a scratch folder.
struct AddSetup {
    GuiFixture fx{CARTULON_STAGE_DIR};
    Scratch drives;
    TestSource source;
    std::string eins = drives / "eins", zwei = drives / "zwei";
    std::unique_ptr<frmHaupt> h;
    AddSetup() {
        drives.Write("eins/liesmich.txt", "Hallo");
        drives.Write("eins/Bilder/p1.jpg", "JPEGDATA");
        drives.Write("zwei/x.bin", "1");
        source.names = {{eins, "EINS"}, {zwei, "ZWEI"}};
        frmHinzufügen::Source = &source;
        frmHinzufügen::DriveList = [this] {
            return std::vector<ct::Drive>{{eins, "EINS", eins + " [EINS]", true}, {zwei, "ZWEI", zwei + " [ZWEI]", false}};
        };
    }
    ~AddSetup() {
        frmHinzufügen::Source = nullptr;
        frmHinzufügen::DriveList = {};
    }
    std::string Catalogue(const std::string& label) const { return fx.DataFolder() + "/" + label + ".idx"; }
};
}  // namespace

class TstFrmHinzufuegen : public QObject {
    Q_OBJECT
private slots:
    void addWritesTheCatalogueAndSavesTheDrive() {
        AddSetup s;
        auto h = s.fx.StartMain();
        Start::DriveLetter = s.zwei;
        frmHinzufügen d(h.get());
        d.show();
        QCOMPARE(d.txtBezeichnung->text(), Q("ZWEI"));  // opens on the saved drive, its name proposed
        d.DriveLaufwerk->setCurrentIndex(0);
        QCOMPARE(d.txtBezeichnung->text(), Q("EINS"));
        d.txtBezeichnung->setText("Fotos");
        d.txtBeschreibung->setPlainText("Sommer\nund  Herbst");
        d.cmdHinzufügen->click();
        const std::string text = ReadAll(s.Catalogue("Fotos"));
        QVERIFY2(text.starts_with("0|0||0|0|0|Sommer und Herbst\r\n\r\n\\Bilder|"), text.c_str());
        QVERIFY(text.find("\r\n\\Bilder\\p1.jpg|8|") != std::string::npos);
        QCOMPARE(s.fx.messages.size(), std::size_t{1});
        QCOMPARE(s.fx.messages[0].title, QString("Fertig!"));
        QCOMPARE(s.fx.ReadIni(), "0\r\n" + s.eins + "\r\n" + s.fx.DataFolder() + "\r\n");
        QCOMPARE(h->lstDaten->ListCount(), 0);  // listed only once the dialog closes
        d.close();
        QCOMPARE(Items(h->lstDaten), QStringList{"Fotos"});
        QVERIFY(!QGuiApplication::overrideCursor());
    }

    void labels_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("existing");  // a catalogue lying there first
        QTest::addColumn<int>("helpTopic");     // 0: added
        QTest::addColumn<QString>("written");
        QTest::newRow("empty label refused") << "" << "" << 10099 << "";
        QTest::newRow("cleaned and trimmed") << "  Fo?to:s  " << "" << 0 << "Fotos";
        QTest::newRow("in use after cleaning") << "Fo|tos " << "Fotos" << 10100 << "";
        QTest::newRow("other case is free") << "fotos" << "Fotos" << 0 << "fotos";
    }
    void labels() {
        QFETCH(QString, typed);
        QFETCH(QString, existing);
        QFETCH(int, helpTopic);
        QFETCH(QString, written);
        AddSetup s;
        if (!existing.isEmpty()) s.fx.WriteCatalogue(existing.toStdString(), ExampleCatalogue());
        auto h = s.fx.StartMain();
        frmHinzufügen d(h.get());
        d.txtBezeichnung->setText(typed);
        d.cmdHinzufügen->click();
        if (helpTopic) {
            QVERIFY(HelpShows(s.fx, helpTopic));
            QVERIFY(s.fx.messages.empty());
            QCOMPARE(DataFiles(s.fx).size(), existing.isEmpty() ? 0 : 1);
        } else {
            QVERIFY(s.fx.helpCalls.empty());
            QVERIFY(DataFiles(s.fx).contains(written + ".idx"));
        }
    }

    // A folder picked with "…" is the preset of the next opening, and a read
    // stopped with the cancel button writes nothing and closes the dialog.
    void savedFolderComesBackAndCancelWritesNothing() {
        AddSetup s;
        auto h = s.fx.StartMain();
        Start::DriveLetter = s.eins + "/Bilder";
        frmHinzufügen d(h.get());
        d.show();
        QCOMPARE(d.Drive(), Q(s.eins + "/Bilder"));
        d.txtBezeichnung->setText("Fotos");
        s.source.duringWalk = [&d] { d.cmdAbbrechen->click(); };
        d.cmdHinzufügen->click();
        QVERIFY(!std::filesystem::exists(s.Catalogue("Fotos")));
        QVERIFY(s.fx.messages.empty());
        QVERIFY(!d.isVisible());
        QCOMPARE(DataFiles(s.fx), QStringList{});
    }

    // An image picked with "…" is read as the disc burnt from it would be,
    // without mounting: its volume label is proposed, and the catalogue has
    // the image's file system and entries.
    void imagePickedWithTheChooser_data() {
        QTest::addColumn<QString>("make");  // %1 the image, %2 the tree
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("fileSystem");
        QTest::addColumn<QString>("line");  // a line the catalogue holds, or empty
        QTest::newRow("iso") << "xorriso -as mkisofs -J -R -V FOTOS -o %1 %2" << "FOTOS" << "|CDFS|"
                             << "\\Bilder\\p1.jpg|8|R|";
        QTest::newRow("udf") << ": %2; truncate -s 8M %1 && mkudffs -b 2048 --label=SICHERUNG --udfrev=2.01 %1"
                             << "SICHERUNG" << "|UDF|" << "";
    }
    void imagePickedWithTheChooser() {
        QFETCH(QString, make);
        QFETCH(QString, label);
        QFETCH(QString, fileSystem);
        QFETCH(QString, line);
        AddSetup s;
        frmHinzufügen::Source = nullptr;  // the program's own reader, images and all
        const std::string image = s.drives / "disc.img";
        const std::string command = make.arg(Q(image), Q(s.eins)).toStdString() + " >/dev/null 2>&1";
        if (std::system(command.c_str()) != 0) QSKIP("the image tool is missing");
        seams::SetFolderChooser([&](QWidget*, const QString&) { return Q(image); });
        auto h = s.fx.StartMain();
        frmHinzufügen d(h.get());
        d.show();
        emit d.DriveLaufwerk->activated(d.DriveLaufwerk->count() - 1);  // "…"
        seams::SetFolderChooser({});
        QCOMPARE(d.Drive(), Q(image));
        QCOMPARE(d.txtBezeichnung->text(), label);
        d.cmdHinzufügen->click();
        const std::string text = ReadAll(s.Catalogue(label.toStdString()));
        QVERIFY2(text.find(fileSystem.toStdString()) < text.find("\r\n"), text.c_str());
        QVERIFY2(line.isEmpty() || text.find("\r\n" + line.toStdString()) != std::string::npos, text.c_str());
    }

    // Answered No, left without adding, or completed: the catalogue is
    // either back byte for byte or read anew with the disc's description.
    void reread_data() {
        QTest::addColumn<int>("answer");
        QTest::addColumn<bool>("add");
        QTest::addColumn<bool>("unchanged");
        QTest::newRow("answered No") << int(QMessageBox::No) << false << true;
        QTest::newRow("left without adding") << int(QMessageBox::Yes) << false << true;
        QTest::newRow("completed") << int(QMessageBox::Yes) << true << false;
    }
    void reread() {
        QFETCH(int, answer);
        QFETCH(bool, add);
        QFETCH(bool, unchanged);
        AddSetup s;
        const std::string path = s.fx.WriteCatalogue("Fotos", ExampleCatalogue());
        const std::string before = ReadAll(path);
        auto h = s.fx.StartMain();
        Select(h->lstDaten, "Fotos");
        s.fx.answers = {QMessageBox::StandardButton(answer)};
        QString offered;
        bool setAside = false;
        WhenUp<frmHinzufügen>([&](frmHinzufügen& d) {
            offered = d.txtBezeichnung->text();
            setAside = !ReadAll(s.fx.DataFolder() + "/.Fotos.idx.reread").empty() && !std::filesystem::exists(path);
            if (add) d.cmdHinzufügen->click();
            d.close();
        });
        h->mnuNeuEinlesen->trigger();
        QVERIFY(s.fx.messages[0].title.startsWith("Wirklich neu einlesen"));
        if (answer == QMessageBox::Yes) {
            QCOMPARE(offered, Q("Fotos"));
            QVERIFY(setAside);
        }
        if (unchanged) QCOMPARE(ReadAll(path), before);
        else QVERIFY(ReadAll(path).starts_with("0|0||0|0|0|Photos 2003\r\n\r\n\\Bilder|"));
        QCOMPARE(DataFiles(s.fx), QStringList{"Fotos.idx"});
        QCOMPARE(Items(h->lstDaten), QStringList{"Fotos"});
    }
};

QTEST_MAIN(TstFrmHinzufuegen)
#include "tst_frmhinzufuegen.moc"
