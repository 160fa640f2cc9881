// The main window: start-up, the three panes read from catalogues good and
// damaged, the enable states, the two layouts, the language and the help keys.
#include <QAbstractScrollArea>
#include <QAction>
#include <QDateTime>
#include <QDialog>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QTimer>
#include <QtTest>
#include <cstdio>

#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmSprache.h"
#include "support/GuiFixture.h"
#include "support/TestRunner.h"

using namespace ct;
using ct::test::ExampleCatalogue;
using ct::test::GuiFixture;
using ct::test::Select;
using ct::test::Items;

namespace {

std::vector<std::string> Lines(std::initializer_list<const char*> lines) {
    return {lines.begin(), lines.end()};
}

// Runs once the next modal window is up: frmSprache chooses `index` (-1:
// nothing) and is finished by `how`: "ok", "enter", "esc" or "close".
void AnswerLanguage(int index, std::string how) {
    QTimer::singleShot(0, [index, how] {
        auto* dialog = dynamic_cast<frmSprache*>(QApplication::activeModalWidget());
        if (!dialog) return;
        if (index >= 0) dialog->cboSprache->setCurrentIndex(index);
        if (how == "ok")
            dialog->cmdOK->click();
        else if (how == "enter")
            QTest::keyClick(dialog, Qt::Key_Return);
        else if (how == "esc")
            QTest::keyClick(dialog, Qt::Key_Escape);
        else
            dialog->close();
    });
}


// The five groups of the enable rules: disc list, disc details, folder,
// folder description, file; "1" on, "0" off.
std::string StateOf(const frmHaupt& h) {
    auto all = [](std::initializer_list<QWidget*> ws) {
        bool on = true, off = true;
        for (QWidget* w : ws) (w->isEnabled() ? off : on) = false;
        return on ? '1' : off ? '0' : '?';
    };
    return {all({h.lblDaten, h.lstDaten}),
            all({h.lblInfoC, h.lblGrößeC, h.lblDateianzahlC, h.lblOrdneranzahlC, h.lblSeriennummerC,
                 h.lblDateisystemC, h.lblClusterC, h.lblSektorenC, h.lblBytesC, h.lblBeschreibungC, h.cmdÄndernC,
                 h.txtBeschreibungC}),
            all({h.lblOrdner, h.lstOrdner, h.lblInfoO, h.lblGrößeO, h.lblDateianzahlO, h.lblAttributO, h.lblDatumO}),
            all({h.lblBeschreibungO, h.cmdÄndernO, h.txtBeschreibungO}),
            all({h.lblDateien, h.lstDateien, h.lblInfoD, h.lblGrößeD, h.lblAttributD, h.lblDatumD,
                 h.lblBeschreibungD, h.cmdÄndernD, h.txtBeschreibungD})};
}

QStringList DiscValues(const frmHaupt& h) {
    return {h.lblGC->text(),  h.lblSerC->text(), h.lblDC->text(), h.lblCC->text(),
            h.lblSekC->text(), h.lblBC->text(),  h.lblOA->text(), h.lblDA->text(),
            h.txtBeschreibungC->toPlainText()};
}
QStringList FolderValues(const frmHaupt& h) {
    return {h.lblGO->text(), h.lblDAO->text(), h.lblAO->text(), h.lblDO->text(), h.txtBeschreibungO->toPlainText()};
}
QStringList FileValues(const frmHaupt& h) {
    return {h.lblGD->text(), h.lblAD->text(), h.lblDD->text(), h.txtBeschreibungD->toPlainText()};
}

}  // namespace

// --- Start-up ----------------------------------------------------------------------

