#include "reminders/DayTimeline.h"

#include <algorithm>
#include <set>
#include <tuple>
#include <utility>

#include "reminders/ReminderSchedule.h"
#include "reminders/ReminderScheduler.h"

namespace tendel {

namespace {

using Mark = DayTimeline::Mark;
using State = DayTimeline::State;

constexpr Duration moment = Duration(1);
// What marks of a full day stand for.
constexpr Duration stretch = std::chrono::minutes(5);

State stateOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::done:
        case Outcome::breakTaken:
            return State::done;
        case Outcome::snoozed:
            return State::snoozed;
        case Outcome::skipped:
        case Outcome::expired:
            break;
    }
    return State::missed;
}

bool comesBefore(const Mark& a, const Mark& b) {
    return std::tie(a.at, a.title) < std::tie(b.at, b.title);
}

// Equally spaced times of one reminder.
struct Run {
    const Reminder* reminder;
    Instant first;
    Duration step;
    std::int64_t count;
};

class Builder {
public:
    Builder(const Store& store, const ReminderScheduler& scheduler, const WorkingHours& hours,
            const Calendar& calendar, Instant now)
        : store_(store), scheduler_(scheduler), search_(calendar, hours) {
        timeline_.now = now;
        timeline_.day = calendar.day(now);
        const DayInterval& day = timeline_.day;
        timeline_.workStart = timeline_.workEnd = day.start;
        const Instant start = calendar.time(day, hours.start.hour, hours.start.minute);
        const Instant end = calendar.time(day, hours.end.hour, hours.end.minute);
        if (!hours.workdays.contains(day.weekday) || end <= start) return;
        timeline_.workStart = start;
        timeline_.workEnd = end;
    }

    DayTimeline build(std::span<const DayTimeline::Shown> shown) {
        addLive(shown);
        addHistory();
        findComing();
        std::int64_t all = std::ssize(timeline_.marks);
        for (const Run& run : coming_)
            all += run.count;
        if (all <= DayTimeline::mostListed)
            listComing();
        else
            join();
        std::ranges::sort(timeline_.marks, comesBefore);
        return std::move(timeline_);
    }

private:
    // What waits for the user, shown or kept.
    void addLive(std::span<const DayTimeline::Shown> shown) {
        for (const auto& [id, dueAt] : shown)
            addLive(id, dueAt, {.state = State::showing});
        for (const Upcoming::Item& item : *scheduler_.kept())
            if (item.missedAt)
                addLive(item.id, *item.missedAt,
                        {.state = State::kept, .keptReason = item.keptReason});
    }

    void addLive(ReminderId id, Instant dueAt, Mark mark) {
        const Reminder* reminder = store_.find(id);
        if (!reminder || !timeline_.day.contains(dueAt) || !live_.emplace(id, dueAt).second) return;
        mark.at = dueAt;
        mark.title = reminder->displayTitle();
        mark.kind = reminder->kind();
        timeline_.marks.push_back(std::move(mark));
    }

    void addHistory() {
        for (ReminderEvent& event : store_.eventsDue(timeline_.day.start, timeline_.day.end)) {
            // With the clock set back an answered alert is due once more.
            if (event.reminder && live_.contains({*event.reminder, event.fireDate})) continue;
            timeline_.marks.push_back({.at = event.fireDate,
                                       .state = stateOf(event.outcome()),
                                       .title = std::move(event.reminderTitle),
                                       .kind = event.kind(),
                                       .respondedAt = event.respondedAt});
        }
    }

    // Nothing fires before the scheduler's next firing, which knows of the pause and of what has
    // fired.
    void findComing() {
        const auto& upcoming = *scheduler_.upcoming();
        if (!upcoming) return;
        const Instant from = std::max(upcoming->fireDate, timeline_.day.start) - moment;
        for (const Reminder& reminder : store_.reminders()) {
            if (!reminder.isOn) continue;
            const auto snooze = scheduler_.snoozes().find(reminder.id);
            if (snooze == scheduler_.snoozes().end()) {
                findComing(reminder, from);
                continue;
            }
            if (timeline_.day.contains(snooze->second))
                coming_.push_back({&reminder, snooze->second, stretch, 1});
            findComing(reminder, snooze->second);
        }
    }

