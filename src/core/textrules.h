// The two small text rules the catalogue rests on: the label as a file name,
// and the one text form of a time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ct {

// Removes every \ / : * ? " < > | from a label, in that order, and nothing
// else: case, inner blanks, dots and length stay. Never fails. Trimming is the
// caller's job, so that the add dialog and the label editor can show the user
// what became of the label.
std::string CleanLabel(std::string_view label);

// Blanks trimmed from both ends (only the blank, as the label boxes need).
std::string TrimBlanks(std::string_view text);

// A Windows file time (100 ns units since 1601-01-01 00:00:00 UTC) as
// "DD.MM.YYYY HH:MM:SS", no time zone applied. The year is never padded. A
// value that can't be converted (negative, or past the year 30827 as Windows
// refuses it) gives "00.00.0 00:00:00".
std::string FileTimeText(std::int64_t fileTime);

// Seconds since the Unix epoch (UTC) plus nanoseconds as a Windows file time.
std::int64_t FileTimeFromUnix(std::int64_t seconds, std::uint32_t nanoseconds);

// A description as it is stored, on every level: every CR LF becomes one blank,
// then one left-to-right pass turns each pair of blanks into one blank, so a
// run of n blanks becomes ceil(n/2). Leading and trailing blanks stay. A lone
// LF or CR (what a Linux text box gives) is treated like CR LF, since a
// catalogue line can't hold one.
std::string NormaliseDescription(std::string_view text);

}  // namespace ct
