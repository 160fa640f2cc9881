// The one place where frmHaupt reaches the other windows and commands. Each
// Show function lives with its window (frm<window>.cpp), each command in its
// own do_<command>.cpp, so frmHaupt never changes when a window does.
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