CT_TEST(normalStart) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    CT_VERIFY(fx.IsValid());
    fx.WriteIni("10000", "/media/cd", fx.DataFolder());
    fx.WriteCatalogue("Fotos", ExampleCatalogue());
    auto h = fx.StartMain();
    CT_COMPARE(Start::Language, 10000);
    CT_COMPARE(Start::DriveLetter, "/media/cd");
    CT_COMPARE(Start::DataFolder, fx.DataFolder());
    CT_COMPARE(h->windowTitle(), "Cartulon");
    CT_VERIFY(!h->cmdSuchen->text().isEmpty());
    CT_COMPARE(h->cmdSuchen->text(), ResourceText(10015));
    CT_VERIFY(h->cmdSuchen->font().bold());
    CT_VERIFY(h->cmdSuchen->isDefault());
    CT_COMPARE(Items(h->lstDaten), QStringList{"Fotos"});
    CT_COMPARE(h->lstDaten->ListIndex(), -1);
    CT_COMPARE(StateOf(*h), "10000");
    CT_VERIFY(QGuiApplication::overrideCursor() == nullptr);
    CT_VERIFY(fx.messages.empty());
}

struct FirstRunRow {
    const char* name;
    int index;
    const char* how;
    int language;
    const char* iniLine1;
};
CT_TEST_ROWS(firstRun, FirstRunRow, {
    {"German by OK", 0, "ok", 0, "0"},
    {"English by OK", 1, "ok", 10000, "10000"},
    {"English by Enter", 1, "enter", 10000, "10000"},
    {"English by Esc", 1, "esc", 10000, "10000"},
    {"nothing chosen gives German", -1, "ok", 0, "0"},
    {"close box keeps the marker", 1, "close", 0, "-1"},
}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    CT_VERIFY(fx.IsValid());
    // A first run takes the defaults, not lines 2 and 3.
    fx.WriteIniRaw("-1\r\nX\r\n/nowhere\r\n");
    AnswerLanguage(row.index, row.how);
    auto h = fx.StartMain();
    CT_COMPARE(Start::Language, row.language);
    CT_COMPARE(Start::DriveLetter, "C");
    CT_COMPARE(Start::DataFolder, fx.DataFolder());
    const std::string ini = fx.ReadIni();
    CT_COMPARE(ini.substr(0, ini.find("\r\n")), row.iniLine1);
    if (std::string(row.iniLine1) != "-1")
        CT_COMPARE(ini, std::string(row.iniLine1) + "\r\nC\r\n" + fx.DataFolder() + "\r\n");
    // The main window comes up in the language chosen.
    CT_COMPARE(h->lblDaten->text(), ResourceText(10024));
    CT_VERIFY(QGuiApplication::overrideCursor() == nullptr);
}

CT_TEST(unwritableSettingsKeepLanguage) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    // A folder in the place of the scratch file: CT.ini can't be replaced.
    fx.WriteIniRaw("-1\r\n");
    QDir().mkdir(QString::fromStdString(fx.Folder() + "/CT.ini.part"));
    AnswerLanguage(1, "ok");
    auto h = fx.StartMain();
    CT_COMPARE(Start::Language, 10000);
    CT_COMPARE(h->lblDaten->text(), ResourceText(10024));
    CT_COMPARE(fx.ReadIni(), "-1\r\n");
}

CT_TEST(discList) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    const auto empty = Lines({"1|1|X|1|1|1|", "", ""});
    fx.WriteCatalogue("beta", empty);
    fx.WriteCatalogue("Alpha", empty);
    fx.WriteCatalogue("gamma", empty, "sub/deeper");
    fx.WriteFileRaw(fx.DataFolder() + "/UPPER.IDX", "x");
    fx.WriteFileRaw(fx.DataFolder() + "/a.idx.bak", "x");
    fx.WriteFileRaw(fx.DataFolder() + "/noidx", "x");
    auto h = fx.StartMain();
    CT_COMPARE(Items(h->lstDaten), (QStringList{"Alpha", "beta", "gamma"}));
    CT_COMPARE(h->lstDaten->ListIndex(), -1);
    // A disc listed from a sub-folder is looked for directly in the data
    // folder, where it isn't: the panes stay empty and nothing breaks.
    h->lstDaten->SetListIndex(2);
    CT_COMPARE(h->lblGC->text(), "");
    CT_COMPARE(h->lstOrdner->ListCount(), 0);
    h->lstDaten->SetListIndex(0);
    CT_COMPARE(Items(h->lstOrdner), QStringList{"."});
}

