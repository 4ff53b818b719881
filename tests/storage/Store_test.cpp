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

// "20#1 " for each event: its second after t0 and its identifier.
std::string inWords(const std::vector<ReminderEvent>& events) {
    std::string text;
    for (const ReminderEvent& event : events)
        text += std::to_string((event.fireDate - t0) / seconds(1)) + "#" +
                std::to_string(event.id) + " ";
    return text;
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
    ReminderEvent done(ReminderId id, int second) {
        return ReminderEvent(*store_->find(id), t0 + seconds(second), Outcome::done,
                             t0 + seconds(second + 8));
    }
    // Changes the closed file as the sqlite3 command does.
    void edit(const std::string& statements) {
        store_.reset();
        SQLite::Database(file_.string(), SQLite::OPEN_READWRITE).exec(statements);
        reopen();
    }

    test::TemporaryFolder folder_;
    std::filesystem::path file_ = folder_.path / "Tendel.store";
    std::unique_ptr<Store> store_ = std::move(Store::open(file_).value());
};

TEST_F(StoreTest, KeepsEveryFieldOfEveryRecord) {
    Reminder full;
    full.kindRaw = "private";
    full.title = "Größe '\"; \n 漢字";
    full.details = std::string("a\0b", 3);
    full.setStart({23, 59});
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
    std::vector<ReminderEvent> recorded{
        ReminderEvent(full, t0 + microseconds(1), Outcome::breakTaken, t0),
        ReminderEvent(sparse, Instant{microseconds(-1)}, Outcome::snoozed, t0)};
    ASSERT_TRUE(store_->record(recorded));
    recorded[0].id = 1;
    recorded[1].id = 2;
    for (int pass = 0; pass < 2; ++pass, reopen()) {
        EXPECT_EQ(store_->reminders(), (std::vector{full, sparse}));
        EXPECT_EQ(store_->focusBlocks(), (std::vector{running, ended}));
        EXPECT_EQ(store_->events(), recorded);
    }
}

TEST_F(StoreTest, NeverGivesAnIdentifierAgain) {
    const ReminderId first = insert(titled("first")), last = insert(titled("last"));
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) { writer.remove(last); }));
    reopen();
    const ReminderId next = insert(titled("next"));
    EXPECT_GT(next, last);
    // One that is gone stays gone.
    Reminder gone = titled("back");
    gone.id = last;
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) {
        writer.update(gone);
        writer.remove(last);
    }));
    for (int pass = 0; pass < 2; ++pass, reopen()) {
        ASSERT_EQ(store_->reminders().size(), 2u);
        EXPECT_EQ(store_->find(first)->title + store_->find(next)->title, "firstnext");
    }
}

TEST_F(StoreTest, KeepsTheEventsOfADeletedReminder) {
    const ReminderId id = insert(titled("Stretch"));
    ASSERT_TRUE(record(done(id, 0)));
    const ReminderEvent late = done(id, 60);
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) { writer.remove(id); }));
    ASSERT_TRUE(record(late));  // its alert was still on the screen
    EXPECT_EQ(SQLite::Database(file_.string())
                  .execAndGet("SELECT count(*) FROM events WHERE reminder IS NULL")
                  .getInt(),
              2);
    // Deleted by a program that knows nothing of the link.
    ASSERT_TRUE(record(done(insert(titled("Drink")), 120)));
    edit("PRAGMA foreign_keys = OFF; DELETE FROM reminders");
    std::string titles;
    for (const ReminderEvent& event : store_->events()) {
        EXPECT_EQ(event.reminder, std::nullopt);
        titles += event.reminderTitle + " ";
    }
    EXPECT_EQ(titles, "Stretch Stretch Drink ");
}

