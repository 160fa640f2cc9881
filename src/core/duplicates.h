// Copies across discs: files that stand on more than one disc under the same
// name and size, the name compared without regard to case as the search's
// name test compares it. One pass over the catalogues, a thread for each
// core (up to eight) taking the next disc not yet taken, keeps eight bytes
// per file line (part of a hash of the name and size, and where the line
// stands), parted by the hash as the lines come; where the lines run to two
// or more per pair, they are folded into a table of the pairs, so that
// memory stays proportional to the distinct (name, size) pairs. Once a pass
// has read its first discs, the lines of the pairs it met on two of them are
// taken as they come, with their names and paths; of the rest, only the
// lines whose pair turns up on two discs are read again: no string is kept
// for a file without a copy.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace ct {

// One group of copies as a DuplicateSink hears it: its texts stand only as
// long as the call. (A string per copy cost more than finding the copies, and
// a listing of many copies never holds all of them laid out at once.)
struct DuplicateGroup {
    std::string_view name;               // the first copy's name, as UTF-8
    std::int64_t size = 0;               // bytes, as the catalogue's Size field
    std::vector<std::string_view> hits;  // each copy's hit text (label, '\', Path), in disc and catalogue order
};
// Takes the next group; false ends the listing.
using DuplicateSink = std::function<bool(const DuplicateGroup&)>;

// A file of 2 to 4 GiB stands in a catalogue with a negative size (the low 32
// bits read as signed); its bytes are that plus 4 GiB, which is how such a
// file is ordered and measured against a least size.
std::int64_t Bytes(std::int64_t storedSize);

// `labels` in the order the disc list shows them; only files of at least
// `minSize` bytes (as Bytes() counts them) count. Groups span at least two
// discs (copies on one disc are listed with them) and go to `sink` largest
// first, then by name as the lists order them; returns how many it heard.
// `progress` hears each disc's number from 1, in order, on the calling thread
// (a few discs before they are read), and may stop the run by returning
// false (the groups of the discs read so far are then listed).
std::size_t FindDuplicates(const std::string& dataFolder, const std::vector<std::string>& labels,
                           std::int64_t minSize, const DuplicateSink& sink,
                           const std::function<bool(std::size_t disc, std::size_t discs)>& progress = {});

// Tests only: keep just the top `hashBits` bits of the hash that brings copies
// together (0 makes every file meet every other), so that files whose hashes
// meet must still be told apart by their names; read `block` bytes at a
// time, so that lines and line ends straddle reads; take `threads` threads
// (up to 8; 0 as many as the machine has, up to 8); look whether to fold the
// lines into pairs after `foldAt` lines (and at every doubling); and keep
// `chunk` lines (a multiple of 8) to a chunk of a part's chain; and look
// which pairs a pass has met on two of its discs after `learnAt` lines (and
// at every fourfold of that up to 32768), taking their later lines as they
// come. (64, 1 << 16, 0, 1 << 20, 1024, 2048) is the program's own setting.
void SetDuplicateSeamsForTesting(int hashBits, std::size_t block, unsigned threads = 0,
                                 std::size_t foldAt = std::size_t{1} << 20, std::size_t chunk = 1024,
                                 std::size_t learnAt = std::size_t{1} << 11);

// Tests only: the system gives `granted` threads beyond the calling one and
// then refuses (UINT_MAX: as many as asked for).
void LimitThreadsForTesting(unsigned granted);

}  // namespace ct
