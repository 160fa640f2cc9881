// Module Start: the globals every window reads directly, the entry procedure,
// and the few services all windows share (texts, help, the busy pointer).
#pragma once

#include <QString>
#include <cstdint>
#include <string>

class QLabel;
class QWidget;

namespace ct {

class RDDLL;
class frmHaupt;

namespace Start {

// The settings in force (CT.ini lines 1-3) and the state windows share.
extern std::string EditTarget;   // "CD", "Ordner", "Datei" or "Suchen"
extern std::int16_t Language;    // 0 German, 10000 English
extern std::string DriveLetter;  // the add dialog's drive preset (a mount point)
extern std::string DataFolder;   // no trailing separator
extern bool WideLayout;          // desktop at least 1024 x 768

RDDLL& RD();

// Creates frmHaupt (its Form_Load runs), shows it, runs the event loop until
// the last window has closed.
int Main(int argc, char** argv);

}  // namespace Start

// The one main window, or nullptr before it exists / after it has gone.
frmHaupt* MainWindow();

// Text of base id `baseId` in the language in force, read afresh from the
// program folder's CT.rd at each use. Empty when CT.rd lacks it.
QString ResourceText(int baseId);

// Starts the help viewer on `topic` in the language's help file, without
// waiting: "<folder>/folihelp.exe <folder>/CT<n>.fhp, <topic>".
void HilfeZeigen(const QString& topic);
// The command line HilfeZeigen builds, for tests.
std::string HelpCommandLine(const QString& topic);

// The common key handler: F1, with any of Shift/Ctrl/Alt, calls HilfeZeigen
// with ResourceText(topicId); every other key passes, and F1 isn't swallowed.
// One line of setup per dialog.
void InstallHelpKey(QWidget* window, int topicId);

// The screen-wide pointer. Not counted: one Normal() after any number of
// Busy() calls shows the arrow again.
void Busy();
void Normal();

// The hourglass for as long as a handler runs: every way out of it, early
// returns included, shows the arrow again. A handler that asks a question on
// the way calls Normal() first, as before.
class BusyScope {
public:
    BusyScope() { Busy(); }
    ~BusyScope() { Normal(); }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;
};

// From now on every window that is shown lies inside its screen's free area
// as far as its size allows. Main sets it; tests may too.
void KeepWindowsOnScreen();

// The application font the fixed geometry was laid out for; Main sets it, and
// test programs that draw the windows do too. Needs a QApplication.
void UseProgramFont();

// Qt's own texts (Yes/No, the folder chooser) in the language in force:
// loads or drops Qt's German translation. Sprache_Setzen calls it.
void UseQtLanguage();

// `german` or `english` by the language in force: the few sentences the
// windows word themselves (a failure's heading), never a fixed German text.
QString Say(const char* german, const char* english);

// The one way a window reports a failure: a warning titled `title`, with what
// didn't happen (`head`) above why (`reason`, a FailureText in the language in
// force), each said once. The pointer is the arrow again first.
void ReportFailure(QWidget* parent, const QString& title, const QString& head, const QString& reason);

// A caption and the control it heads: the caption becomes the control's
// buddy (its access key moves the focus there) and its text, without the
// access-key mark, the control's accessible name, so that a screen reader
// announces "Discs", "Description". Called after each change of texts.
void Caption(QLabel* caption, QWidget* control);
// The text of base id `baseId` without access-key marks: a window title or a
// message box's title taken from a menu entry.
QString TitleText(int baseId);
// `text` without its access-key marks ("&&" stays a literal ampersand).
QString WithoutAccessKeys(const QString& text);

// twips -> pixels (96 DPI: 15 twips a pixel).
constexpr int Tw(int twips) { return (twips + 7) / 15; }

}  // namespace ct
