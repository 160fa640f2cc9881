// Memory that a run fills from start to end and keeps to its end, such as
// the records of the copies' pass (sixteen megabytes for two million file
// lines) and the copies' texts. Each 4 KiB page of memory costs the system a
// fault of its own when it is first written, which for these came to
// a tenth of the run; allocations of a megabyte or more are therefore aligned
// on 2 MiB and so advised, so that a system with large pages backs each
// 2 MiB with one page and one fault. Standard C++ can align but not advise:
// the platform layer installs the advice, and without it they are plain
// memory.
#pragma once

#include <cstddef>
#include <memory>

namespace ct {

constexpr std::size_t kBigBlock = std::size_t{2} << 20;

// `bytes` of memory, from a megabyte on aligned on kBigBlock and advised;
// throws std::bad_alloc. FreeBig takes the same `bytes` back.
void* AllocateBig(std::size_t bytes);
void FreeBig(void* at, std::size_t bytes);

// For containers that grow to a megabyte or more.
template <typename T>
struct BigAllocator {
    using value_type = T;
    BigAllocator() = default;
    template <typename U>
    BigAllocator(const BigAllocator<U>&) {}
    T* allocate(std::size_t n) { return static_cast<T*>(AllocateBig(n * sizeof(T))); }
    void deallocate(T* at, std::size_t n) { FreeBig(at, n * sizeof(T)); }
    friend bool operator==(const BigAllocator&, const BigAllocator&) { return true; }
};

// One block of kBigBlock bytes.
struct BigBlockFree {
    void operator()(std::byte* block) const { FreeBig(block, kBigBlock); }
};
using BigBlock = std::unique_ptr<std::byte[], BigBlockFree>;
inline BigBlock NewBigBlock() { return BigBlock(static_cast<std::byte*>(AllocateBig(kBigBlock))); }

// Told each big allocation (its start and its length, a multiple of
// kBigBlock); returns the advice it replaces (nullptr: none).
using BigBlockAdvice = void (*)(void* at, std::size_t bytes);
BigBlockAdvice SetBigBlockAdvice(BigBlockAdvice advice);

}  // namespace ct
