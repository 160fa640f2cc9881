#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmHinzufuegen.h"
#include "gui/windows.h"

namespace ct {

void ShowHinzufuegen() {
    frmHinzufügen dialog(MainWindow());
    dialog.exec();
}

}  // namespace ct
