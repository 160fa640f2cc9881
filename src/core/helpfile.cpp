#include "core/helpfile.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

namespace ct {

namespace {

bool StartsWith(std::string_view s, std::string_view p) { return s.substr(0, p.size()) == p; }

std::string_view TrimView(std::string_view s) {
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!s.empty() && blank(s.front())) s.remove_prefix(1);
    while (!s.empty() && blank(s.back())) s.remove_suffix(1);
    return s;
}

std::string Lower(std::string_view s) {
    std::string out(s);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

// "key: value" with a key of letters only; false for anything else.
bool KeyValue(std::string_view line, std::string& key, std::string& value) {
    const auto colon = line.find(':');
    if (colon == std::string_view::npos || colon == 0) return false;
    for (std::size_t i = 0; i < colon; ++i) {
        const char c = line[i];
        if (!((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-')) return false;
    }
    key = Lower(line.substr(0, colon));
    value = std::string(TrimView(line.substr(colon + 1)));
    return true;
}

std::vector<std::string_view> SplitLines(std::string_view text) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        auto end = text.find('\n', start);
        if (end == std::string_view::npos) end = text.size();
        auto line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        lines.push_back(line);
        start = end + 1;
    }
    return lines;
}

}  // namespace

std::string DropAccessKeys(std::string_view s) {
    std::string out;
    for (std::size_t i = 0; i < s.size(); ++i) {
        if (s[i] == '&') {
            if (i + 1 < s.size() && s[i + 1] == '&') {
                out += '&';
                ++i;
            }
            continue;
        }
        out += s[i];
    }
    return out;
}

const HelpTopic* HelpFile::Find(std::string_view name) const {
    for (const auto& t : topics)
        if (t.name == name) return &t;
    return nullptr;
}

const HelpTopic* HelpFile::FindLenient(std::string_view name) const {
    if (const auto* exact = Find(name)) return exact;
    const std::string wanted = HelpIndexKey(TrimView(DropAccessKeys(name)));
    for (const auto& t : topics)
        if (HelpIndexKey(TrimView(DropAccessKeys(t.name))) == wanted) return &t;
    return nullptr;
}

std::vector<std::string> HelpFile::TopicNames() const {
    std::vector<std::string> names;
    names.reserve(topics.size());
    for (const auto& t : topics) names.push_back(t.name);
    return names;
}

std::string HelpFile::HeaderValue(std::string_view key) const {
    const std::string k = Lower(key);
    for (const auto& [hk, hv] : header)
        if (hk == k) return hv;
    return {};
}

HelpFile ParseHelpFile(std::string_view text) {
    HelpFile file;
    if (StartsWith(text, "\xEF\xBB\xBF")) text.remove_prefix(3);
    const auto lines = SplitLines(text);

    HelpTopic* current = nullptr;
    bool inHead = false;  // right behind "@@": "title:" and "index:" lines
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string_view line = lines[i];
        if (StartsWith(line, "%%")) continue;
        if (StartsWith(line, "@@")) {
            std::string name(TrimView(line.substr(2)));
            if (name.empty())
                file.problems.push_back("line " + std::to_string(i + 1) + ": topic without a name");
            else if (file.Find(name))
                file.problems.push_back("line " + std::to_string(i + 1) + ": topic \"" + name +
                                        "\" stands twice; the first one counts");
            file.topics.push_back({});
            current = &file.topics.back();
            current->name = std::move(name);
            current->line = i + 1;
            inHead = true;
            continue;
        }
        if (!current) {
            std::string key, value;
            if (TrimView(line).empty()) continue;
            if (KeyValue(line, key, value))
                file.header.emplace_back(key, value);
            else
                file.problems.push_back("line " + std::to_string(i + 1) + ": text before the first topic");
            continue;
        }
        if (inHead) {
            std::string key, value;
            if (KeyValue(line, key, value) && (key == "title" || key == "index")) {
                if (key == "title") {
                    current->title = value;
                } else {
                    std::string_view rest = value;
                    while (!rest.empty()) {
                        const auto semi = rest.find(';');
                        const auto word = TrimView(rest.substr(0, semi));
                        if (!word.empty()) current->keys.emplace_back(word);
                        if (semi == std::string_view::npos) break;
                        rest.remove_prefix(semi + 1);
                    }
                }
                continue;
            }
            inHead = false;
            if (TrimView(line).empty()) continue;  // the blank line behind the head
        }
        current->body.emplace_back(line);
    }

    for (auto& topic : file.topics) {
        while (!topic.body.empty() && TrimView(topic.body.back()).empty()) topic.body.pop_back();
        for (const auto& line : topic.body) {
            // Unterminated marks are plain text to the reader, but most likely a slip.
            if (line.find("[[") != std::string::npos) {
                std::size_t open = 0;
                while ((open = line.find("[[", open)) != std::string::npos) {
                    if (line.find("]]", open + 2) == std::string::npos) {
                        file.problems.push_back("topic \"" + topic.name + "\": \"[[\" without \"]]\"");
                        break;
                    }
                    open += 2;
                }
            }
            std::size_t stars = 0;
            for (std::size_t p = line.find("**"); p != std::string::npos; p = line.find("**", p + 2)) ++stars;
            if (stars % 2 != 0)
                file.problems.push_back("topic \"" + topic.name + "\": \"**\" without its partner");
            for (const auto& span : HelpSpans(line)) {
                if (span.kind != HelpSpan::Kind::Link) continue;
                if (span.target.empty())
                    file.problems.push_back("topic \"" + topic.name + "\": link without a target");
                else
                    topic.links.push_back({span.target, span.text});
            }
        }
    }
    return file;
}

bool LoadHelpFile(const std::string& path, HelpFile& out) {
    out = HelpFile{};
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) return false;
    out = ParseHelpFile(text);
    return true;
}

