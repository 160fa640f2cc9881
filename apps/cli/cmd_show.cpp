// cartulon-cli show LABEL [FOLDER]: a disc's header and counts as the disc
// pane shows them; with a folder ("." for the root) that folder's details,
// the size and number of the files directly in it, and those files.
#include <algorithm>
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/failure.h"
#include "core/fixed.h"
#include "core/text.h"

namespace ct::cli {

namespace {

std::string OrDash(const std::string& text) { return text.empty() ? "-" : text; }

// "." and "" are the root; otherwise the folder as the catalogue writes it,
// so "Bilder/Urlaub" and "/Bilder/Urlaub/" both name "\Bilder\Urlaub".
std::string CatalogueFolder(std::string folder) {
    std::replace(folder.begin(), folder.end(), '/', '\\');
    while (!folder.empty() && folder.back() == '\\') folder.pop_back();
    if (folder.empty() || folder == ".") return ".";
    if (folder.front() != '\\') folder.insert(folder.begin(), '\\');
    return folder;
}

int RunShow(Context& ctx) {
    const auto& pos = ctx.args.positional;
    if (pos.empty() || pos.size() > 2) {
        *ctx.err << "usage: cartulon-cli show LABEL [FOLDER] [--data-folder DIR]\n";
        return kError;
    }
    std::string path;
    if (!CatalogueOfLabel(ctx, pos[0], path)) return kError;
    const CatalogueCounts counts = CountCatalogue(path);
    std::ostream& out = *ctx.out;
    if (pos.size() == 1) {
        const DiscHeader h = SplitHeader(counts.headerLine);
        out << "label: " << pos[0] << "\n"
            << "size: " << h.HeaderSize << "\n"
            << "serial number: " << h.SerialNumber << "\n"
            << "file system: " << h.FileSystem << "\n"
            << "clusters: " << h.ClusterCount << "\n"
            << "sectors per cluster: " << h.SectorsPerCluster << "\n"
            << "bytes per sector: " << h.BytesPerSector << "\n"
            << "description: " << h.Description << "\n"
            << "folders: " << counts.folders << "\n"
            << "files: " << counts.files << "\n";
        return kDone;
    }

    const std::string folder = CatalogueFolder(pos[1]);
    CatalogueReader reader(path);
    FolderRecord record;
    bool found = folder == ".";
    std::string line;
    while (reader.NextFolderLine(line)) {
        if (!found && FirstField(line) == folder) {
            record = SplitFolder(line);
            found = true;
        }
    }
    if (!found) {
        *ctx.err << "cartulon-cli: no folder '" << folder << "' on disc '" << pos[0] << "'\n";
        return kNothing;
    }
    struct Item {
        std::string key, name;
        FileRecord file;
    };
    std::vector<Item> items;
    Fixed sum;
    while (reader.NextFileLine(line)) {
        std::string_view name;
        if (!LiesDirectlyIn(line, folder, &name)) continue;
        FileRecord file = SplitFile(line);
        sum += ParseLeadingDecimal(file.Size);
        items.push_back({UpperCase(name), std::string(name), std::move(file)});
    }
    std::stable_sort(items.begin(), items.end(),
                     [](const Item& a, const Item& b) { return a.key < b.key; });
    out << "folder: " << folder << "\n"
        << "attributes: " << OrDash(record.Attributes) << "\n"
        << "time: " << OrDash(record.Time) << "\n"
        << "description: " << record.Description << "\n"
        << "size of files: " << FixedText(sum) << "\n"
        << "files: " << items.size() << "\n";
    // One file a line, tab-separated: name, size, attributes, time, description.
    for (const Item& item : items)
        out << item.name << "\t" << item.file.Size << "\t" << OrDash(item.file.Attributes) << "\t"
            << OrDash(item.file.Time) << "\t" << item.file.Description << "\n";
    return kDone;
}

Registration reg{{"show", "show LABEL [FOLDER]          a disc's figures, or a folder's details and files",
                  {}, &RunShow}};

}  // namespace

}  // namespace ct::cli
