// The about window: the one window that isn't modal.
#pragma once

#include <QDialog>

class QLabel;
class QPushButton;

namespace ct {

class frmInfo : public QDialog {
public:
    explicit frmInfo(QWidget* parent = nullptr);

    QLabel* lblTitelzeile;
    QLabel* lblVersion;
    QLabel* lblVon;
    QLabel* lblAutor;
    QLabel* lblCopyright;
    QLabel* lbl[11] = {};  // the control array lbl(1) .. lbl(10); lbl[0] is unused
    QPushButton* cmdOK;

    // The handlers of the control array; indices other than 1 and 2 do nothing.
    void lbl_Click(int Index);
    void lbl_MouseDown(int Index);
    void lbl_MouseUp(int Index);

    // What the two links open.
    static QString WebTarget();
    static QString MailTarget();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Form_Load();
    void SetLinkColour(int index, const QColor& colour);
};

// The one about window, or nullptr.
frmInfo* InfoWindow();

}  // namespace ct
