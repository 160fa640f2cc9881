#include "core/search.h"

#include <bit>
#include <cstring>

#include "core/catalogue.h"
#include "core/text.h"

namespace ct {

namespace {

// --- Plain-ASCII fast path ---------------------------------------------------
// Nearly every catalogue line is plain ASCII, and for those DecodeLine and
// UpperCase are the identity and a table look-up. Only the other lines pay for
// decoding.

struct UpperTable {
    unsigned char map[256];
    constexpr UpperTable() : map() {
        for (int i = 0; i < 256; ++i)
            map[i] = static_cast<unsigned char>(i >= 'a' && i <= 'z' ? i - 32 : i);
    }
};
constexpr UpperTable kUpper;

bool IsAscii(std::string_view s) {
    const char* p = s.data();
    std::size_t n = s.size();
    while (n >= 8) {
        std::uint64_t w;
        std::memcpy(&w, p, 8);
        if (w & 0x8080808080808080ull) return false;
        p += 8;
        n -= 8;
    }
    while (n--)
        if (static_cast<unsigned char>(*p++) & 0x80) return false;
    return true;
}

// `out` = the upper-cased UTF-8 text `s`, without allocating once `out` has
// grown to the longest text seen.
void UpperInto(std::string_view s, std::string& out) {
    if (IsAscii(s)) {
        out.resize(s.size());
        char* d = out.data();
        for (std::size_t i = 0; i < s.size(); ++i)
            d[i] = static_cast<char>(kUpper.map[static_cast<unsigned char>(s[i])]);
    } else {
        out = UpperCase(s);
    }
}

// The fields of a line cut from the left at its first `count` bars; the last
// one is the rest of the line. Fields the line lacks stay empty.
template <std::size_t N>
void CutFields(std::string_view line, std::array<std::string_view, N>& f, const std::size_t* bars,
               std::size_t found) {
    std::size_t start = 0;
    for (std::size_t i = 0; i < N; ++i) {
        if (i < found) {
            f[i] = line.substr(start, bars[i] - start);
            start = bars[i] + 1;
        } else if (i == found) {
            f[i] = line.substr(start);  // the rest of the line
            start = line.size() + 1;
        } else {
            f[i] = {};
        }
    }
}
template <std::size_t N>
void CutFields(std::string_view line, std::array<std::string_view, N>& f) {
    std::size_t bars[N - 1];
    CutFields(line, f, bars, scan::FindBars(line.data(), line.size(), bars, N - 1));
}

bool StartsWith(std::string_view t, std::string_view s) {
    return t.size() >= s.size() && std::memcmp(t.data(), s.data(), s.size()) == 0;
}
bool EndsWith(std::string_view t, std::string_view s) {
    return t.size() >= s.size() &&
           std::memcmp(t.data() + t.size() - s.size(), s.data(), s.size()) == 0;
}
bool Contains(std::string_view t, std::string_view s) {
    if (t.empty()) return false;  // nothing is found in an empty text
    if (s.empty()) return true;
    if (s.size() > t.size()) return false;
    // memchr on the first byte, then a compare: fast for the short names and
    // terms of a search.
    const char first = s[0];
    const char* p = t.data();
    const char* last = t.data() + (t.size() - s.size());
    while (p <= last) {
        p = static_cast<const char*>(std::memchr(p, first, static_cast<std::size_t>(last - p) + 1));
        if (!p) return false;
        if (std::memcmp(p + 1, s.data() + 1, s.size() - 1) == 0) return true;
        ++p;
    }
    return false;
}

// The same comparisons with T plain ASCII and upper-cased on the fly: the
// name test of nearly every line, without copying the name. An upper-cased
// S with letters beyond ASCII never matches an ASCII T, as it shouldn't.
bool FoldedEqual(const char* t, const char* upper, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        if (kUpper.map[static_cast<unsigned char>(t[i])] != static_cast<unsigned char>(upper[i])) return false;
    return true;
}
bool FoldedContains(std::string_view t, std::string_view s) {
    if (t.empty()) return false;
    if (s.empty()) return true;
    if (s.size() > t.size()) return false;
    const unsigned char first = static_cast<unsigned char>(s[0]);
    const std::size_t last = t.size() - s.size();
    for (std::size_t i = 0; i <= last; ++i)
        if (kUpper.map[static_cast<unsigned char>(t[i])] == first &&
            FoldedEqual(t.data() + i + 1, s.data() + 1, s.size() - 1))
            return true;
    return false;
}
bool FoldedBegins(std::string_view t, std::string_view s) {
    return t.size() >= s.size() && FoldedEqual(t.data(), s.data(), s.size());
}
bool FoldedEnds(std::string_view t, std::string_view s) {
    return t.size() >= s.size() && FoldedEqual(t.data() + t.size() - s.size(), s.data(), s.size());
}
bool CompareFolded(SearchOp op, std::string_view t, std::string_view s) {
    switch (op) {
    case SearchOp::Equal: return t.size() == s.size() && FoldedEqual(t.data(), s.data(), s.size());
    case SearchOp::NotEqual: return !(t.size() == s.size() && FoldedEqual(t.data(), s.data(), s.size()));
    case SearchOp::Contains: return FoldedContains(t, s);
    case SearchOp::NotContains: return !FoldedContains(t, s);
    case SearchOp::BeginsWith: return FoldedBegins(t, s);
    case SearchOp::NotBeginsWith: return !FoldedBegins(t, s);
    case SearchOp::EndsWith: return FoldedEnds(t, s);
    case SearchOp::NotEndsWith: return !FoldedEnds(t, s);
    default: return true;
    }
}

// --- Dates -----------------------------------------------------------------------

bool IsLeap(std::int64_t y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; }
int DaysInMonth(std::int64_t y, int m) {
    static constexpr int kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m == 2 && IsLeap(y) ? 29 : kDays[m - 1];
}
// Days from 1 January of the year 1 (proleptic Gregorian), and back.
std::int64_t DaysFromCivil(std::int64_t y, int m, int d) {
    y -= m <= 2;
    const std::int64_t era = y / 400;
    const std::int64_t yoe = y - era * 400;
    const std::int64_t doy = (153 * (m + (m > 2 ? -3 : 9)) + 2) / 5 + d - 1;
    const std::int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + doe - 306;  // 0001-01-01 is day 0
}
void CivilFromDays(std::int64_t z, std::int64_t& y, int& m, int& d) {
    z += 306;
    const std::int64_t era = z / 146097;
    const std::int64_t doe = z - era * 146097;
    const std::int64_t yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const std::int64_t doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const std::int64_t mp = (5 * doy + 2) / 153;
    d = static_cast<int>(doy - (153 * mp + 2) / 5 + 1);
    m = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    y = yoe + era * 400 + (m <= 2);
}

// Reads 1..maxDigits decimal digits at `pos`.
bool Digits(std::string_view s, std::size_t& pos, std::size_t maxDigits, int& value,
            std::size_t& count) {
    value = 0;
    count = 0;
    while (pos < s.size() && s[pos] >= '0' && s[pos] <= '9' && count < maxDigits) {
        value = value * 10 + (s[pos] - '0');
        ++pos;
        ++count;
    }
    // More digits than allowed: no date.
    if (pos < s.size() && s[pos] >= '0' && s[pos] <= '9') return false;
    return count > 0;
}

void TwoDigits(std::string& out, int v) {
    out.push_back(static_cast<char>('0' + v / 10 % 10));
    out.push_back(static_cast<char>('0' + v % 10));
}

}  // namespace

// --- Operators ---------------------------------------------------------------------

SearchOp TextOperator(const std::array<std::string, 10>& texts, std::string_view text) {
    static constexpr SearchOp kOps[8] = {SearchOp::Equal,       SearchOp::NotEqual,
                                         SearchOp::Contains,    SearchOp::NotContains,
                                         SearchOp::BeginsWith,  SearchOp::NotBeginsWith,
                                         SearchOp::EndsWith,    SearchOp::NotEndsWith};
    for (int i = 0; i < 8; ++i)
        if (texts[static_cast<std::size_t>(i)] == text) return kOps[i];
    return SearchOp::None;
}

SearchOp NumberOperator(const std::array<std::string, 10>& texts, std::string_view text) {
    if (texts[0] == text) return SearchOp::Equal;
    if (texts[1] == text) return SearchOp::NotEqual;
    if (texts[8] == text) return SearchOp::Greater;
    if (texts[9] == text) return SearchOp::Less;
    return SearchOp::None;
}

namespace {
// An operator a box doesn't offer turns its test off, as a text it doesn't
// offer does.
SearchOp TextOnly(SearchOp op) { return op == SearchOp::Greater || op == SearchOp::Less ? SearchOp::None : op; }
SearchOp NumberOnly(SearchOp op) {
    return op == SearchOp::Equal || op == SearchOp::NotEqual || op == SearchOp::Greater || op == SearchOp::Less
               ? op
               : SearchOp::None;
}
}  // namespace

bool CompareText(SearchOp op, std::string_view t, std::string_view s) {
    switch (op) {
    case SearchOp::Equal: return t == s;
    case SearchOp::NotEqual: return t != s;
    case SearchOp::Contains: return Contains(t, s);
    case SearchOp::NotContains: return !Contains(t, s);
    case SearchOp::BeginsWith: return StartsWith(t, s);
    case SearchOp::NotBeginsWith: return !StartsWith(t, s);
    case SearchOp::EndsWith: return EndsWith(t, s);
    case SearchOp::NotEndsWith: return !EndsWith(t, s);
    default: return true;
    }
}

namespace {
template <typename T>
bool CompareNumber(SearchOp op, const T& a, const T& b) {
    switch (op) {
    case SearchOp::Equal: return a == b;
    case SearchOp::NotEqual: return a != b;
    case SearchOp::Greater: return a > b;
    case SearchOp::Less: return a < b;
    default: return true;
    }
}
}  // namespace

// --- Dates ---------------------------------------------------------------------------

bool ReadDate(std::string_view s, SearchTime& out) {
    std::size_t pos = 0;
    auto blanks = [&] {
        while (pos < s.size() && (s[pos] == ' ' || s[pos] == '\t')) ++pos;
    };
    int day, month, year, hour = 0, minute = 0, second = 0;
    std::size_t n;
    blanks();
    if (!Digits(s, pos, 2, day, n) || pos >= s.size() || s[pos] != '.') return false;
    ++pos;
    if (!Digits(s, pos, 2, month, n) || pos >= s.size() || s[pos] != '.') return false;
    ++pos;
    if (!Digits(s, pos, 4, year, n)) return false;
    if (n <= 2)
        year += year < 30 ? 2000 : 1900;
    else if (year < 100)
        return false;
    blanks();
    if (pos < s.size()) {
        if (!Digits(s, pos, 2, hour, n) || pos >= s.size() || s[pos] != ':') return false;
        ++pos;
        if (!Digits(s, pos, 2, minute, n)) return false;
        if (pos < s.size() && s[pos] == ':') {
            ++pos;
            if (!Digits(s, pos, 2, second, n)) return false;
        }
        blanks();
        if (pos != s.size()) return false;
    }
    if (month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month)) return false;
    if (hour > 23 || minute > 59 || second > 59) return false;
    out = DaysFromCivil(year, month, day) * 86400 + hour * 3600 + minute * 60 + second;
    return true;
}

