// The places where the program touches the desktop, each replaceable by a test
// so that no test blocks on a message box, starts a help viewer or depends on
// the screen it runs on.
#pragma once

#include <QMessageBox>
#include <QSize>
#include <QString>
#include <functional>
#include <string>

namespace ct {
class FileOps;
}

namespace ct::seams {

// A message box with the given buttons; returns the button pressed.
using MessageBoxFn = std::function<QMessageBox::StandardButton(
    QWidget* parent, const QString& title, const QString& text, QMessageBox::StandardButtons buttons,
    QMessageBox::StandardButton defaultButton, QMessageBox::Icon icon)>;
void SetMessageBox(MessageBoxFn fn);  // empty: the real QMessageBox
QMessageBox::StandardButton MessageBox(QWidget* parent, const QString& title, const QString& text,
                                       QMessageBox::StandardButtons buttons,
                                       QMessageBox::StandardButton defaultButton = QMessageBox::NoButton,
                                       QMessageBox::Icon icon = QMessageBox::NoIcon);

// Starts a command line (the help viewer). Default: ct::StartCommandLine.
using LauncherFn = std::function<void(const std::string& commandLine)>;
void SetHelpLauncher(LauncherFn fn);
void LaunchHelp(const std::string& commandLine);

// Opens a web or mail target. Default: ct::OpenTarget.
using OpenFn = std::function<void(const std::string& target)>;
void SetOpenTarget(OpenFn fn);
void Open(const std::string& target);

// The desktop size that chooses the layout. Default: the primary screen.
void SetDesktopSize(QSize size);  // an invalid size: back to the real screen
QSize DesktopSize();

// The file operations behind every window that changes a file (add, re-read,
// descriptions, labels, delete, options, settings). Default: the machine's.
// Tests put a failing device in to see that a window says what failed and
// loses nothing.
void SetFiles(FileOps* ops);  // nullptr: back to the machine's
FileOps& Files();

// Asks for a folder (the add dialog's "…" entry). Default: QFileDialog.
using FolderChooserFn = std::function<QString(QWidget* parent, const QString& start)>;
void SetFolderChooser(FolderChooserFn fn);
QString ChooseFolder(QWidget* parent, const QString& start);

}  // namespace ct::seams
