#pragma once

#include "base/Calendar.h"
#include "storage/Defaults.h"
#include "storage/Store.h"

namespace tendel {

// Takes over, once, the reminders that an older version kept under "RemindersKey" in the settings:
// an array of objects with "title", "description", "time" (ISO 8601), "isOn" and
// "repeatEveryNMinutes". What does not decode is left where it is.
void importLegacyReminders(Store& store, Defaults& defaults, const Calendar& calendar, Instant now);

}  // namespace tendel
