// Every caption and value stands whole in its control at the fixed geometry:
// both layouts, both languages, with the program's font and after a desktop
// theme has set a larger one (as qt6ct does once the event loop runs). Values
// are the longest a catalogue gives: a 12-digit size, a 19-character date.
#include <QAbstractButton>
#include <QComboBox>
#include <QDialog>
#include <QScreen>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QPushButton>
#include <QStyleOptionComboBox>
#include <QtTest>

#include "gui/Start.h"
#include "gui/frmBeschreibungAendern.h"
#include "gui/frmBezeichnungAendern.h"
#include "gui/frmHaupt.h"
#include "gui/frmHinzufuegen.h"
#include "gui/frmHistorie.h"
#include "gui/frmInfo.h"
#include "gui/frmOptionen.h"
#include "gui/frmSprache.h"
#include "gui/frmStatistik.h"
#include "gui/frmSuchen.h"
#include "gui/windows.h"
#include "support/GuiFixture.h"

using namespace ct;
using namespace ct::test;

namespace {

QString Plain(QString text) { return text.remove(QRegularExpression(QStringLiteral("&(?!&)"))); }

// What doesn't fit in `window`, one line each: "<class> '<text>' needs N, has M".
QStringList Cut(QWidget* window, bool combos) {
    QStringList cut;
    auto say = [&cut](const QWidget* w, const QString& text, int need, int have) {
        if (need > have)
            cut << QStringLiteral("%1 '%2' needs %3, has %4")
                       .arg(QString::fromLatin1(w->metaObject()->className()), text)
                       .arg(need)
                       .arg(have);
    };
    for (QLabel* l : window->findChildren<QLabel*>()) {
        if (l->text().isEmpty() || l->isHidden() || l->window() != window) continue;
        if (l->wordWrap())
            say(l, l->text(), l->heightForWidth(l->width()), l->height());
        else
            say(l, l->text(), l->sizeHint().width(), l->width());
    }
    for (QAbstractButton* b : window->findChildren<QAbstractButton*>()) {
        if (b->text().isEmpty() || b->isHidden() || b->window() != window) continue;
        const int text = b->fontMetrics().horizontalAdvance(Plain(b->text()));
        say(b, b->text(), qobject_cast<QPushButton*>(b) ? text + 6 : b->sizeHint().width(), b->width());
    }
    if (combos)
        for (QComboBox* c : window->findChildren<QComboBox*>()) {
            if (c->isHidden() || c->window() != window) continue;
            QStyleOptionComboBox opt;
            opt.initFrom(c);
            opt.editable = c->isEditable();
            const int room = c->style()->subControlRect(QStyle::CC_ComboBox, &opt, QStyle::SC_ComboBoxEditField, c)
                                 .width();
            for (int i = 0; i < c->count(); ++i)
                say(c, c->itemText(i), c->fontMetrics().horizontalAdvance(c->itemText(i)) + 2, room);
        }
    return cut;
}

}  // namespace

class TstFit : public QObject {
    Q_OBJECT
private slots:
    void everyCaptionFits_data() {
        QTest::addColumn<bool>("wide");
        QTest::addColumn<QString>("language");
        QTest::addColumn<bool>("themeFont");
        for (bool wide : {false, true})
            for (const char* language : {"0", "10000"})
                for (bool theme : {false, true})
                    QTest::addRow("%s-%s-%s", wide ? "wide" : "standard", *language == '0' ? "de" : "en",
                                  theme ? "theme" : "plain")
                        << wide << QString::fromLatin1(language) << theme;
    }

