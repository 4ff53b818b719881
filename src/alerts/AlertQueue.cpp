#include "alerts/AlertQueue.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace tendel {

namespace {

// A waiting alert older than this is no longer worth showing.
constexpr Duration longestWait = std::chrono::minutes(5);

template <class Predicate>
std::vector<AlertQueue::Entry> extract(std::vector<AlertQueue::Entry>& from, Predicate predicate) {
    const auto end = std::stable_partition(from.begin(), from.end(), predicate);
    std::vector<AlertQueue::Entry> matching(std::make_move_iterator(from.begin()),
                                            std::make_move_iterator(end));
    from.erase(from.begin(), end);
    return matching;
}

}  // namespace

AlertId AlertQueue::Entry::newId() {
    static std::uint64_t last = 0;
    return AlertId{++last};
}

AlertQueue::Entry AlertQueue::Entry::of(const Upcoming::Item& item, Instant fireDate, Instant now) {
    return {.source = item.id,
            .title = item.title,
            .details = item.details,
            // Kept reminders come back in one batch; each was due at a time of its own, and that is
            // what history tells.
            .fireDate = item.missedAt.value_or(fireDate),
            .durationSeconds = item.durationSeconds,
            .waitingSince = now,
            .skipsWhenAway = item.skipsWhenAway,
            .missedAt = item.missedAt,
            .keptReason = item.keptReason,
            .systemImage = item.systemImage,
            .animation = item.animation};
}

AlertQueue::Entry AlertQueue::Entry::of(const FocusAlert& alert, Instant fireDate) {
    return {.source = alert, .fireDate = fireDate, .waitingSince = fireDate, .systemImage = "bell"};
}

AlertQueue::Entry AlertQueue::Entry::sample(const Upcoming::Item& item, Instant now) {
    Entry entry = of(item, now, now);
    entry.source = Sample{};
    return entry;
}

std::optional<ReminderId> AlertQueue::Entry::reminderId() const {
    const auto* reminder = std::get_if<ReminderId>(&source);
    return reminder ? std::optional(*reminder) : std::nullopt;
}

std::optional<Upcoming::Item> AlertQueue::Entry::item() const {
    const auto reminder = reminderId();
    if (!reminder) return std::nullopt;
    return Upcoming::Item{.id = *reminder,
                          .title = title,
                          .details = details,
                          .durationSeconds = durationSeconds,
                          .skipsWhenAway = skipsWhenAway,
                          .missedAt = missedAt,
                          .keptReason = keptReason,
                          .systemImage = systemImage,
                          .animation = animation};
}

std::optional<std::string> AlertQueue::Entry::notice(const Calendar& calendar) const {
    if (keptReason == KeptReason::presentation) return "Held during your presentation";
    if (keptReason == KeptReason::call) return "Held during your call";
    if (keptReason == KeptReason::away && missedAt)
        return "Missed at " + calendar.formatTime(*missedAt) + " · you were away";
    // The user knows of a focus block: they started it.
    return std::nullopt;
}

std::vector<DayTimeline::Shown> AlertQueue::shownReminders() const {
    std::vector<DayTimeline::Shown> all;
    const auto add = [&](const Entry& entry) {
        if (const auto id = entry.reminderId()) all.push_back({*id, entry.fireDate});
    };
    if (current) add(*current);
    std::ranges::for_each(waiting, add);
    return all;
}

std::vector<AlertQueue::Entry> AlertQueue::enqueue(std::vector<Entry> entries) {
    std::vector<Entry> superseded;
    for (Entry& entry : entries) {
        const auto sameSource = [&](const Entry& other) {
            return isSameSource(other.source, entry.source);
        };
        if (current && sameSource(*current)) {
            superseded.push_back(std::move(entry));
            continue;
        }
        const auto older = std::ranges::find_if(waiting, sameSource);
        if (older != waiting.end()) {
            superseded.push_back(std::move(*older));
            waiting.erase(older);
        }
        waiting.insert(entry.isFocus() ? waiting.begin() : waiting.end(), std::move(entry));
    }
    return superseded;
}

std::vector<AlertQueue::Entry> AlertQueue::removeStale(Instant now) {
    return extract(waiting,
                   [now](const Entry& entry) { return now - entry.waitingSince > longestWait; });
}

std::optional<Instant> AlertQueue::nextStale() const {
    if (waiting.empty()) return std::nullopt;
    return std::ranges::min(waiting, {}, &Entry::waitingSince).waitingSince + longestWait +
           Duration(1);
}

void AlertQueue::restartWaiting(Instant now) {
    for (Entry& entry : waiting)
        entry.waitingSince = now;
}

std::vector<AlertQueue::Entry> AlertQueue::removeAll() {
    std::vector<Entry> all = removeWaiting();
    if (current) all.insert(all.begin(), *std::exchange(current, std::nullopt));
    return all;
}

std::vector<AlertQueue::Entry> AlertQueue::removeWaiting() {
    return std::exchange(waiting, {});
}

bool AlertQueue::remove(const std::unordered_set<ReminderId>& reminders) {
    const auto isAmong = [&](const Entry& entry) {
        const auto id = entry.reminderId();
        return id && reminders.contains(*id);
    };
    std::erase_if(waiting, isAmong);
    return current && isAmong(*current);
}

bool AlertQueue::removeFocusAlerts() {
    std::erase_if(waiting, &Entry::isFocus);
    return current && current->isFocus();
}

bool AlertQueue::update(ReminderId reminder, const Upcoming::Item& edited) {
    const auto rewrite = [&](Entry& entry) {
        if (entry.reminderId() != reminder) return;
        entry.title = edited.title;
        entry.details = edited.details;
        // What the running break counts down from stays true to its end.
        if (!entry.breakEndsAt) entry.durationSeconds = edited.durationSeconds;
        entry.systemImage = edited.systemImage;
        entry.animation = edited.animation;
    };
    for (Entry& entry : waiting)
        rewrite(entry);
    if (!current) return false;
    const Entry before = *current;
    rewrite(*current);
    return *current != before;
}

void AlertQueue::takeNext() {
    current.reset();
    if (waiting.empty()) return;
    current = std::move(waiting.front());
    waiting.erase(waiting.begin());
}

bool isSameSource(const AlertQueue::Entry::Source& a, const AlertQueue::Entry::Source& b) {
    const auto* first = std::get_if<ReminderId>(&a);
    const auto* second = std::get_if<ReminderId>(&b);
    if (first && second) return *first == *second;
    return a.index() == b.index();
}

}  // namespace tendel
