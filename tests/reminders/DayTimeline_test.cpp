#include "reminders/DayTimeline.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

#include "support/ReminderServices.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;
using State = DayTimeline::State;

// On a Monday in Berlin.
class DayTimelineTest : public ::testing::Test,
                        protected test::ReminderServices,
                        protected ReminderAlertPresenting {
protected:
    DayTimelineTest() : ReminderServices("2026-03-02T08:00:00+01:00") {
        scheduler.presenter = this;
    }

    void present(const Upcoming& upcoming) override {
        for (const Upcoming::Item& item : upcoming.items)
            fired.insert(time(upcoming.fireDate) + " " + item.title);
    }
    void dismissAll() override {}

    DayTimeline look(std::span<const DayTimeline::Shown> shown = {}) const {
        return DayTimeline::of(*store, scheduler, *settings.workingHours, calendar, loop.now(),
                               shown);
    }
    std::multiset<std::string> coming() const {
        std::multiset<std::string> all;
        for (const DayTimeline::Mark& mark : look().marks)
            if (mark.state == State::coming) all.insert(time(mark.at) + " " + mark.title);
        return all;
    }
    Instant clock(int hour, int minute = 0) const {
        return calendar.time(calendar.day(loop.now()), hour, minute);
    }
    std::string text(const DayTimeline& timeline) const {
        constexpr std::string_view names[] = {"done", "missed",  "snoozed",
                                              "kept", "showing", "coming"};
        std::string all;
        for (const DayTimeline::Mark& mark : timeline.marks)
            all += time(mark.at) + " " + mark.title + " " + std::string(names[int(mark.state)]) +
                   (mark.kind == ReminderKind::private_ ? " private; " : "; ");
        return all;
    }

    std::multiset<std::string> fired;
};

TEST_F(DayTimelineTest, AnnouncesWhatTheSchedulerFires) {
    enum class Change { none, snoozes, pause };
    // An ordinary Monday; a change of the clocks: forward and back in Berlin, forward at midnight
    // in São Paulo, back by half an hour on Lord Howe Island.
    const std::pair<const char*, const char*> days[] = {{"Europe/Berlin", "2026-03-02"},
                                                        {"Europe/Berlin", "2026-03-29"},
                                                        {"Europe/Berlin", "2026-10-25"},
                                                        {"America/Sao_Paulo", "2018-11-04"},
                                                        {"Australia/Lord_Howe", "2026-04-05"}};
    std::mt19937 random(7);
    const auto any = [&](int from, int to) {
        return std::uniform_int_distribution(from, to)(random);
    };
    scheduler.start();
    std::size_t announced = 0;
    for (const auto& [zone, date] : days) {
        for (const Change change : {Change::none, Change::snoozes, Change::pause}) {
            SCOPED_TRACE(std::string(date) + " " + std::to_string(int(change)));
            calendar.setZone(zone);
            for (const Reminder& old : std::vector(store->reminders()))
                remove(old.id);
            for (int i = 0; i < 25; ++i) {
                Reminder made;
                made.title = "R" + std::to_string(i);
                made.setKind(i % 2 == 0 ? ReminderKind::work : ReminderKind::private_);
                made.setStart({any(0, 12), any(0, 59)});
                made.intervalMinutes = i < 2 ? any(0, 3) : any(10, 300);
                made.isOn = any(0, 9) > 0;
                insert(made);
            }
            WorkingHours hours{.start = {any(0, 9), 30}, .end = {any(6, 23), 0}};
            if (any(0, 3) > 0) hours.workdays = {1, 2, 3, 4, 5, 6, 7};
            settings.workingHours.set(hours);
            loop.setWallClock(*parseIso8601(std::string(date) + "T00:00:00Z") + 12h);
            loop.setWallClock(calendar.day(loop.now()).start);
            loop.runPending();

            if (change != Change::none) loop.advance(std::chrono::seconds(any(0, 12 * 3600)));
            if (change == Change::pause) scheduler.pause(loop.now() + any(1, 300) * 1min);
            for (int i = 0; i < 8 && change == Change::snoozes; ++i)
                scheduler.snooze(store->reminders()[std::size_t(any(0, 24))].id,
                                 any(1, 600) * 1min);
            const auto expected = coming();
            announced += expected.size();
            fired.clear();
            loop.advanceTo(calendar.day(loop.now()).end - 1us);
            EXPECT_EQ(fired, expected);
            scheduler.resume();
        }
    }
    EXPECT_GT(announced, 5000U);
}

