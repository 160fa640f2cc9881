// Disc images: libarchive for ISO 9660 (it handles Joliet, Rock Ridge,
// multi-extent files and zisofs), our own reader for UDF of every revision.
// The header figures come from the project's own superblock probe, so an
// image and the disc burnt from it get the same serial number.
#include "platform/image.h"

#include <archive.h>
#include <archive_entry.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <locale.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <type_traits>
#include <vector>

#include "core/text.h"
#include "core/textrules.h"
#include "platform/probe.h"
#include "platform/udf.h"
#include "platform/volume.h"
#include "platform/walk.h"

namespace ct {
namespace {

constexpr std::uint64_t kBlock = 2048;

Fixed LowSize(std::uint64_t size) {
    return Fixed::FromInt(static_cast<std::int32_t>(static_cast<std::uint32_t>(size)));
}

std::string TimeText(std::int64_t unixSeconds) { return FileTimeText(FileTimeFromUnix(unixSeconds, 0)); }

bool ReadBlock(int fd, std::uint64_t block, unsigned char* out) {
    return pread(fd, out, kBlock, static_cast<off_t>(block * kBlock)) == static_cast<ssize_t>(kBlock);
}

struct Descriptors {
    bool iso = false, joliet = false, udf = false;
    std::uint32_t isoBlocks = 0;  // the primary descriptor's volume space size
};

// Which volume descriptors the image carries, from the recognition area.
Descriptors Recognise(int fd) {
    Descriptors d;
    unsigned char b[kBlock];
    for (std::uint64_t i = 16; i < 16 + 64 && ReadBlock(fd, i, b); ++i) {
        const std::string id(reinterpret_cast<const char*>(b) + 1, 5);
        if (id == "CD001") {
            if (b[0] == 1 && !d.iso) {
                d.iso = true;
                d.isoBlocks = b[80] | b[81] << 8 | b[82] << 16 | static_cast<std::uint32_t>(b[83]) << 24;
            }
            if (b[0] == 2 && b[88] == '%' && b[89] == '/' && (b[90] == '@' || b[90] == 'C' || b[90] == 'E'))
                d.joliet = true;
            if (b[0] == 255) continue;  // a terminator ends the ISO set, not this walk
        } else if (id != "BEA01" && id != "NSR02" && id != "NSR03" && id != "BOOT2" && id != "CDW02" &&
                   id != "TEA01") {
            break;
        }
    }
    d.udf = UdfRecognised(fd, 0);
    return d;
}

Descriptors RecogniseFile(const std::string& path, std::uint64_t* fileSize = nullptr) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return {};
    struct stat st{};
    Descriptors d;
    if (fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) {
        d = Recognise(fd);
        if (fileSize) *fileSize = static_cast<std::uint64_t>(st.st_size);
    }
    close(fd);
    return d;
}

void Report(const std::function<void(std::size_t)>& progress, const WalkList& folders,
            const WalkList& files) {
    const std::size_t n = folders.size() + files.size();
    if (progress && n % 1000 == 0) progress(n);
}

// --- ISO 9660 --------------------------------------------------------------

struct IsoNode {
    std::string name;
    bool folder = false;
    bool hidden = false;
    std::uint64_t size = 0;
    std::int64_t time = 0;
    std::vector<std::size_t> children;
};

// A directory's records are sorted by their identifiers: Joliet's by their
// UCS-2 code units, the others byte by byte. libarchive hands entries out in
// the order of their data on the disc, so the recorded order is restored here.
std::u16string Utf16Of(const std::string& utf8) {
    std::u16string out;
    for (std::size_t i = 0; i < utf8.size();) {
        const unsigned char c = static_cast<unsigned char>(utf8[i]);
        const int n = c < 0x80 ? 1 : c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
        char32_t cp = n == 1 ? c : n == 2 ? c & 0x1F : n == 3 ? c & 0x0F : c & 0x07;
        for (int k = 1; k < n && i + k < utf8.size(); ++k)
            cp = cp << 6 | (static_cast<unsigned char>(utf8[i + k]) & 0x3F);
        i += n;
        if (cp >= 0x10000) {
            cp -= 0x10000;
            out += static_cast<char16_t>(0xD800 + (cp >> 10));
            out += static_cast<char16_t>(0xDC00 + (cp & 0x3FF));
        } else {
            out += static_cast<char16_t>(cp);
        }
    }
    return out;
}

// The one thing of a directory record libarchive keeps to itself is the
// hidden ("existence") flag, which a drive shows as H. This reads only the
// records' flags and names, in the tree libarchive names entries from (Joliet
// where present, else the primary one, whose names lose their ";1"), and
// gives the paths of the hidden entries. Rock Ridge names aren't matched: a
// tree without Joliet but with Rock Ridge shows no H.
std::set<std::string> HiddenPaths(int fd, bool joliet) {
    std::set<std::string> hidden;
    unsigned char b[kBlock];
    std::uint32_t rootExtent = 0, rootSize = 0;
    for (std::uint64_t i = 16; i < 16 + 64 && ReadBlock(fd, i, b) && b[0] != 255; ++i) {
        const bool isJoliet = b[0] == 2 && b[88] == '%' && b[89] == '/';
        if ((joliet && isJoliet) || (!joliet && b[0] == 1)) {
            rootExtent = b[158] | b[159] << 8 | b[160] << 16 | static_cast<std::uint32_t>(b[161]) << 24;
            rootSize = b[166] | b[167] << 8 | b[168] << 16 | static_cast<std::uint32_t>(b[169]) << 24;
            break;
        }
    }
    std::set<std::uint32_t> seen;  // a damaged image may loop
    std::function<void(std::uint32_t, std::uint32_t, const std::string&)> level =
        [&](std::uint32_t extent, std::uint32_t size, const std::string& prefix) {
            if (!extent || size > (64u << 20) || !seen.insert(extent).second || seen.size() > 100000) return;
            std::vector<unsigned char> dir(size);
            if (pread(fd, dir.data(), size, static_cast<off_t>(extent) * static_cast<off_t>(kBlock)) !=
                static_cast<ssize_t>(size))
                return;
            for (std::size_t at = 0; at < size;) {
                const std::size_t length = dir[at];
                if (length == 0) {  // records don't cross a block: the rest of this one is empty
                    at = (at / kBlock + 1) * kBlock;
                    continue;
                }
                if (length < 34 || at + length > size || 33u + dir[at + 32] > length) break;
                const unsigned char* r = dir.data() + at;
                at += length;
                const unsigned flags = r[25], nameLength = r[32];
                if (nameLength == 1 && r[33] <= 1) continue;  // "." and ".."
                if (flags & 0x80) continue;                   // not the last part of a file
                std::string name;
                if (joliet) {
                    name = Utf16BeToUtf8(r + 33, nameLength);
                } else {
                    name.assign(reinterpret_cast<const char*>(r + 33), nameLength);
                }
                if (const auto semi = name.find(';'); semi != std::string::npos) name.erase(semi);
                if (!(flags & 2) && !name.empty() && name.back() == '.') name.pop_back();
                const std::string path = prefix + name;
                if (flags & 1) hidden.insert(path);
                if (flags & 2)
                    level(r[2] | r[3] << 8 | r[4] << 16 | static_cast<std::uint32_t>(r[5]) << 24,
                          r[10] | r[11] << 8 | r[12] << 16 | static_cast<std::uint32_t>(r[13]) << 24, path + "/");
            }
        };
    level(rootExtent, rootSize, "");
    return hidden;
}

// libarchive, and through it ICU and libxml2, is loaded the first time an ISO
// image is read, not at every start of either program: most commands never
// read an image, and loading those libraries was a third of a short
// command's start-up. Its headers still give the functions' types.
constexpr const char* kArchiveLibrary = "libarchive.so.13";

struct ArchiveCalls {
    decltype(&archive_read_new) readNew;
    decltype(&archive_read_free) readFree;
    decltype(&archive_read_support_format_iso9660) supportIso9660;
    decltype(&archive_read_set_format_option) setFormatOption;
    decltype(&archive_read_open_filename) openFilename;
    decltype(&archive_read_next_header) nextHeader;
    decltype(&archive_entry_pathname_utf8) pathnameUtf8;
    decltype(&archive_entry_pathname) pathname;
    decltype(&archive_entry_filetype) filetype;
    decltype(&archive_entry_mtime) mtime;
    decltype(&archive_entry_size) size;
    decltype(&archive_entry_hardlink) hardlink;
};

// Resolved once (a function-local static, so two threads load it once);
// null when the library or one of its functions is missing. The library
// stays loaded for the life of the process.
const ArchiveCalls* Archive() {
    static const std::optional<ArchiveCalls> calls = []() -> std::optional<ArchiveCalls> {
        void* lib = dlopen(kArchiveLibrary, RTLD_NOW | RTLD_LOCAL);
        if (!lib) return std::nullopt;
        ArchiveCalls c{};
        bool all = true;
        auto bind = [&](auto& call, const char* name) {
            call = reinterpret_cast<std::remove_reference_t<decltype(call)>>(dlsym(lib, name));
            all = all && call;
        };
        bind(c.readNew, "archive_read_new");
        bind(c.readFree, "archive_read_free");
        bind(c.supportIso9660, "archive_read_support_format_iso9660");
        bind(c.setFormatOption, "archive_read_set_format_option");
        bind(c.openFilename, "archive_read_open_filename");
        bind(c.nextHeader, "archive_read_next_header");
        bind(c.pathnameUtf8, "archive_entry_pathname_utf8");
        bind(c.pathname, "archive_entry_pathname");
        bind(c.filetype, "archive_entry_filetype");
        bind(c.mtime, "archive_entry_mtime");
        bind(c.size, "archive_entry_size");
        bind(c.hardlink, "archive_entry_hardlink");
        return all ? std::optional<ArchiveCalls>(c) : std::nullopt;
    }();
    return calls ? &*calls : nullptr;
}

// libarchive turns UTF-16 names into the locale's character set; the walk
// wants UTF-8 whatever the program's locale is.
class Utf8Locale {
public:
    Utf8Locale() : locale_(newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(nullptr))) {
        if (locale_) previous_ = uselocale(locale_);
    }
    ~Utf8Locale() {
        if (!locale_) return;
        uselocale(previous_);
        freelocale(locale_);
    }
    Utf8Locale(const Utf8Locale&) = delete;
    Utf8Locale& operator=(const Utf8Locale&) = delete;

private:
    locale_t locale_ = nullptr;
    locale_t previous_ = nullptr;
};

