// The version history: the language's Version<n>.txt in a read-only box.
#pragma once

#include <QDialog>

class QPlainTextEdit;
class QPushButton;

namespace ct {

class frmHistorie : public QDialog {
public:
    explicit frmHistorie(QWidget* parent = nullptr);

    QPlainTextEdit* txtHistorie;
    QPushButton* cmdOK;

private:
    void Form_Load();
};

// "<program folder>/Version<n>.txt" for the language in force.
QString HistoryFilePath();

}  // namespace ct
