#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Instant.h"

namespace tendel {

// "2026-03-02T08:15:30Z" for `t`, to the second.
std::string formatIso8601(Instant t);
// The reverse; nothing when the text is not of this form. The offset may be Z or ±hh:mm.
std::optional<Instant> parseIso8601(std::string_view text);

}  // namespace tendel
