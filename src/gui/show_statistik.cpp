#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmStatistik.h"
#include "gui/windows.h"

namespace ct {

void ShowStatistik() {
    frmStatistik dialog(MainWindow());
    dialog.exec();
}

}  // namespace ct
