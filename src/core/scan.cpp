#include "core/scan.h"

#include <cstring>

#if defined(__SSE2__) || defined(_M_X64)
#include <emmintrin.h>
#define CT_SCAN_SSE2 1
#endif
// Where the compiler can build a function for a wider unit than the
// baseline, the line count takes AVX2 when the machine has it.
#if defined(CT_SCAN_SSE2) && defined(__GNUC__) && defined(__x86_64__)
#include <cpuid.h>
#include <immintrin.h>
#define CT_SCAN_AVX2 1
#endif

namespace ct::scan {

namespace {

#ifdef CT_SCAN_SSE2
bool g_vectors = true;
#else
[[maybe_unused]] bool g_vectors = false;
#endif
unsigned g_width = 64;  // the widest unit the scans may take, in bytes

constexpr char kCr = '\r', kLf = '\n';

bool IsEol(char c) { return c == kCr || c == kLf; }
unsigned char Upper(unsigned char c) { return c >= 'a' && c <= 'z' ? static_cast<unsigned char>(c - 32) : c; }

#ifdef CT_SCAN_SSE2
// The first event among one vector step's marks, bit k standing for step[k]:
// an empty line (`at` just behind its line end) or a candidate that really
// holds the term. False when the step has neither.
bool FirstEvent(std::uint64_t empty, std::uint64_t cand, const char* step, const Needle& needle, bool& emptyLine,
                std::size_t& at) {
    for (std::uint64_t any = empty | cand; any; any &= any - 1) {
        const unsigned bit = static_cast<unsigned>(__builtin_ctzll(any));
        if (empty >> bit & 1u) {
            emptyLine = true;
            at = bit + 1;
            return true;
        }
        if (needle.At(step + bit)) {
            emptyLine = false;
            at = bit;
            return true;
        }
    }
    return false;
}

__m128i Load(const char* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
#endif

#ifdef CT_SCAN_AVX2
// What the machine and its system give, from two CPUID leaves and the
// system's register switch (XCR0). The compiler's own detection asks a score
// of leaves, which under a virtual machine costs a tenth of a command's start.
struct Units {
    bool avx2 = false, avx512 = false;
};
Units DetectUnits() {
    unsigned a = 0, b = 0, c = 0, d = 0;
    if (!__get_cpuid(1, &a, &b, &c, &d) || !(c & bit_OSXSAVE) || !(c & bit_AVX)) return {};
    unsigned lo = 0, hi = 0;
    __asm__("xgetbv" : "=a"(lo), "=d"(hi) : "c"(0));
    const bool ymm = (lo & 0x6) == 0x6;             // SSE and AVX state
    const bool zmm = ymm && (lo & 0xE0) == 0xE0;    // and the AVX-512 state
    if (!__get_cpuid_count(7, 0, &a, &b, &c, &d)) return {};
    return {ymm && (b & bit_AVX2) != 0, zmm && (b & bit_AVX512F) != 0 && (b & bit_AVX512BW) != 0};
}
const Units kUnits = DetectUnits();
const bool kHasAvx2 = kUnits.avx2;
const bool kHasAvx512 = kUnits.avx512;
bool Use256() { return kHasAvx2 && g_width >= 32; }
bool Use512() { return kHasAvx512 && g_width >= 64; }

// The counts of CountLineEnds, 64 bytes a step as bit masks: every LF, and
// every CR but one a LF follows (the byte behind the step is always there).
__attribute__((target("avx512bw,popcnt"))) std::size_t CountLineEndsAvx512(const char* p, std::size_t n,
                                                                           std::int64_t& count) {
    const __m512i cr = _mm512_set1_epi8(kCr), lf = _mm512_set1_epi8(kLf);
    std::size_t i = 0;
    std::int64_t other = 0;  // two sums, so that the two halves of a step don't wait on each other
    for (; i + 129 <= n; i += 128) {
        const __m512i v = _mm512_loadu_si512(p + i), w = _mm512_loadu_si512(p + i + 64);
        const std::uint64_t crs = _mm512_cmpeq_epi8_mask(v, cr), lfs = _mm512_cmpeq_epi8_mask(v, lf);
        const std::uint64_t crs2 = _mm512_cmpeq_epi8_mask(w, cr), lfs2 = _mm512_cmpeq_epi8_mask(w, lf);
        const std::uint64_t lfNext = lfs >> 1 | lfs2 << 63;
        const std::uint64_t lfNext2 = lfs2 >> 1 | static_cast<std::uint64_t>(p[i + 128] == kLf) << 63;
        count += __builtin_popcountll(lfs) + __builtin_popcountll(crs & ~lfNext);
        other += __builtin_popcountll(lfs2) + __builtin_popcountll(crs2 & ~lfNext2);
    }
    for (; i + 65 <= n; i += 64) {
        const __m512i v = _mm512_loadu_si512(p + i);
        const std::uint64_t crs = _mm512_cmpeq_epi8_mask(v, cr), lfs = _mm512_cmpeq_epi8_mask(v, lf);
        const std::uint64_t lfNext = lfs >> 1 | static_cast<std::uint64_t>(p[i + 64] == kLf) << 63;
        count += __builtin_popcountll(lfs) + __builtin_popcountll(crs & ~lfNext);
    }
    count += other;
    return i;
}

// BlockMasks' loop, 64 bytes a step.
template <bool Slashes>
__attribute__((target("avx512bw"))) std::size_t BlockMasksAvx512(const char* p, std::size_t n, std::uint64_t* bars,
                                                                  std::uint64_t* ends, std::uint64_t* slashes) {
    const __m512i cr = _mm512_set1_epi8(kCr), lf = _mm512_set1_epi8(kLf), bar = _mm512_set1_epi8('|');
    const __m512i slash = _mm512_set1_epi8('\\');
    std::size_t w = 0;
    for (; 64 * w + 64 <= n; ++w) {
        const __m512i v = _mm512_loadu_si512(p + 64 * w);
        ends[w] = _mm512_cmpeq_epi8_mask(v, cr) | _mm512_cmpeq_epi8_mask(v, lf);
        bars[w] = _mm512_cmpeq_epi8_mask(v, bar);
        if constexpr (Slashes) slashes[w] = _mm512_cmpeq_epi8_mask(v, slash);
    }
    return w;
}

// NextEvent's loop, 64 bytes a step: the next byte's marks are the step's
// own shifted by one, the last taking those of the byte behind the step.
__attribute__((target("avx512bw"))) std::size_t NextEventAvx512(const char* p, std::size_t n, std::size_t m,
                                                                 const unsigned char ends[4], const Needle& needle,
                                                                 bool& emptyLine, std::size_t& reached) {
    const __m512i cr = _mm512_set1_epi8(kCr), lf = _mm512_set1_epi8(kLf);
    const __m512i firstOr = _mm512_set1_epi8(static_cast<char>(ends[0]));
    const __m512i first = _mm512_set1_epi8(static_cast<char>(ends[1]));
    const __m512i lastOr = _mm512_set1_epi8(static_cast<char>(ends[2]));
    const __m512i last = _mm512_set1_epi8(static_cast<char>(ends[3]));
    const std::size_t reach = m > 1 ? m - 1 : 1;
    std::size_t i = 0;
    for (; i + reach + 64 <= n; i += 64) {
        const __m512i v = _mm512_loadu_si512(p + i);
        const std::uint64_t crs = _mm512_cmpeq_epi8_mask(v, cr), lfs = _mm512_cmpeq_epi8_mask(v, lf);
        const char after = p[i + 64];
        const std::uint64_t endBits = crs | lfs;
        const std::uint64_t nextEnd = endBits >> 1 | static_cast<std::uint64_t>(IsEol(after)) << 63;
        const std::uint64_t nextLf = lfs >> 1 | static_cast<std::uint64_t>(after == kLf) << 63;
        const std::uint64_t empty = endBits & nextEnd & ~(crs & nextLf);
        std::uint64_t cand = 0;
        if (m > 0) {
            const __m512i tail = _mm512_loadu_si512(p + i + m - 1);
            cand = _mm512_cmpeq_epi8_mask(_mm512_or_si512(v, firstOr), first) &
                   _mm512_cmpeq_epi8_mask(_mm512_or_si512(tail, lastOr), last);
        }
        std::size_t at;
        if ((empty | cand) && FirstEvent(empty, cand, p + i, needle, emptyLine, at)) return i + at;
    }
    reached = i;
    return n;
}

// The SSE2 loop below, 32 bytes a step; returns how far it got.
__attribute__((target("avx2"))) std::size_t CountLineEndsAvx2(const char* p, std::size_t n, std::int64_t& count) {
    const __m256i cr = _mm256_set1_epi8(kCr), lf = _mm256_set1_epi8(kLf), zero = _mm256_setzero_si256();
    std::size_t i = 0;
    while (i + 33 <= n) {
        __m256i acc = zero;
        for (int k = 0; k < 255 && i + 33 <= n; ++k, i += 32) {
            const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i));
            const __m256i next = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i + 1));
            const __m256i isCr = _mm256_cmpeq_epi8(v, cr);
            const __m256i ends = _mm256_or_si256(isCr, _mm256_cmpeq_epi8(v, lf));
            const __m256i pair = _mm256_and_si256(isCr, _mm256_cmpeq_epi8(next, lf));
            acc = _mm256_sub_epi8(acc, _mm256_andnot_si256(pair, ends));
        }
        const __m256i sums = _mm256_sad_epu8(acc, zero);
        count += _mm256_extract_epi64(sums, 0) + _mm256_extract_epi64(sums, 1) + _mm256_extract_epi64(sums, 2) +
                 _mm256_extract_epi64(sums, 3);
    }
    return i;
}

