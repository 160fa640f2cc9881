// The file operations behind the editing windows and commands (description,
// label, delete). Tests put a failing device in to see that a window says
// what failed and loses nothing.
#pragma once

namespace ct {

class FileOps;

FileOps& EditFileOps();
void SetEditFileOps(FileOps* ops);  // nullptr: the machine's

}  // namespace ct
