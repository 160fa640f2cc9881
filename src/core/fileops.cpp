#include "core/fileops.h"

#include <atomic>
#include <climits>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <system_error>

namespace ct {

std::string Join(const std::string& folder, std::string_view name) {
    if (folder.empty()) return std::string(name);
    std::string path = folder;
    if (path.back() != '/') path += '/';
    path += name;
    return path;
}

namespace {

class StdioStream final : public ReadStream {
public:
    explicit StdioStream(std::FILE* file) : file_(file) { std::setvbuf(file_, nullptr, _IONBF, 0); }
    ~StdioStream() override { std::fclose(file_); }
    std::size_t Read(char* to, std::size_t n) override {
        const std::size_t got = std::fread(to, 1, n, file_);
        if (got < n && std::ferror(file_)) error_ = errno ? errno : EIO;
        return got;
    }
    bool Seek(std::uint64_t offset) override {
        return offset <= static_cast<std::uint64_t>(LONG_MAX) && std::fseek(file_, static_cast<long>(offset), SEEK_SET) == 0;
    }

private:
    std::FILE* file_;
};

// Without a platform opener the check comes before the open: it can't see a
// file swapped in between, but it never opens a FIFO it has seen.
ReadFile StandardOpener(const std::string& path, Failure* failure, std::uint64_t* size) {
    if (size) *size = kUnknownSize;
    std::error_code ec;
    const auto status = std::filesystem::status(path, ec);
    if (ec || !std::filesystem::exists(status)) {
        if (failure) *failure = Fail(FailCode::NotFound, path, ENOENT);
        return nullptr;
    }
    if (!std::filesystem::is_regular_file(status)) {
        if (failure) *failure = Fail(FailCode::NotACatalogue, path);
        return nullptr;
    }
    std::FILE* file = std::fopen(path.c_str(), "rb");
    if (!file) {
        if (failure) *failure = Fail(FailCode::Unreadable, path, errno);
        return nullptr;
    }
    return std::make_unique<StdioStream>(file);
}

std::atomic<ReadOpener> gOpener{&StandardOpener};

class PathFolder final : public ReadFolder {
public:
    explicit PathFolder(std::string folder) : folder_(std::move(folder)) {}
    ReadFile Open(const std::string& name, Failure* failure, std::uint64_t* size) override {
        return OpenForReading(Join(folder_, name), failure, size);
    }

private:
    std::string folder_;
};

std::unique_ptr<ReadFolder> StandardFolderOpener(const std::string& folder) {
    return std::make_unique<PathFolder>(folder);
}

std::atomic<FolderOpener> gFolderOpener{&StandardFolderOpener};

bool EndsWith(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

}  // namespace

bool ReadStream::ScanInPlace(std::uint64_t, std::uint64_t, const std::function<void(const char*, std::size_t)>&) {
    return false;
}

ReadFile OpenForReading(const std::string& path, Failure* failure, std::uint64_t* size) {
    return gOpener.load()(path, failure, size);
}

ReadOpener SetReadOpener(ReadOpener opener) {
    gFolderOpener = &StandardFolderOpener;
    return gOpener.exchange(opener ? opener : &StandardOpener);
}

std::unique_ptr<ReadFolder> OpenFolderForReading(const std::string& folder) { return gFolderOpener.load()(folder); }

FolderOpener SetFolderOpener(FolderOpener opener) {
    return gFolderOpener.exchange(opener ? opener : &StandardFolderOpener);
}

// The plain versions, for file systems in memory: a name that is free now, no
// lock, and a check before the rename. The platform layer does each in one
// step of the system.
std::unique_ptr<OutFile> FileOps::CreateScratch(const std::string& folder, std::string_view ending,
                                                std::string& path, Failure* failure) {
    static std::atomic<unsigned> counter{0};
    static const unsigned seed = std::random_device{}();
    for (int attempt = 0; attempt < 100; ++attempt) {
        path = Join(folder, ".ct-" + std::to_string((seed + counter++) % 1000000) + std::string(ending));
        if (Exists(path)) continue;
        std::string why;
        if (auto out = Create(path, &why)) return out;
        break;
    }
    if (failure) *failure = Fail(FailCode::CreateScratch, folder);
    return nullptr;
}

std::unique_ptr<WriteLock> FileOps::Lock(const std::string& path, Failure* failure) {
    if (Exists(path)) return std::make_unique<WriteLock>();
    if (failure) *failure = Fail(FailCode::NotFound, path, ENOENT);
    return nullptr;
}

Failure FileOps::RenameNew(const std::string& from, const std::string& to) {
    if (Exists(to)) return Fail(FailCode::Rename, from, EEXIST, to);
    std::string why;
    if (!Rename(from, to, &why)) return Fail(FailCode::Rename, from, errno, to);
    return {};
}

ReadFile FileOps::OpenRead(const std::string& path, Failure* failure) {
    return OpenForReading(path, failure);
}

bool FileOps::RemoveUnheld(const std::string& path) { return Remove(path, nullptr); }

std::vector<std::string> FileOps::Names(const std::string& folder, std::string_view ending) {
    std::vector<std::string> names;
    std::error_code ec;
    for (std::filesystem::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
        std::string name = it->path().filename().string();
        if (EndsWith(name, ending)) names.push_back(std::move(name));
    }
    return names;
}

Failure WriteWholeFile(FileOps& ops, const std::string& path, std::string_view content) {
    Failure failure;
    // Only an existing file can be locked; a new one (a first CT.ini) has no
    // older version that a second writer could lose.
    std::unique_ptr<WriteLock> lock;
    if (ops.Exists(path) && !(lock = ops.Lock(path, &failure)) && failure.code == FailCode::Busy)
        return failure;
    std::string scratch;
    std::unique_ptr<OutFile> out = ops.CreateScratch(FolderOf(path), ".part", scratch, &failure);
    if (!out) return Fail(FailCode::CreateScratch, path, failure.sysError);
    std::string why;
    const bool written = out->Write(content) && out->Sync();
    const int code = errno;
    const bool closed = out->Close();
    out.reset();
    if (!written || !closed) {
        ops.Remove(scratch, &why);
        return Fail(FailCode::WriteScratch, path, written ? errno : code);
    }
    if (!ops.Rename(scratch, path, &why)) {
        const int renameCode = errno;
        ops.Remove(scratch, &why);
        return Fail(FailCode::Replace, path, renameCode);
    }
    return {};
}

// Every scratch name ends in ".part" (CleanScratchFiles lists only those).
bool IsScratchName(std::string_view name) {
    if (name == "CT.ini.part") return true;
    if (name.size() > 4 && name.substr(0, 4) == ".ct-" && EndsWith(name, ".part")) return true;
    return name.size() > 9 && EndsWith(name, ".idx.part");
}

int CleanScratchFiles(FileOps& ops, const std::vector<std::string>& folders) {
    int removed = 0;
    for (const std::string& folder : folders)
        for (const std::string& name : ops.Names(folder, ".part"))  // a list made before any removal
            if (IsScratchName(name) && ops.RemoveUnheld(Join(folder, name))) ++removed;
    return removed;
}

std::string FolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return {};
    if (slash == 0) return "/";
    return path.substr(0, slash);
}

std::string NameOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace ct
