// Re-reading the chosen disc (mnuNeuEinlesen) keeps its old catalogue set
// aside until the add dialog closes; see core/reread.h.
#pragma once

namespace ct {

// Puts back every catalogue that a re-read had set aside when the program
// ended before its dialog closed (a crash, a power cut), and tells the user of
// any that has to stay aside. Call at start-up once the settings are read and
// before the disc list is filled.
void RestoreSetAsideCatalogues();

}  // namespace ct
