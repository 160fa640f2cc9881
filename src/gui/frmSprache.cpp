#include "gui/frmSprache.h"

#include <QKeyEvent>
#include <QLineEdit>

#include "gui/layout.h"
#include "gui/Start.h"
#include "gui/frmHaupt.h"

namespace ct {

frmSprache::frmSprache(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint |
                          Qt::MSWindowsFixedSizeDialogHint) {
    setWindowTitle(QStringLiteral("Cartulon"));
    setFixedSize(Tw(4680), Tw(2175));

    const QString texts[2] = {QStringLiteral("Wählen Sie Ihre Sprache:"), QStringLiteral("Choose your language:")};
    for (int i = 0; i < 2; ++i) {
        lbl[i] = new QLabel(texts[i], this);
        Place(lbl[i], 240, 240 + 240 * i, 4215, 255);
        lbl[i]->setAlignment(Qt::AlignCenter);
    }

    cboSprache = new QComboBox(this);
    Place(cboSprache, 1200, 960, 2295, 315);
    cboSprache->setEditable(true);
    cboSprache->setInsertPolicy(QComboBox::NoInsert);
    cboSprache->setCompleter(nullptr);
    cboSprache->addItems({QStringLiteral("Deutsch"), QStringLiteral("English")});
    cboSprache->setCurrentIndex(-1);

    cmdOK = Button(this, 1560, 1560, 1515, 375);
    cmdOK->setText(QStringLiteral("OK"));
    Bold(cmdOK);
    cmdOK->setDefault(true);
    connect(cmdOK, &QPushButton::clicked, this, [this] { cmdOK_Click(); });
}

void frmSprache::Form_Load() {
    if (frmHaupt* haupt = MainWindow()) setWindowIcon(haupt->windowIcon());
}

void frmSprache::cmdOK_Click() {
    // Only a chosen entry counts; a text typed over it that names no entry,
    // or no choice at all, gives German, the first entry.
    int index = cboSprache->currentIndex();
    if (index < 0 || cboSprache->currentText() != cboSprache->itemText(index)) index = 0;
    Start::Language = static_cast<std::int16_t>(QString::number(index).append(QStringLiteral("0000")).toInt());
    if (frmHaupt* haupt = MainWindow()) haupt->INI_Speichern();
    accept();
}

void frmSprache::keyPressEvent(QKeyEvent* event) {
    // OK is also the cancel button: Esc stores the language like Enter does.
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        cmdOK_Click();
        return;
    }
    QDialog::keyPressEvent(event);
}

}  // namespace ct
