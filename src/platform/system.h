// Program folder, starting programs, handing targets to the desktop.
#pragma once

#include <string>

namespace ct {

// The folder of the running program file (/proc/self/exe), without a trailing
// separator. Tests point it elsewhere.
std::string ProgramFolder();
void SetProgramFolderForTesting(const std::string& folder);  // empty: back to the real one

// Starts "one command-line string" as Windows does with an unquoted path: the
// program is the shortest prefix ending before a blank that names an existing
// executable file, and the rest of the line (behind that blank) is handed over
// as one argument. Doesn't wait. False when no program could be started.
bool StartCommandLine(const std::string& commandLine);
// The split StartCommandLine makes, for tests: false when no prefix is an
// executable file.
bool SplitCommandLine(const std::string& commandLine, std::string& program, std::string& argument);

// Hands a web address or a mailto: link to the desktop's default handler
// (xdg-open), without waiting.
bool OpenTarget(const std::string& target);

}  // namespace ct
