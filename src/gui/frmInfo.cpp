#include "gui/frmInfo.h"

#include <QEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QUrl>

#include "core/rddll.h"
#include "gui/layout.h"
#include "gui/Start.h"
#include "gui/appicon.h"
#include "gui/seams.h"
#include "platform/system.h"
#include "gui/windows.h"

namespace ct {

namespace {

QPointer<frmInfo> g_frmInfo;

const QColor kLinkBlue(0, 0, 255);
const QColor kLinkPressed(128, 0, 0);

// Pure blue and dark red read on a light window only; on a dark one (a dark
// desktop palette) the palette's own link colours take their place.
QColor LinkColour(const QWidget* window, bool pressed) {
    const QPalette& pal = window->palette();
    if (pal.color(QPalette::Window).lightness() >= 128) return pressed ? kLinkPressed : kLinkBlue;
    return pal.color(pressed ? QPalette::LinkVisited : QPalette::Link);
}

QLabel* CentredLabel(QWidget* parent, int top, int height) {
    auto* l = new QLabel(parent);
    Place(l, 240, top, 4935, height);
    l->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    l->setWordWrap(true);
    return l;
}

}  // namespace

frmInfo* InfoWindow() { return g_frmInfo; }

// The project has no web site or mail address of its own. The first link
// opens the program folder, where the settings, texts and catalogues lie; the
// mail link opens the user's mail program with the version as the subject.
QString frmInfo::WebTarget() {
    return QUrl::fromLocalFile(QString::fromStdString(ProgramFolder())).toString();
}

QString frmInfo::MailTarget() {
    return QStringLiteral("mailto:?Subject=Cartulon v") + QString::fromStdString(RDDLL::Version());
}

frmInfo::frmInfo(QWidget* parent) : QDialog(parent) {
    g_frmInfo = this;
    setAttribute(Qt::WA_DeleteOnClose);
    setModal(false);
    setWindowFlags(Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint | Qt::WindowTitleHint |
                   Qt::WindowCloseButtonHint);
    setFixedSize(Tw(5415), Tw(7455));

    lblTitelzeile = CentredLabel(this, 240, 495);
    QFont title = lblTitelzeile->font();
    // The program font is set in pixels (the geometry is), so scale whichever
    // size the font has.
    if (title.pixelSize() > 0)
        title.setPixelSize(title.pixelSize() * 2);
    else
        title.setPointSizeF(title.pointSizeF() * 2);
    title.setBold(true);
    lblTitelzeile->setFont(title);
    lblTitelzeile->setText(QStringLiteral("Cartulon"));

    lblVersion = CentredLabel(this, 720, 255);
    lblVersion->setText(QStringLiteral("Version "));
    lblVon = CentredLabel(this, 960, 255);
    lblAutor = CentredLabel(this, 1200, 375);
    lblAutor->setText(QStringLiteral("The Cartulon project"));
    lblCopyright = CentredLabel(this, 1560, 375);
    lblCopyright->setText(QStringLiteral("© 2026 The Cartulon project"));

    const int tops[11] = {0, 2040, 2400, 2760, 3000, 3240, 3480, 3720, 4080, 4920, 5760};
    const int heights[11] = {0, 375, 375, 255, 255, 255, 255, 255, 615, 615, 855};
    for (int i = 1; i <= 10; ++i) {
        lbl[i] = CentredLabel(this, tops[i], heights[i]);
        lbl[i]->installEventFilter(this);
    }
    // Facts about how this program is made, where a maker's postal address
    // would stand.
    lbl[4]->setText(QStringLiteral("Qt ") + QString::fromLatin1(qVersion()));
    lbl[5]->setText(QStringLiteral("C++20"));
    lbl[6]->setText(QStringLiteral("GNU/Linux"));
    lbl[7]->setText(QString());

    for (int i : {1, 2}) {
        QFont f = lbl[i]->font();
        f.setUnderline(true);
        lbl[i]->setFont(f);
        lbl[i]->setCursor(Qt::PointingHandCursor);
        SetLinkColour(i, LinkColour(this, false));
    }
    // lbl(2) takes its pointer from lbl(1), as it was designed.
    lbl[2]->setCursor(lbl[1]->cursor());

    cmdOK = Button(this, 1800, 6720, 1755, 495);
    cmdOK->setDefault(true);
    Bold(cmdOK);
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::close);

    InstallHelpKey(this, 10023);
    Form_Load();
}

void frmInfo::Form_Load() {
    setWindowIcon(AppIcon());
    setWindowTitle(ResourceText(10023));
    lblVon->setText(ResourceText(10048));
    lbl[3]->setText(ResourceText(10049));
    lbl[8]->setText(ResourceText(10050));
    lbl[9]->setText(ResourceText(10051));
    lbl[10]->setText(ResourceText(10052));
    cmdOK->setText(ResourceText(10047));
    lblVersion->setText(lblVersion->text() + QStringLiteral("%1.%2.%3")
                                                 .arg(CARTULON_VERSION_MAJOR)
                                                 .arg(CARTULON_VERSION_MINOR)
                                                 .arg(CARTULON_VERSION_PATCH));
    lbl[1]->setText(QString::fromStdString(ProgramFolder()));
    lbl[2]->setText(QStringLiteral("E-Mail: Cartulon v") + QString::fromStdString(RDDLL::Version()));
}

void frmInfo::SetLinkColour(int index, const QColor& colour) {
    QPalette pal = lbl[index]->palette();
    pal.setColor(QPalette::WindowText, colour);
    lbl[index]->setPalette(pal);
}

void frmInfo::lbl_Click(int Index) {
    if (Index == 1) seams::Open(WebTarget().toStdString());
    else if (Index == 2) seams::Open(MailTarget().toStdString());
}

void frmInfo::lbl_MouseDown(int Index) {
    if (Index == 1 || Index == 2) SetLinkColour(Index, LinkColour(this, true));
}

void frmInfo::lbl_MouseUp(int Index) {
    if (Index == 1 || Index == 2) SetLinkColour(Index, LinkColour(this, false));
}

bool frmInfo::eventFilter(QObject* watched, QEvent* event) {
    for (int i = 1; i <= 10; ++i) {
        if (watched != lbl[i]) continue;
        if (event->type() == QEvent::MouseButtonPress) {
            lbl_MouseDown(i);
        } else if (event->type() == QEvent::MouseButtonRelease) {
            lbl_MouseUp(i);
            const auto* me = static_cast<QMouseEvent*>(event);
            if (lbl[i]->rect().contains(me->position().toPoint())) lbl_Click(i);
        }
        break;
    }
    return QDialog::eventFilter(watched, event);
}

// Not modal, and there is only ever one: a second use brings it to the front.
void ShowInfo() {
    frmInfo* info = InfoWindow();
    // No parent: it may outlive the main window, and the process then lives on
    // until it is closed too.
    if (!info) info = new frmInfo(nullptr);
    info->show();
    info->raise();
    info->activateWindow();
}

}  // namespace ct
