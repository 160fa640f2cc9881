// The search window: its start state and enable rules, the combo boxes that
// refuse typed text, the date rewrite, runs from the window with hits, a
// refused run, the stop, the hit limit and the two layouts.
#include <QElapsedTimer>
#include <QLineEdit>
#include <QTimer>
#include <QtTest>
#include <string>

#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmSuchen.h"
#include "support/GuiFixture.h"
#include "support/TestRunner.h"

using namespace ct;
using ct::test::ExampleCatalogue;
using ct::test::GuiFixture;
using ct::test::Items;

namespace {

// Two discs: the example disc "Urlaub" and "Archiv", whose description holds
// the word, with a folder of that name.
void WriteDiscs(GuiFixture& fx) {
    fx.WriteCatalogue("Urlaub", ExampleCatalogue());
    fx.WriteCatalogue("Archiv", {"0|0||0|0|0|alte Urlaubsbilder", "", "\\Urlaub2004|A|05.06.2004 12:00:00|", "",
                                 "\\Urlaub2004\\strand.jpg|0||05.06.2004 12:00:01|"});
}

bool LastHelpIs(const GuiFixture& fx, const char* topic) {
    if (fx.helpCalls.empty()) return false;
    const std::string& line = fx.helpCalls.back();
    const std::string t = topic;
    return line.size() >= t.size() && line.compare(line.size() - t.size(), t.size(), t) == 0;
}

QStringList Marked(const frmSuchen& s) {
    QStringList marked;
    for (int i = 0; i < s.lstDaten->count(); ++i)
        if (s.lstDaten->item(i)->checkState() == Qt::Checked) marked.append(s.lstDaten->item(i)->text());
    return marked;
}

}  // namespace

CT_TEST(startState) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    WriteDiscs(fx);
    auto haupt = fx.StartMain();
    frmSuchen s(haupt.get());
    CT_COMPARE(s.windowTitle(), "Dateien und Ordner suchen");
    CT_COMPARE(s.size(), QSize(Tw(11880), Tw(7485)));
    CT_COMPARE(s.cboSuchen->currentIndex(), 2);
    CT_COMPARE(s.CheckDateiOrdner->text(), "Dateien und Ordner");
    CT_VERIFY(s.CheckDateiOrdner->isChecked());
    CT_COMPARE(s.cboOperator->currentIndex(), 2);
    CT_COMPARE(s.cboOperator->currentText(), "enthält");
    CT_COMPARE(s.cboOperator->count(), 8);
    CT_COMPARE(s.cboDateigröße->count(), 4);
    CT_COMPARE(s.cboDateigröße->itemText(2), "größer / später");
    CT_COMPARE(s.cboAttribut->count(), 16);
    CT_COMPARE(s.cboAttribut->itemText(0), "(ohne Attribute)");
    CT_COMPARE(s.cboAttribut->itemText(1), "R H");
    CT_COMPARE(s.cboAttribut->itemText(15), "T C");
    for (QComboBox* box : {s.cboDateigröße, s.cboAttribut, s.cboDatum, s.cboBeschreibung})
        CT_COMPARE(box->currentIndex(), -1);
    CT_COMPARE(Items(s.lstDaten), QStringList({"Archiv", "Urlaub"}));
    CT_COMPARE(Marked(s), QStringList({"Archiv", "Urlaub"}));
    CT_COMPARE(s.lstDaten->ListIndex(), -1);
    CT_VERIFY(s.txtSuchen->isEnabled() && s.cboOperator->isEnabled() && s.lblDP1->isEnabled());
    for (QWidget* w : std::initializer_list<QWidget*>{s.cboDateigröße, s.txtDateigröße, s.lblDP2, s.cboAttribut,
                                                        s.cboDatum, s.txtDatum, s.lblDP3, s.cboBeschreibung,
                                                        s.txtBeschreibung, s.lblDP4, s.lstDateien, s.cmdÄndern,
                                                        s.txtBeschreibungText, s.lblDateien, s.lblInfo})
        CT_VERIFY2(!w->isEnabled(), w->metaObject()->className());
    CT_VERIFY(s.cmdSuchen->isDefault() && s.cmdSuchen->font().bold());
    CT_COMPARE(s.lblT->text(), "-");
    CT_COMPARE(s.lblAktion->text(), "");
    CT_COMPARE(s.txtSuchen->geometry(), QRect(Tw(5040), Tw(1560), Tw(1695), Tw(315)));
    CT_COMPARE(s.lstDateien->geometry(), QRect(Tw(120), Tw(480), Tw(8055), Tw(2400)));
    CT_VERIFY(!s.StopRequested);
}

