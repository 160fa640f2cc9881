// The figures of a volume as the Windows calls gave them: name, serial and
// file system from the device where it can be read (udev's notes otherwise),
// and the geometry from statvfs.
#include "platform/volume.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/statvfs.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cctype>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

#include "platform/probe.h"

namespace ct {
namespace {

std::string Unescape(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size()) {
            const char a = text[i + 1], b = text[i + 2], c = text[i + 3];
            if (a >= '0' && a <= '3' && b >= '0' && b <= '7' && c >= '0' && c <= '7') {
                out += static_cast<char>((a - '0') * 64 + (b - '0') * 8 + (c - '0'));
                i += 3;
                continue;
            }
        }
        out += text[i];
    }
    return out;
}

std::vector<std::string_view> Fields(std::string_view line) {
    std::vector<std::string_view> fields;
    std::size_t at = 0;
    while (at < line.size()) {
        while (at < line.size() && line[at] == ' ') ++at;
        if (at >= line.size()) break;
        std::size_t end = line.find(' ', at);
        if (end == std::string_view::npos) end = line.size();
        fields.push_back(line.substr(at, end - at));
        at = end;
    }
    return fields;
}

bool ParseNumber(std::string_view text, unsigned& value) {
    if (text.empty() || text.size() > 9) return false;
    value = 0;
    for (const char c : text) {
        if (c < '0' || c > '9') return false;
        value = value * 10 + static_cast<unsigned>(c - '0');
    }
    return true;
}

std::string ReadWhole(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return {};
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// The properties udev noted for a block device ("E:KEY=VALUE" lines).
std::map<std::string, std::string> UdevProperties(const std::string& folder, unsigned major,
                                                  unsigned minor) {
    std::map<std::string, std::string> props;
    std::istringstream in(ReadWhole(folder + "/b" + std::to_string(major) + ":" +
                                    std::to_string(minor)));
    std::string line;
    while (std::getline(in, line)) {
        if (line.size() < 3 || line[0] != 'E' || line[1] != ':') continue;
        const auto eq = line.find('=');
        if (eq == std::string::npos) continue;
        props[line.substr(2, eq - 2)] = line.substr(eq + 1);
    }
    return props;
}

std::string Property(const std::map<std::string, std::string>& props, const std::string& key) {
    const auto it = props.find(key);
    return it == props.end() ? std::string() : it->second;
}

// udev's encoded form of a label: \xNN for every byte that isn't plain.
std::string DecodeUdev(const std::string& text) {
    std::string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 3 < text.size() && text[i + 1] == 'x') {
            const std::string hex = text.substr(i + 2, 2);
            char* end = nullptr;
            const long v = std::strtol(hex.c_str(), &end, 16);
            if (end == hex.c_str() + 2) {
                out += static_cast<char>(v);
                i += 3;
                continue;
            }
        }
        out += text[i];
    }
    return out;
}

bool IsHex(const std::string& text) {
    if (text.empty()) return false;
    for (const char c : text)
        if (!std::isxdigit(static_cast<unsigned char>(c))) return false;
    return true;
}

// The serial number udev's ID_FS_UUID carries where it is the Windows one:
// "ABCD-1234" on FAT and exFAT, sixteen hex digits (the low half counts) on NTFS.
bool SerialFromUuid(const std::string& uuid, const std::string& windowsType, std::uint32_t& serial) {
    std::string hex;
    if ((windowsType == "FAT" || windowsType == "FAT32" || windowsType == "exFAT") &&
        uuid.size() == 9 && uuid[4] == '-')
        hex = uuid.substr(0, 4) + uuid.substr(5);
    else if (windowsType == "NTFS" && uuid.size() == 16)
        hex = uuid.substr(8);
    if (hex.size() != 8 || !IsHex(hex)) return false;
    serial = static_cast<std::uint32_t>(std::strtoul(hex.c_str(), nullptr, 16));
    return true;
}

std::string UserName() {
    if (const passwd* pw = getpwuid(geteuid())) return pw->pw_name;
    return {};
}

// The name a desktop gave the mount point of a removable volume: it names the
// folder after the label.
std::string DesktopMountName(const std::string& mountPoint) {
    const std::string user = UserName();
    if (user.empty()) return {};
    for (const std::string& base : {"/media/" + user + "/", "/run/media/" + user + "/"}) {
        if (mountPoint.size() > base.size() && mountPoint.compare(0, base.size(), base) == 0 &&
            mountPoint.find('/', base.size()) == std::string::npos)
            return mountPoint.substr(base.size());
    }
    return {};
}

bool IsOptical(const std::string& type) { return type == "iso9660" || type == "udf"; }

