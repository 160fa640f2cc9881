// The add dialog and the re-read command: opening on the saved drive, the
// label proposal, the refusals, the catalogue written, the message, closing,
// and a re-read that is answered No, left without adding, or completed.
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>
#include <fstream>
#include <map>
#include <sstream>

#include "core/adddisc.h"
#include "gui/Start.h"
#include "gui/do_neueinlesen.h"
#include "gui/frmHaupt.h"
#include "gui/frmHinzufuegen.h"
#include "gui/seams.h"
#include "platform/walk.h"
#include "support/GuiFixture.h"
#include "support/TestRunner.h"

using namespace ct;
using ct::test::ExampleCatalogue;
using ct::test::GuiFixture;
using ct::test::Select;
using ct::test::Items;

namespace {

QString Q(const std::string& s) { return QString::fromStdString(s); }

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

bool Exists(const std::string& path) { return QFileInfo::exists(Q(path)); }

void WriteFile(const std::string& path, const std::string& bytes) {
    QDir().mkpath(QFileInfo(Q(path)).absolutePath());
    std::ofstream(path, std::ios::binary) << bytes;
}

// The real walker, with volume names the test decides (a temporary folder has
// none of its own), and a hook that sees the walk's progress callback.
class TestSource : public DiscSource {
public:
    std::map<std::string, std::string> names;
    std::function<void(const std::function<void(std::size_t)>&)> duringWalk;

    void WalkFolder(const std::string& path, WalkList& folders, WalkList& files,
                    const std::function<void(std::size_t)>& progress) override {
        ct::WalkFolder(path, folders, files, progress);
        if (duringWalk && progress) duringWalk(progress);
    }
    void ReadVolumeInfo(const std::string& root, VolumeInfo& volume) override {
        const auto it = names.find(root);
        if (it != names.end()) volume.VolumeName = it->second;
    }
};

// Two "drives": temporary folders with a few files, EINS named, ZWEI too,
// and a program folder around them.
struct AddSetup {
    GuiFixture fx{CARTULON_STAGE_DIR};
    QTemporaryDir drives;
    TestSource source;
    std::string eins, zwei;
    std::vector<std::string> chosenFolders;  // what the folder chooser was asked to start on
    QString chooserAnswer;

    AddSetup() {
        eins = drives.path().toStdString() + "/eins";
        zwei = drives.path().toStdString() + "/zwei";
        WriteFile(eins + "/liesmich.txt", "Hallo");
        WriteFile(eins + "/Bilder/p1.jpg", "JPEGDATA");
        WriteFile(zwei + "/x.bin", "1");
        source.names = {{eins, "EINS"}, {zwei, "ZWEI"}};
        frmHinzufügen::Source = &source;
        frmHinzufügen::DriveList = [this] {
            return std::vector<ct::Drive>{{eins, "EINS", eins + " [EINS]", true}, {zwei, "ZWEI", zwei + " [ZWEI]", false}};
        };
        seams::SetFolderChooser([this](QWidget*, const QString& start) {
            chosenFolders.push_back(start.toStdString());
            return chooserAnswer;
        });
    }
    ~AddSetup() {
        frmHinzufügen::Source = nullptr;
        frmHinzufügen::DriveList = {};
        seams::SetFolderChooser({});
    }
    std::string Catalogue(const std::string& label) const { return fx.DataFolder() + "/" + label + ".idx"; }
    std::string Help(int id) const { return HelpCommandLine(ResourceText(id)); }
};

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = text.find("\r\n", start);
        if (end == std::string::npos) {
            lines.push_back(text.substr(start));
            break;
        }
        lines.push_back(text.substr(start, end - start));
        start = end + 2;
    }
    return lines;
}

// First fields of a catalogue's folder and file lines, sorted (the walk's
// order is the file system's).
QStringList Paths(const std::string& catalogue) {
    QStringList paths;
    const auto lines = Lines(catalogue);
    for (std::size_t i = 2; i < lines.size(); ++i)
        if (!lines[i].empty()) paths.append(Q(lines[i].substr(0, lines[i].find('|'))));
    paths.sort();
    return paths;
}

// Runs `act` on the add dialog once it is up modally.
void WhenDialogOpens(std::function<void(frmHinzufügen&)> act) {
    QTimer::singleShot(0, [act] {
        auto* dialog = dynamic_cast<frmHinzufügen*>(QApplication::activeModalWidget());
        if (!dialog) return;
        act(*dialog);
    });
}


const char* kQuestion =
    "Beim Neueinlesen der CD / DVD gehen alle eingegebenen Beschreibungen der Ordner und Dateien verloren. "
    "Sind Sie sicher, dass die CD / DVD neu eingelesen werden soll?";

}  // namespace

