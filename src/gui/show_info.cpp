#include "gui/windows.h"

namespace ct {

// Placeholder until frmInfo lands: its author replaces this file.
void ShowInfo() {}

}  // namespace ct