bool ReadIsoTree(const std::string& image, bool joliet, std::vector<IsoNode>& nodes) {
    const ArchiveCalls* lib = Archive();
    if (!lib) return false;
    Utf8Locale utf8;
    std::unique_ptr<archive, decltype(lib->readFree)> a(lib->readNew(), lib->readFree);
    if (!a) return false;
    lib->supportIso9660(a.get());
    // With both trees present libarchive would take the Rock Ridge names; a
    // drive shows the Joliet ones.
    if (joliet) lib->setFormatOption(a.get(), "iso9660", "rockridge", nullptr);
    if (lib->openFilename(a.get(), image.c_str(), 1 << 16) != ARCHIVE_OK) return false;

    std::map<std::string, std::size_t> byPath{{"", 0}};
    nodes.assign(1, IsoNode{});
    nodes[0].folder = true;
    auto nodeOf = [&](const std::string& path, bool folder) {
        // Parents are made as they are needed: the order of delivery is free.
        std::size_t parent = 0, at = 0;
        while (true) {
            const std::size_t slash = path.find('/', at);
            const std::string part = path.substr(0, slash);
            auto [it, fresh] = byPath.try_emplace(part, nodes.size());
            if (fresh) {
                IsoNode node;
                node.name = path.substr(at, slash == std::string::npos ? std::string::npos : slash - at);
                node.folder = slash != std::string::npos || folder;
                nodes.push_back(std::move(node));
                nodes[parent].children.push_back(it->second);
            }
            if (slash == std::string::npos) return it->second;
            parent = it->second;
            at = slash + 1;
        }
    };
    std::map<std::string, std::uint64_t> sizes;  // for entries libarchive gives as hard links
    archive_entry* entry = nullptr;
    int r;
    while ((r = lib->nextHeader(a.get(), &entry)) == ARCHIVE_OK) {
        const char* raw = lib->pathnameUtf8(entry);
        if (!raw) raw = lib->pathname(entry);
        std::string path = raw ? raw : "";
        while (!path.empty() && path.back() == '/') path.pop_back();
        if (path.rfind("./", 0) == 0) path.erase(0, 2);
        if (path.empty() || path == ".") continue;
        const bool folder = lib->filetype(entry) == AE_IFDIR;
        IsoNode& node = nodes[nodeOf(path, folder)];
        node.folder = folder;
        node.time = lib->mtime(entry);
        node.size = folder ? 0 : static_cast<std::uint64_t>(lib->size(entry));
        if (const char* target = lib->hardlink(entry)) {
            // Files that share their data on the disc: libarchive gives the
            // later ones as links without a size; a drive shows each whole.
            const auto it = sizes.find(target);
            if (it != sizes.end()) node.size = it->second;
        }
        if (!folder) sizes[path] = node.size;
    }
    if (r != ARCHIVE_EOF) return false;
    const int fd = open(image.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd >= 0) {
        for (const std::string& path : HiddenPaths(fd, joliet)) {
            const auto it = byPath.find(path);
            if (it != byPath.end()) nodes[it->second].hidden = true;
        }
        close(fd);
    }
    // Joliet's order is made from each name's UTF-16 form once, not at every comparison.
    std::vector<std::u16string> units;
    if (joliet) {
        units.reserve(nodes.size());
        for (const IsoNode& n : nodes) units.push_back(Utf16Of(n.name));
    }
    for (IsoNode& n : nodes) {
        std::sort(n.children.begin(), n.children.end(), [&](std::size_t x, std::size_t y) {
            return joliet ? units[x] < units[y] : nodes[x].name < nodes[y].name;
        });
    }
    return true;
}