TEST_F(StoreTest, ReadsEditedRowsByTheirFallbacks) {
    const ReminderId id = insert(titled("Rest"));
    ASSERT_TRUE(record(done(id, 0)));
    const Reminder plain = *store_->find(id);
    using Limits = std::numeric_limits<int>;
    struct Case {
        std::string edit;
        std::function<void(Reminder&)> expected;
    };
    const Case cases[] = {
        {"startHour = 'nine', startMinute = x'00', intervalMinutes = 'often'", [](Reminder&) {}},
        {"startHour = 99, startMinute = -5",
         [](Reminder& r) {
             r.setStart({99, -5});
         }},
        {"intervalMinutes = 2.75", [](Reminder& r) { r.intervalMinutes = 2; }},
        {"intervalMinutes = 1 << 62", [](Reminder& r) { r.intervalMinutes = Limits::max(); }},
        {"intervalMinutes = -9e99", [](Reminder& r) { r.intervalMinutes = Limits::min(); }},
        {"durationSeconds = 'long', skipsWhenAwayChoice = 'yes', isOn = 'on'", [](Reminder&) {}},
        {"skipsWhenAwayChoice = 7", [](Reminder& r) { r.skipsWhenAwayChoice = true; }},
        {"kindRaw = 5, title = x'52C3'", [](Reminder& r) { r.kindRaw = "5", r.title = "R\xc3"; }},
        {"createdAt = 'today'", [](Reminder& r) { r.createdAt = {}; }},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.edit);
        edit("UPDATE reminders SET " + each.edit);
        Reminder expected = plain;
        each.expected(expected);
        EXPECT_EQ(store_->reminders(), std::vector{expected});
        ASSERT_TRUE(store_->save([&](Store::Writer& writer) { writer.update(plain); }));
    }

    edit("UPDATE events SET fireDate = 'noon'");
    auto event = store_->events().at(0);
    EXPECT_EQ(event.fireDate, t0 + seconds(8));  // the nearest that is known
    edit("UPDATE events SET fireDate = 1 << 62, respondedAt = 'never', reminder = 'it'");
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
        ASSERT_TRUE(record(done(id, second)));
    EXPECT_EQ(inWords(store_->eventsDue(t0 + seconds(10), t0 + seconds(40))),
              "10#2 10#4 20#3 30#1 ");
    EXPECT_EQ(inWords(store_->eventsDue(t0 + seconds(11), t0 + seconds(20))), "");
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
    const auto saving = [&](const std::function<void(Store::Writer&)>& change) {
        const auto saved = store_->save([&](Store::Writer& writer) {
            writer.update(changed);
            change(writer);
            writer.insert(ReminderEvent(changed, t0, Outcome::done, t0));
        });
        return saved ? "saved" : saved.error();
    };
    {
        const FullDisk full(0);
        const auto insertMuch = [](auto& to) { to.insert(titled(std::string(100'000, 'x'))); };
        EXPECT_EQ(saving(insertMuch).find("Couldn't save to \"Tendel.store\": "), 0u);
    }
    // One change of several that SQLite refuses.
    EXPECT_EQ(saving([](auto& to) { EXPECT_EQ(to.insert(FocusBlock{}), 0); }),
              "Couldn't save to \"Tendel.store\": refused");
    EXPECT_EQ(told, 0);
    for (int pass = 0; pass < 2; ++pass, reopen()) {
        ASSERT_EQ(store_->reminders().size(), 1u);
        EXPECT_EQ(store_->find(id)->title, "before");
        EXPECT_TRUE(store_->events().empty());
    }
}

TEST_F(StoreTest, KeepsAnswersThatCannotBeSavedYet) {
    const ReminderId id = insert(titled("Rest")), other = insert(titled("Drink"));
    ASSERT_TRUE(record(done(id, 0)));
    const auto check = [&](const char* all, const char* dueBefore20, const char* dueBefore21) {
        EXPECT_EQ(inWords(store_->events()), all);
        EXPECT_EQ(inWords(store_->eventsDue(t0, t0 + seconds(20))), dueBefore20);
        EXPECT_EQ(inWords(store_->eventsDue(t0, t0 + seconds(21))), dueBefore21);
    };
    {
        const FullDisk full(0);
        EXPECT_FALSE(record(done(id, 20)));
        EXPECT_FALSE(record(done(other, 10)));
        EXPECT_FALSE(store_->flush());
    }
    check("0#1 20#0 10#0 ", "0#1 10#0 ", "0#1 10#0 20#0 ");
    // They go along with the next save, also when that takes their reminder away.
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) { writer.remove(other); }));
    for (int pass = 0; pass < 2; ++pass, reopen())
        check("0#1 20#2 10#3 ", "0#1 10#3 ", "0#1 10#3 20#2 ");
    EXPECT_EQ(store_->events().at(2).reminder, std::nullopt);
}

TEST_F(StoreTest, TellsOfASaveOnceItCanBeRead) {
    const ReminderId id = insert(titled("Rest"));
    std::string told;
    const Subscription listening = store_->saved.connect([&] {
        told += store_->find(id)->title + std::to_string(store_->events().size()) + " ";
        // A listener may save on its own.
        if (store_->reminders().size() < 2) insert(titled("Drink"));
    });
    Reminder changed = *store_->find(id);
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) { writer.update(changed); }));
    ASSERT_TRUE(store_->flush());
    EXPECT_EQ(told, "");  // nothing changed
    changed.title = "Stretch";
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) {
        writer.update(changed);
        EXPECT_FALSE(store_->save([](Store::Writer&) {}));
    }));
    ASSERT_TRUE(record(done(id, 0)));
    EXPECT_EQ(told, "Stretch0 Stretch0 Stretch1 ");
}

TEST_F(StoreTest, BackfillNamesOldEventsThatStillHaveTheirReminder) {
    const ReminderId id = insert(titled("Rest")), gone = insert(titled("Gone"));
    for (const ReminderId each : {id, gone, id})
        ASSERT_TRUE(record(done(each, 0)));
    Reminder changed = *store_->find(id);
    changed.setKind(ReminderKind::private_);
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) {
        writer.update(changed);
        writer.remove(gone);
    }));
    edit("UPDATE events SET reminderTitle = '' WHERE id < 3");
    backfillEventTitles(*store_);
    reopen();
    std::string named;
    for (const ReminderEvent& event : store_->events())
        named += event.reminderTitle + " " + event.kindRaw + ", ";
    EXPECT_EQ(named, "Rest private,  work, Rest work, ");  // the last as it was then
}

}  // namespace
}  // namespace tendel
