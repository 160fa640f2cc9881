#include "core/text.h"

#include <cstdint>

namespace ct {

namespace {

// 0x80..0x9F of Windows-1252. The five holes keep their own number, which
// makes them the C1 control characters, as Windows' own conversion does.
constexpr char16_t kCp1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

bool AsciiOnly(std::string_view s) {
    for (char c : s)
        if (static_cast<unsigned char>(c) >= 0x80) return false;
    return true;
}

// The capital of one letter, or the letter itself when it has no single
// capital of one character.
char32_t UpperOf(char32_t c) {
    if (c < 0x80) return (c >= 'a' && c <= 'z') ? c - 0x20 : c;
    if (c < 0x100) {
        // Latin-1: à..þ without the division sign; ÿ has its capital in
        // Latin Extended-A; µ and ß have no capital of their own here.
        if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return c - 0x20;
        if (c == 0xFF) return 0x178;
        return c;
    }
    if (c < 0x180) {  // Latin Extended-A
        if (c == 0x131) return 'I';  // dotless i
        if (c == 0x17F) return 'S';  // long s
        if ((c >= 0x100 && c <= 0x12F) || (c >= 0x132 && c <= 0x137) ||
            (c >= 0x14A && c <= 0x177))
            return (c & 1u) ? c - 1 : c;
        if ((c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E))
            return (c & 1u) ? c : c - 1;
        return c;
    }
    if (c == 0x192) return 0x191;  // ƒ, which Windows-1252 holds
    if (c >= 0x370 && c < 0x400) {  // Greek
        if (c >= 0x3B1 && c <= 0x3CB && c != 0x3C2) return c - 0x20;
        if (c == 0x3C2) return 0x3A3;  // final sigma
        if (c == 0x3AC) return 0x386;
        if (c >= 0x3AD && c <= 0x3AF) return c - 0x25;
        if (c == 0x3CC) return 0x38C;
        if (c == 0x3CD || c == 0x3CE) return c - 0x3F;
        return c;
    }
    if (c >= 0x400 && c < 0x530) {  // Cyrillic and its supplement
        if (c >= 0x430 && c <= 0x44F) return c - 0x20;
        if (c >= 0x450 && c <= 0x45F) return c - 0x50;
        if ((c >= 0x460 && c <= 0x481) || (c >= 0x48A && c <= 0x4BF) ||
            (c >= 0x4D0 && c <= 0x52F))
            return (c & 1u) ? c - 1 : c;
        if (c >= 0x4C1 && c <= 0x4CE) return (c & 1u) ? c : c - 1;
        if (c == 0x4CF) return 0x4C0;
        return c;
    }
    if (c >= 0x1E00 && c <= 0x1EFF) {  // Latin Extended Additional (Vietnamese, Welsh)
        if ((c <= 0x1E95) || (c >= 0x1EA0)) return (c & 1u) ? c - 1 : c;
        return c;
    }
    return c;
}

}  // namespace

bool DecodeAt(std::string_view s, std::size_t i, char32_t& cp, std::size_t& len) {
    const auto b0 = static_cast<unsigned char>(s[i]);
    if (b0 < 0x80) {
        cp = b0;
        len = 1;
        return true;
    }
    std::size_t need;
    char32_t min;
    if (b0 >= 0xC2 && b0 <= 0xDF) {
        need = 1;
        cp = b0 & 0x1Fu;
        min = 0x80;
    } else if (b0 >= 0xE0 && b0 <= 0xEF) {
        need = 2;
        cp = b0 & 0x0Fu;
        min = 0x800;
    } else if (b0 >= 0xF0 && b0 <= 0xF4) {
        need = 3;
        cp = b0 & 0x07u;
        min = 0x10000;
    } else {
        return false;
    }
    if (s.size() - i <= need) return false;
    for (std::size_t k = 1; k <= need; ++k) {
        const auto b = static_cast<unsigned char>(s[i + k]);
        if ((b & 0xC0u) != 0x80u) return false;
        cp = (cp << 6) | (b & 0x3Fu);
    }
    if (cp < min || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return false;
    len = need + 1;
    return true;
}

void AppendUtf8(std::string& out, char32_t cp) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

std::string Utf16ToUtf8(std::u16string_view units) {
    std::string out;
    out.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        char32_t c = units[i];
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < units.size() && units[i + 1] >= 0xDC00 &&
            units[i + 1] < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (units[i + 1] - 0xDC00);
            ++i;
        } else if (c >= 0xD800 && c < 0xE000) {
            c = 0xFFFD;
        }
        AppendUtf8(out, c);
    }
    return out;
}

