#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "menubar/NextReminderCard.h"
#include "reminders/DayTimeline.h"

namespace tendel {

// A bead for each alert of the day, by time. Snoozed ones have none: their new time has its own.
std::vector<NextReminderCard::Bead> beadsOf(const DayTimeline& day);

// At most `most` beads, each of which stands for as many neighbours as the others: where they
// differ, what is left over counts for the next one, so that the whole row keeps its shares.
std::vector<NextReminderCard::Bead> joined(std::span<const NextReminderCard::Bead> beads,
                                           std::size_t most);

}  // namespace tendel