struct GroupRow {
    const char* name;
    int box;  // 0 name, 1 size, 2 attributes, 3 date, 4 description
};
CT_TEST_ROWS(checkBoxEnablesItsGroupAndKeepsValues, GroupRow, {
    {"name", 0},
    {"size", 1},
    {"attributes", 2},
    {"date", 3},
    {"description", 4},
}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    auto haupt = fx.StartMain();
    frmSuchen s(haupt.get());
    QCheckBox* boxes[] = {s.CheckDateiOrdner, s.CheckDateigröße, s.CheckAttribut, s.CheckDatum, s.CheckBeschreibung};
    std::vector<std::vector<QWidget*>> groups = {
        {s.cboOperator, s.txtSuchen, s.lblDP1},
        {s.cboDateigröße, s.txtDateigröße, s.lblDP2},
        {s.cboAttribut},
        {s.cboDatum, s.txtDatum, s.lblDP3},
        {s.cboBeschreibung, s.txtBeschreibung, s.lblDP4},
    };
    QCheckBox* box = boxes[row.box];
    const bool initially = row.box == 0;
    for (QWidget* w : groups[static_cast<std::size_t>(row.box)]) CT_COMPARE(w->isEnabled(), initially);
    box->click();
    for (QWidget* w : groups[static_cast<std::size_t>(row.box)]) CT_COMPARE(w->isEnabled(), !initially);
    auto* combo = qobject_cast<QComboBox*>(groups[static_cast<std::size_t>(row.box)][0]);
    combo->setCurrentIndex(1);
    box->click();
    box->click();
    CT_COMPARE(combo->currentIndex(), 1);  // the value returns with the box
    // The other groups didn't move.
    for (int other = 0; other < 5; ++other)
        if (other != row.box)
            for (QWidget* w : groups[static_cast<std::size_t>(other)]) CT_COMPARE(w->isEnabled(), other == 0);
}

CT_TEST(typedTextIsRefusedButTheDateOperatorKeepsIt) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    auto haupt = fx.StartMain();
    frmSuchen s(haupt.get());
    s.show();
    QTest::keyClicks(s.cboOperator->lineEdit(), "x");
    CT_COMPARE(s.cboOperator->currentText(), "");
    CT_COMPARE(s.cboOperator->currentIndex(), -1);
    s.CheckDatum->click();
    s.cboDatum->setCurrentIndex(0);
    s.cboDatum->lineEdit()->selectAll();
    QTest::keyClicks(s.cboDatum->lineEdit(), "am");
    CT_COMPARE(s.cboDatum->currentText(), "am");
    CT_COMPARE(s.cboDatum->currentIndex(), -1);
}

CT_TEST(choosingFoldersRenamesTheNameCheckBox) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    auto haupt = fx.StartMain();
    frmSuchen s(haupt.get());
    s.cboSuchen->setCurrentIndex(1);
    CT_COMPARE(s.CheckDateiOrdner->text(), "Ordner");
}

