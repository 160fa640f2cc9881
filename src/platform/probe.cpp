// Reads a volume's label and serial number straight from its first sectors,
// the way Windows derives them, for the file systems a disc or stick carries.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "core/text.h"
#include "platform/probe.h"
#include "platform/udf.h"
#include "platform/volume.h"

namespace ct {
namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::uint64_t kOpticalSector = 2048;

Bytes ReadAt(int fd, std::uint64_t offset, std::size_t size) {
    Bytes buf(size);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t n = pread(fd, buf.data() + done, size - done, static_cast<off_t>(offset + done));
        if (n <= 0) break;
        done += static_cast<std::size_t>(n);
    }
    buf.resize(done);
    return buf;
}

std::uint32_t Le16(const Bytes& b, std::size_t at) {
    return static_cast<std::uint32_t>(b[at]) | static_cast<std::uint32_t>(b[at + 1]) << 8;
}
std::uint32_t Le32(const Bytes& b, std::size_t at) { return Le16(b, at) | Le16(b, at + 2) << 16; }
bool Has(const Bytes& b, std::size_t at, const char* text) {
    const std::size_t n = std::strlen(text);
    return b.size() >= at + n && std::memcmp(b.data() + at, text, n) == 0;
}

// FAT labels are in the OEM code page; 850 is the one of Western Windows.
std::string Cp850ToUtf8(const unsigned char* p, std::size_t n) {
    static constexpr char16_t kHigh[128] = {
        0x00C7, 0x00FC, 0x00E9, 0x00E2, 0x00E4, 0x00E0, 0x00E5, 0x00E7, 0x00EA, 0x00EB, 0x00E8,
        0x00EF, 0x00EE, 0x00EC, 0x00C4, 0x00C5, 0x00C9, 0x00E6, 0x00C6, 0x00F4, 0x00F6, 0x00F2,
        0x00FB, 0x00F9, 0x00FF, 0x00D6, 0x00DC, 0x00F8, 0x00A3, 0x00D8, 0x00D7, 0x0192, 0x00E1,
        0x00ED, 0x00F3, 0x00FA, 0x00F1, 0x00D1, 0x00AA, 0x00BA, 0x00BF, 0x00AE, 0x00AC, 0x00BD,
        0x00BC, 0x00A1, 0x00AB, 0x00BB, 0x2591, 0x2592, 0x2593, 0x2502, 0x2524, 0x00C1, 0x00C2,
        0x00C0, 0x00A9, 0x2563, 0x2551, 0x2557, 0x255D, 0x00A2, 0x00A5, 0x2510, 0x2514, 0x2534,
        0x252C, 0x251C, 0x2500, 0x253C, 0x00E3, 0x00C3, 0x255A, 0x2554, 0x2569, 0x2566, 0x2560,
        0x2550, 0x256C, 0x00A4, 0x00F0, 0x00D0, 0x00CA, 0x00CB, 0x00C8, 0x0131, 0x00CD, 0x00CE,
        0x00CF, 0x2518, 0x250C, 0x2588, 0x2584, 0x00A6, 0x00CC, 0x2580, 0x00D3, 0x00DF, 0x00D4,
        0x00D2, 0x00F5, 0x00D5, 0x00B5, 0x00FE, 0x00DE, 0x00DA, 0x00DB, 0x00D9, 0x00FD, 0x00DD,
        0x00AF, 0x00B4, 0x00AD, 0x00B1, 0x2017, 0x00BE, 0x00B6, 0x00A7, 0x00F7, 0x00B8, 0x00B0,
        0x00A8, 0x00B7, 0x00B9, 0x00B3, 0x00B2, 0x25A0, 0x00A0};
    std::string out;
    for (std::size_t i = 0; i < n; ++i) AppendUtf8(out, p[i] < 0x80 ? p[i] : kHigh[p[i] - 0x80]);
    return out;
}

std::string StripTrailing(std::string text) {
    while (!text.empty() && (text.back() == ' ' || text.back() == '\0')) text.pop_back();
    return text;
}

// The four byte-wise sums over a descriptor, as the CD file systems of Windows
// turn them into a serial number; UDF reads them in the other order.
std::array<std::uint8_t, 4> Sums(const Bytes& block) {
    std::array<std::uint8_t, 4> s{};
    for (std::size_t i = 0; i + 3 < block.size() && i < 2048; i += 4)
        for (std::size_t k = 0; k < 4; ++k) s[k] = static_cast<std::uint8_t>(s[k] + block[i + k]);
    return s;
}

// --- ISO 9660 -------------------------------------------------------------

