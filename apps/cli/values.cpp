// Sizes and dates as people type them, turned into the forms the engine reads.
#include <cctype>

#include "cli.h"
#include "core/search.h"

namespace ct::cli {

namespace {

bool Digits(std::string_view s) {
    if (s.empty()) return false;
    for (char c : s)
        if (!std::isdigit(static_cast<unsigned char>(c))) return false;
    return true;
}

std::string Lower(std::string_view s) {
    std::string out(s);
    for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

}  // namespace

bool ParseSize(std::string_view text, std::string& bytes) {
    std::size_t end = 0;
    const bool negative = !text.empty() && text[0] == '-';
    if (negative) end = 1;
    const std::size_t start = end;
    while (end < text.size() && (std::isdigit(static_cast<unsigned char>(text[end])) || text[end] == '.'))
        ++end;
    const std::string_view number = text.substr(start, end - start);
    const std::size_t point = number.find('.');
    const std::string_view whole = number.substr(0, point);
    const std::string_view fraction = point == std::string_view::npos ? "" : number.substr(point + 1);
    if (!Digits(whole) || (point != std::string_view::npos && !Digits(fraction))) return false;

    const std::string unit = Lower(text.substr(end));
    int power = 0;
    if (!unit.empty() && unit != "b") {
        const std::string_view letters = "kmgt";
        const std::size_t at = letters.find(unit[0]);
        if (at == std::string_view::npos) return false;
        const std::string rest = unit.substr(1);
        if (!rest.empty() && rest != "b" && rest != "ib") return false;
        power = static_cast<int>(at) + 1;
    }
    // Exact: the digits as one integer times 1024^power, the point put back
    // where the fraction says (the engine keeps four decimals of it).
    if (whole.size() + fraction.size() > 24) return false;
    unsigned __int128 scaled = 0;
    for (char c : std::string(whole) + std::string(fraction))
        scaled = scaled * 10 + static_cast<unsigned>(c - '0');
    for (int i = 0; i < power; ++i) scaled *= 1024;
    // Built from the back: the digits, the point after the fraction's
    // places, a leading 0 where the number is below 1, the sign.
    std::string reversed;
    for (std::size_t place = 0; scaled != 0 || place <= fraction.size(); ++place) {
        if (place == fraction.size() && place != 0) reversed.push_back('.');
        reversed.push_back(static_cast<char>('0' + static_cast<int>(scaled % 10)));
        scaled /= 10;
    }
    if (negative) reversed.push_back('-');
    bytes.assign(reversed.rbegin(), reversed.rend());
    return true;
}

bool ParseDate(std::string_view text, std::string& date) {
    std::string typed(text);
    // yyyy-mm-dd[( |T)hh:mm[:ss]] becomes dd.mm.yyyy[ hh:mm[:ss]].
    if (typed.size() >= 10 && typed[4] == '-' && typed[7] == '-' && Digits(typed.substr(0, 4)) &&
        Digits(typed.substr(5, 2)) && Digits(typed.substr(8, 2))) {
        std::string rest = typed.substr(10);
        if (!rest.empty()) {
            if (rest[0] != ' ' && rest[0] != 'T') return false;
            rest[0] = ' ';
        }
        typed = typed.substr(8, 2) + "." + typed.substr(5, 2) + "." + typed.substr(0, 4) + rest;
    }
    SearchTime time = 0;
    if (!ReadDate(typed, time)) return false;
    date = DateText(time);
    return true;
}

}  // namespace ct::cli
