// The catalogue file: one text file per disc, "<data folder>/<label>.idx".
//
//   line 1       DiscHeader   Size|Serial|FileSystem|Clusters|SectorsPerCluster|BytesPerSector|Description
//   line 2       empty
//   lines 3..k   FolderRecord Path|Attributes|Time|Description     (walk order)
//   line k+1     empty
//   k+2..end     FileRecord   Path|Size|Attributes|Time|Description
//
// Every line ends in CR LF. Paths begin with '\' and use '\' inside. Only a
// description can hold a '|', and it is always the last field, so records are
// split from the left. The readers never trust the form: a missing file, an
// empty or cut-short file, a line without bars or a very long line gives what
// can be read and never a crash or a hang.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/fileops.h"
#include "core/fixed.h"
#include "core/records.h"

namespace ct {

struct DiscHeader {
    std::string HeaderSize, SerialNumber, FileSystem, ClusterCount, SectorsPerCluster,
        BytesPerSector, Description;
};
struct FolderRecord {
    std::string Path, Attributes, Time, Description;
};
struct FileRecord {
    std::string Path, Size, Attributes, Time, Description;
};

// --- Line rules ------------------------------------------------------------

// Split from the left at the first six / three / four bars; the rest of the
// line is the description. Fields a short line lacks are empty.
DiscHeader SplitHeader(std::string_view line);
FolderRecord SplitFolder(std::string_view line);
FileRecord SplitFile(std::string_view line);

// The text before the first '|' (the whole line when it has none).
std::string_view FirstField(std::string_view line);

// Whether `line` is the record of `path`: it begins with `path` and its first
// '|' stands right behind it. Exact, case counts, never a mere prefix.
bool IsRecordOf(std::string_view line, std::string_view path);

// Whether the file `filePath` lies directly in `folder` ("." is the root): it
// begins with the folder, then '\', then no further '\'. On true, `item` (if
// given) receives the name as the file list shows it.
bool LiesDirectlyIn(std::string_view filePath, std::string_view folder,
                    std::string_view* item = nullptr);

// The line that replaces `line` when its description becomes `text`: the line
// up to and including its last '|', then `text`. A line without '|' stays.
std::string WithDescription(std::string_view line, std::string_view text);

// --- Reading -----------------------------------------------------------------

// Reads a file line by line in large blocks. A line is handed out without its
// CR LF (a lone LF or a lone CR ends a line too), decoded to UTF-8
// (DecodeLine). The last line needs no line end. Nothing beyond the current
// block is kept, so memory doesn't grow with the file (only a single line
// longer than the block grows it).
//
// Each block is cut behind its last whole line, and a CR at a block's end is
// held back until the next byte is known, so the buffer always begins at a
// line start and holds whole lines: the block scans (Buffered, Skip) may pass
// over many lines at once without splitting a line end.
class LineReader {
public:
    // The largest read: one holds most catalogues whole, and more only made
    // a larger buffer for the kernel to copy into.
    static constexpr std::size_t kDefaultBlock = std::size_t{64} << 10;
    // `blockSize` is the size of one read, at most kDefaultBlock (the buffer
    // grows beyond only for a longer line); tests and the fuzzer make it tiny
    // so that lines and line ends straddle blocks.
    explicit LineReader(const std::string& path, std::size_t blockSize = kDefaultBlock);
    // Opened later by Open.
    explicit LineReader(std::size_t blockSize);
    ~LineReader();
    // Closes the file read so far and opens `path`, keeping the buffer: a run
    // over many catalogues gets the same memory back for each. False when
    // it can't be opened (OpenFailure says why).
    bool Open(const std::string& path);
    // The same for the file `name` of `folder`.
    bool Open(ReadFolder& folder, const std::string& name);
    void Close() { file_.reset(); }
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    bool IsOpen() const { return file_ != nullptr; }
    // Why it isn't open (NotFound, NotACatalogue, Unreadable).
    const Failure& OpenFailure() const { return openFailure_; }
    // The next line as raw bytes (valid until the next call). False at the end.
    bool NextRaw(std::string_view& line);
    // The next line decoded to UTF-8. False at the end.
    bool Next(std::string& line);
    bool AtEnd();

    // The whole lines read and not yet handed out, from a line start; reads
    // the next block when none are left. Empty at the end of the file.
    std::string_view Buffered();
    // Passes over the first `n` bytes of Buffered() (n must end at a line
    // start or at the end of Buffered()).
    void Skip(std::size_t n) { pos_ += n; }
    // Passes over the lines up to the next empty line and that line too, a
    // block at a time (one vector pass finds the empty line), adding to
    // `lines` how many it passed before the empty one; false when the file
    // ends first.
    bool SkipSection(std::int64_t* lines = nullptr);

