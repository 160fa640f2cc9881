#include "gui/windows.h"

namespace ct {

// Placeholder until frmHinzufügen lands: its author replaces this file.
void ShowHinzufuegen() {}

}  // namespace ct
