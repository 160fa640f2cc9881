// frmSuchen: the search window. Criteria on the left, the discs to search on
// the right, the hit list with the chosen hit's details below. The search
// itself is the engine of the core; this window only reads its controls into
// plain criteria, receives the hits into its sorted list, and shows progress
// between the discs.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFrame>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTextEdit>
#include <string>

#include "core/search.h"
#include "gui/ListBox.h"

namespace ct {

class frmSuchen : public QDialog {
public:
    explicit frmSuchen(QWidget* parent = nullptr);
    ~frmSuchen() override;

    void Form_Load();
    void Form_Unload();

    void cmdSuchen_Click();
    void cmdAbbrechen_Click();
    void cmdÄndern_Click();
    void lstDateien_Click();
    void cmdAlleMarkieren_Click();
    void cmdAlleNichtMarkieren_Click();
    void CheckDateiOrdner_Click();
    void CheckDateigröße_Click();
    void CheckAttribut_Click();
    void CheckDatum_Click();
    void CheckBeschreibung_Click();
    void cboSuchen_Click();
    void txtDatum_LostFocus();

    // The criteria as the controls state them now (operator texts and the
    // attribute box's first row in the language in force).
    SearchCriteria CriteriaFromControls() const;
    bool IsRunning() const { return running_; }

    // --- Controls, in tab order --------------------------------------------
    QLineEdit* txtSuchen = nullptr;
    QComboBox* cboSuchen = nullptr;
    QCheckBox* CheckDateiOrdner = nullptr;
    QComboBox* cboOperator = nullptr;
    QCheckBox* CheckDateigröße = nullptr;
    QComboBox* cboDateigröße = nullptr;
    QLineEdit* txtDateigröße = nullptr;
    QCheckBox* CheckAttribut = nullptr;
    QComboBox* cboAttribut = nullptr;
    QCheckBox* CheckDatum = nullptr;
    QComboBox* cboDatum = nullptr;
    QLineEdit* txtDatum = nullptr;
    QCheckBox* CheckBeschreibung = nullptr;
    QComboBox* cboBeschreibung = nullptr;
    QLineEdit* txtBeschreibung = nullptr;
    ListBox* lstDaten = nullptr;  // a check mark per disc: the disc is searched
    QPushButton* cmdAlleMarkieren = nullptr;
    QPushButton* cmdAlleNichtMarkieren = nullptr;
    ListBox* lstDateien = nullptr;  // the hits; read by the description editor
    QPushButton* cmdÄndern = nullptr;
    QTextEdit* txtBeschreibungText = nullptr;  // the hit's description; written by the editor
    QPushButton* cmdSuchen = nullptr;
    QPushButton* cmdAbbrechen = nullptr;
    QLabel* lblSuchen = nullptr;
    QLabel* lblDP1 = nullptr;
    QLabel* lblWeitereSuchoptionen = nullptr;
    QLabel* lblDP2 = nullptr;
    QLabel* lblDP4 = nullptr;
    QGroupBox* fraDateien = nullptr;
    QLabel* lblG = nullptr;
    QLabel* lblGröße = nullptr;
    QLabel* lblD = nullptr;
    QLabel* lblA = nullptr;
    QLabel* lblDatum = nullptr;
    QLabel* lblAttribut = nullptr;
    QLabel* lblDateien = nullptr;
    QLabel* lblInfo = nullptr;
    QLabel* lblBeschreibung = nullptr;
    QLabel* lblDaten = nullptr;
    QLabel* lblAktion = nullptr;
    QLabel* lblTreffer = nullptr;
    QLabel* lblT = nullptr;
    QLabel* lblDP3 = nullptr;
    QProgressBar* ProgressBar = nullptr;
    QFrame* Line1 = nullptr;

    // Set by cmdAbbrechen and by closing the window; a running search ends
    // at the next disc.
    bool StopRequested = false;

    // Variables of the hit details (the description editor reads them too).
    std::string HitDisc;
    std::string FolderPath;
    std::string FileName;

protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;  // Esc: cmdAbbrechen
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ApplyWideSearchLayout();
    void RefuseTypedText(QComboBox* box, bool keepText);
    void EndOfRun();

    bool running_ = false;
    bool unloaded_ = false;
};

// The open search window, or nullptr.
frmSuchen* SearchWindow();

}  // namespace ct