namespace {
// The form every catalogue line has, "dd.mm.yyyy hh:mm:ss", read without the
// general reader into a number that orders as the time does (yyyymmddhhmmss);
// false for anything else, which then goes to ReadDate.
bool FixedDateKey(std::string_view s, std::uint64_t& key) {
    if (s.size() != 19 || s[2] != '.' || s[5] != '.' || s[10] != ' ' || s[13] != ':' || s[16] != ':') return false;
    int v[14];
    static constexpr int kDigits[14] = {0, 1, 3, 4, 6, 7, 8, 9, 11, 12, 14, 15, 17, 18};
    for (int k = 0; k < 14; ++k) {
        const unsigned d = static_cast<unsigned char>(s[static_cast<std::size_t>(kDigits[k])]) - '0';
        if (d > 9) return false;
        v[k] = static_cast<int>(d);
    }
    const int day = v[0] * 10 + v[1], month = v[2] * 10 + v[3];
    const int year = v[4] * 1000 + v[5] * 100 + v[6] * 10 + v[7];
    const int hour = v[8] * 10 + v[9], minute = v[10] * 10 + v[11], second = v[12] * 10 + v[13];
    if (year < 100) return false;
    if (month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month)) return false;
    if (hour > 23 || minute > 59 || second > 59) return false;
    key = ((((static_cast<std::uint64_t>(year) * 100 + month) * 100 + day) * 100 + hour) * 100 + minute) * 100 + second;
    return true;
}
// Whether s[0..19) has the stored form's shape, "dd.mm.yyyy hh:mm:ss" with
// any digits: three words of eight bytes, their separators turned into '0'
// and every byte checked for a digit at once.
bool FixedDateShape(const char* s) {
    constexpr auto Sep = [](int at, char c) { return static_cast<std::uint64_t>(c ^ '0') << (8 * at); };
    constexpr std::uint64_t kSeps[3] = {Sep(2, '.') | Sep(5, '.'),           // bytes 0..7
                                        Sep(2, ' ') | Sep(5, ':'),           // bytes 8..15 ("yy hh:mm")
                                        Sep(2, ':') | Sep(5, ':')};          // bytes 11..18 ("hh:mm:ss")
    constexpr std::uint64_t kHigh = 0xF0F0F0F0F0F0F0F0ull, kZeros = 0x3030303030303030ull;
    static const int kAt[3] = {0, 8, 11};
    for (int k = 0; k < 3; ++k) {
        std::uint64_t w;
        std::memcpy(&w, s + kAt[k], 8);
        if constexpr (std::endian::native != std::endian::little) w = __builtin_bswap64(w);
        w ^= kSeps[k];
        if ((w & kHigh) != kZeros || ((w + 0x0606060606060606ull) & kHigh) != kZeros) return false;
    }
    return true;
}

}  // namespace