CT_TEST(missingDataFolder) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteIni("0", "C", fx.Folder() + "/gibtsnicht");
    auto h = fx.StartMain();
    CT_COMPARE(h->lstDaten->ListCount(), 0);
    CT_COMPARE(StateOf(*h), "00000");
}

// --- Disc pane -------------------------------------------------------------------------

struct DiscRow {
    const char* name;
    std::vector<std::string> lines;
    QStringList expected;  // GC SerC DC CC SekC BC OA DA description
};
CT_TEST_ROWS(discPane, DiscRow, {
    {"example disc", ExampleCatalogue(),
     {"654311424", "-1029197328", "CDFS", "319488", "1", "2048", "2", "3", "Photos 2003"}},
    {"volume query failed", Lines({"0|0||0|0|0|Alt", "", "", "\\a.txt|1||01.01.2000 00:00:00|"}),
     {"0", "0", "", "0", "0", "0", "0", "1", "Alt"}},
    {"empty disc", Lines({"100|5|UDF|1|1|1|", "", ""}), {"100", "5", "UDF", "1", "1", "1", "0", "0", ""}},
    {"description with bars and backslashes", Lines({"1|2|CDFS|3|4|5|a|b\\c|", "", ""}),
     {"1", "2", "CDFS", "3", "4", "5", "0", "0", "a|b\\c|"}},
    {"header short of bars", Lines({"123|45"}), {"123", "45", "", "", "", "", "0", "0", ""}},
    {"cut short in the folders", Lines({"9|9|FAT|9|9|9|x", "", "\\A|||", "\\B||"}),
     {"9", "9", "FAT", "9", "9", "9", "2", "0", "x"}},
    {"empty file", {}, {"", "", "", "", "", "", "0", "0", ""}},
}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteCatalogue("Disc", row.lines);
    auto h = fx.StartMain();
    CT_COMPARE(h->lstDaten->ListCount(), 1);
    h->lstDaten->SetListIndex(0);
    CT_COMPARE(DiscValues(*h), row.expected);
    // The root is chosen in any case, and the pointer is back.
    CT_COMPARE(h->lstOrdner->Text(), ".");
    CT_VERIFY(QGuiApplication::overrideCursor() == nullptr);
}

CT_TEST(vanishedCatalogue) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    const std::string path = fx.WriteCatalogue("Weg", ExampleCatalogue());
    auto h = fx.StartMain();
    std::remove(path.c_str());
    h->lstDaten->SetListIndex(0);
    CT_COMPARE(h->lblGC->text(), "");
    CT_COMPARE(h->lstOrdner->ListCount(), 0);
    CT_VERIFY(!h->lstOrdner->isEnabled());
    CT_VERIFY(QGuiApplication::overrideCursor() == nullptr);
    CT_VERIFY(!QFileInfo::exists(QString::fromStdString(path)));

    // Gone between the folder list and a click on a folder.
    fx.WriteCatalogue("Weg", ExampleCatalogue());
    h->lstDaten->SetListIndex(0);
    std::remove(path.c_str());
    Select(h->lstOrdner, "\\Bilder");
    CT_COMPARE(h->lblDAO->text(), "0");
    CT_COMPARE(h->lstDateien->ListCount(), 0);
    CT_VERIFY(!QFileInfo::exists(QString::fromStdString(path)));
}

CT_TEST(clickOnChosenDiscStartsOver) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteCatalogue("Disc", ExampleCatalogue());
    auto h = fx.StartMain();
    h->lstDaten->SetListIndex(0);
    Select(h->lstOrdner, "\\Bilder\\Urlaub");
    CT_COMPARE(h->lstDateien->Text(), "p1.jpg");
    // A real click on the disc that is chosen already.
    const QRect r = h->lstDaten->visualItemRect(h->lstDaten->item(0));
    QTest::mouseClick(h->lstDaten->viewport(), Qt::LeftButton, {}, r.center());
    CT_COMPARE(h->lstOrdner->Text(), ".");
    CT_COMPARE(h->lstDateien->Text(), "liesmich.txt");
    CT_COMPARE(h->lstOrdner->ListCount(), 3);
}

