// Arbitrary bytes as a catalogue file: every reader must survive them, and
// the readers must agree with one another and with themselves under any
// block size.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "core/catalogue.h"
#include "core/fixed.h"
#include "core/text.h"

namespace {

const std::string& ScratchPath() {
    static const std::string path = [] {
        const char* tmp = std::getenv("TMPDIR");
        return std::string(tmp && *tmp ? tmp : "/tmp") + "/cartulon-fuzz-" +
               std::to_string(::getpid()) + ".idx";
    }();
    static const bool cleanup = [] { return std::atexit([] { std::remove(path.c_str()); }) == 0; }();
    (void)cleanup;
    return path;
}

void Check(bool ok, const char* what) {
    if (!ok) {
        std::fprintf(stderr, "invariant broken: %s\n", what);
        std::abort();
    }
}

std::vector<std::string> Lines(const std::string& path, std::size_t block) {
    ct::LineReader r(path, block);
    std::vector<std::string> lines;
    std::string_view line;
    while (r.NextRaw(line)) lines.emplace_back(line);
    Check(r.AtEnd(), "AtEnd after the last line");
    return lines;
}

void CheckText(std::string_view bytes) {
    const std::string decoded = ct::DecodeLine(bytes);
    Check(ct::IsValidUtf8(decoded), "DecodeLine gives valid UTF-8");
    if (ct::IsValidUtf8(bytes)) Check(decoded == bytes, "valid UTF-8 stays as it is");
    const std::string upper = ct::UpperCase(decoded);
    Check(ct::IsValidUtf8(upper), "UpperCase keeps UTF-8 valid");
    Check(ct::CharCount(upper) == ct::CharCount(decoded), "UpperCase keeps the length");
    ct::UpperCase(bytes);  // invalid bytes too
    std::string back;
    if (!ct::IsValidUtf8(bytes))
        Check(ct::Utf8ToCp1252(decoded, back) && back == bytes, "Windows-1252 round trip");

    const ct::Fixed value = ct::ParseLeadingDecimal(bytes);
    Check(ct::ParseLeadingDecimal(ct::FixedText(value)) == value, "FixedText reads back");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::string& path = ScratchPath();
    {
        std::FILE* f = std::fopen(path.c_str(), "wb");
        if (!f) return 0;
        if (size) std::fwrite(data, 1, size, f);
        std::fclose(f);
    }

    // Tiny blocks cut lines and CR LF pairs everywhere; the lines stay the same.
    const std::vector<std::string> lines = Lines(path, ct::LineReader::kDefaultBlock);
    const std::size_t block = size ? 1 + data[0] % 13 : 1;
    Check(Lines(path, block) == lines, "lines independent of the block size");

    ct::CatalogueReader reader(path);
    const std::string header = reader.HeaderLine();
    ct::SplitHeader(header);
    std::vector<std::string> folders, files;
    std::string line;
    while (reader.NextFolderLine(line)) {
        Check(!line.empty(), "no empty folder line");
        const ct::FolderRecord r = ct::SplitFolder(line);
        Check(ct::IsRecordOf(line, r.Path) || line.find('|') == std::string::npos,
              "a folder line is the record of its own path");
        folders.push_back(line);
    }
    while (reader.NextFileLine(line)) {
        Check(!line.empty(), "no empty file line");
        const ct::FileRecord r = ct::SplitFile(line);
        ct::ParseLeadingDecimal(r.Size);
        std::string_view item;
        ct::LiesDirectlyIn(r.Path, ".", &item);
        ct::LiesDirectlyIn(line, r.Path.substr(0, r.Path.rfind('\\') == std::string::npos
                                                      ? 0
                                                      : r.Path.rfind('\\')),
                           &item);
        ct::WithDescription(line, "x|y");
        files.push_back(line);
    }

    const ct::CatalogueCounts counts = ct::CountCatalogue(path);
    Check(counts.opened, "the file opens");
    Check(counts.headerLine == header, "same header both ways");
    Check(counts.folders == static_cast<std::int64_t>(folders.size()), "same folder count both ways");
    Check(counts.files >= static_cast<std::int64_t>(files.size()), "counting sees every file line");

    // The first record of each section is found again by its path.
    for (const std::vector<std::string>* section : {&folders, &files}) {
        if (section->empty()) continue;
        const std::string& first = section->front();
        const std::string_view p = ct::FirstField(first);
        if (p.size() == first.size() || p.empty()) continue;  // no bar: no record
        std::string found;
        Check(ct::FindRecordLine(path, p, found), "a record is found by its path");
        Check(ct::FirstField(found) == p, "the found record has that path");
    }
    std::string found;
    ct::FindRecordLine(path, bytes.substr(0, std::min<std::size_t>(size, 8)), found);

    for (const std::string& l : lines) CheckText(l);
    CheckText(bytes);
    return 0;
}
