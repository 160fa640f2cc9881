#include "gui/Start.h"
#include "gui/frmBezeichnungAendern.h"
#include "gui/frmHaupt.h"
#include "gui/windows.h"

namespace ct {

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