// NextEvent's vector loop, 32 bytes a step. Returns the place of the first
// event, or through `reached` how far it looked without finding one.
__attribute__((target("avx2"))) std::size_t NextEventAvx2(const char* p, std::size_t n, std::size_t m,
                                                           const unsigned char ends[4], const Needle& needle,
                                                           bool& emptyLine, std::size_t& reached) {
    const __m256i cr = _mm256_set1_epi8(kCr), lf = _mm256_set1_epi8(kLf);
    const __m256i firstOr = _mm256_set1_epi8(static_cast<char>(ends[0]));
    const __m256i first = _mm256_set1_epi8(static_cast<char>(ends[1]));
    const __m256i lastOr = _mm256_set1_epi8(static_cast<char>(ends[2]));
    const __m256i last = _mm256_set1_epi8(static_cast<char>(ends[3]));
    const std::size_t reach = m > 1 ? m - 1 : 1;
    std::size_t i = 0;
    for (; i + reach + 32 <= n; i += 32) {
        const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i));
        const __m256i next = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i + 1));
        const __m256i tail = m > 0 ? _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i + m - 1)) : v;
        const __m256i isCr = _mm256_cmpeq_epi8(v, cr);
        const __m256i endsHere = _mm256_or_si256(isCr, _mm256_cmpeq_epi8(v, lf));
        const __m256i nextEnds = _mm256_or_si256(_mm256_cmpeq_epi8(next, cr), _mm256_cmpeq_epi8(next, lf));
        const __m256i crLf = _mm256_and_si256(isCr, _mm256_cmpeq_epi8(next, lf));
        const unsigned empty = static_cast<unsigned>(
            _mm256_movemask_epi8(_mm256_andnot_si256(crLf, _mm256_and_si256(endsHere, nextEnds))));
        const unsigned cand = m == 0 ? 0u : static_cast<unsigned>(_mm256_movemask_epi8(
            _mm256_and_si256(_mm256_cmpeq_epi8(_mm256_or_si256(v, firstOr), first),
                             _mm256_cmpeq_epi8(_mm256_or_si256(tail, lastOr), last))));
        std::size_t at;
        if (FirstEvent(empty, cand, p + i, needle, emptyLine, at)) return i + at;
    }
    reached = i;
    return n;
}

