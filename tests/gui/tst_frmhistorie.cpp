// The version history and the about window.
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QtTest>
#include <fstream>

#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmHistorie.h"
#include "gui/frmInfo.h"
#include "gui/seams.h"
#include "support/GuiFixture.h"
#include "support/TestRunner.h"

using namespace ct;
using ct::test::GuiFixture;

namespace {

void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

}  // namespace

struct HistoryRow {
    const char* name;
    int language;
    const char* file;   // written as Version<n>.txt; null: no file
    const char* shown;
};
CT_TEST_ROWS(historyFile, HistoryRow,
             {{"German file", 0, "1.0.0\r\n- Erste Fassung\r\n", "1.0.0\n- Erste Fassung\n"},
              {"English file", 10000, "1.0.0\r\n- First release\r\n", "1.0.0\n- First release\n"},
              {"empty lines stay", 0, "a\r\n\r\nb\r\n", "a\n\nb\n"},
              {"no lines", 0, "", ""},
              {"Windows-1252 umlauts", 0, "Gr\xf6\xdf" "e\r\n", "Größe\n"},
              {"missing file", 0, nullptr, ""}}) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteIni(std::to_string(row.language), "C", fx.DataFolder());
    auto haupt = fx.StartMain();
    if (row.file)
        WriteFile(fx.Folder() + "/Version" + std::to_string(row.language / 10000) + ".txt", row.file);
    frmHistorie h(haupt.get());
    CT_COMPARE(h.txtHistorie->toPlainText(), QString::fromUtf8(row.shown));
    CT_VERIFY(h.txtHistorie->isReadOnly());
    CT_COMPARE(h.windowTitle(), ResourceText(10022));
    CT_COMPARE(h.cmdOK->text(), ResourceText(10047));
}

CT_TEST(historyClosesOnEscAndEnter) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteIni("0", "C", fx.DataFolder());
    auto haupt = fx.StartMain();
    for (Qt::Key key : {Qt::Key_Escape, Qt::Key_Return}) {
        frmHistorie h(haupt.get());
        h.show();
        QTest::keyClick(&h, key);
        CT_VERIFY(!h.isVisible());
    }
}

CT_TEST(aboutShowsThreeVersionNumbersAndTheTexts) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteIni("10000", "C", fx.DataFolder());
    auto haupt = fx.StartMain();
    auto* info = new frmInfo(nullptr);
    CT_VERIFY(!info->isModal());
    CT_COMPARE(info->lblTitelzeile->text(), "Cartulon");
    CT_COMPARE(info->lblVersion->text(), QStringLiteral("Version %1.%2.%3")
                                             .arg(CARTULON_VERSION_MAJOR)
                                             .arg(CARTULON_VERSION_MINOR)
                                             .arg(CARTULON_VERSION_PATCH));
    CT_COMPARE(info->lblVon->text(), ResourceText(10048));
    CT_COMPARE(info->lbl[3]->text(), ResourceText(10049));
    CT_COMPARE(info->lbl[10]->text(), ResourceText(10052));
    CT_COMPARE(info->windowTitle(), ResourceText(10023));
    // Two version numbers in the mail subject, three on the label.
    CT_COMPARE(frmInfo::MailTarget(), QStringLiteral("mailto:?Subject=Cartulon v%1.%2")
                                          .arg(CARTULON_VERSION_MAJOR)
                                          .arg(CARTULON_VERSION_MINOR));
    info->close();
}

CT_TEST(linksOpenTheirTargetsAndChangeColourWhilePressed) {
    GuiFixture fx(CARTULON_STAGE_DIR);
    fx.WriteIni("0", "C", fx.DataFolder());
    auto haupt = fx.StartMain();
    std::vector<std::string> opened;
    seams::SetOpenTarget([&](const std::string& t) { opened.push_back(t); });
    frmInfo info(nullptr);
    info.setAttribute(Qt::WA_DeleteOnClose, false);
    info.show();
    const auto colour = [&](int i) { return info.lbl[i]->palette().color(QPalette::WindowText); };
    CT_COMPARE(colour(1), QColor(0, 0, 255));
    QTest::mousePress(info.lbl[2], Qt::LeftButton);
    CT_COMPARE(colour(2), QColor(128, 0, 0));
    QTest::mouseRelease(info.lbl[2], Qt::LeftButton);
    CT_COMPARE(colour(2), QColor(0, 0, 255));
    QTest::mouseClick(info.lbl[1], Qt::LeftButton);
    QTest::mouseClick(info.lbl[4], Qt::LeftButton);  // not a link: nothing
    CT_COMPARE(opened.size(), std::size_t(2));
    CT_COMPARE(QString::fromStdString(opened[0]), frmInfo::MailTarget());
    CT_COMPARE(QString::fromStdString(opened[1]), frmInfo::WebTarget());
    CT_VERIFY(frmInfo::WebTarget().startsWith("file://"));
}

CT_TEST_MAIN()