CT_TEST(largeCounts) {
    // More lines than a 16-bit counter holds.
    GuiFixture fx(CARTULON_STAGE_DIR);
    std::vector<std::string> lines{"1|1|X|1|1|1|", ""};
    for (int i = 0; i < 33000; ++i) lines.push_back("\\d" + std::to_string(i) + "|||");
    lines.push_back("");
    for (int i = 0; i < 40000; ++i) lines.push_back("\\f" + std::to_string(i) + "|2|||");
    fx.WriteCatalogue("Big", lines);
    auto h = fx.StartMain();
    h->lstDaten->SetListIndex(0);
    CT_COMPARE(h->lblOA->text(), "33000");
    CT_COMPARE(h->lblDA->text(), "40000");
    CT_COMPARE(h->lblDAO->text(), "40000");
    CT_COMPARE(h->lblGO->text(), "80000");
    CT_COMPARE(h->lstOrdner->ListCount(), 33001);
    CT_COMPARE(h->lstDateien->ListCount(), 40000);
    CT_COMPARE(h->lstOrdner->List(0), ".");
    CT_COMPARE(h->lstDateien->Text(), "f0");
}

// --- Folder pane -------------------------------------------------------------------------

const std::vector<std::string> kAlike = Lines(
    {"1|1|X|1|1|1|", "", "\\Foto|||kurz", "\\Fotos|A|02.02.2002 02:02:02|lang", "", "\\Foto\\a.jpg|10|A||",
     "\\Fotos\\b.jpg|20|||", "\\Fotos\\c.jpg|30|||x\\y", "\\Foto\\Sub\\d.jpg|40|||"});
const std::vector<std::string> kTricky =
    Lines({"1|1|X|1|1|1|", "", "\\D|R H|01.01.2001 01:01:01|a|b\\c", "", "\\D\\f.txt|-2147483648|||desc \\E\\g",
           "\\D\\F.TXT|0|||", "\\d\\h.txt|7|||", "\\r.txt|1.5|||"});

struct FolderRow {
    const char* name;
    std::vector<std::string> lines;
    const char* folder;
    QStringList expected;  // GO DAO AO DO description
    QStringList files;
};
CT_TEST_ROWS(folderPane, FolderRow, {
    {"root of example", ExampleCatalogue(), ".", {"1024", "1", "-", "-", ""}, {"liesmich.txt"}},
    {"Bilder", ExampleCatalogue(), "\\Bilder", {"2310", "1", "R", "14.03.2003 09:12:40", ""}, {"index.htm"}},
    {"Urlaub", ExampleCatalogue(), "\\Bilder\\Urlaub",
     {"183442", "1", "R", "14.03.2003 09:12:41", "Trip to the coast"}, {"p1.jpg"}},
    {"folder and its longer namesake", kAlike, "\\Foto", {"10", "1", "-", "-", "kurz"}, {"a.jpg"}},
    {"the longer namesake", kAlike, "\\Fotos", {"50", "2", "A", "02.02.2002 02:02:02", "lang"}, {"b.jpg", "c.jpg"}},
    {"root with only sub-folders", kAlike, ".", {"0", "0", "-", "-", ""}, {}},
    {"bars, backslashes, case, sign", kTricky, "\\D", {"-2147483648", "2", "R H", "01.01.2001 01:01:01", "a|b\\c"},
     {"F.TXT", "f.txt"}},
    {"root files only", kTricky, ".", {"1.5", "1", "-", "-", ""}, {"r.txt"}},
}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteCatalogue("Disc", row.lines);
    auto h = fx.StartMain();
    h->lstDaten->SetListIndex(0);
    CT_VERIFY(Select(h->lstOrdner, QString::fromUtf8(row.folder)) >= 0);
    CT_COMPARE(FolderValues(*h), row.expected);
    CT_COMPARE(Items(h->lstDateien), row.files);
    CT_COMPARE(h->lstDateien->ListIndex(), row.files.isEmpty() ? -1 : 0);
    CT_COMPARE(h->lstDateien->isEnabled(), !row.files.isEmpty());
    CT_COMPARE(h->txtBeschreibungO->isEnabled(), std::string(row.folder) != ".");
}