void EmitIso(const std::vector<IsoNode>& nodes, std::size_t at, const std::string& prefix,
             WalkList& folders, WalkList& files, const std::function<void(std::size_t)>& progress) {
    for (const std::size_t child : nodes[at].children) {
        const IsoNode& n = nodes[child];
        WalkRecord record;
        record.Name = prefix + n.name;
        record.Attributes = n.hidden ? "R H" : "R";
        record.Date = TimeText(n.time);
        if (n.folder) {
            folders.push_back(record);
            Report(progress, folders, files);
            EmitIso(nodes, child, record.Name + '/', folders, files, progress);
        } else {
            record.Size = LowSize(n.size);
            files.push_back(std::move(record));
            Report(progress, folders, files);
        }
    }
}

// --- UDF -------------------------------------------------------------------

UdfResult WalkUdf(const std::string& image, const std::string& prefix, WalkList& folders, WalkList& files,
                  const std::function<void(std::size_t)>& progress) {
    const int fd = open(image.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return UdfResult::NotUdf;
    const UdfResult r = ReadUdfTree(fd, [&](const UdfEntry& e) {
        WalkRecord record;
        record.Name = prefix + e.path;
        record.Attributes = e.hidden ? "R H" : "R";
        record.Date = TimeText(e.mtime);
        if (e.folder) {
            folders.push_back(std::move(record));
        } else {
            record.Size = LowSize(e.size);
            files.push_back(std::move(record));
        }
        Report(progress, folders, files);
    });
    close(fd);
    return r;
}

bool UdfOpens(const std::string& image) {
    const int fd = open(image.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return false;
    const bool ok = ReadUdfTree(fd, {}) == UdfResult::Ok;
    close(fd);
    return ok;
}

class WithImages final : public DiscSource {
public:
    void WalkFolder(const std::string& path, WalkList& folders, WalkList& files,
                    const std::function<void(std::size_t)>& progress) override {
        if (IsDiscImage(path))
            WalkImage(path, folders, files, progress);
        else
            SystemDiscSource().WalkFolder(path, folders, files, progress);
    }
    // A folder streams as the machine's walker does; an image is read into
    // lists first (its reader holds the tree anyway) and then handed on.
    WalkSummary Walk(const std::string& path, WalkSink& sink) override {
        if (IsDiscImage(path)) {
            // An image read only in part (a damaged folder deep down) adds
            // nothing rather than a catalogue that looks whole.
            WalkList folders, files;
            if (!WalkImage(path, folders, files, [&sink](std::size_t n) { sink.Progress(n); })) {
                WalkSummary summary;
                const Failure why = ImageFailure(path);
                summary.failure = why ? why : Fail(FailCode::Unreadable, path);
                return summary;
            }
            return HandOn(folders, files, sink);
        }
        return SystemDiscSource().Walk(path, sink);
    }
    void ReadVolumeInfo(const std::string& root, VolumeInfo& volume) override {
        if (IsDiscImage(root))
            ReadImageVolumeInfo(root, volume);
        else
            SystemDiscSource().ReadVolumeInfo(root, volume);
    }
};

}  // namespace

bool IsDiscImage(const std::string& path) {
    const Descriptors d = RecogniseFile(path);
    return d.iso || d.udf;
}

Failure ImageFailure(const std::string& image) {
    const Descriptors d = RecogniseFile(image);
    if (d.udf && UdfOpens(image)) return {};
    if (!d.iso) return Fail(FailCode::Unreadable, image);
    return Archive() ? Failure{} : Fail(FailCode::LibraryMissing, kArchiveLibrary);
}

bool WalkImage(const std::string& image, WalkList& folders, WalkList& files,
               const std::function<void(std::size_t)>& progress) {
    const Descriptors d = RecogniseFile(image);
    const std::string prefix = image + '/';
    // A drive mounts the UDF side of a bridge disc; where that side is
    // damaged, the ISO 9660 side, if any, still tells what the disc holds.
    if (d.udf) {
        const std::size_t f = folders.size(), g = files.size();
        if (WalkUdf(image, prefix, folders, files, progress) == UdfResult::Ok) return true;
        folders.resize(f);
        files.resize(g);
    }
    if (!d.iso) return false;
    std::vector<IsoNode> nodes;
    const bool ok = ReadIsoTree(image, d.joliet, nodes);
    EmitIso(nodes, 0, prefix, folders, files, progress);
    return ok;
}

void ReadImageVolumeInfo(const std::string& image, VolumeInfo& volume) {
    const int fd = open(image.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return;
    struct stat st{};
    const bool regular = fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
    const Descriptors d = regular ? Recognise(fd) : Descriptors{};
    VolumeLabel label;
    const bool probed = (d.iso || d.udf) && ProbeVolume(fd, label, 0, ProbeOrder::UdfFirst);
    const std::uint32_t udfBlock = probed && d.udf ? label.udfBlockSize : 0;
    close(fd);
    if (!probed) return;
    volume.VolumeName = label.name;
    volume.SerialNumber = static_cast<std::int32_t>(label.serial);
    volume.FileSystem = label.fileSystem;
    // The volume space size of the primary descriptor; a UDF image without
    // one is as long as its volume, in blocks of the volume's own size.
    const bool isoSize = d.iso && d.isoBlocks;
    const std::uint64_t block = !isoSize && udfBlock ? udfBlock : kBlock;
    const std::uint64_t blocks = isoSize ? d.isoBlocks : static_cast<std::uint64_t>(st.st_size) / block;
    volume.ClusterCount = static_cast<std::int32_t>(static_cast<std::uint32_t>(blocks));
    volume.SectorsPerCluster = 1;
    volume.BytesPerSector = static_cast<std::int32_t>(block);
    volume.Size = VolumeSize(volume.ClusterCount, 1, volume.BytesPerSector);
}

DiscSource& DiscSourceWithImages() {
    static WithImages source;
    return source;
}

}  // namespace ct