std::string DateText(SearchTime time) {
    std::int64_t days = time / 86400, secs = time % 86400;
    if (secs < 0) {
        secs += 86400;
        --days;
    }
    std::int64_t y;
    int m, d;
    CivilFromDays(days, y, m, d);
    std::string out;
    out.reserve(19);
    TwoDigits(out, d);
    out.push_back('.');
    TwoDigits(out, m);
    out.push_back('.');
    const int year = static_cast<int>(y);
    TwoDigits(out, year / 100);
    TwoDigits(out, year % 100);
    out.push_back(' ');
    TwoDigits(out, static_cast<int>(secs / 3600));
    out.push_back(':');
    TwoDigits(out, static_cast<int>(secs / 60 % 60));
    out.push_back(':');
    TwoDigits(out, static_cast<int>(secs % 60));
    return out;
}

std::string FullDateText(std::string_view text) {
    SearchTime t;
    if (ReadDate(text, t)) return DateText(t);
    return std::string(text);
}

// --- Entry checks ----------------------------------------------------------------------

int CheckCriteria(const SearchCriteria& c) {
    if (c.kind < 0) return kTopicNoKind;
    if (c.checkName && c.nameTerm.empty()) return kTopicNoTerm;
    if (c.checkSize && !c.sizeOperatorChosen) return kTopicNoSizeOperator;
    if (c.checkAttributes && !c.attributesChosen) return kTopicNoAttributes;
    if (c.checkDate && !c.dateOperatorChosen) return kTopicNoDateOperator;
    if (c.checkDescription && !c.descriptionOperatorChosen) return kTopicNoDescriptionOperator;
    if (c.checkSize && c.sizeText.empty()) return kTopicNoSize;
    if (c.checkDate && c.dateText.empty()) return kTopicNoDate;
    if (c.checkDescription && c.descriptionText.empty()) return kTopicNoDescription;
    bool anyMarked = false;
    for (const auto& d : c.discs) anyMarked = anyMarked || d.marked;
    if (!anyMarked) return kTopicNoDisc;
    SearchTime t;
    if (c.checkDate && !ReadDate(c.dateText, t)) return kTopicBadDate;
    return 0;
}