struct DateRow {
    const char* name;
    const char* typed;
    const char* shown;
};
CT_TEST_ROWS(dateIsWrittenInFullWhenLeft, DateRow, {
    {"one-digit day and month", "1.2.2003", "01.02.2003 00:00:00"},
    {"short time", "14.3.2003 9:05", "14.03.2003 09:05:00"},
    {"not a date stays", "gestern", "gestern"},
    {"empty stays empty", "", ""},
}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    auto haupt = fx.StartMain();
    frmSuchen s(haupt.get());
    s.CheckDatum->click();
    s.txtDatum->setText(QString::fromUtf8(row.typed));
    QFocusEvent leave(QEvent::FocusOut, Qt::TabFocusReason);  // leaving the field
    QApplication::sendEvent(s.txtDatum, &leave);
    CT_COMPARE(s.txtDatum->text(), row.shown);
}

CT_TEST(runFromTheWindowShowsSortedHitsAndTheirDetails) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    WriteDiscs(fx);
    auto haupt = fx.StartMain();
    frmSuchen s(haupt.get());
    s.txtSuchen->setText("urlaub");
    s.cmdSuchen->click();
    CT_COMPARE(Items(s.lstDateien),
               QStringList({"Archiv", "Archiv\\\\Urlaub2004\\", "Urlaub", "Urlaub\\\\Bilder\\Urlaub\\"}));
    CT_COMPARE(s.lblAktion->text(), "Fertig!");
    CT_COMPARE(s.lblT->text(), "4");
    CT_COMPARE(s.ProgressBar->value(), 0);
    CT_COMPARE(s.ProgressBar->maximum(), 2);
    CT_VERIFY(s.lstDateien->isEnabled() && s.cmdÄndern->isEnabled() && s.txtBeschreibungText->isEnabled());
    CT_COMPARE(s.lstDateien->ListIndex(), 0);  // a disc: the details stay empty
    CT_COMPARE(s.lblA->text(), "");
    s.lstDateien->SetListIndex(3);
    CT_COMPARE(s.lblG->text(), "-");
    CT_COMPARE(s.lblA->text(), "R");
    CT_COMPARE(s.lblD->text(), "14.03.2003 09:12:41");
    CT_COMPARE(s.txtBeschreibungText->toPlainText(), "Trip to the coast");

    // Files only, by extension: the file details, "-" for empty attributes.
    s.cboSuchen->setCurrentIndex(0);
    s.txtSuchen->setText("JPG");
    s.cmdSuchen->click();
    CT_COMPARE(Items(s.lstDateien), QStringList({"Archiv\\\\Urlaub2004\\strand.jpg", "Urlaub\\\\Bilder\\Urlaub\\p1.jpg"}));
    CT_COMPARE(s.lblG->text(), "0");
    CT_COMPARE(s.lblA->text(), "-");
    s.lstDateien->SetListIndex(1);
    CT_COMPARE(s.lblG->text(), "183442");
    CT_COMPARE(s.txtBeschreibungText->toPlainText(), "First day");

    // A run without hits leaves the last details on the screen.
    s.txtSuchen->setText("nirgends");
    s.cmdSuchen->click();
    CT_COMPARE(s.lstDateien->count(), 0);
    CT_COMPARE(s.lblT->text(), "0");
    CT_COMPARE(s.lblG->text(), "183442");
    CT_VERIFY(s.lstDateien->isEnabled());
    CT_COMPARE(Marked(s), QStringList({"Archiv", "Urlaub"}));  // marks untouched by a run
}

CT_TEST(onlyMarkedDiscsAreSearched) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    WriteDiscs(fx);
    auto haupt = fx.StartMain();
    frmSuchen s(haupt.get());
    s.cmdAlleNichtMarkieren->click();
    CT_COMPARE(Marked(s), QStringList());
    s.txtSuchen->setText("urlaub");
    s.cmdSuchen->click();
    CT_VERIFY(LastHelpIs(fx, "Keine CD / DVD zum Durchsuchen markiert"));
    s.lstDaten->item(1)->setCheckState(Qt::Checked);
    s.cmdSuchen->click();
    CT_COMPARE(Items(s.lstDateien), QStringList({"Urlaub", "Urlaub\\\\Bilder\\Urlaub\\"}));
    CT_COMPARE(s.ProgressBar->maximum(), 1);
    s.cmdAlleMarkieren->click();
    CT_COMPARE(Marked(s), QStringList({"Archiv", "Urlaub"}));
}

