// folihelp.exe: the help viewer the program starts as
//   folihelp.exe <folder>/CT<n>.fhp, <topic>
// It shows the topic in its own window and lets the reader go on through the
// links, back and forward, to the contents and to the index.
#include <QApplication>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QPushButton>
#include <QShortcut>
#include <QStyle>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>
#include <QWidget>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "core/helpfile.h"

namespace {

struct Words {
    QString back, forward, contents, index, appName, notFound, noFile, noFileHint, noTopics;
};

const Words& WordsFor(char language) {
    static const Words de{"Zurück",
                          "Vorwärts",
                          "Inhalt",
                          "Index",
                          "Cartulon Hilfe",
                          "Das Thema „%1“ wurde nicht gefunden.",
                          "Die Hilfedatei „%1“ konnte nicht geöffnet werden.",
                          "Sie gehört in den Programmordner neben folihelp.exe. Eine neue Installation "
                          "bringt sie zurück.",
                          "Die Hilfedatei enthält keine Themen."};
    static const Words en{"Back",
                          "Forward",
                          "Contents",
                          "Index",
                          "Cartulon Help",
                          "The topic “%1” was not found.",
                          "The help file “%1” could not be opened.",
                          "It belongs in the program folder beside folihelp.exe. Installing the program "
                          "again brings it back.",
                          "The help file holds no topics."};
    return language == 'e' ? en : de;
}

QString Q(const std::string& s) { return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size())); }
std::string S(const QString& s) { return s.toUtf8().toStdString(); }

// What the browser shows; the history is a list of these.
struct Page {
    enum class Kind { Topic, Contents, Index, NoFile } kind = Kind::Contents;
    int topic = -1;    // for Topic
    QString missing;   // for Index: the topic that wasn't found
    bool operator==(const Page& o) const { return kind == o.kind && topic == o.topic && missing == o.missing; }
};

class HelpWindow : public QWidget {
public:
    HelpWindow(const std::string& path, bool loaded, ct::HelpFile file)
        : path_(path), loaded_(loaded), file_(std::move(file)),
          words_(WordsFor(ct::HelpLanguage(file_, path))) {
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(6, 6, 6, 6);
        auto* bar = new QHBoxLayout;
        back_ = new QPushButton(style()->standardIcon(QStyle::SP_ArrowBack), words_.back, this);
        forward_ = new QPushButton(style()->standardIcon(QStyle::SP_ArrowForward), words_.forward, this);
        contents_ = new QPushButton(words_.contents, this);
        index_ = new QPushButton(words_.index, this);
        for (auto* b : {back_, forward_, contents_, index_}) {
            b->setAutoDefault(false);
            b->setFocusPolicy(Qt::TabFocus);
            bar->addWidget(b);
        }
        bar->addStretch();
        layout->addLayout(bar);
        browser_ = new QTextBrowser(this);
        browser_->setOpenLinks(false);
        browser_->document()->setDefaultStyleSheet(
            "h2 { color: #1f4e79; } h3 { color: #1f4e79; } a { color: #0645ad; } "
            "p.note { color: #9c2a00; font-weight: bold; } code { background-color: #eeeeee; }");
        layout->addWidget(browser_, 1);

        connect(back_, &QPushButton::clicked, this, [this] { Go(pos_ - 1); });
        connect(forward_, &QPushButton::clicked, this, [this] { Go(pos_ + 1); });
        connect(contents_, &QPushButton::clicked, this, [this] { Open({Page::Kind::Contents, -1, {}}); });
        connect(index_, &QPushButton::clicked, this, [this] { Open({Page::Kind::Index, -1, {}}); });
        connect(browser_, &QTextBrowser::anchorClicked, this, [this](const QUrl& url) { Follow(url); });
        auto* backKey = new QShortcut(QKeySequence(QKeySequence::Back), this);
        connect(backKey, &QShortcut::activated, this, [this] { Go(pos_ - 1); });
        auto* forwardKey = new QShortcut(QKeySequence(QKeySequence::Forward), this);
        connect(forwardKey, &QShortcut::activated, this, [this] { Go(pos_ + 1); });
        auto* closeKey = new QShortcut(QKeySequence(Qt::Key_Escape), this);
        connect(closeKey, &QShortcut::activated, this, [this] { close(); });

        resize(640, 480);
    }

