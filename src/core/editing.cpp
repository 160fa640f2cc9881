#include "core/editing.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <system_error>

#include "core/catalogue.h"
#include "core/failure.h"
#include "core/text.h"
#include "core/textrules.h"

namespace ct {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBlock = 1 << 20;

bool HasHighByte(std::string_view bytes) {
    return std::any_of(bytes.begin(), bytes.end(),
                       [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

// Windows-1252 of a UTF-8 text, '?' for each character 1252 lacks, as a
// Windows program writing ANSI text does.
std::string ToCp1252Lossy(std::string_view utf8) {
    std::string out, one;
    for (std::size_t i = 0; i < utf8.size();) {
        const unsigned char lead = static_cast<unsigned char>(utf8[i]);
        std::size_t len = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 1;
        len = std::min(len, utf8.size() - i);
        one.clear();
        out += Utf8ToCp1252(utf8.substr(i, len), one) && one.size() == 1 ? one : std::string("?");
        i += len;
    }
    return out;
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
            // Bytes already searched aren't searched again, so one line of
            // any length costs one pass.
            const std::size_t eol = pending_.find_first_of("\r\n", std::max(start, scanned_));
            if (eol == std::string::npos) {
                scanned_ = pending_.size();
                break;
            }
            std::size_t next = eol + 1;
            if (pending_[eol] == '\r') {
                if (next < pending_.size()) {
                    if (pending_[next] == '\n') ++next;
                } else if (!atEnd) {
                    scanned_ = eol;
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
        scanned_ = scanned_ > start ? scanned_ - start : 0;
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
        // Everything up to the last '|' keeps its bytes; the new text takes
        // the line's own encoding, so a Windows reader still finds the file.
        const std::string changed =
            WithDescription(body, IsValidUtf8(body) ? text_ : ToCp1252Lossy(text_));
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
    std::size_t scanned_ = 0;  // pending_ holds no line end before this
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

Failure ResolveLabel(const std::string& dataFolder, const std::string& label, std::string& cataloguePath) {
    const bool control = std::any_of(label.begin(), label.end(),
                                     [](char c) { return static_cast<unsigned char>(c) < 0x20; });
    if (label == "." || label == ".." || control || CleanLabel(label) != label)
        return Fail(FailCode::BadLabel, label);
    const std::string path = CataloguePath(dataFolder, label);
    Failure failure;
    if (!OpenForReading(path, &failure))
        return failure.code == FailCode::NotFound ? Fail(FailCode::NoDisc, label) : failure;
    cataloguePath = path;
    return {};
}

Failure DescriptionRewrite(FileOps& ops, const std::string& dataFolder, const std::string& label,
                           bool isHeader, const std::string& targetPath, const std::string& newText) {
    const std::string catalogue = CataloguePath(dataFolder, label);
    if (newText.find_first_of("\r\n") != std::string::npos) return Fail(FailCode::BadText, catalogue);

    // Held from reading the old file until the new one stands in its place,
    // so a second writer's edit is never built on a file about to vanish.
    Failure failure;
    const std::unique_ptr<WriteLock> lock = ops.Lock(catalogue, &failure);
    if (!lock) return failure;
    std::error_code ec;
    const fs::file_status status = fs::status(catalogue, ec);
    const fs::perms writeBits = fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    if (!ec && (status.permissions() & writeBits) == fs::perms::none)
        return Fail(FailCode::ReadOnly, catalogue, EACCES);

    ReadFile in = OpenForReading(catalogue, &failure);
    if (!in) return failure;

    std::string scratch;
    std::unique_ptr<OutFile> out = ops.CreateScratch(FolderOf(catalogue), ".idx.part", scratch, &failure);
    if (!out) return Fail(FailCode::CreateScratch, catalogue, failure.sysError);
    auto fail = [&](FailCode code, int sysError) {
        out->Close();
        ops.Remove(scratch, nullptr);
        return Fail(code, catalogue, sysError);
    };

    Rewriter rewriter(isHeader, targetPath, newText, *out);
    std::string block(kBlock, '\0');
    for (;;) {
        const std::size_t got = in->Read(block.data(), block.size());
        if (got > 0 && !rewriter.Feed(std::string_view(block.data(), got)))
            return fail(FailCode::WriteScratch, errno);
        if (got < block.size()) break;
    }
    if (in->Error()) return fail(FailCode::Unreadable, in->Error());
    in.reset();
    if (!rewriter.Finish() || !out->Sync()) return fail(FailCode::WriteScratch, errno);
    if (!out->Close()) return fail(FailCode::WriteScratch, errno);

    // The new catalogue takes the old one's permissions, so a rewrite doesn't
    // change who may read it.
    fs::permissions(scratch, status.permissions(), ec);
    std::string why;
    if (!ops.Rename(scratch, catalogue, &why)) return fail(FailCode::Replace, errno);
    return {};
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
    const std::unique_ptr<WriteLock> lock = ops.Lock(from, &outcome.failure);
    if (!lock) {
        outcome.result = RenameResult::Failed;
        return outcome;
    }
    outcome.failure = ops.RenameNew(from, to);
    if (outcome.failure) {
        // Another program took the name between the check and the rename.
        outcome.result = outcome.failure.sysError == EEXIST ? RenameResult::LabelInUse : RenameResult::Failed;
        if (outcome.result == RenameResult::LabelInUse) outcome.failure = {};
        return outcome;
    }
    outcome.result = RenameResult::Renamed;
    return outcome;
}

Failure DeleteDisc(FileOps& ops, const std::string& dataFolder, const std::string& label) {
    const std::string path = CataloguePath(dataFolder, label);
    Failure failure;
    // Not in the middle of another program's edit, whose rename would bring
    // the catalogue back.
    const std::unique_ptr<WriteLock> lock = ops.Lock(path, &failure);
    if (!lock) return failure.code == FailCode::NotFound ? Failure{} : failure;
    std::string why;
    if (ops.Remove(path, &why) || !ops.Exists(path)) return {};
    return Fail(FailCode::Remove, path, errno);
}

}  // namespace ct
