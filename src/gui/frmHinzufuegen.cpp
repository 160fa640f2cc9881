#include "gui/frmHinzufuegen.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStylePainter>

#include "core/adddisc.h"
#include "core/fileops.h"
#include "gui/Start.h"
#include "gui/appicon.h"
#include "gui/frmHaupt.h"
#include "gui/layout.h"
#include "gui/seams.h"
#include "platform/image.h"
#include "platform/walk.h"
#include "gui/windows.h"

namespace ct {

std::function<std::vector<ct::Drive>()> frmHinzufügen::DriveList;
DiscSource* frmHinzufügen::Source = nullptr;

DiscSource& AddDiscSource() {
    return frmHinzufügen::Source ? *frmHinzufügen::Source : DiscSourceWithImages();
}

namespace {

// The last entry of the drive list: not a drive but the way to any folder.
const QString kOtherFolder = QStringLiteral("\u2026");

// A removable volume's mount point already holds its name
// ("/media/anna/FOTOS2003 [FOTOS2003]"): cut in the middle, so the closed list
// still shows where the path starts and which volume it is.
class DriveListBox : public QComboBox {
public:
    using QComboBox::QComboBox;

protected:
    void paintEvent(QPaintEvent*) override {
        QStylePainter painter(this);
        QStyleOptionComboBox option;
        initStyleOption(&option);
        painter.drawComplexControl(QStyle::CC_ComboBox, option);
        const QRect field = style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, this);
        option.currentText = fontMetrics().elidedText(option.currentText, Qt::ElideMiddle, field.width());
        painter.drawControl(QStyle::CE_ComboBoxLabel, option);
    }
};

bool IsOtherFolderEntry(const QComboBox* box, int index) {
    return index >= 0 && index == box->count() - 1 && !box->itemData(index).isValid();
}

}  // namespace

frmHinzufügen::frmHinzufügen(QWidget* owner) : QDialog(owner) {
    setWindowFlags(Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint | Qt::WindowTitleHint |
                   Qt::WindowCloseButtonHint);
    setModal(true);
    setFixedSize(Tw(6510), Tw(2895));

    lblLaufwerk = Label(this, 240, 240, 3135);
    DriveLaufwerk = new DriveListBox(this);
    Place(DriveLaufwerk, 3480, 240, 2775, 315);
    DriveLaufwerk->setEditable(false);
    // Long mount points and volume names stay readable in the open list.
    DriveLaufwerk->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    DriveLaufwerk->view()->setMinimumWidth(Tw(2775));
    DriveLaufwerk->view()->setTextElideMode(Qt::ElideMiddle);

    lblBezeichnung = Label(this, 240, 720, 3135);
    txtBezeichnung = new QLineEdit(this);
    Place(txtBezeichnung, 3480, 720, 2775, 285);

    lblBeschreibung = Label(this, 240, 1200, 3135);
    txtBeschreibung = new QPlainTextEdit(this);
    Place(txtBeschreibung, 3480, 1200, 2775, 735);
    txtBeschreibung->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    txtBeschreibung->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    txtBeschreibung->setTabChangesFocus(true);

    cmdHinzufügen = Button(this, 240, 2280, 1575, 375);
    cmdHinzufügen->setDefault(true);
    Bold(cmdHinzufügen);

    cmdAbbrechen = Button(this, 4680, 2280, 1575, 375);

    // Between the two buttons, where nothing else stands.
    lblFortschritt = new QLabel(this);
    Place(lblFortschritt, 1935, 2280, 2625, 375);
    lblFortschritt->setAlignment(Qt::AlignCenter);

    setTabOrder(DriveLaufwerk, txtBezeichnung);
    setTabOrder(txtBezeichnung, txtBeschreibung);
    setTabOrder(txtBeschreibung, cmdHinzufügen);
    setTabOrder(cmdHinzufügen, cmdAbbrechen);
    lblFortschritt->setFocusPolicy(Qt::NoFocus);

    connect(DriveLaufwerk, &QComboBox::currentIndexChanged, this, [this](int index) {
        // The "…" entry is no drive: the folder chooser behind it (activated)
        // decides what the value becomes.
        if (IsOtherFolderEntry(DriveLaufwerk, index)) return;
        if (Drive() == currentDrive_) return;
        currentDrive_ = Drive();
        DriveLaufwerk_Change();
    });
    connect(DriveLaufwerk, &QComboBox::activated, this, &frmHinzufügen::DriveLaufwerk_Activated);
    connect(cmdHinzufügen, &QPushButton::clicked, this, &frmHinzufügen::cmdHinzufügen_Click);
    connect(cmdAbbrechen, &QPushButton::clicked, this, &frmHinzufügen::cmdAbbrechen_Click);

    InstallHelpKey(this, 10010);
    Form_Load();
}

