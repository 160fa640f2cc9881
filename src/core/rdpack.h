// RDPack: turns the texts of data/ into the bytes of CT.rd. The text files are
// UTF-8, one text a line ("NNNNN<TAB>text"); the packed bodies are
// Windows-1252, which is what RDString hands back. Kept free of any I/O so the
// tests can feed it broken files straight from a string.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ct {

// The base ids every language must carry, both ends included.
inline constexpr int kFirstBaseId = 10001;
inline constexpr int kLastBaseId = 10112;

struct RDEntry {
    std::int32_t id = 0;
    std::string body;  // raw bytes, stored as they are
};

// Lays out CT.rd: the bodies back to back from offset 0, then one 30-byte
// record per entry in the given order ("#", 9-digit id, 10-digit start,
// 10-digit end, zero padded, 1-based positions), then the 10-digit count.
// Fails for an id outside 0..999999999 or a file that would outgrow 32-bit
// positions.
bool RDPack(const std::vector<RDEntry>& entries, std::string& out, std::string* error);

// Reads one language's text file. Blank lines and lines whose first character
// is '#' are skipped. Every other line is five digits, a tab and the text, in
// which "\n" stands for a line break, "\t" for a tab and "\\" for a
// backslash. Each base id from kFirstBaseId to kLastBaseId must appear exactly
// once, with a text that is not empty and that Windows-1252 can hold. On
// success `texts` gets one entry per base id, ascending, the body in
// Windows-1252; on failure `error` names the file, the line and the id.
bool ParseTexts(std::string_view content, const std::string& fileName,
                std::vector<RDEntry>& texts, std::string* error);

}  // namespace ct
