#include "core/options.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "core/catalogue.h"

namespace ct {

namespace {

bool SameFile(const std::string& a, const std::string& b) {
    std::error_code ec;
    return std::filesystem::equivalent(a, b, ec) && !ec;
}

std::string Joined(std::string folder) {
    // The user may type the folder with a closing separator; the catalogue
    // path must not get two.
    while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
    return folder;
}

}  // namespace

MoveOutcome MoveCatalogues(FileOps& ops, const std::vector<std::string>& labels,
                           const std::string& from, const std::string& to) {
    MoveOutcome outcome;
    const std::string target = Joined(to);
    std::vector<bool> moved(labels.size(), false);
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const std::string source = CataloguePath(from, labels[i]);
        const std::string copy = CataloguePath(target, labels[i]);
        if (SameFile(source, copy)) continue;
        if (!ops.Copy(source, copy, nullptr)) {
            outcome.failure = Fail(FailCode::Copy, source, errno, copy);
            outcome.failedLabel = labels[i];
            return outcome;
        }
        moved[i] = true;
    }
    outcome.copied = true;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (!moved[i]) continue;
        if (!ops.Remove(CataloguePath(from, labels[i]), nullptr)) outcome.kept.push_back(labels[i]);
    }
    return outcome;
}

}  // namespace ct
