#include "gui/frmBezeichnungAendern.h"

#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>

#include "core/editing.h"
#include "gui/layout.h"
#include "gui/Start.h"
#include "gui/appicon.h"
#include "gui/frmHaupt.h"
#include "gui/seams.h"
#include "gui/windows.h"

namespace ct {

frmBezeichnungÄndern::frmBezeichnungÄndern(QWidget* owner) : QDialog(owner) {
    setWindowFlags(Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint | Qt::WindowTitleHint |
                   Qt::WindowCloseButtonHint);
    setModal(true);
    setFixedSize(Tw(3495), Tw(1590));

    lblNeueBezeichnung = new QLabel(this);
    Place(lblNeueBezeichnung, 240, 240, 3015, 255);
    txtBezeichnung = new QLineEdit(this);
    Place(txtBezeichnung, 240, 480, 3015, 285);

    cmdÄndern = Button(this, 240, 960, 1095, 375);
    cmdÄndern->setDefault(true);
    Bold(cmdÄndern);
    cmdAbbrechen = Button(this, 2160, 960, 1095, 375);

    setTabOrder(txtBezeichnung, cmdÄndern);
    setTabOrder(cmdÄndern, cmdAbbrechen);
    connect(cmdÄndern, &QPushButton::clicked, this, [this] { cmdÄndern_Click(); });
    connect(cmdAbbrechen, &QPushButton::clicked, this, [this] { cmdAbbrechen_Click(); });
    InstallHelpKey(this, 10005);

    // Centred on the screen, not on the main window.
    if (const QScreen* screen = owner ? owner->screen() : QGuiApplication::primaryScreen()) {
        const QRect area = screen->availableGeometry();
        move(area.center() - QPoint(width() / 2, height() / 2));
    }
    Form_Load();
}

void frmBezeichnungÄndern::Form_Load() {
    setWindowIcon(AppIcon());
    setWindowTitle(ResourceText(10005));
    lblNeueBezeichnung->setText(ResourceText(10006));
    Caption(lblNeueBezeichnung, txtBezeichnung);
    cmdÄndern->setText(ResourceText(10003));
    cmdAbbrechen->setText(ResourceText(10004));
    if (frmHaupt* main = MainWindow()) txtBezeichnung->setText(main->lstDaten->Text());
    txtBezeichnung->selectAll();
}

void frmBezeichnungÄndern::cmdÄndern_Click() {
    frmHaupt* main = MainWindow();
    if (!main) return;
    std::vector<std::string> labels;
    labels.reserve(static_cast<std::size_t>(main->lstDaten->ListCount()));
    for (int i = 0; i < main->lstDaten->ListCount(); ++i) labels.push_back(main->lstDaten->List(i).toStdString());

    const RenameOutcome outcome = RenameDisc(seams::Files(), Start::DataFolder, main->lstDaten->Text().toStdString(),
                                             txtBezeichnung->text().toStdString(), labels);
    txtBezeichnung->setText(QString::fromStdString(outcome.label));
    switch (outcome.result) {
    case RenameResult::EmptyLabel:
        HilfeZeigen(ResourceText(10099));
        return;
    case RenameResult::LabelInUse:
        HilfeZeigen(ResourceText(10100));
        return;
    case RenameResult::Unchanged:
        accept();  // nothing to do: the disc stays chosen
        return;
    case RenameResult::Failed: {
        ReportFailure(this, windowTitle(),
                      Say("Die Bezeichnung wurde nicht geändert.", "The label was not changed."),
                      QString::fromStdString(FailureText(outcome.failure, Start::Language)));
        return;
    }
    case RenameResult::Renamed:
        break;
    }
    main->OrdnerInfoLöschen();
    main->DateiInfoLöschen();
    main->Aktualisieren();
    accept();
}

void frmBezeichnungÄndern::cmdAbbrechen_Click() { reject(); }

void ShowBezeichnungAendern() {
    frmHaupt* main = MainWindow();
    if (!main) return;
    if (main->lstDaten->ListIndex() == -1) {
        HilfeZeigen(ResourceText(10098));
        Normal();
        return;
    }
    frmBezeichnungÄndern dialog(main);
    dialog.exec();
}

}  // namespace ct
