#include "storage/Store.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include <SQLiteCpp/SQLiteCpp.h>

#include "Files.h"
#include "base/Calendar.h"
#include "reminders/ReminderEventBackfill.h"

namespace tendel {
namespace {

using std::chrono::microseconds;
using std::chrono::seconds;

constexpr Instant t0{microseconds(1'700'000'000'123'456)};

Reminder titled(std::string title) {
    Reminder reminder;
    reminder.title = std::move(title);
    reminder.createdAt = t0;
    return reminder;
}

class StoreTest : public testing::Test {
protected:
    void reopen() {
        store_.reset();
        store_ = std::move(Store::open(file_).value());
    }
    ReminderId insert(const Reminder& reminder) {
        ReminderId id;
        EXPECT_TRUE(store_->save([&](Store::Writer& writer) { id = writer.insert(reminder); }));
        return id;
    }
    Result<void> record(const ReminderEvent& event) { return store_->record({&event, 1}); }
    ReminderEvent done(ReminderId id, Instant due) {
        return ReminderEvent(*store_->find(id), due, Outcome::done, due + seconds(8));
    }
    // Changes the closed file as the sqlite3 command does.
    void edit(const std::string& statements) {
        store_.reset();
        SQLite::Database(file_.string(), SQLite::OPEN_READWRITE).exec(statements);
        reopen();
    }

    TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path / "Tendel.store";
    std::unique_ptr<Store> store_ = std::move(Store::open(file_).value());
};

TEST_F(StoreTest, KeepsEveryFieldOfEveryRecord) {
    Reminder full;
    full.kindRaw = "private";
    full.title = "Größe '\"; \n 漢字";
    full.details = std::string("a\0b", 3);
    full.startHour = 23;
    full.startMinute = 59;
    full.intervalMinutes = 1;
    full.durationSeconds = 300;
    full.skipsWhenAwayChoice = false;
    full.isBreakSuggestion = true;
    full.symbolName = "";
    full.animationChoice = "none";
    full.isOn = false;
    full.createdAt = t0;
    full.id = insert(full);
    Reminder sparse = titled("");
    sparse.id = insert(sparse);
    FocusBlock running;
    running.start = t0;
    running.plannedMinutes = 25;
    FocusBlock ended = running;
    ended.end = t0 + seconds(7);
    ended.focusedSeconds = 7;
    ended.finished = true;
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) {
        running.id = writer.insert(running);
        ended.id = writer.insert(ended);
        full.title += "!";
        writer.update(full);
        running.plannedMinutes = 26;
        writer.update(running);
    }));
    const std::vector<ReminderEvent> recorded{
        ReminderEvent(full, t0 + microseconds(1), Outcome::breakTaken, t0),
        ReminderEvent(sparse, Instant{microseconds(-1)}, Outcome::snoozed, t0)};
    ASSERT_TRUE(store_->record(recorded));

    const auto check = [&] {
        EXPECT_EQ(store_->reminders(), (std::vector{full, sparse}));
        EXPECT_EQ(store_->focusBlocks(), (std::vector{running, ended}));
        auto events = store_->events();
        ASSERT_EQ(events.size(), 2u);
        EXPECT_NE(events[0].id, events[1].id);
        events[0].id = events[1].id = 0;
        EXPECT_EQ(events, recorded);
    };
    check();
    reopen();
    check();
}

TEST_F(StoreTest, NeverGivesAnIdentifierAgain) {
    const ReminderId first = insert(titled("first")), last = insert(titled("last"));
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) { writer.remove(last); }));
    reopen();
    const ReminderId next = insert(titled("next"));
    EXPECT_GT(next, last);
    EXPECT_EQ(store_->find(last), nullptr);
    // One that is gone stays gone.
    Reminder gone = titled("back");
    gone.id = last;
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) {
        writer.update(gone);
        writer.remove(last);
    }));
    reopen();
    ASSERT_EQ(store_->reminders().size(), 2u);
    EXPECT_EQ(store_->find(first)->title, "first");
    EXPECT_EQ(store_->find(next)->title, "next");
}

TEST_F(StoreTest, KeepsTheEventsOfADeletedReminder) {
    const ReminderId id = insert(titled("Stretch"));
    ASSERT_TRUE(record(done(id, t0)));
    const ReminderEvent late = done(id, t0 + seconds(60));
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) { writer.remove(id); }));
    ASSERT_TRUE(record(late));  // its alert was still on the screen
    EXPECT_EQ(SQLite::Database(file_.string())
                  .execAndGet("SELECT count(*) FROM events WHERE reminder IS NULL")
                  .getInt(),
              2);
    // Deleted by a program that knows nothing of the link.
    const ReminderId other = insert(titled("Drink"));
    ASSERT_TRUE(record(done(other, t0 + seconds(120))));
    edit("PRAGMA foreign_keys = OFF; DELETE FROM reminders");
    const auto events = store_->events();
    ASSERT_EQ(events.size(), 3u);
    for (const ReminderEvent& event : events) {
        EXPECT_EQ(event.reminder, std::nullopt);
        EXPECT_EQ(event.outcome(), Outcome::done);
    }
    EXPECT_EQ(events[1].reminderTitle, "Stretch");
    EXPECT_EQ(events[2].reminderTitle, "Drink");
}

