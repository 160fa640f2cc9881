#include "gui/do_neueinlesen.h"

#include <QLineEdit>
#include <QPlainTextEdit>

#include "core/failure.h"
#include "core/reread.h"
#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmHinzufuegen.h"
#include "gui/seams.h"
#include "gui/windows.h"

namespace ct {

namespace {

QString Q(const std::string& text) { return QString::fromStdString(text); }

// Titled by the menu entry, without its access-key mark: what didn't happen,
// then the core's failure in the language in force, with the system's reason.
void Warn(QWidget* parent, const QString& head, const Failure& reason) {
    ReportFailure(parent, TitleText(10011), head, Q(FailureText(reason, Start::Language)));
}

// Tells the user what became of a set-aside catalogue that couldn't go back.
void ReportKept(QWidget* parent, const SetAsideFile& file, RestoreResult result, const Failure& why) {
    if (result == RestoreResult::Restored) return;
    if (result == RestoreResult::LabelTaken)
        Warn(parent,
             Say("Unter der Bezeichnung „%1“ steht inzwischen ein anderer Katalog. Der alte Katalog bleibt "
                 "erhalten als „%2“.",
                 "Another catalogue now stands under the label \"%1\". The old catalogue is kept as \"%2\".")
                 .arg(Q(file.label), Q(file.path)),
             Failure{});
    else
        Warn(parent,
             Say("Der alte Katalog konnte nicht zurückgelegt werden. Er bleibt erhalten als „%1“.",
                 "The old catalogue could not be put back. It is kept as \"%1\".")
                 .arg(Q(file.path)),
             why);
}

}  // namespace

void DoNeuEinlesen() {
    frmHaupt* haupt = MainWindow();
    if (!haupt) return;
    Busy();
    if (haupt->lstDaten->ListIndex() < 0) {
        HilfeZeigen(ResourceText(10098));
        Normal();
        return;
    }
    const QMessageBox::StandardButton answer = seams::MessageBox(
        haupt, QStringLiteral("Wirklich neu einlesen?"),
        QStringLiteral("Beim Neueinlesen der CD / DVD gehen alle eingegebenen Beschreibungen der Ordner und "
                       "Dateien verloren. Sind Sie sicher, dass die CD / DVD neu eingelesen werden soll?"),
        QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes, QMessageBox::NoIcon);
    if (answer != QMessageBox::Yes) {
        Normal();
        return;
    }

    const QString label = haupt->lstDaten->Text();
    frmHinzufügen dialog(haupt);  // its opening steps may propose a volume name
    dialog.txtBezeichnung->setText(label);
    dialog.txtBeschreibung->setPlainText(haupt->txtBeschreibungC->toPlainText());

    // The old catalogue leaves the disc list and the label check, but not the
    // disk, until the dialog shows whether a new reading took its place.
    SetAsideFile aside;
    Failure failure;
    if (!SetAside(seams::Files(), Start::DataFolder, label.toStdString(), aside, &failure)) {
        Warn(haupt, Say("Die CD / DVD wird nicht neu eingelesen.", "The disc is not read anew."), failure);
        return;
    }
    bool settled = false;
    auto settle = [&aside, &settled](frmHinzufügen& closing) {
        if (settled) return;
        settled = true;
        Failure why;
        if (closing.AddedCount() > 0) {
            // Read anew (under this label or another): the old reading goes.
            if (!Discard(seams::Files(), aside, &why))
                Warn(&closing,
                     Say("Der alte Katalog konnte nicht gelöscht werden. Er liegt noch als „%1“.",
                         "The old catalogue could not be deleted. It still lies as \"%1\".")
                         .arg(Q(aside.path)),
                     why);
            return;
        }
        const RestoreResult result = Restore(AddDiscSource(), seams::Files(), Start::DataFolder, aside, &why);
        ReportKept(&closing, aside, result, why);
    };
    // Before the dialog's own refresh of the disc list, so a disc that was
    // only put back shows there again.
    dialog.BeforeRefresh = settle;

    const int row = haupt->lstDaten->ListIndex();
    haupt->lstDaten->SetListIndex(-1);  // no choice left, so no click runs on removal
    delete haupt->lstDaten->takeItem(row);
    haupt->ClearDiscPane();
    haupt->lstOrdner->Clear();
    haupt->OrdnerInfoLöschen();
    haupt->lstDateien->Clear();
    haupt->DateiInfoLöschen();
    Normal();

    dialog.exec();
    settle(dialog);  // in case the dialog ended without closing itself
}

void RestoreSetAsideCatalogues() {
    for (const LeftoverOutcome& outcome : RestoreLeftovers(AddDiscSource(), seams::Files(), Start::DataFolder))
        ReportKept(MainWindow(), outcome.file, outcome.result, outcome.failure);
}

}  // namespace ct
