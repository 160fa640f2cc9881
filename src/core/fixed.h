// Fixed-point numbers: sizes and sums of sizes as value x 10,000 in a signed
// 64-bit integer, so that sums of any disc stay exact and a size limit typed as
// "1.5" compares like the catalogue's whole numbers.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

namespace ct {

struct Fixed {
    std::int64_t raw = 0;  // value * 10000

    static constexpr std::int64_t kScale = 10000;
    static constexpr Fixed FromInt(std::int64_t v) { return Fixed{v * kScale}; }

    friend constexpr bool operator==(Fixed a, Fixed b) { return a.raw == b.raw; }
    friend constexpr auto operator<=>(Fixed a, Fixed b) { return a.raw <=> b.raw; }
    // Sums saturate at the ends of the range instead of wrapping, so a
    // total of huge parts never turns negative.
    friend constexpr Fixed operator+(Fixed a, Fixed b) {
        constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();
        constexpr std::int64_t kMin = std::numeric_limits<std::int64_t>::min();
        if (b.raw > 0 && a.raw > kMax - b.raw) return Fixed{kMax};
        if (b.raw < 0 && a.raw < kMin - b.raw) return Fixed{kMin};
        return Fixed{a.raw + b.raw};
    }
    Fixed& operator+=(Fixed b) { return *this = *this + b; }
};

// The leading decimal number of `text`: optional blanks, an optional sign,
// digits, and with a point as the decimal sign up to four decimals (more are
// cut off). A comma, a letter or anything else ends the number. A text that
// doesn't begin with a number gives 0. Values beyond the range saturate rather
// than wrap. Used for the Size field of a catalogue line and the size limit of
// the search.
Fixed ParseLeadingDecimal(std::string_view text);

// Plain text of a fixed-point value: a whole value has no decimal point and no
// group separator ("-2147483648", "0"); otherwise a point and only the decimals
// needed ("1.5").
std::string FixedText(Fixed value);

}  // namespace ct
