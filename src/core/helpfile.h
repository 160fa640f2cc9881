// The help files CT0.fhp / CT1.fhp: plain UTF-8 text, one topic after the
// other, each opened by a line "@@ <topic name>". The topic name is the very
// text the program hands the viewer, so lookups are exact. The form is told
// in data/README-fhp.md. A damaged file never stops the reader: what can't be
// understood is kept as plain text, and problems are listed for the tests.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace ct {

// The two topics the program opens by fixed German names in both languages.
inline constexpr std::string_view kHelpContents = "Inhalt";
inline constexpr std::string_view kHelpIndex = "Index";

struct HelpLink {
    std::string target;  // the topic name, exactly as written between [[ and | or ]]
    std::string text;    // what is shown; the target when no "|" is given
};

struct HelpTopic {
    std::string name;
    std::string title;                // from "title:"; empty means the name
    std::vector<std::string> keys;    // extra index words from "index:"
    std::vector<std::string> body;    // the lines after the topic's head lines
    std::vector<HelpLink> links;      // every link of the body, in order
    std::size_t line = 0;             // 1-based line of the "@@"

    const std::string& Title() const { return title.empty() ? name : title; }
};

struct HelpFile {
    // "key: value" lines in front of the first topic ("language: de").
    std::vector<std::pair<std::string, std::string>> header;
    std::vector<HelpTopic> topics;
    // What a careful author would want to know: duplicate names, empty names,
    // unterminated markup. The reader carries on regardless.
    std::vector<std::string> problems;

    // The first topic of exactly this name, or nullptr.
    const HelpTopic* Find(std::string_view name) const;
    // The same, and when none matches, a topic whose name equals `name` with
    // access-key '&' marks dropped, blanks trimmed and case ignored.
    const HelpTopic* FindLenient(std::string_view name) const;
    std::vector<std::string> TopicNames() const;
    // The value of a header key (case ignored in the key), or empty.
    std::string HeaderValue(std::string_view key) const;
};

// A caption without its access-key marks: "&&" is a literal ampersand, any
// other '&' marks the key that follows and is dropped.
std::string DropAccessKeys(std::string_view s);

HelpFile ParseHelpFile(std::string_view text);
// False when the file can't be read; `out` is then empty.
bool LoadHelpFile(const std::string& path, HelpFile& out);

// "FILE.fhp, TOPIC" as the program starts the viewer: everything up to the
// first ".fhp, " plus ".fhp" is the file, the rest the topic. Parts split by a
// shell are joined with blanks first. Without ", " the whole text is the file
// and the topic is empty (the viewer then shows the contents).
void SplitHelpArgument(const std::vector<std::string>& parts, std::string& file, std::string& topic);

// 'd' German, 'e' English: the file's "language:" header first, then its name
// (CT0 / help_de German, CT1 / help_en English), German when nothing tells.
char HelpLanguage(const HelpFile& file, std::string_view path);

// Body lines in blocks. Lines that follow one another without a blank line
// belong to one block, and a list item goes on on the lines below it.
struct HelpBlock {
    enum class Kind { Paragraph, Heading, Bullet, Numbered, Example };
    Kind kind = Kind::Paragraph;
    std::string text;  // the lines joined with one blank (examples keep "\n")
    int number = 0;    // the item's number for Numbered
};
std::vector<HelpBlock> HelpBlocks(const std::vector<std::string>& body);

// One line of inline markup in runs: **bold**, `code`, [[Topic]] and
// [[Topic|text]]. A mark without its partner on the line stays plain text.
struct HelpSpan {
    enum class Kind { Text, Code, Link };
    Kind kind = Kind::Text;
    bool bold = false;
    std::string text;
    std::string target;  // for Link
};
std::vector<HelpSpan> HelpSpans(std::string_view line);

// A topic as simple HTML for a rich-text browser. `href` gives the address of
// a link target (the viewer decides which names exist).
std::string HtmlEscape(std::string_view text);
std::string HelpTopicHtml(const HelpTopic& topic,
                          const std::function<std::string(const std::string& target)>& href);

// Index order: case and the usual accents ignored (Ä as A, ß as ss), then the
// text itself so that the order is total.
bool HelpIndexLess(std::string_view a, std::string_view b);
std::string HelpIndexKey(std::string_view text);

}  // namespace ct
