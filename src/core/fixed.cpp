#include "core/fixed.h"

#include <limits>

namespace ct {

namespace {

constexpr std::int64_t kMax = std::numeric_limits<std::int64_t>::max();

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

Fixed ParseLeadingDecimal(std::string_view text) {
    std::size_t i = 0;
    while (i < text.size() && text[i] == ' ') ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
        negative = text[i] == '-';
        ++i;
    }
    // The magnitude is gathered as a positive raw value; it may reach one
    // step beyond the positive limit so that the most negative value stays
    // exact. Anything larger saturates.
    const std::uint64_t limit = static_cast<std::uint64_t>(kMax) + (negative ? 1u : 0u);
    std::uint64_t whole = 0;
    bool saturated = false;
    bool any = false;
    const std::uint64_t wholeLimit = limit / Fixed::kScale;
    for (; i < text.size() && IsDigit(text[i]); ++i) {
        any = true;
        if (saturated) continue;
        whole = whole * 10 + static_cast<std::uint64_t>(text[i] - '0');
        if (whole > wholeLimit) saturated = true;
    }
    std::uint64_t fraction = 0;
    if (i < text.size() && text[i] == '.') {
        ++i;
        std::uint64_t step = Fixed::kScale / 10;
        for (; i < text.size() && IsDigit(text[i]); ++i) {
            any = true;
            fraction += static_cast<std::uint64_t>(text[i] - '0') * step;
            step /= 10;  // a fifth decimal and beyond adds nothing
        }
    }
    if (!any) return Fixed{};
    std::uint64_t magnitude = limit;
    if (!saturated) {
        const std::uint64_t scaled = whole * Fixed::kScale;
        magnitude = (scaled > limit - fraction) ? limit : scaled + fraction;
    }
    if (negative) {
        if (magnitude == static_cast<std::uint64_t>(kMax) + 1u)
            return Fixed{std::numeric_limits<std::int64_t>::min()};
        return Fixed{-static_cast<std::int64_t>(magnitude)};
    }
    return Fixed{static_cast<std::int64_t>(magnitude)};
}

std::string FixedText(Fixed value) {
    const bool negative = value.raw < 0;
    // Work on the unsigned magnitude so that the most negative raw value
    // doesn't overflow on negation.
    const std::uint64_t magnitude =
        negative ? static_cast<std::uint64_t>(-(value.raw + 1)) + 1u
                 : static_cast<std::uint64_t>(value.raw);
    const std::uint64_t whole = magnitude / Fixed::kScale;
    std::uint64_t fraction = magnitude % Fixed::kScale;
    std::string text;
    if (negative) text += '-';
    text += std::to_string(whole);
    if (fraction != 0) {
        char digits[5] = {};
        for (int d = 3; d >= 0; --d) {
            digits[d] = static_cast<char>('0' + fraction % 10);
            fraction /= 10;
        }
        int last = 3;
        while (digits[last] == '0') --last;
        text += '.';
        text.append(digits, static_cast<std::size_t>(last + 1));
    }
    return text;
}

}  // namespace ct
