// Output for scripts: --format tsv (one record a line, fields separated by
// tabs) or json (one document), always UTF-8, and --slashes for '/' in the
// catalogue's '\' paths. Text output stays with each command, for people.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "cli.h"

namespace ct::cli {

enum class Format { Text, Tsv, Json };
Format FormatOf(const Context& ctx);

// A catalogue text as UTF-8 (a line that isn't valid UTF-8 is Windows-1252),
// with '\' turned into '/' when --slashes was given and `isPath`.
std::string Value(const Context& ctx, std::string_view text, bool isPath = false);
// The same into `out`, whose room is used again: for long listings.
void ValueInto(const Context& ctx, std::string_view text, bool isPath, std::string& out);

// What JSON takes as a number: -?digits(.digits)?, no leading zeros.
bool IsJsonNumber(std::string_view s);

// A JSON string literal of UTF-8 text.
std::string JsonString(std::string_view utf8);

struct Field {
    const char* name;
    bool number = false;  // a JSON number when it reads as one, else a string
};

// Records of one shape: tsv lines, or a JSON array of objects (or, with
// `single`, the one object).
class Records {
public:
    Records(const Context& ctx, std::vector<Field> fields, bool single = false);
    ~Records();  // closes the JSON document
    // The values in the order of the fields, already passed through Value().
    void Add(const std::vector<std::string>& values);
    void Add(std::initializer_list<std::string_view> values) { Add(values.begin(), values.size()); }
    // For many records that share all fields but the last: Lead() takes the
    // shared ones, then AddLed() each last field. tsv writes the shared
    // fields as it made them once.
    void Lead(std::initializer_list<std::string_view> values);
    void AddLed(std::string_view last);

private:
    static constexpr std::size_t kFlushAt = std::size_t{1} << 15;
    void Add(const std::string_view* values, std::size_t count);
    void Flush();
    const Context& ctx_;
    std::vector<Field> fields_;
    bool single_;
    Format format_;
    std::size_t count_ = 0;
    std::string line_;  // tsv records not yet written
    std::string lead_;  // tsv: the shared fields, each with its tab
    std::vector<std::string> leadValues_;  // json: the same as they came,
    std::vector<std::string_view> led_;    // and a record's fields over them
};

}  // namespace ct::cli