// BlockMasks' loop, 64 bytes a step in two halves; returns the words done.
__attribute__((target("avx2"))) std::uint64_t Mask64(__m256i lo, __m256i hi, __m256i c) {
    return static_cast<unsigned>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(lo, c))) |
           static_cast<std::uint64_t>(static_cast<unsigned>(_mm256_movemask_epi8(_mm256_cmpeq_epi8(hi, c)))) << 32;
}
template <bool Slashes>
__attribute__((target("avx2"))) std::size_t BlockMasksAvx2(const char* p, std::size_t n, std::uint64_t* bars,
                                                            std::uint64_t* ends, std::uint64_t* slashes) {
    const __m256i cr = _mm256_set1_epi8(kCr), lf = _mm256_set1_epi8(kLf), bar = _mm256_set1_epi8('|');
    const __m256i slash = _mm256_set1_epi8('\\');
    std::size_t w = 0;
    for (; 64 * w + 64 <= n; ++w) {
        const __m256i lo = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 64 * w));
        const __m256i hi = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 64 * w + 32));
        ends[w] = Mask64(lo, hi, cr) | Mask64(lo, hi, lf);
        bars[w] = Mask64(lo, hi, bar);
        if constexpr (Slashes) slashes[w] = Mask64(lo, hi, slash);
    }
    return w;
}
#endif

}  // namespace

