// Block scans for the readers: one pass over a buffer of whole lines, sixteen
// bytes at a time where the machine has SSE2 (every x86-64 does), 32 or 64
// with AVX2 or AVX-512, byte by byte elsewhere. Every path gives the same
// answers; tests run each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace ct::scan {

// Tests: the vector paths on (the machine's widest) or off (the portable
// path).
void UseVectors(bool on);
// Tests: the widest unit the scans may take, in bytes (64, 32, 16; 0 is
// the portable path), so that each path the machine has can be run. The
// machine's widest is the default.
void UseWidth(unsigned bytes);

// The first CR or LF in p[0..n), or n.
std::size_t FindLineEnd(const char* p, std::size_t n);

// Line ends in p[0..n): every LF, every CR, less the CRs that a LF follows in
// the block (a CR LF is one line end). The caller handles the pair that a
// block boundary splits.
std::int64_t CountLineEnds(const char* p, std::size_t n);

// The places of the first `max` bars ('|') of p[0..n), in one pass; returns
// how many there are (at most `max`).
std::size_t FindBars(const char* p, std::size_t n, std::size_t* at, std::size_t max);

// The bars and line ends of a whole block as bit masks, in one pass: bit k
// of bars[w] is set when p[64 * w + k] is a '|', of ends[w] when it is a CR
// or LF; both arrays hold (n + 63) / 64 words, the bits beyond n clear.
void BlockMasks(const char* p, std::size_t n, std::uint64_t* bars, std::uint64_t* ends);
// The same, and the backslashes ('\\') in `slashes` too.
void BlockMasks(const char* p, std::size_t n, std::uint64_t* bars, std::uint64_t* ends, std::uint64_t* slashes);

// A term whose lines are the only ones that can match: its bytes, compared
// with ASCII letters folded or exactly.
class Needle {
public:
    Needle() = default;
    Needle(std::string_view term, bool foldCase);
    std::size_t size() const { return term_.size(); }
    // Whether p[0..size) is the term.
    bool At(const char* p) const;
    // Whether Needle(term, foldCase) would be this one.
    bool Is(std::string_view term, bool foldCase) const;

private:
    friend std::size_t NextEvent(const char*, std::size_t, const Needle&, bool&);
    std::string term_;  // letters upper-cased when folding
    bool fold_ = false;
    unsigned char firstOr_ = 0, first_ = 0, lastOr_ = 0, last_ = 0;  // (b | or) == value
};

// In p[0..n), a buffer of whole lines that begins at a line start, the first
// place where either the needle stands (`emptyLine` false: the place of its
// first byte) or an empty line begins inside the buffer (`emptyLine` true: the
// place of that line's line end). An empty line at p[0] itself is the
// caller's to see. n when neither occurs.
std::size_t NextEvent(const char* p, std::size_t n, const Needle& needle, bool& emptyLine);

}  // namespace ct::scan