TEST_F(StoreTest, ReadsEditedRowsByTheirFallbacks) {
    const ReminderId id = insert(titled("Rest"));
    ASSERT_TRUE(record(done(id, t0)));
    const Reminder plain = *store_->find(id);
    struct Case {
        std::string edit;
        std::function<void(Reminder&)> expected;
    };
    const Case reminders[] = {
        {"startHour = 'nine', startMinute = x'00'", [](Reminder&) {}},
        {"startHour = 99, startMinute = -5",
         [](Reminder& r) { r.startHour = 99, r.startMinute = -5; }},
        {"intervalMinutes = 'often'", [](Reminder&) {}},
        {"intervalMinutes = 0", [](Reminder& r) { r.intervalMinutes = 0; }},
        {"intervalMinutes = 2.75", [](Reminder& r) { r.intervalMinutes = 2; }},
        {"intervalMinutes = 9223372036854775807",
         [](Reminder& r) { r.intervalMinutes = std::numeric_limits<int>::max(); }},
        {"intervalMinutes = -9e99",
         [](Reminder& r) { r.intervalMinutes = std::numeric_limits<int>::min(); }},
        {"durationSeconds = 'long', skipsWhenAwayChoice = 'yes'", [](Reminder&) {}},
        {"skipsWhenAwayChoice = 7", [](Reminder& r) { r.skipsWhenAwayChoice = true; }},
        {"isOn = 'on', kindRaw = 5", [](Reminder& r) { r.kindRaw = "5"; }},
        {"title = x'52C3', symbolName = 3",
         [](Reminder& r) { r.title = "R\xc3", r.symbolName = "3"; }},
        {"createdAt = 'today'", [](Reminder& r) { r.createdAt = {}; }},
    };
    for (const Case& each : reminders) {
        SCOPED_TRACE(each.edit);
        edit("UPDATE reminders SET " + each.edit);
        Reminder expected = plain;
        each.expected(expected);
        ASSERT_EQ(store_->reminders().size(), 1u);
        EXPECT_EQ(*store_->find(id), expected);
        ASSERT_TRUE(store_->save([&](Store::Writer& writer) { writer.update(plain); }));
    }

    edit("UPDATE events SET outcomeRaw = 'missed', kindRaw = x'', fireDate = 'noon'");
    auto event = store_->events().at(0);
    EXPECT_EQ(event.outcome(), Outcome::expired);
    EXPECT_EQ(event.kind(), ReminderKind::work);
    EXPECT_EQ(event.fireDate, t0 + seconds(8));  // the nearest that is known
    edit(
        "UPDATE events SET fireDate = 9223372036854775807, respondedAt = 'never', reminder = 'it'");
    event = store_->events().at(0);
    EXPECT_EQ(formatIso8601(event.fireDate), "9999-12-31T23:59:59Z");
    EXPECT_EQ(event.respondedAt, event.fireDate);
    EXPECT_EQ(event.reminder, std::nullopt);

    // A table whose rules a hand has removed.
    edit(
        "CREATE TABLE bare AS SELECT * FROM reminders; DROP TABLE reminders;"
        " ALTER TABLE bare RENAME TO reminders;"
        " UPDATE reminders SET kindRaw = NULL, title = NULL, startHour = NULL, isOn = NULL");
    Reminder empty = plain;
    empty.title = "";
    EXPECT_EQ(store_->reminders(), std::vector{empty});
}

TEST_F(StoreTest, AnswersTheEventsDueInAHalfOpenSpan) {
    const ReminderId id = insert(titled("Rest"));
    for (const int second : {30, 10, 20, 10, 40})
        ASSERT_TRUE(record(done(id, t0 + seconds(second))));
    const auto due = [&](int from, int to) {
        std::string text;
        for (const auto& event : store_->eventsDue(t0 + seconds(from), t0 + seconds(to)))
            text += std::to_string((event.fireDate - t0) / seconds(1)) + "#" +
                    std::to_string(event.id) + " ";
        return text;
    };
    EXPECT_EQ(due(10, 40), "10#2 10#4 20#3 30#1 ");
    EXPECT_EQ(due(11, 20), "");
    EXPECT_EQ(due(40, 10), "");
}