// --- Opening ---------------------------------------------------------------------------

CT_TEST(windowAndControls) {
    AddSetup s;
    CT_VERIFY(s.fx.IsValid());
    auto h = s.fx.StartMain();
    frmHinzufügen d(h.get());
    CT_COMPARE(d.size(), QSize(Tw(6510), Tw(2895)));
    CT_COMPARE(d.minimumSize(), d.maximumSize());
    CT_VERIFY(d.isModal());
    CT_VERIFY(!(d.windowFlags() & (Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint)));
    CT_COMPARE(d.windowTitle(), ResourceText(10010));
    CT_VERIFY(!d.windowTitle().isEmpty());
    CT_COMPARE(d.lblLaufwerk->text(), ResourceText(10043));
    CT_COMPARE(d.lblBezeichnung->text(), ResourceText(10044));
    CT_COMPARE(d.lblBeschreibung->text(), ResourceText(10045));
    CT_COMPARE(d.cmdHinzufügen->text(), ResourceText(10046));
    CT_COMPARE(d.cmdAbbrechen->text(), ResourceText(10004));
    CT_VERIFY(d.cmdHinzufügen->isDefault() && d.cmdHinzufügen->font().bold());
    CT_VERIFY(!d.DriveLaufwerk->isEditable());
    CT_COMPARE(d.DriveLaufwerk->geometry(), QRect(Tw(3480), Tw(240), Tw(2775), Tw(315)));
    CT_COMPARE(d.txtBeschreibung->geometry(), QRect(Tw(3480), Tw(1200), Tw(2775), Tw(735)));
    CT_COMPARE(d.cmdAbbrechen->geometry(), QRect(Tw(4680), Tw(2280), Tw(1575), Tw(375)));

    // Tab order: drive list, label, description, add, cancel.
    std::vector<QWidget*> order{d.DriveLaufwerk};
    for (QWidget* w = d.DriveLaufwerk->nextInFocusChain(); order.size() < 5 && w != d.DriveLaufwerk;
         w = w->nextInFocusChain())
        if (w->focusPolicy() & Qt::TabFocus) order.push_back(w);
    CT_COMPARE(order.size(), 5u);
    CT_VERIFY(order[1] == d.txtBezeichnung);
    CT_VERIFY(order[2] == d.txtBeschreibung);
    CT_VERIFY(order[3] == d.cmdHinzufügen);
    CT_VERIFY(order[4] == d.cmdAbbrechen);

    // The drives in their display form, then the way to any folder.
    QStringList entries;
    for (int i = 0; i < d.DriveLaufwerk->count(); ++i) entries.append(d.DriveLaufwerk->itemText(i));
    CT_COMPARE(entries, (QStringList{Q(s.eins + " [EINS]"), Q(s.zwei + " [ZWEI]"), QString::fromUtf8("…")}));
    CT_COMPARE(d.Drive(), Q(s.eins));
}

struct OpeningRow {
    const char* name;
    const char* driveLetter;  // "eins", "zwei" or a literal
    const char* drive;        // "eins" or "zwei"
    const char* label;
};
CT_TEST_ROWS(openingOnSavedDrive, OpeningRow, {
    {"default C is refused silently", "C", "eins", ""},
    {"a disc since removed is refused", "/media/weg", "eins", ""},
    {"the first entry raises no change", "eins", "eins", ""},
    {"another drive proposes its name", "zwei", "zwei", "ZWEI"},
    {"a folder picked with the last entry comes back", "bilder", "bilder", ""},
}) {
    AddSetup s;
    auto h = s.fx.StartMain();
    auto pick = [&](const std::string& which) {
        return which == "eins" ? s.eins : which == "zwei" ? s.zwei
             : which == "bilder" ? s.drives.path().toStdString() + "/eins/Bilder" : which;
    };
    Start::DriveLetter = pick(row.driveLetter);
    frmHinzufügen d(h.get());
    CT_COMPARE(d.Drive(), Q(pick(row.drive)));
    CT_COMPARE(d.txtBezeichnung->text(), row.label);
    CT_VERIFY(s.fx.messages.empty());
}

