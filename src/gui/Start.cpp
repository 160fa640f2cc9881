#include "gui/Start.h"

#include <QApplication>
#include <QCursor>
#include <QFont>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QPointer>
#include <QWidget>

#include "core/rddll.h"
#include "core/settings.h"
#include "gui/frmHaupt.h"
#include "gui/seams.h"
#include "platform/system.h"

namespace ct {

namespace Start {

std::string EditTarget;
std::int16_t Language = 0;
std::string DriveLetter = "C";
// Set from the program folder when the program starts (no static order to rely on).
std::string DataFolder;
bool WideLayout = false;

RDDLL& RD() {
    static RDDLL rd;
    return rd;
}

int Main(int argc, char** argv) {
    QApplication app(argc, argv);
    DataFolder = ct::DefaultDataFolder(ct::ProgramFolder());
    app.setApplicationName(QStringLiteral("Cartulon"));
    UseProgramFont();

    auto* haupt = new frmHaupt;
    haupt->setAttribute(Qt::WA_DeleteOnClose);
    haupt->Form_Load();
    haupt->show();
    return app.exec();
}

}  // namespace Start

void UseProgramFont() {
    // The window geometry is fixed in twips at 15 to the pixel, so the font is
    // fixed in pixels too: 11 px is 8 points at 96 dpi. An Arial-wide face keeps
    // a date or a long German caption inside its column; DejaVu Sans is wider
    // and comes last.
    QString family = QStringLiteral("DejaVu Sans");
    for (const char* candidate : {"Liberation Sans", "Arial", "Nimbus Sans", "Helvetica"})
        if (QFontDatabase::hasFamily(QString::fromLatin1(candidate))) {
            family = QString::fromLatin1(candidate);
            break;
        }
    QFont font(family);
    font.setPixelSize(11);
    font.setStyleHint(QFont::SansSerif);
    QApplication::setFont(font);
}

QString ResourceText(int baseId) {
    return QString::fromStdString(ct::ResourceText(ct::ProgramFolder(), Start::Language, baseId));
}

std::string HelpCommandLine(const QString& topic) {
    const std::string folder = ct::ProgramFolder();
    return folder + "/folihelp.exe " + folder + "/CT" + std::to_string(Start::Language / 10000) + ".fhp, " +
           topic.toStdString();
}

void HilfeZeigen(const QString& topic) { seams::LaunchHelp(HelpCommandLine(topic)); }

namespace {

// Sits on the application, so it sees a key before the focused control does.
// A key that no control takes travels up to the window, and the filter sees it
// again on each step; those later steps are the same key press and are passed.
class HelpKeyFilter : public QObject {
public:
    HelpKeyFilter(QWidget* window, int topicId) : QObject(window), window_(window), topicId_(topicId) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        // A release ends the press: the next press is new even where it
        // reuses the address of the last one.
        if (event->type() == QEvent::KeyRelease) lastEvent_ = nullptr;
        if (event->type() != QEvent::KeyPress) return false;
        if (static_cast<QKeyEvent*>(event)->key() != Qt::Key_F1) return false;
        auto* widget = qobject_cast<QWidget*>(watched);
        if (!widget || !window_ || widget->window() != window_) return false;
        if (event == lastEvent_ && lastReceiver_ && widget->isAncestorOf(lastReceiver_)) {
            lastReceiver_ = widget;
            return false;
        }
        lastEvent_ = event;
        lastReceiver_ = widget;
        HilfeZeigen(ResourceText(topicId_));
        return false;
    }

private:
    QPointer<QWidget> window_;
    int topicId_;
    const QEvent* lastEvent_ = nullptr;
    QPointer<QWidget> lastReceiver_;
};

}  // namespace

void InstallHelpKey(QWidget* window, int topicId) {
    if (!window || !qApp) return;
    qApp->installEventFilter(new HelpKeyFilter(window, topicId));
}

void Busy() {
    if (!QGuiApplication::overrideCursor()) QGuiApplication::setOverrideCursor(QCursor(Qt::WaitCursor));
}

void Normal() {
    while (QGuiApplication::overrideCursor()) QGuiApplication::restoreOverrideCursor();
}

}  // namespace ct
