// cartulon-cli show LABEL [FOLDER]: a disc's header and counts as the disc
// pane shows them; with a folder ("." for the root) that folder's details,
// the size and number of the files directly in it, and those files.
#include <algorithm>
#include <ostream>

#include "cli.h"
#include "core/catalogue.h"
#include "core/collate.h"
#include "core/fixed.h"
#include "core/text.h"
#include "output.h"

namespace ct::cli {

namespace {

std::string OrDash(const std::string& text) { return text.empty() ? "-" : text; }

struct Figure {
    const char* key;  // tsv and json
    Tr caption;       // text
    std::string value;
    bool number;
};

std::string JsonValue(const Context& ctx, const Figure& f) {
    return f.number && IsJsonNumber(f.value) ? f.value : JsonString(Value(ctx, f.value, f.key == std::string_view("folder")));
}

// Text: "caption: value" lines as the panes show them; tsv: the values on
// one line; json: one object.
template <std::size_t N>
void Print(const Context& ctx, const Figure (&figures)[N]) {
    std::ostream& out = *ctx.out;
    switch (FormatOf(ctx)) {
    case Format::Text:
        for (const Figure& f : figures) {
            const bool dashed = f.key == std::string_view("attributes") || f.key == std::string_view("time");
            out << ctx.T(f.caption) << ": " << (dashed ? OrDash(f.value) : f.value) << "\n";
        }
        break;
    case Format::Tsv:
        for (std::size_t i = 0; i < N; ++i) {
            std::string v = Value(ctx, figures[i].value, figures[i].key == std::string_view("folder"));
            for (char& c : v)
                if (c == '\t' || c == '\n' || c == '\r') c = ' ';
            out << (i ? "\t" : "") << v;
        }
        out << "\n";
        break;
    case Format::Json:
        out << "{";
        for (std::size_t i = 0; i < N; ++i)
            out << (i ? ", " : "") << JsonString(figures[i].key) << ": " << JsonValue(ctx, figures[i]);
        out << "}\n";
        break;
    }
}

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
    std::string path;
    if (!CatalogueOfLabel(ctx, pos[0], path)) return kError;
    const CatalogueCounts counts = CountCatalogue(path);
    std::ostream& out = *ctx.out;
    const Format format = FormatOf(ctx);
    if (pos.size() == 1) {
        const DiscHeader h = SplitHeader(counts.headerLine);
        const Figure figures[] = {
            {"label", {"Bezeichnung", "label"}, pos[0], false},
            {"size", {"Größe", "size"}, h.HeaderSize, true},
            {"serial_number", {"Seriennummer", "serial number"}, h.SerialNumber, true},
            {"file_system", {"Dateisystem", "file system"}, h.FileSystem, false},
            {"clusters", {"Cluster", "clusters"}, h.ClusterCount, true},
            {"sectors_per_cluster", {"Sektoren je Cluster", "sectors per cluster"}, h.SectorsPerCluster, true},
            {"bytes_per_sector", {"Bytes je Sektor", "bytes per sector"}, h.BytesPerSector, true},
            {"description", {"Beschreibung", "description"}, h.Description, false},
            {"folders", {"Ordner", "folders"}, std::to_string(counts.folders), true},
            {"files", {"Dateien", "files"}, std::to_string(counts.files), true},
        };
        Print(ctx, figures);
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
        ctx.Refuse({"keinen Ordner „%1“ auf dem Datenträger „%2“", "no folder '%1' on disc '%2'"}, {folder, pos[0]});
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
        items.push_back({SortKey(name), std::string(name), std::move(file)});
    }
    std::stable_sort(items.begin(), items.end(),
                     [](const Item& a, const Item& b) { return a.key < b.key; });
    const Figure figures[] = {
        {"folder", {"Ordner", "folder"}, folder, false},
        {"attributes", {"Attribute", "attributes"}, record.Attributes, false},
        {"time", {"Zeit", "time"}, record.Time, false},
        {"description", {"Beschreibung", "description"}, record.Description, false},
        {"size_of_files", {"Größe der Dateien", "size of files"}, FixedText(sum), true},
        {"files", {"Dateien", "files"}, std::to_string(items.size()), true},
    };
    if (format == Format::Text) {
        Print(ctx, figures);
        // One file a line, tab-separated: name, size, attributes, time, description.
        for (const Item& item : items)
            out << item.name << "\t" << item.file.Size << "\t" << OrDash(item.file.Attributes) << "\t"
                << OrDash(item.file.Time) << "\t" << item.file.Description << "\n";
        return kDone;
    }
    if (format == Format::Tsv) {
        Records records(ctx, {});
        for (const Item& item : items) {
            if (ctx.OutputGone()) break;
            records.Add({Value(ctx, item.name), item.file.Size, item.file.Attributes, item.file.Time,
                         Value(ctx, item.file.Description)});
        }
        return kDone;
    }
    // The folder's figures, and its files as an array in the same object.
    out << "{";
    for (const Figure& f : figures) out << JsonString(f.key) << ": " << JsonValue(ctx, f) << ", ";
    out << "\"file_list\": [";
    for (std::size_t i = 0; i < items.size() && !ctx.OutputGone(); ++i) {
        const Item& item = items[i];
        out << (i ? ",\n  " : "\n  ") << "{\"name\": " << JsonString(Value(ctx, item.name))
            << ", \"size\": " << JsonValue(ctx, {"size", {}, item.file.Size, true})
            << ", \"attributes\": " << JsonString(Value(ctx, item.file.Attributes))
            << ", \"time\": " << JsonString(Value(ctx, item.file.Time))
            << ", \"description\": " << JsonString(Value(ctx, item.file.Description)) << "}";
    }
    out << (items.empty() ? "]}\n" : "\n]}\n");
    return kDone;
}

Registration reg{{
    .name = "show",
    .arguments = "LABEL [FOLDER]",
    .minArgs = 1,
    .maxArgs = 2,
    .summary = {"die Angaben eines Datenträgers, oder eines Ordners mit seinen Dateien",
                "a disc's figures, or a folder's details and its files"},
    .details = {"FOLDER wie im Katalog (\\Bilder\\Urlaub, „/“ geht auch), „.“ für die Wurzel.\n\n"
                "tsv: für einen Datenträger eine Zeile mit label, size, serial_number, file_system, clusters, "
                "sectors_per_cluster, bytes_per_sector, description, folders, files; für einen Ordner eine "
                "Zeile je Datei mit name, size, attributes, time, description. json: ein Objekt mit diesen "
                "Namen, beim Ordner die Dateien in file_list.",
                "FOLDER as the catalogue has it (\\Bilder\\Urlaub, '/' does too), '.' for the root.\n\n"
                "tsv: for a disc one line of label, size, serial_number, file_system, clusters, "
                "sectors_per_cluster, bytes_per_sector, description, folders, files; for a folder one line "
                "a file of name, size, attributes, time, description. json: one object with these names, "
                "for a folder with its files in file_list."},
    .options = {kFormatOption, kSlashesOption},
    .run = &RunShow,
}};

}  // namespace

}  // namespace ct::cli
