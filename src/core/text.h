// Text encoding and character rules. Inside the program every text is UTF-8.
// Files written are UTF-8 without a byte-order mark; a line read is taken as
// UTF-8 when it is valid UTF-8 and as Windows-1252 otherwise, so catalogues
// made on Windows read right, umlauts included.
#pragma once

#include <string>
#include <string_view>

namespace ct {

bool IsValidUtf8(std::string_view bytes);

// Decodes one UTF-8 sequence at `i` (i < s.size()). On success `cp` is the
// code point and `len` its length in bytes. Overlong forms, surrogates and
// values past U+10FFFF are invalid, as is a sequence cut short.
bool DecodeAt(std::string_view s, std::size_t i, char32_t& cp, std::size_t& len);

// Appends the UTF-8 form of one code point (the one encoder of the program;
// callers map what isn't a character, such as a lone surrogate, to U+FFFD first).
void AppendUtf8(std::string& out, char32_t cp);

// UTF-16 code units to UTF-8, as file systems store names (Joliet, UDF, exFAT,
// NTFS). A surrogate pair makes one character; a lone surrogate becomes U+FFFD.
std::string Utf16ToUtf8(std::u16string_view units);

// The same for `bytes` bytes of big-endian UTF-16 (Joliet, UDF); an odd last
// byte is left out.
std::string Utf16BeToUtf8(const unsigned char* p, std::size_t bytes);

// Latin-1 (ISO 8859-1) to UTF-8: every byte is the code point of its number.
std::string Latin1ToUtf8(std::string_view bytes);

// Windows-1252 bytes to UTF-8. The five undefined bytes (0x81 0x8D 0x8F 0x90
// 0x9D) map to the C1 control characters of the same number, as Windows does.
std::string Cp1252ToUtf8(std::string_view bytes);

// UTF-8 to Windows-1252. Returns false (and leaves `out` partly filled) when a
// character has no place in Windows-1252 or the input isn't valid UTF-8.
bool Utf8ToCp1252(std::string_view utf8, std::string& out);

// A line as read from a file: itself when valid UTF-8, else Windows-1252 made
// UTF-8. The common case (valid UTF-8, mostly ASCII) costs one scan and no copy
// beyond the returned string.
std::string DecodeLine(std::string_view bytes);

// Upper-casing by character, as the search's name test and disc test need it:
// letters with diacritics included (ä -> Ä, é -> É, ÿ -> Ÿ, Greek, Cyrillic),
// and a text never changes its length in characters: ß stays ß. Characters
// without a single upper-case form stay as they are. Invalid UTF-8 bytes are
// kept unchanged.
std::string UpperCase(std::string_view utf8);

// Number of characters (code points) in a UTF-8 text; invalid bytes count one
// each.
std::size_t CharCount(std::string_view utf8);

}  // namespace ct
