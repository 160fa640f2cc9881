#include "GuiFixture.h"

#include <QCursor>
#include <QDir>
#include <QGuiApplication>
#include <QFile>
#include <fstream>

#include "gui/ListBox.h"
#include "gui/Start.h"
#include "gui/frmHaupt.h"
#include "gui/seams.h"
#include "platform/system.h"
#include "scratch.h"

namespace ct::test {

GuiFixture::GuiFixture(const std::string& stageDir) {
    if (!dir_.isValid()) return;
    QDir(dir_.path()).mkdir(QStringLiteral("Daten"));
    hasResources_ = QFile::copy(QString::fromStdString(stageDir + "/CT.rd"), dir_.filePath(QStringLiteral("CT.rd")));
    // Without the texts every window shows empty strings, and comparisons of
    // empty against empty would pass: no test runs without them.
    if (!hasResources_) qFatal("no CT.rd in %s: build the target cartulon_data first", stageDir.c_str());
    SetProgramFolderForTesting(Folder());
    WriteIni("0", "C", DataFolder());

    seams::SetHelpLauncher([this](const std::string& line) { helpCalls.push_back(line); });
    seams::SetMessageBox([this](QWidget*, const QString& title, const QString& text,
                                QMessageBox::StandardButtons buttons, QMessageBox::StandardButton defaultButton,
                                QMessageBox::Icon icon) {
        const QCursor* pointer = QGuiApplication::overrideCursor();
        messages.push_back({title, text, buttons, defaultButton, icon, pointer && pointer->shape() == Qt::WaitCursor});
        if (answers.empty()) return defaultButton;
        const QMessageBox::StandardButton answer = answers.front();
        answers.pop_front();
        return answer;
    });
    seams::SetOpenTarget([](const std::string&) {});
    seams::SetDesktopSize(desktop);
}

GuiFixture::~GuiFixture() {
    seams::SetHelpLauncher({});
    seams::SetMessageBox({});
    seams::SetOpenTarget({});
    seams::SetFiles(nullptr);
    seams::SetDesktopSize(QSize());
    SetProgramFolderForTesting({});
}

std::string GuiFixture::Folder() const { return dir_.path().toStdString(); }
std::string GuiFixture::DataFolder() const { return Folder() + "/Daten"; }

void GuiFixture::WriteIni(const std::string& line1, const std::string& line2, const std::string& line3) {
    WriteIniRaw(line1 + "\r\n" + line2 + "\r\n" + (line3.empty() ? DataFolder() : line3) + "\r\n");
}

void GuiFixture::WriteIniRaw(const std::string& bytes) { WriteFileRaw(Folder() + "/CT.ini", bytes); }

std::string GuiFixture::ReadIni() const { return ReadAll(Folder() + "/CT.ini"); }

void GuiFixture::WriteFileRaw(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string GuiFixture::WriteCatalogue(const std::string& label, const std::vector<std::string>& lines,
                                       const std::string& sub) {
    std::string folder = DataFolder();
    if (!sub.empty()) {
        folder += "/" + sub;
        QDir().mkpath(QString::fromStdString(folder));
    }
    std::string text;
    for (const std::string& line : lines) text += line + "\r\n";
    const std::string path = folder + "/" + label + ".idx";
    WriteFileRaw(path, text);
    return path;
}

std::unique_ptr<frmHaupt> GuiFixture::StartMain() {
    Start::EditTarget.clear();
    Start::Language = 0;
    Start::DriveLetter = "C";
    Start::DataFolder = DataFolder();
    Start::WideLayout = false;
    seams::SetDesktopSize(desktop);
    auto haupt = std::make_unique<frmHaupt>();
    haupt->Form_Load();
    return haupt;
}

std::vector<std::string> ExampleCatalogue() {
    return {
        "654311424|-1029197328|CDFS|319488|1|2048|Photos 2003",
        "",
        "\\Bilder|R|14.03.2003 09:12:40|",
        "\\Bilder\\Urlaub|R|14.03.2003 09:12:41|Trip to the coast",
        "",
        "\\Bilder\\index.htm|2310|R|14.03.2003 09:12:40|",
        "\\Bilder\\Urlaub\\p1.jpg|183442|R|14.03.2003 09:12:41|First day",
        "\\liesmich.txt|1024|R|14.03.2003 09:12:40|",
    };
}

QStringList Items(const ListBox* list) {
    QStringList items;
    for (int i = 0; i < list->ListCount(); ++i) items.append(list->List(i));
    return items;
}

bool HelpShows(const GuiFixture& f, int baseId) {
    return !f.helpCalls.empty() &&
           QString::fromStdString(f.helpCalls.back()).endsWith(", " + ResourceText(baseId));
}

QStringList DataFiles(const GuiFixture& f) {
    QStringList names = QDir(QString::fromStdString(f.DataFolder())).entryList(QDir::Files | QDir::Hidden);
    names.sort();
    return names;
}

int Select(ListBox* list, const QString& text) {
    for (int i = 0; i < list->ListCount(); ++i)
        if (list->List(i) == text) {
            list->SetListIndex(i);
            return i;
        }
    return -1;
}

}  // namespace ct::test