void frmHinzufügen::Form_Load() {
    frmHaupt* haupt = MainWindow();
    setWindowIcon(haupt ? haupt->windowIcon() : AppIcon());
    setWindowTitle(ResourceText(10010));
    lblLaufwerk->setText(ResourceText(10043));
    lblBezeichnung->setText(ResourceText(10044));
    lblBeschreibung->setText(ResourceText(10045));
    cmdHinzufügen->setText(ResourceText(10046));
    cmdAbbrechen->setText(ResourceText(10004));
    Caption(lblLaufwerk, DriveLaufwerk);
    Caption(lblBezeichnung, txtBezeichnung);
    Caption(lblBeschreibung, txtBeschreibung);

    FillDrives();
    // The last drive used, if the list still holds it. A folder picked with
    // "…" comes back as an entry of its own while it exists; a value that is
    // neither ("C" of a fresh installation, a disc since removed) leaves the
    // list on its first entry, silently.
    const QString last = QString::fromStdString(Start::DriveLetter);
    if (!SetDrive(last) && last.startsWith(QLatin1Char('/')) && QFileInfo(last).isDir()) {
        AddPickedEntry(last);
        DriveLaufwerk->setCurrentIndex(0);
        currentDrive_ = Drive();
        SetDrive(last);
    }
}

void frmHinzufügen::FillDrives() {
    const std::vector<ct::Drive> drives = DriveList ? DriveList() : ListDrives();
    const QSignalBlocker quiet(DriveLaufwerk);
    DriveLaufwerk->clear();
    for (const ct::Drive& drive : drives) {
        DriveLaufwerk->addItem(QString::fromStdString(drive.display.empty() ? drive.mountPoint : drive.display),
                               QString::fromStdString(drive.mountPoint));
        DriveLaufwerk->setItemData(DriveLaufwerk->count() - 1, DriveLaufwerk->itemText(DriveLaufwerk->count() - 1),
                                   Qt::ToolTipRole);
    }
    DriveLaufwerk->addItem(kOtherFolder);
    DriveLaufwerk->setCurrentIndex(0);
    // The list's own first entry is where it starts: no change event for it.
    currentDrive_ = Drive();
}

QString frmHinzufügen::Drive() const { return DriveLaufwerk->currentData().toString(); }

// A folder or image picked with "…", as an entry of its own just above "…",
// its whole path in the tooltip; no change event. Returns its index.
int frmHinzufügen::AddPickedEntry(const QString& path) {
    const int entry = DriveLaufwerk->count() - 1;
    const QSignalBlocker quiet(DriveLaufwerk);
    DriveLaufwerk->insertItem(entry, path, path);
    DriveLaufwerk->setItemData(entry, path, Qt::ToolTipRole);
    return entry;
}

bool frmHinzufügen::SetDrive(const QString& value) {
    if (value.isEmpty()) return false;
    const int index = DriveLaufwerk->findData(value);
    if (index < 0) return false;
    DriveLaufwerk->setCurrentIndex(index);  // the change event runs only on a real change
    return true;
}

void frmHinzufügen::DriveLaufwerk_Activated(int index) {
    if (!IsOtherFolderEntry(DriveLaufwerk, index)) return;
    const QString folder = seams::ChooseFolder(this, currentDrive_);
    if (folder.isEmpty()) {
        // Nothing chosen: back to the entry that stood there, no change event.
        const QSignalBlocker quiet(DriveLaufwerk);
        const int previous = DriveLaufwerk->findData(currentDrive_);
        DriveLaufwerk->setCurrentIndex(previous >= 0 ? previous : 0);
        return;
    }
    int entry = DriveLaufwerk->findData(folder);
    if (entry < 0) entry = AddPickedEntry(folder);
    // The box keeps "…" current across the insertion, so this is a real
    // change of index, and the change event runs if the value changed.
    DriveLaufwerk->setCurrentIndex(entry);
}

void frmHinzufügen::DriveLaufwerk_Change() {
    VolumeInfo volume;  // the name starts empty: a disc without one empties the box
    AddDiscSource().ReadVolumeInfo(Drive().toStdString(), volume);
    txtBezeichnung->setText(QString::fromStdString(volume.VolumeName));
}

void frmHinzufügen::ShowProgress(std::size_t entries) {
    const QString count = QString::number(static_cast<qulonglong>(entries));
    lblFortschritt->setText(Say("%1 Einträge gefunden", "%1 entries found").arg(count));
    // Paint the count and take clicks: the cancel button and the close box
    // stop the read (the other controls are off while it runs).
    QCoreApplication::processEvents();
}