CT_TEST(rootListedOnce) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteCatalogue("Disc", Lines({"1|1|X|1|1|1|", "", "\\b|||", "\\!x|||", "\\-|||", "\\A|||", "", "\\z.txt|1|||"}));
    auto h = fx.StartMain();
    h->lstDaten->SetListIndex(0);
    const QStringList folders{".", "\\!x", "\\-", "\\A", "\\b"};
    CT_COMPARE(Items(h->lstOrdner), folders);
    Select(h->lstOrdner, "\\A");
    Select(h->lstOrdner, ".");
    CT_COMPARE(Items(h->lstOrdner), folders);
    CT_COMPARE(FolderValues(*h), (QStringList{"1", "1", "-", "-", ""}));
    CT_COMPARE(Items(h->lstDateien), QStringList{"z.txt"});
}

// --- File pane ------------------------------------------------------------------------------

struct FileRow {
    const char* name;
    const char* folder;
    const char* file;
    QStringList expected;  // GD AD DD description
};
CT_TEST_ROWS(filePane, FileRow, {
    {"root file without attributes", ".", "a", {"0", "-", "", ""}},
    {"shorter name finds its own line", ".", "ab", {"12", "R", "-", "x|y\\z"}},
    {"file in a folder", "\\F", "ab", {"5", "H", "03.03.2003 03:03:03", "f"}},
}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteCatalogue("Disc", Lines({"1|1|X|1|1|1|", "", "\\F|||", "", "\\abc|99|A|01.01.2001 01:01:01|long",
                                     "\\ab|12|R|-|x|y\\z", "\\a|0|||", "\\F\\ab|5|H|03.03.2003 03:03:03|f"}));
    auto h = fx.StartMain();
    h->lstDaten->SetListIndex(0);
    Select(h->lstOrdner, QString::fromUtf8(row.folder));
    CT_VERIFY(Select(h->lstDateien, QString::fromUtf8(row.file)) >= 0);
    CT_COMPARE(FileValues(*h), row.expected);
}

CT_TEST(windows1252Catalogue) {
    // A catalogue written on Windows: umlauts as single bytes.
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteCatalogue("Alt", {"1|1|X|1|1|1|Gr\xFC\xDF""e", "", "\\B\xE4ume|||", "", "\\B\xE4ume\\\xC4pfel.txt|3|||s\xFC\xDF"});
    auto h = fx.StartMain();
    h->lstDaten->SetListIndex(0);
    CT_COMPARE(h->txtBeschreibungC->toPlainText(), "Grüße");
    Select(h->lstOrdner, "\\Bäume");
    CT_COMPARE(Items(h->lstDateien), QStringList{"Äpfel.txt"});
    CT_COMPARE(h->txtBeschreibungD->toPlainText(), "süß");
}

// --- Pane states and layout ------------------------------------------------------------------

struct SituationRow {
    const char* name;
    const char* setup;  // "none", "listed", "chosen", "searched"
    std::vector<std::string> lines;
    const char* folder;
    const char* state;
};
const std::vector<std::string> kRootEmpty = Lines({"1|1|X|1|1|1|", "", "\\leer|||", "", "\\leer\\x\\y|1|||"});
const std::vector<std::string> kRootFiles =
    Lines({"1|1|X|1|1|1|", "", "\\leer|||", "\\voll|||", "", "\\r|1|||", "\\voll\\v|2|||"});
