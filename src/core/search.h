// The search: which catalogue entries meet the user's criteria.
//
// Three parts, apart from each other so that the window, the command line and
// the tests drive the same code:
//   - what matches: a Matcher, built once per run from the criteria, that
//     tests a disc (label and header line), a folder line or a file line;
//   - what reads: RunSearch walks the marked discs, one pass per catalogue,
//     one line at a time, nothing kept behind the line in hand;
//   - what receives: a HitSink, the window's sorted list or a printer.
//
// The criteria are plain values: each operator is a SearchOp, None when the
// test is off. The window maps its combo boxes' texts to them (TextOperator,
// NumberOperator: a text that names no operator turns its test off), the
// terminal tool its own words.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/fixed.h"
#include "core/scan.h"

namespace ct {

// Base ids of the texts the search uses.
constexpr int kOperatorBaseId = 10068;    // 10068..10077, the ten operators
constexpr int kNoAttributesBaseId = 10078;  // first row of the attribute box
// The literal the attribute test takes as "no attributes", whatever the language.
inline constexpr std::string_view kNoAttributesLiteral = "(ohne Attribute)";

// Help topics with which a run is refused or ends early (base ids).
constexpr int kTopicNoKind = 10101;
constexpr int kTopicNoTerm = 10102;
constexpr int kTopicNoSizeOperator = 10103;
constexpr int kTopicNoAttributes = 10104;
constexpr int kTopicNoDateOperator = 10105;
constexpr int kTopicNoDescriptionOperator = 10106;
constexpr int kTopicNoSize = 10107;
constexpr int kTopicNoDate = 10108;
constexpr int kTopicNoDescription = 10109;
constexpr int kTopicNoDisc = 10110;
constexpr int kTopicHitLimit = 10111;
constexpr int kTopicBadDate = 10112;

// The list holds at most this many hits; one more ends the run.
constexpr std::size_t kHitLimit = 32000;

enum class SearchOp {
    None,  // the box's text is no operator: the test isn't made
    Equal,
    NotEqual,
    Contains,
    NotContains,
    BeginsWith,
    NotBeginsWith,
    EndsWith,
    NotEndsWith,
    Greater,
    Less,
};

struct SearchDisc {
    std::string label;
    bool marked = true;
};

struct SearchCriteria {
    int kind = 2;  // cboSuchen: 0 files, 1 folders, 2 both, -1 none chosen

    bool checkName = true;  // CheckDateiOrdner
    SearchOp nameOperator = SearchOp::Contains;  // None: no name test (and the disc test passes)
    std::string nameTerm;      // txtSuchen, used by the disc test even when unchecked

    bool checkSize = false;
    bool sizeOperatorChosen = false;
    SearchOp sizeOperator = SearchOp::None;  // Equal, NotEqual, Greater, Less
    std::string sizeText;

    bool checkAttributes = false;
    bool attributesChosen = false;
    std::string attributes;  // cboAttribut's text

    bool checkDate = false;
    bool dateOperatorChosen = false;
    SearchOp dateOperator = SearchOp::None;  // Equal, NotEqual, Greater, Less
    std::string dateText;

    bool checkDescription = false;
    bool descriptionOperatorChosen = false;
    SearchOp descriptionOperator = SearchOp::None;  // the eight text operators
    std::string descriptionText;

    // Text 10078 of the language in force: the attribute box's first row.
    std::string noAttributesText;

    std::vector<SearchDisc> discs;  // in the disc list's order
};

// The entry checks, in their fixed order: the help topic (base id) of the
// first that fails, or 0 when the run may start.
int CheckCriteria(const SearchCriteria& criteria);

// The operator a combo box's text names. Name and description boxes offer
// 10068..10075, size and date boxes 10068, 10069, 10076, 10077; a text equal
// to several of them takes the lowest id, one equal to none gives None.
SearchOp TextOperator(const std::array<std::string, 10>& operatorTexts, std::string_view text);
SearchOp NumberOperator(const std::array<std::string, 10>& operatorTexts, std::string_view text);

// One of the eight text operators on T and S, as the name, disc and
// description tests compare (None passes). An empty S is contained only in a
// text that isn't empty, and begins and ends every text.
bool CompareText(SearchOp op, std::string_view t, std::string_view s);

// --- Dates ------------------------------------------------------------------

// A date and time to the second: seconds since 1 January of the year 1.
using SearchTime = std::int64_t;

// Reads "d.m.yyyy", "d.m.yyyy h:m" and "d.m.yyyy h:m:s" (one or two digits for
// day, month, hour, minute, second; a year of one or two digits is taken as
// 1930..2029, else years 100..9999), blanks around. False for anything else,
// including an impossible day such as 31.04. or the "00.00.0 00:00:00" of a
// failed time conversion.
bool ReadDate(std::string_view text, SearchTime& out);
// "dd.mm.yyyy hh:mm:ss".
std::string DateText(SearchTime time);
// What txtDatum shows when it is left: the full form of a readable date, else
// the text as it stands.
std::string FullDateText(std::string_view text);

// --- Matching ----------------------------------------------------------------

class Matcher {
public:
    explicit Matcher(const SearchCriteria& criteria);