void frmHinzufügen::cmdHinzufügen_Click() {
    if (reading_) return;
    // A machine without any drive in the list stands on "…": nothing can be
    // read before a folder is chosen, and choosing one proposes its label, so
    // the user sees that before pressing again.
    if (Drive().isEmpty()) {
        DriveLaufwerk_Activated(DriveLaufwerk->count() - 1);
        return;
    }
    AddOutcome outcome;
    {
        // The wait pointer for the read; it is gone before the dialog closes
        // or a message box asks for a click.
        const BusyScope busy;
        if (txtBezeichnung->text().isEmpty()) {
            HilfeZeigen(ResourceText(10099));
            return;
        }

        AddRequest request;
        request.root = Drive().toStdString();
        request.label = txtBezeichnung->text().toStdString();
        request.description = txtBeschreibung->toPlainText().toStdString();
        request.dataFolder = Start::DataFolder;
        // The walker tells every thousand entries; painting at most ten times
        // a second keeps a fast disk fast.
        QElapsedTimer sinceShown;
        request.progress = [&](std::size_t entries) {
            if (sinceShown.isValid() && sinceShown.elapsed() < 100) return;
            sinceShown.start();
            ShowProgress(entries);
        };

        request.cancelled = [this, &sinceShown] {
            // A walk without many entries still looks at clicks now and then.
            if (!sinceShown.isValid() || sinceShown.elapsed() >= 100) {
                sinceShown.start();
                QCoreApplication::processEvents();
            }
            return cancelRequested_;
        };
        reading_ = true;
        cancelRequested_ = false;
        QWidget* const inputs[] = {DriveLaufwerk, txtBezeichnung, txtBeschreibung, cmdHinzufügen};
        for (QWidget* control : inputs) control->setEnabled(false);
        outcome = AddDisc(request, AddDiscSource(), seams::Files());
        for (QWidget* control : inputs) control->setEnabled(true);
        reading_ = false;
        lblFortschritt->clear();

        if (outcome.result == AddResult::EmptyLabel) {
            HilfeZeigen(ResourceText(10099));
            return;
        }
        if (outcome.result != AddResult::Cancelled) {
            // From here on the label is what the box shows, and so is the
            // description.
            txtBezeichnung->setText(QString::fromStdString(outcome.label));
            txtBeschreibung->setPlainText(QString::fromStdString(outcome.description));
        }
        if (outcome.result == AddResult::LabelInUse) {
            HilfeZeigen(ResourceText(10100));
            return;
        }
    }

    switch (outcome.result) {
    case AddResult::Cancelled:
        // Nothing was written; a re-read puts the old catalogue back as the
        // dialog closes.
        reject();
        return;
    case AddResult::WriteFailed:
        // The reason names the file step that failed; the head only says
        // what didn't happen, so the cause is told once.
        ReportFailure(this, windowTitle(), Say("Die CD / DVD wurde nicht aufgenommen.", "The disc was not added."),
                      QString::fromStdString(FailureText(outcome.failure, Start::Language)));
        return;
    case AddResult::Added:
    case AddResult::EmptyLabel:
    case AddResult::LabelInUse:
        break;
    }

    ++addedCount_;
    Start::DriveLetter = Drive().toStdString();
    if (frmHaupt* haupt = MainWindow()) haupt->INI_Speichern();
    // What couldn't be read is missing from the catalogue: the user hears so.
    QString report = ResourceText(10092);
    if (outcome.unreadable > 0) {
        report += QStringLiteral("\n\n") +
                  Say("%1 Ordner oder Einträge konnten nicht gelesen werden und fehlen im Katalog.",
                      "%1 folders or entries couldn't be read and are missing from the catalogue.")
                      .arg(static_cast<qulonglong>(outcome.unreadable));
    }
    seams::MessageBox(this, QStringLiteral("Fertig!"), report, QMessageBox::Ok);
}

void frmHinzufügen::cmdAbbrechen_Click() {
    if (reading_) {
        cancelRequested_ = true;  // the read stops at its next look, then the dialog closes
        return;
    }
    reject();
}

void frmHinzufügen::closeEvent(QCloseEvent* event) {
    // The window system's close box while a disc is read stops the read;
    // the dialog closes once it has stopped.
    if (reading_) {
        cancelRequested_ = true;
        event->ignore();
        return;
    }
    QDialog::closeEvent(event);
}

void frmHinzufügen::done(int result) {
    if (reading_) {
        cancelRequested_ = true;  // Escape during a read: stop it, close after
        return;
    }
    QDialog::done(result);
    if (BeforeRefresh) BeforeRefresh(*this);
    if (frmHaupt* haupt = MainWindow()) {
        haupt->OrdnerInfoLöschen();
        haupt->DateiInfoLöschen();
        haupt->Aktualisieren();
    }
}

void ShowHinzufuegen() {
    frmHinzufügen dialog(MainWindow());
    dialog.exec();
}

}  // namespace ct