// --- Matcher -----------------------------------------------------------------------------

Matcher::Matcher(const SearchCriteria& c)
    : term_(UpperCase(c.nameTerm)),
      nameOp_(TextOnly(c.nameOperator)),
      checkName_(c.checkName),
      checkSize_(c.checkSize),
      checkAttributes_(c.checkAttributes),
      checkDate_(c.checkDate),
      checkDescription_(c.checkDescription),
      sizeOp_(NumberOnly(c.sizeOperator)),
      dateOp_(NumberOnly(c.dateOperator)),
      descriptionOp_(TextOnly(c.descriptionOperator)),
      sizeLimit_(ParseLeadingDecimal(c.sizeText)),
      description_(c.descriptionText) {
    needFields_ = checkSize_ || checkAttributes_ || checkDate_ || checkDescription_;
    // Size and Time are read as numbers, the same from raw bytes as from the
    // decoded line; only text comparisons need the line decoded.
    textFields_ = checkAttributes_ || checkDescription_;
    if (c.attributes != kNoAttributesLiteral && c.attributes != c.noAttributesText)
        wantedAttributes_ = c.attributes;
    if (checkDate_ && !ReadDate(c.dateText, dateLimit_)) dateOp_ = SearchOp::None;
    if (dateOp_ != SearchOp::None) {
        std::string form = DateText(dateLimit_);
        if (FixedDateKey(form, dateKey_)) dateForm_ = std::move(form);
    }
    quickSize_ = checkSize_ && sizeOp_ != SearchOp::None;
    if (quickSize_ && sizeLimit_.raw >= 0 && sizeLimit_.raw % Fixed::kScale == 0)
        sizeDigits_ = std::to_string(sizeLimit_.raw / Fixed::kScale);
    quickDate_ = checkDate_ && dateOp_ != SearchOp::None;
    // Raw bytes may be searched for an ASCII term whatever a line's encoding,
    // as long as no other letter upper-cases into one of the term's: only the
    // dotless i and the long s do, into I and S.
    termRawSafe_ = IsAscii(term_);
    if ((term_.find('I') != std::string::npos && UpperCase("\xc4\xb1") == "I") ||
        (term_.find('S') != std::string::npos && UpperCase("\xc5\xbf") == "S"))
        termRawSafe_ = false;
    // The term of "contains" never changes during a run (only "ends with"
    // loses closing backslashes), so its skip table is made once.
    const std::size_t m = term_.size();
    if (m > 0 && m < 256) {
        skip_.fill(static_cast<unsigned char>(m));
        for (std::size_t i = 0; i + 1 < m; ++i) {
            const unsigned char c = static_cast<unsigned char>(term_[i]);
            const unsigned char d = static_cast<unsigned char>(m - 1 - i);
            skip_[c] = d;
            if (c >= 'A' && c <= 'Z') skip_[c + 32] = d;  // both cases fold to the term's letter
        }
    }
}

