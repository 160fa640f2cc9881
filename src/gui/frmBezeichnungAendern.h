// frmBezeichnungÄndern: gives the chosen disc a new label, which is renaming
// its catalogue file. Refuses a label that is empty after the label rule or
// that another disc has, with the help topics the add dialog uses.
#pragma once

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace ct {

class frmBezeichnungÄndern : public QDialog {
public:
    explicit frmBezeichnungÄndern(QWidget* owner = nullptr);

    QLabel* lblNeueBezeichnung;
    QLineEdit* txtBezeichnung;
    QPushButton* cmdÄndern;
    QPushButton* cmdAbbrechen;

    void cmdÄndern_Click();
    void cmdAbbrechen_Click();

private:
    void Form_Load();
};

}  // namespace ct