CT_TEST(driveChangeReplacesLabelKeepsDescription) {
    AddSetup s;
    auto h = s.fx.StartMain();
    frmHinzufügen d(h.get());
    d.txtBezeichnung->setText("Mein Name");
    d.txtBeschreibung->setPlainText("Meine Beschreibung");
    d.DriveLaufwerk->setCurrentIndex(1);
    CT_COMPARE(d.txtBezeichnung->text(), "ZWEI");
    CT_COMPARE(d.txtBeschreibung->toPlainText(), "Meine Beschreibung");
    // A volume without a name empties the box.
    s.source.names.erase(s.eins);
    d.txtBezeichnung->setText("getippt");
    CT_VERIFY(d.SetDrive(Q(s.eins)));
    CT_COMPARE(d.txtBezeichnung->text(), "");
    // Setting the value it has already is no change: the typed label stays.
    d.txtBezeichnung->setText("getippt");
    CT_VERIFY(d.SetDrive(Q(s.eins)));
    CT_COMPARE(d.txtBezeichnung->text(), "getippt");
    CT_VERIFY(!d.SetDrive("C"));
    CT_COMPARE(d.Drive(), Q(s.eins));
}

CT_TEST(anyFolderThroughTheLastEntry) {
    AddSetup s;
    auto h = s.fx.StartMain();
    frmHinzufügen d(h.get());
    const int other = d.DriveLaufwerk->count() - 1;

    // Cancelled: back on the drive that stood there, label untouched.
    d.txtBezeichnung->setText("getippt");
    d.DriveLaufwerk->setCurrentIndex(other);
    emit d.DriveLaufwerk->activated(other);
    CT_COMPARE(s.chosenFolders, std::vector<std::string>{s.eins});
    CT_COMPARE(d.Drive(), Q(s.eins));
    CT_COMPARE(d.txtBezeichnung->text(), "getippt");

    // A folder: a new entry above "…", chosen, and its volume's name proposed.
    const std::string folder = s.drives.path().toStdString() + "/eins/Bilder";
    s.source.names[folder] = "BILDER";
    s.chooserAnswer = Q(folder);
    d.DriveLaufwerk->setCurrentIndex(other);
    emit d.DriveLaufwerk->activated(other);
    CT_COMPARE(d.Drive(), Q(folder));
    CT_COMPARE(d.DriveLaufwerk->currentText(), Q(folder));
    CT_COMPARE(d.DriveLaufwerk->itemText(d.DriveLaufwerk->count() - 1), QString::fromUtf8("…"));
    CT_COMPARE(d.txtBezeichnung->text(), "BILDER");

    // Choosing a folder the list holds already takes that entry.
    s.chooserAnswer = Q(s.zwei);
    const int count = d.DriveLaufwerk->count();
    d.DriveLaufwerk->setCurrentIndex(count - 1);
    emit d.DriveLaufwerk->activated(count - 1);
    CT_COMPARE(d.DriveLaufwerk->count(), count);
    CT_COMPARE(d.Drive(), Q(s.zwei));
    CT_COMPARE(d.txtBezeichnung->text(), "ZWEI");

    // Adding from the folder reads only what lies below it.
    s.chooserAnswer = Q(folder);
    d.DriveLaufwerk->setCurrentIndex(count - 1);
    emit d.DriveLaufwerk->activated(count - 1);
    d.cmdHinzufügen->click();
    CT_COMPARE(Paths(ReadFile(s.Catalogue("BILDER"))), QStringList{"\\p1.jpg"});
    CT_COMPARE(Start::DriveLetter, folder);
}

CT_TEST(noDriveAtAllAsksForAFolder) {
    AddSetup s;
    frmHinzufügen::DriveList = [] { return std::vector<ct::Drive>{}; };
    auto h = s.fx.StartMain();
    frmHinzufügen d(h.get());
    CT_COMPARE(d.DriveLaufwerk->count(), 1);
    CT_COMPARE(d.Drive(), "");
    CT_VERIFY(s.chosenFolders.empty());  // opening asks nothing
    d.txtBezeichnung->setText("Fotos");
    d.cmdHinzufügen->click();  // cancelled: nothing read, nothing said
    CT_COMPARE(s.chosenFolders.size(), 1u);
    CT_VERIFY(!Exists(s.Catalogue("Fotos")));
    CT_VERIFY(s.fx.helpCalls.empty() && s.fx.messages.empty());
    s.chooserAnswer = Q(s.eins);
    d.cmdHinzufügen->click();  // chosen: the label is proposed, not yet added
    CT_COMPARE(d.Drive(), Q(s.eins));
    CT_COMPARE(d.txtBezeichnung->text(), "EINS");
    CT_VERIFY(!Exists(s.Catalogue("EINS")));
    d.cmdHinzufügen->click();
    CT_VERIFY(Exists(s.Catalogue("EINS")));
}

// --- Adding ------------------------------------------------------------------------------

