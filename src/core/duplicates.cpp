#include "core/duplicates.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <charconv>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <string_view>
#include <system_error>
#include <thread>
#include <type_traits>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

#include "core/bigblock.h"
#include "core/catalogue.h"
#include "core/collate.h"
#include "core/fileops.h"
#include "core/scan.h"
#include "core/search.h"
#include "core/text.h"

namespace ct {
namespace {

// The pass keeps eight bytes per file line and nothing else: 24 bits of a
// hash of the (name as compared, size) above the line's place among all the
// bytes its pass read (40 bits); the top 8 bits of the hash name the part the
// record is kept in, so 32 bits of it are known. No string, no node: parting
// the records by hash brings every possible copy together, and only hashes
// found on two discs are looked at again. Hashes that meet without being one
// pair make candidates the names then tell apart (a few hundred in two
// million lines).
using Record = std::uint64_t;
constexpr int kPlaceBits = 40;
constexpr std::uint64_t kPlaceMask = (std::uint64_t{1} << kPlaceBits) - 1;
constexpr int kOffsetBits = 40;  // where a line stands: the disc above, its offset in the catalogue below
constexpr std::uint64_t kOffsetMask = (std::uint64_t{1} << kOffsetBits) - 1;
constexpr std::size_t kMaxDiscs = std::size_t{1} << (63 - kOffsetBits);  // a pair's slot takes the top bit
constexpr int kPartBits = 8;
constexpr std::size_t kParts = std::size_t{1} << kPartBits;
constexpr std::uint64_t kKeyMask = (std::uint64_t{1} << (32 - kPartBits)) - 1;

// The 32 bits of a hash the records keep (its part above, its key below).
std::uint32_t ShortHash(std::uint64_t hash) { return static_cast<std::uint32_t>(hash >> 32); }

// A line whose pair may stand on two discs or more, to be read again.
struct Candidate {
    std::uint64_t where;
    std::uint32_t hash;  // ShortHash
};

// How many records a pass keeps before it looks whether to fold them, and
// how many a chunk of a part's chain holds (a multiple of a cache line's).
std::size_t gFoldAt = std::size_t{1} << 20;
std::size_t gChunk = 1024;
// How many records a pass keeps before it first looks which pairs its discs
// share (and again at four times as many, up to kLearnMost).
std::size_t gLearnAt = std::size_t{1} << 11;
constexpr std::size_t kLearnMost = std::size_t{1} << 15;

// The pairs a pass has met on two of its discs (at most kMost of them, by
// ShortHash). A file kept on many discs is met again and again: once a pass
// knows its pair, every later line of it is taken from the block being read,
// not read again. One bit for each value of a hash's low sixteen bits, in
// the nearest cache, tells nearly every other line at once that it isn't
// one of them.
class Known {
public:
    static constexpr std::size_t kMost = 4096;
    bool Has(std::uint32_t hash) const {
        return (bits_[(hash & 0xffff) / 64] >> (hash % 64) & 1) && slots_[SlotOf(hash)];
    }
    bool Full() const { return count_ == kMost; }
    void Add(std::uint32_t hash) {
        if (Full()) return;
        const std::size_t i = SlotOf(hash);
        if (slots_[i]) return;
        slots_[i] = Stored(hash);
        bits_[(hash & 0xffff) / 64] |= std::uint64_t{1} << (hash % 64);
        ++count_;
    }

private:
    static constexpr std::size_t kSlots = 2 * kMost;
    static std::uint64_t Stored(std::uint32_t hash) { return std::uint64_t{1} << 32 | hash; }  // 0: a free slot
    // The slot that holds `hash`, else the free one where it would go.
    std::size_t SlotOf(std::uint32_t hash) const {
        std::size_t i = hash & (kSlots - 1);
        while (slots_[i] && slots_[i] != Stored(hash)) i = (i + 1) & (kSlots - 1);
        return i;
    }
    std::vector<std::uint64_t> bits_ = std::vector<std::uint64_t>(65536 / 64, 0);
    std::vector<std::uint64_t> slots_ = std::vector<std::uint64_t>(kSlots, 0);
    std::size_t count_ = 0;
};

// The records of a pass, parted on the way by the top bits of their hash:
// each part a chain of small chunks cut from large blocks that are never
// moved. A part's table then stays in the cache while its records go through
// it, and no second array is needed to part them afterwards. (So few parts
// that the ends they are written at stay in the cache too.)
//
// Eight bytes a line is the least a collection of few copies can cost; one
// of many copies would pay that per copy. So when a pass holds gFoldAt
// records, and again at every doubling, it looks how many lines a pair has:
// at two or more it folds the records into a table of pairs per part (hash,
// first line), frees them, and from then on folds a part whenever it holds
// as many records as pairs. Either way memory stays proportional to the
// pairs. A pair met on a second disc is many: its first line and every later
// one become candidates; a second line on the first disc waits in `later`
// until the end shows whether its pair is many.
class Records {
public:
    std::vector<Candidate> candidates, later;  // once folded

    // The lines of disc `disc` follow, at their offsets in its catalogue;
    // false when this pass has read all the bytes its places can tell.
    bool BeginDisc(std::size_t disc) {
        if (next_ > kPlaceMask) return false;
        starts_.push_back(next_);
        discs_.push_back(disc);
        return true;
    }
    // The last disc's catalogue was read up to `bytes`; where its records
    // have grown enough since the last look, the pairs met on two discs go
    // into `known` (whose later lines then never become records: their
    // pairs stay many by the records these hold).
    void EndDisc(std::uint64_t bytes, Known& known) {
        next_ = starts_.back() + bytes + 1;
        if (folded_ || kept_ < learnAt_ || learnAt_ > kLearnMost || known.Full()) return;
        learnAt_ *= 4;
        Learn(known);
    }
    bool Fits(std::uint64_t offset) const { return starts_.back() + offset <= kPlaceMask; }

    void Add(std::uint64_t hash, std::uint64_t offset) {
        const std::size_t part = hash >> (64 - kPartBits);
        std::uint8_t& n = fill_[part];
        waiting_[part][n] = (ShortHash(hash) & kKeyMask) << kPlaceBits | (starts_.back() + offset);
        if (++n == kLine) Flush(part);
        if (!folded_) {
            if (++kept_ == checkAt_) CheckFold();
        } else if (++parts_[part].fresh > parts_[part].used) {
            Fold(parts_[part]);
        }
    }
    // Every record written to its part's chain (Count and ForEach see only
    // those).
    void FlushAll() {
        for (std::size_t part = 0; part < kParts; ++part) Flush(part);
#ifdef __SSE2__
        _mm_sfence();  // the lines written past the cache, seen by the thread that reads them next
#endif
    }
    bool Folded() const { return folded_; }
    void FoldAll() {
        folded_ = true;
        for (Part& p : parts_) Fold(p);
    }
    // Before folding: the records of a part.
    std::size_t Count(std::size_t part) const {
        const Part& p = parts_[part];
        return p.chunks.empty()
                   ? 0
                   : (p.chunks.size() - 1) * chunk_ + static_cast<std::size_t>(at_[part] - p.chunks.back());
    }
    // The records of a part in the order they came, so in rising places.
    template <typename F>
    void ForEach(std::size_t part, F&& f) const {
        const Part& p = parts_[part];
        for (std::size_t c = 0; c < p.chunks.size(); ++c)
            for (const Record *r = p.chunks[c], *end = c + 1 == p.chunks.size() ? at_[part] : r + chunk_; r != end;
                 ++r)
                f(*r);
    }
    // Where the lines of records met in rising places stand: their disc and
    // their offset in its catalogue.
    class Placer {
    public:
        explicit Placer(const Records& records) : r_(records) { Move(0); }
        std::uint64_t Where(Record record) {
            const std::uint64_t place = record & kPlaceMask;
            if (place >= next_) {
                // Places rise, mostly by a disc or a few: the disc is sought
                // forward from the last one, in steps that double.
                const std::vector<std::uint64_t>& s = r_.starts_;
                std::size_t i = at_ + 1, step = 1;
                while (i + step < s.size() && s[i + step] <= place) {
                    i += step;
                    step *= 2;
                }
                Move(static_cast<std::size_t>(
                    std::upper_bound(s.begin() + static_cast<std::ptrdiff_t>(i),
                                     s.begin() + static_cast<std::ptrdiff_t>(std::min(i + step, s.size())), place) -
                    s.begin() - 1));
            }
            return disc_ | (place - start_);
        }

