#include "gui/windows.h"

namespace ct {

// Placeholder until frmBezeichnungÄndern lands: its author replaces this file.
void ShowBezeichnungAendern() {}

}  // namespace ct
