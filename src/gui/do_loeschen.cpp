#include "core/editing.h"
#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/seams.h"
#include "gui/windows.h"

namespace ct {

void DoLoeschen() {
    frmHaupt* main = MainWindow();
    if (!main) return;
    Busy();
    const int chosen = main->lstDaten->ListIndex();
    if (chosen == -1) {
        HilfeZeigen(ResourceText(10098));
        Normal();
        return;
    }
    const QMessageBox::StandardButton answer =
        seams::MessageBox(main, ResourceText(10091), ResourceText(10090), QMessageBox::Yes | QMessageBox::No,
                          QMessageBox::Yes, QMessageBox::NoIcon);
    if (answer != QMessageBox::Yes) {
        Normal();
        return;
    }
    const QString label = main->lstDaten->List(chosen);
    const std::string error = FailureText(DeleteDisc(seams::Files(), Start::DataFolder, label.toStdString()),
                                          Start::Language);
    if (!error.empty()) {
        // The entry stays while its catalogue does, chosen as before.
        ReportFailure(main, ResourceText(10091), Say("Die CD / DVD wurde nicht gelöscht.", "The disc was not deleted."),
                      QString::fromStdString(error));
        return;
    }
    // No choice first, so taking the item out chooses no neighbour.
    main->lstDaten->SetListIndex(-1);
    delete main->lstDaten->takeItem(chosen);
    main->ClearDiscPane();
    main->OrdnerInfoLöschen();
    main->DateiInfoLöschen();
    Normal();
}

}  // namespace ct
