// The one place where frmHaupt reaches the other windows and commands. Each
// function is defined in its own file (show_<window>.cpp, do_<command>.cpp),
// so the window's author replaces that file alone and frmHaupt never changes.
// Each runs modally where its window is a dialog and returns when it closed.
#pragma once

namespace ct {

void ShowHinzufuegen();           // frmHinzufügen, modal (cmdHinzufügen, mnuHinzufügen)
void ShowSuchen();                // frmSuchen, modal (cmdSuchen, mnuDOSuchen)
void ShowBeschreibungAendern();   // frmBeschreibungÄndern, modal; Start::EditTarget says what
void ShowBezeichnungAendern();    // mnuBezeichnungÄndern: the label editor (tests for a chosen disc)
void ShowStatistik();             // frmStatistik, modal (mnuStatistik)
void ShowOptionen();              // frmOptionen, modal (mnuOptionen)
void ShowHistorie();              // frmHistorie, modal (mnuVersionshistorie)
void ShowInfo();                  // frmInfo, not modal (mnuInfo)
void DoLoeschen();                // mnuLöschen: deletes the chosen disc
void DoNeuEinlesen();             // mnuNeuEinlesen: re-reads the chosen disc

}  // namespace ct
