#include "stats/StatsRecord.h"

#include <algorithm>
#include <limits>

#include "stats/Checked.h"

namespace tendel {

StatsRecord::StatsRecord(std::optional<ReminderId> reminder, std::string_view title,
                         ReminderKind ofKind, Instant due, Outcome answer)
    : dueAt(due),
      kind(ofKind),
      outcome(answer),
      hasReminder_(reminder.has_value()),
      titleSize_(static_cast<std::uint32_t>(
          std::min<std::size_t>(title.size(), std::numeric_limits<std::uint32_t>::max()))),
      reminder_(reminder.value_or(ReminderId{})),
      title_(title.data()) {}

StatsRecord::StatsRecord(const ReminderEvent& event)
    : StatsRecord(event.reminder, event.reminderTitle, event.kind(), event.fireDate,
                  event.outcome()) {}

bool operator==(const StatsRecord& a, const StatsRecord& b) {
    return a.dueAt == b.dueAt && a.kind == b.kind && a.outcome == b.outcome &&
           a.reminderID() == b.reminderID() && a.title() == b.title();
}

FocusRecord::FocusRecord(const FocusBlock& block)
    : start(block.start), focusedSeconds(block.focusedSeconds), finished(block.finished) {}

void StatsTally::count(Outcome outcome, std::int64_t times) {
    switch (outcome) {
        case Outcome::done:
        case Outcome::breakTaken:
            done = checkedSum(done, times);
            return;
        case Outcome::skipped:
        case Outcome::expired:
            missed = checkedSum(missed, times);
            return;
        case Outcome::snoozed:
            snoozed = checkedSum(snoozed, times);
            return;
    }
}

StatsTally& StatsTally::operator+=(const StatsTally& other) {
    done = checkedSum(done, other.done);
    missed = checkedSum(missed, other.missed);
    snoozed = checkedSum(snoozed, other.snoozed);
    return *this;
}

std::optional<double> StatsTally::doneRate() const {
    if (done == 0 && missed == 0) return std::nullopt;
    return static_cast<double>(done) / static_cast<double>(checkedSum(done, missed));
}

std::string StatsTally::countsText() const {
    std::string text;
    const auto add = [&](std::int64_t count, const char* word) {
        if (count <= 0) return;
        if (!text.empty()) text += " · ";
        text += std::to_string(count) + " " + word;
    };
    add(done, "done");
    add(missed, "missed");
    add(snoozed, "snoozed");
    return text;
}

}  // namespace tendel