void SplitHelpArgument(const std::vector<std::string>& parts, std::string& file, std::string& topic) {
    std::string joined;
    for (const auto& p : parts) {
        if (!joined.empty()) joined += ' ';
        joined += p;
    }
    file.clear();
    topic.clear();
    const std::string_view all = joined;
    constexpr std::string_view mark = ".fhp, ";
    auto at = all.find(mark);
    if (at == std::string_view::npos) {
        // A hand-typed call may spell the extension in capitals.
        const std::string lower = Lower(all);
        at = lower.find(mark);
    }
    if (at != std::string_view::npos) {
        file = std::string(all.substr(0, at + 4));
        topic = std::string(TrimView(all.substr(at + mark.size())));
        return;
    }
    // No topic: a trailing "," is left over when the topic was empty.
    std::string_view rest = TrimView(all);
    if (!rest.empty() && rest.back() == ',') rest.remove_suffix(1);
    file = std::string(TrimView(rest));
}

char HelpLanguage(const HelpFile& file, std::string_view path) {
    const std::string lang = Lower(file.HeaderValue("language"));
    if (StartsWith(lang, "de")) return 'd';
    if (StartsWith(lang, "en")) return 'e';
    auto slash = path.find_last_of("/\\");
    const std::string name = Lower(slash == std::string_view::npos ? path : path.substr(slash + 1));
    if (StartsWith(name, "ct1") || name.find("_en") != std::string::npos) return 'e';
    return 'd';
}

