// A throw-away program folder for the window tests: a copy of the built CT.rd,
// a CT.ini and an empty Daten folder, with the desktop seams replaced so that
// no test blocks on a message box, starts a help viewer or depends on the
// screen it runs on.
#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QTimer>
#include <QSize>
#include <QString>
#include <QTemporaryDir>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace ct {
class frmHaupt;
class ListBox;
}

namespace ct::test {

struct MessageCall {
    QString title, text;
    QMessageBox::StandardButtons buttons;
    QMessageBox::StandardButton defaultButton;
    QMessageBox::Icon icon;
    bool waitPointer = false;  // the wait pointer showed while the box was up
};

class GuiFixture {
public:
    // `stageDir`: the staged program folder of the build (CARTULON_STAGE_DIR).
    explicit GuiFixture(const std::string& stageDir);
    ~GuiFixture();
    GuiFixture(const GuiFixture&) = delete;
    GuiFixture& operator=(const GuiFixture&) = delete;

    bool IsValid() const { return dir_.isValid() && hasResources_; }
    std::string Folder() const;      // the program folder
    std::string DataFolder() const;  // <folder>/Daten

    // CT.ini with the three lines, CR LF each.
    void WriteIni(const std::string& line1, const std::string& line2 = "C", const std::string& line3 = {});
    void WriteIniRaw(const std::string& bytes);
    std::string ReadIni() const;
    // Writes `<DataFolder>/<sub>/<label>.idx`; `lines` joined by CR LF, one
    // after every line.
    std::string WriteCatalogue(const std::string& label, const std::vector<std::string>& lines,
                               const std::string& sub = {});
    void WriteFileRaw(const std::string& path, const std::string& bytes);

    // Resets the globals of Start, creates frmHaupt and runs its Form_Load.
    std::unique_ptr<frmHaupt> StartMain();

    // What the seams saw.
    std::vector<std::string> helpCalls;
    std::vector<MessageCall> messages;
    std::deque<QMessageBox::StandardButton> answers;  // scripted; empty: the default button
    QSize desktop{1000, 740};

private:
    QTemporaryDir dir_;
    bool hasResources_ = false;
};

// The catalogue of the example disc: Bilder, Bilder\Urlaub, three files.
std::vector<std::string> ExampleCatalogue();

// Items of a list box, in order.
QStringList Items(const ListBox* list);

// Runs `act` on the next modal dialog of type D once it is up (a modal dialog
// runs its own event loop, so the test can't act after the call that opens
// it). Whatever the act leaves open is closed after a while, so a wrong turn
// fails the test instead of hanging it.
template <class D>
void WhenUp(std::function<void(D&)> act, bool* opened = nullptr) {
    QTimer::singleShot(0, [act, opened] {
        auto* dialog = dynamic_cast<D*>(QApplication::activeModalWidget());
        if (!dialog) return;
        if (opened) *opened = true;
        act(*dialog);
    });
    QTimer::singleShot(3000, [] {
        if (QWidget* w = QApplication::activeModalWidget()) w->close();
    });
}

// Whether the last help call opened the topic of text `baseId`.
bool HelpShows(const GuiFixture& f, int baseId);

// The file names in the data folder, sorted.
QStringList DataFiles(const GuiFixture& f);

// Chooses the item `text` as a user would (the click handler runs); returns
// its index, or -1 when the list doesn't hold it.
int Select(ListBox* list, const QString& text);

}  // namespace ct::test
