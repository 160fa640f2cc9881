// The serial Windows gives a CD, worked out apart from the code under test so
// that the probe's and the image reader's serials have an oracle.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace ct::test {

// Four byte-wise sums over the 2048-byte descriptor at `sector` of `image`,
// the sum of the bytes at offsets 0, 4, 8 ... in the top byte.
inline std::uint32_t DescriptorSums(const std::string& image, std::size_t sector) {
    std::uint8_t s[4] = {};
    for (std::size_t i = 0; i < 2048; ++i)
        s[i % 4] = static_cast<std::uint8_t>(s[i % 4] + static_cast<unsigned char>(image[sector * 2048 + i]));
    return static_cast<std::uint32_t>(s[0]) << 24 | s[1] << 16 | s[2] << 8 | s[3];
}

}  // namespace ct::test
