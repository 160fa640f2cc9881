#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/frmInfo.h"
#include "gui/windows.h"

namespace ct {

// Not modal, and there is only ever one: a second use brings it to the front.
void ShowInfo() {
    frmInfo* info = InfoWindow();
    // No parent: it may outlive the main window, and the process then lives on
    // until it is closed too.
    if (!info) info = new frmInfo(nullptr);
    info->show();
    info->raise();
    info->activateWindow();
}

}  // namespace ct
