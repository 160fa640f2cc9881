#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmSuchen.h"
#include "gui/windows.h"

namespace ct {

void ShowSuchen() {
    frmSuchen dialog(MainWindow());
    dialog.exec();
}

}  // namespace ct