TEST_F(StoreTest, AFailedSaveChangesNothing) {
    const ReminderId id = insert(titled("before"));
    edit(
        "CREATE TRIGGER refuse BEFORE INSERT ON focusBlocks"
        " BEGIN SELECT RAISE(ABORT, 'refused'); END");
    int told = 0;
    const Subscription listening = store_->saved.connect([&] { ++told; });
    Reminder changed = *store_->find(id);
    changed.title = "after";
    {
        const FullDisk full(0);
        const auto saved = store_->save([&](Store::Writer& writer) {
            writer.update(changed);
            writer.insert(titled(std::string(100'000, 'x')));
            writer.insert(ReminderEvent(changed, t0, Outcome::done, t0));
        });
        ASSERT_FALSE(saved);
        EXPECT_EQ(saved.error().find("Couldn't save to \"Tendel.store\": "), 0u);
    }
    // One change of several that SQLite refuses.
    const auto refused = store_->save([&](Store::Writer& writer) {
        writer.update(changed);
        EXPECT_EQ(writer.insert(FocusBlock{}), 0);
        writer.insert(ReminderEvent(changed, t0, Outcome::done, t0));
    });
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error(), "Couldn't save to \"Tendel.store\": refused");
    EXPECT_EQ(told, 0);
    for (const int pass : {1, 2}) {
        SCOPED_TRACE(pass);
        ASSERT_EQ(store_->reminders().size(), 1u);
        EXPECT_EQ(store_->find(id)->title, "before");
        EXPECT_TRUE(store_->events().empty());
        reopen();
    }
}

TEST_F(StoreTest, KeepsAnswersThatCannotBeSavedYet) {
    const ReminderId id = insert(titled("Rest")), other = insert(titled("Drink"));
    ASSERT_TRUE(record(done(id, t0)));
    {
        const FullDisk full(0);
        EXPECT_FALSE(record(done(id, t0 + seconds(20))));
        EXPECT_FALSE(record(done(other, t0 + seconds(10))));
        EXPECT_FALSE(store_->flush());
    }
    const auto inOrder = [&](const std::vector<ReminderEvent>& events) {
        std::string text;
        for (const ReminderEvent& event : events)
            text += std::to_string((event.fireDate - t0) / seconds(1)) + " ";
        return text;
    };
    const auto check = [&] {
        EXPECT_EQ(inOrder(store_->events()), "0 20 10 ");
        EXPECT_EQ(inOrder(store_->eventsDue(t0, t0 + seconds(20))), "0 10 ");
        EXPECT_EQ(inOrder(store_->eventsDue(t0, t0 + seconds(21))), "0 10 20 ");
    };
    check();
    // They go along with the next save, also when that takes their reminder away.
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) { writer.remove(other); }));
    check();
    reopen();
    check();
    EXPECT_EQ(store_->events().at(2).reminder, std::nullopt);
}

TEST_F(StoreTest, TellsOfASaveOnceItCanBeRead) {
    const ReminderId id = insert(titled("Rest"));
    std::string told;
    const Subscription listening = store_->saved.connect([&] {
        told += store_->find(id)->title + std::to_string(store_->events().size()) + " ";
        // A listener may save on its own.
        Reminder other = titled("Drink");
        if (store_->reminders().size() < 2) insert(other);
    });
    Reminder changed = *store_->find(id);
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) { writer.update(changed); }));
    ASSERT_TRUE(store_->save([](Store::Writer&) {}));
    ASSERT_TRUE(store_->flush());
    EXPECT_EQ(told, "");  // nothing changed
    changed.title = "Stretch";
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) {
        writer.update(changed);
        EXPECT_FALSE(store_->save([](Store::Writer&) {}));
    }));
    EXPECT_EQ(told, "Stretch0 Stretch0 ");
    ASSERT_TRUE(record(done(id, t0)));
    EXPECT_EQ(told, "Stretch0 Stretch0 Stretch1 ");
}

TEST_F(StoreTest, BackfillNamesOldEventsThatStillHaveTheirReminder) {
    const ReminderId id = insert(titled("Rest")), gone = insert(titled("Gone"));
    Reminder changed = *store_->find(id);
    changed.setKind(ReminderKind::private_);
    ASSERT_TRUE(record(done(id, t0)));
    ASSERT_TRUE(record(done(gone, t0)));
    ASSERT_TRUE(record(done(id, t0)));
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) {
        writer.update(changed);
        writer.remove(gone);
    }));
    edit("UPDATE events SET reminderTitle = '' WHERE id < 3");
    backfillEventTitles(*store_);
    reopen();
    const auto events = store_->events();
    ASSERT_EQ(events.size(), 3u);
    EXPECT_EQ(events[0].reminderTitle + events[0].kindRaw, "Restprivate");
    EXPECT_EQ(events[1].reminderTitle + events[1].kindRaw, "work");
    EXPECT_EQ(events[2].reminderTitle + events[2].kindRaw, "Restwork");  // as it was then
    ASSERT_EQ(store_->eventsWithoutTitle().size(), 1u);
    EXPECT_EQ(store_->eventsWithoutTitle()[0].id, events[1].id);
}

}  // namespace
}  // namespace tendel
