// frmBeschreibungÄndern: the small dialog that changes the description of a
// disc, a folder or a file. Start::EditTarget says which caller opened it
// ("CD", "Ordner", "Datei" from the main window, "Suchen" from the search
// window); the text comes from that caller's box and goes back into it once
// the catalogue holds it.
#pragma once

#include <QDialog>
#include <QString>
#include <string>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace ct {

// What a caller's selection names: the catalogue's label and the record.
struct DescriptionTarget {
    bool ok = false;      // false: nothing that can be edited is chosen
    std::string label;
    bool isHeader = false;  // the disc itself
    std::string path;       // TargetPath of a folder or file
};

// The target of the caller Start::EditTarget names, from its lists as they
// stand. A disc hit of the search names nothing.
DescriptionTarget CurrentDescriptionTarget();

class frmBeschreibungÄndern : public QDialog {
public:
    explicit frmBeschreibungÄndern(QWidget* owner = nullptr);

    QLabel* lblNeueBeschreibung;
    QPlainTextEdit* txtNeueBeschreibung;
    QPushButton* cmdÄndern;
    QPushButton* cmdAbbrechen;

    void cmdÄndern_Click();
    void cmdAbbrechen_Click();

private:
    void Form_Load();
};

// What the dialog needs of the search window: its chosen hit, its
// description box, the window itself. Kept apart so the dialog's code reads
// the same whichever window calls it.
namespace SearchLink {
bool ChosenHit(QString& hit);  // false: no hit chosen, or no search window
QString Description();
void SetDescription(const QString& text);
QWidget* Window();
}  // namespace SearchLink

// The caller's description box, by Start::EditTarget.
QString CallerDescription();
void SetCallerDescription(const QString& text);
// The window that opened the dialog, by Start::EditTarget (its owner).
QWidget* CallerWindow();

}  // namespace ct
