#include "core/adddisc.h"

#include <cerrno>
#include <memory>

#include "core/catalogue.h"
#include "core/textrules.h"

namespace ct {

namespace {

constexpr std::size_t kFlushAt = std::size_t{1} << 20;

// Lines gathered into large writes: one write per megabyte, not per entry.
class Buffered {
public:
    explicit Buffered(OutFile& out) : out_(out) { buffer_.reserve(kFlushAt + 4096); }
    bool Line(std::string_view line) {
        buffer_ += line;
        buffer_ += "\r\n";
        return buffer_.size() < kFlushAt || Flush();
    }
    bool Flush() {
        const bool ok = buffer_.empty() || out_.Write(buffer_);
        buffer_.clear();
        return ok;
    }

private:
    OutFile& out_;
    std::string buffer_;
};

class CatalogueSink final : public WalkSink {
public:
    CatalogueSink(const AddRequest& request, Buffered& folders, Buffered& files)
        : request_(request), folderLines_(folders), fileLines_(files) {}

    bool Folder(const WalkRecord& folder) override {
        ++folders;
        ok = ok && folderLines_.Line(FolderLineOf(request_.root, folder));
        return Tick();
    }
    bool File(const WalkRecord& file) override {
        ++files;
        ok = ok && fileLines_.Line(FileLineOf(request_.root, file));
        return Tick();
    }

    void Progress(std::size_t entries) override {
        if (request_.progress) request_.progress(entries);
        if (request_.cancelled && request_.cancelled()) cancelled = true;
    }

    std::size_t folders = 0, files = 0;
    bool ok = true;  // every line so far went into its scratch file
    bool cancelled = false;

private:
    bool Tick() {
        if (++sinceAsked_ >= 256) {
            sinceAsked_ = 0;
            if (request_.cancelled && request_.cancelled()) cancelled = true;
        }
        if (request_.progress && ++sinceReport_ >= 1000) {
            sinceReport_ = 0;
            request_.progress(folders + files);
        }
        return ok && !cancelled;
    }

