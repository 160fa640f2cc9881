// frmSprache: the first-run language window. No language is known yet, so its
// texts stand here in both languages at once rather than in CT.rd.
#pragma once

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QPushButton>

namespace ct {

class frmSprache : public QDialog {
public:
    explicit frmSprache(QWidget* parent = nullptr);

    // Takes the main window's icon; nothing else.
    void Form_Load();
    // Stores the chosen language and closes the window. Enter and Esc both
    // come here; the close box closes without it.
    void cmdOK_Click();

    QLabel* lbl[2] = {nullptr, nullptr};
    QComboBox* cboSprache = nullptr;
    QPushButton* cmdOK = nullptr;

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace ct
