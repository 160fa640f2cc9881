// The real file operations: plain POSIX calls, each failure turned into a text
// that names the file and the system's reason.
#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <setjmp.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

#include "core/bigblock.h"
#include "core/fileops.h"

namespace ct {
namespace {

void SetError(std::string* error, const std::string& what, const std::string& path, int code) {
    if (error) *error = what + " " + path + ": " + std::strerror(code);
}

bool WriteAll(int fd, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t n = write(fd, data, size);
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        data += n;
        size -= static_cast<std::size_t>(n);
    }
    return true;
}

class PosixOutFile final : public OutFile {
public:
    explicit PosixOutFile(int fd) : fd_(fd) {}
    ~PosixOutFile() override { Close(); }
    bool Write(std::string_view bytes) override {
        return fd_ >= 0 && WriteAll(fd_, bytes.data(), bytes.size());
    }
    bool Sync() override { return fd_ >= 0 && fsync(fd_) == 0; }
    int Release() {
        const int fd = fd_;
        fd_ = -1;
        return fd;
    }
    bool Close() override {
        if (fd_ < 0) return true;
        const int fd = fd_;
        fd_ = -1;
        return close(fd) == 0;  // the last chance for the kernel to report a lost write
    }

private:
    int fd_;
};

class PosixLock final : public WriteLock {
public:
    explicit PosixLock(int fd) : fd_(fd) {}
    ~PosixLock() override { close(fd_); }  // closing the last descriptor drops the lock

private:
    int fd_;
};

// Opens `path` (relative to the folder `dirFd` when given) for reading
// without blocking on a FIFO or a device, and keeps it only if what was
// opened is a regular file.
int OpenRegular(const std::string& path, Failure* failure, std::uint64_t* size = nullptr, int dirFd = AT_FDCWD) {
    const int fd = openat(dirFd, path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) {
        const int code = errno;
        if (failure)
            *failure = Fail(code == ENOENT || code == ENOTDIR ? FailCode::NotFound : FailCode::Unreadable,
                            path, code);
        return -1;
    }
    struct stat st{};
    if (fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        close(fd);
        if (failure) *failure = Fail(FailCode::NotACatalogue, path);
        return -1;
    }
    if (size) *size = static_cast<std::uint64_t>(st.st_size);
    return fd;
}

// --- Scanning in place ---------------------------------------------------------
//
// A mapped file that another program cuts short under the scan raises SIGBUS
// at the first byte beyond its new end. The scan is guarded: the handler
// leaves it for the point before it began, the mapping goes, and the caller
// reads the file as usual. A SIGBUS of anything else ends the program as
// the signal would have.

thread_local sigjmp_buf* tGuardJump = nullptr;
thread_local const char* tGuardFrom = nullptr;
thread_local const char* tGuardTo = nullptr;

void OnBusError(int, siginfo_t* info, void*) {
    const char* at = static_cast<const char*>(info->si_addr);
    if (tGuardJump && at >= tGuardFrom && at < tGuardTo) siglongjmp(*tGuardJump, 1);
    struct sigaction plain{};
    plain.sa_handler = SIG_DFL;
    sigaction(SIGBUS, &plain, nullptr);  // the fault repeats on return, now fatal
}

// Installs the handler once, unless someone else's is in place already.
bool GuardReady() {
    static const bool ready = [] {
        struct sigaction old{};
        if (sigaction(SIGBUS, nullptr, &old) != 0 || (old.sa_flags & SA_SIGINFO) || old.sa_handler != SIG_DFL)
            return false;
        struct sigaction guard{};
        guard.sa_sigaction = &OnBusError;
        guard.sa_flags = SA_SIGINFO | SA_NODEFER;  // not blocked after the jump out of the handler
        sigemptyset(&guard.sa_mask);
        return sigaction(SIGBUS, &guard, nullptr) == 0;
    }();
    return ready;
}

std::size_t gMapWindow = std::size_t{4} << 20;

}  // namespace

void SetMapWindowForTesting(std::size_t bytes) { gMapWindow = bytes; }

