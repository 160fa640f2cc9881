#include "output.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ostream>

#include "core/text.h"

namespace ct::cli {

bool IsJsonNumber(std::string_view s) {
    std::size_t i = 0;
    if (i < s.size() && s[i] == '-') ++i;
    const std::size_t start = i;
    while (i < s.size() && s[i] >= '0' && s[i] <= '9') ++i;
    if (i == start || (s[start] == '0' && i - start > 1)) return false;
    if (i < s.size() && s[i] == '.') {
        const std::size_t fraction = ++i;
        while (i < s.size() && s[i] >= '0' && s[i] <= '9') ++i;
        if (i == fraction) return false;
    }
    return i == s.size();
}

Format FormatOf(const Context& ctx) {
    const std::string f = ctx.args.Get("--format", "text");
    return f == "tsv" ? Format::Tsv : f == "json" ? Format::Json : Format::Text;
}

void ValueInto(const Context& ctx, std::string_view text, bool isPath, std::string& out) {
    if (IsValidUtf8(text))
        out.assign(text);  // as DecodeLine takes it, into the room `out` has
    else
        out = Cp1252ToUtf8(text);  // what DecodeLine gives, without checking it again
    if (isPath && ctx.args.Has("--slashes"))
        for (char& c : out)
            if (c == '\\') c = '/';
}

std::string Value(const Context& ctx, std::string_view text, bool isPath) {
    std::string out;
    ValueInto(ctx, text, isPath, out);
    return out;
}

std::string JsonString(std::string_view utf8) {
    std::string out = "\"";
    for (const char ch : utf8) {
        const auto c = static_cast<unsigned char>(ch);
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\r': out += "\\r"; break;
        case '\t': out += "\\t"; break;
        default:
            if (c < 0x20) {
                char buffer[8];
                std::snprintf(buffer, sizeof buffer, "\\u%04x", c);
                out += buffer;
            } else {
                out += ch;
            }
        }
    }
    return out + "\"";
}

Records::Records(const Context& ctx, std::vector<Field> fields, bool single)
    : ctx_(ctx), fields_(std::move(fields)), single_(single), format_(FormatOf(ctx)) {}

namespace {

// Whether `v` may hold a tab or a line break: any byte below 14, eight at a
// time (a value almost never has one, and then only this is paid).
bool HasControl(std::string_view v) {
    constexpr std::uint64_t kOnes = 0x0101010101010101ULL, kHigh = 0x8080808080808080ULL;
    std::size_t i = 0;
    for (std::uint64_t w; i + 8 <= v.size(); i += 8) {
        std::memcpy(&w, v.data() + i, 8);
        if ((w - 14 * kOnes) & ~w & kHigh) return true;
    }
    for (; i < v.size(); ++i)
        if (static_cast<unsigned char>(v[i]) < 14) return true;
    return false;
}

}  // namespace

void Records::Flush() {
    ctx_.out->write(line_.data(), static_cast<std::streamsize>(line_.size()));
    line_.clear();
}

Records::~Records() {
    Flush();
    if (format_ != Format::Json) return;
    if (!single_)
        *ctx_.out << (count_ ? "\n]\n" : "[]\n");
    else if (!count_)
        *ctx_.out << "{}\n";
}

void Records::Add(const std::vector<std::string>& values) {
    std::string_view views[16];
    std::vector<std::string_view> more;
    std::string_view* v = views;
    if (values.size() > std::size(views)) v = (more = {values.begin(), values.end()}).data();
    else std::copy(values.begin(), values.end(), views);
    Add(v, values.size());
}

namespace {

// A tab or a line break inside a value would split the record: they become
// blanks.
void AppendTsvField(std::string& line, std::string_view v) {
    const bool split = HasControl(v);
    const std::size_t at = line.size();
    line += v;
    if (split)
        for (auto c = line.begin() + static_cast<std::ptrdiff_t>(at); c != line.end(); ++c)
            if (*c == '\t' || *c == '\n' || *c == '\r') *c = ' ';
}

}  // namespace

void Records::Lead(std::initializer_list<std::string_view> values) {
    if (format_ != Format::Tsv) {
        leadValues_.assign(values.begin(), values.end());
        led_.assign(leadValues_.begin(), leadValues_.end());
        led_.emplace_back();
        return;
    }
    lead_.clear();
    for (const std::string_view v : values) {
        AppendTsvField(lead_, v);
        lead_ += '\t';
    }
}

void Records::AddLed(std::string_view last) {
    if (format_ != Format::Tsv) {
        led_.back() = last;
        Add(led_.data(), led_.size());
        return;
    }
    line_ += lead_;
    AppendTsvField(line_, last);
    line_ += '\n';
    if (line_.size() >= kFlushAt) Flush();
    ++count_;
}

void Records::Add(const std::string_view* values, std::size_t count) {
    std::ostream& out = *ctx_.out;
    if (format_ == Format::Tsv) {
        // Records are made whole in one buffer and written some tens of
        // kilobytes at a time: a stream call per byte, and then one per
        // record, cost more than all the rest of a long listing.
        for (std::size_t i = 0; i < count; ++i) {
            if (i) line_ += '\t';
            AppendTsvField(line_, values[i]);
        }
        line_ += '\n';
        if (line_.size() >= kFlushAt) Flush();
    } else {
        out << (single_ ? "" : count_ ? ",\n  " : "[\n  ") << '{';
        for (std::size_t i = 0; i < count && i < fields_.size(); ++i) {
            out << (i ? ", " : "") << JsonString(fields_[i].name) << ": ";
            if (fields_[i].number && IsJsonNumber(values[i]))
                out << values[i];
            else
                out << JsonString(values[i]);
        }
        out << '}' << (single_ ? "\n" : "");
    }
    ++count_;
}

}  // namespace ct::cli