TEST_F(DayTimelineTest, TellsEachAlertOnceWithWhatBecameOfIt) {
    const auto water = add("Water", {{16, 0}});
    const auto stretch = add("Stretch", {{16, 0}});
    const auto walk = add("Walk", {{18, 30}});
    edit(walk, [](Reminder& reminder) { reminder.setKind(ReminderKind::private_); });
    scheduler.start();
    loop.advanceTo(clock(12));
    const auto event = [&](ReminderId id, Instant due, Outcome outcome) {
        save([&](Store::Writer& writer) {
            writer.insert(ReminderEvent(*store->find(id), due, outcome, due + 1min));
        });
    };
    event(water, clock(9), Outcome::done);
    event(stretch, clock(9), Outcome::breakTaken);
    event(water, clock(10), Outcome::skipped);
    event(stretch, clock(10), Outcome::expired);
    event(water, clock(11), Outcome::snoozed);
    event(walk, clock(0) - 1us, Outcome::done);
    event(walk, calendar.day(loop.now()).end, Outcome::done);
    event(stretch, clock(11, 30), Outcome::done);  // due once more, by a clock set back
    const auto item = [&](ReminderId id) {
        return std::array{Upcoming::Item::of(*store->find(id))};
    };
    scheduler.keep(item(stretch), KeptReason::call, clock(11, 30));
    scheduler.keep(item(walk), KeptReason::away, clock(0) - 1min);
    scheduler.snooze(water, 5min);
    const DayTimeline::Shown shown[] = {{water, clock(11, 45)}, {walk, clock(11, 50)}};
    EXPECT_EQ(text(look(shown)),
              "09:00 Stretch done; 09:00 Water done; 10:00 Stretch missed; 10:00 Water missed; "
              "11:00 Water snoozed; 11:30 Stretch kept; 11:45 Water showing; "
              "11:50 Walk showing private; 12:05 Water coming; 16:00 Stretch coming; "
              "16:00 Water coming; 18:30 Walk coming private; ");
    EXPECT_EQ(look().marks[0].respondedAt, clock(9, 1));
    EXPECT_EQ(look().marks[5].keptReason, KeptReason::call);

    // A snooze into another day silences this one.
    scheduler.snooze(water, 13h);
    scheduler.pause(clock(18));
    EXPECT_EQ(look().count(State::coming), 1);
    scheduler.pause(calendar.day(loop.now()).end);
    EXPECT_EQ(look().count(State::coming), 0);
}

TEST_F(DayTimelineTest, KnowsTheHoursOfWork) {
    const std::tuple<const char*, WorkingHours, const char*> cases[] = {
        {"2026-03-02T12:00:00+01:00", {}, "09:00 17:00"},
        {"2026-03-07T12:00:00+01:00", {}, "off"},
        {"2026-03-02T12:00:00+01:00", {.start = {9, 0}, .end = {9, 0}}, "off"},
        {"2026-03-02T12:00:00+01:00", {.start = {17, 0}, .end = {9, 0}}, "off"},
        {"2026-03-29T12:00:00+02:00", {{2, 30}, {3, 30}, {1}}, "03:00 03:30"},
    };
    for (const auto& [now, hours, expected] : cases) {
        settings.workingHours.set(hours);
        loop.setWallClock(*parseIso8601(now));
        const DayTimeline timeline = look();
        EXPECT_EQ(timeline.workStart == timeline.workEnd
                      ? "off"
                      : time(timeline.workStart) + " " + time(timeline.workEnd),
                  expected)
            << now;
    }
}

TEST_F(DayTimelineTest, CountsWhereADayIsTooFullToListEach) {
    Reminder made;
    made.setStart({7, 2});
    save([&](Store::Writer& writer) {
        for (int i = 0; i < 1000; ++i) {
            made.title = "R" + std::to_string(i);
            made.setKind(i % 2 == 0 ? ReminderKind::work : ReminderKind::private_);
            made.intervalMinutes = i < 500 ? 1 : 7;
            writer.insert(made);
        }
    });
    scheduler.start();
    const DayTimeline timeline = look();
    EXPECT_LE(timeline.marks.size(), 300U);
    // From 9:00 to 17:00, and from 8:01 (8:05 every 7 minutes) without these hours.
    EXPECT_EQ(timeline.count(State::coming), 250 * (480 + 69) + 250 * ((59 + 420) + (8 + 60)));
    const auto at = std::ranges::find(timeline.marks, clock(9, 0), &DayTimeline::Mark::at);
    ASSERT_NE(at, timeline.marks.end());
    EXPECT_EQ(*at, (DayTimeline::Mark{.at = clock(9), .title = "R0", .count = 250 * 5 + 250}));
    EXPECT_TRUE(std::ranges::is_sorted(timeline.marks, {}, &DayTimeline::Mark::at));
}

}  // namespace
}  // namespace tendel
