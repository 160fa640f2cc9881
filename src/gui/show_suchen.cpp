#include "gui/windows.h"

namespace ct {

// Placeholder until frmSuchen lands: its author replaces this file.
void ShowSuchen() {}

}  // namespace ct
