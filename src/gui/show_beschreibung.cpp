#include "gui/frmBeschreibungAendern.h"
#include "gui/windows.h"

namespace ct {

void ShowBeschreibungAendern() {
    // A disc hit of the search (or no choice at all) names no record: the
    // dialog doesn't open, and nothing changes.
    if (!CurrentDescriptionTarget().ok) return;
    frmBeschreibungÄndern dialog(CallerWindow());
    dialog.exec();
}

}  // namespace ct
