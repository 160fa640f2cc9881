#include "gui/frmOptionen.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include "core/failure.h"
#include "core/options.h"
#include "gui/Start.h"
#include "gui/appicon.h"
#include "gui/frmHaupt.h"
#include "gui/layout.h"
#include "gui/seams.h"
#include "gui/windows.h"

namespace ct {

namespace {

QLabel* WrappingLabel(QWidget* parent, int left, int top, int width, int height) {
    QLabel* l = Label(parent, left, top, width, height);
    l->setWordWrap(true);
    return l;
}

}  // namespace

frmOptionen::frmOptionen(QWidget* parent) : QDialog(parent) {
    setWindowFlags(Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint | Qt::WindowTitleHint |
                   Qt::WindowCloseButtonHint);
    setModal(true);
    setFixedSize(Tw(6510), Tw(2535));

    lblSprache = WrappingLabel(this, 240, 240, 2055, 255);
    cboSprache = new QComboBox(this);
    Place(cboSprache, 2400, 240, 2295, 315);
    cboSprache->setEditable(true);
    cboSprache->setInsertPolicy(QComboBox::NoInsert);
    cboSprache->addItems({QStringLiteral("Deutsch"), QStringLiteral("English")});

    lblLaufwerksbuchstabe = WrappingLabel(this, 240, 720, 2055, 495);
    // On Linux the drive preset is a mount point, a path, not one letter: the
    // box is as wide as the data folder's.
    txtLaufwerksbuchstabe = new QLineEdit(this);
    Place(txtLaufwerksbuchstabe, 2400, 720, 3840, 285);

    lblDatenpfad = WrappingLabel(this, 240, 1440, 2055, 255);
    txtDatenpfad = new QLineEdit(this);
    Place(txtDatenpfad, 2400, 1440, 3840, 285);

    cmdSpeichern = Button(this, 240, 1920, 1575, 375);
    cmdSpeichern->setDefault(true);
    Bold(cmdSpeichern);
    cmdAbbrechen = Button(this, 4680, 1920, 1575, 375);

    connect(cmdSpeichern, &QPushButton::clicked, this, [this] { cmdSpeichern_Click(); });
    connect(cmdAbbrechen, &QPushButton::clicked, this, &QDialog::reject);
    // The editable language box keeps Enter for itself; Enter saves here as
    // it does in every other box of the window.
    connect(cboSprache->lineEdit(), &QLineEdit::returnPressed, cmdSpeichern, &QPushButton::click);

    setTabOrder(cboSprache, txtLaufwerksbuchstabe);
    setTabOrder(txtLaufwerksbuchstabe, txtDatenpfad);
    setTabOrder(txtDatenpfad, cmdSpeichern);
    setTabOrder(cmdSpeichern, cmdAbbrechen);
    InstallHelpKey(this, 10017);
    Form_Load();
}

void frmOptionen::Form_Load() {
    setWindowTitle(ResourceText(10017));
    lblSprache->setText(ResourceText(10097));
    lblLaufwerksbuchstabe->setText(ResourceText(10053));
    lblDatenpfad->setText(ResourceText(10054));
    cmdSpeichern->setText(ResourceText(10055));
    cmdAbbrechen->setText(ResourceText(10004));
    Caption(lblSprache, cboSprache);
    Caption(lblLaufwerksbuchstabe, txtLaufwerksbuchstabe);
    Caption(lblDatenpfad, txtDatenpfad);
    setWindowIcon(AppIcon());
    cboSprache->setCurrentIndex(Start::Language / 10000 == 1 ? 1 : 0);
    txtLaufwerksbuchstabe->setText(QString::fromStdString(Start::DriveLetter));
    txtDatenpfad->setText(QString::fromStdString(Start::DataFolder));
    cboSprache->setFocus();
}

void frmOptionen::cmdSpeichern_Click() {
    frmHaupt* haupt = MainWindow();
    const BusyScope busy;

    // A language typed over the list names neither entry: the language stays.
    const int entry = cboSprache->findText(cboSprache->currentText(), Qt::MatchExactly);
    if (entry >= 0) {
        const auto language = static_cast<std::int16_t>((QString::number(entry) + "0000").toInt());
        if (language != Start::Language) {
            Start::Language = language;
            if (haupt) haupt->Sprache_Setzen();
        }
    }

    const std::string newFolder = txtDatenpfad->text().toStdString();
    if (newFolder != Start::DataFolder) {
        const auto answer = seams::MessageBox(this, ResourceText(10094), ResourceText(10093),
                                              QMessageBox::Yes | QMessageBox::No);
        if (answer == QMessageBox::Yes) {
            std::vector<std::string> labels;
            if (haupt)
                for (int i = 0; i < haupt->lstDaten->ListCount(); ++i)
                    labels.push_back(haupt->lstDaten->List(i).toStdString());
            const MoveOutcome moved = MoveCatalogues(seams::Files(), labels, Start::DataFolder, newFolder);
            if (!moved.copied) {
                // Which copy failed and the system's reason, in the language in force.
                seams::MessageBox(this, ResourceText(10096),
                                  ResourceText(10095) + QStringLiteral("\n\n") +
                                      QString::fromStdString(FailureText(moved.failure, Start::Language)),
                                  QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Critical);
                return;
            }
            Start::DataFolder = newFolder;
            if (!moved.kept.empty()) {
                // Every catalogue stands in the new folder; the ones that
                // couldn't be deleted are only surplus copies, but the user
                // should know they are still there.
                QString names;
                for (const auto& l : moved.kept)
                    names += QStringLiteral("\n") + QString::fromStdString(l) + QStringLiteral(".idx");
                seams::MessageBox(this, ResourceText(10094),
                                  (Start::Language == 10000
                                       ? QStringLiteral("These catalogues were copied but could not be "
                                                        "removed from the old folder:")
                                       : QStringLiteral("Diese Kataloge wurden kopiert, konnten aber aus "
                                                        "dem alten Ordner nicht entfernt werden:")) +
                                      names,
                                  QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Warning);
            }
        }
    }

    Start::DriveLetter = txtLaufwerksbuchstabe->text().toStdString();
    if (haupt) haupt->INI_Speichern();
    accept();
}

void ShowOptionen() {
    frmOptionen dialog(MainWindow());
    dialog.exec();
}

}  // namespace ct