    const AddRequest& request_;
    Buffered& folderLines_;
    Buffered& fileLines_;
    std::size_t sinceAsked_ = 0, sinceReport_ = 0;
};

// Appends the whole file `from` to `out`.
bool AppendFile(FileOps& ops, const std::string& from, OutFile& out) {
    const ReadFile in = ops.OpenRead(from, nullptr);
    if (!in) return false;
    std::string block(kFlushAt, '\0');
    for (;;) {
        const std::size_t got = in->Read(block.data(), block.size());
        if (got > 0 && !out.Write(std::string_view(block.data(), got))) return false;
        if (got < block.size()) return in->Error() == 0;
    }
}

}  // namespace

WalkSummary DiscSource::Walk(const std::string& path, WalkSink& sink) {
    WalkList folders, files;
    WalkFolder(path, folders, files, [&sink](std::size_t entries) { sink.Progress(entries); });
    return HandOn(folders, files, sink);
}

// Folders and files come as two lists here; each goes to the sink in its own
// order, which is all a catalogue keeps of the walk.
WalkSummary DiscSource::HandOn(const WalkList& folders, const WalkList& files, WalkSink& sink) {
    for (const WalkRecord& r : folders)
        if (!sink.Folder(r)) return WalkSummary{0, true, {}};
    for (const WalkRecord& r : files)
        if (!sink.File(r)) return WalkSummary{0, true, {}};
    return {};
}

bool LabelInUse(DiscSource& source, const std::string& dataFolder, const std::string& label) {
    // The data folder itself is asked, not any list on screen: re-reading a
    // disc relies on its set-aside catalogue no longer counting.
    WalkList folders, files;
    source.WalkFolder(dataFolder, folders, files, {});
    std::string found;
    for (const WalkRecord& f : files)
        if (LabelOfCatalogueName(f.Name, found) && found == label) return true;
    return false;
}

AddOutcome AddDisc(const AddRequest& request, DiscSource& source, FileOps& ops) {
    AddOutcome outcome;
    outcome.label = request.label;
    outcome.description = request.description;

    // Emptiness is judged on the raw text, before cleaning: a label of
    // blanks or of removed characters passes here and ends up empty.
    if (request.label.empty()) {
        outcome.result = AddResult::EmptyLabel;
        return outcome;
    }
    outcome.label = TrimBlanks(CleanLabel(request.label));
    outcome.description = NormaliseDescription(request.description);

    if (LabelInUse(source, request.dataFolder, outcome.label)) {
        outcome.result = AddResult::LabelInUse;
        return outcome;
    }
    outcome.cataloguePath = CataloguePath(request.dataFolder, outcome.label);

    // Two scratch files of our own: the header and the folder lines go into
    // the first as the walk finds them, the file lines into the second,
    // which is appended once the walk is done.
    std::string mainPath, filesPath;
    Failure failure;
    std::unique_ptr<OutFile> mainOut = ops.CreateScratch(request.dataFolder, ".idx.part", mainPath, &failure);
    std::unique_ptr<OutFile> filesOut =
        mainOut ? ops.CreateScratch(request.dataFolder, ".idx.part", filesPath, &failure) : nullptr;
    auto drop = [&](Failure why, AddResult result) {
        if (mainOut) mainOut->Close();
        if (filesOut) filesOut->Close();
        if (!mainPath.empty()) ops.Remove(mainPath, nullptr);
        if (!filesPath.empty()) ops.Remove(filesPath, nullptr);
        outcome.failure = std::move(why);
        outcome.result = result;
        return outcome;
    };
    if (!filesOut) return drop(Fail(FailCode::CreateScratch, outcome.cataloguePath, failure.sysError),
                               AddResult::WriteFailed);

    VolumeInfo volume;
    source.ReadVolumeInfo(request.root, volume);
    Buffered folderLines(*mainOut), fileLines(*filesOut);
    folderLines.Line(HeaderLineOf(volume, outcome.description));
    folderLines.Line("");
    CatalogueSink sink(request, folderLines, fileLines);
    const WalkSummary walked = source.Walk(request.root, sink);
    // An unreadable source must not become an empty catalogue under the label.
    if (walked.failure) return drop(walked.failure, AddResult::WriteFailed);
    outcome.folders = sink.folders;
    outcome.files = sink.files;
    outcome.unreadable = walked.unreadable;
    if (request.progress) request.progress(sink.folders + sink.files);
    // A stop asked for at the very end still counts: the user saw no success.
    if (!sink.cancelled && request.cancelled && request.cancelled()) sink.cancelled = true;
    if (sink.cancelled) return drop(Fail(FailCode::Cancelled, outcome.cataloguePath), AddResult::Cancelled);

    // The file lines' scratch file is only read back, never kept: no sync.
    if (!sink.ok || !folderLines.Line("") || !folderLines.Flush() || !fileLines.Flush() || !filesOut->Close())
        return drop(Fail(FailCode::WriteScratch, outcome.cataloguePath, errno), AddResult::WriteFailed);
    if (!AppendFile(ops, filesPath, *mainOut) || !mainOut->Sync() || !mainOut->Close())
        return drop(Fail(FailCode::WriteScratch, outcome.cataloguePath, errno), AddResult::WriteFailed);
    ops.Remove(filesPath, nullptr);
    filesPath.clear();
    // Never over a catalogue that another program added under this label
    // while the disc was read.
    failure = ops.RenameNew(mainPath, outcome.cataloguePath);
    if (failure) {
        const bool taken = failure.sysError == EEXIST;
        mainOut.reset();
        filesOut.reset();
        return drop(taken ? Failure{} : Fail(FailCode::Replace, outcome.cataloguePath, failure.sysError),
                    taken ? AddResult::LabelInUse : AddResult::WriteFailed);
    }
    outcome.result = AddResult::Added;
    return outcome;
}

}  // namespace ct
