// The walker: one readdir pass per folder, one statx per entry, and the
// attribute marks a Windows machine would show for the same entry.
#include "platform/walk.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <linux/msdos_fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "core/catalogue.h"
#include "core/textrules.h"
#include "platform/volume.h"

namespace ct {
namespace {

// Windows attribute flags that have a mark, in the order of the marks.
constexpr std::uint32_t kReadOnly = 0x1, kHidden = 0x2, kSystem = 0x4, kArchive = 0x20,
                        kNormal = 0x80, kTemporary = 0x100, kCompressed = 0x800;

// Where the real DOS flags of an entry come from.
enum class FlagSource {
    Fat,      // the FAT ioctl
    Ntfs,     // the system.ntfs_attrib extended attribute
    Optical,  // everything on a pressed or burnt disc is read-only
    Unix,     // made up from the mode and the name, plus Samba's xattr
};

// Magic numbers that <linux/magic.h> doesn't carry on every system.
constexpr long kNtfsMagic = 0x5346544e;      // ntfs and ntfs3
constexpr long kExfatMagic = 0x2011BAB0;
constexpr long kUdfMagic = 0x15013346;
constexpr long kFuseMagic = 0x65735546;

constexpr std::size_t kSambaSample = 256;

// Folders this deep and deeper give up their descriptor while the walk is
// below them and are opened again by path afterwards, so a deep tree never
// runs out of descriptors (the usual limit is 1024, a tree can be deeper).
constexpr int kHeldLevels = 16;

struct Walk {
    WalkSink& sink;
    std::size_t unreadable = 0;
    std::uint32_t devMajor = 0, devMinor = 0;
    std::uint64_t mountId = 0;
    bool haveMountId = false;
    FlagSource source = FlagSource::Unix;
    bool tryNtfsXattr = false;   // fuseblk: may be ntfs-3g
    bool trySambaXattr = true;   // switched off once the file system says it has no xattrs
    std::size_t sambaProbes = 0;  // entries asked without an answer so far
    bool sambaSeen = false;
};

std::string MarksText(std::uint32_t flags) {
    static constexpr struct {
        std::uint32_t flag;
        char mark;
    } kMarks[] = {{kReadOnly, 'R'}, {kHidden, 'H'},     {kSystem, 'S'},    {kArchive, 'A'},
                  {kNormal, 'N'},   {kTemporary, 'T'}, {kCompressed, 'C'}};
    std::string text;
    for (const auto& m : kMarks) {
        if (flags & m.flag) {
            if (!text.empty()) text += ' ';
            text += m.mark;
        }
    }
    return text;
}

// Samba keeps the DOS flags of files it serves in user.DOSATTRIB: either a
// hex text ("0x22") or an NDR blob that begins with such a text (often empty),
// followed by a version and the flags.
bool SambaFlags(const char* data, std::size_t size, std::uint32_t& flags) {
    std::size_t textEnd = 0;
    while (textEnd < size && data[textEnd] != '\0') ++textEnd;
    if (textEnd > 2 && data[0] == '0' && (data[1] == 'x' || data[1] == 'X')) {
        char* end = nullptr;
        const std::string hex(data + 2, textEnd - 2);
        const unsigned long v = std::strtoul(hex.c_str(), &end, 16);
        if (end != hex.c_str()) {
            flags = static_cast<std::uint32_t>(v);
            return true;
        }
    }
    auto le16 = [&](std::size_t at) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(data[at])) |
               static_cast<std::uint32_t>(static_cast<unsigned char>(data[at + 1])) << 8;
    };
    auto le32 = [&](std::size_t at) { return le16(at) | le16(at + 2) << 16; };
    std::size_t at = textEnd + 1;
    at = (at + 1) & ~std::size_t{1};
    if (at + 4 > size) return false;
    const std::uint32_t version = le16(at);
    at += 4;                                // version, then the union's level
    at = (at + 3) & ~std::size_t{3};
    const std::size_t flagsAt = version == 1 ? at : at + 4;  // later versions lead with valid flags
    if (version < 1 || version > 5 || flagsAt + 4 > size) return false;
    flags = le32(flagsAt);
    return true;
}

