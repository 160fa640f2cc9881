// The editing windows and commands: the description editor from its four
// callers, the label editor, and deleting a disc — what they change, what they
// refuse, and that a failing disk loses nothing.
#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextEdit>
#include <QTimer>
#include <QtTest>
#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <sstream>

#include "core/fileops.h"
#include "gui/Start.h"
#include "gui/frmBeschreibungAendern.h"
#include "gui/frmBezeichnungAendern.h"
#include "gui/frmHaupt.h"
#include "gui/frmSuchen.h"
#include "gui/seams.h"
#include "gui/windows.h"
#include "support/GuiFixture.h"
#include "support/TestRunner.h"

using namespace ct;
using ct::test::GuiFixture;
using ct::test::Select;
using ct::test::Items;

namespace {

QString Q(const char* s) { return QString::fromUtf8(s); }

std::string ReadFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

std::string Joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& l : lines) text += l + "\r\n";
    return text;
}

// The example catalogue with line `index` replaced.
std::string ExampleWith(std::size_t index, const std::string& line) {
    std::vector<std::string> lines = ct::test::ExampleCatalogue();
    lines[index] = line;
    return Joined(lines);
}


// Acts on the next modal dialog of type D once it is up. Nothing here may
// throw (it runs inside the dialog's event loop): the act records, the test
// checks afterwards. A dialog the act leaves open is closed after a while, so
// a wrong turn fails the test instead of hanging it.
template <class D>
void WhenUp(std::function<void(D&)> act, bool* opened = nullptr) {
    QTimer::singleShot(0, [act, opened] {
        auto* dialog = dynamic_cast<D*>(QApplication::activeModalWidget());
        if (!dialog) return;
        if (opened) *opened = true;
        act(*dialog);
    });
    QTimer::singleShot(3000, [] {
        if (QWidget* w = QApplication::activeModalWidget()) w->close();
    });
}

// The machine's file operations, with one of them made to fail.
class FailingOps : public FileOps {
public:
    bool failRename = false, failRemove = false;
    std::unique_ptr<OutFile> Create(const std::string& p, std::string* e) override {
        return SystemFileOps().Create(p, e);
    }
    bool Rename(const std::string& from, const std::string& to, std::string* e) override {
        if (failRename) {
            if (e) *e = "Input/output error";
            return false;
        }
        return SystemFileOps().Rename(from, to, e);
    }
    bool Copy(const std::string& from, const std::string& to, std::string* e) override {
        return SystemFileOps().Copy(from, to, e);
    }
    bool Remove(const std::string& p, std::string* e) override {
        if (failRemove) {
            if (e) *e = "Device or resource busy";
            return false;
        }
        return SystemFileOps().Remove(p, e);
    }
    bool Exists(const std::string& p) override { return SystemFileOps().Exists(p); }
    bool SameFileSystem(const std::string& a, const std::string& b) override {
        return SystemFileOps().SameFileSystem(a, b);
    }
};

struct OpsScope {
    explicit OpsScope(FileOps* ops) { seams::SetFiles(ops); }
    ~OpsScope() { seams::SetFiles(nullptr); }
};

bool HelpShows(const GuiFixture& f, int baseId) {
    return !f.helpCalls.empty() && QString::fromStdString(f.helpCalls.back()).endsWith(", " + ResourceText(baseId));
}

