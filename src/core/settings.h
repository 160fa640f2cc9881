// CT.ini in the program folder: three lines, no keys. Line 1 is the language
// number (0 German, 10000 English) or the first-run marker "-1", line 2 the
// drive preset, line 3 the data folder. Written only when the language is
// first chosen, when the options are saved and after a disc was added.
#pragma once

#include <cstdint>
#include <string>

#include "core/fileops.h"

namespace ct {

struct Settings {
    std::int16_t Language = 0;
    std::string DriveLetter = "C";
    std::string DataFolder;  // no trailing separator
};

std::string IniPath(const std::string& programFolder);            // <folder>/CT.ini
std::string DefaultDataFolder(const std::string& programFolder);  // <folder>/Daten
std::string ScratchCataloguePath(const std::string& programFolder);  // <folder>/Daten/temp.idx

struct LoadedSettings {
    Settings settings;
    // The marker stands on line 1, or the file is missing, unreadable or
    // shorter than three lines: the defaults hold and the language is asked.
    bool firstRun = false;
};

// Line 1 is compared with "-1" exactly; otherwise its leading digits (an
// optional '-' first) give a 16-bit value. Lines 2 and 3 are taken whole.
LoadedSettings LoadSettings(const std::string& programFolder);

// INI_Speichern: replaces CT.ini with exactly three lines, CR LF each. On
// failure the file stays as it was and `error` says why.
bool SaveSettings(FileOps& ops, const std::string& programFolder, const Settings& settings,
                  std::string* error = nullptr);

}  // namespace ct
