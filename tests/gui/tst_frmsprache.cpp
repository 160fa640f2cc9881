// The first-run language window: its fixed texts, and what each way of
// leaving it stores.
#include <QLineEdit>
#include <QtTest>

#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmSprache.h"
#include "support/GuiFixture.h"
#include "support/TestRunner.h"

using namespace ct;
using ct::test::GuiFixture;

CT_TEST(fixedTextsAndNothingChosen) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    frmHaupt haupt;
    frmSprache s(&haupt);
    s.Form_Load();
    CT_COMPARE(s.windowTitle(), "Cartulon");
    CT_COMPARE(s.lbl[0]->text(), "Wählen Sie Ihre Sprache:");
    CT_COMPARE(s.lbl[1]->text(), "Choose your language:");
    CT_COMPARE(s.cboSprache->count(), 2);
    CT_COMPARE(s.cboSprache->itemText(0), "Deutsch");
    CT_COMPARE(s.cboSprache->itemText(1), "English");
    CT_COMPARE(s.cboSprache->currentIndex(), -1);
    CT_COMPARE(s.cmdOK->text(), "OK");
    CT_VERIFY(s.cmdOK->isDefault() && s.cmdOK->font().bold());
    CT_COMPARE(s.size(), QSize(Tw(4680), Tw(2175)));
    CT_VERIFY(!(s.windowFlags() & Qt::WindowMaximizeButtonHint));
    CT_VERIFY(!(s.windowFlags() & Qt::WindowMinimizeButtonHint));
    CT_COMPARE(s.windowIcon().cacheKey(), haupt.windowIcon().cacheKey());
}

struct ChoiceRow {
    const char* name;
    int index;            // chosen entry, -1 none
    const char* typed;    // text typed over the box afterwards, or null
    const char* how;      // "ok", "enter", "esc", "close"
    int language;
    const char* iniLine1;
};
CT_TEST_ROWS(choice, ChoiceRow, {
    {"Deutsch", 0, nullptr, "ok", 0, "0"},
    {"English", 1, nullptr, "ok", 10000, "10000"},
    {"English by Enter", 1, nullptr, "enter", 10000, "10000"},
    {"English by Esc", 1, nullptr, "esc", 10000, "10000"},
    {"nothing chosen is German", -1, nullptr, "ok", 0, "0"},
    {"nothing chosen, Esc is German", -1, nullptr, "esc", 0, "0"},
    {"typed text naming no entry counts as none", 1, "Englisch", "ok", 0, "0"},
    {"close box stores nothing", 1, nullptr, "close", 0, "-1"},
}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteIniRaw("-1\r\n");
    Start::Language = 0;
    Start::DriveLetter = "C";
    Start::DataFolder = fx.DataFolder();
    frmHaupt haupt;
    frmSprache s(&haupt);
    s.Form_Load();
    s.show();
    if (row.index >= 0) s.cboSprache->setCurrentIndex(row.index);
    if (row.typed) s.cboSprache->lineEdit()->setText(QString::fromUtf8(row.typed));
    const std::string how = row.how;
    if (how == "ok")
        s.cmdOK->click();
    else if (how == "enter")
        QTest::keyClick(&s, Qt::Key_Return);
    else if (how == "esc")
        QTest::keyClick(&s, Qt::Key_Escape);
    else
        s.close();
    CT_VERIFY(!s.isVisible());
    CT_COMPARE(Start::Language, row.language);
    const std::string ini = fx.ReadIni();
    CT_COMPARE(ini.substr(0, ini.find("\r\n")), row.iniLine1);
    if (how != "close") CT_COMPARE(ini, std::string(row.iniLine1) + "\r\nC\r\n" + fx.DataFolder() + "\r\n");
}

CT_TEST(noHelpKey) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    frmHaupt haupt;
    frmSprache s(&haupt);
    s.Form_Load();
    s.show();
    QTest::keyClick(s.cboSprache, Qt::Key_F1);
    CT_VERIFY(fx.helpCalls.empty());
    CT_VERIFY(s.isVisible());
}

CT_TEST_MAIN()
