// The version history (the file of the language in force, Windows-1252 read as
// such) and the about window's links.
#include <QLabel>
#include <QPlainTextEdit>
#include <QtTest>

#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmHistorie.h"
#include "gui/frmInfo.h"
#include "gui/seams.h"
#include "support/GuiFixture.h"

using namespace ct;
using namespace ct::test;

class TstFrmHistorie : public QObject {
    Q_OBJECT
private slots:
    void historyFile_data() {
        QTest::addColumn<int>("language");
        QTest::addColumn<QByteArray>("file");  // empty: no file
        QTest::addColumn<QString>("shown");
        QTest::newRow("German") << 0 << QByteArray("1.0.0\r\n- Erste Fassung\r\n") << "1.0.0\n- Erste Fassung\n";
        QTest::newRow("English") << 10000 << QByteArray("1.0.0\r\n- First release\r\n") << "1.0.0\n- First release\n";
        QTest::newRow("Windows-1252") << 0 << QByteArray("Gr\xf6\xdf" "e\r\n") << "Größe\n";
        QTest::newRow("missing file") << 0 << QByteArray() << "";
    }
    void historyFile() {
        QFETCH(int, language);
        QFETCH(QByteArray, file);
        QFETCH(QString, shown);
        GuiFixture fx(CARTULON_STAGE_DIR);
        fx.WriteIni(std::to_string(language));
        auto haupt = fx.StartMain();
        if (!file.isEmpty())
            fx.WriteFileRaw(fx.Folder() + "/Version" + std::to_string(language / 10000) + ".txt", file.toStdString());
        frmHistorie h(haupt.get());
        QCOMPARE(h.txtHistorie->toPlainText(), shown);
    }

    void aboutLinksOpenTheirTargets() {
        GuiFixture fx(CARTULON_STAGE_DIR);
        auto haupt = fx.StartMain();
        std::vector<std::string> opened;
        seams::SetOpenTarget([&](const std::string& t) { opened.push_back(t); });
        frmInfo info(nullptr);
        info.setAttribute(Qt::WA_DeleteOnClose, false);
        info.show();
        QTest::mouseClick(info.lbl[1], Qt::LeftButton);
        QTest::mouseClick(info.lbl[4], Qt::LeftButton);  // not a link: nothing
        QTest::mouseClick(info.lbl[2], Qt::LeftButton);
        QCOMPARE(opened.size(), std::size_t(2));
        QCOMPARE(QString::fromStdString(opened[0]), frmInfo::WebTarget());
        QCOMPARE(QString::fromStdString(opened[1]),
                 QStringLiteral("mailto:?Subject=Cartulon v%1.%2").arg(CARTULON_VERSION_MAJOR).arg(CARTULON_VERSION_MINOR));
    }
};

QTEST_MAIN(TstFrmHistorie)
#include "tst_frmhistorie.moc"