struct RefusedRow {
    const char* name;
    const char* topic;
};
CT_TEST_ROWS(refusedRunOpensItsTopicAndChangesNothing, RefusedRow, {
    {"no term", "Kein Suchbegriff eingegeben"},
    {"no date operator", "Kein Vergleich für das Datum gewählt"},
    {"bad date", "Ungültiges Datum"},
}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    WriteDiscs(fx);
    auto haupt = fx.StartMain();
    frmSuchen s(haupt.get());
    const std::string name = row.name;
    if (name != "no term") s.txtSuchen->setText("x");
    if (name != "no term") {
        s.CheckDatum->click();
        s.txtDatum->setText("31.02.2003");
        if (name == "bad date") s.cboDatum->setCurrentIndex(0);
    }
    s.cmdSuchen->click();
    CT_VERIFY2(LastHelpIs(fx, row.topic), fx.helpCalls.empty() ? std::string("no help") : fx.helpCalls.back());
    CT_COMPARE(s.lblAktion->text(), "");
    CT_COMPARE(s.lblT->text(), "-");
    CT_VERIFY(!s.lstDateien->isEnabled());
}

CT_TEST(cancelDuringARunStopsItAndEmptiesTheMainPanes) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    WriteDiscs(fx);
    fx.WriteCatalogue("Zebra", ExampleCatalogue());
    auto haupt = fx.StartMain();
    haupt->lstDaten->SetListIndex(1);  // a disc chosen: the folder pane is full
    CT_VERIFY(haupt->lstOrdner->count() > 0);
    frmSuchen s(haupt.get());
    s.show();
    s.txtSuchen->setText("urlaub");
    int discsSeen = 0;
    // Esc while the engine lets events run after the first disc; a second
    // press of the button in between starts nothing.
    QTimer::singleShot(0, &s, [&] {
        ++discsSeen;
        s.cmdSuchen_Click();
    });
    s.cmdSuchen->click();
    CT_VERIFY(!s.StopRequested);
    CT_VERIFY(s.lblAktion->text() == "Fertig!");
    CT_COMPARE(discsSeen, 1);
    CT_COMPARE(s.lstDateien->count(), 5);  // one run's hits, not two

    QObject::connect(s.ProgressBar, &QProgressBar::valueChanged, &s, [&](int value) {
        if (value == 1) QTimer::singleShot(0, &s, [&] { QTest::keyClick(&s, Qt::Key_Escape); });
    });
    s.cmdSuchen->click();
    CT_VERIFY(s.StopRequested);
    CT_VERIFY(!s.isVisible());
    CT_COMPARE(s.lstDateien->count(), 2);  // the first disc's hits only
    CT_COMPARE(s.lblAktion->text(), "Suche läuft:");
    CT_COMPARE(haupt->lstOrdner->count(), 0);
    CT_COMPARE(haupt->lstDaten->ListIndex(), 1);  // the disc stays chosen
}

CT_TEST(closeBoxStopsTheRunToo) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    WriteDiscs(fx);
    auto haupt = fx.StartMain();
    frmSuchen s(haupt.get());
    s.show();
    s.txtSuchen->setText("urlaub");
    QObject::connect(s.ProgressBar, &QProgressBar::valueChanged, &s, [&](int value) {
        if (value == 1) s.close();
    });
    s.cmdSuchen->click();
    CT_VERIFY(s.StopRequested);
    CT_COMPARE(s.lstDateien->count(), 2);
}