bool ProbeIso(int fd, std::uint64_t session, VolumeLabel& out) {
    Bytes primary, joliet;
    for (std::uint64_t i = 16; i < 16 + 64; ++i) {
        Bytes d = ReadAt(fd, (session + i) * kOpticalSector, kOpticalSector);
        if (d.size() < kOpticalSector || !Has(d, 1, "CD001")) break;
        if (d[0] == 255) break;
        if (d[0] == 1 && primary.empty()) primary = d;
        if (d[0] == 2 && d[88] == '%' && d[89] == '/' && (d[90] == '@' || d[90] == 'C' || d[90] == 'E')) {
            joliet = std::move(d);
            break;  // the first Joliet descriptor is the one Windows reads
        }
    }
    const Bytes& chosen = joliet.empty() ? primary : joliet;
    if (chosen.empty()) return false;
    const auto s = Sums(chosen);
    out.serial = static_cast<std::uint32_t>(s[0]) << 24 | static_cast<std::uint32_t>(s[1]) << 16 |
                 static_cast<std::uint32_t>(s[2]) << 8 | s[3];
    if (!joliet.empty()) {
        out.name = StripTrailing(Utf16BeToUtf8(chosen.data() + 40, 32));
    } else {
        out.name = StripTrailing(Latin1ToUtf8({reinterpret_cast<const char*>(chosen.data()) + 40, 32}));
    }
    out.fileSystem = "CDFS";
    return true;
}

// --- UDF ------------------------------------------------------------------

// A UDF "dstring": compression id first, length in the field's last byte.
std::string DString(const Bytes& b, std::size_t at, std::size_t fieldSize) {
    const std::size_t used = b[at + fieldSize - 1];
    if (used < 2 || used > fieldSize - 1) return {};
    const unsigned id = b[at];
    if (id == 8)
        return StripTrailing(Latin1ToUtf8({reinterpret_cast<const char*>(b.data()) + at + 1, used - 1}));
    if (id == 16) return StripTrailing(Utf16BeToUtf8(b.data() + at + 1, used - 1));
    return {};
}

bool ProbeUdf(int fd, std::uint64_t session, VolumeLabel& out) {
    const std::uint64_t first = session * kOpticalSector;
    if (!UdfRecognised(fd, first)) return false;
    // A disc's block is its 2048-byte sector; an image of a hard disk or a
    // stick may have blocks of 512 to 32768 bytes, which its anchor tells.
    UdfVolume volume;
    if (session == 0) volume = ReadUdfVolume(fd);
    out.udfBlockSize = volume.blockSize;
    const std::uint64_t bs = volume.blockSize ? volume.blockSize : kOpticalSector;
    const Bytes anchor = ReadAt(fd, first + 256 * bs, bs);
    if (anchor.size() < 24 || Le16(anchor, 0) != 2) return false;
    const std::uint32_t vdsLength = Le32(anchor, 16), vdsStart = Le32(anchor, 20);
    std::string logicalName, volumeName;
    std::uint32_t fsdBlock = 0, partitionStart = 0;
    bool haveLvd = false, havePd = false;
    for (std::uint32_t i = 0; i < vdsLength / bs && i < 64; ++i) {
        const Bytes d = ReadAt(fd, (static_cast<std::uint64_t>(vdsStart) + i) * bs, bs);
        if (d.size() < bs) break;
        const std::uint32_t tag = Le16(d, 0);
        if (tag == 8) break;
        if (tag == 1 && volumeName.empty()) volumeName = DString(d, 24, 32);
        if (tag == 5 && !havePd) {
            partitionStart = Le32(d, 188);
            havePd = true;
        }
        if (tag == 6 && !haveLvd) {
            logicalName = DString(d, 84, 128);
            fsdBlock = Le32(d, 252);
            haveLvd = true;
        }
    }
    out.name = logicalName.empty() ? volumeName : logicalName;
    out.serial = 0;
    if (haveLvd && havePd) {
        // The file set as the volume maps it: on a disc with a metadata
        // partition (Blu-ray) or a virtual one (DVD-R, BD-R) it isn't at the
        // physical partition's block of its number.
        Bytes fsd = std::move(volume.fileSet);
        if (fsd.empty()) fsd = ReadAt(fd, (static_cast<std::uint64_t>(partitionStart) + fsdBlock) * bs, bs);
        if (fsd.size() == bs && Le16(fsd, 0) == 256) {
            const auto s = Sums(fsd);
            out.serial = static_cast<std::uint32_t>(s[3]) << 24 | static_cast<std::uint32_t>(s[2]) << 16 |
                         static_cast<std::uint32_t>(s[1]) << 8 | s[0];
        }
    }
    out.fileSystem = "UDF";
    return true;
}

// --- FAT, exFAT, NTFS -----------------------------------------------------

bool PowerOfTwo(std::uint32_t v) { return v != 0 && (v & (v - 1)) == 0; }

