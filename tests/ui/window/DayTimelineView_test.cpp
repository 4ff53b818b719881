#include "ui/window/DayTimelineView.h"

#include <gtest/gtest.h>

#include <random>
#include <tuple>

#include "QtEnvironment.h"
#include "support/WholeApplication.h"
#include "ui/theme/Callout.h"
#include "ui/window/DayTimelineCard.h"
#include "ui/window/ReminderCard.h"

namespace tendel {
namespace {

using namespace test;
using namespace std::chrono_literals;
using State = DayTimeline::State;

std::string sentences(const MarkedView& view) {
    std::string all;
    for (const MarkedView::Mark& mark : view.marks())
        all += mark.sentence.toStdString() + "\n";
    return all;
}

TEST(DayTimelineLayout, KeepsMarksAndHoursApartAtAnyWidth) {
    std::mt19937 random(11);
    const auto any = [&](int from, int to) {
        return std::uniform_int_distribution(from, to)(random);
    };
    const std::tuple<const char*, const char*, const char*> days[] = {
        {"Europe/Berlin", "en_US", "2026-03-02"},
        {"Europe/Berlin", "de_DE", "2026-03-29"},
        {"America/Sao_Paulo", "pt_BR", "2018-11-04"},
        {"Australia/Lord_Howe", "en_AU", "2026-04-05"}};
    for (const auto& [zone, locale, date] : days)
        for (const int count : {0, 1, 7, 60, 900})
            for (const int width : {400, 432, 802, 1468}) {
                SCOPED_TRACE(std::string(date) + " " + std::to_string(count) + " on " +
                             std::to_string(width));
                const Calendar calendar(zone, locale);
                DayTimeline timeline;
                timeline.day = calendar.day(*parseIso8601(std::string(date) + "T12:00:00Z"));
                const auto moment = [&] {
                    return timeline.day.start +
                           (timeline.day.end - timeline.day.start) * any(0, 9999) / 10000;
                };
                timeline.now = moment();
                timeline.workStart = calendar.time(timeline.day, 9, 0);
                timeline.workEnd = calendar.time(timeline.day, any(9, 17), 0);
                for (int i = 0; i < count; ++i)
                    timeline.marks.push_back({.at = moment(), .state = State(any(0, 5))});
                std::ranges::sort(timeline.marks, {}, &DayTimeline::Mark::at);
                const auto layout = DayTimelineLayout::of(timeline, calendar, width);

                std::vector<QRectF> labels{layout.now.box};
                for (const auto& tick : layout.ticks)
                    if (!tick.label.isEmpty()) labels.push_back(tick.box);
                std::ranges::sort(labels, {}, &QRectF::left);
                EXPECT_GE(labels.size(), 3U);
                EXPECT_GE(labels.front().left(), 0);
                EXPECT_LE(labels.back().right(), width);
                for (std::size_t i = 1; i < labels.size(); ++i)
                    EXPECT_GE(labels[i].left() - labels[i - 1].right(), 8);

                std::size_t told = 0;
                double end = -4;
                for (const auto& group : layout.groups) {
                    EXPECT_EQ(group.first, std::exchange(told, group.last));
                    EXPECT_EQ(group.total(), int(group.last - group.first));
                    EXPECT_GE(group.box.left(), end + 4);
                    end = group.box.right();
                    const bool isOver = timeline.marks[group.last - 1].at <= timeline.now;
                    EXPECT_EQ(group.box.center().x() < layout.now.x, isOver);
                }
                EXPECT_EQ(told, timeline.marks.size());
                EXPECT_LE(end, width);
            }
}

// The line of an application on a Monday.
struct Line {
    Line() {
        desk.save([&](Store::Writer& writer) {
            for (const auto* title : {"Water", "Stretch"}) {
                Reminder made;
                made.title = title;
                made.setStart({title == std::string("Water") ? 9 : 11, 0});
                made.intervalMinutes = 120;
                writer.insert(made);
            }
        });
        desk.app.settings.workingHours.set({.start = {9, 0}, .end = {14, 30}});
        desk.app.start();
        card.resize(834, 120);
        card.show();
        QApplication::processEvents();
    }
    const DayTimelineView& view() const { return *card.findChild<DayTimelineView*>(); }
    std::string told() const {
        QApplication::processEvents();
        return sentences(view());
    }