    private:
        void Move(std::size_t i) {
            if (i >= r_.starts_.size()) return;  // no disc yet: no record either
            at_ = i;
            start_ = r_.starts_[i];
            next_ = i + 1 < r_.starts_.size() ? r_.starts_[i + 1] : UINT64_MAX;
            disc_ = static_cast<std::uint64_t>(r_.discs_[i]) << kOffsetBits;
        }
        const Records& r_;
        std::size_t at_ = 0;
        std::uint64_t start_ = 0, next_ = UINT64_MAX, disc_ = 0;  // the disc the last place stood on
    };
    // Where the index-th record of a part (in the order ForEach gives them)
    // stands.
    std::uint64_t WhereOf(std::size_t part, std::size_t index) const {
        const Record r = parts_[part].chunks[index / chunk_][index % chunk_];
        Placer placer(*this);
        return placer.Where(r);
    }
    // Once folded: takes `other`'s pairs of the parts [from, to) into these.
    // The two passes read different discs, so a pair both hold is many.
    void Merge(Records& other, std::size_t from, std::size_t to, std::vector<Candidate>& found) {
        for (std::size_t b = from; b < to; ++b)
            for (const Slot& o : other.parts_[b].slots) {
                if (!o.first) continue;
                if (parts_[b].slots.empty()) parts_[b].slots.assign(16, Slot{0, 0});
                Slot& s = Find(parts_[b], o.hash);
                if (!s.first) {
                    s = o;
                    Added(parts_[b]);
                } else {
                    if (!(s.first & kMany)) found.push_back({s.first, s.hash});
                    if (!(o.first & kMany)) found.push_back({o.first & ~kMany, o.hash});
                    s.first |= kMany;
                }
            }
    }
    // Once folded: whether the pair of `hash` (a ShortHash) was met on two discs.
    bool Many(std::uint32_t hash) {
        Part& p = parts_[hash >> (32 - kPartBits)];
        return !p.slots.empty() && (Find(p, hash).first & kMany);
    }

private:
    // The top bit of `first` marks a pair met on two discs; 0 a free slot (a
    // file line never stands at the start of its catalogue).
    static constexpr std::uint64_t kMany = std::uint64_t{1} << 63;
    struct Slot {
        std::uint64_t first;  // where the pair's first line stands
        std::uint32_t hash;   // ShortHash
    };
    static constexpr std::size_t kBlock = kBigBlock / sizeof(Record);
    std::size_t chunk_ = gChunk;
    static constexpr unsigned kLine = 8;  // records to a cache line
    struct Part {
        std::vector<Record*> chunks;
        std::size_t fresh = 0;  // records since the last fold
        std::vector<Slot> slots;
        std::size_t used = 0;  // slots
    };
    // A record goes first to its part's line here, which stays in the cache
    // with the 255 others; a full line is written to the part's chunk at
    // once, past the cache. Written one by one, every record waited for its
    // chunk's line to come from memory.
    alignas(64) Record waiting_[kParts][kLine];
    std::uint8_t fill_[kParts] = {};
    Record* at_[kParts] = {};   // where a part's next line goes
    Record* end_[kParts] = {};  // the end of its chunk
    // A line that waited only in part (looked at before it was full) leaves
    // the chunk's next lines astride two chunks: they go in two writes.
    void Flush(std::size_t part) {
        const Record* from = waiting_[part];
        for (std::size_t left = fill_[part]; left > 0;) {
            if (at_[part] == end_[part]) NewChunk(part);
            Record* to = at_[part];
            const std::size_t n = std::min<std::size_t>(left, static_cast<std::size_t>(end_[part] - to));
#ifdef __SSE2__
            if (n == kLine && reinterpret_cast<std::uintptr_t>(to) % 64 == 0) {
                auto* line = reinterpret_cast<__m128i*>(to);
                for (int k = 0; k < 4; ++k)
                    _mm_stream_si128(line + k, _mm_load_si128(reinterpret_cast<const __m128i*>(from) + k));
            } else
#endif
                std::memcpy(to, from, n * sizeof(Record));
            at_[part] = to + n;
            from += n;
            left -= n;
        }
        fill_[part] = 0;
    }
    static Slot& Find(Part& p, std::uint32_t hash) {
        const std::size_t mask = p.slots.size() - 1;
        for (auto i = static_cast<std::size_t>(hash) & mask;; i = (i + 1) & mask)
            if (!p.slots[i].first || p.slots[i].hash == hash) return p.slots[i];
    }
    // After a slot was taken: a table at most three quarters full.
    static void Added(Part& p) {
        if (4 * ++p.used <= 3 * p.slots.size()) return;
        std::vector<Slot> old(2 * p.slots.size(), Slot{0, 0});
        old.swap(p.slots);
        for (const Slot& s : old)
            if (s.first) Find(p, s.hash) = s;
    }
    void NewChunk(std::size_t part) {
        if (free_.empty()) {
            if (blocks_.empty() || left_ == 0) {
                // (Chunks start on whole cache lines, for the lines written
                // past the cache: a block's start is one.)
                blocks_.push_back(NewBigBlock());
                block_ = reinterpret_cast<Record*>(blocks_.back().get());
                left_ = kBlock / chunk_;
            }
            free_.push_back(block_ + (kBlock / chunk_ - left_--) * chunk_);
        }
        at_[part] = free_.back();
        free_.pop_back();
        end_[part] = at_[part] + chunk_;
        parts_[part].chunks.push_back(at_[part]);
    }
    void Fold(Part& p) {
        const auto part = static_cast<std::uint32_t>(&p - parts_.data());
        Flush(part);
        p.fresh = 0;
        if (p.chunks.empty()) return;
        if (p.slots.empty()) p.slots.assign(16, Slot{0, 0});
        Placer placer(*this);
        ForEach(part, [&](Record r) {
            const std::uint32_t hash = part << (32 - kPartBits) | static_cast<std::uint32_t>(r >> kPlaceBits);
            const std::uint64_t where = placer.Where(r);
            Slot& s = Find(p, hash);
            if (!s.first) {
                s = {where, hash};
                Added(p);
            } else if ((s.first & ~kMany) >> kOffsetBits == where >> kOffsetBits) {
                later.push_back({where, hash});
            } else {
                if (!(s.first & kMany)) candidates.push_back({s.first, hash});
                s.first |= kMany;
                candidates.push_back({where, hash});
            }
        });
        free_.insert(free_.end(), p.chunks.begin(), p.chunks.end());
        p.chunks.clear();
        at_[part] = end_[part] = nullptr;
    }
    std::vector<Part> parts_ = std::vector<Part>(kParts);
    std::vector<BigBlock> blocks_;
    std::vector<Record*> free_;  // chunks folded, to be written again
    Record* block_ = nullptr;    // the last block
    std::size_t left_ = 0;       // chunks not yet cut from it
    std::vector<std::uint64_t> starts_;  // each disc's first place, rising
    std::vector<std::size_t> discs_;     // and its number
    std::uint64_t next_ = 0;
    // Folds once the records hold at least two lines a pair, as the fullest
    // part shows them (the hash spreads the pairs evenly over the parts);
    // else looks again at twice as many.
    void CheckFold() {
        FlushAll();
        std::size_t fullest = 0;
        for (std::size_t b = 1; b < kParts; ++b)
            if (Count(b) > Count(fullest)) fullest = b;
        const std::size_t n = Count(fullest);
        std::vector<std::uint32_t> seen(std::bit_ceil(2 * n + 2), 0);
        std::size_t pairs = 0;
        ForEach(fullest, [&](Record r) {
            const auto h = static_cast<std::uint32_t>(r >> kPlaceBits) + 1;  // 0 marks a free place
            std::size_t i = h & (seen.size() - 1);
            while (seen[i] && seen[i] != h) i = (i + 1) & (seen.size() - 1);
            if (!seen[i]) seen[i] = h, ++pairs;
        });
        if (n && 2 * pairs <= n)
            FoldAll();
        else
            checkAt_ *= 2;
    }
    std::size_t kept_ = 0, checkAt_ = gFoldAt, learnAt_ = gLearnAt;
    bool folded_ = false;
    // The pairs that the records so far show on two discs, into `known`.
    // (The records still waiting in their lines are looked at there: written
    // out now, a part's later lines would stand astride the cache's lines
    // until its chunk is full, and every one of them would be read from
    // memory before being written.)
    void Learn(Known& known) {
        std::vector<std::uint64_t> table;  // a key above, 1 + the disc of its first record below (kTwo: on two)
        constexpr std::uint64_t kTwo = UINT32_MAX;
        for (std::size_t part = 0; part < kParts && !known.Full(); ++part) {
            const std::size_t n = Count(part) + fill_[part];
            if (n < 2) continue;
            table.assign(std::bit_ceil(2 * n), 0);
            const std::size_t mask = table.size() - 1;
            const auto high = static_cast<std::uint32_t>(part) << (32 - kPartBits);
            Placer placer(*this);
            const auto look = [&](Record r) {
                const auto key = static_cast<std::uint32_t>(r >> kPlaceBits);
                const std::uint64_t disc = 1 + (placer.Where(r) >> kOffsetBits);
                std::size_t i = key & mask;
                while (table[i] && table[i] >> 32 != key) i = (i + 1) & mask;
                if (!table[i]) {
                    table[i] = std::uint64_t{key} << 32 | disc;
                } else if ((table[i] & kTwo) != kTwo && (table[i] & kTwo) != disc) {
                    table[i] |= kTwo;
                    known.Add(high | key);
                }
            };
            ForEach(part, look);
            std::for_each(waiting_[part], waiting_[part] + fill_[part], look);
        }
    }
};

std::uint64_t gHashMask = ~std::uint64_t{0};
std::size_t gBlock = LineReader::kDefaultBlock;  // one read of the pass
unsigned gThreads = 0;  // 0: as many as the machine has, up to kMaxThreads
unsigned gGranted = UINT_MAX;  // tests: threads the system gives before it refuses
constexpr unsigned kPassBits = 3, kMaxThreads = 1u << kPassBits;

// Waits until `done(a)`: spinning first, for a core that sleeps may take
// milliseconds to be woken (on a virtual machine above all), and the steps
// of a run follow each other within fractions of that; then sleeping.
template <typename T, typename Done>
void AwaitAtomic(const std::atomic<T>& a, Done&& done) {
    constexpr auto kSpin = std::chrono::milliseconds(4);
    const auto since = std::chrono::steady_clock::now();
    for (unsigned i = 1;; ++i) {
        const T v = a.load(std::memory_order_acquire);
        if (done(v)) return;
        if (i % 256 == 0 && std::chrono::steady_clock::now() - since > kSpin) {
            a.wait(v, std::memory_order_acquire);
        } else {
#if defined(__x86_64__) || defined(__i386__)
            __builtin_ia32_pause();
#endif
        }
    }
}

// The threads of one run, started once at its beginning, so that no step
// waits for a thread to be made or woken. Run(job) runs `job(0)` here and
// `job(1)` to `job(n - 1)` on the others; the first exception any of them
// throws is thrown here once all are done. Where the system gives fewer
// threads, the jobs left run here after the first (which they may wait for).
class Team {
public:
    explicit Team(unsigned n) : n_(n), failed_(n) {
        try {
            for (unsigned t = 1; t < n; ++t) {
                if (t > gGranted) break;
                threads_.emplace_back([this, t] { Work(t); });
            }
        } catch (const std::system_error&) {
        } catch (...) {
            End();
            throw;
        }
    }
    ~Team() { End(); }
    Team(const Team&) = delete;
    Team& operator=(const Team&) = delete;

