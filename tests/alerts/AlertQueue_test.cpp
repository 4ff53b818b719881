#include "alerts/AlertQueue.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace tendel {
namespace {

using namespace std::chrono_literals;
using Entry = AlertQueue::Entry;

const Instant now = *parseIso8601("2026-03-02T10:00:00Z");

Entry titled(Entry entry, std::string title) {
    entry.title = std::move(title);
    return entry;
}

Entry reminder(int id, const std::string& title = {}, Instant due = now) {
    Upcoming::Item item;
    item.id = {id};
    return titled(Entry::of(item, due, due), title.empty() ? std::to_string(id) : title);
}

Entry focus(int minutes) {
    FocusAlert alert;
    alert.minutes = minutes;
    return titled(Entry::of(alert, now), "f" + std::to_string(minutes));
}

Entry sample() {
    return titled(Entry::sample({}, now), "s");
}

std::string titles(const std::vector<Entry>& entries) {
    std::string all;
    for (const Entry& entry : entries)
        all += (all.empty() ? "" : " ") + entry.title;
    return all;
}

// "current | waiting".
std::string state(const AlertQueue& queue) {
    return (queue.current ? queue.current->title : "-") + " | " + titles(queue.waiting);
}

TEST(AlertQueueTest, EnqueueSupersedesTheSameSourceAndLetsFocusAlertsJumpTheLine) {
    struct Row {
        std::optional<Entry> current;
        std::vector<Entry> waiting, added;
        std::string superseded, after;
    };
    for (const Row& row : {
             Row{{}, {}, {reminder(1), reminder(2)}, "", "- | 1 2"},
             Row{reminder(1), {reminder(2)}, {reminder(1, "again")}, "again", "1 | 2"},
             Row{reminder(1),
                 {reminder(2), reminder(3)},
                 {reminder(2, "newer")},
                 "2",
                 "1 | 3 newer"},
             Row{reminder(1),
                 {reminder(2), reminder(3), reminder(4)},
                 {focus(5)},
                 "",
                 "1 | f5 2 3 4"},
             Row{reminder(1), {focus(5), reminder(2)}, {focus(6)}, "f5", "1 | f6 2"},
             Row{focus(5), {}, {focus(6), reminder(1)}, "f6", "f5 | 1"},
             Row{reminder(1), {sample(), reminder(2)}, {sample()}, "s", "1 | 2 s"},
             Row{{}, {}, {reminder(1, "a"), reminder(1, "b")}, "a", "- | b"},
         }) {
        AlertQueue queue{row.current, row.waiting};
        EXPECT_EQ(titles(queue.enqueue(row.added)), row.superseded);
        EXPECT_EQ(state(queue), row.after);
    }
}

TEST(AlertQueueTest, WaitingForMoreThanFiveMinutesIsStale) {
    AlertQueue queue{reminder(1, "old", now - 1h),
                     {reminder(2, "late", now - 300s - 1ms), reminder(3, "edge", now - 300s),
                      reminder(4, "later", now - 400s), reminder(5)}};
    EXPECT_EQ(titles(queue.removeStale(now)), "late later");
    EXPECT_EQ(state(queue), "old | edge 5");
    EXPECT_EQ(queue.nextStale(), now + 1us);
    EXPECT_EQ(titles(queue.removeStale(*queue.nextStale())), "edge");
    queue.restartWaiting(now + 200s);
    EXPECT_TRUE(queue.removeStale(now + 500s).empty());
}

TEST(AlertQueueTest, EmptiesAndWithdrawsButLeavesTheCurrentOneToTheCaller) {
    AlertQueue queue{reminder(1), {focus(5), reminder(2), reminder(3)}};
    EXPECT_FALSE(queue.remove({{2}, {9}}));
    EXPECT_EQ(state(queue), "1 | f5 3");
    EXPECT_TRUE(queue.remove({{1}}));
    EXPECT_FALSE(queue.removeFocusAlerts());
    EXPECT_EQ(state(queue), "1 | 3");
    EXPECT_EQ(titles(queue.removeAll()), "1 3");
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_TRUE(queue.removeAll().empty());
    queue.enqueue({reminder(4)});
    queue.takeNext();
    EXPECT_EQ(state(queue), "4 | ");
    queue.takeNext();
    EXPECT_TRUE(queue.isEmpty());
}

TEST(AlertQueueTest, AnEditReachesEveryEntryButNotARunningBreak) {
    AlertQueue queue{reminder(1), {reminder(2)}};
    queue.current->durationSeconds = 60;
    queue.current->breakEndsAt = now + 60s;
    const Upcoming::Item edited{.id = {},
                                .title = "new",
                                .details = "words",
                                .durationSeconds = 20,
                                .missedAt = {},
                                .keptReason = {},
                                .systemImage = "drop",
                                .animation = ExerciseAnimation::neck};
    EXPECT_FALSE(queue.update({2}, edited));
    EXPECT_EQ(queue.waiting[0].durationSeconds, 20);
    EXPECT_EQ(queue.waiting[0].animation, ExerciseAnimation::neck);
    EXPECT_TRUE(queue.update({1}, edited));
    EXPECT_EQ(state(queue), "new | new");
    EXPECT_EQ(queue.current->durationSeconds, 60);
    EXPECT_EQ(queue.current->breakEndsAt, now + 60s);
    EXPECT_FALSE(queue.update({1}, edited)) << "nothing differs any more";
}

TEST(AlertQueueTest, AKeptItemTellsWhyAndWhenAndGoesBackAsItCame) {
    const Calendar calendar("Europe/Berlin", "en_GB");
    struct Row {
        std::optional<KeptReason> reason;
        std::optional<Instant> missedAt;
        std::optional<std::string> notice;
    };
    for (const auto& [reason, missedAt, notice] : {
             Row{KeptReason::presentation, now, "Held during your presentation"},
             Row{KeptReason::call, now, "Held during your call"},
             Row{KeptReason::away, now, "Missed at 11:00 · you were away"},
             Row{KeptReason::away, {}, {}},
             Row{KeptReason::focus, now, {}},
             Row{{}, {}, {}},
         }) {
        const Upcoming::Item item{.id = {7},
                                  .title = "Stretch",
                                  .details = "Reach up",
                                  .durationSeconds = 30,
                                  .skipsWhenAway = true,
                                  .missedAt = missedAt,
                                  .keptReason = reason,
                                  .systemImage = "bell",
                                  .animation = ExerciseAnimation::sides};
        const Entry entry = Entry::of(item, now + 1h, now + 2h);
        EXPECT_EQ(entry.notice(calendar), notice);
        EXPECT_EQ(entry.item(), item);
        EXPECT_EQ(entry.fireDate, missedAt.value_or(now + 1h));
    }
    EXPECT_EQ(focus(5).item(), std::nullopt);
    EXPECT_EQ(sample().item(), std::nullopt);
}

}  // namespace
}  // namespace tendel
