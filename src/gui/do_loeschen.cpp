#include "gui/windows.h"

namespace ct {

// Placeholder until the command behind mnuLöschen lands: its author replaces this file.
void DoLoeschen() {}

}  // namespace ct