    // For a caller that takes the rest of the file another way: the bytes
    // read and not yet handed out (whole lines, then maybe part of one),
    // the file's place behind them, where the file ends as its size at
    // opening said (kUnknownSize when unknown), and the stream itself.
    std::string_view Held() const { return std::string_view(buf_.get() + pos_, end_ - pos_); }
    std::uint64_t ReadUpTo() const { return offset_; }
    std::uint64_t FileEnd() const { return left_ == kUnknownSize ? kUnknownSize : offset_ + left_; }
    ReadStream* Stream() { return file_.get(); }

private:
    void Reset();
    bool Fill();
    void Grow(std::size_t size);
    ReadFile file_;
    Failure openFailure_;
    // Not a std::string: its resize would zero every new block, which costs
    // as much as reading a small catalogue.
    std::unique_ptr<char[]> buf_;
    std::size_t size_ = 0;  // of buf_
    std::size_t pos_ = 0;  // next unread byte
    std::size_t cut_ = 0;  // end of the whole lines in buf_
    std::size_t end_ = 0;  // end of the bytes in buf_
    bool eof_ = false;
    std::uint64_t left_ = 0;  // bytes of the file not yet read, as its size at opening said
    std::uint64_t offset_ = 0;  // bytes read so far
    std::size_t block_;
};

// Walks a catalogue by its sections. Every call is safe on a damaged file.
class CatalogueReader {
public:
    explicit CatalogueReader(const std::string& path);
    bool IsOpen() const { return lines_.IsOpen(); }
    const Failure& OpenFailure() const { return lines_.OpenFailure(); }
    // Line 1 (empty when the file is empty). Reads it if not read yet.
    const std::string& HeaderLine();
    // The folder lines, one per call, up to the first empty line behind line 2
    // or the end of the file. Skips what comes before them.
    bool NextFolderLine(std::string& line);
    // The file lines, up to the next empty line or the end of the file. Skips
    // any folder lines not yet read.
    bool NextFileLine(std::string& line);

private:
    enum class At { Start, Folders, Files, Done };
    LineReader lines_;
    At at_ = At::Start;
    std::string header_;
    bool headerRead_ = false;
};

struct CatalogueCounts {
    bool opened = false;
    Failure failure;  // why it couldn't be opened (NotFound, NotACatalogue, Unreadable)
    std::string headerLine;
    std::int64_t folders = 0;  // lines between the first and the second empty line
    std::int64_t files = 0;    // lines behind the second empty line, to the end of the file
};
// The counting way: skips lines 1 and 2, counts folder lines up to the first
// empty line, then every line to the end of the file. Wide counters: a disc of
// more than 32,767 entries counts right. The sections are counted a block of
// whole lines at a time, by vector passes, without handing out lines; one
// counter serves a run over many catalogues with one buffer.
class CatalogueCounter {
public:
    // A file section of at least `inPlaceFrom` bytes behind the first block
    // is counted where it stands in the system's cache (ReadStream::ScanInPlace).
    explicit CatalogueCounter(std::size_t blockSize = LineReader::kDefaultBlock,
                              std::uint64_t inPlaceFrom = std::uint64_t{1} << 20);
    CatalogueCounts Count(const std::string& path);
    // The catalogue `name` of `folder`.
    CatalogueCounts Count(ReadFolder& folder, const std::string& name);

private:
    CatalogueCounts CountOpened();
    bool CountRestInPlace(std::int64_t& files);
    LineReader lines_;  // one buffer for the whole run
    std::uint64_t inPlaceFrom_;
};

// One catalogue counted by a counter of its own.
CatalogueCounts CountCatalogue(const std::string& path);

// The record of `path` in a catalogue (whole first field, searched from line 1
// on, as the panes and the hit list do). False when absent or unreadable.
bool FindRecordLine(const std::string& cataloguePath, std::string_view path, std::string& line);

// --- Names -------------------------------------------------------------------

// What a catalogue's file name ends in, behind its label.
inline constexpr std::string_view kCatalogueEnding = ".idx";
// "<label>.idx", the catalogue's name in the data folder.
std::string CatalogueName(std::string_view label);
// "<dataFolder>/<label>.idx"
std::string CataloguePath(const std::string& dataFolder, const std::string& label);
// The label of a walked file name that ends in exactly ".idx" (lower case):
// the text between the last '/' and those four characters.
bool LabelOfCatalogueName(std::string_view name, std::string& label);

// --- Writing -----------------------------------------------------------------

// The catalogue Path of a walked Name: the Name without the walked root, every
// '/' made '\', and in each name every '|', '\' and control character made '?',
// so that no name can break a line. `root` may end in '/' or not.
std::string CatalogueEntryPath(std::string_view root, std::string_view name);

std::string HeaderLineOf(const VolumeInfo& volume, std::string_view description);
std::string FolderLineOf(std::string_view root, const WalkRecord& folder);
std::string FileLineOf(std::string_view root, const WalkRecord& file);

// The whole catalogue text of a walk, CR LF after every line.
std::string CatalogueText(std::string_view root, const VolumeInfo& volume,
                          std::string_view description, const WalkList& folders,
                          const WalkList& files);

}  // namespace ct
