// The file operations by which the program changes files. Every write goes
// through this interface, so that tests can put a failing device under any
// step, and so that the core stays free of POSIX: the real implementation
// (with fsync and rename) lives in the platform layer.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/failure.h"

namespace ct {

// `name` in `folder`: one '/' between them, none added after a folder that
// ends in one, and `name` alone when the folder is empty.
std::string Join(const std::string& folder, std::string_view name);

class OutFile {
public:
    virtual ~OutFile() = default;
    virtual bool Write(std::string_view bytes) = 0;
    virtual bool Sync() = 0;   // flushes to the disk, not only to the kernel
    virtual bool Close() = 0;  // closing twice is harmless
};

// The writers' lock of one file, held until destroyed.
class WriteLock {
public:
    virtual ~WriteLock() = default;
};

// How long a writer waits for another program's lock before it gives up with
// FailCode::Busy: long enough for any description rewrite, short enough that
// nobody wonders whether the program hangs.
constexpr int kLockWaitMs = 2000;

// A file opened for reading. The readers take their blocks straight from the
// system through it: a stdio stream would add a buffer to copy through, a
// lock per call and, at opening, a system call of its own, which a search of
// many small catalogues pays once per catalogue.
class ReadStream {
public:
    virtual ~ReadStream() = default;
    // Up to `n` bytes into `to`; returns how many. Fewer than `n` only at the
    // end of the file or on an error, which Error() then tells (errno; 0 at
    // the end).
    virtual std::size_t Read(char* to, std::size_t n) = 0;
    // Moves to `offset` from the start; false on an error.
    virtual bool Seek(std::uint64_t offset) = 0;
    // Hands the bytes from `offset` (a multiple of 4096) to `end` to `scan`,
    // window by window, where they stand in the system's cache, without a
    // copy. False where the platform can't, and when the file was cut short
    // under the scan: `scan` may then have seen a part and must be left at
    // any moment, so it may only look at the bytes and count into values
    // that outlive it. The caller then reads the bytes as usual.
    virtual bool ScanInPlace(std::uint64_t offset, std::uint64_t end,
                             const std::function<void(const char*, std::size_t)>& scan);
    int Error() const { return error_; }

protected:
    int error_ = 0;
};
using ReadFile = std::unique_ptr<ReadStream>;

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

    // A new empty scratch file in `folder` under a short hidden name of its
    // own (".ct-XXXXXX" + `ending`), so two writers never share one and a
    // label that fits as "<label>.idx" never makes it too long. The file is
    // held for as long as it is open, so that the clean-up at start leaves
    // it alone. `path` receives its name.
    virtual std::unique_ptr<OutFile> CreateScratch(const std::string& folder, std::string_view ending,
                                                   std::string& path, Failure* failure);
    // Serialises the writers of the existing file `path`, from reading it to
    // putting its new version in place: waits up to kLockWaitMs for another
    // program, then fails with Busy. The lock is always on the file standing
    // under `path` when it is granted (one replaced meanwhile is locked
    // anew). NotFound when nothing stands there, NotACatalogue for anything
    // but a regular file.
    virtual std::unique_ptr<WriteLock> Lock(const std::string& path, Failure* failure);
    // Rename that never replaces: fails when `to` exists, even if another
    // program creates it a moment before.
    virtual Failure RenameNew(const std::string& from, const std::string& to);
    // Reads back a file this program wrote (OpenForReading on a real disk).
    virtual ReadFile OpenRead(const std::string& path, Failure* failure);
    // Deletes the scratch file `path` unless a live writer holds it.
    virtual bool RemoveUnheld(const std::string& path);
    // The names of the entries of `folder` that end in `ending` ("." and
    // ".." left out), in the order the file system gives; empty when it
    // can't be listed.
    virtual std::vector<std::string> Names(const std::string& folder, std::string_view ending);
};

// Opens a catalogue (or any file the program reads) without ever blocking:
// a FIFO, a device, a socket or a folder is refused as NotACatalogue; what
// can't be opened is NotFound or Unreadable with the system's reason. The
// standard library alone can only check before it opens; the platform layer
// installs an opener that checks the opened file itself. `size`, when given,
// receives the file's size at opening (kUnknownSize when the opener can't
// tell): a reader that stops there needs no last read to see the end.
constexpr std::uint64_t kUnknownSize = UINT64_MAX;
ReadFile OpenForReading(const std::string& path, Failure* failure = nullptr, std::uint64_t* size = nullptr);
using ReadOpener = ReadFile (*)(const std::string& path, Failure* failure, std::uint64_t* size);
// Returns the opener it replaces, so that a test can put it back. It also
// puts back the standard folder opener, so that a test's opener sees every
// file opened.
ReadOpener SetReadOpener(ReadOpener opener);

// The files of one folder, opened by their names as OpenForReading opens a
// path. A run over the catalogues of a data folder opens the folder once:
// the system then looks up each catalogue's own name, not the whole path to
// it again.
class ReadFolder {
public:
    virtual ~ReadFolder() = default;
    virtual ReadFile Open(const std::string& name, Failure* failure, std::uint64_t* size) = 0;
};
std::unique_ptr<ReadFolder> OpenFolderForReading(const std::string& folder);
using FolderOpener = std::unique_ptr<ReadFolder> (*)(const std::string& folder);
// The platform's folder opener; the standard one joins folder and name.
// Returns the opener it replaces.
FolderOpener SetFolderOpener(FolderOpener opener);

// The real file system. Defined in the platform layer.
FileOps& SystemFileOps();
// Tests: the size of the windows its streams' ScanInPlace maps (a multiple of
// 4096), so that small files cross many windows.
void SetMapWindowForTesting(std::size_t bytes);

// Writes `content` under `path` so that at every moment either the old file or
// the complete new one stands there: a scratch file of its own beside it
// (CreateScratch), written, synced, closed, then renamed over `path` under
// the lock of `path` when it exists. On failure the scratch file is removed
// and `path` is as it was.
Failure WriteWholeFile(FileOps& ops, const std::string& path, std::string_view content);

// The scratch file names of this program: ".ct-*.part" and anything ending in
// ".idx.part", and "CT.ini.part" of older versions.
bool IsScratchName(std::string_view name);

// Removes every scratch file in `folders` that no live writer holds; returns
// how many went. Run at each start of the program and of the terminal tool.
int CleanScratchFiles(FileOps& ops, const std::vector<std::string>& folders);

// Folder part of a '/'-joined path ("" for a bare name), and the last part.
std::string FolderOf(const std::string& path);
std::string NameOf(const std::string& path);

}  // namespace ct
