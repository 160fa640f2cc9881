// Options: language, drive preset and data folder. Saving a new data folder
// moves every listed catalogue there, after one question.
#pragma once

#include <QDialog>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace ct {

class frmOptionen : public QDialog {
public:
    explicit frmOptionen(QWidget* parent = nullptr);

    QLabel* lblSprache;
    QComboBox* cboSprache;
    QLabel* lblLaufwerksbuchstabe;
    QLineEdit* txtLaufwerksbuchstabe;
    QLabel* lblDatenpfad;
    QLineEdit* txtDatenpfad;
    QPushButton* cmdSpeichern;
    QPushButton* cmdAbbrechen;

    void cmdSpeichern_Click();

private:
    void Form_Load();
};

}  // namespace ct
