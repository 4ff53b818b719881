#pragma once

#include <optional>

namespace tendel {

// Why a due reminder was held back. Ordered: of two reasons the larger one is told.
enum class KeptReason { focus = 0, presentation = 1, call = 2, away = 3 };

constexpr std::optional<KeptReason> keptReason(int raw) {
    if (raw < 0 || raw > 3) return std::nullopt;
    return static_cast<KeptReason>(raw);
}

}  // namespace tendel
