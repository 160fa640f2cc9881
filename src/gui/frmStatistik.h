// frmStatistik: sums up the collection on demand — how many discs, how much
// they hold, how many folders and files, and the same per disc — over the
// discs the main window lists. Nothing is kept once the window closes.
#pragma once

#include <QDialog>

class QLabel;
class QProgressBar;
class QPushButton;

namespace ct {

class frmStatistik : public QDialog {
public:
    explicit frmStatistik(QWidget* owner = nullptr);

    QPushButton* cmdStatistikErstellen;
    QPushButton* cmdAbbrechen;
    QLabel *lblAnzahl, *lblGesamtgröße, *lblGesamtanzahlO, *lblGesamtanzahlD, *lblDurchschnittsgröße,
        *lblDurchschnittsanzahlO, *lblDurchschnittsanzahlD;
    QLabel *lblA, *lblGG, *lblGAO, *lblGAD, *lblDG, *lblDAO, *lblDAD;
    QLabel* lblAktion;
    QProgressBar* ProgressBar;

    void cmdStatistikErstellen_Click();
    void cmdAbbrechen_Click();

    bool Running() const { return running_; }

    void done(int result) override;

private:
    void Form_Load();

    bool running_ = false;
    bool closing_ = false;  // closed during a run: the run stops at the next disc
};

}  // namespace ct
