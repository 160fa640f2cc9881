// The options window: what a save changes, in which order, and that no way of
// saving loses a catalogue.
#include <QComboBox>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>
#include <filesystem>

#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmOptionen.h"
#include "support/GuiFixture.h"
#include "support/TestRunner.h"

using namespace ct;
using ct::test::GuiFixture;
namespace fs = std::filesystem;

namespace {

std::string Crlf(std::initializer_list<std::string> lines) {
    std::string s;
    for (const auto& l : lines) s += l + "\r\n";
    return s;
}

struct Collection {
    GuiFixture fx{CARTULON_STAGE_DIR};
    std::unique_ptr<frmHaupt> haupt;
    Collection() {
        fx.WriteIni("0", "/media/cd", fx.DataFolder());
        fx.WriteCatalogue("Alpha", ct::test::ExampleCatalogue());
        fx.WriteCatalogue("Beta", {"0|0||0|0|0|", "", ""});
        haupt = fx.StartMain();
    }
    std::string Target(const char* name) {
        const std::string dir = fx.Folder() + "/" + name;
        fs::create_directories(dir);
        return dir;
    }
    bool Has(const std::string& folder, const char* label) {
        return fs::exists(folder + "/" + label + ".idx");
    }
};

}  // namespace

CT_TEST(opensWithTheSettingsInForce) {
    Collection c;
    frmOptionen o(c.haupt.get());
    CT_COMPARE(o.windowTitle(), ResourceText(10017));
    CT_COMPARE(o.cboSprache->currentIndex(), 0);
    CT_COMPARE(o.txtLaufwerksbuchstabe->text(), "/media/cd");
    CT_COMPARE(o.txtDatenpfad->text(), QString::fromStdString(c.fx.DataFolder()));
    CT_COMPARE(o.cmdSpeichern->text(), ResourceText(10055));
    CT_VERIFY(o.cmdSpeichern->isDefault() && o.cmdSpeichern->font().bold());
    CT_COMPARE(o.size(), QSize(Tw(6510), Tw(2535)));
}

CT_TEST(unchangedSaveWritesTheFileAndAsksNothing) {
    Collection c;
    QFile::remove(QString::fromStdString(c.fx.Folder() + "/CT.ini"));
    frmOptionen o(c.haupt.get());
    o.cmdSpeichern_Click();
    CT_VERIFY(c.fx.messages.empty());
    CT_COMPARE(c.fx.ReadIni(), Crlf({"0", "/media/cd", c.fx.DataFolder()}));
    CT_COMPARE(o.result(), int(QDialog::Accepted));
}

CT_TEST(languageChangesTheMainWindowAtOnceAndReopensInIt) {
    Collection c;
    {
        frmOptionen o(c.haupt.get());
        o.cboSprache->setCurrentIndex(1);
        o.cmdSpeichern_Click();
    }
    CT_COMPARE(Start::Language, std::int16_t(10000));
    CT_COMPARE(c.haupt->cmdSuchen->text(), ResourceText(10015));
    CT_COMPARE(c.fx.ReadIni(), Crlf({"10000", "/media/cd", c.fx.DataFolder()}));
    CT_VERIFY(c.Has(c.fx.DataFolder(), "Alpha") && c.Has(c.fx.DataFolder(), "Beta"));
    frmOptionen again(c.haupt.get());
    CT_COMPARE(again.cboSprache->currentIndex(), 1);
    CT_COMPARE(again.windowTitle(), ResourceText(10017));
}

CT_TEST(typedOverLanguageKeepsTheLanguage) {
    Collection c;
    frmOptionen o(c.haupt.get());
    o.cboSprache->setEditText("Klingonisch");
    o.cmdSpeichern_Click();
    CT_COMPARE(Start::Language, std::int16_t(0));
}

