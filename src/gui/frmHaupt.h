// frmHaupt: the main window. Three panes side by side (discs, folders, files),
// the menu, and the public operations the dialogs call back. Its controls are
// public: the other windows read and write them directly, and the current
// items of the three lists are the program's whole selection.
#pragma once

#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QTextEdit>
#include <QWidget>
#include <cstdint>
#include <string>

#include "core/fixed.h"
#include "core/records.h"
#include "gui/ListBox.h"

class QAction;
class QMenu;
class QFrame;

namespace ct {

class frmHaupt : public QMainWindow {
public:
    frmHaupt();
    ~frmHaupt() override;

    // Reads the settings (asking the language on a first run), applies the
    // texts, lists the discs and chooses the layout. Runs before the window
    // is shown.
    void Form_Load();

    // --- Public operations the dialogs call back -----------------------------
    void Sprache_Setzen();
    void INI_Speichern();
    void Aktualisieren();
    void OrdnerInfoLöschen();
    void DateiInfoLöschen();

    // --- Handlers (also run from code: the three lists nest) ----------------
    void lstDaten_Click();
    void lstOrdner_Click();
    void lstDateien_Click();
    void cmdSuchen_Click();
    void cmdHinzufügen_Click();
    void cmdÄndernC_Click();
    void cmdÄndernO_Click();
    void cmdÄndernD_Click();

    // --- Controls ------------------------------------------------------------
    QWidget* central = nullptr;
    QPushButton* cmdSuchen = nullptr;
    QPushButton* cmdHinzufügen = nullptr;

    QFrame* fraCD = nullptr;
    QLabel* lblDaten = nullptr;
    ListBox* lstDaten = nullptr;
    QLabel* lblInfoC = nullptr;
    QLabel *lblGrößeC = nullptr, *lblDateianzahlC = nullptr, *lblOrdneranzahlC = nullptr,
           *lblSeriennummerC = nullptr, *lblDateisystemC = nullptr, *lblClusterC = nullptr,
           *lblSektorenC = nullptr, *lblBytesC = nullptr;
    QLabel *lblGC = nullptr, *lblDA = nullptr, *lblOA = nullptr, *lblSerC = nullptr, *lblDC = nullptr,
           *lblCC = nullptr, *lblSekC = nullptr, *lblBC = nullptr;
    QLabel* lblBeschreibungC = nullptr;
    QPushButton* cmdÄndernC = nullptr;
    QTextEdit* txtBeschreibungC = nullptr;

    QFrame* fraOrdner = nullptr;
    QLabel* lblOrdner = nullptr;
    ListBox* lstOrdner = nullptr;
    QLabel* lblInfoO = nullptr;
    QLabel *lblGrößeO = nullptr, *lblDateianzahlO = nullptr, *lblAttributO = nullptr, *lblDatumO = nullptr;
    QLabel *lblGO = nullptr, *lblDAO = nullptr, *lblAO = nullptr, *lblDO = nullptr;
    QLabel* lblBeschreibungO = nullptr;
    QPushButton* cmdÄndernO = nullptr;
    QTextEdit* txtBeschreibungO = nullptr;

    QFrame* fraDateien = nullptr;
    QLabel* lblDateien = nullptr;
    ListBox* lstDateien = nullptr;
    QLabel* lblInfoD = nullptr;
    QLabel *lblGrößeD = nullptr, *lblAttributD = nullptr, *lblDatumD = nullptr;
    QLabel *lblGD = nullptr, *lblAD = nullptr, *lblDD = nullptr;
    QLabel* lblBeschreibungD = nullptr;
    QPushButton* cmdÄndernD = nullptr;
    QTextEdit* txtBeschreibungD = nullptr;

    QMenu *mnuDatei = nullptr, *mnuBearbeiten = nullptr, *mnuSuchen = nullptr, *mnuExtras = nullptr,
          *mnuHilfe = nullptr;
    QAction *mnuBeenden = nullptr, *mnuHinzufügen = nullptr, *mnuNeuEinlesen = nullptr,
            *mnuBezeichnungÄndern = nullptr, *mnuLöschen = nullptr, *mnuDOSuchen = nullptr,
            *mnuOptionen = nullptr, *mnuStatistik = nullptr, *mnuInhalt = nullptr, *mnuIndex = nullptr,
            *mnuVersionshistorie = nullptr, *mnuInfo = nullptr;

    // Disc pane helpers the delete and re-read commands call.
    void ClearDiscPane();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    void buildMenu();
    void setClientSize(int widthTwips, int heightTwips);
    void fitToClient();
    void centre();
    void ApplyWideLayout();
    void EnableDiscPane();
    void EnableFolderPane();
    void EnableFilePane();
    std::string chosenCataloguePath() const;

    // Working fields of the handlers. Counters are wide: a disc of more than
    // 32,767 entries counts right.
    std::string CurrentLine;
    std::int64_t FolderFileCount = 0;
    Fixed FolderFileSize;
    bool FoldersBeingListed = false;
    std::string SelectedFolder;
    std::string SelectedFilePath;
};

}  // namespace ct