std::vector<HelpBlock> HelpBlocks(const std::vector<std::string>& body) {
    std::vector<HelpBlock> blocks;
    bool open = false;  // a block that the next non-blank line may go on
    for (const auto& raw : body) {
        const std::string_view line = raw;
        const std::string_view trimmed = TrimView(line);
        if (trimmed.empty()) {
            open = false;
            continue;
        }
        if (StartsWith(line, "> ") || line == ">") {
            std::string_view rest = line.size() > 2 ? line.substr(2) : std::string_view{};
            if (!blocks.empty() && open && blocks.back().kind == HelpBlock::Kind::Example) {
                blocks.back().text += '\n';
                blocks.back().text += rest;
            } else {
                blocks.push_back({HelpBlock::Kind::Example, std::string(rest), 0});
            }
            open = true;
            continue;
        }
        if (StartsWith(line, "## ")) {
            blocks.push_back({HelpBlock::Kind::Heading, std::string(TrimView(line.substr(3))), 0});
            open = false;
            continue;
        }
        if (StartsWith(line, "- ")) {
            blocks.push_back({HelpBlock::Kind::Bullet, std::string(TrimView(line.substr(2))), 0});
            open = true;
            continue;
        }
        std::size_t digits = 0;
        while (digits < line.size() && line[digits] >= '0' && line[digits] <= '9') ++digits;
        if (digits > 0 && digits < 5 && line.size() > digits + 1 && line[digits] == '.' &&
            line[digits + 1] == ' ') {
            blocks.push_back({HelpBlock::Kind::Numbered, std::string(TrimView(line.substr(digits + 2))),
                              std::stoi(std::string(line.substr(0, digits)))});
            open = true;
            continue;
        }
        if (open && !blocks.empty() && blocks.back().kind != HelpBlock::Kind::Heading &&
            blocks.back().kind != HelpBlock::Kind::Example) {
            blocks.back().text += ' ';
            blocks.back().text += trimmed;
        } else {
            blocks.push_back({HelpBlock::Kind::Paragraph, std::string(trimmed), 0});
        }
        open = true;
    }
    return blocks;
}

std::vector<HelpSpan> HelpSpans(std::string_view line) {
    std::vector<HelpSpan> spans;
    bool bold = false;
    std::string text;
    const auto flush = [&] {
        if (!text.empty()) spans.push_back({HelpSpan::Kind::Text, bold, std::move(text), {}});
        text.clear();
    };
    std::size_t i = 0;
    while (i < line.size()) {
        if (StartsWith(line.substr(i), "**")) {
            // Bold opens only when it closes later on the line.
            if (bold || line.find("**", i + 2) != std::string_view::npos) {
                flush();
                bold = !bold;
                i += 2;
                continue;
            }
        } else if (StartsWith(line.substr(i), "[[")) {
            const auto close = line.find("]]", i + 2);
            if (close != std::string_view::npos) {
                flush();
                const auto inner = line.substr(i + 2, close - i - 2);
                const auto bar = inner.find('|');
                HelpSpan link{HelpSpan::Kind::Link, bold, {}, {}};
                link.target = std::string(TrimView(inner.substr(0, bar)));
                link.text = bar == std::string_view::npos ? link.target
                                                          : std::string(TrimView(inner.substr(bar + 1)));
                if (link.text.empty()) link.text = link.target;
                spans.push_back(std::move(link));
                i = close + 2;
                continue;
            }
        } else if (line[i] == '`') {
            const auto close = line.find('`', i + 1);
            if (close != std::string_view::npos) {
                flush();
                spans.push_back({HelpSpan::Kind::Code, bold, std::string(line.substr(i + 1, close - i - 1)), {}});
                i = close + 1;
                continue;
            }
        }
        text += line[i];
        ++i;
    }
    flush();
    return spans;
}

std::string HtmlEscape(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
            case '&': out += "&amp;"; break;
            case '<': out += "&lt;"; break;
            case '>': out += "&gt;"; break;
            case '"': out += "&quot;"; break;
            default: out += c;
        }
    }
    return out;
}

