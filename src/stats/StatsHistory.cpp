#include "stats/StatsHistory.h"

#include <algorithm>
#include <utility>

namespace tendel {

StatsHistory::StatsHistory(Store& store) : store_(store) {
    subscriptions_.push_back(store.historyWritten.connect(
        [this](const Store::Written& written) { noteWritten(written); }));
    subscriptions_.push_back(store.saved.connect([this] { lookAgain(); }));
}

std::span<const StatsRecord> StatsHistory::records() {
    static_cast<void>(readEvents());
    return records_;
}

std::span<const FocusRecord> StatsHistory::focus() {
    static_cast<void>(readFocus());
    return focus_;
}

void StatsHistory::noteWritten(const Store::Written& written) {
    if (hasReadEvents_ && written.event && *written.event <= lastEvent_) {
        records_.clear();
        titles_.clear();
        onDisk_ = 0;
        lastEvent_ = none;
        hasReadEvents_ = false;
        isOutdated_ = true;
    }
    if (written.focusBlock) staleFocus_ = std::min(staleFocus_, *written.focusBlock);
}

void StatsHistory::lookAgain() {
    bool isDifferent = std::exchange(isOutdated_, false);
    if (hasReadEvents_ && readEvents() == Difference::some) isDifferent = true;
    if (hasReadFocus_ && readFocus() == Difference::some) isDifferent = true;
    if (isDifferent) changed.emit();
}

StatsHistory::Difference StatsHistory::readEvents() {
    if (!std::exchange(hasReadEvents_, true)) {
        // With room for some weeks of answers: growing would take twice the memory meanwhile.
        const std::size_t count = store_.eventCount();
        records_.reserve(count + count / 32);
    }
    const auto forgotten = forgetDeletedReminders();
    const auto known = static_cast<std::ptrdiff_t>(onDisk_);
    const std::vector<StatsRecord> unsaved(records_.begin() + known, records_.end());
    records_.erase(records_.begin() + known, records_.end());
    store_.visitEvents(lastEvent_, [&](const Store::EventRow& row) {
        auto title = titles_.find(row.reminderTitle);
        if (title == titles_.end()) title = titles_.emplace(row.reminderTitle).first;
        records_.emplace_back(row.reminder, *title, reminderKind(row.kindRaw), row.fireDate,
                              outcome(row.outcomeRaw));
        if (!row.isOnDisk) return;
        lastEvent_ = row.id;
        ++onDisk_;
    });
    return std::equal(unsaved.begin(), unsaved.end(), records_.begin() + known, records_.end())
               ? forgotten
               : Difference::some;
}

StatsHistory::Difference StatsHistory::forgetDeletedReminders() {
    const bool isOneGone =
        std::ranges::any_of(reminders_, [&](ReminderId id) { return !store_.find(id); });
    reminders_.clear();
    for (const Reminder& reminder : store_.reminders())
        reminders_.push_back(reminder.id);
    if (!isOneGone) return Difference::none;
    auto difference = Difference::none;
    for (StatsRecord& record : records_) {
        const auto id = record.reminderID();
        if (!id || store_.find(*id)) continue;
        record.forgetReminder();
        difference = Difference::some;
    }
    return difference;
}

StatsHistory::Difference StatsHistory::readFocus() {
    hasReadFocus_ = true;
    const auto known = std::ranges::lower_bound(focusIds_, staleFocus_) - focusIds_.begin();
    staleFocus_ = std::numeric_limits<std::int64_t>::max();
    const std::vector<FocusRecord> before(focus_.begin() + known, focus_.end());
    focus_.erase(focus_.begin() + known, focus_.end());
    focusIds_.erase(focusIds_.begin() + known, focusIds_.end());
    for (const FocusBlock& block :
         store_.focusBlocksAfter(focusIds_.empty() ? none : focusIds_.back())) {
        focus_.emplace_back(block);
        focusIds_.push_back(block.id);
    }
    return std::equal(before.begin(), before.end(), focus_.begin() + known, focus_.end())
               ? Difference::none
               : Difference::some;
}

}  // namespace tendel