std::vector<std::string> DataFiles(const GuiFixture& f) {
    std::vector<std::string> names;
    for (const auto& e : std::filesystem::directory_iterator(f.DataFolder()))
        names.push_back(e.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

struct Setup {
    GuiFixture fixture{CARTULON_STAGE_DIR};
    std::unique_ptr<frmHaupt> main;
    std::string catalogue;
    Setup() {
        CT_VERIFY(fixture.IsValid());
        catalogue = fixture.WriteCatalogue("CD1", ct::test::ExampleCatalogue());
        fixture.WriteCatalogue("CD2", {"1|0||0|0|0|", "", ""});
        main = fixture.StartMain();
    }
};

}  // namespace

// --- Description editor from the main window -------------------------------------

struct MainRow {
    const char* name;
    const char* button;  // C, O, D
    const char* folder;  // chosen in lstOrdner ("" none)
    const char* file;    // chosen in lstDateien ("" none)
    const char* oldText;
    std::size_t line;    // the catalogue line that changes
    const char* newLine;
};

CT_TEST_ROWS(descriptionFromMain, MainRow,
             {{"Disc", "C", "", "", "Photos 2003", 0, "654311424|-1029197328|CDFS|319488|1|2048|neu text"},
              {"Folder", "O", "\\Bilder\\Urlaub", "", "Trip to the coast", 3,
               "\\Bilder\\Urlaub|R|14.03.2003 09:12:41|neu text"},
              {"FileInRoot", "D", ".", "liesmich.txt", "", 7, "\\liesmich.txt|1024|R|14.03.2003 09:12:40|neu text"},
              {"FileInFolder", "D", "\\Bilder\\Urlaub", "p1.jpg", "First day", 6,
               "\\Bilder\\Urlaub\\p1.jpg|183442|R|14.03.2003 09:12:41|neu text"}}) {
    Setup s;
    frmHaupt& h = *s.main;
    CT_VERIFY(Select(h.lstDaten, "CD1") >= 0);
    if (*row.folder) CT_VERIFY(Select(h.lstOrdner, Q(row.folder)) >= 0);
    if (*row.file) CT_VERIFY(Select(h.lstDateien, Q(row.file)) >= 0);
    QTextEdit* box = *row.button == 'C' ? h.txtBeschreibungC : *row.button == 'O' ? h.txtBeschreibungO
                                                                                : h.txtBeschreibungD;
    QString shown, title;
    WhenUp<frmBeschreibungÄndern>([&](frmBeschreibungÄndern& d) {
        shown = d.txtNeueBeschreibung->toPlainText();
        title = d.windowTitle();
        d.txtNeueBeschreibung->setPlainText(Q("neu  text"));  // two blanks are stored as one
        d.cmdÄndern->click();
    });
    if (*row.button == 'C') h.cmdÄndernC_Click();
    if (*row.button == 'O') h.cmdÄndernO_Click();
    if (*row.button == 'D') h.cmdÄndernD_Click();
    CT_COMPARE(title, ResourceText(10001));
    CT_COMPARE(shown, row.oldText);
    CT_COMPARE(box->toPlainText(), "neu text");
    CT_COMPARE(ReadFile(s.catalogue), ExampleWith(row.line, row.newLine));
    CT_COMPARE(DataFiles(s.fixture), (std::vector<std::string>{"CD1.idx", "CD2.idx"}));
}

CT_TEST(descriptionCancelChangesNothing) {
    Setup s;
    Select(s.main->lstDaten, "CD1");
    WhenUp<frmBeschreibungÄndern>([](frmBeschreibungÄndern& d) {
        d.txtNeueBeschreibung->setPlainText(Q("anders"));
        d.cmdAbbrechen->click();
    });
    s.main->cmdÄndernC_Click();
    CT_COMPARE(s.main->txtBeschreibungC->toPlainText(), "Photos 2003");
    CT_COMPARE(ReadFile(s.catalogue), Joined(ct::test::ExampleCatalogue()));
}

CT_TEST(descriptionReturnKeyStores) {
    Setup s;
    Select(s.main->lstDaten, "CD1");
    WhenUp<frmBeschreibungÄndern>([](frmBeschreibungÄndern& d) {
        d.txtNeueBeschreibung->setPlainText(Q("per Eingabe"));
        QTest::keyClick(d.txtNeueBeschreibung, Qt::Key_Return);
    });
    s.main->cmdÄndernC_Click();
    CT_COMPARE(s.main->txtBeschreibungC->toPlainText(), "per Eingabe");
}

CT_TEST(descriptionFailureSaysSoAndKeepsOldText) {
    Setup s;
    FailingOps ops;
    ops.failRename = true;
    OpsScope scope(&ops);
    Select(s.main->lstDaten, "CD1");
    bool stillOpen = false;
    QString keptText;
    WhenUp<frmBeschreibungÄndern>([&](frmBeschreibungÄndern& d) {
        d.txtNeueBeschreibung->setPlainText(Q("verloren?"));
        d.cmdÄndern->click();
        stillOpen = d.isVisible();
        keptText = d.txtNeueBeschreibung->toPlainText();
        d.cmdAbbrechen->click();
    });
    s.main->cmdÄndernC_Click();
    CT_VERIFY2(stillOpen, "the dialog stays open with what was typed");
    CT_COMPARE(keptText, "verloren?");
    CT_COMPARE(s.fixture.messages.size(), std::size_t{1});
    const auto& m = s.fixture.messages.front();
    CT_COMPARE(m.icon, QMessageBox::Warning);
    CT_VERIFY2(m.text.startsWith("Die Beschreibung wurde nicht gespeichert."), m.text.toStdString());
    CT_VERIFY2(m.text.contains("CD1.idx is unchanged"), m.text.toStdString());
    CT_COMPARE(s.main->txtBeschreibungC->toPlainText(), "Photos 2003");
    CT_COMPARE(ReadFile(s.catalogue), Joined(ct::test::ExampleCatalogue()));
    CT_COMPARE(DataFiles(s.fixture), (std::vector<std::string>{"CD1.idx", "CD2.idx"}));
}

// --- Description editor from the search window ------------------------------------

struct SearchRow {
    const char* name;
    const char* hit;
    bool opens;
    const char* oldText;
    std::size_t line;
    const char* newLine;
};

CT_TEST_ROWS(descriptionFromSearch, SearchRow,
             {{"FolderHit", "CD1\\\\Bilder\\Urlaub\\", true, "Trip to the coast", 3,
               "\\Bilder\\Urlaub|R|14.03.2003 09:12:41|aus der Suche"},
              {"FileHit", "CD1\\\\Bilder\\Urlaub\\p1.jpg", true, "First day", 6,
               "\\Bilder\\Urlaub\\p1.jpg|183442|R|14.03.2003 09:12:41|aus der Suche"},
              {"DiscHitOpensNothing", "CD1", false, "", 0, ""}}) {
    Setup s;
    Select(s.main->lstDaten, "CD1");
    Select(s.main->lstOrdner, Q("\\Bilder\\Urlaub"));
    const QString mainBefore = s.main->txtBeschreibungO->toPlainText();
    frmSuchen search(s.main.get());
    search.lstDateien->AddItem(Q(row.hit));
    search.lstDateien->SetListIndex(0);
    const QString before = search.txtBeschreibungText->toPlainText();
    bool opened = false;
    QString shown;
    WhenUp<frmBeschreibungÄndern>(
        [&](frmBeschreibungÄndern& d) {
            shown = d.txtNeueBeschreibung->toPlainText();
            d.txtNeueBeschreibung->setPlainText(Q("aus der Suche"));
            d.cmdÄndern->click();
        },
        &opened);
    search.cmdÄndern_Click();
    QCoreApplication::processEvents();
    CT_COMPARE(opened, row.opens);
    if (!row.opens) {
        CT_COMPARE(search.txtBeschreibungText->toPlainText(), before);
        CT_COMPARE(ReadFile(s.catalogue), Joined(ct::test::ExampleCatalogue()));
        return;
    }
    CT_COMPARE(shown, row.oldText);
    CT_COMPARE(search.txtBeschreibungText->toPlainText(), "aus der Suche");
    CT_COMPARE(ReadFile(s.catalogue), ExampleWith(row.line, row.newLine));
    CT_COMPARE(s.main->txtBeschreibungO->toPlainText(), mainBefore);  // the main panes aren't read again
}

// --- Label editor ---------------------------------------------------------------------

struct LabelRow {
    const char* name;
    const char* typed;
    const char* boxAfter;  // what txtBezeichnung shows after the press
    bool closes;
    int helpTopic;         // 0: none
    std::vector<std::string> files;
};

CT_TEST_ROWS(labelEditor, LabelRow,
             {{"Renamed", "Urlaub 2003", "Urlaub 2003", true, 0, {"CD2.idx", "Urlaub 2003.idx"}},
              {"CleanedAndTrimmed", "  Ur:laub/2003*  ", "Urlaub2003", true, 0, {"CD2.idx", "Urlaub2003.idx"}},
              {"EmptyRefused", "  :/*  ", "", false, 10099, {"CD1.idx", "CD2.idx"}},
              {"InUseRefused", "CD2", "CD2", false, 10100, {"CD1.idx", "CD2.idx"}},
              {"UnchangedIsNothingToDo", " CD1 ", "CD1", true, 0, {"CD1.idx", "CD2.idx"}}}) {
    Setup s;
    Select(s.main->lstDaten, "CD1");
    QString offered, boxAfter;
    bool open = true;
    WhenUp<frmBezeichnungÄndern>([&](frmBezeichnungÄndern& d) {
        offered = d.txtBezeichnung->text();
        d.txtBezeichnung->setText(Q(row.typed));
        d.cmdÄndern->click();
        boxAfter = d.txtBezeichnung->text();
        open = d.isVisible();
        if (open) d.cmdAbbrechen->click();
    });
    ShowBezeichnungAendern();
    CT_COMPARE(offered, "CD1");
    CT_COMPARE(boxAfter, row.boxAfter);
    CT_COMPARE(!open, row.closes);
    if (row.helpTopic)
        CT_VERIFY2(HelpShows(s.fixture, row.helpTopic), std::to_string(row.helpTopic));
    else
        CT_VERIFY(s.fixture.helpCalls.empty());
    CT_COMPARE(DataFiles(s.fixture), row.files);
    CT_VERIFY(s.fixture.messages.empty());
    const std::string renamedTo = s.fixture.DataFolder() + "/" + row.files.back();
    CT_COMPARE(ReadFile(row.files.back() == "CD2.idx" ? s.catalogue : renamedTo),
               Joined(ct::test::ExampleCatalogue()));
    if (std::string(row.name).rfind("Renamed", 0) == 0 || std::string(row.name) == "CleanedAndTrimmed") {
        CT_VERIFY(Items(s.main->lstDaten).contains(Q(row.boxAfter)));
        CT_COMPARE(s.main->lstDaten->ListIndex(), -1);
        CT_VERIFY(!s.main->lstOrdner->isEnabled() || s.main->lstOrdner->ListCount() == 0);
    } else {
        CT_COMPARE(s.main->lstDaten->Text(), "CD1");  // still chosen
    }
}

CT_TEST(labelEditorWithoutChosenDiscShowsHelp) {
    Setup s;
    bool opened = false;
    WhenUp<frmBezeichnungÄndern>([](frmBezeichnungÄndern& d) { d.close(); }, &opened);
    ShowBezeichnungAendern();
    QCoreApplication::processEvents();
    CT_VERIFY(!opened);
    CT_VERIFY(HelpShows(s.fixture, 10098));
}

CT_TEST(labelEditorCancelKeepsEverything) {
    Setup s;
    Select(s.main->lstDaten, "CD1");
    WhenUp<frmBezeichnungÄndern>([](frmBezeichnungÄndern& d) {
        d.txtBezeichnung->setText(Q("Neu"));
        d.cmdAbbrechen->click();
    });
    ShowBezeichnungAendern();
    CT_COMPARE(DataFiles(s.fixture), (std::vector<std::string>{"CD1.idx", "CD2.idx"}));
    CT_COMPARE(s.main->lstDaten->Text(), "CD1");
    CT_COMPARE(s.main->txtBeschreibungC->toPlainText(), "Photos 2003");
}

CT_TEST(labelEditorFailedRenameSaysSo) {
    Setup s;
    FailingOps ops;
    ops.failRename = true;
    OpsScope scope(&ops);
    Select(s.main->lstDaten, "CD1");
    bool open = false;
    WhenUp<frmBezeichnungÄndern>([&](frmBezeichnungÄndern& d) {
        d.txtBezeichnung->setText(Q("Neu"));
        d.cmdÄndern->click();
        open = d.isVisible();
        d.cmdAbbrechen->click();
    });
    ShowBezeichnungAendern();
    CT_VERIFY(open);
    CT_COMPARE(s.fixture.messages.size(), std::size_t{1});
    CT_VERIFY2(s.fixture.messages[0].text.contains("keeps its old label"), s.fixture.messages[0].text.toStdString());
    CT_COMPARE(DataFiles(s.fixture), (std::vector<std::string>{"CD1.idx", "CD2.idx"}));
    CT_COMPARE(s.main->lstDaten->Text(), "CD1");
}

// --- Delete ---------------------------------------------------------------------------

struct DeleteRow {
    const char* name;
    std::vector<std::string> discs;  // catalogues besides the example "CD1"
    const char* choose;              // "" none
    QMessageBox::StandardButton answer;
    bool asked;
    std::vector<std::string> filesAfter;
    QStringList listAfter;
    int indexAfter;
    bool listEnabled;
};

CT_TEST_ROWS(deleteDisc, DeleteRow,
             {{"Yes", {"CD2"}, "CD1", QMessageBox::Yes, true, {"CD2.idx"}, {"CD2"}, -1, true},
              {"No", {"CD2"}, "CD1", QMessageBox::No, true, {"CD1.idx", "CD2.idx"}, {"CD1", "CD2"}, 0, true},
              {"NoneChosen", {"CD2"}, "", QMessageBox::Yes, false, {"CD1.idx", "CD2.idx"}, {"CD1", "CD2"}, -1, true},
              {"LastDisc", {}, "CD1", QMessageBox::Yes, true, {}, {}, -1, false}}) {
    GuiFixture fixture(CARTULON_STAGE_DIR);
    CT_VERIFY(fixture.IsValid());
    fixture.WriteCatalogue("CD1", ct::test::ExampleCatalogue());
    for (const std::string& d : row.discs) fixture.WriteCatalogue(d, {"1|0||0|0|0|", "", ""});
    auto main = fixture.StartMain();
    if (*row.choose) Select(main->lstDaten, Q(row.choose));
    fixture.answers.push_back(row.answer);
    DoLoeschen();
    CT_COMPARE(fixture.messages.size(), std::size_t{row.asked ? 1u : 0u});
    if (row.asked) {
        const auto& m = fixture.messages[0];
        CT_COMPARE(m.title, ResourceText(10091));
        CT_COMPARE(m.text, ResourceText(10090));
        CT_VERIFY(m.buttons == (QMessageBox::Yes | QMessageBox::No));
        CT_COMPARE(m.defaultButton, QMessageBox::Yes);
        CT_COMPARE(m.icon, QMessageBox::NoIcon);
    } else {
        CT_VERIFY(HelpShows(fixture, 10098));
    }
    CT_COMPARE(DataFiles(fixture), row.filesAfter);
    CT_COMPARE(Items(main->lstDaten), row.listAfter);
    CT_COMPARE(main->lstDaten->ListIndex(), row.indexAfter);
    CT_COMPARE(main->lstDaten->isEnabled(), row.listEnabled);
    if (row.indexAfter == -1) {
        CT_COMPARE(main->txtBeschreibungC->toPlainText(), "");
        CT_VERIFY(!main->cmdÄndernC->isEnabled());
    } else {
        CT_COMPARE(main->txtBeschreibungC->toPlainText(), "Photos 2003");
    }
    CT_VERIFY(!QGuiApplication::overrideCursor());
}

CT_TEST(deleteThatFailsKeepsTheEntry) {
    Setup s;
    FailingOps ops;
    ops.failRemove = true;
    OpsScope scope(&ops);
    Select(s.main->lstDaten, "CD1");
    s.fixture.answers.push_back(QMessageBox::Yes);
    DoLoeschen();
    CT_COMPARE(s.fixture.messages.size(), std::size_t{2});
    CT_VERIFY2(s.fixture.messages[1].text.contains("couldn't be deleted: Device or resource busy"),
               s.fixture.messages[1].text.toStdString());
    CT_COMPARE(s.fixture.messages[1].icon, QMessageBox::Warning);
    CT_COMPARE(DataFiles(s.fixture), (std::vector<std::string>{"CD1.idx", "CD2.idx"}));
    CT_COMPARE(Items(s.main->lstDaten), (QStringList{"CD1", "CD2"}));
    CT_COMPARE(s.main->lstDaten->Text(), "CD1");
}

// --- F1 in both dialogs -----------------------------------------------------------------

CT_TEST(helpKeysOpenTheDialogsTopics) {
    Setup s;
    Select(s.main->lstDaten, "CD1");
    WhenUp<frmBeschreibungÄndern>([](frmBeschreibungÄndern& d) {
        QTest::keyClick(d.txtNeueBeschreibung, Qt::Key_F1);
        d.cmdAbbrechen->click();
    });
    s.main->cmdÄndernC_Click();
    CT_VERIFY(HelpShows(s.fixture, 10001));
    WhenUp<frmBezeichnungÄndern>([](frmBezeichnungÄndern& d) {
        QTest::keyClick(d.txtBezeichnung, Qt::Key_F1);
        d.cmdAbbrechen->click();
    });
    ShowBezeichnungAendern();
    CT_VERIFY(HelpShows(s.fixture, 10005));
    CT_COMPARE(s.fixture.helpCalls.size(), std::size_t{2});
}

// --- The windows as they look, in both languages (only when asked for) --------------

CT_TEST(screenshots) {
    const QString dir = qEnvironmentVariable("CT_SCREENSHOTS");
    if (dir.isEmpty()) return;
    QDir().mkpath(dir);
    for (int language : {0, 10000}) {
        Setup s;
        Start::Language = static_cast<std::int16_t>(language);
        const QString suffix = language == 0 ? "_de" : "_en";
        Select(s.main->lstDaten, "CD1");
        Start::EditTarget = "CD";
        {
            frmBeschreibungÄndern d(s.main.get());
            d.show();
            QTest::qWait(200);
            d.grab().save(dir + "/frmBeschreibungAendern" + suffix + ".png");
        }
        {
            frmBezeichnungÄndern d(s.main.get());
            d.show();
            QTest::qWait(200);
            d.grab().save(dir + "/frmBezeichnungAendern" + suffix + ".png");
        }
    }
}

CT_TEST_MAIN()
