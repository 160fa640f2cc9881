#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmHistorie.h"
#include "gui/windows.h"

namespace ct {

void ShowHistorie() {
    frmHistorie dialog(MainWindow());
    dialog.exec();
}

}  // namespace ct
