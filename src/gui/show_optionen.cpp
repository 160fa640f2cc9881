#include "gui/windows.h"

namespace ct {

// Placeholder until frmOptionen lands: its author replaces this file.
void ShowOptionen() {}

}  // namespace ct
