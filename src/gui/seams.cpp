#include "gui/seams.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>

#include "core/fileops.h"
#include "platform/system.h"

namespace ct::seams {

namespace {
MessageBoxFn& messageBoxFn() { static MessageBoxFn fn; return fn; }
LauncherFn& launcherFn() { static LauncherFn fn; return fn; }
OpenFn& openFn() { static OpenFn fn; return fn; }
QSize& desktopSize() { static QSize size; return size; }
FolderChooserFn& folderChooserFn() { static FolderChooserFn fn; return fn; }
}  // namespace

void SetMessageBox(MessageBoxFn fn) { messageBoxFn() = std::move(fn); }

QMessageBox::StandardButton MessageBox(QWidget* parent, const QString& title, const QString& text,
                                       QMessageBox::StandardButtons buttons,
                                       QMessageBox::StandardButton defaultButton,
                                       QMessageBox::Icon icon) {
    // A box always shows the arrow, over a wait pointer its caller may still
    // have up (a question asked, or a failure told, in the middle of work).
    QGuiApplication::setOverrideCursor(Qt::ArrowCursor);
    const struct Restore {
        ~Restore() { QGuiApplication::restoreOverrideCursor(); }
    } restore;
    if (messageBoxFn()) return messageBoxFn()(parent, title, text, buttons, defaultButton, icon);
    QMessageBox box(icon, title, text, buttons, parent);
    if (defaultButton != QMessageBox::NoButton) box.setDefaultButton(defaultButton);
    if (parent) box.setWindowIcon(parent->window()->windowIcon());
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

void SetHelpLauncher(LauncherFn fn) { launcherFn() = std::move(fn); }
void LaunchHelp(const std::string& commandLine) {
    if (launcherFn()) {
        launcherFn()(commandLine);
        return;
    }
    // A viewer that can't be started leaves the program as it was.
    ct::StartCommandLine(commandLine);
}

void SetOpenTarget(OpenFn fn) { openFn() = std::move(fn); }
void Open(const std::string& target) {
    if (openFn()) {
        openFn()(target);
        return;
    }
    ct::OpenTarget(target);
}

void SetDesktopSize(QSize size) { desktopSize() = size; }
QSize DesktopSize() {
    if (desktopSize().isValid()) return desktopSize();
    if (QScreen* screen = QGuiApplication::primaryScreen()) return screen->geometry().size();
    return {};
}

void SetFolderChooser(FolderChooserFn fn) { folderChooserFn() = std::move(fn); }
namespace {
// Picks a disc image like any file, and a folder by choosing it and pressing
// the button (a double click still opens it), since Qt's own modes take one
// kind only.
class FolderOrFileDialog : public QFileDialog {
public:
    using QFileDialog::QFileDialog;
    QString chosen;
    void accept() override {
        const QStringList selected = selectedFiles();
        if (!selected.isEmpty() && QFileInfo(selected.first()).isDir()) {
            chosen = selected.first();
            done(QDialog::Accepted);
            return;
        }
        QFileDialog::accept();
        if (result() == QDialog::Accepted && !selectedFiles().isEmpty()) chosen = selectedFiles().first();
    }
};
}  // namespace

QString ChooseFolder(QWidget* parent, const QString& start) {
    if (folderChooserFn()) return folderChooserFn()(parent, start);
    // Opens on the folder around the current entry with that entry chosen, so
    // that the button takes it at once and a folder beside it is one click away.
    const QFileInfo current(start);
    FolderOrFileDialog dialog(parent, QString(), current.exists() ? current.absolutePath() : start);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (current.exists()) dialog.selectFile(current.fileName());
    return dialog.exec() == QDialog::Accepted ? dialog.chosen : QString();
}

namespace {
FileOps* g_files = nullptr;
}  // namespace

void SetFiles(FileOps* ops) { g_files = ops; }
FileOps& Files() { return g_files ? *g_files : SystemFileOps(); }

}  // namespace ct::seams
