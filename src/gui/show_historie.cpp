#include "gui/windows.h"

namespace ct {

// Placeholder until frmHistorie lands: its author replaces this file.
void ShowHistorie() {}

}  // namespace ct