namespace {

// One window of the file mapped and handed to `scan` under the guard; false
// when it can't be mapped or the file shrank beneath it.
bool ScanWindow(int fd, std::uint64_t offset, std::size_t size,
                const std::function<void(const char*, std::size_t)>& scan) {
    void* map = mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, fd, static_cast<off_t>(offset));
    if (map == MAP_FAILED) return false;
    sigjmp_buf jump;
    const char* const bytes = static_cast<const char*>(map);
    bool whole = false;
    if (sigsetjmp(jump, 0) == 0) {
        tGuardFrom = bytes;
        tGuardTo = bytes + size;
        tGuardJump = &jump;
        scan(bytes, size);
        whole = true;
    }
    tGuardJump = nullptr;
    munmap(map, size);
    return whole;
}

// Straight from the descriptor into the reader's block: each Read is one
// system call while the file gives what is asked.
class PosixStream final : public ReadStream {
public:
    explicit PosixStream(int fd) : fd_(fd) {}
    ~PosixStream() override { close(fd_); }
    std::size_t Read(char* to, std::size_t n) override {
        std::size_t got = 0;
        while (got < n && error_ == 0) {
            const ssize_t r = at_ < 0 ? read(fd_, to + got, n - got) : pread(fd_, to + got, n - got, at_);
            if (r > 0) {
                got += static_cast<std::size_t>(r);
                if (at_ >= 0) at_ += r;
            } else if (r == 0) {
                break;
            } else if (errno != EINTR) {
                error_ = errno;
            }
        }
        return got;
    }
    // No call of its own: the reads behind a seek say where they read
    // (pread), which halves the calls of a reader that jumps from line to line.
    bool Seek(std::uint64_t offset) override {
        if (offset > static_cast<std::uint64_t>(INT64_MAX)) return false;
        at_ = static_cast<off_t>(offset);
        return true;
    }
    bool ScanInPlace(std::uint64_t offset, std::uint64_t end,
                     const std::function<void(const char*, std::size_t)>& scan) override {
        if (offset % 4096 != 0 || end < offset || !GuardReady()) return false;
        for (std::uint64_t at = offset; at < end; at += gMapWindow) {
            const auto size = static_cast<std::size_t>(std::min<std::uint64_t>(gMapWindow, end - at));
            if (!ScanWindow(fd_, at, size, scan)) return false;
        }
        return true;
    }

private:
    int fd_;
    off_t at_ = -1;  // where the next read starts once a seek was asked for
};

// O_NONBLOCK stays on: it changes nothing for a regular file, and taking it
// off would cost two more system calls per catalogue.
ReadFile PosixOpener(const std::string& path, Failure* failure, std::uint64_t* size) {
    const int fd = OpenRegular(path, failure, size);
    if (fd < 0) return nullptr;
    return std::make_unique<PosixStream>(fd);
}

// The data folder held open by an O_PATH descriptor for one run.
class PosixFolder final : public ReadFolder {
public:
    PosixFolder(int fd, std::string folder) : fd_(fd), folder_(std::move(folder)) {}
    ~PosixFolder() override {
        if (fd_ >= 0) close(fd_);
    }
    ReadFile Open(const std::string& name, Failure* failure, std::uint64_t* size) override {
        // The whole path is only made for a failure to name it.
        const int fd = fd_ >= 0 ? OpenRegular(name, failure, size, fd_)
                                : OpenRegular(Join(folder_, name), failure, size);
        if (fd < 0) {
            if (failure && fd_ >= 0) failure->path = Join(folder_, name);
            return nullptr;
        }
        return std::make_unique<PosixStream>(fd);
    }

private:
    int fd_;
    std::string folder_;
};

std::unique_ptr<ReadFolder> PosixFolderOpener(const std::string& folder) {
    const int fd = open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
    // A folder that can't be opened (-1): each file then says why, by its path.
    return std::make_unique<PosixFolder>(fd, folder);
}