std::size_t Matcher::TermAt(std::string_view t) const {
    constexpr std::size_t npos = std::string_view::npos;
    const std::size_t m = term_.size();
    if (t.empty()) return npos;  // nothing is found in an empty text
    if (m == 0) return 0;
    if (m > t.size()) return npos;
    if (m >= 256) {
        for (std::size_t i = 0; i + m <= t.size(); ++i)
            if (FoldedEqual(t.data() + i, term_.data(), m)) return i;
        return npos;
    }
    const unsigned char lastTerm = static_cast<unsigned char>(term_[m - 1]);
    std::size_t i = 0;
    const std::size_t end = t.size() - m;
    for (;;) {
        const unsigned char c = static_cast<unsigned char>(t[i + m - 1]);
        if (kUpper.map[c] == lastTerm && FoldedEqual(t.data() + i, term_.data(), m - 1)) return i;
        i += skip_[c];
        if (i > end) return npos;
    }
}

bool Matcher::TermIn(std::string_view t) const { return TermAt(t) != std::string_view::npos; }

bool Matcher::AsciiNameTest(std::string_view t) const {
    if (nameOp_ == SearchOp::Contains) return TermIn(t);
    if (nameOp_ == SearchOp::NotContains) return !TermIn(t);
    return CompareFolded(nameOp_, t, term_);
}

bool Matcher::TestDisc(std::string_view label, std::string_view headerLine) {
    if (headerLine.find('|') == std::string_view::npos) return false;  // no header to judge
    if (nameOp_ == SearchOp::None) return true;
    // Only the description is tested; a line of valid UTF-8 is read as it
    // stands, any other is decoded whole, as its encoding is the line's.
    std::string_view description = headerLine.substr(headerLine.rfind('|') + 1);
    std::string decoded;
    if (!IsValidUtf8(headerLine)) {
        decoded = DecodeLine(headerLine);
        description = std::string_view(decoded).substr(decoded.rfind('|') + 1);
    }
    UpperInto(label, discLabel_);
    UpperInto(description, discText_);
    // For a negated operator "false when both" is "true when either", so one
    // rule serves all eight.
    return CompareText(nameOp_, discLabel_, term_) || CompareText(nameOp_, discText_, term_);
}

bool Matcher::SectionNeedle(bool folderSection, scan::Needle& needle) const {
    auto positive = [](SearchOp op) {
        return op == SearchOp::Equal || op == SearchOp::Contains || op == SearchOp::BeginsWith ||
               op == SearchOp::EndsWith;
    };
    // A term with a line end in it is in no line; the plain reader finds that out.
    auto usable = [](std::string_view s) {
        return !s.empty() && s.find('\r') == std::string_view::npos && s.find('\n') == std::string_view::npos;
    };
    // "Ends with" shortens the term at each folder line it tests, so there
    // every folder line is tested while the term still ends in a backslash.
    const bool shrinking = folderSection && nameOp_ == SearchOp::EndsWith && !term_.empty() && term_.back() == '\\';
    // A needle already made for the same term is kept: each catalogue asks.
    if (checkName_ && positive(nameOp_) && termRawSafe_ && usable(term_) && !shrinking) {
        if (!needle.Is(term_, true)) needle = scan::Needle(term_, true);
        return true;
    }
    // The description test is exact: an ASCII text has the same bytes in
    // every encoding a line may have, and no other character yields them.
    if (checkDescription_ && positive(descriptionOp_) && usable(description_) && IsAscii(description_)) {
        if (!needle.Is(description_, false)) needle = scan::Needle(description_, false);
        return true;
    }
    return false;
}

bool Matcher::FieldTests(std::string_view attributes, std::string_view time,
                         std::string_view description) {
    if (checkAttributes_ && attributes != wantedAttributes_) return false;
    if (checkDate_ && dateOp_ != SearchOp::None) {
        // An unreadable Time fails this line only.
        std::uint64_t key;
        if (FixedDateKey(time, key)) {
            if (!CompareNumber(dateOp_, key, dateKey_)) return false;
        } else {
            SearchTime t;
            if (!ReadDate(time, t) || !CompareNumber(dateOp_, t, dateLimit_)) return false;
        }
    }
    if (checkDescription_ && !CompareText(descriptionOp_, description, description_)) return false;
    return true;
}

