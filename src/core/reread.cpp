#include "core/reread.h"

#include <cctype>
#include <cerrno>

#include "core/catalogue.h"

namespace ct {

namespace {

constexpr std::string_view kSuffix = ".idx.reread";
// For a label so long that the usual name won't fit where "<label>.idx" does
// (255 bytes a name): "." + label + ".rr" is exactly as long.
constexpr std::string_view kShortSuffix = ".rr";
constexpr std::size_t kNameMax = 255;

}  // namespace

std::string SetAsideName(const std::string& label, int number) {
    const std::string number_ = number > 1 ? std::to_string(number) : std::string();
    std::string name = "." + label + std::string(kSuffix) + number_;
    if (name.size() > kNameMax) name = "." + label + std::string(kShortSuffix) + number_;
    return name;
}

bool IsSetAsideName(const std::string& name, std::string* label) {
    std::string_view rest(name);
    while (!rest.empty() && std::isdigit(static_cast<unsigned char>(rest.back()))) rest.remove_suffix(1);
    if (rest.size() >= 1 + kSuffix.size() && rest.front() == '.' && rest.ends_with(kSuffix)) {
        if (label) *label = std::string(rest.substr(1, rest.size() - 1 - kSuffix.size()));
        return true;
    }
    // The short form only where the long one couldn't have been used.
    if (!rest.empty() && rest.front() == '.' && rest.ends_with(kShortSuffix) &&
        name.size() - kShortSuffix.size() + kSuffix.size() > kNameMax) {
        if (label) *label = std::string(rest.substr(1, rest.size() - 1 - kShortSuffix.size()));
        return true;
    }
    return false;
}

bool SetAside(FileOps& ops, const std::string& dataFolder, const std::string& label,
              SetAsideFile& out, Failure* failure) {
    const std::string home = Join(dataFolder, CatalogueName(label));
    if (!ops.Exists(home)) {
        if (failure) *failure = Fail(FailCode::NotFound, home);
        return false;
    }
    // An older set-aside file of this label (one that couldn't be restored)
    // must not be replaced: take the next free number.
    std::string path;
    for (int number = 1;; ++number) {
        path = Join(dataFolder, SetAsideName(label, number));
        if (!ops.Exists(path)) break;
    }
    // Not in the middle of another program's edit of it.
    Failure why;
    const std::unique_ptr<WriteLock> lock = ops.Lock(home, &why);
    if (!lock) {
        if (failure) *failure = why ? why : Fail(FailCode::SetAside, home);
        return false;
    }
    if (const Failure renamed = ops.RenameNew(home, path)) {
        if (failure) *failure = Fail(FailCode::SetAside, home, renamed.sysError);
        return false;
    }
    out = SetAsideFile{path, home, label};
    return true;
}

RestoreResult Restore(DiscSource& source, FileOps& ops, const std::string& dataFolder,
                      const SetAsideFile& file, Failure* failure) {
    if (ops.Exists(file.home) || LabelInUse(source, dataFolder, file.label))
        return RestoreResult::LabelTaken;
    // Never over a catalogue that appeared under the label just now.
    const Failure why = ops.RenameNew(file.path, file.home);
    if (why.sysError == EEXIST) return RestoreResult::LabelTaken;
    if (why) {
        if (failure) *failure = why;  // a Rename failure from the set-aside file to its home
        return RestoreResult::Failed;
    }
    return RestoreResult::Restored;
}

bool Discard(FileOps& ops, const SetAsideFile& file, Failure* failure) {
    if (ops.Remove(file.path, nullptr)) return true;
    if (failure) *failure = Fail(FailCode::Remove, file.path, errno);
    return false;
}

std::vector<LeftoverOutcome> RestoreLeftovers(DiscSource& source, FileOps& ops,
                                              const std::string& dataFolder) {
    WalkList folders, files;
    source.WalkFolder(dataFolder, folders, files, {});
    std::vector<LeftoverOutcome> outcomes;
    for (const WalkRecord& record : files) {
        std::string label;
        if (!IsSetAsideName(NameOf(record.Name), &label)) continue;
        LeftoverOutcome outcome;
        outcome.file = SetAsideFile{record.Name, Join(FolderOf(record.Name), CatalogueName(label)), label};
        outcome.result = Restore(source, ops, dataFolder, outcome.file, &outcome.failure);
        outcomes.push_back(std::move(outcome));
    }
    return outcomes;
}

}  // namespace ct
