#include "gui/frmBeschreibungAendern.h"

#include <QKeyEvent>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTextEdit>

#include "core/editing.h"
#include "core/textrules.h"
#include "gui/layout.h"
#include "gui/Start.h"
#include "gui/appicon.h"
#include "gui/frmHaupt.h"
#include "gui/seams.h"
#include "platform/system.h"
#include "gui/windows.h"

namespace ct {

namespace {

std::string S(const QString& text) { return text.toStdString(); }

// The description is one line: Return stores it, as the default button of the
// dialog would take the key from a one-line box. A pasted line break stays and
// becomes a blank when stored.
class DescriptionBox : public QPlainTextEdit {
public:
    DescriptionBox(QWidget* parent, QPushButton*& store) : QPlainTextEdit(parent), store_(store) {}

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if ((event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) &&
            !(event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier)) && store_) {
            store_->click();
            return;
        }
        QPlainTextEdit::keyPressEvent(event);
    }

private:
    QPushButton*& store_;
};

QTextEdit* MainBox() {
    frmHaupt* main = MainWindow();
    if (!main) return nullptr;
    if (Start::EditTarget == "CD") return main->txtBeschreibungC;
    if (Start::EditTarget == "Ordner") return main->txtBeschreibungO;
    if (Start::EditTarget == "Datei") return main->txtBeschreibungD;
    return nullptr;
}

}  // namespace

DescriptionTarget CurrentDescriptionTarget() {
    DescriptionTarget t;
    if (Start::EditTarget == "Suchen") {
        QString hit;
        if (!SearchLink::ChosenHit(hit)) return t;
        t.ok = TargetFromHit(S(hit), t.label, t.path);
        return t;
    }
    frmHaupt* main = MainWindow();
    if (!main || main->lstDaten->ListIndex() < 0) return t;
    t.label = S(main->lstDaten->Text());
    if (Start::EditTarget == "CD") {
        t.isHeader = true;
        t.ok = true;
    } else if (Start::EditTarget == "Ordner") {
        t.path = S(main->lstOrdner->Text());
        t.ok = main->lstOrdner->ListIndex() >= 0 && t.path != ".";  // the root has no line
    } else if (Start::EditTarget == "Datei") {
        const std::string folder = S(main->lstOrdner->Text());
        t.path = (folder == "." ? std::string() : folder) + "\\" + S(main->lstDateien->Text());
        t.ok = main->lstOrdner->ListIndex() >= 0 && main->lstDateien->ListIndex() >= 0;
    }
    return t;
}

QString CallerDescription() {
    if (Start::EditTarget == "Suchen") {
        return SearchLink::Description();
    }
    QTextEdit* box = MainBox();
    return box ? box->toPlainText() : QString();
}

void SetCallerDescription(const QString& text) {
    if (Start::EditTarget == "Suchen") {
        SearchLink::SetDescription(text);
        return;
    }
    if (QTextEdit* box = MainBox()) box->setPlainText(text);
}

QWidget* CallerWindow() {
    if (Start::EditTarget == "Suchen") return SearchLink::Window();
    return MainWindow();
}

frmBeschreibungÄndern::frmBeschreibungÄndern(QWidget* owner) : QDialog(owner) {
    setWindowFlags(Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint | Qt::WindowTitleHint |
                   Qt::WindowCloseButtonHint);
    setModal(true);
    setFixedSize(Tw(3510), Tw(1950));

    lblNeueBeschreibung = new QLabel(this);
    Place(lblNeueBeschreibung, 240, 240, 3015, 255);

    cmdÄndern = nullptr;
    txtNeueBeschreibung = new DescriptionBox(this, cmdÄndern);
    Place(txtNeueBeschreibung, 240, 480, 3015, 600);
    txtNeueBeschreibung->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    txtNeueBeschreibung->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    txtNeueBeschreibung->setTabChangesFocus(true);

    cmdÄndern = Button(this, 240, 1320, 1095, 375);
    cmdÄndern->setDefault(true);
    Bold(cmdÄndern);

    cmdAbbrechen = Button(this, 2160, 1320, 1095, 375);

    setTabOrder(txtNeueBeschreibung, cmdÄndern);
    setTabOrder(cmdÄndern, cmdAbbrechen);
    connect(cmdÄndern, &QPushButton::clicked, this, [this] { cmdÄndern_Click(); });
    connect(cmdAbbrechen, &QPushButton::clicked, this, [this] { cmdAbbrechen_Click(); });
    InstallHelpKey(this, 10001);
    Form_Load();
}

void frmBeschreibungÄndern::Form_Load() {
    setWindowIcon(AppIcon());
    setWindowTitle(ResourceText(10001));
    lblNeueBeschreibung->setText(ResourceText(10002));
    Caption(lblNeueBeschreibung, txtNeueBeschreibung);
    cmdÄndern->setText(ResourceText(10003));
    cmdAbbrechen->setText(ResourceText(10004));
    txtNeueBeschreibung->setPlainText(CallerDescription());
    txtNeueBeschreibung->selectAll();
    txtNeueBeschreibung->setFocus();
}

void frmBeschreibungÄndern::cmdÄndern_Click() {
    const QString text = QString::fromStdString(NormaliseDescription(S(txtNeueBeschreibung->toPlainText())));
    txtNeueBeschreibung->setPlainText(text);

    const DescriptionTarget target = CurrentDescriptionTarget();
    QString error = target.ok ? QString()
                              : Say("Es ist nichts gewählt, dessen Beschreibung sich ändern ließe.",
                                    "Nothing is chosen whose description could change.");
    if (target.ok) {
        const Failure failure = DescriptionRewrite(seams::Files(), Start::DataFolder, target.label,
                                                   target.isHeader, target.path, S(text));
        error = QString::fromStdString(FailureText(failure, Start::Language));
    }
    if (!error.isEmpty()) {
        // The caller's box keeps the text the catalogue holds, and the dialog
        // stays open with the new one, so nothing typed is lost.
        ReportFailure(this, windowTitle(),
                      Say("Die Beschreibung wurde nicht gespeichert.", "The description was not stored."), error);
        return;
    }
    SetCallerDescription(text);
    accept();
}

void frmBeschreibungÄndern::cmdAbbrechen_Click() { reject(); }

void ShowBeschreibungAendern() {
    // A disc hit of the search (or no hit at all) names no record that the
    // search window could change: the help says why and where a disc's
    // description is changed instead. Nothing changes.
    if (!CurrentDescriptionTarget().ok) {
        if (Start::EditTarget == "Suchen")
            HilfeZeigen(Say("Kein Ordner und keine Datei gewählt", "No folder or file chosen"));
        return;
    }
    frmBeschreibungÄndern dialog(CallerWindow());
    dialog.exec();
}

}  // namespace ct