CT_TEST_ROWS(situations, SituationRow, {
    {"no catalogue in the data folder", "none", {}, "", "00000"},
    {"discs listed, none chosen", "listed", kRootFiles, "", "10000"},
    {"root chosen, root holds no file", "chosen", kRootEmpty, ".", "11100"},
    {"root chosen, root holds files", "chosen", kRootFiles, ".", "11101"},
    {"folder chosen, no file", "chosen", kRootFiles, "\\leer", "11110"},
    {"folder chosen, files", "chosen", kRootFiles, "\\voll", "11111"},
    {"search window closed since", "searched", kRootFiles, "\\voll", "11000"},
}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    if (!row.lines.empty()) fx.WriteCatalogue("D", row.lines);
    auto h = fx.StartMain();
    const std::string setup = row.setup;
    if (setup == "chosen" || setup == "searched") {
        h->lstDaten->SetListIndex(0);
        CT_VERIFY(Select(h->lstOrdner, QString::fromUtf8(row.folder)) >= 0);
    }
    if (setup == "searched") {
        h->OrdnerInfoLöschen();
        h->DateiInfoLöschen();
    }
    CT_COMPARE(StateOf(*h), row.state);
    // Value labels are never disabled; the buttons at the top never are.
    for (QLabel* l : {h->lblGC, h->lblDA, h->lblBC, h->lblGO, h->lblAO, h->lblDO, h->lblGD, h->lblDD})
        CT_VERIFY(l->isEnabled());
    CT_VERIFY(h->cmdSuchen->isEnabled() && h->cmdHinzufügen->isEnabled());
}

CT_TEST(lastDiscGoneDisablesList) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    const std::string a = fx.WriteCatalogue("A", kRootFiles);
    const std::string b = fx.WriteCatalogue("B", kRootFiles);
    auto h = fx.StartMain();
    h->lstDaten->SetListIndex(0);
    std::remove(a.c_str());
    h->OrdnerInfoLöschen();
    h->DateiInfoLöschen();
    h->Aktualisieren();
    CT_COMPARE(StateOf(*h), "10000");
    CT_COMPARE(h->lblGC->text(), "");
    std::remove(b.c_str());
    h->Aktualisieren();  // the list still held B when the pane was cleared
    CT_COMPARE(StateOf(*h), "10000");
    h->Aktualisieren();
    CT_COMPARE(StateOf(*h), "00000");
}

