// The order of every list: discs, folders, files and hits in the windows and
// in the terminal tool's output. Sorted as a reader expects: case ignored,
// letters with diacritics beside their base letter (Ä with A, ø with o), ß
// as ss, and texts that are alike in all that ordered by their exact bytes,
// so that the order is total and the same everywhere.
//
// It is built as a key, computed once per item: two items compare by their
// keys' bytes alone, and no comparison folds case again. That is what keeps
// a list of 32,000 hits quick to fill.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ct {

// The key of a UTF-8 text: the folded text, a NUL, then the text itself.
// Compare keys as bytes (std::string's operator<).
std::string SortKey(std::string_view utf8);

// Sorts texts into list order, each key made once.
void SortForList(std::vector<std::string>& texts);

}  // namespace ct