    // The disc test, on the label and line 1 of its catalogue (raw bytes).
    bool TestDisc(std::string_view label, std::string_view headerLine);
    // A folder or file line as read (raw bytes). On true, `path` holds the
    // record's Path as stored (UTF-8).
    bool TestFolderLine(std::string_view line, std::string& path);
    bool TestFileLine(std::string_view line, std::string& path);

    // A needle that every line of the next section must hold to pass, when
    // the criteria give one (a positive name or description test on a term
    // whose bytes are found in the raw line whatever its encoding): then the
    // lines without it need not be looked at. False when none applies.
    bool SectionNeedle(bool folderSection, scan::Needle& needle) const;

    // Whether FileFieldsFail can judge lines: a size or date test is on.
    bool QuickFields() const { return quickSize_ || quickDate_; }
    // How many of a file line's first bars FileFieldsFail looks at.
    std::size_t QuickBars() const { return quickDate_ ? 4 : 2; }
    // Whether the file line at `line`, whose first `count` bars (at most 4)
    // stand at `bars`, surely fails its size or date test, judged in place
    // from the raw bytes of those fields alone. False when it can't tell:
    // then TestFileLine decides, as for every line that isn't refused here.
    bool FileFieldsFail(const char* line, const std::size_t* bars, std::size_t count) const;

    // The term as the next test sees it (upper-cased; a folder test with
    // "ends with" may have taken closing backslashes off).
    const std::string& SearchTerm() const { return term_; }

private:
    // FileFieldsFail's judgement of the Time field.
    bool DateFails(const char* line, const std::size_t* bars, std::size_t count) const;
    bool NameTest(std::string_view t);  // T not yet upper-cased
    bool AsciiNameTest(std::string_view t) const;  // T plain ASCII, not upper-cased
    bool TermIn(std::string_view t) const;
    std::size_t TermAt(std::string_view t) const;  // first place of the term, case folded
    bool FieldTests(std::string_view attributes, std::string_view time,
                    std::string_view description);

    std::string term_;
    SearchOp nameOp_;
    bool checkName_;
    bool checkSize_, checkAttributes_, checkDate_, checkDescription_;
    bool needFields_;
    bool textFields_;  // a field is compared as text: a line not plain ASCII is decoded
    bool termRawSafe_ = false;  // the term can be sought in undecoded bytes
    bool quickSize_ = false, quickDate_ = false;  // FileFieldsFail judges Size, Time
    SearchOp sizeOp_, dateOp_, descriptionOp_;
    Fixed sizeLimit_;
    // The limit's digits when it is a whole number of at least 0: a Size of
    // plain digits is then ordered against it by length, then bytes.
    std::string sizeDigits_;
    SearchTime dateLimit_ = 0;
    std::uint64_t dateKey_ = 0;  // the limit as the stored form's ordering number
    std::string dateForm_;  // the limit in the stored form (when it has one)
    std::string wantedAttributes_;
    std::string description_;
    // Skip distances by byte for "contains" (Horspool, case folded): most
    // names are passed over in a few steps.
    std::array<unsigned char, 256> skip_{};
    std::string upper_;    // scratch: the upper-cased text under test
    std::string discLabel_, discText_;  // scratch of TestDisc, kept for the next disc
    std::string decoded_;  // scratch: a line that isn't plain ASCII, decoded
};

// --- The run ---------------------------------------------------------------------

// Receives the hits of a run, and decides whether the run goes on: Add
// returns false when it takes no more (the list is full), and the run ends
// there with SearchEnd::HitLimit. The window's list and the terminal tool
// take kHitLimit hits.
class HitSink {
public:
    virtual ~HitSink() = default;
    virtual bool Add(const std::string& hitText) = 0;
    virtual std::size_t Count() const = 0;
};

struct SearchHooks {
    // After each marked disc: its number from 1 and the hits so far. The
    // window shows progress and lets pending events run here.
    std::function<void(int discCounter, std::size_t hits)> afterDisc;
    // Looked at after each marked disc, behind afterDisc.
    const bool* stopRequested = nullptr;
    // Pass over the lines that can't match by block scans. Off only to check
    // the fast path against the plain line-by-line reading: same hits.
    bool prefilter = true;
    // The size of one read. Tests make it tiny, so that lines, line ends and
    // terms straddle blocks.
    std::size_t readBlock = std::size_t{64} << 10;
};

enum class SearchEnd { Normal, Stopped, HitLimit };

// Walks the marked discs of `criteria` in order, the catalogue
// "<dataFolder>/<label>.idx" of each. Expects criteria that passed
// CheckCriteria. A missing or damaged catalogue, a line without bars or a
// field that can't be read passes that disc or line over; the run goes on.
SearchEnd RunSearch(const std::string& dataFolder, const SearchCriteria& criteria, HitSink& sink,
                    const SearchHooks& hooks = {});


}  // namespace ct