    void everyCaptionFits() {
        QFETCH(bool, wide);
        QFETCH(QString, language);
        QFETCH(bool, themeFont);
        GuiFixture fx(CARTULON_STAGE_DIR);
        QVERIFY(fx.IsValid());
        UseProgramFont();
        fx.desktop = wide ? QSize(1280, 1024) : QSize(1000, 740);
        fx.WriteIni(language.toStdString(), "/media/cdrom");
        fx.WriteCatalogue("Längste Werte", {"999999999999|-1029197328|UDF|999999999999|64|2048|Urlaub",
                                            "", "\\Ordner|RHSAD|28.08.2028 08:08:08|", "",
                                            "\\Ordner\\Datei.bin|999999999999|RHSAC|28.08.2028 08:08:08|"});
        auto haupt = fx.StartMain();
        if (themeFont) {
            // What a theme does once the event loop runs.
            QFont big(QStringLiteral("DejaVu Sans"));
            big.setPointSize(11);
            QApplication::setFont(big);
            QCoreApplication::processEvents();
        }
        QVERIFY(Select(haupt->lstDaten, QStringLiteral("Längste Werte")) >= 0);
        QVERIFY(Select(haupt->lstOrdner, QStringLiteral("\\Ordner")) >= 0);
        QCOMPARE(haupt->lblDD->text(), QStringLiteral("28.08.2028 08:08:08"));

        haupt->show();
        QStringList cut = Cut(haupt.get(), false);
        Start::EditTarget = "CD";
        std::vector<std::pair<QString, std::unique_ptr<QWidget>>> dialogs;
        dialogs.emplace_back("frmSuchen", new frmSuchen(haupt.get()));
        dialogs.emplace_back("frmHinzufuegen", new frmHinzufügen(haupt.get()));
        dialogs.emplace_back("frmOptionen", new frmOptionen(haupt.get()));
        dialogs.emplace_back("frmStatistik", new frmStatistik(haupt.get()));
        dialogs.emplace_back("frmHistorie", new frmHistorie(haupt.get()));
        dialogs.emplace_back("frmInfo", new frmInfo(nullptr));
        dialogs.emplace_back("frmSprache", new frmSprache(haupt.get()));
        dialogs.emplace_back("frmBezeichnungAendern", new frmBezeichnungÄndern(haupt.get()));
        dialogs.emplace_back("frmBeschreibungAendern", new frmBeschreibungÄndern(haupt.get()));
        for (auto& [name, d] : dialogs) {
            d->show();
            // The add dialog's drive list shows paths of this machine.
            for (const QString& line : Cut(d.get(), name != QLatin1String("frmHinzufuegen")))
                cut << name + QStringLiteral(": ") + line;
            d->close();
        }
        QVERIFY2(cut.isEmpty(), qPrintable(cut.join(QLatin1Char('\n'))));
    }

    // A screen reader names each list and box after the caption above it.
    void controlsCarryTheirCaption() {
        GuiFixture fx(CARTULON_STAGE_DIR);
        fx.WriteIni("10000", "/media/cdrom");
        auto haupt = fx.StartMain();
        for (QWidget* w : std::initializer_list<QWidget*>{haupt->lstDaten, haupt->lstOrdner, haupt->lstDateien,
                                                           haupt->txtBeschreibungC, haupt->txtBeschreibungO,
                                                           haupt->txtBeschreibungD})
            QVERIFY2(!w->accessibleName().isEmpty() && !w->accessibleName().contains(QLatin1Char('&')),
                     w->metaObject()->className());
        QCOMPARE(haupt->lblDaten->buddy(), haupt->lstDaten);
        QVERIFY(Plain(haupt->lblDaten->text()).startsWith(haupt->lstDaten->accessibleName()));
        frmOptionen o(haupt.get());
        for (auto [caption, control] : {std::pair<QLabel*, QWidget*>{o.lblSprache, o.cboSprache},
                                        {o.lblDatenpfad, o.txtDatenpfad}})
            QVERIFY(!control->accessibleName().isEmpty() &&
                    Plain(caption->text()).startsWith(control->accessibleName()));
    }