CT_TEST(hitLimitKeeps32000AndOpensItsTopic) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    std::vector<std::string> lines = {"0|0||0|0|0|", "", ""};
    for (int i = 0; i < 32001; ++i) lines.push_back("\\f" + std::to_string(i) + ".txt|1|A|01.01.2001 00:00:00|");
    fx.WriteCatalogue("Viele", lines);
    auto haupt = fx.StartMain();
    frmSuchen s(haupt.get());
    s.show();
    s.txtSuchen->setText("f");
    QElapsedTimer clock;
    clock.start();
    s.cmdSuchen->click();
    const qint64 ms = clock.elapsed();
    CT_COMPARE(s.lstDateien->count(), 32000);
    CT_VERIFY(LastHelpIs(fx, "Zu viele Treffer"));
    CT_COMPARE(s.lblAktion->text(), "Suche läuft:");
    CT_COMPARE(s.lblT->text(), "0");
    CT_VERIFY(!s.lstDateien->isEnabled());
    CT_COMPARE(s.lstDateien->List(0), "Viele\\\\f0.txt");
    CT_COMPARE(s.lstDateien->List(1), "Viele\\\\f1.txt");
    CT_COMPARE(s.lstDateien->List(2), "Viele\\\\f10.txt");
    CT_VERIFY2(ms < 20000, std::to_string(ms) + " ms for 32,000 hits");
}

CT_TEST(changeButtonEditsFromTheHitList) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    WriteDiscs(fx);
    auto haupt = fx.StartMain();
    frmSuchen s(haupt.get());
    CT_COMPARE(SearchWindow(), &s);
    s.cmdÄndern->setEnabled(true);
    s.cmdÄndern->click();
    CT_COMPARE(Start::EditTarget, "Suchen");
}

struct LayoutRow {
    const char* name;
    bool wide;
    int language;
    const char* caption;
    const char* noAttributes;
};
CT_TEST_ROWS(layoutsAndLanguages, LayoutRow, {
    {"narrow German", false, 0, "Dateien und Ordner suchen", "(ohne Attribute)"},
    {"wide German", true, 0, "Dateien und Ordner suchen", "(ohne Attribute)"},
    {"narrow English", false, 10000, "Search files and folders", "(no attributes)"},
    {"wide English", true, 10000, "Search files and folders", "(no attributes)"},
}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    WriteDiscs(fx);
    auto haupt = fx.StartMain();
    Start::Language = static_cast<std::int16_t>(row.language);
    Start::WideLayout = row.wide;
    frmSuchen s(haupt.get());
    CT_COMPARE(s.windowTitle(), row.caption);
    CT_COMPARE(s.cboAttribut->itemText(0), row.noAttributes);
    CT_COMPARE(s.size(), QSize(Tw(row.wide ? 15210 : 11880), Tw(7485)));
    CT_COMPARE(s.lstDaten->width(), Tw(row.wide ? 6495 : 3135));
    CT_COMPARE(s.cmdÄndern->x(), Tw(row.wide ? 13680 : 10320));
    CT_COMPARE(s.lblT->x(), Tw(row.wide ? 14760 : 11400));
    CT_COMPARE(s.txtSuchen->y(), Tw(1560));  // no Top changes

    // The first attribute row finds entries without attributes in either language.
    s.txtSuchen->setText("jpg");
    s.cboSuchen->setCurrentIndex(0);
    s.CheckAttribut->click();
    s.cboAttribut->setCurrentIndex(0);
    s.cmdSuchen->click();
    CT_COMPARE(Items(s.lstDateien), QStringList({"Archiv\\\\Urlaub2004\\strand.jpg"}));

    if (const char* dir = std::getenv("CT_SCREENSHOTS")) {
        s.show();
        s.lstDateien->SetListIndex(0);
        QCoreApplication::processEvents();
        QTest::qWait(200);
        s.grab().save(QString::fromUtf8(dir) + "/frmSuchen_" + QString::fromUtf8(row.name).replace(' ', '_') +
                      ".png");
    }
    Start::WideLayout = false;
    Start::Language = 0;
}

CT_TEST_MAIN()