bool ProbeDevice(const std::string& devBlock, const MountEntry& mount, std::uint64_t session,
                 ProbeOrder order, VolumeLabel& label) {
    std::vector<std::string> candidates;
    candidates.push_back(devBlock + "/" + std::to_string(mount.major) + ":" + std::to_string(mount.minor));
    if (mount.source.rfind("/dev/", 0) == 0) candidates.push_back(mount.source);
    for (const auto& device : candidates) {
        const int fd = open(device.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (fd < 0) continue;
        const bool ok = ProbeVolume(fd, label, session, order);
        close(fd);
        if (ok) return true;
    }
    return false;
}

}  // namespace

void ReadVolumeName(const std::string& path, const MountEntry& mount, const std::uint64_t* clusters,
                    VolumeInfo& volume, const VolumeNameSources& sources) {
    const auto props = UdevProperties(sources.udevData, mount.major, mount.minor);
    const std::string& type = mount.fsType;
    const bool probeable = IsOptical(type) || type == "vfat" || type == "msdos" || type == "exfat" ||
                           type == "ntfs" || type == "ntfs3" || type == "fuseblk";
    VolumeLabel label;
    bool probed = false;
    if (probeable) {
        std::uint64_t session = 0;
        if (IsOptical(type)) {
            const std::string offset = Property(props, "ID_CDROM_MEDIA_SESSION_LAST_OFFSET");
            if (!offset.empty()) session = std::strtoull(offset.c_str(), nullptr, 10) / 2048;
        }
        const ProbeOrder order = type == "iso9660" ? ProbeOrder::IsoFirst
                                 : type == "udf"   ? ProbeOrder::UdfFirst
                                                   : ProbeOrder::BootSectorFirst;
        probed = ProbeDevice(sources.devBlock, mount, session, order, label);
    }

    std::string fileSystem;
    if (type == "fuseblk") {
        const std::string udevType = Property(props, "ID_FS_TYPE");
        char attrib[4];
        if (probed)
            fileSystem = label.fileSystem;
        else if (udevType == "ntfs" || udevType == "exfat")
            fileSystem = WindowsFileSystemName(udevType, false);
        else if (lgetxattr(path.c_str(), "system.ntfs_attrib", attrib, sizeof attrib) == 4)
            fileSystem = "NTFS";
        else
            fileSystem = type;
    } else if (type == "vfat" || type == "msdos") {
        bool fat32 = false;
        if (probed)
            fat32 = label.fileSystem == "FAT32";
        else if (!Property(props, "ID_FS_VERSION").empty())
            fat32 = Property(props, "ID_FS_VERSION") == "FAT32";
        else
            fat32 = clusters && *clusters >= 65525;  // what makes a FAT volume FAT32
        fileSystem = WindowsFileSystemName(type, fat32);
    } else {
        fileSystem = WindowsFileSystemName(type, false);
    }

    std::string name;
    std::uint32_t serial = 0;
    if (probed) {
        name = label.name;
        serial = label.serial;
    } else {
        name = DecodeUdev(Property(props, "ID_FS_LABEL_ENC"));
        if (name.empty()) name = Property(props, "ID_FS_LABEL");
        if (name.empty()) name = DesktopMountName(mount.mountPoint);
        SerialFromUuid(Property(props, "ID_FS_UUID"), fileSystem, serial);
    }
    volume.VolumeName = name;
    volume.SerialNumber = static_cast<std::int32_t>(serial);
    volume.FileSystem = fileSystem;
}

namespace {

// The logical sector size of the device, or of the whole disc for a partition.
std::int32_t LogicalSectorSize(unsigned major, unsigned minor) {
    const std::string base = "/sys/dev/block/" + std::to_string(major) + ":" + std::to_string(minor);
    for (const std::string& file : {base + "/queue/logical_block_size", base + "/../queue/logical_block_size"}) {
        const long v = std::strtol(ReadWhole(file).c_str(), nullptr, 10);
        if (v >= 512 && v <= 65536) return static_cast<std::int32_t>(v);
    }
    return 512;
}

void GeometryHalf(const MountEntry* mount, const struct statvfs& vfs, VolumeInfo& volume) {
    const std::uint64_t unit = vfs.f_frsize ? vfs.f_frsize : vfs.f_bsize;
    std::int32_t bytesPerSector = 0, sectorsPerCluster = 0, clusters = 0;
    if (mount && IsOptical(mount->fsType)) {
        bytesPerSector = 2048;
        sectorsPerCluster = 1;
        clusters = static_cast<std::int32_t>(static_cast<std::uint32_t>(
            static_cast<std::uint64_t>(vfs.f_blocks) * unit / 2048));
    } else {
        bytesPerSector = mount ? LogicalSectorSize(mount->major, mount->minor) : 512;
        if (unit < static_cast<std::uint64_t>(bytesPerSector) || unit % bytesPerSector != 0) {
            bytesPerSector = static_cast<std::int32_t>(unit);
            sectorsPerCluster = 1;
        } else {
            sectorsPerCluster = static_cast<std::int32_t>(unit / bytesPerSector);
        }
        if (sectorsPerCluster < 1) sectorsPerCluster = 1;
        clusters = static_cast<std::int32_t>(static_cast<std::uint32_t>(vfs.f_blocks));
    }
    volume.ClusterCount = clusters;
    volume.SectorsPerCluster = sectorsPerCluster;
    volume.BytesPerSector = bytesPerSector;
    volume.Size = VolumeSize(clusters, sectorsPerCluster, bytesPerSector);
}

}  // namespace