std::string Utf16BeToUtf8(const unsigned char* p, std::size_t bytes) {
    std::u16string units(bytes / 2, u'\0');
    for (std::size_t i = 0; i < units.size(); ++i)
        units[i] = static_cast<char16_t>(p[2 * i] << 8 | p[2 * i + 1]);
    return Utf16ToUtf8(units);
}

std::string Latin1ToUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (char b : bytes) AppendUtf8(out, static_cast<unsigned char>(b));
    return out;
}

bool IsValidUtf8(std::string_view bytes) {
    std::size_t i = 0;
    const std::size_t n = bytes.size();
    while (i < n) {
        // Most text is ASCII: skip it eight bytes at a time.
        while (i + 8 <= n) {
            std::uint64_t word = 0;
            for (int k = 0; k < 8; ++k)
                word |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[i + k]))
                        << (8 * k);
            if (word & 0x8080808080808080ull) break;
            i += 8;
        }
        if (i >= n) break;
        char32_t cp;
        std::size_t len;
        if (!DecodeAt(bytes, i, cp, len)) return false;
        i += len;
    }
    return true;
}

std::string Cp1252ToUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() + bytes.size() / 2);
    for (char ch : bytes) {
        const auto b = static_cast<unsigned char>(ch);
        if (b < 0x80)
            out += ch;
        else if (b < 0xA0)
            AppendUtf8(out, kCp1252High[b - 0x80]);
        else
            AppendUtf8(out, b);
    }
    return out;
}

bool Utf8ToCp1252(std::string_view utf8, std::string& out) {
    out.clear();
    out.reserve(utf8.size());
    std::size_t i = 0;
    while (i < utf8.size()) {
        char32_t cp;
        std::size_t len;
        if (!DecodeAt(utf8, i, cp, len)) return false;
        i += len;
        if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) {
            out += static_cast<char>(cp);
            continue;
        }
        bool found = false;
        for (int k = 0; k < 32; ++k) {
            if (kCp1252High[k] == cp) {
                out += static_cast<char>(0x80 + k);
                found = true;
                break;
            }
        }
        if (!found) return false;
    }
    return true;
}

std::string DecodeLine(std::string_view bytes) {
    if (IsValidUtf8(bytes)) return std::string(bytes);
    return Cp1252ToUtf8(bytes);
}

std::string UpperCase(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    std::size_t i = 0;
    while (i < utf8.size()) {
        const auto b = static_cast<unsigned char>(utf8[i]);
        if (b < 0x80) {
            out += (b >= 'a' && b <= 'z') ? static_cast<char>(b - 0x20) : static_cast<char>(b);
            ++i;
            continue;
        }
        char32_t cp;
        std::size_t len;
        if (!DecodeAt(utf8, i, cp, len)) {
            out += static_cast<char>(b);
            ++i;
            continue;
        }
        const char32_t up = UpperOf(cp);
        if (up == cp)
            out.append(utf8.substr(i, len));
        else
            AppendUtf8(out, up);
        i += len;
    }
    return out;
}

std::size_t CharCount(std::string_view utf8) {
    if (AsciiOnly(utf8)) return utf8.size();
    std::size_t count = 0;
    std::size_t i = 0;
    while (i < utf8.size()) {
        char32_t cp;
        std::size_t len;
        i += DecodeAt(utf8, i, cp, len) ? len : 1;
        ++count;
    }
    return count;
}

}  // namespace ct