// The label entry of a run of FAT directory entries. `end` turns true at the
// entry that ends the directory.
bool FatLabelIn(const Bytes& entries, std::string& label, bool& end) {
    for (std::size_t at = 0; at + 32 <= entries.size(); at += 32) {
        const unsigned first = entries[at];
        if (first == 0) {
            end = true;
            return false;
        }
        if (first == 0xE5) continue;
        const unsigned attr = entries[at + 11];
        if (attr == 0x0F || !(attr & 0x08) || (attr & 0x10)) continue;
        unsigned char name[11];
        std::memcpy(name, entries.data() + at, 11);
        if (name[0] == 0x05) name[0] = 0xE5;
        label = StripTrailing(Cp850ToUtf8(name, 11));
        return true;
    }
    return false;
}

bool ProbeFat(int fd, const Bytes& boot, VolumeLabel& out) {
    if (boot.size() < 512 || !(boot[0] == 0xEB || boot[0] == 0xE9)) return false;
    const std::uint32_t bps = Le16(boot, 11), spc = boot[13], reserved = Le16(boot, 14),
                        fats = boot[16], rootEntries = Le16(boot, 17), media = boot[21];
    const std::uint32_t fatSize = Le16(boot, 22) ? Le16(boot, 22) : Le32(boot, 36);
    const std::uint32_t total = Le16(boot, 19) ? Le16(boot, 19) : Le32(boot, 32);
    if (bps < 512 || bps > 4096 || !PowerOfTwo(bps) || !PowerOfTwo(spc) || reserved == 0 || fats == 0 ||
        !(media == 0xF0 || media >= 0xF8) || fatSize == 0)
        return false;
    const std::uint32_t rootSectors = (rootEntries * 32 + bps - 1) / bps;
    const std::uint64_t firstData = reserved + static_cast<std::uint64_t>(fats) * fatSize + rootSectors;
    if (total <= firstData) return false;
    const std::uint64_t clusters = (total - firstData) / spc;
    const bool fat32 = clusters >= 65525;
    const std::size_t ext = fat32 ? 0x42 : 0x26;  // extended boot signature
    const bool extended = boot[ext] == 0x28 || boot[ext] == 0x29;
    out.serial = extended ? Le32(boot, ext + 1) : 0;
    out.fileSystem = fat32 ? "FAT32" : "FAT";

    std::string label;
    bool found = false, end = false;
    if (!fat32) {
        const Bytes root = ReadAt(fd, (reserved + static_cast<std::uint64_t>(fats) * fatSize) * bps,
                                  static_cast<std::size_t>(rootSectors) * bps);
        found = FatLabelIn(root, label, end);
    } else {
        std::uint32_t cluster = Le32(boot, 44);
        const std::size_t clusterBytes = static_cast<std::size_t>(spc) * bps;
        for (int guard = 0; guard < 4096 && !found && !end && cluster >= 2 && cluster < clusters + 2;
             ++guard) {
            const Bytes run = ReadAt(fd, (firstData + static_cast<std::uint64_t>(cluster - 2) * spc) * bps,
                                     clusterBytes);
            if (run.size() < clusterBytes) break;
            found = FatLabelIn(run, label, end);
            const Bytes next = ReadAt(fd, static_cast<std::uint64_t>(reserved) * bps + cluster * 4ull, 4);
            if (next.size() < 4) break;
            cluster = Le32(next, 0) & 0x0FFFFFFF;
        }
    }
    if (!found && boot[ext] == 0x29)
        label = StripTrailing(Cp850ToUtf8(boot.data() + ext + 5, 11));
    if (label == "NO NAME") label.clear();
    out.name = label;
    return true;
}

bool ProbeExfat(int fd, const Bytes& boot, VolumeLabel& out) {
    if (boot.size() < 512 || !Has(boot, 3, "EXFAT   ")) return false;
    out.serial = Le32(boot, 100);
    out.fileSystem = "exFAT";
    out.name.clear();
    const unsigned sectorShift = boot[108], clusterShift = boot[109];
    if (sectorShift < 9 || sectorShift > 12 || sectorShift + clusterShift > 25) return true;
    const std::uint64_t heap = Le32(boot, 88), root = Le32(boot, 96);
    if (root < 2) return true;
    const std::size_t clusterBytes = std::size_t{1} << (sectorShift + clusterShift);
    const Bytes dir = ReadAt(fd, (heap << sectorShift) + ((root - 2) << (sectorShift + clusterShift)),
                             clusterBytes);
    for (std::size_t at = 0; at + 32 <= dir.size(); at += 32) {
        const unsigned type = dir[at];
        if (type == 0) break;
        if (type != 0x83) continue;
        const std::size_t count = dir[at + 1] > 11 ? 11 : dir[at + 1];
        std::u16string units;
        for (std::size_t i = 0; i < count; ++i) units += static_cast<char16_t>(Le16(dir, at + 2 + 2 * i));
        out.name = Utf16ToUtf8(units);
        break;
    }
    return true;
}

