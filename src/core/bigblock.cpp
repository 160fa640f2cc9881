#include "core/bigblock.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace ct {
namespace {

std::atomic<BigBlockAdvice> gAdvice{nullptr};

// Below this an allocation shares its pages with others and goes the usual way.
constexpr std::size_t kBigFrom = kBigBlock / 2;

std::size_t Rounded(std::size_t bytes) { return (bytes + kBigBlock - 1) / kBigBlock * kBigBlock; }

}  // namespace

void* AllocateBig(std::size_t bytes) {
    if (bytes < kBigFrom) return ::operator new(bytes);
    if (bytes > SIZE_MAX - kBigBlock) throw std::bad_alloc();
    void* at = std::aligned_alloc(kBigBlock, Rounded(bytes));
    if (!at) throw std::bad_alloc();
    if (const BigBlockAdvice advice = gAdvice.load()) advice(at, Rounded(bytes));
    return at;
}

void FreeBig(void* at, std::size_t bytes) {
    if (bytes < kBigFrom)
        ::operator delete(at);
    else
        std::free(at);
}

BigBlockAdvice SetBigBlockAdvice(BigBlockAdvice advice) { return gAdvice.exchange(advice); }

}  // namespace ct
