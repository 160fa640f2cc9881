#include "gui/windows.h"

namespace ct {

// Placeholder until the command behind mnuNeuEinlesen lands: its author replaces this file.
void DoNeuEinlesen() {}

}  // namespace ct