bool Matcher::FileFieldsFail(const char* line, const std::size_t* bars, std::size_t count) const {
    // A Size of plain digits (a minus at most) is read here; any other form,
    // and a Size that is the rest of the line, go to the full test. Fourteen
    // digits stay far inside the fixed-point range.
    if (quickSize_ && count >= 2) {
        const char* s = line + bars[0] + 1;
        const char* e = line + bars[1];
        const std::size_t length = static_cast<std::size_t>(e - s);
        if (!sizeDigits_.empty() && length > 0 && length <= 14 && (*s != '0' || length == 1)) {
            bool digits = true;
            for (const char* d = s; d < e; ++d) digits &= static_cast<unsigned char>(*d - '0') <= 9;
            if (digits) {
                const std::size_t limit = sizeDigits_.size();
                const int order = length != limit ? (length < limit ? -1 : 1) : std::memcmp(s, sizeDigits_.data(), length);
                return !CompareNumber(sizeOp_, order, 0) || (quickDate_ && DateFails(line, bars, count));
            }
        }
        const bool negative = s < e && *s == '-';
        if (negative) ++s;
        if (s < e && e - s <= 14) {
            std::int64_t v = 0;
            for (; s < e; ++s) {
                const unsigned d = static_cast<unsigned char>(*s) - static_cast<unsigned>('0');
                if (d > 9) break;
                v = v * 10 + static_cast<std::int64_t>(d);
            }
            if (s == e && !CompareNumber(sizeOp_, Fixed{(negative ? -v : v) * Fixed::kScale}, sizeLimit_))
                return true;
        }
    }
    return quickDate_ && DateFails(line, bars, count);
}

bool Matcher::DateFails(const char* line, const std::size_t* bars, std::size_t count) const {
    // The stored form is the only one judged here; its ordering number is
    // what FieldTests compares too. The Time field is the fourth, ended by a
    // bar (with fewer bars it is the rest of the line: not judged here).
    // A Time of that shape that isn't a date fails FieldTests' general
    // reader too; one that is has the limit's very bytes exactly when it
    // equals the limit, so "equal" and "not equal" compare bytes.
    if (count >= 4 && bars[3] - bars[2] == 20) {
        const char* t = line + bars[2] + 1;
        if (!dateForm_.empty() && (dateOp_ == SearchOp::Equal || dateOp_ == SearchOp::NotEqual)) {
            if (!FixedDateShape(t)) return false;  // the general reader's to judge
            const bool same = std::memcmp(t, dateForm_.data(), 19) == 0;
            if (dateOp_ == SearchOp::Equal) return !same;
            if (same) return true;
        }
        std::uint64_t key;
        if (FixedDateKey(std::string_view(t, 19), key) && !CompareNumber(dateOp_, key, dateKey_)) return true;
    }
    return false;
}

bool Matcher::NameTest(std::string_view t) {
    if (IsAscii(t)) return AsciiNameTest(t);
    UpperInto(t, upper_);
    return CompareText(nameOp_, upper_, term_);
}

bool Matcher::TestFolderLine(std::string_view line, std::string& path) {
    std::size_t bar = line.find('|');
    if (bar == std::string_view::npos) return false;
    // Only the part that is looked at decides whether the line needs decoding.
    if (!IsAscii(textFields_ ? line : line.substr(0, bar))) {
        decoded_ = DecodeLine(line);
        line = decoded_;
        bar = line.find('|');
    }
    const std::string_view p = line.substr(0, bar);
    if (checkName_) {
        if (nameOp_ == SearchOp::EndsWith || nameOp_ == SearchOp::NotEndsWith) {
            // Folder paths have no closing backslash, so one is taken off the
            // term, for good: later lines and discs see the shorter term.
            if (!term_.empty() && term_.back() == '\\') term_.pop_back();
        }
        if (nameOp_ != SearchOp::None && !NameTest(p)) return false;
    }
    if (needFields_) {
        std::array<std::string_view, 4> f;
        CutFields(line, f);
        if (!FieldTests(f[1], f[2], f[3])) return false;
    }
    path.assign(p);
    return true;
}