CT_TEST(addWritesTheCatalogueAndSavesTheDrive) {
    AddSetup s;
    s.fx.WriteIni("0", "C", s.fx.DataFolder());
    auto h = s.fx.StartMain();
    frmHinzufügen d(h.get());
    d.DriveLaufwerk->setCurrentIndex(0);
    d.txtBezeichnung->setText("Fotos");
    d.txtBeschreibung->setPlainText("Urlaub");
    d.cmdHinzufügen->click();

    const auto lines = Lines(ReadFile(s.Catalogue("Fotos")));
    CT_VERIFY(lines.size() == 6);
    CT_COMPARE(lines[0], "0|0||0|0|0|Urlaub");
    CT_COMPARE(lines[1], "");
    CT_VERIFY(Q(lines[2]).startsWith("\\Bilder|"));
    CT_COMPARE(lines[3], "");
    CT_COMPARE(Paths(ReadFile(s.Catalogue("Fotos"))),
               (QStringList{"\\Bilder", "\\Bilder\\p1.jpg", "\\liesmich.txt"}));
    CT_COMPARE(s.fx.messages.size(), 1u);
    CT_COMPARE(s.fx.messages[0].title, "Fertig!");
    CT_COMPARE(s.fx.messages[0].text, ResourceText(10092));
    CT_VERIFY(s.fx.messages[0].buttons == QMessageBox::Ok);
    CT_COMPARE(Start::DriveLetter, s.eins);
    CT_COMPARE(s.fx.ReadIni(), "0\r\n" + s.eins + "\r\n" + s.fx.DataFolder() + "\r\n");
    // Still open with what was entered; the list shows the disc only once it closes.
    CT_COMPARE(d.txtBezeichnung->text(), "Fotos");
    CT_COMPARE(d.txtBeschreibung->toPlainText(), "Urlaub");
    CT_COMPARE(h->lstDaten->ListCount(), 0);
    CT_VERIFY(QGuiApplication::overrideCursor() == nullptr);
    CT_VERIFY(s.fx.helpCalls.empty());
}

struct LabelRow {
    const char* name;
    const char* typed;
    const char* existing;     // a catalogue lying there first ("" none), "sub/..." in a sub-folder
    int helpTopic;            // 0: added
    const char* boxAfter;
    const char* fileWritten;  // the new catalogue's base name, when added
};
CT_TEST_ROWS(labels, LabelRow, {
    {"empty label refused", "", "", 10099, "", nullptr},
    {"blanks become the empty label", "   ", "", 0, "", ""},
    {"only removed characters", "\\/:*?\"<>|", "", 0, "", ""},
    {"cleaned and trimmed", "  Fo?to:s  ", "", 0, "Fotos", "Fotos"},
    {"inner blanks stay", "Disc  1", "", 0, "Disc  1", "Disc  1"},
    {"label in use", "Fotos", "Fotos", 10100, "Fotos", nullptr},
    {"in use after cleaning", "Fo|tos ", "Fotos", 10100, "Fotos", nullptr},
    {"in use in a sub-folder", "Fotos", "alt/Fotos", 10100, "Fotos", nullptr},
    {"other case is free", "fotos", "Fotos", 0, "fotos", "fotos"},
}) {
    AddSetup s;
    if (*row.existing) {
        const std::string existing = row.existing;
        const auto slash = existing.find('/');
        if (slash == std::string::npos)
            s.fx.WriteCatalogue(existing, ExampleCatalogue());
        else
            s.fx.WriteCatalogue(existing.substr(slash + 1), ExampleCatalogue(), existing.substr(0, slash));
    }
    auto h = s.fx.StartMain();
    const auto before = Items(h->lstDaten);
    frmHinzufügen d(h.get());
    d.txtBezeichnung->setText(QString::fromUtf8(row.typed));
    d.cmdHinzufügen->click();
    CT_COMPARE(d.txtBezeichnung->text(), row.boxAfter);
    CT_VERIFY(QGuiApplication::overrideCursor() == nullptr);
    if (row.helpTopic) {
        CT_COMPARE(s.fx.helpCalls, std::vector<std::string>{s.Help(row.helpTopic)});
        CT_VERIFY(s.fx.messages.empty());
        CT_COMPARE(Start::DriveLetter, "C");
        // Nothing was written: the data folder lists what it listed.
        h->Aktualisieren();
        CT_COMPARE(Items(h->lstDaten), before);
    } else {
        CT_VERIFY(s.fx.helpCalls.empty());
        CT_VERIFY(Exists(s.Catalogue(row.fileWritten)));
        CT_COMPARE(s.fx.messages.size(), 1u);
    }
}

CT_TEST(descriptionStoredOnOneLine) {
    AddSetup s;
    auto h = s.fx.StartMain();
    frmHinzufügen d(h.get());
    d.txtBezeichnung->setText("Fotos");
    d.txtBeschreibung->setPlainText(" Sommer\nund  Herbst\n\n2003 ");
    d.cmdHinzufügen->click();
    CT_COMPARE(d.txtBeschreibung->toPlainText(), " Sommer und Herbst 2003 ");
    const auto lines = Lines(ReadFile(s.Catalogue("Fotos")));
    CT_COMPARE(lines.at(0), "0|0||0|0|0| Sommer und Herbst 2003 ");
}