struct LayoutRow {
    const char* name;
    QSize desktop;
    bool wide;
};
CT_TEST_ROWS(layout, LayoutRow, {
    {"1024x768 wide", {1024, 768}, true},
    {"1280x1024 wide", {1280, 1024}, true},
    {"1023x768 standard", {1023, 768}, false},
    {"1024x767 standard", {1024, 767}, false},
    {"1280x720 standard", {1280, 720}, false},
    {"1000x800 standard", {1000, 800}, false},
}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.desktop = row.desktop;
    auto h = fx.StartMain();
    const bool wide = row.wide;
    CT_COMPARE(Start::WideLayout, wide);
    CT_COMPARE(h->central->width(), wide ? Tw(15210) : Tw(11880));
    CT_COMPARE(h->central->height(), Tw(7185));
    CT_COMPARE(h->fraOrdner->x(), Tw(wide ? 5100 : 3350));
    CT_COMPARE(h->fraDateien->width(), Tw(wide ? 10035 : 8415));
    CT_COMPARE(h->cmdHinzufügen->x(), Tw(wide ? 13200 : 9840));
    CT_COMPARE(h->lstDaten->width(), Tw(wide ? 4755 : 3015));
    CT_COMPARE(h->lblGO->x(), Tw(wide ? 8340 : 6720));
    CT_COMPARE(h->cmdÄndernD->x(), Tw(wide ? 8940 : 7320));
    // Tops and heights never change; the disc values stay in their column.
    CT_COMPARE(h->fraDateien->y(), Tw(4080));
    CT_COMPARE(h->lblGC->x(), Tw(1560));
    CT_COMPARE(h->cmdSuchen->geometry(), QRect(Tw(360), Tw(240), Tw(2895), Tw(735)));
    // Every control lies inside its frame, every frame inside the window.
    for (QWidget* f : {h->fraCD, h->fraOrdner, h->fraDateien}) {
        CT_VERIFY(h->central->rect().contains(f->geometry()));
        for (QWidget* w : f->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            CT_VERIFY2(f->rect().contains(w->geometry()), w->metaObject()->className());
    }
    CT_COMPARE(h->minimumSize(), h->maximumSize());
}

// --- Language, help, buttons, quitting --------------------------------------------------------

CT_TEST(languageChangesCaptionsOnly) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteCatalogue("Disc", ExampleCatalogue());
    auto h = fx.StartMain();
    h->lstDaten->SetListIndex(0);
    Select(h->lstOrdner, "\\Bilder\\Urlaub");
    const QString germanSearch = h->cmdSuchen->text();
    const QString germanMenu = h->mnuDatei->title();
    const QStringList before = DiscValues(*h) + FolderValues(*h) + FileValues(*h);
    const std::string state = StateOf(*h);
    Start::Language = 10000;
    h->Sprache_Setzen();
    CT_VERIFY(h->cmdSuchen->text() != germanSearch);
    CT_VERIFY(h->mnuDatei->title() != germanMenu);
    CT_COMPARE(h->cmdSuchen->text(), ResourceText(10015));
    CT_COMPARE(h->windowTitle(), "Cartulon");
    // A base id shared by several controls shows the same text on each.
    CT_COMPARE(h->cmdÄndernO->text(), h->cmdÄndernC->text());
    CT_COMPARE(h->lblGrößeD->text(), h->lblGrößeO->text());
    CT_COMPARE(DiscValues(*h) + FolderValues(*h) + FileValues(*h), before);
    CT_COMPARE(h->lstDateien->Text(), "p1.jpg");
    CT_COMPARE(StateOf(*h), state);
}

struct HelpLineRow {
    const char* name;
    int language;
    const char* topic;
    const char* tail;
};
CT_TEST_ROWS(helpCommandLine, HelpLineRow, {
    {"German index", 0, "Index", "/CT0.fhp, Index"},
    {"English keeps the German topic", 10000, "Inhalt", "/CT1.fhp, Inhalt"},
    {"topic with blanks and umlauts", 0, "Größe ändern", "/CT0.fhp, Größe ändern"},
}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    Start::Language = static_cast<std::int16_t>(row.language);
    const std::string expected = fx.Folder() + "/folihelp.exe " + fx.Folder() + row.tail;
    CT_COMPARE(HelpCommandLine(QString::fromUtf8(row.topic)), expected);
    HilfeZeigen(QString::fromUtf8(row.topic));
    CT_COMPARE(fx.helpCalls, std::vector<std::string>{expected});
}

CT_TEST(menuShortcutsAndHelp) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteIni("10000");
    auto h = fx.StartMain();
    const std::pair<QAction*, QKeySequence> keys[] = {
        {h->mnuBeenden, QKeySequence(Qt::CTRL | Qt::Key_B)},     {h->mnuHinzufügen, QKeySequence(Qt::CTRL | Qt::Key_H)},
        {h->mnuNeuEinlesen, QKeySequence(Qt::CTRL | Qt::Key_N)}, {h->mnuBezeichnungÄndern, QKeySequence(Qt::CTRL | Qt::Key_A)},
        {h->mnuLöschen, QKeySequence(Qt::CTRL | Qt::Key_L)},     {h->mnuDOSuchen, QKeySequence(Qt::CTRL | Qt::Key_S)},
        {h->mnuOptionen, QKeySequence(Qt::CTRL | Qt::Key_O)},    {h->mnuStatistik, QKeySequence(Qt::CTRL | Qt::Key_T)},
        {h->mnuInhalt, QKeySequence(Qt::Key_F1)},                {h->mnuIndex, QKeySequence(Qt::Key_F2)},
        {h->mnuVersionshistorie, QKeySequence(Qt::Key_F3)},      {h->mnuInfo, QKeySequence(Qt::Key_F4)},
    };
    for (const auto& [action, key] : keys) {
        CT_COMPARE(action->shortcut(), key);
        CT_VERIFY(action->isEnabled() && !action->text().isEmpty());
    }
    h->mnuInhalt->trigger();
    h->mnuIndex->trigger();
    CT_COMPARE(fx.helpCalls.size(), 2u);
    CT_VERIFY(QString::fromStdString(fx.helpCalls[0]).endsWith("/CT1.fhp, Inhalt"));
    CT_VERIFY(QString::fromStdString(fx.helpCalls[1]).endsWith("/CT1.fhp, Index"));
}

