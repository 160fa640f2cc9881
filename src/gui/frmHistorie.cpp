#include "gui/frmHistorie.h"

#include <QPlainTextEdit>
#include <QPushButton>

#include "core/catalogue.h"
#include "gui/layout.h"
#include "gui/Start.h"
#include "gui/appicon.h"
#include "platform/system.h"
#include "gui/frmHaupt.h"
#include "gui/windows.h"

namespace ct {

QString HistoryFilePath() {
    return QString::fromStdString(ProgramFolder()) + QStringLiteral("/Version") +
           QString::number(Start::Language / 10000) + QStringLiteral(".txt");
}

frmHistorie::frmHistorie(QWidget* parent) : QDialog(parent) {
    setWindowFlags(Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint | Qt::WindowTitleHint |
                   Qt::WindowCloseButtonHint);
    setFixedSize(Tw(7335), Tw(7485));

    txtHistorie = new QPlainTextEdit(this);
    Place(txtHistorie, 240, 240, 6855, 6255);
    txtHistorie->setReadOnly(true);
    txtHistorie->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    txtHistorie->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    // A history to read, not to type in: the box takes the button colour.
    QPalette pal = txtHistorie->palette();
    pal.setColor(QPalette::Base, pal.color(QPalette::Button));
    txtHistorie->setPalette(pal);

    cmdOK = Button(this, 2880, 6720, 1635, 495);
    cmdOK->setDefault(true);
    Bold(cmdOK);
    // Default and cancel button at once: Enter and Esc both close.
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);

    setTabOrder(txtHistorie, cmdOK);
    InstallHelpKey(this, 10022);
    Form_Load();
}

void frmHistorie::Form_Load() {
    setWindowIcon(AppIcon());
    setWindowTitle(ResourceText(10022));
    cmdOK->setText(ResourceText(10047));

    // Line by line, each followed by a line end, so an empty line in the file
    // stays an empty line. A missing file gives an empty box.
    QString text;
    LineReader reader(HistoryFilePath().toStdString());
    std::string line;
    while (reader.Next(line)) text += QString::fromStdString(line) + QLatin1Char('\n');
    txtHistorie->setPlainText(text);
    cmdOK->setFocus();
}

void ShowHistorie() {
    frmHistorie dialog(MainWindow());
    dialog.exec();
}

}  // namespace ct