CT_TEST(secondPressFindsTheLabelInUse) {
    AddSetup s;
    auto h = s.fx.StartMain();
    frmHinzufügen d(h.get());
    d.txtBezeichnung->setText("Fotos");
    d.cmdHinzufügen->click();
    const std::string first = ReadFile(s.Catalogue("Fotos"));
    d.cmdHinzufügen->click();
    CT_COMPARE(s.fx.messages.size(), 1u);
    CT_COMPARE(s.fx.helpCalls, std::vector<std::string>{s.Help(10100)});
    CT_COMPARE(ReadFile(s.Catalogue("Fotos")), first);
}

CT_TEST(writeFailureClaimsNoSuccess) {
    AddSetup s;
    auto h = s.fx.StartMain();
    Start::DataFolder = s.fx.Folder() + "/gibtsnicht";
    frmHinzufügen d(h.get());
    d.txtBezeichnung->setText("Fotos");
    d.cmdHinzufügen->click();
    CT_COMPARE(s.fx.messages.size(), 1u);
    CT_VERIFY(s.fx.messages[0].title != "Fertig!");
    CT_VERIFY2(s.fx.messages[0].text.startsWith("Der Katalog konnte nicht geschrieben werden: "),
               s.fx.messages[0].text.toStdString());
    CT_VERIFY(s.fx.messages[0].text.size() > 45);  // the reason is named
    CT_COMPARE(Start::DriveLetter, "C");
    CT_VERIFY(!Exists(s.fx.Folder() + "/gibtsnicht"));
    CT_VERIFY(QGuiApplication::overrideCursor() == nullptr);
}

CT_TEST(progressWhileReadingChangesNothing) {
    AddSetup s;
    auto h = s.fx.StartMain();
    frmHinzufügen d(h.get());
    d.show();
    QString shown;
    bool busy = false, visible = false;
    s.source.duringWalk = [&](const std::function<void(std::size_t)>& progress) {
        progress(5000);
        progress(6000);  // within the same tenth of a second: not painted
        shown = d.lblFortschritt->text();
        busy = QGuiApplication::overrideCursor() != nullptr;
        d.close();  // the close box stops the read, which then closes the dialog
        visible = d.isVisible();
    };
    d.txtBezeichnung->setText("Fotos");
    d.cmdHinzufügen->click();
    CT_VERIFY2(shown.contains("5000"), shown.toStdString());
    CT_VERIFY(busy);
    CT_VERIFY(visible);
    CT_COMPARE(d.lblFortschritt->text(), "");
    CT_VERIFY(!Exists(s.Catalogue("Fotos")));
    CT_VERIFY(!d.isVisible());
    CT_COMPARE(s.fx.messages.size(), 0u);
}

CT_TEST(f1OpensTheTopic) {
    AddSetup s;
    auto h = s.fx.StartMain();
    frmHinzufügen d(h.get());
    d.show();
    d.txtBezeichnung->setFocus();
    QTest::keyClick(d.txtBezeichnung, Qt::Key_F1, Qt::ShiftModifier);
    CT_COMPARE(s.fx.helpCalls, std::vector<std::string>{s.Help(10010)});
    d.reject();
}

// --- Closing -----------------------------------------------------------------------------

struct CloseRow {
    const char* name;
    const char* how;
};
CT_TEST_ROWS(closingRefreshesTheMainWindow, CloseRow, {
    {"cancel button", "cancel"},
    {"Esc", "esc"},
    {"close box", "close"},
}) {
    AddSetup s;
    s.fx.WriteCatalogue("Alt", ExampleCatalogue());
    auto h = s.fx.StartMain();
    Select(h->lstDaten, "Alt");
    CT_VERIFY(h->lstOrdner->ListCount() > 0);
    {
        frmHinzufügen d(h.get());
        d.show();
        d.txtBezeichnung->setText("Neu");
        d.cmdHinzufügen->click();
        CT_COMPARE(Items(h->lstDaten), QStringList{"Alt"});
        const std::string how = row.how;
        if (how == "cancel")
            d.cmdAbbrechen->click();
        else if (how == "esc")
            QTest::keyClick(&d, Qt::Key_Escape);
        else
            d.close();
        CT_VERIFY(!d.isVisible());
    }
    CT_COMPARE(Items(h->lstDaten), (QStringList{"Alt", "Neu"}));
    CT_COMPARE(h->lstDaten->ListIndex(), -1);
    CT_COMPARE(h->lstOrdner->ListCount(), 0);
    CT_COMPARE(h->lstDateien->ListCount(), 0);
    CT_VERIFY(!h->lstOrdner->isEnabled() && !h->lstDateien->isEnabled());
}