bool Matcher::TestFileLine(std::string_view line, std::string& path) {
    // With fields to test, the line's first bars are found in one pass.
    std::size_t bars[4];
    std::size_t barCount = 0;
    bool barsKnown = needFields_;
    std::size_t bar;
    if (barsKnown) {
        barCount = scan::FindBars(line.data(), line.size(), bars, 4);
        if (barCount == 0) return false;
        bar = bars[0];
    } else {
        bar = line.find('|');
        if (bar == std::string_view::npos) return false;
    }
    if (!needFields_) {
        // The pure name search: the own name alone is looked at, in place, and
        // the line is decoded only for a hit whose path isn't plain ASCII.
        const std::string_view p = line.substr(0, bar);
        if (checkName_ && (nameOp_ == SearchOp::Contains || nameOp_ == SearchOp::NotContains) &&
            (termRawSafe_ || IsAscii(p))) {
            // Search the whole path and look for the last backslash only when
            // the term turns up: most lines are passed over in a few steps.
            bool found = false;
            const std::size_t at = TermAt(p);
            if (at != std::string_view::npos) {
                const std::size_t slash = p.rfind('\\');
                const std::size_t nameStart = slash == std::string_view::npos ? 0 : slash + 1;
                found = at >= nameStart || TermAt(p.substr(nameStart)) != std::string_view::npos;
            }
            if (found != (nameOp_ == SearchOp::Contains)) return false;
            if (IsAscii(p)) {
                path.assign(p);
            } else {
                decoded_ = DecodeLine(line);
                path.assign(std::string_view(decoded_).substr(0, decoded_.find('|')));
            }
            return true;
        }
        const std::size_t slash = p.rfind('\\');
        const std::string_view name = slash == std::string_view::npos ? p : p.substr(slash + 1);
        if (checkName_ && nameOp_ != SearchOp::None && IsAscii(name) && !AsciiNameTest(name)) return false;
        if (IsAscii(p)) {  // then the name was ASCII too, and tested above
            path.assign(p);
            return true;
        }
    }
    if (!IsAscii(textFields_ ? line : line.substr(0, bar))) {
        decoded_ = DecodeLine(line);
        line = decoded_;
        bar = line.find('|');
        barsKnown = false;
    }
    const std::string_view p = line.substr(0, bar);
    if (checkName_ && nameOp_ != SearchOp::None) {
        const std::size_t slash = p.rfind('\\');
        if (!NameTest(slash == std::string_view::npos ? p : p.substr(slash + 1))) return false;
    }
    if (needFields_) {
        std::array<std::string_view, 5> f;
        if (barsKnown)
            CutFields(line, f, bars, barCount);
        else
            CutFields(line, f);
        if (checkSize_ && sizeOp_ != SearchOp::None) {
            const Fixed size = ParseLeadingDecimal(f[1]);
            // A Size beyond the fixed-point range is no size at all.
            if (size.raw == INT64_MAX || size.raw == INT64_MIN) return false;
            if (!CompareNumber(sizeOp_, size, sizeLimit_)) return false;
        }
        if (!FieldTests(f[2], f[3], f[4])) return false;
    }
    path.assign(p);
    return true;
}

// --- The run ---------------------------------------------------------------------------------


namespace {

enum class Step { Next, FileEnded, Stop };

// One section of a catalogue: its lines up to the first empty line (read and
// dropped) or the end of the file, each handed to `test`, which says whether
// the run goes on. With a needle, only the lines that hold it are handed out:
// one vector pass per block finds them and the empty line, and the runs of
// lines between are passed over whole.
template <class Test>
Step ScanSection(LineReader& reader, const scan::Needle* needle, Test&& test) {
    std::string_view line;
    if (!needle) {
        for (;;) {
            if (!reader.NextRaw(line)) return Step::FileEnded;
            if (line.empty()) return Step::Next;
            if (!test(line)) return Step::Stop;
        }
    }
    for (;;) {
        const std::string_view block = reader.Buffered();
        if (block.empty()) return Step::FileEnded;
        bool empty = false;
        std::size_t at = 0;
        if (block[0] != '\r' && block[0] != '\n') {
            at = scan::NextEvent(block.data(), block.size(), *needle, empty);
            if (at == block.size()) {
                reader.Skip(at);
                continue;
            }
        } else {
            empty = true;
        }
        if (empty) {
            reader.Skip(at);
            reader.NextRaw(line);  // the empty line that ends the section
            return Step::Next;
        }
        while (at > 0 && block[at - 1] != '\r' && block[at - 1] != '\n') --at;
        reader.Skip(at);
        reader.NextRaw(line);
        if (!test(line)) return Step::Stop;
    }
}

// A file section whose lines all face a size or date test: the bars and
// line ends of each block are found in one pass, as bit masks, and each line
// takes from them its end and the bars the test needs; the lines whose fields
// fail in place are passed over, the rest go to `test` as read.
template <class Test>
Step ScanFields(LineReader& reader, const Matcher& matcher, std::vector<std::uint64_t>& masks, Test&& test) {
    const std::size_t need = matcher.QuickBars();
    for (;;) {
        const std::string_view block = reader.Buffered();
        if (block.empty()) return Step::FileEnded;
        const char* b = block.data();
        const std::size_t n = block.size();
        const std::size_t words = (n + 63) / 64;
        if (masks.size() < 2 * words) masks.resize(2 * words);
        std::uint64_t* barMask = masks.data();
        std::uint64_t* endMask = masks.data() + words;
        scan::BlockMasks(b, n, barMask, endMask);
        std::size_t i = 0;
        while (i < n) {
            if (b[i] == '\r' || b[i] == '\n') {  // the empty line that ends the section
                reader.Skip(i);
                std::string_view line;
                reader.NextRaw(line);
                return Step::Next;
            }
            // The line's end, and its first bars up to `need`, from the masks.
            std::size_t bars[4], count = 0, eol = n;
            for (std::size_t w = i / 64; w < words; ++w) {
                const unsigned from = w == i / 64 ? static_cast<unsigned>(i % 64) : 0;
                const std::uint64_t keep = ~std::uint64_t{0} << from;
                const std::uint64_t e = endMask[w] & keep;
                std::uint64_t bb = barMask[w] & keep;
                if (e) bb &= (e & (0 - e)) - 1;
                for (; bb && count < need; bb &= bb - 1)
                    bars[count++] = 64 * w + static_cast<std::size_t>(__builtin_ctzll(bb)) - i;
                if (e) {
                    eol = 64 * w + static_cast<std::size_t>(__builtin_ctzll(e));
                    break;
                }
            }
            // The block ends behind a whole line, so the line is all here;
            // the test sees it in place.
            if (count == 0 || !matcher.FileFieldsFail(b + i, bars, count)) {
                if (!test(std::string_view(b + i, eol - i))) return Step::Stop;
            }
            i = eol + 1;
            if (eol < n && b[eol] == '\r' && i < n && b[i] == '\n') ++i;
        }
        reader.Skip(n);
    }
}

}  // namespace