namespace {

std::string InlineHtml(std::string_view line, const std::function<std::string(const std::string&)>& href) {
    std::string out;
    for (const auto& span : HelpSpans(line)) {
        std::string piece;
        switch (span.kind) {
            case HelpSpan::Kind::Text: piece = HtmlEscape(span.text); break;
            case HelpSpan::Kind::Code: piece = "<code>" + HtmlEscape(span.text) + "</code>"; break;
            case HelpSpan::Kind::Link:
                piece = "<a href=\"" + HtmlEscape(href(span.target)) + "\">" + HtmlEscape(span.text) + "</a>";
                break;
        }
        out += span.bold ? "<b>" + piece + "</b>" : piece;
    }
    return out;
}

}  // namespace

std::string HelpTopicHtml(const HelpTopic& topic, const std::function<std::string(const std::string&)>& href) {
    std::ostringstream html;
    html << "<h2>" << HtmlEscape(topic.Title()) << "</h2>\n";
    const auto blocks = HelpBlocks(topic.body);
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const auto& b = blocks[i];
        switch (b.kind) {
            case HelpBlock::Kind::Paragraph: html << "<p>" << InlineHtml(b.text, href) << "</p>\n"; break;
            case HelpBlock::Kind::Heading: html << "<h3>" << InlineHtml(b.text, href) << "</h3>\n"; break;
            case HelpBlock::Kind::Example:
                html << "<pre style=\"background-color:#eeeeee; margin-left:16px\">" << HtmlEscape(b.text)
                     << "</pre>\n";
                break;
            case HelpBlock::Kind::Bullet:
            case HelpBlock::Kind::Numbered: {
                const bool numbered = b.kind == HelpBlock::Kind::Numbered;
                html << (numbered ? "<ol start=\"" + std::to_string(b.number) + "\">\n" : std::string("<ul>\n"));
                std::size_t j = i;
                while (j < blocks.size() && blocks[j].kind == b.kind) {
                    html << "<li>" << InlineHtml(blocks[j].text, href) << "</li>\n";
                    ++j;
                }
                html << (numbered ? "</ol>\n" : "</ul>\n");
                i = j - 1;
                break;
            }
        }
    }
    return html.str();
}

std::string HelpIndexKey(std::string_view text) {
    // Latin-1 letters U+00C0..U+00FF to their base letters, lower case.
    static const char* const folded[64] = {
        "a", "a", "a", "a", "a", "a", "ae", "c", "e", "e", "e", "e", "i", "i", "i", "i",
        "d", "n", "o", "o", "o", "o", "o", "x", "o", "u", "u", "u", "u", "y", "th", "ss",
        "a", "a", "a", "a", "a", "a", "ae", "c", "e", "e", "e", "e", "i", "i", "i", "i",
        "d", "n", "o", "o", "o", "o", "o", "/", "o", "u", "u", "u", "u", "y", "th", "y"};
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c == 0xC3 && i + 1 < text.size()) {
            const auto d = static_cast<unsigned char>(text[i + 1]);
            if (d >= 0x80 && d <= 0xBF) {
                out += folded[d - 0x80];
                ++i;
                continue;
            }
        }
        out += (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : static_cast<char>(c);
    }
    // ".idx" and "„Fertig!“" belong under their first letter: leading ASCII
    // punctuation and general punctuation (quotes, dashes, U+2000..U+206F) go.
    std::size_t lead = 0;
    while (lead < out.size()) {
        const auto c = static_cast<unsigned char>(out[lead]);
        const bool asciiMark = c < 0x80 && !((c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'));
        if (asciiMark) {
            ++lead;
        } else if (c == 0xE2 && lead + 2 < out.size() &&
                   (static_cast<unsigned char>(out[lead + 1]) == 0x80 ||
                    static_cast<unsigned char>(out[lead + 1]) == 0x81)) {
            lead += 3;
        } else {
            break;
        }
    }
    if (lead < out.size()) out.erase(0, lead);
    return out;
}

bool HelpIndexLess(std::string_view a, std::string_view b) {
    const auto ka = HelpIndexKey(a), kb = HelpIndexKey(b);
    if (ka != kb) return ka < kb;
    return a < b;
}

}  // namespace ct