CT_TEST(openedFromTheMainWindow) {
    AddSetup s;
    auto h = s.fx.StartMain();
    bool seen = false;
    WhenDialogOpens([&](frmHinzufügen& d) {
        seen = true;
        d.txtBezeichnung->setText("Neu");
        d.cmdHinzufügen->click();
        d.cmdAbbrechen->click();
    });
    h->cmdHinzufügen->click();
    CT_VERIFY(seen);
    CT_COMPARE(Items(h->lstDaten), QStringList{"Neu"});
}

// --- Re-reading ---------------------------------------------------------------------------

CT_TEST(rereadNeedsAChosenDisc) {
    AddSetup s;
    s.fx.WriteCatalogue("Fotos", ExampleCatalogue());
    auto h = s.fx.StartMain();
    bool opened = false;
    WhenDialogOpens([&](frmHinzufügen& d) {
        opened = true;
        d.reject();
    });
    h->mnuNeuEinlesen->trigger();
    QCoreApplication::processEvents();
    CT_VERIFY(!opened);
    CT_COMPARE(s.fx.helpCalls, std::vector<std::string>{s.Help(10098)});
    CT_VERIFY(s.fx.messages.empty());
    CT_VERIFY(QGuiApplication::overrideCursor() == nullptr);
}

CT_TEST(rereadAnsweredNoChangesNothing) {
    AddSetup s;
    const std::string path = s.fx.WriteCatalogue("Fotos", ExampleCatalogue());
    const std::string before = ReadFile(path);
    auto h = s.fx.StartMain();
    Select(h->lstDaten, "Fotos");
    const QString description = h->txtBeschreibungC->toPlainText();
    const int folders = h->lstOrdner->ListCount();
    s.fx.answers = {QMessageBox::No};
    h->mnuNeuEinlesen->trigger();
    CT_COMPARE(s.fx.messages.size(), 1u);
    CT_COMPARE(s.fx.messages[0].title, "Wirklich neu einlesen?");
    CT_COMPARE(s.fx.messages[0].text, kQuestion);
    CT_VERIFY(s.fx.messages[0].buttons == (QMessageBox::Yes | QMessageBox::No));
    CT_COMPARE(s.fx.messages[0].icon, QMessageBox::NoIcon);
    CT_COMPARE(ReadFile(path), before);
    CT_COMPARE(h->lstDaten->Text(), "Fotos");
    CT_COMPARE(h->txtBeschreibungC->toPlainText(), description);
    CT_COMPARE(h->lstOrdner->ListCount(), folders);
    CT_VERIFY(QGuiApplication::overrideCursor() == nullptr);
}

CT_TEST(rereadLeftWithoutAddingBringsTheCatalogueBack) {
    AddSetup s;
    s.fx.WriteIni("10000", "C", s.fx.DataFolder());  // the question stays German in English
    const std::string path = s.fx.WriteCatalogue("Fotos", ExampleCatalogue());
    s.fx.WriteCatalogue("Andere", ExampleCatalogue());
    const std::string before = ReadFile(path);
    auto h = s.fx.StartMain();
    Start::DriveLetter = s.zwei;  // the dialog opens on ZWEI: its name is proposed, then replaced
    Select(h->lstDaten, "Fotos");
    s.fx.answers = {QMessageBox::Yes};
    struct Seen {
        QString label, description, drive;
        QStringList discs;
        bool fileThere = true, hiddenThere = false, folderPaneEmpty = false, discPaneEmpty = false;
        bool labelFree = false;
    } seen;
    WhenDialogOpens([&](frmHinzufügen& d) {
        seen.label = d.txtBezeichnung->text();
        seen.description = d.txtBeschreibung->toPlainText();
        seen.drive = d.Drive();
        seen.discs = Items(h->lstDaten);
        seen.fileThere = Exists(path);
        seen.hiddenThere = Exists(s.fx.DataFolder() + "/.Fotos.idx.reread");
        seen.folderPaneEmpty = h->lstOrdner->ListCount() == 0 && h->lstDateien->ListCount() == 0 &&
                               !h->lstOrdner->isEnabled();
        seen.discPaneEmpty = h->txtBeschreibungC->toPlainText().isEmpty() && h->lblGC->text().isEmpty() &&
                             !h->cmdÄndernC->isEnabled();
        seen.labelFree = !LabelInUse(AddDiscSource(), Start::DataFolder, "Fotos");
        d.cmdAbbrechen->click();
    });
    h->mnuNeuEinlesen->trigger();
    CT_COMPARE(s.fx.messages.size(), 1u);
    CT_COMPARE(s.fx.messages[0].text, kQuestion);
    CT_COMPARE(seen.label, "Fotos");
    CT_COMPARE(seen.description, "Photos 2003");
    CT_COMPARE(seen.drive, Q(s.zwei));
    CT_COMPARE(seen.discs, QStringList{"Andere"});
    CT_VERIFY(!seen.fileThere);
    CT_VERIFY(seen.hiddenThere);
    CT_VERIFY(seen.folderPaneEmpty);
    CT_VERIFY(seen.discPaneEmpty);
    CT_VERIFY(seen.labelFree);
    // Back byte for byte, listed again, nothing left aside.
    CT_COMPARE(ReadFile(path), before);
    CT_VERIFY(!Exists(s.fx.DataFolder() + "/.Fotos.idx.reread"));
    CT_COMPARE(Items(h->lstDaten), (QStringList{"Andere", "Fotos"}));
    CT_COMPARE(s.fx.messages.size(), 1u);
}

