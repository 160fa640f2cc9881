#include "core/verify.h"

#include <unordered_map>

#include "core/catalogue.h"
#include "core/fixed.h"

namespace ct {
namespace {

struct Recorded {
    std::string size, time;
    bool folder = false, seen = false;
    std::size_t order = 0;
};

void Compare(std::unordered_map<std::string, Recorded>& recorded, std::string_view root,
             const WalkRecord& entry, bool folder, std::vector<VerifyFinding>& out) {
    std::string path = CatalogueEntryPath(root, entry.Name);
    const std::string size = folder ? std::string() : FixedText(entry.Size);
    const auto it = recorded.find(path);
    // A folder and a file of one path are different entries: a file that
    // became a folder is one missing and one new.
    if (it == recorded.end() || it->second.folder != folder || it->second.seen) {
        out.push_back({Difference::NotInCatalogue, folder, std::move(path), {}, folder ? entry.Date : size});
        return;
    }
    Recorded& r = it->second;
    r.seen = true;
    if (!folder && r.size != size) out.push_back({Difference::SizeChanged, folder, path, r.size, size});
    if (r.time != entry.Date) out.push_back({Difference::TimeChanged, folder, path, r.time, entry.Date});
}

}  // namespace

VerifyReport VerifyDisc(const std::string& cataloguePath, std::string_view root,
                        const WalkList& folders, const WalkList& files) {
    VerifyReport report;
    CatalogueReader reader(cataloguePath);
    if (!reader.IsOpen()) return report;
    report.opened = true;

    std::unordered_map<std::string, Recorded> recorded;
    std::vector<const std::string*> order;
    auto keep = [&](std::string path, Recorded r) {
        r.order = order.size();
        auto [it, fresh] = recorded.try_emplace(std::move(path), std::move(r));
        if (fresh) order.push_back(&it->first);
    };
    std::string line;
    while (reader.NextFolderLine(line)) {
        FolderRecord f = SplitFolder(line);
        keep(std::move(f.Path), {{}, std::move(f.Time), true});
    }
    while (reader.NextFileLine(line)) {
        FileRecord f = SplitFile(line);
        keep(std::move(f.Path), {std::move(f.Size), std::move(f.Time), false});
    }

    for (const WalkRecord& f : folders) Compare(recorded, root, f, true, report.findings);
    for (const WalkRecord& f : files) Compare(recorded, root, f, false, report.findings);
    for (const std::string* path : order) {
        const Recorded& r = recorded.at(*path);
        if (!r.seen)
            report.findings.push_back(
                {Difference::MissingOnDisc, r.folder, *path, r.folder ? r.time : r.size, {}});
    }
    return report;
}

std::string_view DifferenceWord(Difference kind) {
    switch (kind) {
    case Difference::MissingOnDisc: return "missing";
    case Difference::NotInCatalogue: return "new";
    case Difference::SizeChanged: return "size";
    case Difference::TimeChanged: return "time";
    }
    return "";
}

}  // namespace ct
