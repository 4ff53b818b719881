#include "storage/LegacyReminderImport.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "base/Log.h"
#include "storage/SettingCodecs.h"

namespace tendel {

namespace {

constexpr auto legacyKey = "RemindersKey";

std::optional<Reminder> decodeLegacy(const nlohmann::json& entry, const Calendar& calendar,
                                     Instant now) {
    const auto title = member<std::string>(entry, "title");
    const auto details = member<std::string>(entry, "description");
    const auto time = member<Instant>(entry, "time");
    const auto isOn = member<bool>(entry, "isOn");
    const auto interval = member<int>(entry, "repeatEveryNMinutes");
    if (!title || !details || !time || !isOn || !interval) return std::nullopt;
    const LocalTime start = calendar.localTime(*time);
    Reminder reminder;
    reminder.title = *title;
    reminder.details = *details;
    reminder.startHour = start.hour;
    reminder.startMinute = start.minute;
    reminder.intervalMinutes = *interval;
    reminder.isOn = *isOn;
    reminder.createdAt = now;
    return reminder;
}

bool hasSameContent(const Reminder& a, Reminder b) {
    b.id = a.id;
    b.createdAt = a.createdAt;
    return a == b;
}

}  // namespace

void importLegacyReminders(Store& store, Defaults& defaults, const Calendar& calendar,
                           Instant now) {
    const nlohmann::json& entries = defaults.json(legacyKey);
    if (!entries.is_array()) return;
    std::vector<Reminder> imported;
    for (const nlohmann::json& entry : entries) {
        auto reminder = decodeLegacy(entry, calendar, now);
        if (!reminder) return;
        // An earlier start may have taken it over without being able to remove the key.
        const bool isKnown =
            std::any_of(store.reminders().begin(), store.reminders().end(),
                        [&](const Reminder& known) { return hasSameContent(known, *reminder); });
        if (!isKnown) imported.push_back(std::move(*reminder));
    }
    const auto saved = store.save([&](Store::Writer& writer) {
        for (const Reminder& reminder : imported)
            writer.insert(reminder);
    });
    if (!saved) return log(LogLevel::warning, "storage", saved.error());
    static_cast<void>(defaults.remove(legacyKey));
}

}  // namespace tendel
