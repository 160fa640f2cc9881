#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmOptionen.h"
#include "gui/windows.h"

namespace ct {

void ShowOptionen() {
    frmOptionen dialog(MainWindow());
    dialog.exec();
}

}  // namespace ct
