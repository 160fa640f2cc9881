// The add dialog: pick a drive (or any folder), give the disc a label and a
// description, and the whole volume is read into one catalogue. It stays open
// after an add so the next disc can follow; closing it refreshes the main
// window.
#pragma once

#include <QDialog>
#include <QString>
#include <functional>
#include <vector>

#include "platform/drives.h"

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace ct {

class DiscSource;

class frmHinzufügen : public QDialog {
public:
    explicit frmHinzufügen(QWidget* owner = nullptr);

    QLabel* lblLaufwerk;
    QComboBox* DriveLaufwerk;
    QLabel* lblBezeichnung;
    QLineEdit* txtBezeichnung;
    QLabel* lblBeschreibung;
    QPlainTextEdit* txtBeschreibung;
    QPushButton* cmdHinzufügen;
    QPushButton* cmdAbbrechen;
    // Entries found so far while a disc is read; empty otherwise.
    QLabel* lblFortschritt;

    // The drive list's value: the mount point (or chosen folder) of the current
    // entry, empty on the "…" entry. Setting a value the list doesn't hold is
    // refused (false) and changes nothing; setting the current value raises no
    // change event.
    QString Drive() const;
    bool SetDrive(const QString& value);

    void DriveLaufwerk_Change();
    void cmdHinzufügen_Click();
    void cmdAbbrechen_Click();

    // How many discs were added since the dialog opened.
    int AddedCount() const { return addedCount_; }

    // Runs when the dialog closes, before the main window is refreshed: the
    // re-read puts its set-aside catalogue back here, so the refresh shows it.
    std::function<void(frmHinzufügen&)> BeforeRefresh;

    // Where the drives and the disc reading come from; tests put their own
    // in. Empty / null: the machine's. (File writes go through seams::Files.)
    static std::function<std::vector<ct::Drive>()> DriveList;
    static DiscSource* Source;

    void done(int result) override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    int AddPickedEntry(const QString& path);
    void Form_Load();
    void FillDrives();
    void DriveLaufwerk_Activated(int index);
    void ShowProgress(std::size_t entries);

    QString currentDrive_;  // the value the last change event saw
    int addedCount_ = 0;
    bool reading_ = false;  // a disc is being read: closing waits
    bool cancelRequested_ = false;  // cancel or the close box during a read
};

DiscSource& AddDiscSource();

}  // namespace ct