Fixed VolumeSize(std::int32_t clusterCount, std::int32_t sectorsPerCluster, std::int32_t bytesPerSector) {
    // The sector count is a 32-bit product and wraps as it did there.
    const auto sectors = static_cast<std::int32_t>(static_cast<std::uint32_t>(clusterCount) *
                                                   static_cast<std::uint32_t>(sectorsPerCluster));
    return Fixed::FromInt(static_cast<std::int64_t>(sectors) * bytesPerSector);
}

std::vector<MountEntry> ParseMountInfo(std::string_view text) {
    std::vector<MountEntry> mounts;
    while (!text.empty()) {
        const std::size_t eol = text.find('\n');
        const std::string_view line = text.substr(0, eol);
        text = eol == std::string_view::npos ? std::string_view() : text.substr(eol + 1);
        const auto f = Fields(line);
        // id parent maj:min root mountpoint options [optional...] - type source superoptions
        if (f.size() < 8) continue;
        std::size_t dash = 6;
        while (dash < f.size() && f[dash] != "-") ++dash;
        if (dash + 1 >= f.size()) continue;  // no separator, or nothing behind it
        MountEntry m;
        const auto colon = f[2].find(':');
        if (colon == std::string_view::npos || !ParseNumber(f[2].substr(0, colon), m.major) ||
            !ParseNumber(f[2].substr(colon + 1), m.minor))
            continue;
        m.root = Unescape(f[3]);
        m.mountPoint = Unescape(f[4]);
        m.fsType = Unescape(f[dash + 1]);
        m.source = dash + 2 < f.size() ? Unescape(f[dash + 2]) : std::string();
        mounts.push_back(std::move(m));
    }
    return mounts;
}

std::vector<MountEntry> ReadMountInfo() { return ParseMountInfo(ReadWhole("/proc/self/mountinfo")); }

bool MountOf(const std::vector<MountEntry>& mounts, const std::string& path, MountEntry& mount) {
    std::string p = path;
    while (p.size() > 1 && p.back() == '/') p.pop_back();
    std::size_t best = 0;
    bool found = false;
    for (const auto& m : mounts) {
        std::string mp = m.mountPoint;
        while (mp.size() > 1 && mp.back() == '/') mp.pop_back();
        const bool covers = mp == "/" ? !p.empty() && p[0] == '/'
                                      : p.compare(0, mp.size(), mp) == 0 &&
                                            (p.size() == mp.size() || p[mp.size()] == '/');
        // Equal lengths: the later mount lies on top of the earlier one.
        if (covers && (!found || mp.size() >= best)) {
            best = mp.size();
            mount = m;
            found = true;
        }
    }
    return found;
}

std::string WindowsFileSystemName(std::string_view linuxType, bool fat32) {
    if (linuxType == "iso9660") return "CDFS";
    if (linuxType == "udf") return "UDF";
    if (linuxType == "vfat" || linuxType == "msdos" || linuxType == "fat") return fat32 ? "FAT32" : "FAT";
    if (linuxType == "exfat") return "exFAT";
    if (linuxType == "ntfs" || linuxType == "ntfs3") return "NTFS";
    return std::string(linuxType);
}

void ReadVolumeInfo(const std::string& root, VolumeInfo& volume) {
    char* real = realpath(root.c_str(), nullptr);
    if (!real) return;  // no disc, no folder: both halves fail alike
    const std::string path = real;
    std::free(real);
    MountEntry mount;
    const bool haveMount = MountOf(ReadMountInfo(), path, mount);
    struct statvfs vfs{};
    const bool haveVfs = statvfs(path.c_str(), &vfs) == 0;
    const std::uint64_t clusters = vfs.f_blocks;
    if (haveMount) ReadVolumeName(path, mount, haveVfs ? &clusters : nullptr, volume, VolumeNameSources{});
    if (haveVfs) GeometryHalf(haveMount ? &mount : nullptr, vfs, volume);
}

}  // namespace ct
