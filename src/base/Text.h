#pragma once

#include <string>
#include <string_view>

namespace tendel {

// `text` without white space and line ends at both ends (Unicode's, UTF-8).
std::string_view trimmed(std::string_view text);

// `text` with case and accents folded away, independent of the locale: two texts that a person
// would call the same word give the same result. UTF-8; ill-formed bytes become U+FFFD.
std::string foldedForSearch(std::string_view text);

}  // namespace tendel
