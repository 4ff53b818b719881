#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tendel {

// `text` without white space and line ends at both ends (Unicode's, UTF-8).
std::string_view trimmed(std::string_view text);

// `text` with case and accents folded away, independent of the locale: two texts that a person
// would call the same word give the same result. UTF-8; ill-formed bytes become U+FFFD.
std::string foldedForSearch(std::string_view text);

// Where the first byte lies that no UTF-8 text file holds: one of an ill-formed sequence, or NUL.
std::optional<std::size_t> firstIllFormed(std::string_view text);
// Replaces each such byte by U+FFFD.
void makeWellFormed(std::string& text);

}  // namespace tendel
