#include "core/catalogue.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "core/scan.h"
#include "core/text.h"

namespace ct {

// --- Line rules ------------------------------------------------------------

namespace {

// Cuts the next field off the front of `rest`: the text up to the next bar,
// or all of `rest` when no bar is left (then `rest` becomes empty).
std::string TakeField(std::string_view& rest) {
    const std::size_t bar = rest.find('|');
    if (bar == std::string_view::npos) {
        std::string field(rest);
        rest = {};
        return field;
    }
    std::string field(rest.substr(0, bar));
    rest.remove_prefix(bar + 1);
    return field;
}

bool IsAscii(std::string_view s) {
    return std::none_of(s.begin(), s.end(),
                        [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

}  // namespace

DiscHeader SplitHeader(std::string_view line) {
    DiscHeader h;
    h.HeaderSize = TakeField(line);
    h.SerialNumber = TakeField(line);
    h.FileSystem = TakeField(line);
    h.ClusterCount = TakeField(line);
    h.SectorsPerCluster = TakeField(line);
    h.BytesPerSector = TakeField(line);
    h.Description = std::string(line);
    return h;
}

FolderRecord SplitFolder(std::string_view line) {
    FolderRecord r;
    r.Path = TakeField(line);
    r.Attributes = TakeField(line);
    r.Time = TakeField(line);
    r.Description = std::string(line);
    return r;
}

FileRecord SplitFile(std::string_view line) {
    FileRecord r;
    r.Path = TakeField(line);
    r.Size = TakeField(line);
    r.Attributes = TakeField(line);
    r.Time = TakeField(line);
    r.Description = std::string(line);
    return r;
}

std::string_view FirstField(std::string_view line) {
    return line.substr(0, line.find('|'));
}

bool IsRecordOf(std::string_view line, std::string_view path) {
    // A path with a bar in it can't be a whole first field.
    return line.size() > path.size() && line[path.size()] == '|' && line.starts_with(path) &&
           path.find('|') == std::string_view::npos;
}

bool LiesDirectlyIn(std::string_view filePath, std::string_view folder, std::string_view* item) {
    // Only the Path field counts: a backslash in a description changes nothing.
    filePath = FirstField(filePath);
    std::size_t start;
    if (folder == ".") {
        start = 1;
        if (filePath.empty() || filePath[0] != '\\') return false;
    } else {
        start = folder.size() + 1;
        if (filePath.size() < start || !filePath.starts_with(folder) ||
            filePath[folder.size()] != '\\')
            return false;
    }
    const std::string_view rest = filePath.substr(start);
    if (rest.find('\\') != std::string_view::npos) return false;
    if (item) *item = rest;
    return true;
}

std::string WithDescription(std::string_view line, std::string_view text) {
    const std::size_t bar = line.rfind('|');
    if (bar == std::string_view::npos) return std::string(line);
    std::string out;
    out.reserve(bar + 1 + text.size());
    out.append(line.substr(0, bar + 1));
    out.append(text);
    return out;
}

// --- Reading -----------------------------------------------------------------

LineReader::LineReader(const std::string& path, std::size_t blockSize) : LineReader(blockSize) { Open(path); }

LineReader::LineReader(std::size_t blockSize) : block_(blockSize == 0 ? 1 : blockSize) {}

void LineReader::Reset() {
    file_.reset();
    openFailure_ = {};
    pos_ = cut_ = end_ = 0;
    eof_ = false;
    left_ = 0;
    offset_ = 0;
}

// Either way the file is opened without blocking, and only a regular file is
// taken (a FIFO named "*.idx" would hang the reader forever).
bool LineReader::Open(const std::string& path) {
    Reset();
    file_ = OpenForReading(path, &openFailure_, &left_);
    return file_ != nullptr;
}

bool LineReader::Open(ReadFolder& folder, const std::string& name) {
    Reset();
    file_ = folder.Open(name, &openFailure_, &left_);
    return file_ != nullptr;
}

LineReader::~LineReader() = default;

void LineReader::Grow(std::size_t size) {
    std::unique_ptr<char[]> bigger(new char[size]);
    if (end_ > 0) std::memcpy(bigger.get(), buf_.get(), end_);
    buf_ = std::move(bigger);
    size_ = size;
}

bool LineReader::Fill() {
    if (!file_ || eof_) return false;
    // The buffer grows (doubling) only for a line longer than itself.
    constexpr std::size_t kPage = 4096, kLine = 64;
    if (!buf_) Grow(std::min(block_, kDefaultBlock));
    // What is left behind the whole lines is the start of the next line. It
    // is moved so that it ends on a cache line: the kernel copies the next
    // block faster to an aligned place.
    const std::size_t carry = end_ - cut_;
    const auto carryEnd = reinterpret_cast<std::uintptr_t>(buf_.get()) + carry;
    std::size_t lead = (kLine - carryEnd % kLine) % kLine;
    if (lead + carry >= size_) lead = 0;
    if (carry > 0 && cut_ != lead) std::memmove(buf_.get() + lead, buf_.get() + cut_, carry);
    pos_ = cut_ = lead;
    end_ = lead + carry;
    for (;;) {
        if (end_ == size_) Grow(size_ * 2);
        // Up to the size the file had when opened: the read that would only
        // see the end is saved (one system call of a few per small catalogue).
        std::size_t want = static_cast<std::size_t>(std::min<std::uint64_t>(size_ - end_, left_));
        // A read that ends on a page boundary of the file costs the kernel
        // less than one that ends inside a page and starts the next read there.
        if (want < left_ && want > kPage) want -= static_cast<std::size_t>((offset_ + want) % kPage);
        const std::size_t n = want == 0 ? 0 : file_->Read(buf_.get() + end_, want);
        end_ += n;
        left_ -= n;
        offset_ += n;
        // A short read is the end, or a read error: both end the file for us.
        if (n < want || left_ == 0) {
            eof_ = true;
            cut_ = end_;
            return end_ > 0;
        }
        // Behind the last line end, but a CR at the very end waits: a LF in
        // the next block would belong to it.
        std::size_t k = end_;
        if (buf_[k - 1] == '\r') --k;
        while (k > pos_ && buf_[k - 1] != '\n' && buf_[k - 1] != '\r') --k;
        if (k > pos_) {
            cut_ = k;
            return true;
        }
    }
}

std::string_view LineReader::Buffered() {
    if (pos_ >= cut_ && !Fill()) return {};
    return std::string_view(buf_.get() + pos_, cut_ - pos_);
}

bool LineReader::NextRaw(std::string_view& line) {
    if (!file_) return false;
    if (pos_ >= cut_ && !Fill()) return false;
    const char* base = buf_.get();
    const std::size_t eol = pos_ + scan::FindLineEnd(base + pos_, cut_ - pos_);
    line = std::string_view(base + pos_, eol - pos_);
    std::size_t next = eol + 1;
    if (eol < cut_ && base[eol] == '\r' && next < cut_ && base[next] == '\n') ++next;
    pos_ = std::min(next, cut_);
    return true;
}

bool LineReader::Next(std::string& line) {
    std::string_view raw;
    if (!NextRaw(raw)) return false;
    if (IsValidUtf8(raw))
        line.assign(raw);
    else
        line = Cp1252ToUtf8(raw);
    return true;
}

bool LineReader::SkipSection(std::int64_t* lines) {
    static const scan::Needle nothing;  // no line holds it: only the empty line is found
    const auto isEnd = [](char c) { return c == '\r' || c == '\n'; };
    for (;;) {
        const std::string_view block = Buffered();
        if (block.empty()) return false;
        bool empty = true;
        std::size_t at = 0;
        if (!isEnd(block[0])) {
            at = scan::NextEvent(block.data(), block.size(), nothing, empty);
            if (lines) {
                *lines += scan::CountLineEnds(block.data(), at);
                if (at == block.size() && !isEnd(block.back())) ++*lines;  // a last line without its end
            }
            if (at == block.size()) {
                Skip(at);
                continue;
            }
        }
        Skip(at);
        std::string_view line;
        NextRaw(line);  // the empty line
        return true;
    }
}

bool LineReader::AtEnd() {
    if (!file_) return true;
    return pos_ >= cut_ && !Fill();
}

CatalogueReader::CatalogueReader(const std::string& path) : lines_(path) {}

const std::string& CatalogueReader::HeaderLine() {
    if (!headerRead_) {
        headerRead_ = true;
        if (!lines_.Next(header_)) header_.clear();
    }
    return header_;
}

namespace {

// Reads one line of a section: false at the end of the file or at an empty
// line, which is where every section ends.
enum class Got { Line, Empty, End };
Got ReadSectionLine(LineReader& lines, std::string& line) {
    std::string_view raw;
    if (!lines.NextRaw(raw)) return Got::End;
    if (raw.empty()) return Got::Empty;
    if (IsValidUtf8(raw))
        line.assign(raw);
    else
        line = Cp1252ToUtf8(raw);
    return Got::Line;
}

}  // namespace

bool CatalogueReader::NextFolderLine(std::string& line) {
    if (at_ == At::Start) {
        HeaderLine();
        std::string_view second;
        // Line 2 is skipped whatever it holds.
        at_ = lines_.NextRaw(second) ? At::Folders : At::Done;
    }
    if (at_ != At::Folders) return false;
    switch (ReadSectionLine(lines_, line)) {
        case Got::Line: return true;
        case Got::Empty: at_ = At::Files; return false;
        case Got::End: at_ = At::Done; return false;
    }
    return false;
}

bool CatalogueReader::NextFileLine(std::string& line) {
    if (at_ == At::Start || at_ == At::Folders) {
        std::string skipped;
        while (NextFolderLine(skipped)) {
        }
    }
    if (at_ != At::Files) return false;
    if (ReadSectionLine(lines_, line) == Got::Line) return true;
    at_ = At::Done;
    return false;
}

CatalogueCounter::CatalogueCounter(std::size_t blockSize, std::uint64_t inPlaceFrom)
    : lines_(blockSize), inPlaceFrom_(inPlaceFrom) {}

// The file section from the reader's place to the end, counted where it
// stands: no copy of a large catalogue into the reader's blocks. False when
// it can't be done, or the file changed under the scan; nothing is counted
// then, and the reader goes on as before.
bool CatalogueCounter::CountRestInPlace(std::int64_t& files) {
    ReadStream* stream = lines_.Stream();
    const std::uint64_t from = lines_.ReadUpTo(), end = lines_.FileEnd();
    if (!stream || end == kUnknownSize || end < from || end - from < inPlaceFrom_) return false;
    const std::string_view held = lines_.Held();
    std::int64_t n = scan::CountLineEnds(held.data(), held.size());
    char last = held.empty() ? '\n' : held.back();
    const bool ok = stream->ScanInPlace(from, end, [&n, &last](const char* p, std::size_t size) {
        if (size == 0) return;
        if (last == '\r' && p[0] == '\n') --n;  // a CR LF astride two windows is one line end
        n += scan::CountLineEnds(p, size);
        last = p[size - 1];
    });
    if (!ok) return false;
    if (last != '\r' && last != '\n') ++n;  // a last line without its end
    files = n;
    return true;
}

CatalogueCounts CatalogueCounter::Count(const std::string& path) {
    lines_.Open(path);
    return CountOpened();
}

CatalogueCounts CatalogueCounter::Count(ReadFolder& folder, const std::string& name) {
    lines_.Open(folder, name);
    return CountOpened();
}

CatalogueCounts CatalogueCounter::CountOpened() {
    CatalogueCounts counts;
    LineReader& lines = lines_;
    struct Closer {
        LineReader& r;
        ~Closer() { r.Close(); }
    } closer{lines};
    counts.opened = lines.IsOpen();
    counts.failure = lines.OpenFailure();
    if (!counts.opened) return counts;
    // The reader hands out blocks of whole lines, so no line end is split:
    // the folder section to its empty line and the file section to the end
    // are counted a block at a time, by one vector pass each.
    std::string_view line;
    if (!lines.NextRaw(line)) return counts;
    counts.headerLine = DecodeLine(line);
    if (!lines.NextRaw(line)) return counts;  // line 2, whatever it holds
    if (!lines.SkipSection(&counts.folders)) return counts;
    const auto isEnd = [](char c) { return c == '\r' || c == '\n'; };
    if (CountRestInPlace(counts.files)) return counts;
    for (std::string_view block; !(block = lines.Buffered()).empty(); lines.Skip(block.size())) {
        counts.files += scan::CountLineEnds(block.data(), block.size());
        if (!isEnd(block.back())) ++counts.files;
    }
    return counts;
}

CatalogueCounts CountCatalogue(const std::string& path) { return CatalogueCounter().Count(path); }

bool FindRecordLine(const std::string& cataloguePath, std::string_view path, std::string& line) {
    LineReader lines(cataloguePath);
    // ASCII keeps its bytes in both encodings a line may have, so for an
    // ASCII path the raw bytes decide; otherwise each line is decoded first.
    const bool ascii = IsAscii(path);
    std::string_view raw;
    std::string decoded;
    while (lines.NextRaw(raw)) {
        if (ascii) {
            if (IsRecordOf(raw, path)) {
                line = DecodeLine(raw);
                return true;
            }
            continue;
        }
        // A byte grows to at most three in UTF-8: a line this short can't
        // hold the path and a bar in either encoding.
        if (raw.size() * 3 <= path.size()) continue;
        decoded = DecodeLine(raw);
        if (IsRecordOf(decoded, path)) {
            line = std::move(decoded);
            return true;
        }
    }
    return false;
}

// --- Names -------------------------------------------------------------------

std::string CatalogueName(std::string_view label) {
    std::string name(label);
    name += kCatalogueEnding;
    return name;
}

std::string CataloguePath(const std::string& dataFolder, const std::string& label) {
    std::string path = dataFolder;
    path += '/';
    path += label;
    path += kCatalogueEnding;
    return path;
}

bool LabelOfCatalogueName(std::string_view name, std::string& label) {
    if (!name.ends_with(kCatalogueEnding)) return false;
    const std::string_view stem = name.substr(0, name.size() - kCatalogueEnding.size());
    const std::size_t slash = stem.rfind('/');
    label.assign(slash == std::string_view::npos ? stem : stem.substr(slash + 1));
    return true;
}

// --- Writing -----------------------------------------------------------------

namespace {

std::string_view WithoutTrailingSlashes(std::string_view root) {
    while (!root.empty() && root.back() == '/') root.remove_suffix(1);
    return root;
}

// One name (no '/' in it) as valid UTF-8 that can't break a line: bars,
// backslashes and control characters (C0, DEL and C1) become '?'. A name
// that isn't valid UTF-8 is taken as Windows-1252, the likeliest origin of
// such bytes.
void AppendName(std::string& out, std::string_view name) {
    // Most names are printable ASCII without a bar or a backslash: whole.
    if (std::all_of(name.begin(), name.end(), [](char c) {
            const auto b = static_cast<unsigned char>(c);
            return b >= 0x20 && b < 0x7F && b != '|' && b != '\\';
        })) {
        out.append(name);
        return;
    }
    std::string converted;
    if (!IsAscii(name) && !IsValidUtf8(name)) {
        converted = Cp1252ToUtf8(name);
        name = converted;
    }
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto b = static_cast<unsigned char>(name[i]);
        if (b < 0x20 || b == 0x7F || b == '|' || b == '\\') {
            out += '?';
        } else if (b == 0xC2 && i + 1 < name.size() &&
                   static_cast<unsigned char>(name[i + 1]) < 0xA0) {
            out += '?';  // U+0080..U+009F
            ++i;
        } else {
            out += static_cast<char>(b);
        }
    }
}

void AppendEntryPath(std::string& out, std::string_view root, std::string_view name) {
    root = WithoutTrailingSlashes(root);
    std::string_view rel = name;
    if (name.starts_with(root) && name.size() > root.size() && name[root.size()] == '/')
        rel = name.substr(root.size());
    // rel now begins with '/' (or, for a name outside the root, is kept whole
    // so that nothing is lost).
    std::size_t start = 0;
    while (start < rel.size() && rel[start] == '/') ++start;
    out += '\\';
    for (;;) {
        const std::size_t slash = rel.find('/', start);
        AppendName(out, rel.substr(start, slash == std::string_view::npos ? rel.npos : slash - start));
        if (slash == std::string_view::npos) break;
        start = slash + 1;
        while (start < rel.size() && rel[start] == '/') ++start;  // "a//b" is "a/b"
        if (start >= rel.size()) break;
        out += '\\';
    }
}

void AppendFixed(std::string& out, Fixed value) {
    if (value.raw % Fixed::kScale == 0) {
        char digits[24];
        const auto r = std::to_chars(digits, digits + sizeof digits, value.raw / Fixed::kScale);
        out.append(digits, r.ptr);
    } else {
        out += FixedText(value);
    }
}

void AppendInt(std::string& out, std::int64_t v) {
    char digits[24];
    const auto r = std::to_chars(digits, digits + sizeof digits, v);
    out.append(digits, r.ptr);
}

// A field that must stay one field on one line.
void AppendField(std::string& out, std::string_view text) {
    const std::size_t start = out.size();
    out.append(text);
    for (std::size_t i = start; i < out.size(); ++i)
        if (out[i] == '|' || out[i] == '\r' || out[i] == '\n') out[i] = '?';
}

void AppendFolderLine(std::string& out, std::string_view root, const WalkRecord& folder) {
    AppendEntryPath(out, root, folder.Name);
    out += '|';
    AppendField(out, folder.Attributes);
    out += '|';
    AppendField(out, folder.Date);
    out += '|';
}

void AppendFileLine(std::string& out, std::string_view root, const WalkRecord& file) {
    AppendEntryPath(out, root, file.Name);
    out += '|';
    AppendFixed(out, file.Size);
    out += '|';
    AppendField(out, file.Attributes);
    out += '|';
    AppendField(out, file.Date);
    out += '|';
}

}  // namespace

std::string CatalogueEntryPath(std::string_view root, std::string_view name) {
    std::string out;
    AppendEntryPath(out, root, name);
    return out;
}

std::string HeaderLineOf(const VolumeInfo& volume, std::string_view description) {
    std::string out;
    AppendFixed(out, volume.Size);
    out += '|';
    AppendInt(out, volume.SerialNumber);
    out += '|';
    AppendField(out, volume.FileSystem);
    out += '|';
    AppendInt(out, volume.ClusterCount);
    out += '|';
    AppendInt(out, volume.SectorsPerCluster);
    out += '|';
    AppendInt(out, volume.BytesPerSector);
    out += '|';
    // The description is the rest of the line: a bar may stay, a line
    // break may not.
    for (char c : description) out += (c == '\r' || c == '\n') ? ' ' : c;
    return out;
}

std::string FolderLineOf(std::string_view root, const WalkRecord& folder) {
    std::string out;
    AppendFolderLine(out, root, folder);
    return out;
}

std::string FileLineOf(std::string_view root, const WalkRecord& file) {
    std::string out;
    AppendFileLine(out, root, file);
    return out;
}

std::string CatalogueText(std::string_view root, const VolumeInfo& volume,
                          std::string_view description, const WalkList& folders,
                          const WalkList& files) {
    std::size_t estimate = 128 + description.size();
    const std::size_t rootSize = root.size();
    for (const WalkRecord& r : folders) estimate += r.Name.size() - std::min(rootSize, r.Name.size()) + 32;
    for (const WalkRecord& r : files) estimate += r.Name.size() - std::min(rootSize, r.Name.size()) + 44;
    std::string text;
    text.reserve(estimate);
    text += HeaderLineOf(volume, description);
    text += "\r\n\r\n";
    for (const WalkRecord& r : folders) {
        AppendFolderLine(text, root, r);
        text += "\r\n";
    }
    text += "\r\n";
    for (const WalkRecord& r : files) {
        AppendFileLine(text, root, r);
        text += "\r\n";
    }
    return text;
}

}  // namespace ct