    // The about window's links: blue on a light window, the palette's link
    // colour on a dark one, where pure blue can't be read.
    void linksReadOnAnyPalette_data() {
        QTest::addColumn<QColor>("window");
        QTest::addColumn<QColor>("expected");
        QTest::newRow("light") << QColor(240, 240, 240) << QColor(0, 0, 255);
        QTest::newRow("dark") << QColor(40, 40, 40) << QColor(120, 180, 255);
    }
    void linksReadOnAnyPalette() {
        QFETCH(QColor, window);
        QFETCH(QColor, expected);
        GuiFixture fx(CARTULON_STAGE_DIR);
        const QPalette before = QApplication::palette();
        QPalette pal = before;
        pal.setColor(QPalette::Window, window);
        pal.setColor(QPalette::Link, QColor(120, 180, 255));
        QApplication::setPalette(pal);
        auto* info = new frmInfo(nullptr);
        const QColor shown = info->lbl[1]->palette().color(QPalette::WindowText);
        info->close();
        QApplication::setPalette(before);
        QCOMPARE(shown, expected);
    }

    // "Change" in the search window without a folder or file hit (a disc hit,
    // or none) opens the help topic that says why, which the help file has.
    void changeWithoutRecordHit_data() {
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("help");
        QTest::addColumn<QString>("topic");
        QTest::newRow("de") << "0" << "help_de.fhp" << "Kein Ordner und keine Datei gewählt";
        QTest::newRow("en") << "10000" << "help_en.fhp" << "No folder or file chosen";
    }
    void changeWithoutRecordHit() {
        QFETCH(QString, language);
        QFETCH(QString, help);
        QFETCH(QString, topic);
        GuiFixture fx(CARTULON_STAGE_DIR);
        fx.WriteIni(language.toStdString(), "/media/cdrom");
        auto haupt = fx.StartMain();
        Start::EditTarget = "Suchen";
        ShowBeschreibungAendern();
        QVERIFY(!fx.helpCalls.empty());
        QVERIFY(QString::fromStdString(fx.helpCalls.back()).endsWith(QStringLiteral(", ") + topic));
        QFile file(QStringLiteral(CARTULON_SOURCE_DIR "/data/") + help);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(QString::fromUtf8(file.readAll()).contains(QStringLiteral("\n@@ ") + topic + QLatin1Char('\n')));
    }

    // Qt's own buttons follow the language, also after a change in the options.
    void qtDialogsSpeakTheLanguage() {
        GuiFixture fx(CARTULON_STAGE_DIR);
        auto haupt = fx.StartMain();
        auto yes = [] {
            QMessageBox box(QMessageBox::NoIcon, QString(), QString(), QMessageBox::Yes | QMessageBox::No);
            return box.button(QMessageBox::Yes)->text();
        };
        QCOMPARE(yes(), QStringLiteral("&Ja"));
        Start::Language = 10000;
        haupt->Sprache_Setzen();
        QCOMPARE(yes(), QStringLiteral("&Yes"));
    }

    // A window placed over the desktop's edge is moved inside when shown.
    void windowsOpenInsideTheScreen() {
        KeepWindowsOnScreen();
        QDialog dialog;
        dialog.resize(300, 200);
        const QRect area = dialog.screen()->availableGeometry();
        dialog.move(area.right() - 50, area.bottom() - 50);
        dialog.show();
        QTRY_VERIFY(area.contains(dialog.frameGeometry()));
    }

    // Enter in the language box saves, as everywhere in the window.
    void enterInTheLanguageBoxSaves() {
        GuiFixture fx(CARTULON_STAGE_DIR);
        auto haupt = fx.StartMain();
        frmOptionen o(haupt.get());
        o.show();
        o.cboSprache->setCurrentIndex(1);
        o.cboSprache->setFocus();
        QTest::keyClick(o.cboSprache, Qt::Key_Return);
        QCOMPARE(int(Start::Language), 10000);
        QVERIFY(!o.isVisible());
    }
};

QTEST_MAIN(TstFit)
#include "tst_fit.moc"