    // The topic the program asked for: "Inhalt" and "Index" are the contents
    // and the index in both languages; an unknown topic shows the index.
    void OpenTopic(const std::string& name) {
        if (!loaded_) {
            Open({Page::Kind::NoFile, -1, {}});
            return;
        }
        if (name.empty() || name == ct::kHelpContents) {
            Open({Page::Kind::Contents, -1, {}});
            return;
        }
        if (name == ct::kHelpIndex) {
            Open({Page::Kind::Index, -1, {}});
            return;
        }
        if (const auto* t = file_.FindLenient(name)) {
            Open({Page::Kind::Topic, static_cast<int>(t - file_.topics.data()), {}});
            return;
        }
        Open({Page::Kind::Index, -1, Q(name)});
    }

private:
    void Open(const Page& page) {
        if (pos_ >= 0 && history_[static_cast<std::size_t>(pos_)] == page) {
            Show(page);
            return;
        }
        history_.resize(static_cast<std::size_t>(pos_ + 1));
        history_.push_back(page);
        pos_ = static_cast<int>(history_.size()) - 1;
        Show(page);
    }

    void Go(int pos) {
        if (pos < 0 || pos >= static_cast<int>(history_.size())) return;
        pos_ = pos;
        Show(history_[static_cast<std::size_t>(pos_)]);
    }

    void Follow(const QUrl& url) {
        const QString scheme = url.scheme();
        const int n = url.path().toInt();
        if (scheme == "topic" && n >= 0 && n < static_cast<int>(file_.topics.size()))
            Open({Page::Kind::Topic, n, {}});
        else if (scheme == "contents")
            Open({Page::Kind::Contents, -1, {}});
        else if (scheme == "index")
            Open({Page::Kind::Index, -1, {}});
        else if (scheme == "missing" && n >= 0 && n < static_cast<int>(missingTargets_.size()))
            Open({Page::Kind::Index, -1, Q(missingTargets_[static_cast<std::size_t>(n)])});
    }

    std::string Href(const std::string& target) {
        if (target == ct::kHelpContents && !file_.Find(target)) return "contents:";
        if (target == ct::kHelpIndex) return "index:";
        if (const auto* t = file_.Find(target)) return "topic:" + std::to_string(t - file_.topics.data());
        missingTargets_.push_back(target);
        return "missing:" + std::to_string(missingTargets_.size() - 1);
    }

    void Show(const Page& page) {
        missingTargets_.clear();
        QString title;
        QString html;
        switch (page.kind) {
            case Page::Kind::NoFile:
                title = words_.appName;
                html = "<h2>" + words_.appName.toHtmlEscaped() + "</h2><p class=\"note\">" +
                       words_.noFile.arg(QFileInfo(Q(path_)).absoluteFilePath()).toHtmlEscaped() + "</p><p>" +
                       words_.noFileHint.toHtmlEscaped() + "</p>";
                break;
            case Page::Kind::Topic: {
                const auto& t = file_.topics[static_cast<std::size_t>(page.topic)];
                title = Q(t.Title());
                html = Q(ct::HelpTopicHtml(t, [this](const std::string& target) { return Href(target); }));
                break;
            }
            case Page::Kind::Contents:
                if (const auto* t = file_.Find(ct::kHelpContents)) {
                    title = Q(t->Title());
                    html = Q(ct::HelpTopicHtml(*t, [this](const std::string& target) { return Href(target); }));
                } else {
                    title = words_.contents;
                    html = GeneratedContents();
                }
                break;
            case Page::Kind::Index:
                title = words_.index;
                html = IndexHtml(page.missing);
                break;
        }
        browser_->setHtml(html);
        setWindowTitle(title + " – " + words_.appName);
        back_->setEnabled(pos_ > 0);
        forward_->setEnabled(pos_ + 1 < static_cast<int>(history_.size()));
        contents_->setEnabled(loaded_);
        index_->setEnabled(loaded_);
    }

