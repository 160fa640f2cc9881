#include "gui/windows.h"

namespace ct {

// Placeholder until frmBeschreibungÄndern lands: its author replaces this file.
void ShowBeschreibungAendern() {}

}  // namespace ct
