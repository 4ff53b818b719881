#include "storage/ArchiveMerge.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <numeric>
#include <string>
#include <tuple>

namespace tendel {

namespace {

// Pairs those that are still without a partner and have the same key, in their order.
template <class KeyOf>
void pairUp(const std::vector<Reminder>& known, const std::vector<Reminder>& file,
            const KeyOf& keyOf, std::vector<std::optional<std::size_t>>& partners) {
    std::vector<bool> isTaken(known.size());
    for (const auto& partner : partners)
        if (partner) isTaken[*partner] = true;
    std::map<decltype(keyOf(known.front())), std::vector<std::size_t>> free;
    for (std::size_t i = known.size(); i-- > 0;)
        if (!isTaken[i]) free[keyOf(known[i])].push_back(i);
    for (std::size_t i = 0; i < file.size(); ++i) {
        if (partners[i]) continue;
        const auto found = free.find(keyOf(file[i]));
        if (found == free.end() || found->second.empty()) continue;
        partners[i] = found->second.back();
        found->second.pop_back();
    }
}

auto contentOf(const Reminder& reminder) {
    return std::tie(reminder.kindRaw, reminder.details, reminder.startHour, reminder.startMinute,
                    reminder.intervalMinutes, reminder.durationSeconds,
                    reminder.skipsWhenAwayChoice, reminder.isBreakSuggestion, reminder.symbolName,
                    reminder.animationChoice);
}

// The file's positions of what is left when each of the known ones has taken away one like it.
template <class Record, class KeyOf>
std::vector<std::size_t> without(const std::vector<Record>& known, const std::vector<Record>& file,
                                 const KeyOf& keyOf) {
    const auto sorted = [&](const std::vector<Record>& records) {
        std::vector<const Record*> order(records.size());
        std::transform(records.begin(), records.end(), order.begin(),
                       [](const Record& record) { return &record; });
        std::stable_sort(order.begin(), order.end(),
                         [&](const Record* a, const Record* b) { return keyOf(*a) < keyOf(*b); });
        return order;
    };
    const auto ours = sorted(known), theirs = sorted(file);
    std::vector<const Record*> left;
    std::set_difference(theirs.begin(), theirs.end(), ours.begin(), ours.end(),
                        std::back_inserter(left),
                        [&](const Record* a, const Record* b) { return keyOf(*a) < keyOf(*b); });
    std::vector<std::size_t> positions(left.size());
    std::transform(left.begin(), left.end(), positions.begin(), [&](const Record* record) {
        return static_cast<std::size_t>(record - file.data());
    });
    std::sort(positions.begin(), positions.end());
    return positions;
}

}  // namespace

ArchiveAdditions additionsTo(const Archive& known, const Archive& file) {
    ArchiveAdditions additions;
    auto& partners = additions.knownReminders;
    partners.resize(file.reminders.size());
    const auto pairReminders = [&](const auto& keyOf) {
        pairUp(known.reminders, file.reminders, keyOf, partners);
    };
    // Several are made at once when the user takes a selection from the library.
    pairReminders([](const Reminder& r) {
        return std::tuple_cat(std::tie(r.createdAt, r.title, r.isOn), contentOf(r));
    });
    pairReminders([](const Reminder& r) { return std::tie(r.createdAt, r.title); });
    pairReminders(
        [](const Reminder& r) { return std::tuple_cat(std::tie(r.createdAt), contentOf(r)); });
    pairReminders([](const Reminder& r) { return r.createdAt; });

    additions.events = without(known.events, file.events, [](const ReminderEvent& event) {
        return std::tie(event.fireDate, event.respondedAt, event.outcomeRaw, event.reminderTitle,
                        event.kindRaw);
    });
    additions.focusBlocks = without(known.focusBlocks, file.focusBlocks,
                                    [](const FocusBlock& block) { return block.start; });
    return additions;
}

}  // namespace tendel