    // The chain's times strictly after `t`. Where the window cannot open or close they follow one
    // another at even steps, and the search need not be asked for each.
    void findComing(const Reminder& reminder, Instant t) {
        const Duration step = std::chrono::minutes(ReminderSchedule::of(reminder).intervalMinutes);
        while (const auto first = search_.nextFireDate(reminder, t)) {
            if (*first >= timeline_.day.end) return;
            Instant end = timeline_.day.end;
            for (const Instant change : {timeline_.workEnd, timeline_.workStart})
                if (*first < change) end = std::min(end, change);
            const std::int64_t count = (end - moment - *first) / step + 1;
            coming_.push_back({&reminder, *first, step, count});
            t = *first + (count - 1) * step;
        }
    }

    static Mark comingMark(const Reminder& reminder, Instant at) {
        return {.at = at, .title = reminder.displayTitle(), .kind = reminder.kind()};
    }

    void listComing() {
        for (const Run& run : coming_)
            for (std::int64_t i = 0; i < run.count; ++i)
                timeline_.marks.push_back(comingMark(*run.reminder, run.first + i * run.step));
    }

    // One mark for each stretch, state and kind; by counting, since a thousand reminders that come
    // every minute are more than a million alerts.
    void join() {
        const Instant start = timeline_.day.start;
        const auto stretches = (timeline_.day.end - start - moment) / stretch + 1;
        std::vector<Mark> joined(static_cast<std::size_t>(stretches * DayTimeline::states * 2));
        for (Mark& mark : joined)
            mark.count = 0;
        const auto placeOf = [&](Instant at, State state, ReminderKind kind) -> Mark& {
            const auto index = ((at - start) / stretch * DayTimeline::states + int(state)) * 2 +
                               (kind == ReminderKind::private_ ? 1 : 0);
            return joined[static_cast<std::size_t>(index)];
        };
        for (Mark& mark : timeline_.marks) {
            Mark& place = placeOf(mark.at, mark.state, mark.kind);
            const int count = place.count + mark.count;
            if (place.count == 0 || comesBefore(mark, place)) place = std::move(mark);
            place.count = count;
        }
        for (const Run& run : coming_) {
            const ReminderKind kind = run.reminder->kind();
            for (std::int64_t i = 0; i < run.count;) {
                const Instant at = run.first + i * run.step;
                const Instant end = at + (stretch - (at - start) % stretch);
                const auto inside = std::min(run.count - i, (end - moment - at) / run.step + 1);
                Mark& place = placeOf(at, State::coming, kind);
                const int count = place.count + static_cast<int>(inside);
                if (place.count == 0 || at < place.at) place = comingMark(*run.reminder, at);
                place.count = count;
                i += inside;
            }
        }
        std::erase_if(joined, [](const Mark& mark) { return mark.count == 0; });
        timeline_.marks = std::move(joined);
    }

    const Store& store_;
    const ReminderScheduler& scheduler_;
    ScheduleSearch search_;
    DayTimeline timeline_;
    std::set<std::pair<ReminderId, Instant>> live_;
    std::vector<Run> coming_;
};

}  // namespace

DayTimeline DayTimeline::of(const Store& store, const ReminderScheduler& scheduler,
                            const WorkingHours& hours, const Calendar& calendar, Instant now,
                            std::span<const Shown> shown) {
    return Builder(store, scheduler, hours, calendar, now).build(shown);
}

int DayTimeline::count(State state) const {
    int all = 0;
    for (const Mark& mark : marks)
        if (mark.state == state) all += mark.count;
    return all;
}

}  // namespace tendel