void UseWidth(unsigned bytes) {
#ifdef CT_SCAN_SSE2
    g_vectors = bytes >= 16;
#endif
    g_width = bytes;
}

void UseVectors(bool on) { UseWidth(on ? 64 : 0); }

std::size_t FindLineEnd(const char* p, std::size_t n) {
    std::size_t i = 0;
#ifdef CT_SCAN_SSE2
    if (g_vectors) {
        const __m128i cr = _mm_set1_epi8(kCr), lf = _mm_set1_epi8(kLf);
        for (; i + 16 <= n; i += 16) {
            const __m128i v = Load(p + i);
            const int m = _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(v, cr), _mm_cmpeq_epi8(v, lf)));
            if (m) return i + static_cast<std::size_t>(__builtin_ctz(static_cast<unsigned>(m)));
        }
    }
#endif
    for (; i < n; ++i)
        if (IsEol(p[i])) return i;
    return n;
}

namespace {
template <bool Slashes>
void Masks(const char* p, std::size_t n, std::uint64_t* bars, std::uint64_t* ends, std::uint64_t* slashes) {
    std::size_t w = 0;
#ifdef CT_SCAN_SSE2
    if (g_vectors) {
#ifdef CT_SCAN_AVX2
        if (Use512()) w = BlockMasksAvx512<Slashes>(p, n, bars, ends, slashes);
        else if (Use256()) w = BlockMasksAvx2<Slashes>(p, n, bars, ends, slashes);
#endif
        const __m128i cr = _mm_set1_epi8(kCr), lf = _mm_set1_epi8(kLf), bar = _mm_set1_epi8('|');
        const __m128i slash = _mm_set1_epi8('\\');
        const auto bits = [](__m128i v, __m128i c) {
            return static_cast<std::uint64_t>(static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(v, c))));
        };
        for (; 64 * w + 64 <= n; ++w) {
            std::uint64_t b = 0, e = 0, s = 0;
            for (int k = 0; k < 4; ++k) {
                const __m128i v = Load(p + 64 * w + 16 * k);
                e |= (bits(v, cr) | bits(v, lf)) << (16 * k);
                b |= bits(v, bar) << (16 * k);
                if constexpr (Slashes) s |= bits(v, slash) << (16 * k);
            }
            bars[w] = b;
            ends[w] = e;
            if constexpr (Slashes) slashes[w] = s;
        }
    }
