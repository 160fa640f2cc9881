#include "gui/windows.h"

namespace ct {

// Placeholder until frmStatistik lands: its author replaces this file.
void ShowStatistik() {}

}  // namespace ct
