#include "ui/panel/Beads.h"

#include <algorithm>
#include <array>

namespace tendel {

namespace {

using Bead = NextReminderCard::Bead;

std::optional<Bead> beadOf(DayTimeline::State state) {
    switch (state) {
        case DayTimeline::State::done:
            return Bead::done;
        case DayTimeline::State::missed:
            return Bead::missed;
        case DayTimeline::State::snoozed:
            return std::nullopt;
        case DayTimeline::State::kept:
        case DayTimeline::State::showing:
        case DayTimeline::State::coming:
            break;
    }
    return Bead::coming;
}

}  // namespace

std::vector<Bead> beadsOf(const DayTimeline& day) {
    std::vector<Bead> beads;
    for (const DayTimeline::Mark& mark : day.marks)
        if (const auto bead = beadOf(mark.state))
            beads.insert(beads.end(), static_cast<std::size_t>(mark.count), *bead);
    return beads;
}

std::vector<Bead> joined(std::span<const Bead> beads, std::size_t most) {
    if (beads.size() <= most) return {beads.begin(), beads.end()};
    std::vector<Bead> row;
    // In units of one bead divided by `most`, so that every share is a whole number.
    std::array<std::ptrdiff_t, 3> left{};
    const auto share = static_cast<std::ptrdiff_t>(most);
    const auto whole = std::ssize(beads);
    std::ptrdiff_t taken = 0;
    for (const Bead bead : beads) {
        left[static_cast<std::size_t>(bead)] += share;
        taken += share;
        // The first of the fullest: of two that are even, the earlier state.
        for (; taken >= whole; taken -= whole) {
            const auto fullest = std::ranges::max_element(left);
            *fullest -= whole;
            row.push_back(static_cast<Bead>(fullest - left.begin()));
        }
    }
    return row;
}

}  // namespace tendel
