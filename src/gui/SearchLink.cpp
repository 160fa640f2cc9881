#include <QTextEdit>

#include "gui/ListBox.h"
#include "gui/frmBeschreibungAendern.h"
#include "gui/frmSuchen.h"

namespace ct::SearchLink {

bool ChosenHit(QString& hit) {
    frmSuchen* search = SearchWindow();
    if (!search || search->lstDateien->ListIndex() < 0) return false;
    hit = search->lstDateien->Text();
    return true;
}

QString Description() {
    frmSuchen* search = SearchWindow();
    return search ? search->txtBeschreibungText->toPlainText() : QString();
}

void SetDescription(const QString& text) {
    if (frmSuchen* search = SearchWindow()) search->txtBeschreibungText->setPlainText(text);
}

QWidget* Window() { return SearchWindow(); }

}  // namespace ct::SearchLink
