// Draws the main window, the language window and every dialog into PNG files, to look at
// the layout with real fonts: run under Xvfb at 1280x1024 for the wide layout
// and at 1000x740 for the standard one.
//
// usage: gui_shots <out-prefix> <language 0|10000>
#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmBeschreibungAendern.h"
#include "gui/frmBezeichnungAendern.h"
#include "gui/frmHinzufuegen.h"
#include "gui/frmHistorie.h"
#include "gui/frmInfo.h"
#include "gui/frmOptionen.h"
#include "gui/frmSprache.h"
#include "gui/frmStatistik.h"
#include "gui/frmSuchen.h"
#include "gui/seams.h"
#include "platform/system.h"

namespace {
void WriteFile(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << bytes;
}
}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    ct::UseProgramFont();
    const QString prefix = argc > 1 ? argv[1] : "shot";
    const int language = argc > 2 ? std::atoi(argv[2]) : 0;

    QTemporaryDir dir;
    const std::string folder = dir.path().toStdString();
    QDir(dir.path()).mkdir("Daten");
    for (const char* file : {"CT.rd", "Version0.txt", "Version1.txt"})
        QFile::copy(QStringLiteral(CARTULON_STAGE_DIR "/") + file, dir.filePath(file));
    ct::SetProgramFolderForTesting(folder);
    const std::string data = folder + "/Daten";
    WriteFile(folder + "/CT.ini", std::to_string(language) + "\r\nC\r\n" + data + "\r\n");
    WriteFile(data + "/Fotos 2003.idx",
              "4700000000|-1029197328|CDFS|2295104|1|2048|Urlaubsfotos 2003 mit einer sehr langen Beschreibung, "
              "die umbrechen muss|und einem Strich\r\n\r\n"
              "\\Bilder|R|14.03.2003 09:12:40|\r\n"
              "\\Bilder\\Urlaub an der Küste|R H S A|14.03.2003 09:12:41|Trip to the coast\r\n\r\n"
              "\\Bilder\\index.htm|2310|R|14.03.2003 09:12:40|\r\n"
              "\\Bilder\\Urlaub an der Küste\\p1.jpg|2147483647|R H S A N T C|14.03.2003 09:12:41|First day\r\n"
              "\\Bilder\\Urlaub an der Küste\\p2.jpg|-2147483648|R|14.03.2003 09:12:41|\r\n"
              "\\liesmich.txt|1024|R|14.03.2003 09:12:40|\r\n");
    WriteFile(data + "/Backup.idx", "0|0||0|0|0|\r\n\r\n\r\n");
    WriteFile(data + "/archiv.idx", "1|1|FAT32|1|1|1|x\r\n\r\n\r\n");

    auto* haupt = new ct::frmHaupt;
    haupt->Form_Load();
    haupt->show();
    for (int i = 0; i < haupt->lstDaten->ListCount(); ++i)
        if (haupt->lstDaten->List(i) == "Fotos 2003") haupt->lstDaten->SetListIndex(i);
    haupt->lstOrdner->SetListIndex(2);
    QTimer::singleShot(300, [&] {
        haupt->grab().save(prefix + "-main.png");
        std::printf("main window %dx%d (frame %dx%d), wide layout %d\n", haupt->width(), haupt->height(),
                    haupt->frameGeometry().width(), haupt->frameGeometry().height(), ct::Start::WideLayout);
        auto* sprache = new ct::frmSprache(haupt);
        sprache->Form_Load();
        sprache->cboSprache->setCurrentIndex(1);
        sprache->show();
        QTimer::singleShot(300, [&, sprache] {
            sprache->grab().save(prefix + "-sprache.png");
            sprache->close();
            // The dialogs as they open on the chosen disc.
            ct::Start::EditTarget = "CD";
            const std::pair<const char*, QWidget*> dialogs[] = {
                {"frmBeschreibungAendern", new ct::frmBeschreibungÄndern(haupt)},
                {"frmBezeichnungAendern", new ct::frmBezeichnungÄndern(haupt)},
                {"frmHinzufuegen", new ct::frmHinzufügen(haupt)},
                {"frmStatistik", new ct::frmStatistik(haupt)},
                {"frmSuchen", new ct::frmSuchen(haupt)},
                {"frmOptionen", new ct::frmOptionen(haupt)},
                {"frmHistorie", new ct::frmHistorie(haupt)},
                {"frmInfo", new ct::frmInfo(haupt)}};
            for (const auto& [name, dialog] : dialogs) {
                dialog->show();
                QApplication::processEvents();
                dialog->grab().save(prefix + "-" + name + ".png");
                dialog->close();
            }
            // The add window with a disc image picked through "…", and the
            // statistics after a run.
            QDir(dir.path()).mkpath("baum/Bilder");
            WriteFile(folder + "/baum/Bilder/p1.jpg", "JPEG");
            const std::string image = folder + "/Urlaubsfotos vom Sommer 2003 an der Küste.iso";
            if (std::system(("xorriso -as mkisofs -J -R -V URLAUB2003 -o '" + image + "' '" + folder +
                             "/baum' >/dev/null 2>&1").c_str()) == 0) {
                ct::seams::SetFolderChooser([&](QWidget*, const QString&) { return QString::fromStdString(image); });
                auto* add = new ct::frmHinzufügen(haupt);
                add->show();
                emit add->DriveLaufwerk->activated(add->DriveLaufwerk->count() - 1);
                QApplication::processEvents();
                add->grab().save(prefix + "-frmHinzufuegen-image.png");
                add->close();
                ct::seams::SetFolderChooser({});
            }
            // The search window with the hits of a search by name.
            auto* suchen = new ct::frmSuchen(haupt);
            suchen->show();
            suchen->txtSuchen->setText("p");
            suchen->cmdSuchen->click();
            QApplication::processEvents();
            suchen->grab().save(prefix + "-frmSuchen-hits.png");
            suchen->close();
            auto* statistik = new ct::frmStatistik(haupt);
            statistik->show();
            statistik->cmdStatistikErstellen->click();
            QApplication::processEvents();
            statistik->grab().save(prefix + "-frmStatistik-run.png");
            statistik->close();
            app.quit();
        });
    });
    const int rc = app.exec();
    delete haupt;
    ct::SetProgramFolderForTesting({});
    return rc;
}
