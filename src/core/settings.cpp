#include "core/settings.h"

#include "core/catalogue.h"

#include <string_view>
#include <vector>

#include "core/text.h"

namespace ct {

namespace {

// The number at the start of line 1: an optional '-' and the digits that
// follow it; whatever comes after them is ignored, and no digit at all reads
// as 0. A value beyond 16 bits is held at the nearest end rather than wrapped,
// so a damaged file can't turn into some unrelated language number.
std::int16_t LeadingNumber(std::string_view line) {
    std::size_t i = 0;
    bool negative = false;
    if (i < line.size() && line[i] == '-') {
        negative = true;
        ++i;
    }
    std::int32_t value = 0;
    for (; i < line.size() && line[i] >= '0' && line[i] <= '9'; ++i) {
        value = value * 10 + (line[i] - '0');
        if (value > 32768) value = 32768;
    }
    if (negative) value = -value;
    if (value > 32767) value = 32767;
    return static_cast<std::int16_t>(value);
}

}  // namespace

std::string IniPath(const std::string& programFolder) { return programFolder + "/CT.ini"; }

std::string DefaultDataFolder(const std::string& programFolder) { return programFolder + "/Daten"; }

std::string ScratchCataloguePath(const std::string& programFolder) {
    return programFolder + "/Daten/temp.idx";
}

LoadedSettings LoadSettings(const std::string& programFolder) {
    LoadedSettings loaded;
    loaded.settings.Language = 0;
    loaded.settings.DriveLetter = "C";
    loaded.settings.DataFolder = DefaultDataFolder(programFolder);

    // Read with the catalogue line reader: a CT.ini that is no readable file
    // (a folder, say) then ends like an empty one instead of throwing.
    LineReader in(IniPath(programFolder));
    std::vector<std::string> lines;
    std::string_view raw;
    while (lines.size() < 3 && in.NextRaw(raw)) lines.emplace_back(raw);
    // Without the full three lines there is nothing trustworthy to take over,
    // so the language is asked again and the defaults hold.
    if (lines.size() < 3 || lines[0] == "-1") {
        loaded.firstRun = true;
        return loaded;
    }
    loaded.settings.Language = LeadingNumber(lines[0]);
    // A CT.ini written on Windows is Windows-1252; ours are UTF-8.
    loaded.settings.DriveLetter = DecodeLine(lines[1]);
    loaded.settings.DataFolder = DecodeLine(lines[2]);
    return loaded;
}

bool SaveSettings(FileOps& ops, const std::string& programFolder, const Settings& settings,
                  std::string* error) {
    const std::string content = std::to_string(settings.Language) + "\r\n" + settings.DriveLetter +
                                "\r\n" + settings.DataFolder + "\r\n";
    const Failure failure = WriteWholeFile(ops, IniPath(programFolder), content);
    if (failure && error) *error = FailureText(failure, settings.Language);
    return !failure;
}

}  // namespace ct