#endif
    for (; 64 * w < n; ++w) {
        std::uint64_t b = 0, e = 0, s = 0;
        for (std::size_t k = 0; k < 64 && 64 * w + k < n; ++k) {
            const char c = p[64 * w + k];
            b |= static_cast<std::uint64_t>(c == '|') << k;
            e |= static_cast<std::uint64_t>(IsEol(c)) << k;
            s |= static_cast<std::uint64_t>(c == '\\') << k;
        }
        bars[w] = b;
        ends[w] = e;
        if constexpr (Slashes) slashes[w] = s;
    }
}
}  // namespace

void BlockMasks(const char* p, std::size_t n, std::uint64_t* bars, std::uint64_t* ends) {
    Masks<false>(p, n, bars, ends, nullptr);
}

void BlockMasks(const char* p, std::size_t n, std::uint64_t* bars, std::uint64_t* ends, std::uint64_t* slashes) {
    Masks<true>(p, n, bars, ends, slashes);
}

std::int64_t CountLineEnds(const char* p, std::size_t n) {
    std::int64_t count = 0;
    std::size_t i = 0;
#ifdef CT_SCAN_SSE2
    if (g_vectors) {
#ifdef CT_SCAN_AVX2
        if (Use512()) i = CountLineEndsAvx512(p, n, count);
        if (Use256()) i += CountLineEndsAvx2(p + i, n - i, count);
#endif
        const __m128i cr = _mm_set1_epi8(kCr), lf = _mm_set1_epi8(kLf), zero = _mm_setzero_si128();
        // Per byte lane one line end at most per step (a CR that a LF follows
        // counts 0, its LF 1), so 255 steps fit in the lane's byte.
        while (i + 17 <= n) {
            __m128i acc = zero;
            for (int k = 0; k < 255 && i + 17 <= n; ++k, i += 16) {
                const __m128i v = Load(p + i), next = Load(p + i + 1);
                const __m128i isCr = _mm_cmpeq_epi8(v, cr);
                const __m128i ends = _mm_or_si128(isCr, _mm_cmpeq_epi8(v, lf));
                const __m128i pair = _mm_and_si128(isCr, _mm_cmpeq_epi8(next, lf));
                acc = _mm_sub_epi8(acc, _mm_andnot_si128(pair, ends));  // -(-1) per line end
            }
            const __m128i sums = _mm_sad_epu8(acc, zero);
            count += _mm_cvtsi128_si32(sums) + _mm_cvtsi128_si32(_mm_srli_si128(sums, 8));
        }
    }
#endif
    for (; i < n; ++i) {
        if (p[i] == kLf) ++count;
        else if (p[i] == kCr && !(i + 1 < n && p[i + 1] == kLf)) ++count;
    }
    return count;
}

std::size_t FindBars(const char* p, std::size_t n, std::size_t* at, std::size_t max) {
    std::size_t found = 0, i = 0;
    if (max == 0) return 0;
#ifdef CT_SCAN_SSE2
    if (g_vectors) {
        const __m128i bar = _mm_set1_epi8('|');
        for (; i + 16 <= n; i += 16) {
            unsigned m = static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(Load(p + i), bar)));
            while (m) {
                at[found++] = i + static_cast<std::size_t>(__builtin_ctz(m));
                if (found == max) return found;
                m &= m - 1;
            }
        }
    }
#endif
    for (; i < n; ++i)
        if (p[i] == '|') {
            at[found++] = i;
            if (found == max) return found;
        }
    return found;
}

Needle::Needle(std::string_view term, bool foldCase) : term_(term), fold_(foldCase) {
    if (fold_)
        for (char& c : term_) c = static_cast<char>(Upper(static_cast<unsigned char>(c)));
    if (term_.empty()) return;
    auto part = [this](unsigned char b, unsigned char& orMask, unsigned char& value) {
        const bool letter = fold_ && b >= 'A' && b <= 'Z';
        orMask = letter ? 0x20 : 0;
        value = letter ? static_cast<unsigned char>(b | 0x20) : b;
    };
    part(static_cast<unsigned char>(term_.front()), firstOr_, first_);
    part(static_cast<unsigned char>(term_.back()), lastOr_, last_);
}