// Large pages for the blocks a run fills at once, where the system gives
// them on request; a system that can't simply ignores the advice.
void AdviseBigBlock(void* block, std::size_t bytes) {
#ifdef MADV_HUGEPAGE
    madvise(block, bytes, MADV_HUGEPAGE);
#else
    (void)block;
    (void)bytes;
#endif
}

void InstallOpeners() {
    SetReadOpener(&PosixOpener);
    SetFolderOpener(&PosixFolderOpener);
    SetBigBlockAdvice(&AdviseBigBlock);
}

class PosixFileOps final : public FileOps {
public:
    PosixFileOps() { InstallOpeners(); }

    std::unique_ptr<OutFile> CreateScratch(const std::string& folder, std::string_view ending,
                                           std::string& path, Failure* failure) override {
        std::string pattern = (folder.empty() ? std::string(".") : folder) + "/.ct-XXXXXX";
        pattern += ending;
        const int fd = mkostemps(pattern.data(), static_cast<int>(ending.size()), O_CLOEXEC);
        if (fd < 0) {
            if (failure) *failure = Fail(FailCode::CreateScratch, folder, errno);
            return nullptr;
        }
        // Held while this writer lives: the clean-up at start takes only
        // scratch files nobody holds.
        flock(fd, LOCK_EX | LOCK_NB);
        fchmod(fd, 0644);
        path = pattern;
        return std::make_unique<PosixOutFile>(fd);
    }

    std::unique_ptr<WriteLock> Lock(const std::string& path, Failure* failure) override {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(kLockWaitMs);
        for (;;) {
            const int fd = OpenRegular(path, failure);
            if (fd < 0) return nullptr;
            if (flock(fd, LOCK_EX | LOCK_NB) != 0) {
                const int code = errno;
                close(fd);
                if (code != EWOULDBLOCK && code != EINTR) {
                    // A file system without locks: go on unlocked rather
                    // than refuse every edit there.
                    const int again = OpenRegular(path, failure);
                    return again < 0 ? nullptr : std::make_unique<PosixLock>(again);
                }
                if (std::chrono::steady_clock::now() >= deadline) {
                    if (failure) *failure = Fail(FailCode::Busy, path);
                    return nullptr;
                }
                std::this_thread::sleep_for(std::chrono::milliseconds(10));
                continue;
            }
            // The holder before us may have put a new file in place: our lock
            // must be on the one that stands there now.
            struct stat held{}, now{};
            if (fstat(fd, &held) == 0 && stat(path.c_str(), &now) == 0 && held.st_dev == now.st_dev &&
                held.st_ino == now.st_ino)
                return std::make_unique<PosixLock>(fd);
            close(fd);
        }
    }

    Failure RenameNew(const std::string& from, const std::string& to) override {
        if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return {};
        if (errno != EINVAL && errno != ENOSYS) return Fail(FailCode::Rename, from, errno, to);
        // File systems without that flag: a hard link fails on an existing
        // name just as well.
        if (link(from.c_str(), to.c_str()) == 0) {
            unlink(from.c_str());
            return {};
        }
        if (errno == EEXIST) return Fail(FailCode::Rename, from, EEXIST, to);
        return FileOps::RenameNew(from, to);
    }

    // Straight from readdir: the standard library's iterator builds a path
    // object per entry, which a folder of thousands of catalogues pays at
    // every start of either program.
    std::vector<std::string> Names(const std::string& folder, std::string_view ending) override {
        std::vector<std::string> names;
        DIR* dir = opendir(folder.c_str());
        if (!dir) return names;
        while (const dirent* e = readdir(dir)) {
            const std::string_view name = e->d_name;
            if (name != "." && name != ".." && name.ends_with(ending)) names.emplace_back(name);
        }
        closedir(dir);
        return names;
    }