    template <typename Job>
    void Run(Job&& job) {
        job_ = [](void* j, unsigned t) { (*static_cast<std::remove_reference_t<Job>*>(j))(t); };
        context_ = const_cast<void*>(static_cast<const void*>(std::addressof(job)));
        std::fill(failed_.begin(), failed_.end(), nullptr);
        done_.store(0, std::memory_order_relaxed);
        round_.fetch_add(1, std::memory_order_release);
        round_.notify_all();
        try {
            job(0u);
            for (auto t = static_cast<unsigned>(threads_.size() + 1); t < n_; ++t) job(t);
        } catch (...) {
            failed_[0] = std::current_exception();
        }
        const std::size_t others = threads_.size();
        AwaitAtomic(done_, [others](std::size_t d) { return d == others; });
        for (const std::exception_ptr& f : failed_)
            if (f) std::rethrow_exception(f);
    }
    // The threads stop (they spin no more) and are joined.
    void End() {
        if (threads_.empty()) return;
        quit_ = true;
        round_.fetch_add(1, std::memory_order_release);
        round_.notify_all();
        for (std::thread& t : threads_) t.join();
        threads_.clear();
    }

private:
    void Work(unsigned t) {
        for (unsigned seen = 0;;) {
            AwaitAtomic(round_, [seen](unsigned r) { return r != seen; });
            seen = round_.load(std::memory_order_acquire);
            if (quit_) return;
            try {
                job_(context_, t);
            } catch (...) {
                failed_[t] = std::current_exception();
            }
            done_.fetch_add(1, std::memory_order_release);
            done_.notify_one();
        }
    }
    const unsigned n_;
    std::vector<std::exception_ptr> failed_;
    std::vector<std::thread> threads_;
    void (*job_)(void*, unsigned) = nullptr;
    void* context_ = nullptr;
    std::atomic<unsigned> round_{0};
    std::atomic<std::size_t> done_{0};
    std::atomic<bool> quit_{false};
};

// The share of `count` things that thread t of n takes: [First(t), First(t + 1)).
std::size_t First(std::size_t count, unsigned t, unsigned n) { return count * t / n; }

std::uint64_t Mum(std::uint64_t a, std::uint64_t b) {
    const unsigned __int128 r = static_cast<unsigned __int128>(a) * b;
    return static_cast<std::uint64_t>(r) ^ static_cast<std::uint64_t>(r >> 64);
}

constexpr std::uint64_t kHigh = 0x8080808080808080ULL;

// Plain ASCII a-z made A-Z, eight bytes at once; every byte is below 0x80, so
// the additions carry into no neighbour.
std::uint64_t FoldWord(std::uint64_t w) {
    const std::uint64_t atLeastA = w + 0x1f1f1f1f1f1f1f1fULL;  // high bit where byte >= 'a'
    const std::uint64_t aboveZ = w + 0x0505050505050505ULL;    // high bit where byte > 'z'
    return w ^ (((atLeastA & ~aboveZ) & kHigh) >> 2);
}

// The hash of the bytes of a name as compared, eight at a time. With `Fold`
// the bytes are the stored ASCII name, upper-cased on the way; false then
// means the name holds other bytes and must go the search's way first.
template <bool Fold>
bool HashName(const char* p, std::size_t n, std::uint64_t sizeKey, std::uint64_t& out) {
    std::uint64_t h = 0x243f6a8885a308d3ULL ^ n;
    const auto add = [&h](std::uint64_t w) {
        if constexpr (Fold) {
            if (w & kHigh) return false;
            w = FoldWord(w);
        }
        h = std::rotl((h ^ w) * 0x9fb21c651e98df25ULL, 29);
        return true;
    };
    std::uint64_t w;
    const std::size_t whole = n & ~std::size_t{7}, rest = n & 7;
    for (std::size_t i = 0; i < whole; i += 8) {
        std::memcpy(&w, p + i, 8);
        if (!add(w)) return false;
    }
    w = 0;
    if (rest && whole && std::endian::native == std::endian::little) {
        // The last eight bytes of the name, shifted down to its last `rest`:
        // one load instead of a copy of unknown length.
        std::memcpy(&w, p + n - 8, 8);
        w >>= 8 * (8 - rest);
    } else {
        std::memcpy(&w, p + whole, rest);
    }
    if (!add(w)) return false;
    out = Mum(h ^ sizeKey, 0x8ebc6af09c88c6e3ULL) & gHashMask;
    return true;
}

// The name as the name search compares it: plain ASCII upper-cased in
// place, anything else the search's way.
void UpperName(std::string& out, std::string_view raw) {
    out.resize(raw.size());
    std::size_t i = 0;
    for (std::uint64_t w; i + 8 <= raw.size(); i += 8) {  // eight at a time while they are ASCII
        std::memcpy(&w, raw.data() + i, 8);
        if (w & kHigh) break;
        w = FoldWord(w);
        std::memcpy(out.data() + i, &w, 8);
    }
    for (; i < raw.size(); ++i) {
        const char c = raw[i];
        if (static_cast<unsigned char>(c) >= 0x80) {
            out = UpperCase(DecodeLine(raw));
            return;
        }
        out[i] = (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
    }
}

// Eight decimal digits (the first in the lowest byte) as a number, in a few
// multiplications: each step joins neighbours, then pairs of them.
std::uint64_t EightDigits(std::uint64_t w) {
    w -= 0x3030303030303030ULL;
    w = w * 10 + (w >> 8);
    return (((w & 0x000000FF000000FFULL) * 0x000F424000000064ULL) +
            (((w >> 16) & 0x000000FF000000FFULL) * 0x0000271000000001ULL)) >>
           32;
}

// Whether all eight bytes are decimal digits.
bool AllDigits(std::uint64_t w) {
    constexpr std::uint64_t kHighNibbles = 0xF0F0F0F0F0F0F0F0ULL, kThrees = 0x3030303030303030ULL;
    return (w & kHighNibbles) == kThrees && ((w + 0x0606060606060606ULL) & kHighNibbles) == kThrees;
}

// The Size field p[0..n), as std::from_chars reads it when it takes the
// whole field; false when it isn't a number. Up to sixteen digits go eight
// at a time, loaded from where they end (`lowest`, the first byte that may
// be read, lies far enough before them), the bytes before the field
// counting as zeros.
bool SizeField(const char* p, std::size_t n, const char* lowest, std::int64_t& size) {
    const bool negative = n > 0 && *p == '-';
    const char* digits = p + negative;
    const std::size_t count = n - negative;
    if (count == 0) return false;
    if (std::endian::native == std::endian::little && count <= 16 && digits + count >= lowest + 16) {
        const auto part = [](const char* end, std::size_t k, std::uint64_t& value) {
            std::uint64_t w;
            std::memcpy(&w, end - 8, 8);
            const unsigned shift = 8 * static_cast<unsigned>(8 - k);
            if (shift) w = (w >> shift << shift) | (0x3030303030303030ULL >> (64 - shift));
            if (!AllDigits(w)) return false;
            value = EightDigits(w);
            return true;
        };
        std::uint64_t low = 0, high = 0;
        const char* end = digits + count;
        if (!part(end, std::min<std::size_t>(count, 8), low)) return false;
        if (count > 8 && !part(end - 8, count - 8, high)) return false;
        const std::uint64_t v = high * 100000000ULL + low;
        size = negative ? -static_cast<std::int64_t>(v) : static_cast<std::int64_t>(v);
        return true;
    }
    const char* q = digits;
    std::uint64_t v = 0;
    while (q < p + n && static_cast<unsigned char>(*q - '0') < 10) v = v * 10 + static_cast<unsigned char>(*q++ - '0');
    if (q != p + n) return false;
    if (count > 18) {  // where it could overflow, the library's rules
        const auto [after, ec] = std::from_chars(p, p + n, size);
        return ec == std::errc() && after == p + n;
    }
    size = negative ? -static_cast<std::int64_t>(v) : static_cast<std::int64_t>(v);
    return true;
}

// A size as the hash takes it. One of up to eight digits is its digits'
// eight bytes, zeros before, the first digit in the lowest byte: the bytes
// the pass loads from a Size field of such a number, so that it need not
// turn them into a number. Any other size is the number itself.
std::uint64_t SizeKey(std::int64_t size) {
    if (size < 0 || size >= 100000000 || std::endian::native != std::endian::little)
        return static_cast<std::uint64_t>(size);
    std::uint64_t key = 0;
    for (int digit = 7; digit >= 0; --digit, size /= 10)
        key |= static_cast<std::uint64_t>('0' + size % 10) << (8 * digit);
    return key;
}

// The Size field p[0..n) of one to eight digits (leading zeros are filled
// in anyway) as SizeKey keys its number; false for any other field, which
// then takes SizeField's way. `lowest` as for SizeField.
bool SizeFieldKey(const char* p, std::size_t n, const char* lowest, std::uint64_t& key) {
    if (std::endian::native != std::endian::little || n - 1 >= 8 || p + n < lowest + 8) return false;
    std::uint64_t w;
    std::memcpy(&w, p + n - 8, 8);
    const std::uint64_t field = ~std::uint64_t{0} << (8 * (8 - n));
    w = (w & field) | (0x3030303030303030ULL & ~field);
    if (!AllDigits(w)) return false;
    key = w;
    return true;
}

// A file line taken apart as far as a copy needs it.
struct FileLine {
    std::string_view path, name;
    std::int64_t size = 0;
};

bool ParseFileLine(const char* p, std::size_t n, FileLine& out) {
    const char* end = p + n;
    const char* bar = static_cast<const char*>(std::memchr(p, '|', n));
    if (!bar) return false;
    const char* next = static_cast<const char*>(std::memchr(bar + 1, '|', static_cast<std::size_t>(end - bar - 1)));
    if (!next) next = end;
    if (!SizeField(bar + 1, static_cast<std::size_t>(next - bar - 1), p, out.size)) return false;
    out.path = std::string_view(p, static_cast<std::size_t>(bar - p));
    const std::size_t slash = out.path.rfind('\\');
    out.name = slash == std::string_view::npos ? out.path : out.path.substr(slash + 1);
    return true;
}

std::uint64_t HashOf(std::string_view name, std::uint64_t sizeKey, std::string& upper) {
    std::uint64_t hash;
    if (!HashName<true>(name.data(), name.size(), sizeKey, hash)) {
        UpperName(upper, name);
        HashName<false>(upper.data(), upper.size(), sizeKey, hash);
    }
    return hash;
}

// A copy's line as the listing needs it: its hash, where it stands (disc and
// offset as a Candidate's), its size, and in the texts of whoever read it,
// from `textAt` on, its name as compared and right behind it its hit text
// (label, '\\', path as UTF-8), whose last `nameLen` bytes are the name as the
// lists show it.
struct Fetched {
    std::uint64_t hash, where;
    std::int64_t size;
    std::uint32_t textAt, upperLen, hitLen, nameLen;
};
// Where copies' lines and texts are kept: a listing of many copies fills
// megabytes of them at once.
using FetchedLines = std::vector<Fetched, BigAllocator<Fetched>>;
using Texts = std::basic_string<char, std::char_traits<char>, BigAllocator<char>>;

// Line `f` (on the disc of `label`, at `where`) with its texts added to
// `texts`; `upper` is its name as compared.
Fetched Take(const FileLine& f, const std::string& upper, std::uint64_t hash, std::uint64_t where,
             const std::string& label, Texts& texts) {
    const auto at = static_cast<std::uint32_t>(texts.size());
    texts += upper;
    texts += label;
    texts += '\\';
    const std::size_t pathAt = texts.size();
    if (IsValidUtf8(f.path))
        texts += f.path;  // as DecodeLine takes it, without a copy between
    else
        texts += std::string_view(DecodeLine(f.path));
    const std::size_t slash = std::string_view(texts).substr(pathAt).rfind('\\');
    const std::size_t nameAt = slash == std::string_view::npos ? pathAt : pathAt + slash + 1;
    const std::size_t hitAt = at + upper.size();
    return {hash,
            where,
            f.size,
            at,
            static_cast<std::uint32_t>(upper.size()),
            static_cast<std::uint32_t>(texts.size() - hitAt),
            static_cast<std::uint32_t>(texts.size() - nameAt)};
}

// What a pass takes from the blocks it reads: the lines of the pairs it
// knows to be many, in disc and line order, with their texts, in pieces of a
// fixed room (grown, neither would stop copying itself and asking for fresh
// pages again).
struct Keep {
    struct Piece {
        FetchedLines lines;
        Texts texts;
    };
    Known known;
    std::vector<Piece> pieces;
    // Where the next line goes (one longer than the room left makes its piece
    // grow). The first piece is small, each next one twice the room of the
    // last, up to a big block each (a string's room leaves a byte for its
    // end): a run of few copies keeps little, one of many fills whole large
    // pages.
    Piece& Room() {
        if (pieces.empty() || pieces.back().lines.size() == pieces.back().lines.capacity() ||
            pieces.back().texts.size() + 1024 > pieces.back().texts.capacity()) {
            const Piece* last = pieces.empty() ? nullptr : &pieces.back();
            const std::size_t lines = last ? std::min(2 * last->lines.capacity(), kBigBlock / sizeof(Fetched)) : 1024;
            const std::size_t texts = last ? std::min(2 * last->texts.capacity() + 1, kBigBlock - 1) : (64 << 10) - 1;
            pieces.emplace_back();
            pieces.back().lines.reserve(lines);
            pieces.back().texts.reserve(texts);
        }
        return pieces.back();
    }
};

// One catalogue's file lines into `records`, or into `keep` where their
// pair is known to be many: header, the line behind it, the
// folder lines up to the first empty line (passed over by the block scan),
// then the file lines up to the next empty line or the end. Each block of
// file lines is marked in one vector pass (its line ends, bars and
// backslashes as bit masks), and every line takes its end, its first bar and
// the last backslash before that from the masks: a line costs a few bit
// steps, not a search per character sought.
void ScanDisc(LineReader& reader, std::int64_t minSize, std::vector<std::uint64_t>& masks, Records& records,
              Keep& keep, std::uint64_t disc, const std::string& label) {
    std::string_view line;
    if (!reader.NextRaw(line) || !reader.NextRaw(line) || !reader.SkipSection()) return;
    std::string upper;
    for (;;) {
        const std::uint64_t base = reader.ReadUpTo() - reader.Held().size();  // the block's place in the file
        const std::string_view block = reader.Buffered();
        if (block.empty()) return;
        const char* b = block.data();
        const std::size_t n = block.size(), words = (n + 63) / 64;
        if (masks.size() < 3 * words) masks.resize(3 * words);
        std::uint64_t* const bars = masks.data();
        std::uint64_t* const ends = bars + words;
        std::uint64_t* const slashes = ends + words;
        scan::BlockMasks(b, n, bars, ends, slashes);
        for (std::size_t i = 0; i < n;) {
            if (b[i] == '\r' || b[i] == '\n') return;  // the empty line behind the files
            std::size_t eol = n, bar = n, bar2 = n, slash = n;
            for (std::size_t w = i / 64; w < words; ++w) {
                const std::uint64_t onward = ~std::uint64_t{0} << (w == i / 64 ? i % 64 : 0);
                const std::uint64_t e = ends[w] & onward;
                const std::uint64_t before = e ? (e & (0 - e)) - 1 : ~std::uint64_t{0};
                std::uint64_t bb = bars[w] & onward & before;
                if (bar == n) {
                    std::uint64_t sl = slashes[w] & onward & before;
                    if (bb) {
                        bar = 64 * w + static_cast<std::size_t>(__builtin_ctzll(bb));
                        sl &= (bb & (0 - bb)) - 1;
                        bb &= bb - 1;
                    }
                    if (sl) slash = 64 * w + 63 - static_cast<std::size_t>(__builtin_clzll(sl));
                }
                if (bar != n && bar2 == n && bb) bar2 = 64 * w + static_cast<std::size_t>(__builtin_ctzll(bb));
                if (e) {
                    eol = 64 * w + static_cast<std::size_t>(__builtin_ctzll(e));
                    break;
                }
            }
            if (bar2 == n) bar2 = eol;
            // Where every size counts, the digits of a field of up to eight
            // go to the hash as they stand; any other is read as a number
            // first.
            std::int64_t size;
            std::uint64_t sizeKey;
            if (bar != n && ((minSize <= 0 && SizeFieldKey(b + bar + 1, bar2 - bar - 1, b, sizeKey)) ||
                             (SizeField(b + bar + 1, bar2 - bar - 1, b, size) && Bytes(size) >= minSize &&
                              (sizeKey = SizeKey(size), true)))) {
                const std::uint64_t offset = base + i;
                if (offset > kOffsetMask || !records.Fits(offset)) return;
                const std::size_t name = slash == n ? i : slash + 1;
                const std::uint64_t hash = HashOf({b + name, bar - name}, sizeKey, upper);
                if (!keep.known.Has(ShortHash(hash))) {
                    records.Add(hash, offset);
                } else {
                    FileLine f{{b + i, bar - i}, {b + name, bar - name}, 0};
                    SizeField(b + bar + 1, bar2 - bar - 1, b, f.size);
                    UpperName(upper, f.name);
                    Keep::Piece& piece = keep.Room();
                    piece.lines.push_back(Take(f, upper, hash, disc << kOffsetBits | offset, label, piece.texts));
                }
            }
            i = eol + 1;
            if (eol < n && b[eol] == '\r' && i < n && b[i] == '\n') ++i;
        }
        reader.Skip(n);
    }
}

// The hashes met on more than one disc, and every line that gave one, in no
// particular order. Unfolded, each part's records (every pass's) go through a
// table of their own that stays in the cache; a slot holds the 24 bits of the
// hash a record keeps, so two hashes may meet there wrongly: that only makes
// candidates the names then tell apart.
std::vector<Candidate> CandidatesOf(Team& team, std::vector<Records>& records) {
    const auto n = static_cast<unsigned>(records.size());
    std::vector<std::vector<Candidate>> found(n);
    const auto all = [&found] {
        std::vector<Candidate> out = std::move(found[0]);
        for (std::size_t t = 1; t < found.size(); ++t) out.insert(out.end(), found[t].begin(), found[t].end());
        return out;
    };
    if (std::any_of(records.begin(), records.end(), [](const Records& r) { return r.Folded(); })) {
        // The passes' pairs brought together into the first's, each thread
        // its share of the parts, then the lines that waited.
        team.Run([&](unsigned t) { records[t].FoldAll(); });
        team.Run([&](unsigned t) {
            for (std::size_t k = 1; k < n; ++k)
                records[0].Merge(records[k], First(kParts, t, n), First(kParts, t + 1, n), found[t]);
        });
        std::vector<Candidate> out = all();
        for (const Records& r : records) out.insert(out.end(), r.candidates.begin(), r.candidates.end());
        for (const Records& r : records)
            for (const Candidate& l : r.later)
                if (records[0].Many(l.hash)) out.push_back(l);
        return out;
    }
    // Each part's records, every pass's, go once through a table of the
    // pairs met, each with its first record; a line on another disc than its
    // pair's first makes the pair many and both lines candidates, as does
    // every later line of a pair known to be many. A line on the first disc
    // of a pair not yet many waits till the part's end. Only a pair met again
    // asks where its lines stand.
    struct Seen {
        std::uint32_t key;
        std::uint32_t first;  // 1 + the pass (top bits) and index of the first record; 0: a free slot
    };
    constexpr std::uint32_t kMany = UINT32_MAX;  // as `first`: the pair was met on two discs
    constexpr std::uint32_t kIndexMask = (1u << (32 - kPassBits)) - 1;
    const auto look = [&](unsigned t) {
        std::vector<Seen> table;
        std::vector<std::uint64_t> once, twice;
        std::vector<Candidate> waiting;
        std::vector<Candidate>& candidates = found[t];
        for (std::size_t b = First(kParts, t, n); b < First(kParts, t + 1, n); ++b) {
            std::size_t count = 0;
            for (const Records& r : records) count += r.Count(b);
            if (count < 2) continue;
            // First a bit per key (at most one in 32 of them set) marks the
            // keys met twice, in a pass without a branch; the table then takes
            // only their records and those of the few keys that share a bit
            // with one: few where copies are few, and it fits the nearest
            // cache.
            const std::size_t bits = std::max<std::size_t>(64, std::bit_ceil(32 * count));
            once.assign(bits / 64, 0);
            twice.assign(bits / 64, 0);
            std::size_t again = 0;
            for (const Records& r : records)
                r.ForEach(b, [&](Record rec) {
                    const auto bit = static_cast<std::size_t>(rec >> kPlaceBits) & (bits - 1);
                    const std::uint64_t m = std::uint64_t{1} << (bit % 64);
                    std::uint64_t& o = once[bit / 64];
                    again += (o & m) != 0;
                    twice[bit / 64] |= o & m;
                    o |= m;
                });
            if (again == 0) continue;
            std::size_t size = 16;
            while (size < 4 * again) size *= 2;
            table.assign(size, Seen{0, 0});
            const auto slot = [&](std::uint32_t key) -> Seen& {
                std::size_t i = key & (size - 1);
                while (table[i].first && table[i].key != key) i = (i + 1) & (size - 1);
                return table[i];
            };
            const auto high = static_cast<std::uint32_t>(b) << (32 - kPartBits);
            waiting.clear();
            for (std::uint32_t pass = 0; pass < n; ++pass) {
                Records::Placer placer(records[pass]);
                std::uint32_t index = pass << (32 - kPassBits);
                records[pass].ForEach(b, [&](Record r) {
                    const auto key = static_cast<std::uint32_t>(r >> kPlaceBits);
                    if (!(twice[(key & (bits - 1)) / 64] >> (key % 64) & 1)) {
                        ++index;
                        return;
                    }
                    Seen& s = slot(key);
                    if (!s.first) {
                        s = {key, index + 1};
                    } else if (s.first == kMany) {
                        candidates.push_back({placer.Where(r), high | key});
                    } else {
                        const std::uint32_t first = s.first - 1;
                        const std::uint64_t firstAt =
                            records[first >> (32 - kPassBits)].WhereOf(b, first & kIndexMask);
                        const std::uint64_t where = placer.Where(r);
                        if (firstAt >> kOffsetBits == where >> kOffsetBits) {
                            waiting.push_back({where, key});
                        } else {
                            s.first = kMany;
                            candidates.push_back({firstAt, high | key});
                            candidates.push_back({where, high | key});
                        }
                    }
                    ++index;
                });
            }
            for (const Candidate& w : waiting)
                if (slot(w.hash).first == kMany) candidates.push_back({w.where, high | w.hash});
        }
    };
    team.Run(look);
    return all();
}

// Reads the lines of one disc's candidates (in offset order) from its
// catalogue: one read covers a candidate and those close behind it, so lines
// far apart cost a small read each and a dense run a few large ones. A
// catalogue rewritten since the pass may hold another line there now: a line
// that no longer gives its hash is left out, never taken for a copy.
void FetchDisc(ReadFolder& folder, const std::string& label, const Candidate* first,
               const Candidate* last, std::vector<char>& buf, Texts& arena, FetchedLines& out) {
    const ReadFile file = folder.Open(CatalogueName(label), nullptr, nullptr);
    if (!file) return;
    // A read costs about as much as copying a few kilobytes: lines closer
    // than that share one.
    const std::uint64_t kLine = std::min<std::uint64_t>(gBlock, 512), kGap = 4 * kLine, kMost = 512 * kLine;
    std::uint64_t winStart = 0;
    std::size_t winLen = 0;
    bool winEof = false;
    std::string upper;
    for (const Candidate* c = first; c != last; ++c) {
        const std::uint64_t offset = c->where & kOffsetMask;
        const char* line = nullptr;
        const char* eol = nullptr;
        for (std::size_t want = 0;;) {
            if (offset >= winStart && offset < winStart + winLen) {
                const char* p = buf.data() + (offset - winStart);
                const char* end = buf.data() + winLen;
                const char* e = p + scan::FindLineEnd(p, static_cast<std::size_t>(end - p));
                if (e != end || winEof) {
                    line = p, eol = e;
                    break;
                }
                if (winStart == offset) want = 2 * winLen;  // a line longer than the read
            }
            if (!want) {
                std::uint64_t end = offset + kLine;
                for (const Candidate* n = c + 1; n != last; ++n) {
                    const std::uint64_t at = n->where & kOffsetMask;
                    if (at > end + kGap || at - offset > kMost) break;
                    end = at + kLine;
                }
                want = static_cast<std::size_t>(end - offset);
            }
            if (buf.size() < want) buf.resize(want);
            if (!file->Seek(offset)) return;
            winStart = offset;
            winLen = file->Read(buf.data(), want);
            winEof = winLen < want;
            if (winLen == 0) return;  // cut short since the pass: so is every later candidate
        }
        FileLine f;
        if (!ParseFileLine(line, static_cast<std::size_t>(eol - line), f)) continue;
        // The name upper-cased once, for the hash and for the texts.
        UpperName(upper, f.name);
        std::uint64_t hash;
        HashName<false>(upper.data(), upper.size(), SizeKey(f.size), hash);
        if (ShortHash(hash) != c->hash) continue;
        out.push_back(Take(f, upper, hash, c->where, label, arena));
    }
}

}  // namespace

void LimitThreadsForTesting(unsigned granted) { gGranted = granted; }

void SetDuplicateSeamsForTesting(int hashBits, std::size_t block, unsigned threads, std::size_t foldAt,
                                 std::size_t chunk, std::size_t learnAt) {
    gLearnAt = std::max<std::size_t>(1, learnAt);
    gChunk = std::max<std::size_t>(8, chunk / 8 * 8);
    gHashMask = hashBits >= 64 ? ~std::uint64_t{0} : ~(~std::uint64_t{0} >> hashBits);
    gBlock = std::clamp<std::size_t>(block, 1, LineReader::kDefaultBlock);
    gThreads = std::min(threads, kMaxThreads);
    gFoldAt = std::max<std::size_t>(1, foldAt);
}

std::int64_t Bytes(std::int64_t storedSize) {
    return storedSize < 0 && storedSize >= INT32_MIN ? storedSize + (std::int64_t{1} << 32) : storedSize;
}

std::size_t FindDuplicates(const std::string& dataFolder, const std::vector<std::string>& labels,
                           std::int64_t minSize, const DuplicateSink& sink,
                           const std::function<bool(std::size_t, std::size_t)>& progress) {
    // A pass on each thread, each taking the next disc no pass has taken yet
    // into records of its own: a thread that started late or was kept from
    // its core takes fewer, and none waits for the last of another's. Only
    // this thread speaks to `progress`, a disc or two ahead of those taken,
    // and the others read no disc `progress` hasn't heard of.
    const std::size_t discs = std::min(labels.size(), kMaxDiscs);
    unsigned n = gThreads ? gThreads : std::clamp(std::thread::hardware_concurrency(), 1u, kMaxThreads);
    n = static_cast<unsigned>(std::clamp<std::size_t>(discs, 1, n));
    Team team(n);
    std::vector<Records> records(n);
    std::vector<Keep> keeps(n);
    // Without a listener nothing is told, and the passes never wait for each other.
    std::atomic<std::size_t> heard{progress ? 0 : SIZE_MAX};
    std::atomic<bool> stop{false};
    std::atomic<std::size_t> taken{0};  // the discs the passes took, each the next one not yet taken
    const auto pass = [&](unsigned t) {
        // However this pass ends (a throw from `progress` or an allocation
        // included), the others must not wait for it.
        struct Release {
            std::atomic<std::size_t>& heard;
            std::atomic<bool>& stop;
            bool mine;
            ~Release() {
                if (!mine) return;
                if (std::uncaught_exceptions()) stop = true;
                heard = SIZE_MAX;
                heard.notify_all();
            }
        } release{heard, stop, t == 0};
        LineReader reader(gBlock);
        std::vector<std::uint64_t> masks;
        const std::unique_ptr<ReadFolder> folder = OpenFolderForReading(dataFolder);
        for (;;) {
            const std::size_t disc = taken.fetch_add(1, std::memory_order_relaxed);
            if (t == 0) {
                // Ahead of the discs taken so far by a few, that the others
                // seldom wait.
                const std::size_t ahead = taken.load(std::memory_order_relaxed);
                const std::size_t upTo = std::min(n > 1 ? ahead + n : ahead, discs);
                for (std::size_t h = heard; h < upTo && !stop; ++h) {
                    if (progress && !progress(h + 1, labels.size())) stop = true;
                    heard = stop ? SIZE_MAX : h + 1;  // a stop wakes the other threads too
                    heard.notify_all();
                }
            } else {
                for (std::size_t h; disc < discs && (h = heard) <= disc;) heard.wait(h);
            }
            if (disc >= discs || stop) {
                records[t].FlushAll();
                return;
            }
            if (reader.Open(*folder, CatalogueName(labels[disc])) && records[t].BeginDisc(disc)) {
                ScanDisc(reader, minSize, masks, records[t], keeps[t], disc, labels[disc]);
                records[t].EndDisc(reader.ReadUpTo(), keeps[t].known);
            }
        }
    };
    team.Run(pass);
    std::vector<Candidate> met = CandidatesOf(team, records);
    std::vector<Records>().swap(records);

    // The candidates by disc (each disc's in line order), then read again,
    // each thread a run of whole discs with its share of the lines, the
    // first thread's discs first.
    std::vector<std::size_t> from(discs + 1, 0);
    for (const Candidate& c : met) ++from[(c.where >> kOffsetBits) + 1];
    for (std::size_t d = 0; d < discs; ++d) from[d + 1] += from[d];
    std::vector<Candidate> candidates(met.size());
    {
        std::vector<std::size_t> at(from.begin(), from.end() - 1);
        for (const Candidate& c : met) candidates[at[c.where >> kOffsetBits]++] = c;
    }
    met = {};
    std::vector<std::size_t> runs(n + 1, discs);  // thread t reads discs [runs[t], runs[t + 1])
    for (unsigned t = 0, d = 0; t < n; ++t) {
        while (d < discs && from[d] < First(candidates.size(), t, n)) ++d;
        runs[t] = d;
    }
    std::vector<FetchedLines> got(n);
    std::vector<Texts> arena(n);
    const auto fetch = [&](unsigned t) {
        std::vector<char> buf;
        const std::unique_ptr<ReadFolder> folder = OpenFolderForReading(dataFolder);
        const std::size_t first = runs[t], last = runs[t + 1];
        // Room for all at once: a growing arena would copy itself again and
        // again, and fresh pages cost more here than the lines themselves.
        // (Pages that stay unwritten cost nothing.)
        const std::size_t lines = from[last] - from[first];
        got[t].reserve(lines);
        arena[t].reserve(lines * 256);
        for (std::size_t d = first; d < last; ++d) {
            if (from[d] == from[d + 1]) continue;
            Candidate* const b = candidates.data() + from[d];
            Candidate* const e = candidates.data() + from[d + 1];
            std::sort(b, e, [](const Candidate& x, const Candidate& y) { return x.where < y.where; });
            FetchDisc(*folder, labels[d], b, e, buf, arena[t], got[t]);
        }
    };
    team.Run(fetch);
    candidates = {};

    // The copies brought together by hash in the order they were read (disc,
    // then line order), each hash's copies then told apart by name and size,
    // for a hash may stand for more than one pair where hashes meet. Each
    // thread takes the hashes of its share, so no pair is split between two,
    // and the copies' hit texts go straight to their pair's group: they stay
    // where they were read into, not copied together, and no copy is looked
    // at twice. Each thread's lines of either kind are in disc and line
    // order already, and a disc's lines come from one pass and one reader,
    // so the merge takes runs of them at a time.
    struct Source {
        const Fetched *at, *end;
        const char* texts;  // its reader's
    };
    std::vector<Source> sources;
    for (unsigned t = 0; t < n; ++t) {
        for (const Keep::Piece& p : keeps[t].pieces)
            sources.push_back({p.lines.data(), p.lines.data() + p.lines.size(), p.texts.data()});
        sources.push_back({got[t].data(), got[t].data() + got[t].size(), arena[t].data()});
    }
    std::vector<std::vector<DuplicateGroup>> found(n);
    team.Run([&](unsigned t) {
        struct Pair {
            std::uint64_t hash;
            std::string_view upper;  // its name as compared
            std::uint64_t disc;      // its first copy's
            std::uint32_t otherPair;  // the next pair of the same hash, or kNone
            bool manyDiscs;
            DuplicateGroup group;
        };
        constexpr std::uint32_t kNone = UINT32_MAX;
        std::vector<Pair> pairs;
        std::vector<std::uint32_t> table(16, kNone);  // a hash's first pair, at most half full
        std::size_t used = 0;
        const auto place = [&table](std::uint64_t hash, const std::vector<Pair>& in) -> std::uint32_t& {
            const std::size_t mask = table.size() - 1;
            std::size_t i = static_cast<std::size_t>(hash) & mask;
            while (table[i] != kNone && in[table[i]].hash != hash) i = (i + 1) & mask;
            return table[i];
        };
        const auto take = [&](const Fetched& f, const char* texts) {
            const std::string_view upper(texts + f.textAt, f.upperLen), hit(upper.data() + f.upperLen, f.hitLen);
            std::uint32_t& slot = place(f.hash, pairs);
            std::uint32_t* link = &slot;
            while (*link != kNone) {
                Pair& p = pairs[*link];
                if (p.group.size == f.size && p.upper == upper) {
                    p.group.hits.push_back(hit);
                    p.manyDiscs = p.manyDiscs || p.disc != f.where >> kOffsetBits;
                    return;
                }
                link = &p.otherPair;
            }
            const bool first = link == &slot;  // the hash's first pair takes a slot
            *link = static_cast<std::uint32_t>(pairs.size());
            Pair& p = pairs.emplace_back(Pair{f.hash, upper, f.where >> kOffsetBits, kNone, false, {}});
            p.group.name = hit.substr(hit.size() - f.nameLen);
            p.group.size = f.size;
            p.group.hits.push_back(hit);
            if (first && 2 * ++used > table.size()) {
                std::vector<std::uint32_t> old(2 * table.size(), kNone);
                old.swap(table);
                for (const std::uint32_t i : old)
                    if (i != kNone) place(pairs[i].hash, pairs) = i;
            }
        };
        std::vector<Source> from = sources;
        for (;;) {
            Source* first = nullptr;
            std::uint64_t second = UINT64_MAX;  // where the next source's next line stands
            for (Source& s : from) {
                if (s.at == s.end) continue;
                if (!first || s.at->where < first->at->where) {
                    if (first) second = first->at->where;
                    first = &s;
                } else {
                    second = std::min(second, s.at->where);
                }
            }
            if (!first) break;
            do {
                if (static_cast<unsigned>((first->at->hash >> 32) * n >> 32) == t) take(*first->at, first->texts);
                ++first->at;
            } while (first->at != first->end && first->at->where < second);
        }
        for (Pair& p : pairs)
            if (p.manyDiscs) found[t].push_back(std::move(p.group));
    });
    team.End();
    std::vector<DuplicateGroup> groups = std::move(found[0]);
    for (unsigned t = 1; t < n; ++t)
        groups.insert(groups.end(), std::make_move_iterator(found[t].begin()), std::make_move_iterator(found[t].end()));
    found = {};

    // The groups point into the readers' texts now; what led to them goes
    // before the texts are laid out anew.
    std::vector<FetchedLines>().swap(got);
    for (Keep& k : keeps)
        for (Keep::Piece& p : k.pieces) FetchedLines().swap(p.lines);

    // Largest first, then by name in list order, each name's key made once
    // (a listing of many copies has as many groups).
    std::vector<std::string> keys;
    keys.reserve(groups.size());
    for (const DuplicateGroup& g : groups) keys.push_back(SortKey(g.name));
    std::vector<std::size_t> byRank(groups.size());
    for (std::size_t i = 0; i < byRank.size(); ++i) byRank[i] = i;
    std::sort(byRank.begin(), byRank.end(), [&](std::size_t x, std::size_t y) {
        const DuplicateGroup &a = groups[x], &b = groups[y];
        if (a.size != b.size) return Bytes(a.size) > Bytes(b.size);
        if (keys[x] != keys[y]) return keys[x] < keys[y];
        return a.hits < b.hits;
    });

    // Each group's texts copied together in the order they are listed, into
    // one string whose room serves every group, then handed on. Where they
    // were read they lie a disc apart, and a listing that takes them from
    // there waits on memory at every copy; the copying asks for each a few
    // copies ahead, and the listing then finds them in the cache.
    std::size_t told = 0;
    std::string laidOut;
    for (const std::size_t i : byRank) {
        DuplicateGroup& g = groups[i];
        std::size_t bytes = 0;
        for (const std::string_view hit : g.hits) bytes += hit.size();
        if (laidOut.size() < bytes) laidOut.resize(std::max(bytes, 2 * laidOut.size()));
        const std::size_t nameAt = static_cast<std::size_t>(g.name.data() - g.hits.front().data());
        char* to = laidOut.data();
        for (std::size_t h = 0; h < g.hits.size(); ++h) {
            if (h + 8 < g.hits.size()) __builtin_prefetch(g.hits[h + 8].data());
            std::memcpy(to, g.hits[h].data(), g.hits[h].size());
            g.hits[h] = std::string_view(to, g.hits[h].size());
            to += g.hits[h].size();
        }
        g.name = std::string_view(g.hits.front().data() + nameAt, g.name.size());
        ++told;
        if (!sink(g)) break;
    }
    return told;
}

}  // namespace ct
