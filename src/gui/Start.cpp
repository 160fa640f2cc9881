#include "gui/Start.h"

#include <QApplication>
#include <QCursor>
#include <QFont>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QLabel>
#include <QLibraryInfo>
#include <QTranslator>
#include <QPointer>
#include <QScreen>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <unistd.h>
#include <QWidget>

#include "core/helpfile.h"
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

namespace {

// The main window's smallest outer size in device-independent pixels: the
// standard layout's client area, a menu bar and a window manager's title bar.
constexpr int kNeedWidth = Tw(11880) + 8;
constexpr int kNeedHeight = Tw(7185) + 24 + 32;

// A scale (QT_SCALE_FACTOR=2 on a 1280 x 1024 screen) under which even the
// standard layout is larger than the desktop leaves a fixed-size window that
// can neither be seen whole nor moved into view. The layout's size is fixed,
// so the scale gives way: the program starts once more, at the largest scale
// under which the standard window fits, but never below one screen pixel to
// a pixel. Returns only when no restart is needed or possible.
void RestartToFit(char** argv) {
    QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen || qEnvironmentVariableIsSet("CARTULON_SCALE_FITTED")) return;
    const double ratio = screen->devicePixelRatio();
    const QSize area = screen->availableGeometry().size();
    if (ratio <= 1.0 || (area.width() >= kNeedWidth && area.height() >= kNeedHeight)) return;
    const double shrink = std::min(double(area.width()) / kNeedWidth, double(area.height()) / kNeedHeight);
    const double current = qEnvironmentVariableIsSet("QT_SCALE_FACTOR")
                               ? qEnvironmentVariable("QT_SCALE_FACTOR").toDouble()
                               : 1.0;
    if (current <= 0) return;
    double factor = std::floor(current * shrink * 20.0) / 20.0;  // steps of 0.05
    factor = std::max(factor, current / ratio);
    if (factor >= current) return;
    qputenv("QT_SCALE_FACTOR", QByteArray::number(factor));
    qputenv("CARTULON_SCALE_FITTED", "1");
    ::execv("/proc/self/exe", argv);  // on failure: go on at the scale given
}

// Every window opens inside the desktop's free area: a dialog centred on its
// owner near a screen edge, or the main window, would otherwise hang over it.
class KeepOnScreen : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Show) return false;
        auto* w = qobject_cast<QWidget*>(watched);
        if (!w || !w->isWindow() || w->windowType() == Qt::Popup || w->windowType() == Qt::ToolTip) return false;
        Clamp(w);
        // The frame's own size is known only once the window stands.
        QTimer::singleShot(0, w, [w] { Clamp(w); });
        return false;
    }
    static void Clamp(QWidget* w) {
        QScreen* screen = w->screen();
        if (!screen) return;
        const QRect area = screen->availableGeometry();
        const QRect frame = w->frameGeometry();
        QPoint to = frame.topLeft();
        to.setX(std::max(area.left(), std::min(to.x(), area.right() + 1 - frame.width())));
        to.setY(std::max(area.top(), std::min(to.y(), area.bottom() + 1 - frame.height())));
        if (to != frame.topLeft()) w->move(w->pos() + (to - frame.topLeft()));
    }
};

}  // namespace

int Main(int argc, char** argv) {
    QApplication app(argc, argv);
    RestartToFit(argv);
    KeepWindowsOnScreen();
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

void KeepWindowsOnScreen() {
    static QPointer<QObject> keeper;
    if (!qApp || keeper) return;
    keeper = new Start::KeepOnScreen(qApp);
    qApp->installEventFilter(keeper);
}

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
    // A desktop theme (qt6ct, a desktop's own) sets its font once the event
    // loop runs, and again whenever the user changes it; the fixed geometry
    // holds only in ours, so ours is put back each time.
    class KeepProgramFont : public QObject {
    public:
        explicit KeepProgramFont(const QFont& font) : QObject(qApp), font_(font) {}
        bool eventFilter(QObject* watched, QEvent* event) override {
            if (watched == qApp && event->type() == QEvent::ApplicationFontChange &&
                QApplication::font() != font_)
                QApplication::setFont(font_);
            return false;
        }
    private:
        QFont font_;
    };
    static QPointer<KeepProgramFont> keeper;
    delete keeper;
    keeper = new KeepProgramFont(font);
    qApp->installEventFilter(keeper);
}

void UseQtLanguage() {
    // One translator for the whole run, swapped in and out: Qt's dialogs and
    // standard buttons take it at their next showing.
    static QTranslator* qtbase = nullptr;
    if (!qApp) return;
    if (qtbase) {
        QCoreApplication::removeTranslator(qtbase);
        delete qtbase;
        qtbase = nullptr;
    }
    if (Start::Language != 0) return;  // Qt speaks English by itself
    auto* translator = new QTranslator;
    // The copy in the program folder first, so a portable folder speaks German
    // on a machine without Qt's translations; then the system's.
    const QString name = QStringLiteral("qtbase_de");
    if (translator->load(name, QString::fromStdString(ct::ProgramFolder())) ||
        translator->load(name, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(translator);
        qtbase = translator;
    } else {
        delete translator;
    }
}

QString WithoutAccessKeys(const QString& text) {
    return QString::fromStdString(ct::DropAccessKeys(text.toStdString()));
}

void Caption(QLabel* caption, QWidget* control) {
    caption->setBuddy(control);
    QString name = WithoutAccessKeys(caption->text()).trimmed();
    if (name.endsWith(QLatin1Char(':'))) name.chop(1);
    control->setAccessibleName(name);
}

QString Say(const char* german, const char* english) {
    return QString::fromUtf8(Start::Language == 0 ? german : english);
}

void ReportFailure(QWidget* parent, const QString& title, const QString& head, const QString& reason) {
    Normal();  // the work that failed has ended: the arrow stays after the box too
    seams::MessageBox(parent, title, reason.isEmpty() ? head : head + QStringLiteral("\n\n") + reason,
                      QMessageBox::Ok, QMessageBox::Ok, QMessageBox::Warning);
}

QString TitleText(int baseId) { return WithoutAccessKeys(ResourceText(baseId)); }

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
