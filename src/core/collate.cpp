#include "core/collate.h"

#include <algorithm>
#include <cstdint>

#include "core/text.h"

namespace ct {

namespace {

// Base letters of U+00C0..U+00FF; "" keeps the character (× and ÷).
const char* const kLatin1[64] = {
    "a", "a", "a", "a", "a", "a", "ae", "c", "e", "e", "e", "e", "i", "i", "i", "i",  // À..Ï
    "d", "n", "o", "o", "o", "o", "o", "",  "o", "u", "u", "u", "u", "y", "th", "ss",  // Ð..ß
    "a", "a", "a", "a", "a", "a", "ae", "c", "e", "e", "e", "e", "i", "i", "i", "i",  // à..ï
    "d", "n", "o", "o", "o", "o", "o", "",  "o", "u", "u", "u", "u", "y", "th", "y",  // ð..ÿ
};
// Base letters of U+0100..U+017F, one each; '1' stands for "ij", '2' for "oe".
constexpr std::string_view kLatinA =
    "aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiii11jjkkkllllllllllnnnnnnnnnoooooo22rrrrrrsssssssstttttt"
    "uuuuuuuuuuuuwwyyyzzzzzzs";
static_assert(kLatinA.size() == 128);

void AppendSortKey(std::string& key, std::string_view utf8) {
    for (std::size_t i = 0; i < utf8.size();) {
        const auto b = static_cast<unsigned char>(utf8[i]);
        if (b < 0x80) {
            // Lower case, so that '\' and '_' stand before the letters and a
            // disc's hits follow the disc itself.
            key += (b >= 'A' && b <= 'Z') ? static_cast<char>(b + 32) : static_cast<char>(b);
            ++i;
            continue;
        }
        char32_t cp;
        std::size_t len;
        if (!DecodeAt(utf8, i, cp, len)) {  // a stray byte stands for itself
            key += static_cast<char>(b);
            ++i;
            continue;
        }
        const char* base = nullptr;
        char one[2] = {0, 0};
        if (cp >= 0xC0 && cp <= 0xFF) {
            base = kLatin1[cp - 0xC0];
        } else if (cp >= 0x100 && cp <= 0x17F) {
            const char c = kLatinA[cp - 0x100];
            base = c == '1' ? "ij" : c == '2' ? "oe" : (one[0] = c, one);
        }
        if (base && *base)
            key += base;
        else  // beyond the Latin letters: case ignored, the rest as it is
            key += UpperCase(utf8.substr(i, len));
        i += len;
    }
    key += '\0';
    key.append(utf8);
}

}  // namespace

std::string SortKey(std::string_view utf8) {
    std::string key;
    key.reserve(utf8.size() * 2 + 1);
    AppendSortKey(key, utf8);
    return key;
}

void SortForList(std::vector<std::string>& texts) {
    // All keys in one string, each item's found by its place: one allocation
    // for the run instead of one per item.
    std::string arena;
    std::vector<std::size_t> at(texts.size() + 1);
    for (std::size_t i = 0; i < texts.size(); ++i) {
        at[i] = arena.size();
        AppendSortKey(arena, texts[i]);
    }
    at[texts.size()] = arena.size();
    auto key = [&](std::size_t i) { return std::string_view(arena).substr(at[i], at[i + 1] - at[i]); };
    // The first eight bytes of each key as one number, in byte order, settle
    // most comparisons without a call; equal ones go on to the whole keys.
    struct Item {
        std::uint64_t head;
        std::size_t index;
    };
    std::vector<Item> items(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string_view k = key(i);
        std::uint64_t head = 0;
        for (std::size_t b = 0; b < 8; ++b)
            head = head << 8 | (b < k.size() ? static_cast<unsigned char>(k[b]) : 0u);
        items[i] = {head, i};
    }
    std::sort(items.begin(), items.end(), [&](const Item& x, const Item& y) {
        if (x.head != y.head) return x.head < y.head;
        return key(x.index) < key(y.index);
    });
    std::vector<std::string> sorted;
    sorted.reserve(texts.size());
    for (const Item& it : items) sorted.push_back(std::move(texts[it.index]));
    texts = std::move(sorted);
}

}  // namespace ct