struct RereadRow {
    const char* name;
    const char* label;  // typed over the prefilled one ("" keep it)
    QStringList discs;  // after the dialog closed
};
CT_TEST_ROWS(rereadCompleted, RereadRow, {
    {"same label", "", {"Fotos"}},
    {"changed label: the old name doesn't come back", "Fotos neu", {"Fotos neu"}},
}) {
    AddSetup s;
    const std::string path = s.fx.WriteCatalogue("Fotos", ExampleCatalogue());
    auto h = s.fx.StartMain();
    Select(h->lstDaten, "Fotos");
    s.fx.answers = {QMessageBox::Yes};
    WhenDialogOpens([&](frmHinzufügen& d) {
        if (*row.label) d.txtBezeichnung->setText(QString::fromUtf8(row.label));
        d.cmdHinzufügen->click();
        d.close();
    });
    h->mnuNeuEinlesen->trigger();
    CT_VERIFY(s.fx.helpCalls.empty());
    CT_COMPARE(s.fx.messages.size(), 2u);
    CT_COMPARE(s.fx.messages[1].title, "Fertig!");
    CT_COMPARE(Items(h->lstDaten), row.discs);
    const std::string label = *row.label ? row.label : "Fotos";
    // The new reading, with the disc's description carried over; no folder
    // or file description survives.
    const auto lines = Lines(ReadFile(s.Catalogue(label)));
    CT_COMPARE(lines.at(0), "0|0||0|0|0|Photos 2003");
    CT_COMPARE(Paths(ReadFile(s.Catalogue(label))), (QStringList{"\\Bilder", "\\Bilder\\p1.jpg", "\\liesmich.txt"}));
    QStringList left = QDir(Q(s.fx.DataFolder())).entryList(QDir::Files | QDir::Hidden);
    left.sort();
    CT_COMPARE(left, QStringList{Q(label + ".idx")});
}

CT_TEST(rereadOfACatalogueThatCantBeSetAside) {
    AddSetup s;
    s.fx.WriteCatalogue("Fotos", ExampleCatalogue(), "alt");  // listed, but not at the path of its label
    auto h = s.fx.StartMain();
    Select(h->lstDaten, "Fotos");
    s.fx.answers = {QMessageBox::Yes};
    bool opened = false;
    WhenDialogOpens([&](frmHinzufügen& d) {
        opened = true;
        d.reject();
    });
    h->mnuNeuEinlesen->trigger();
    QCoreApplication::processEvents();
    CT_VERIFY(!opened);
    CT_COMPARE(s.fx.messages.size(), 2u);
    CT_VERIFY(s.fx.messages[1].text.startsWith("Der Katalog kann nicht neu eingelesen werden: "));
    CT_COMPARE(Items(h->lstDaten), QStringList{"Fotos"});
    CT_VERIFY(Exists(s.fx.DataFolder() + "/alt/Fotos.idx"));
    CT_VERIFY(QGuiApplication::overrideCursor() == nullptr);
}

CT_TEST(leftoverOfACrashComesBackAtStart) {
    AddSetup s;
    const std::string body = ReadFile(s.fx.WriteCatalogue("x", ExampleCatalogue()));
    QFile::remove(Q(s.Catalogue("x")));
    WriteFile(s.fx.DataFolder() + "/.Fotos.idx.reread", body);
    WriteFile(s.fx.DataFolder() + "/.Belegt.idx.reread", body);
    WriteFile(s.Catalogue("Belegt"), "neu\r\n");
    auto h = s.fx.StartMain();  // the start restores what it finds
    CT_COMPARE(ReadFile(s.Catalogue("Fotos")), body);
    CT_COMPARE(ReadFile(s.Catalogue("Belegt")), "neu\r\n");
    CT_VERIFY(Exists(s.fx.DataFolder() + "/.Belegt.idx.reread"));
    CT_COMPARE(s.fx.messages.size(), 1u);
    CT_VERIFY(s.fx.messages[0].text.contains(".Belegt.idx.reread"));
}