struct HelpKeyRow {
    const char* name;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    int calls;
};
CT_TEST_ROWS(helpKeyInDialog, HelpKeyRow, {
    {"F1", Qt::Key_F1, Qt::NoModifier, 1},
    {"Shift+F1", Qt::Key_F1, Qt::ShiftModifier, 1},
    {"Ctrl+Alt+F1", Qt::Key_F1, Qt::ControlModifier | Qt::AltModifier, 1},
    {"F2 passes", Qt::Key_F2, Qt::NoModifier, 0},
    {"Shift+A passes", Qt::Key_A, Qt::ShiftModifier, 0},
}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    Start::Language = 10000;
    QDialog dialog;
    auto* edit = new QLineEdit(&dialog);
    InstallHelpKey(&dialog, 10018);
    // F1 isn't swallowed: it still travels on to the window.
    struct Spy : QObject {
        int seen = 0;
        bool eventFilter(QObject*, QEvent* e) override {
            if (e->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(e)->key() == Qt::Key_F1) ++seen;
            return false;
        }
    } spy;
    dialog.installEventFilter(&spy);
    QTest::keyClick(edit, row.key, row.modifiers);
    CT_COMPARE(int(fx.helpCalls.size()), row.calls);
    if (row.calls) {
        CT_COMPARE(fx.helpCalls[0], HelpCommandLine(ResourceText(10018)));
        CT_VERIFY(QString::fromStdString(fx.helpCalls[0]).contains("/CT1.fhp, "));
        CT_COMPARE(spy.seen, 1);
    }
    // Sent to the dialog itself, with no control in between.
    QTest::keyClick(&dialog, row.key, row.modifiers);
    CT_COMPARE(int(fx.helpCalls.size()), 2 * row.calls);
}

CT_TEST(mainWindowHasNoHelpKeyOnEsc) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    auto h = fx.StartMain();
    h->show();
    QTest::keyClick(h.get(), Qt::Key_Escape);
    CT_VERIFY(h->isVisible());
    CT_VERIFY(fx.helpCalls.empty());
}

CT_TEST(buttonsSetEditTarget) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    auto h = fx.StartMain();
    h->cmdÄndernC_Click();
    CT_COMPARE(Start::EditTarget, "CD");
    h->cmdÄndernO_Click();
    CT_COMPARE(Start::EditTarget, "Ordner");
    h->cmdÄndernD_Click();
    CT_COMPARE(Start::EditTarget, "Datei");
}

CT_TEST(quittingWritesNothing) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteCatalogue("Disc", ExampleCatalogue());
    const std::string before = fx.ReadIni();
    const QString ini = QString::fromStdString(fx.Folder() + "/CT.ini");
    const QDateTime stamp = QFileInfo(ini).lastModified();
    auto h = fx.StartMain();
    h->lstDaten->SetListIndex(0);
    h->show();
    h->mnuBeenden->trigger();
    CT_VERIFY(!h->isVisible());
    CT_COMPARE(fx.ReadIni(), before);
    CT_COMPARE(QFileInfo(ini).lastModified(), stamp);
}

CT_TEST_MAIN()