std::uint32_t UnixFlags(Walk& walk, const std::string& fullName, const char* name,
                        const struct statx& st) {
    std::uint32_t flags = 0;
    if ((st.stx_mode & 0222) == 0 && !S_ISLNK(st.stx_mode)) flags |= kReadOnly;
    if (name[0] == '.') flags |= kHidden;
    if (S_ISREG(st.stx_mode)) flags |= kArchive;
    if (walk.trySambaXattr) {
        char buf[256];
        const ssize_t n = lgetxattr(fullName.c_str(), "user.DOSATTRIB", buf, sizeof buf);
        std::uint32_t samba = 0;
        if (n > 0 && SambaFlags(buf, static_cast<std::size_t>(n), samba)) {
            flags |= samba & (kHidden | kSystem);
            walk.sambaSeen = true;
        } else if (n < 0 && errno == ENOTSUP) {
            walk.trySambaXattr = false;
        } else if (!walk.sambaSeen && ++walk.sambaProbes >= kSambaSample) {
            // Samba writes the attribute on everything it creates, so a tree
            // it filled shows it at once. A tree whose first entries carry
            // none was not filled that way, and asking each of thousands of
            // entries by full path would cost more than the whole listing.
            walk.trySambaXattr = false;
        }
    }
    return flags;
}

