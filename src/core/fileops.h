// The file operations by which the program changes files. Every write goes
// through this interface, so that tests can put a failing device under any
// step, and so that the core stays free of POSIX: the real implementation
// (with fsync and rename) lives in the platform layer.
#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace ct {

class OutFile {
public:
    virtual ~OutFile() = default;
    virtual bool Write(std::string_view bytes) = 0;
    virtual bool Sync() = 0;   // flushes to the disk, not only to the kernel
    virtual bool Close() = 0;  // closing twice is harmless
};

class FileOps {
public:
    virtual ~FileOps() = default;
    // Creates or empties `path` for writing.
    virtual std::unique_ptr<OutFile> Create(const std::string& path, std::string* error) = 0;
    // Puts `from` in the place of `to`, replacing it in one step where the
    // file system allows it. Fails across file systems.
    virtual bool Rename(const std::string& from, const std::string& to, std::string* error) = 0;
    // Copies a whole file, replacing `to`, flushed to disk before it returns.
    virtual bool Copy(const std::string& from, const std::string& to, std::string* error) = 0;
    virtual bool Remove(const std::string& path, std::string* error) = 0;
    virtual bool Exists(const std::string& path) = 0;
    // Whether two folders lie on the same file system, so a rename between
    // them can't fail for that reason.
    virtual bool SameFileSystem(const std::string& folderA, const std::string& folderB) = 0;
};

// The real file system. Defined in the platform layer.
FileOps& SystemFileOps();

// Writes `content` under `path` so that at every moment either the old file or
// the complete new one stands there: a scratch file beside it whose name ends
// in ".part" (so no disc list ever shows it), written, synced, closed, then
// renamed over `path`. On failure the scratch file is removed, `path` is as it
// was, and `error` says what failed.
bool WriteWholeFile(FileOps& ops, const std::string& path, std::string_view content,
                    std::string* error);

// Folder part of a '/'-joined path ("" for a bare name), and the last part.
std::string FolderOf(const std::string& path);
std::string NameOf(const std::string& path);

}  // namespace ct