    bool RemoveUnheld(const std::string& path) override {
        const int fd = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC);
        if (fd < 0) return false;
        struct stat st{};
        // A writer holds its scratch file while it writes, and lets go only
        // a moment before the rename: a file as fresh as that is left alone.
        const bool ours = fstat(fd, &st) == 0 && S_ISREG(st.st_mode) && st.st_mtime + 10 < time(nullptr) &&
                          flock(fd, LOCK_EX | LOCK_NB) == 0;
        const bool removed = ours && unlink(path.c_str()) == 0;
        close(fd);
        return removed;
    }

    std::unique_ptr<OutFile> Create(const std::string& path, std::string* error) override {
        const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (fd < 0) {
            SetError(error, "Cannot create", path, errno);
            return nullptr;
        }
        return std::make_unique<PosixOutFile>(fd);
    }

    bool Rename(const std::string& from, const std::string& to, std::string* error) override {
        if (rename(from.c_str(), to.c_str()) == 0) return true;
        SetError(error, "Cannot rename " + from + " to", to, errno);
        return false;
    }

    bool Copy(const std::string& from, const std::string& to, std::string* error) override {
        const int in = open(from.c_str(), O_RDONLY | O_CLOEXEC);
        if (in < 0) {
            SetError(error, "Cannot read", from, errno);
            return false;
        }
        struct stat src{}, dst{};
        if (fstat(in, &src) == 0 && stat(to.c_str(), &dst) == 0 && src.st_dev == dst.st_dev &&
            src.st_ino == dst.st_ino) {
            close(in);  // a file is already a copy of itself; truncating it would lose it
            return true;
        }
        // A scratch file of its own beside the target, renamed in when
        // complete: the target is never half a copy, and two copies at once
        // never share a scratch file.
        // Only a regular file (or none) is ever replaced: a device named as
        // the target is written, never renamed over.
        struct stat target{};
        const bool direct = stat(to.c_str(), &target) == 0 && !S_ISREG(target.st_mode);
        std::string scratch;
        int out = -1;
        if (direct) {
            out = open(to.c_str(), O_WRONLY | O_TRUNC | O_NONBLOCK | O_CLOEXEC);
        } else if (std::unique_ptr<OutFile> held = CreateScratch(FolderOf(to), ".idx.part", scratch, nullptr)) {
            out = static_cast<PosixOutFile&>(*held).Release();
        }
        if (out < 0) {
            SetError(error, "Cannot create", to, errno);
            close(in);
            return false;
        }
        char buf[64 * 1024];
        bool ok = true;
        while (ok) {
            const ssize_t n = read(in, buf, sizeof buf);
            if (n == 0) break;
            if (n < 0) {
                if (errno == EINTR) continue;
                SetError(error, "Cannot read", from, errno);
                ok = false;
            } else if (!WriteAll(out, buf, static_cast<std::size_t>(n))) {
                SetError(error, "Cannot write", to, errno);
                ok = false;
            }
        }
        if (ok && fsync(out) != 0) {
            SetError(error, "Cannot write", to, errno);
            ok = false;
        }
        if (close(out) != 0 && ok) {
            SetError(error, "Cannot write", to, errno);
            ok = false;
        }
        close(in);
        if (ok && !direct && rename(scratch.c_str(), to.c_str()) != 0) {
            SetError(error, "Cannot write", to, errno);
            ok = false;
        }
        if (!ok && !direct) {
            const int code = errno;  // the failed step's reason, for the caller
            unlink(scratch.c_str());  // never leave half a copy behind
            errno = code;
        }
        return ok;
    }

    bool Remove(const std::string& path, std::string* error) override {
        if (unlink(path.c_str()) == 0) return true;
        SetError(error, "Cannot delete", path, errno);
        return false;
    }

    bool Exists(const std::string& path) override {
        struct stat st{};
        return lstat(path.c_str(), &st) == 0;
    }

    bool SameFileSystem(const std::string& folderA, const std::string& folderB) override {
        struct stat a{}, b{};
        return stat(folderA.c_str(), &a) == 0 && stat(folderB.c_str(), &b) == 0 && a.st_dev == b.st_dev;
    }
};

// Every program that links the file operations reads catalogues this way, and
// asks for large pages for its big blocks, from its first line on.
const bool kOpenerInstalled = (InstallOpeners(), true);

}  // namespace

FileOps& SystemFileOps() {
    static PosixFileOps ops;
    return ops;
}

}  // namespace ct