bool FatFlags(int dirFd, const char* name, std::uint32_t& flags) {
    const int fd = openat(dirFd, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    if (fd < 0) return false;
    __u32 attrs = 0;
    const bool ok = ioctl(fd, FAT_IOCTL_GET_ATTRIBUTES, &attrs) == 0;
    close(fd);
    if (ok) flags = attrs;
    return ok;
}

bool NtfsFlags(const std::string& fullName, std::uint32_t& flags) {
    unsigned char buf[4] = {};
    const ssize_t n = lgetxattr(fullName.c_str(), "system.ntfs_attrib", buf, sizeof buf);
    if (n != 4) return false;
    flags = buf[0] | buf[1] << 8 | buf[2] << 16 | static_cast<std::uint32_t>(buf[3]) << 24;
    return true;
}

std::string Attributes(Walk& walk, int dirFd, const std::string& fullName, const char* name,
                       const struct statx& st) {
    std::uint32_t flags = 0;
    bool known = false;
    switch (walk.source) {
    case FlagSource::Optical:
        flags = kReadOnly;
        known = true;
        break;
    case FlagSource::Fat:
        if (!S_ISLNK(st.stx_mode)) known = FatFlags(dirFd, name, flags);
        break;
    case FlagSource::Ntfs:
        known = NtfsFlags(fullName, flags);
        break;
    case FlagSource::Unix:
        if (walk.tryNtfsXattr) known = NtfsFlags(fullName, flags);
        break;
    }
    if (!known) flags = UnixFlags(walk, fullName, name, st);
    return MarksText(flags);
}

std::string CreationText(const struct statx& st) {
    const struct statx_timestamp& t = (st.stx_mask & STATX_BTIME) ? st.stx_btime : st.stx_mtime;
    return FileTimeText(FileTimeFromUnix(t.tv_sec, t.tv_nsec));
}

FlagSource SourceOf(const std::string& root, bool& tryNtfsXattr) {
    tryNtfsXattr = false;
    struct statfs fs{};
    if (statfs(root.c_str(), &fs) != 0) return FlagSource::Unix;
    switch (static_cast<long>(fs.f_type)) {
    case MSDOS_SUPER_MAGIC:
    case kExfatMagic:  // the ioctl answers there on newer kernels; the fallback covers older ones
        return FlagSource::Fat;
    case kNtfsMagic:
        return FlagSource::Ntfs;
    case ISOFS_SUPER_MAGIC:
    case kUdfMagic:
        return FlagSource::Optical;
    case kFuseMagic: {
        // ntfs-3g shows as fuseblk; its flags come through the same xattr.
        char* real = realpath(root.c_str(), nullptr);
        MountEntry mount;
        if (real && MountOf(ReadMountInfo(), real, mount) && mount.fsType == "fuseblk")
            tryNtfsXattr = true;
        std::free(real);
        return FlagSource::Unix;
    }
    default:
        return FlagSource::Unix;
    }
}

bool Stat(int dirFd, const char* name, struct statx& st) {
    const unsigned mask = STATX_TYPE | STATX_MODE | STATX_SIZE | STATX_MTIME | STATX_BTIME |
                          STATX_MNT_ID;
    return statx(dirFd, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, mask, &st) == 0;
}

bool SameFileSystem(const Walk& walk, const struct statx& st) {
    if (st.stx_dev_major != walk.devMajor || st.stx_dev_minor != walk.devMinor) return false;
    if (walk.haveMountId && (st.stx_mask & STATX_MNT_ID) && st.stx_mnt_id != walk.mountId)
        return false;
    return true;
}

// Takes ownership of `fd`, the open folder `prefix` (which ends in '/').
// False when the sink said stop. The folder's entries are read whole first,
// so its descriptor can be given up during a descent below kHeldLevels.
bool WalkLevel(Walk& walk, int fd, const std::string& prefix, int depth) {
    DIR* dir = fdopendir(fd);
    if (!dir) {
        close(fd);
        ++walk.unreadable;
        return true;
    }
    std::vector<std::string> names;
    for (;;) {
        errno = 0;
        const dirent* entry = readdir(dir);
        if (!entry) {
            if (errno != 0) ++walk.unreadable;  // the rest of this folder is lost: say so
            break;
        }
        const char* name = entry->d_name;
        if (name[0] == '.' && (name[1] == '\0' || (name[1] == '.' && name[2] == '\0'))) continue;
        names.emplace_back(name);
    }
    bool go = true;
    for (std::size_t i = 0; go && i < names.size(); ++i) {
        if (!dir) {
            const int again = open(prefix.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            dir = again >= 0 ? fdopendir(again) : nullptr;
            if (!dir) {
                if (again >= 0) close(again);
                walk.unreadable += names.size() - i;
                return true;
            }
        }
        const int dirFd = dirfd(dir);
        const char* name = names[i].c_str();
        struct statx st{};
        if (!Stat(dirFd, name, st)) {
            if (errno != ENOENT) ++walk.unreadable;  // one that vanished since it was listed isn't lost
            continue;
        }
        std::string fullName = prefix + names[i];
        WalkRecord record;
        record.Attributes = Attributes(walk, dirFd, fullName, name, st);
        record.Date = CreationText(st);
        if (S_ISDIR(st.stx_mode)) {
            record.Name = fullName;
            go = walk.sink.Folder(record);
            if (!go || !SameFileSystem(walk, st)) continue;  // a mount point: its record only
            const int sub = openat(dirFd, name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
            if (sub < 0) {
                ++walk.unreadable;
                continue;
            }
            if (depth >= kHeldLevels) {
                closedir(dir);
                dir = nullptr;
            }
            go = WalkLevel(walk, sub, fullName + '/', depth + 1);
        } else {
            if (S_ISREG(st.stx_mode))
                record.Size = Fixed::FromInt(static_cast<std::int32_t>(static_cast<std::uint32_t>(st.stx_size)));
            record.Name = std::move(fullName);
            go = walk.sink.File(record);
        }
    }
    if (dir) closedir(dir);
    return go;
}

// Into two lists, for the data folder and for sources that want lists.
class ListSink final : public WalkSink {
public:
    ListSink(WalkList& folders, WalkList& files, const std::function<void(std::size_t)>& progress)
        : folders_(folders), files_(files), progress_(progress) {}
    bool Folder(const WalkRecord& folder) override {
        folders_.push_back(folder);
        return Report();
    }
    bool File(const WalkRecord& file) override {
        files_.push_back(file);
        return Report();
    }

private:
    bool Report() {
        if (progress_ && ++sinceReport_ >= 1000) {
            sinceReport_ = 0;
            progress_(folders_.size() + files_.size());
        }
        return true;
    }
    WalkList& folders_;
    WalkList& files_;
    const std::function<void(std::size_t)>& progress_;
    std::size_t sinceReport_ = 0;
};

class SystemSource final : public DiscSource {
public:
    void WalkFolder(const std::string& path, WalkList& folders, WalkList& files,
                    const std::function<void(std::size_t)>& progress) override {
        ct::WalkFolder(path, folders, files, progress);
    }
    WalkSummary Walk(const std::string& path, WalkSink& sink) override { return WalkTree(path, sink); }
    void ReadVolumeInfo(const std::string& root, VolumeInfo& volume) override {
        ct::ReadVolumeInfo(root, volume);
    }
};

}  // namespace

WalkSummary WalkTree(const std::string& path, WalkSink& sink) {
    Walk walk{sink};
    if (path.empty()) return {};  // no current drive to fall back on
    const std::string prefix = path.back() == '/' ? path : path + '/';
    // The root itself may be a link to the folder to walk (a mount point given
    // through a link, say): follow it for the root only.
    const int fd = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return WalkSummary{1, false, {}};
    struct statx opened{};
    if (statx(fd, "", AT_EMPTY_PATH, STATX_TYPE | STATX_MNT_ID, &opened) != 0) {
        close(fd);
        return WalkSummary{1, false, {}};
    }
    walk.devMajor = opened.stx_dev_major;
    walk.devMinor = opened.stx_dev_minor;
    walk.haveMountId = (opened.stx_mask & STATX_MNT_ID) != 0;
    walk.mountId = opened.stx_mnt_id;
    walk.source = SourceOf(path, walk.tryNtfsXattr);
    const bool finished = WalkLevel(walk, fd, prefix, 0);
    return WalkSummary{walk.unreadable, !finished, {}};
}

void WalkFolder(const std::string& path, WalkList& folders, WalkList& files,
                const std::function<void(std::size_t)>& progress) {
    ListSink sink(folders, files, progress);
    WalkTree(path, sink);
}

DiscSource& SystemDiscSource() {
    static SystemSource source;
    return source;
}

namespace {

void ListCatalogues(int parent, const char* name, std::vector<std::string>& labels, int depth) {
    // Deeper than any collection nests, and a bound on the descriptors held.
    if (depth > 64) return;
    // The data folder may be a link; a folder below it is never followed.
    const int fd = openat(parent, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC | (depth > 0 ? O_NOFOLLOW : 0));
    if (fd < 0) return;
    DIR* dir = fdopendir(fd);
    if (!dir) {
        close(fd);
        return;
    }
    std::string label;
    while (const dirent* e = readdir(dir)) {
        const std::string_view entry = e->d_name;
        if (entry == "." || entry == "..") continue;
        unsigned char type = e->d_type;
        if (type == DT_UNKNOWN) {
            struct stat st{};
            if (fstatat(dirfd(dir), e->d_name, &st, AT_SYMLINK_NOFOLLOW) != 0) continue;
            type = S_ISDIR(st.st_mode) ? DT_DIR : S_ISLNK(st.st_mode) ? DT_LNK : S_ISREG(st.st_mode) ? DT_REG : DT_FIFO;
        }
        if (type == DT_DIR) {
            ListCatalogues(dirfd(dir), e->d_name, labels, depth + 1);
            continue;
        }
        if (!LabelOfCatalogueName(entry, label)) continue;
        if (type == DT_LNK) {  // a link counts when it leads to a regular file, or to nothing yet
            struct stat st{};
            if (fstatat(dirfd(dir), e->d_name, &st, 0) == 0 && !S_ISREG(st.st_mode)) continue;
        } else if (type != DT_REG) {
            continue;  // a FIFO, a socket or a device would only hang whoever opened it
        }
        labels.push_back(label);
    }
    closedir(dir);
}

}  // namespace

std::vector<std::string> CatalogueLabels(const std::string& dataFolder) {
    std::vector<std::string> labels;
    ListCatalogues(AT_FDCWD, dataFolder.c_str(), labels, 0);
    return labels;
}

}  // namespace ct
