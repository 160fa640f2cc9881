// The real file operations: plain POSIX calls, each failure turned into a text
// that names the file and the system's reason.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

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
    bool Close() override {
        if (fd_ < 0) return true;
        const int fd = fd_;
        fd_ = -1;
        return close(fd) == 0;  // the last chance for the kernel to report a lost write
    }

private:
    int fd_;
};

class PosixFileOps final : public FileOps {
public:
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
        const int out = open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        if (out < 0) {
            SetError(error, "Cannot create", to, errno);
            close(in);
            return false;
        }
        struct stat target{};
        const bool regular = fstat(out, &target) == 0 && S_ISREG(target.st_mode);
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
        if (!ok && regular) unlink(to.c_str());  // never leave half a copy behind
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

}  // namespace

FileOps& SystemFileOps() {
    static PosixFileOps ops;
    return ops;
}

}  // namespace ct