// The name of an NTFS volume is the $VOLUME_NAME attribute of the MFT's
// fourth record ($Volume).
std::string NtfsVolumeName(int fd, const Bytes& boot) {
    const std::uint32_t bps = Le16(boot, 11);
    std::uint32_t spc = boot[13];
    if (spc > 0x80) spc = 1u << (256 - spc);  // large clusters are given as a power of two
    if (bps < 256 || bps > 4096 || !PowerOfTwo(bps) || !PowerOfTwo(spc)) return {};
    const std::uint64_t clusterBytes = static_cast<std::uint64_t>(bps) * spc;
    const auto perRecord = static_cast<std::int8_t>(boot[0x40]);
    const std::uint64_t recordBytes =
        perRecord < 0 ? (-perRecord < 20 ? std::uint64_t{1} << -perRecord : 0) : perRecord * clusterBytes;
    if (recordBytes < 512 || recordBytes > 65536) return {};
    const std::uint64_t mft = static_cast<std::uint64_t>(Le32(boot, 0x30)) |
                              static_cast<std::uint64_t>(Le32(boot, 0x34)) << 32;
    if (mft > (std::uint64_t{1} << 40)) return {};
    Bytes record = ReadAt(fd, mft * clusterBytes + 3 * recordBytes, static_cast<std::size_t>(recordBytes));
    if (record.size() < recordBytes || !Has(record, 0, "FILE")) return {};
    // Undo the update sequence: the last two bytes of every 512-byte stretch
    // were swapped for a check number, the originals kept in an array.
    const std::size_t usa = Le16(record, 4), count = Le16(record, 6);
    if (count < 1 || usa + 2 * count > record.size() || (count - 1) * 512 > record.size()) return {};
    for (std::size_t i = 1; i < count; ++i) {
        const std::size_t end = i * 512 - 2;
        if (record[end] != record[usa] || record[end + 1] != record[usa + 1]) return {};
        record[end] = record[usa + 2 * i];
        record[end + 1] = record[usa + 2 * i + 1];
    }
    std::size_t at = Le16(record, 0x14);
    while (at + 24 <= record.size()) {
        const std::uint32_t type = Le32(record, at), length = Le32(record, at + 4);
        if (type == 0xFFFFFFFF || length < 24 || at + length > record.size()) break;
        if (type == 0x60 && record[at + 8] == 0) {
            const std::size_t size = Le32(record, at + 0x10), offset = Le16(record, at + 0x14);
            if (offset + size > length) break;
            std::u16string units;
            for (std::size_t i = 0; i + 1 < size; i += 2)
                units += static_cast<char16_t>(Le16(record, at + offset + i));
            return Utf16ToUtf8(units);
        }
        at += length;
    }
    return {};
}

bool ProbeNtfs(int fd, const Bytes& boot, VolumeLabel& out) {
    if (boot.size() < 512 || !Has(boot, 3, "NTFS    ")) return false;
    out.serial = Le32(boot, 0x48);
    out.fileSystem = "NTFS";
    out.name = NtfsVolumeName(fd, boot);
    return true;
}

}  // namespace

bool ProbeVolume(int fd, VolumeLabel& out, std::uint64_t sessionStartSector, ProbeOrder order) {
    VolumeLabel found;
    auto optical = [&](bool udfFirst) {
        if (udfFirst) return ProbeUdf(fd, sessionStartSector, found) || ProbeIso(fd, sessionStartSector, found);
        return ProbeIso(fd, sessionStartSector, found) || ProbeUdf(fd, sessionStartSector, found);
    };
    auto bootSector = [&] {
        const Bytes boot = ReadAt(fd, 0, 512);
        return ProbeNtfs(fd, boot, found) || ProbeExfat(fd, boot, found) || ProbeFat(fd, boot, found);
    };
    bool ok = false;
    switch (order) {
    case ProbeOrder::IsoFirst: ok = optical(false) || bootSector(); break;
    case ProbeOrder::UdfFirst: ok = optical(true) || bootSector(); break;
    case ProbeOrder::BootSectorFirst: ok = bootSector() || optical(true); break;
    }
    if (ok) out = found;
    return ok;
}

bool ProbeVolumeFile(const std::string& deviceOrImage, VolumeLabel& out, std::uint64_t sessionStartSector) {
    const int fd = open(deviceOrImage.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return false;
    const bool ok = ProbeVolume(fd, out, sessionStartSector, ProbeOrder::BootSectorFirst);
    close(fd);
    return ok;
}

}  // namespace ct