bool Needle::Is(std::string_view term, bool foldCase) const {
    if (foldCase != fold_ || term.size() != term_.size()) return false;
    for (std::size_t i = 0; i < term.size(); ++i) {
        const auto b = static_cast<unsigned char>(term[i]);
        if ((fold_ ? Upper(b) : b) != static_cast<unsigned char>(term_[i])) return false;
    }
    return true;
}

bool Needle::At(const char* p) const {
    if (!fold_) return std::memcmp(p, term_.data(), term_.size()) == 0;
    for (std::size_t i = 0; i < term_.size(); ++i)
        if (Upper(static_cast<unsigned char>(p[i])) != static_cast<unsigned char>(term_[i])) return false;
    return true;
}

std::size_t NextEvent(const char* p, std::size_t n, const Needle& needle, bool& emptyLine) {
    const std::size_t m = needle.size();
    std::size_t i = 0;
#ifdef CT_SCAN_SSE2
    if (g_vectors) {
#ifdef CT_SCAN_AVX2
        if (Use256()) {
            const unsigned char ends[4] = {needle.firstOr_, needle.first_, needle.lastOr_, needle.last_};
            const std::size_t at = Use512() ? NextEventAvx512(p, n, m, ends, needle, emptyLine, i)
                                            : NextEventAvx2(p, n, m, ends, needle, emptyLine, i);
            if (at != n) return at;
        }
#endif
        const __m128i cr = _mm_set1_epi8(kCr), lf = _mm_set1_epi8(kLf);
        const __m128i firstOr = _mm_set1_epi8(static_cast<char>(needle.firstOr_));
        const __m128i first = _mm_set1_epi8(static_cast<char>(needle.first_));
        const __m128i lastOr = _mm_set1_epi8(static_cast<char>(needle.lastOr_));
        const __m128i last = _mm_set1_epi8(static_cast<char>(needle.last_));
        const std::size_t reach = m > 1 ? m - 1 : 1;  // the farthest load starts this far on
        for (; i + reach + 16 <= n; i += 16) {
            const __m128i v = Load(p + i), next = Load(p + i + 1), tail = m > 0 ? Load(p + i + m - 1) : v;
            const __m128i isCr = _mm_cmpeq_epi8(v, cr);
            const __m128i ends = _mm_or_si128(isCr, _mm_cmpeq_epi8(v, lf));
            const __m128i nextEnds = _mm_or_si128(_mm_cmpeq_epi8(next, cr), _mm_cmpeq_epi8(next, lf));
            const __m128i crLf = _mm_and_si128(isCr, _mm_cmpeq_epi8(next, lf));
            const unsigned empty = static_cast<unsigned>(
                _mm_movemask_epi8(_mm_andnot_si128(crLf, _mm_and_si128(ends, nextEnds))));
            const unsigned cand = m == 0 ? 0u : static_cast<unsigned>(_mm_movemask_epi8(
                _mm_and_si128(_mm_cmpeq_epi8(_mm_or_si128(v, firstOr), first),
                              _mm_cmpeq_epi8(_mm_or_si128(tail, lastOr), last))));
            std::size_t at;
            if (FirstEvent(empty, cand, p + i, needle, emptyLine, at)) return i + at;
        }
    }
#endif
    for (; i < n; ++i) {
        if (IsEol(p[i]) && i + 1 < n && IsEol(p[i + 1]) && !(p[i] == kCr && p[i + 1] == kLf)) {
            emptyLine = true;
            return i + 1;
        }
        if (m > 0 && i + m <= n && needle.At(p + i)) {
            emptyLine = false;
            return i;
        }
    }
    return n;
}

}  // namespace ct::scan