    std::string summary() const {
        QApplication::processEvents();
        return view().accessibleDescription().toStdString();
    }

    WholeApplication desk;
    DayTimelineCard card{desk.app};
};

TEST(DayTimelineCard, FollowsTheDay) {
    Line line;
    TendelApp& app = line.desk.app;
    EXPECT_EQ(line.told(),
              "2 alerts at 11:00: Stretch, 11:00, coming; Water, 11:00, coming\n"
              "2 alerts at 13:00: Stretch, 13:00, coming; Water, 13:00, coming\n");
    EXPECT_EQ(line.summary(), "4 to come. Work from 09:00 to 14:30");

    line.desk.workUntil("11:00:05");
    EXPECT_TRUE(line.told().starts_with(
        "2 alerts at 11:00: Stretch, 11:00, waits for you; Water, 11:00, waits for you\n"));
    app.alerts.actions().done();
    line.desk.workUntil("11:00:10");
    app.alerts.actions().snooze();
    line.desk.workUntil("11:01:00");
    EXPECT_TRUE(
        line.told().starts_with("2 alerts at 11:00: Stretch, 11:00, snoozed at 11:00; "
                                "Water, 11:00, done at 11:00\n"
                                "Stretch, 11:05, coming\n"))
        << line.told();

    line.desk.facts.setMicrophone(true);
    line.desk.workUntil("11:06:00");
    EXPECT_NE(line.told().find("Stretch, 11:05, waits for the end of your call"), std::string::npos)
        << line.told();
    app.scheduler.pause(WholeApplication::at("13:30:00"));
    EXPECT_EQ(line.summary(), "1 done · 1 snoozed. Work from 09:00 to 14:30");

    // Nothing is looked up for a card that nobody sees.
    const std::string before = line.told();
    line.card.hide();
    app.scheduler.resume();
    app.settings.workingHours.set({.start = {9, 0}, .end = {14, 30}, .workdays = {}});
    EXPECT_EQ(line.told(), before);
    line.card.show();
    EXPECT_EQ(line.summary(), "1 done · 1 snoozed. Day off");
}

TEST(DayTimelineCard, LooksOnceForManyChanges) {
    struct Looks : QObject {
        int count = 0;
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::MetaCall) ++count;
            return false;
        }
    } looks;
    Line line;
    line.card.installEventFilter(&looks);
    const std::string before = sentences(line.view());
    for (int i = 0; i < 5; ++i)
        line.desk.save([&](Store::Writer& writer) { writer.insert(Reminder()); });
    EXPECT_EQ(sentences(line.view()), before);
    EXPECT_NE(line.told(), before);
    EXPECT_EQ(looks.count, 1);
}

TEST(DayTimelineCard, IsOneStopOfThePageAndSpeaksInACallout) {
    Desk desk;
    Reminder reminder;
    reminder.title = "Water";
    desk.store.add(reminder);
    OpenWindow window(desk);
    control<QAbstractButton>(*window, "New Reminder")->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Tab);
    auto* view = qobject_cast<DayTimelineView*>(QApplication::focusWidget());
    ASSERT_TRUE(view);
    const auto told = [&] { return view->marks()[std::size_t(*view->current())].sentence; };
    EXPECT_EQ(told(), "Water, 11:00\u202fAM, coming");
    const auto* callout = window->findChild<Callout*>();
    EXPECT_TRUE(callout && callout->isVisible());
    press(Qt::Key_End);
    EXPECT_EQ(told(), "Water, 4:00\u202fPM, coming");
    press(Qt::Key_Tab);
    EXPECT_FALSE(callout->isVisible());
    EXPECT_TRUE(qobject_cast<ReminderCard*>(QApplication::focusWidget()));
}

}  // namespace
}  // namespace tendel