SearchEnd RunSearch(const std::string& dataFolder, const SearchCriteria& c, HitSink& sink,
                    const SearchHooks& hooks) {
    Matcher matcher(c);
    const bool folders = c.kind == 1 || c.kind == 2;
    const bool files = c.kind == 0 || c.kind == 2;
    const bool fast = hooks.prefilter;
    std::string catalogue, path, hit;
    int counter = 1;
    std::vector<std::uint64_t> masks;  // a block's bars and line ends, for ScanFields
    scan::Needle needle;  // asked for anew in each section: an "ends with" term changes as it goes
    // One reader for the whole run: its buffer (64 KiB by default) serves
    // every catalogue, where one per catalogue cost a third of the time
    // outside the scans in allocating and freeing.
    LineReader reader(hooks.readBlock);
    const std::unique_ptr<ReadFolder> folder = OpenFolderForReading(dataFolder);
    for (const SearchDisc& disc : c.discs) {
        if (!disc.marked) continue;
        catalogue.assign(disc.label).append(kCatalogueEnding);  // CatalogueName, in one buffer for the run
        reader.Open(*folder, catalogue);
        std::string_view line;
        if (reader.IsOpen() && reader.NextRaw(line)) {
            if (matcher.TestDisc(disc.label, line) && !sink.Add(disc.label)) return SearchEnd::HitLimit;
            if (reader.NextRaw(line)) {  // line 2, empty
                auto onFolder = [&](std::string_view l) {
                    if (!matcher.TestFolderLine(l, path)) return true;
                    hit.assign(disc.label).append(1, '\\').append(path).append(1, '\\');
                    return sink.Add(hit);
                };
                auto onFile = [&](std::string_view l) {
                    if (!matcher.TestFileLine(l, path)) return true;
                    hit.assign(disc.label).append(1, '\\').append(path);
                    return sink.Add(hit);
                };
                const scan::Needle* n = nullptr;
                Step step;
                if (folders) {
                    if (fast && matcher.SectionNeedle(true, needle)) n = &needle;
                    step = ScanSection(reader, n, onFolder);
                } else {
                    step = !fast ? ScanSection(reader, nullptr, [](std::string_view) { return true; })
                           : reader.SkipSection() ? Step::Next
                                                  : Step::FileEnded;
                }
                if (step == Step::Stop) return SearchEnd::HitLimit;
                if (files && step == Step::Next) {
                    n = fast && matcher.SectionNeedle(false, needle) ? &needle : nullptr;
                    const Step s = !n && fast && matcher.QuickFields() ? ScanFields(reader, matcher, masks, onFile)
                                                                       : ScanSection(reader, n, onFile);
                    if (s == Step::Stop) return SearchEnd::HitLimit;
                }
            }
        }
        reader.Close();  // before anything else may run
        if (hooks.afterDisc) hooks.afterDisc(counter, sink.Count());
        if (hooks.stopRequested && *hooks.stopRequested) return SearchEnd::Stopped;
        ++counter;
    }
    return SearchEnd::Normal;
}

}  // namespace ct