    // Only for a file without an "Inhalt" topic: every topic in file order.
    QString GeneratedContents() {
        QString html = "<h2>" + words_.contents.toHtmlEscaped() + "</h2>";
        if (file_.topics.empty()) return html + "<p>" + words_.noTopics.toHtmlEscaped() + "</p>";
        html += "<ul>";
        for (std::size_t i = 0; i < file_.topics.size(); ++i)
            html += "<li><a href=\"topic:" + QString::number(i) + "\">" +
                    Q(file_.topics[i].Title()).toHtmlEscaped() + "</a></li>";
        return html + "</ul>";
    }

    // Every topic by its title and its extra index words, alphabetically and
    // under a letter each. A topic "Index" in the file gives the lead text.
    QString IndexHtml(const QString& missing) {
        QString html = "<h2>" + words_.index.toHtmlEscaped() + "</h2>";
        if (!missing.isEmpty())
            html += "<p class=\"note\">" + words_.notFound.arg(missing).toHtmlEscaped() + "</p>";
        if (const auto* intro = file_.Find(ct::kHelpIndex)) {
            const std::string body =
                ct::HelpTopicHtml(*intro, [this](const std::string& target) { return Href(target); });
            // The topic's own heading would repeat the page's.
            const auto end = body.find("</h2>");
            html += Q(end == std::string::npos ? body : body.substr(end + 5));
        }
        std::vector<std::pair<std::string, std::size_t>> entries;
        for (std::size_t i = 0; i < file_.topics.size(); ++i) {
            const auto& t = file_.topics[i];
            if (t.name == ct::kHelpIndex) continue;
            entries.emplace_back(t.Title(), i);
            for (const auto& key : t.keys) entries.emplace_back(key, i);
        }
        std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
            if (a.first != b.first) return ct::HelpIndexLess(a.first, b.first);
            return a.second < b.second;
        });
        entries.erase(std::unique(entries.begin(), entries.end()), entries.end());
        if (entries.empty()) return html + "<p>" + words_.noTopics.toHtmlEscaped() + "</p>";
        // A word that leads to several topics names each topic beside it.
        std::map<std::string, int> uses;
        for (const auto& e : entries) ++uses[e.first];
        QString letter;
        bool opened = false;
        for (const auto& [text, i] : entries) {
            QString shown = Q(text).toHtmlEscaped();
            if (uses[text] > 1)
                shown += " <font color=\"#666666\">– " + Q(file_.topics[i].Title()).toHtmlEscaped() + "</font>";
            QString first;
            for (const QChar c : Q(ct::HelpIndexKey(text)))
                if (c.isLetterOrNumber()) {
                    first = c.isDigit() ? QString("0–9") : QString(c.toUpper());
                    break;
                }
            if (!opened || first != letter) {
                if (opened) html += "</p>";
                html += "<p style=\"margin-top:10px; margin-bottom:2px\"><b><font color=\"#1f4e79\">" +
                        first.toHtmlEscaped() + "</font></b></p><p style=\"margin-top:0px; margin-left:12px\">";
                opened = true;
            } else {
                html += "<br>";
            }
            letter = first;
            html += "<a href=\"topic:" + QString::number(i) + "\">" + shown + "</a>";
        }
        return html + "</p>";
    }

    std::string path_;
    bool loaded_;
    ct::HelpFile file_;
    const Words& words_;
    std::vector<Page> history_;
    int pos_ = -1;
    std::vector<std::string> missingTargets_;
    QPushButton* back_ = nullptr;
    QPushButton* forward_ = nullptr;
    QPushButton* contents_ = nullptr;
    QPushButton* index_ = nullptr;
    QTextBrowser* browser_ = nullptr;
};

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    // The program hands one argument "FILE.fhp, TOPIC"; a shell may have split
    // it at its blanks, so the parts are joined again before the split.
    std::vector<std::string> parts;
    const QStringList args = QApplication::arguments();
    for (qsizetype i = 1; i < args.size(); ++i) parts.push_back(S(args[i]));
    std::string path, topic;
    ct::SplitHelpArgument(parts, path, topic);

    ct::HelpFile file;
    const bool loaded = !path.empty() && ct::LoadHelpFile(path, file);
    HelpWindow window(path, loaded, std::move(file));
    window.OpenTopic(topic);
    window.show();
    window.raise();
    window.activateWindow();
    return QApplication::exec();
}