// --- A real disc image ---------------------------------------------------------------------

CT_TEST(isoImageMountedAndAdded) {
    AddSetup s;
    QTemporaryDir work;
    const QString src = work.filePath("src"), mnt = work.filePath("mnt"), iso = work.filePath("disc.iso");
    WriteFile((src + "/Bilder/p1.jpg").toStdString(), "JPEGDATA");
    WriteFile((src + "/liesmich.txt").toStdString(), "Hallo");
    QDir().mkpath(mnt);
    QProcess make;
    make.start("xorriso", {"-as", "mkisofs", "-J", "-V", "FOTOS2003", "-o", iso, src});
    if (!make.waitForFinished(60000) || make.exitCode() != 0) {
        qInfo("SKIP isoImageMountedAndAdded: xorriso can't make an image here");
        return;
    }
    QProcess mount;
    mount.start("mount", {"-o", "loop,ro", iso, mnt});
    if (!mount.waitForFinished(30000) || mount.exitCode() != 0) {
        qInfo("SKIP isoImageMountedAndAdded: the image can't be mounted here (%s)",
              mount.readAllStandardError().trimmed().constData());
        return;
    }
    struct Unmount {
        QString at;
        ~Unmount() { QProcess::execute("umount", {at}); }
    } unmount{mnt};

    // The machine's own drive list, walker and volume query.
    frmHinzufügen::Source = nullptr;
    frmHinzufügen::DriveList = {};
    auto h = s.fx.StartMain();
    Start::DriveLetter = mnt.toStdString();
    frmHinzufügen d(h.get());
    CT_COMPARE(d.Drive(), mnt);
    CT_COMPARE(d.DriveLaufwerk->currentText(), mnt + " [FOTOS2003]");
    CT_COMPARE(d.txtBezeichnung->text(), "FOTOS2003");
    d.cmdHinzufügen->click();
    const std::string catalogue = ReadFile(s.Catalogue("FOTOS2003"));
    const auto lines = Lines(catalogue);
    CT_VERIFY(!lines.empty());
    CT_VERIFY2(Q(lines[0]).contains("|CDFS|"), lines[0]);
    CT_COMPARE(Paths(catalogue), (QStringList{"\\Bilder", "\\Bilder\\p1.jpg", "\\liesmich.txt"}));
    for (const std::string& line : lines)
        if (Q(line).startsWith("\\liesmich.txt|")) CT_VERIFY2(Q(line).startsWith("\\liesmich.txt|5|"), line);
}

// --- Pictures for a look by eye --------------------------------------------------------------

// With CARTULON_SHOTS=<folder> (run under Xvfb with QT_QPA_PLATFORM=xcb), saves
// the dialog in both languages, as the program's own font draws it, with a
// long count standing in the progress label. Without it: nothing to do.
CT_TEST(screenshotsOnRequest) {
    const QString folder = qEnvironmentVariable("CARTULON_SHOTS");
    if (folder.isEmpty()) return;
    UseProgramFont();
    for (const char* language : {"0", "10000"}) {
        AddSetup s;
        s.fx.WriteIni(language, "C", s.fx.DataFolder());
        frmHinzufügen::DriveList = [] {
            return std::vector<ct::Drive>{{"/media/anna/FOTOS2003", "FOTOS2003", "/media/anna/FOTOS2003 [FOTOS2003]", true},
                                          {"/home", "", "/home", false}};
        };
        auto h = s.fx.StartMain();
        frmHinzufügen d(h.get());
        d.txtBezeichnung->setText("FOTOS 2003");
        d.txtBeschreibung->setPlainText("Urlaub an der Küste, erste Woche, alle Bilder der Kamera");
        d.lblFortschritt->setText(Start::Language == 10000 ? "123456 entries found" : "123456 Einträge gefunden");
        d.show();
        QTest::qWait(300);
        const QString name = folder + "/frmHinzufuegen_" + language + ".png";
        CT_VERIFY(d.grab().save(name));
        d.DriveLaufwerk->showPopup();
        QTest::qWait(300);
        QWidget* popup = d.DriveLaufwerk->view()->window();
        CT_VERIFY(popup->grab().save(folder + "/frmHinzufuegen_" + language + "_list.png"));
        d.DriveLaufwerk->hidePopup();
        d.reject();
    }
}

CT_TEST_MAIN()
