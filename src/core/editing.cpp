#include "core/editing.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include "core/catalogue.h"
#include "core/text.h"
#include "core/textrules.h"

namespace ct {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kProgramScratchName = ".temp.idx.part";
constexpr std::string_view kScratchEnd = ".idx.part";
constexpr std::size_t kBlock = 1 << 20;

bool EndsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

bool HasHighByte(std::string_view bytes) {
    return std::any_of(bytes.begin(), bytes.end(),
                       [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

void SetError(std::string* error, std::string text) {
    if (error) *error = std::move(text);
}

// Copies a catalogue line by line into `out`, changing at most one line. Once
// that line is written the rest of the file goes through in blocks, unsplit.
class Rewriter {
public:
    Rewriter(bool isHeader, std::string_view targetPath, std::string_view newText, OutFile& out)
        : isHeader_(isHeader), target_(targetPath), text_(newText), out_(out) {}

    bool Feed(std::string_view block) {
        if (done_) return Emit(block);
        pending_.append(block);
        return Lines(false) && Flush(false);
    }

    // The end of the file: a CR that closed the last block ends its line, and
    // a last line without any line end is a line too.
    bool Finish() {
        if (!done_) {
            if (!Lines(true)) return false;
            if (!pending_.empty()) {
                std::string last;
                last.swap(pending_);
                if (!Line(last)) return false;
            }
        }
        return Flush(true);
    }

    bool Changed() const { return done_; }

private:
    // Hands every whole line in `pending_` to Line(), the line ends the
    // readers know (CR LF, LF, a lone CR) with it. Once the line is changed
    // the rest goes out as it stands.
    bool Lines(bool atEnd) {
        std::size_t start = 0;
        while (!done_) {
            const std::size_t eol = pending_.find_first_of("\r\n", start);
            if (eol == std::string::npos) break;
            std::size_t next = eol + 1;
            if (pending_[eol] == '\r') {
                if (next < pending_.size()) {
                    if (pending_[next] == '\n') ++next;
                } else if (!atEnd) {
                    break;  // its LF may open the next block
                }
            }
            if (!Line(std::string_view(pending_).substr(start, next - start))) return false;
            start = next;
        }
        if (done_) {
            const bool ok = Emit(std::string_view(pending_).substr(start));
            pending_.clear();
            return ok;
        }
        pending_.erase(0, start);
        return true;
    }

    bool Line(std::string_view raw) {
        std::string_view body = raw;
        if (!body.empty() && body.back() == '\n') body.remove_suffix(1);
        if (!body.empty() && body.back() == '\r') body.remove_suffix(1);
        const std::string_view lineEnd = raw.substr(body.size());
        ++lineNo_;
        const bool hit = isHeader_ ? lineNo_ == 1 : Matches(body);
        if (!hit) return Emit(raw);
        done_ = true;
        const std::string changed = WithDescription(DecodeLine(body), text_);
        return Emit(changed) && Emit(lineEnd);
    }

    bool Matches(std::string_view body) const {
        // Bytes below 0x80 read the same in UTF-8 and Windows-1252, so only a
        // first field with others needs the line decoded to compare.
        if (!HasHighByte(FirstField(body))) return IsRecordOf(body, target_);
        return IsRecordOf(DecodeLine(body), target_);
    }

    bool Emit(std::string_view bytes) {
        buffer_.append(bytes);
        return Flush(false);
    }

    bool Flush(bool all) {
        if (buffer_.empty() || (!all && buffer_.size() < kBlock)) return true;
        const bool ok = out_.Write(buffer_);
        buffer_.clear();
        return ok;
    }

    bool isHeader_;
    std::string target_, text_;
    OutFile& out_;
    std::string pending_, buffer_;
    std::size_t lineNo_ = 0;
    bool done_ = false;
};

}  // namespace

bool TargetFromHit(std::string_view hitText, std::string& label, std::string& targetPath,
                   bool* isFolder) {
    const std::size_t pos = hitText.find("\\\\");
    if (pos == std::string_view::npos) return false;
    std::string_view path = hitText.substr(pos + 1);
    const bool folder = path.size() > 1 && path.back() == '\\';
    if (folder) path.remove_suffix(1);
    if (path.size() < 2) return false;  // "\" alone names the root, which has no record
    label.assign(hitText.substr(0, pos));
    targetPath.assign(path);
    if (isFolder) *isFolder = folder;
    return true;
}

std::string RewriteScratchPath(FileOps& ops, const std::string& programFolder,
                               const std::string& dataFolder, const std::string& label) {
    const std::string programData = programFolder + "/Daten";
    if (ops.SameFileSystem(programData, dataFolder))
        return programData + "/" + std::string(kProgramScratchName);
    return dataFolder + "/." + label + std::string(kScratchEnd);
}

int CleanScratchFiles(FileOps& ops, const std::string& programFolder, const std::string& dataFolder) {
    int removed = 0;
    const std::string programScratch = programFolder + "/Daten/" + std::string(kProgramScratchName);
    if (ops.Exists(programScratch) && ops.Remove(programScratch, nullptr)) ++removed;

    std::error_code ec;
    std::vector<std::string> leftovers;
    for (fs::directory_iterator it(dataFolder, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().filename().string();
        if (name.size() > 1 + kScratchEnd.size() && name.front() == '.' && EndsWith(name, kScratchEnd))
            leftovers.push_back(dataFolder + "/" + name);
    }
    for (const std::string& path : leftovers)
        if (ops.Remove(path, nullptr)) ++removed;
    return removed;
}

bool DescriptionRewrite(FileOps& ops, const std::string& programFolder,
                        const std::string& dataFolder, const std::string& label, bool isHeader,
                        const std::string& targetPath, const std::string& newText,
                        std::string* error) {
    const std::string catalogue = CataloguePath(dataFolder, label);
    const std::string unchanged = "; the catalogue " + catalogue + " is unchanged";

    if (newText.find_first_of("\r\n") != std::string::npos) {
        SetError(error, "A description can't hold a line break" + unchanged);
        return false;
    }
    std::error_code ec;
    const fs::file_status status = fs::status(catalogue, ec);
    if (ec || !fs::is_regular_file(status)) {
        SetError(error, "The catalogue " + catalogue + " doesn't exist or isn't a file");
        return false;
    }
    const fs::perms writeBits = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    if ((status.permissions() & writeBits) == fs::perms::none) {
        SetError(error, "The catalogue " + catalogue + " is read-only" + unchanged);
        return false;
    }

    std::unique_ptr<std::FILE, int (*)(std::FILE*)> in(std::fopen(catalogue.c_str(), "rb"), &std::fclose);
    if (!in) {
        SetError(error, "The catalogue " + catalogue + " can't be read: " + std::strerror(errno));
        return false;
    }

    const std::string scratch = RewriteScratchPath(ops, programFolder, dataFolder, label);
    std::string why;
    std::unique_ptr<OutFile> out = ops.Create(scratch, &why);
    if (!out) {
        SetError(error, "The scratch file " + scratch + " can't be created: " + why + unchanged);
        return false;
    }
    auto fail = [&](const std::string& what) {
        out->Close();
        ops.Remove(scratch, nullptr);
        SetError(error, what + unchanged);
        return false;
    };

    Rewriter rewriter(isHeader, targetPath, newText, *out);
    std::string block(kBlock, '\0');
    for (;;) {
        const std::size_t got = std::fread(block.data(), 1, block.size(), in.get());
        if (got > 0 && !rewriter.Feed(std::string_view(block.data(), got)))
            return fail("Writing the scratch file " + scratch + " failed (is the disk full?)");
        if (got < block.size()) break;
    }
    if (std::ferror(in.get()))
        return fail("Reading the catalogue " + catalogue + " failed");
    in.reset();
    if (!rewriter.Finish())
        return fail("Writing the scratch file " + scratch + " failed (is the disk full?)");
    if (!out->Sync()) return fail("The scratch file " + scratch + " couldn't be flushed to disk");
    if (!out->Close()) return fail("The scratch file " + scratch + " couldn't be closed");

    // The new catalogue takes the old one's permissions, so a rewrite doesn't
    // change who may read it.
    fs::permissions(scratch, status.permissions(), ec);
    if (!ops.Rename(scratch, catalogue, &why))
        return fail("The new catalogue couldn't take the old one's place: " + why);
    return true;
}

RenameOutcome RenameDisc(FileOps& ops, const std::string& dataFolder, const std::string& oldLabel,
                         const std::string& newLabelRaw, const std::vector<std::string>& labels) {
    RenameOutcome outcome;
    outcome.label = TrimBlanks(CleanLabel(newLabelRaw));
    if (outcome.label.empty()) {
        outcome.result = RenameResult::EmptyLabel;
        return outcome;
    }
    if (outcome.label == oldLabel) {
        outcome.result = RenameResult::Unchanged;
        return outcome;
    }
    const std::string from = CataloguePath(dataFolder, oldLabel);
    const std::string to = CataloguePath(dataFolder, outcome.label);
    // The list may lack a file that stands under the new name (one in a
    // sub-folder is listed by its bare name, so it counts; and a name that
    // differs only in case may be the same file): never rename over it.
    if (std::find(labels.begin(), labels.end(), outcome.label) != labels.end() || ops.Exists(to)) {
        outcome.result = RenameResult::LabelInUse;
        return outcome;
    }
    if (!ops.Exists(from)) {
        outcome.result = RenameResult::Failed;
        outcome.error = "The catalogue " + from + " doesn't exist any more";
        return outcome;
    }
    std::string why;
    if (!ops.Rename(from, to, &why)) {
        outcome.result = RenameResult::Failed;
        outcome.error = "The catalogue " + from + " couldn't be renamed to " + to + ": " + why +
                        "; it keeps its old label";
        return outcome;
    }
    outcome.result = RenameResult::Renamed;
    return outcome;
}

bool DeleteDisc(FileOps& ops, const std::string& dataFolder, const std::string& label,
                std::string* error) {
    const std::string path = CataloguePath(dataFolder, label);
    std::string why;
    if (ops.Remove(path, &why) || !ops.Exists(path)) return true;
    SetError(error, "The catalogue " + path + " couldn't be deleted: " + why);
    return false;
}

}  // namespace ct