struct MoveRow {
    const char* name;
    QMessageBox::StandardButton answer;
    bool moved;
};
CT_TEST_ROWS(newDataFolder, MoveRow,
             {{"Yes moves every listed catalogue", QMessageBox::Yes, true},
              {"No keeps the old folder but saves the rest", QMessageBox::No, false}}) {
    Collection c;
    const std::string old = c.fx.DataFolder();
    const std::string target = c.Target("Neu");
    c.fx.answers.push_back(row.answer);
    frmOptionen o(c.haupt.get());
    o.cboSprache->setCurrentIndex(1);
    o.txtLaufwerksbuchstabe->setText("/mnt/usb");
    o.txtDatenpfad->setText(QString::fromStdString(target));
    o.cmdSpeichern_Click();
    CT_COMPARE(c.fx.messages.size(), std::size_t(1));
    // The language changed first, so the question speaks it.
    CT_COMPARE(c.fx.messages[0].text, ResourceText(10093));
    CT_COMPARE(c.fx.messages[0].title, ResourceText(10094));
    CT_VERIFY(c.fx.messages[0].buttons == (QMessageBox::Yes | QMessageBox::No));
    const std::string inForce = row.moved ? target : old;
    CT_COMPARE(Start::DataFolder, inForce);
    CT_COMPARE(c.fx.ReadIni(), Crlf({"10000", "/mnt/usb", inForce}));
    CT_COMPARE(c.Has(target, "Alpha"), row.moved);
    CT_COMPARE(c.Has(target, "Beta"), row.moved);
    CT_COMPARE(c.Has(old, "Alpha"), !row.moved);
    CT_COMPARE(o.result(), int(QDialog::Accepted));
    // The lists still show the same discs; from now on they read the new folder.
    CT_COMPARE(c.haupt->lstDaten->ListCount(), 2);
}

CT_TEST(missingTargetFolderKeepsEverythingAndTheWindowOpen) {
    Collection c;
    const std::string old = c.fx.DataFolder();
    const std::string before = c.fx.ReadIni();
    c.fx.answers.push_back(QMessageBox::Yes);
    frmOptionen o(c.haupt.get());
    o.txtLaufwerksbuchstabe->setText("/mnt/usb");
    o.txtDatenpfad->setText(QString::fromStdString(c.fx.Folder() + "/gibt-es-nicht"));
    o.cmdSpeichern_Click();
    CT_COMPARE(c.fx.messages.size(), std::size_t(2));
    CT_COMPARE(c.fx.messages[1].title, ResourceText(10096));
    CT_VERIFY(c.fx.messages[1].text.startsWith(ResourceText(10095)));
    CT_COMPARE(c.fx.messages[1].icon, QMessageBox::Critical);
    CT_COMPARE(c.fx.messages[1].buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    CT_COMPARE(Start::DataFolder, old);
    CT_COMPARE(Start::DriveLetter, std::string("/media/cd"));
    CT_COMPARE(c.fx.ReadIni(), before);
    CT_VERIFY(c.Has(old, "Alpha") && c.Has(old, "Beta"));
    CT_COMPARE(o.result(), 0);  // still open with what the user typed
    CT_COMPARE(o.txtLaufwerksbuchstabe->text(), "/mnt/usb");
    CT_VERIFY(QApplication::overrideCursor() == nullptr);
}

// Regression: the same folder typed with a closing separator is a change and
// is asked about, and saying Yes must not copy each catalogue onto itself and
// then delete it.
CT_TEST(trailingSeparatorCountsAsAChangeAndLosesNothing) {
    Collection c;
    const std::string old = c.fx.DataFolder();
    const std::string alpha = old + "/Alpha.idx";
    QFile f(QString::fromStdString(alpha));
    CT_VERIFY(f.open(QIODevice::ReadOnly));
    const QByteArray bytes = f.readAll();
    f.close();
    c.fx.answers.push_back(QMessageBox::Yes);
    frmOptionen o(c.haupt.get());
    o.txtDatenpfad->setText(QString::fromStdString(old + "/"));
    o.cmdSpeichern_Click();
    CT_COMPARE(c.fx.messages.size(), std::size_t(1));
    CT_COMPARE(Start::DataFolder, old + "/");
    CT_VERIFY(f.open(QIODevice::ReadOnly));
    CT_VERIFY(f.readAll() == bytes);
    CT_VERIFY(c.Has(old, "Beta"));
}

CT_TEST(cancelChangesNothing) {
    Collection c;
    const std::string before = c.fx.ReadIni();
    frmOptionen o(c.haupt.get());
    o.cboSprache->setCurrentIndex(1);
    o.txtDatenpfad->setText("/anderswo");
    o.cmdAbbrechen->click();
    CT_COMPARE(Start::Language, std::int16_t(0));
    CT_COMPARE(c.fx.ReadIni(), before);
    CT_VERIFY(c.fx.messages.empty());
}

CT_TEST(f1OpensItsTopic) {
    Collection c;
    frmOptionen o(c.haupt.get());
    QTest::keyClick(&o, Qt::Key_F1, Qt::ShiftModifier);
    CT_COMPARE(c.fx.helpCalls.size(), std::size_t(1));
    CT_VERIFY(QString::fromStdString(c.fx.helpCalls[0]).endsWith(", " + ResourceText(10017)));
}

CT_TEST_MAIN()
