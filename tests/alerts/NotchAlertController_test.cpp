#include "alerts/NotchAlertController.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <utility>

#include "base/SimulatedEventLoop.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

const Instant ten = *parseIso8601("2026-03-02T10:00:00+01:00");
const ScreenInfo left{.frame = {0, 0, 1000, 800}, .menuBarHeight = 24};
const ScreenInfo right{.frame = {1000, 0, 2000, 900},
                       .safeAreaTop = 32,
                       .auxiliaryTopLeftWidth = 900,
                       .auxiliaryTopRightWidth = 900};

struct FakeScreens : Screens {
    std::vector<ScreenInfo> all() const override { return screens; }
    std::optional<std::pair<double, double>> pointer() const override { return at; }
    void become(std::vector<ScreenInfo> now) {
        screens = std::move(now);
        changed.emit();
    }
    std::vector<ScreenInfo> screens{left, right};
    std::optional<std::pair<double, double>> at;
};

struct FakePanel : AlertPanel {
    void show(const Rect& frame, const NotchAlertGeometry&) override { shown = frame; }
    void hide() override { shown.reset(); }
    std::optional<Rect> shown;
};

struct FakeSounds : SystemSounds {
    void play(std::string_view name) override { played += name; }
    std::string played;
};

struct FakePill : BreakPill {
    bool canShowBreak() const override { return isThere; }
    std::optional<double> restingWidth() const override { return std::nullopt; }
    void showBreak(const NotchAlertContent& content) override { shown = content; }
    void endBreak(const std::optional<std::string>& message) override {
        shown.reset();
        ended = message.value_or("nothing");
    }
    bool isThere = true;
    std::optional<NotchAlertContent> shown;
    std::string ended;
};

class NotchAlertControllerTest : public ::testing::Test {
protected:
    NotchAlertControllerTest() {
        controller_.panel = &panel_;
        scheduler_.presenter = &controller_;
    }
    ~NotchAlertControllerTest() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    static std::unique_ptr<Store> open(const std::filesystem::path& folder) {
        auto opened = Store::open(folder / "Tendel.store");
        if (!opened) throw std::runtime_error(opened.error());
        return std::move(opened.value());
    }

    // Far from firing by itself, unless it is edited to.
    ReminderId add(std::string title, std::optional<int> duration = {}) {
        Reminder made;
        made.title = std::move(title);
        made.setStart({16, 0});
        made.intervalMinutes = 1440;
        made.durationSeconds = duration;
        ReminderId id;
        EXPECT_TRUE(store_->save([&](Store::Writer& writer) { id = writer.insert(made); }));
        return id;
    }
    void edit(ReminderId id, const std::function<void(Reminder&)>& change) {
        Reminder changed = *store_->find(id);
        change(changed);
        EXPECT_TRUE(store_->save([&](Store::Writer& writer) { writer.update(changed); }));
    }
    void remove(ReminderId id) {
        EXPECT_TRUE(store_->save([&](Store::Writer& writer) { writer.remove(id); }));
    }
    void due(const std::vector<ReminderId>& ids, Instant at = ten) {
        Upcoming upcoming{.items = {}, .fireDate = at};
        for (const ReminderId id : ids)
            upcoming.items.push_back(Upcoming::Item::of(*store_->find(id)));
        controller_.present(upcoming);
    }
    // Until what was due is open and settled.
    void open() { loop_.advance(1s); }
    void answer(const std::function<void()>& action) {
        action();
        open();
    }

    // What the person sees: title, check mark, number of those that wait; "-" without an alert.
    std::string seen() {
        if (!panel_.shown || controller_.model().phase() == NotchAlertPhase::hidden) return "-";
        const auto& model = controller_.model();
        if (model.showsCompletion()) return "✓ " + model.completionMessage();
        const int count = model.content()->queuedCount;
        return model.content()->title + (count > 0 ? " +" + std::to_string(count) : "");
    }
    // "10:00 Stretch done, …" since the last call.
    std::string takeHistory() {
        std::string all;
        const auto events = store_->events();
        for (std::size_t i = std::exchange(eventsSeen_, events.size()); i < events.size(); ++i)
            all += (all.empty() ? "" : ", ") + calendar_.formatTime(events[i].fireDate) + " " +
                   events[i].reminderTitle + " " + events[i].outcomeRaw;
        return all;
    }
    std::string kept() const {
        std::string all;
        for (const auto& item : scheduler_.kept())
            all += item.title + " " + calendar_.formatTime(*item.missedAt) + " " +
                   std::to_string(int(*item.keptReason)) + "; ";
        return all;
    }
    const NotchAlertActions& actions() const { return controller_.actions(); }

    static inline int folders_ = 0;
    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() /
        ("tendel-alerts-" + std::to_string(::getpid()) + "-" + std::to_string(++folders_));
    Calendar calendar_{"Europe/Berlin", "en_GB"};
    SimulatedEventLoop loop_{ten};
    Defaults defaults_;
    AppSettings settings_{defaults_};
    std::unique_ptr<Store> store_ = open(folder_);
    Presence presence_ = Presence::present;
    ReminderScheduler scheduler_{settings_, *store_, loop_, calendar_, [this] { return presence_; },
                                 3s};
    FakeScreens screens_;
    FakeSounds sounds_;
    FakePanel panel_;
    FakePill pill_;
    NotchAlertController controller_{settings_,  *store_,  loop_,  calendar_,
                                     scheduler_, screens_, sounds_};
    std::size_t eventsSeen_ = 0;
};

TEST_F(NotchAlertControllerTest, ShowsABatchOneByOneAndRecordsEachAnswer) {
    const auto stretch = add("Stretch");
    due({stretch, add("Water"), add("Eyes", 20), add("Stand")});
    open();
    EXPECT_EQ(seen(), "Stretch +3");
    std::string historyWhenNextCame;
    const auto watch = controller_.model().changed.connect([&](auto) {
        if (controller_.model().content()->title == "Water" && historyWhenNextCame.empty())
            historyWhenNextCame = takeHistory();
    });
    actions().done();
    EXPECT_EQ(seen(), "✓ Nice work!");
    loop_.advance(749ms);
    EXPECT_EQ(seen(), "✓ Nice work!");
    loop_.advance(1ms);
    EXPECT_EQ(seen(), "Water +2") << "without tucking in between";
    EXPECT_EQ(historyWhenNextCame, "10:00 Stretch done");
    open();
    actions().snooze();
    EXPECT_EQ(seen(), "Eyes +1") << "no check mark";
    open();
    EXPECT_TRUE(controller_.model().content()->offersHadBreak);
    actions().hadBreak();
    EXPECT_EQ(seen(), "✓ Got it · break counted");
    open();
    EXPECT_EQ(seen(), "Stand");
    answer(actions().skip);
    EXPECT_EQ(seen(), "-");
    EXPECT_EQ(panel_.shown, std::nullopt);
    EXPECT_EQ(takeHistory(), "10:00 Water snoozed, 10:00 Eyes breakTaken, 10:00 Stand skipped");
}

TEST_F(NotchAlertControllerTest, SnoozeComesBackAfterTheMinutesThatTheButtonSaid) {
    const auto stretch = add("Stretch");
    settings_.snoozeMinutes.set(10);
    scheduler_.start();
    due({stretch});
    open();
    settings_.snoozeMinutes.set(20);
    answer(actions().snooze);
    EXPECT_EQ((*scheduler_.upcoming())->fireDate, ten + 1s + 10min);
    loop_.advance(10min + 1s);
    EXPECT_EQ(seen(), "Stretch");
}

TEST_F(NotchAlertControllerTest, ASecondFiringExpiresTheOneThatIsSuperseded) {
    const auto stretch = add("Stretch");
    const auto water = add("Water");
    const auto eyes = add("Eyes");
    due({stretch, water, eyes});
    open();
    due({stretch, water}, ten + 5min);
    EXPECT_EQ(takeHistory(), "10:05 Stretch expired, 10:00 Water expired");
    answer(actions().skip);
    EXPECT_EQ(seen(), "Eyes +1");
    answer(actions().skipAll);
    EXPECT_EQ(seen(), "-");
    EXPECT_EQ(takeHistory(), "10:00 Stretch skipped, 10:00 Eyes skipped, 10:05 Water skipped");
}

TEST_F(NotchAlertControllerTest, HidesAfterTheUnhoveredTimeThatIsSet) {
    struct Row {
        AlertAutoHide setting;
        Duration hovered;
        std::optional<Duration> hides;  // after it was shown, which takes 260 ms until it is open
    };
    for (const auto& [setting, hovered, hides] : {
             Row{AlertAutoHide::after10Seconds, 0s, 10s + 250ms},
             Row{AlertAutoHide::after10Seconds, 20s, 30s},
             Row{AlertAutoHide::after30Seconds, 0s, 30s + 250ms},
             Row{AlertAutoHide::after1Minute, 0s, 60s + 250ms},
             Row{AlertAutoHide::never, 0s, std::nullopt},
         }) {
        settings_.alertAutoHide.set(setting);
        due({add("Stretch")});
        controller_.model().setHovered(true);
        loop_.advance(hovered);
        controller_.model().setHovered(false);
        if (hides) {
            loop_.advance(*hides - hovered - 1ms);
            EXPECT_EQ(takeHistory(), "");
            loop_.advance(1ms);
            EXPECT_EQ(takeHistory(), "10:00 Stretch expired");
            open();
            EXPECT_EQ(seen(), "-");
        } else {
            EXPECT_EQ(loop_.nextDue().has_value(), true) << "opening";
            open();
            EXPECT_EQ(loop_.nextDue(), std::nullopt) << "nothing needs to wake up";
            loop_.advance(24h);
            EXPECT_EQ(seen(), "Stretch");
            answer(actions().skip);
            takeHistory();
        }
    }
}

TEST_F(NotchAlertControllerTest, WhatWaitsTooLongExpiresUnlessAnAnswerRestartsItsClock) {
    const std::vector ids{add("Stretch"), add("Water"), add("Eyes"), add("Stand")};
    for (const AlertAutoHide setting : {AlertAutoHide::never, AlertAutoHide::after10Seconds}) {
        settings_.alertAutoHide.set(setting);
        due({ids[0], ids[1], ids[2]});
        controller_.model().setHovered(true);
        loop_.advance(299s);
        EXPECT_EQ(takeHistory(), "");
        actions().skip();
        EXPECT_EQ(seen(), "Water +1");
        loop_.advance(299s);
        due({ids[3]});
        EXPECT_EQ(seen(), "Water +2");
        loop_.setWallClock(loop_.now() + 1h);
        loop_.advance(1s + 250ms);
        EXPECT_EQ(seen(), "Water +2") << "a clock that is set makes nobody wait longer";
        loop_.advance(300s);
        EXPECT_EQ(seen(), "Water");
        EXPECT_EQ(takeHistory(), "10:00 Stretch skipped, 10:00 Eyes expired, 10:00 Stand expired");
        answer(actions().skip);
        takeHistory();
    }
}

TEST_F(NotchAlertControllerTest, EachWaitsForFiveMinutesOfItsOwn) {
    const std::vector ids{add("Stretch"), add("Water"), add("Eyes")};
    for (const AlertAutoHide setting : {AlertAutoHide::never, AlertAutoHide::after10Seconds}) {
        settings_.alertAutoHide.set(setting);
        due({ids[0]});
        controller_.model().setHovered(true);
        loop_.advance(100s);
        due({ids[1]});
        loop_.advance(100s);
        due({ids[2]});
        if (setting == AlertAutoHide::never) {
            EXPECT_EQ(loop_.nextDue(), loop_.monotonicNow() + 200s + 1us)
                << "not before something can happen";
        }
        loop_.advance(200s + 250ms);
        EXPECT_EQ(takeHistory(), "10:00 Water expired");
        loop_.advance(99s);
        EXPECT_EQ(seen(), "Stretch +1");
        loop_.advance(1s);
        EXPECT_EQ(seen(), "Stretch");
        answer(actions().skip);
        takeHistory();
    }
}

TEST_F(NotchAlertControllerTest, TakesNoAnswerThatIsNotForTheShownAlert) {
    const std::vector ids{add("Stretch"), add("Water"), add("Eyes")};
    actions().done();
    due(ids);
    open();
    actions().done();
    actions().done();
    actions().snooze();
    actions().skipAll();
    EXPECT_EQ(takeHistory(), "10:00 Stretch done") << "the check mark takes no answers";
    open();
    actions().skip();
    actions().skip();
    loop_.advance(300ms);
    actions().done();
    EXPECT_EQ(takeHistory(), "10:00 Water skipped") << "the second half of a double click";
    open();
    actions().skip();
    loop_.advance(200ms);
    actions().skip();
    actions().start();
    actions().hideInPill();
    actions().focus(FocusAlertAction::skipBreak);
    open();
    actions().done();
    EXPECT_EQ(takeHistory(), "10:00 Eyes skipped") << "nor does the closing motion";
}

TEST_F(NotchAlertControllerTest, WhatFallsDueWhileOneTucksInIsShownAfterIt) {
    const auto water = add("Water");
    due({add("Stretch")});
    open();
    actions().done();
    loop_.advance(100ms);
    due({water});
    EXPECT_EQ(seen(), "✓ Nice work!") << "it is not cut short";
    loop_.advance(3s);
    EXPECT_EQ(seen(), "Water");
}

TEST_F(NotchAlertControllerTest, FocusAlertsGoFirstAndRecordNothing) {
    due({add("Stretch"), add("Water")});
    open();
    const FocusAlert focusEnded{FocusAlert::Kind::focusEnded, ten + 5min, 5, false};
    controller_.presentFocus(focusEnded);
    answer(actions().skip);
    EXPECT_EQ(seen(), "Time for a 5 min break +1");
    EXPECT_EQ(controller_.model().content()->style, NotchAlertContent::Style::focusEnded);
    controller_.presentFocus({});
    open();
    EXPECT_EQ(seen(), "Break's over +1") << "the newer announcement takes its place";
    EXPECT_EQ(controller_.model().content()->systemImage, "target");
    std::string told;
    controller_.onFocusAction = [&](FocusAlertAction action) {
        told += std::to_string(int(action));
        controller_.removeFocusAlerts();
    };
    answer([&] { actions().focus(FocusAlertAction::startFocus); });
    EXPECT_EQ(told, "2");
    EXPECT_EQ(seen(), "Water") << "the one behind was not answered";
    actions().focus(FocusAlertAction::startFocus);
    EXPECT_EQ(told, "2") << "a reminder has no such answer";
    controller_.presentSample({});
    answer(actions().skip);
    answer(actions().snooze);
    EXPECT_EQ(seen(), "-");
    EXPECT_EQ(takeHistory(), "10:00 Stretch skipped, 10:00 Water skipped");
}

TEST_F(NotchAlertControllerTest, ABreakRunsToItsEndWhateverTheClockDoes) {
    const auto eyes = add("Eyes", 60);
    for (const bool playsSound : {true, false}) {
        settings_.playsBreakEndSound.set(playsSound);
        sounds_.played.clear();
        due({eyes}, ten);
        open();
        const Instant start = loop_.now();
        actions().start();
        EXPECT_EQ(controller_.model().content()->breakEndsAt, start + 60s);
        loop_.advance(20s);
        loop_.setWallClock(loop_.now() + 3h);
        EXPECT_EQ(controller_.model().content()->breakEndsAt, loop_.now() + 40s);
        loop_.setWallClock(loop_.now() - 5h);
        EXPECT_EQ(loop_.nextDue(), loop_.monotonicNow() + 40s) << "and sleeps until then";
        actions().start();
        loop_.advance(39s);
        EXPECT_EQ(seen(), "Eyes") << "it is not hidden";
        loop_.sleep(10min);
        EXPECT_EQ(seen(), "✓ Nice work!");
        EXPECT_EQ(sounds_.played, playsSound ? "Glass" : "");
        EXPECT_EQ(takeHistory(), "10:00 Eyes done");
        loop_.advance(2s);
        EXPECT_EQ(seen(), "-");
    }
}

TEST_F(NotchAlertControllerTest, ABreakMovesIntoThePillOnceThePointerLeaves) {
    controller_.pill = &pill_;
    const auto eyes = add("Eyes", 30);
    struct Row {
        int length;
        Duration hovered;
        std::optional<Duration> moves;
    };
    for (const auto& [length, hovered, moves] : {
             Row{30, 0s, 1500ms},
             Row{30, 3s + 900ms, 4s},
             Row{30, 28s + 700ms, 28s + 750ms},
             Row{30, 28s + 800ms, std::nullopt},  // seen at 29 s, with 1 s left
             Row{2, 0s, std::nullopt},
             Row{1, 0s, std::nullopt},
         }) {
        edit(eyes, [&](Reminder& r) { r.durationSeconds = length; });
        due({eyes});
        open();
        controller_.model().setHovered(true);
        actions().start();
        loop_.advance(hovered);
        controller_.model().setHovered(false);
        if (moves) {
            loop_.advance(*moves - hovered - 1ms);
            EXPECT_FALSE(pill_.shown);
            loop_.advance(1ms);
            EXPECT_TRUE(pill_.shown) << length;
            loop_.advance(std::chrono::seconds(length) - *moves);
            EXPECT_EQ(std::exchange(pill_.ended, {}), "Nice work!");
        } else {
            loop_.advance(std::chrono::seconds(length) - hovered);
            EXPECT_EQ(pill_.ended, "");
            EXPECT_EQ(seen(), "✓ Nice work!");
        }
        EXPECT_EQ(takeHistory(), "10:00 Eyes done");
        loop_.advance(3s);
        EXPECT_EQ(seen(), "-");
    }
}

TEST_F(NotchAlertControllerTest, ABreakInThePillKeepsItsPlaceInTheQueue) {
    controller_.pill = &pill_;
    screens_.at = {1500, 10};
    const auto eyes = add("Eyes", 60);
    due({eyes});
    open();
    controller_.model().setHovered(true);
    actions().start();
    EXPECT_TRUE(controller_.model().content()->canHideInPill);
    answer(actions().hideInPill);
    EXPECT_TRUE(pill_.shown);
    EXPECT_EQ(seen(), "-");
    due({add("Water")});
    EXPECT_EQ(seen(), "-") << "it waits for the end of the break";
    loop_.setWallClock(loop_.now() + 1h);
    EXPECT_EQ(pill_.shown->breakEndsAt, loop_.now() + 59s);
    pill_.isThere = false;
    screens_.become({left});
    open();
    EXPECT_FALSE(pill_.shown);
    EXPECT_EQ(seen(), "Eyes +1") << "the pill went with its screen, the break did not";
    pill_.isThere = true;
    answer(actions().hideInPill);
    EXPECT_TRUE(pill_.shown);
    answer(actions().done);
    EXPECT_EQ(pill_.ended, "Nice work!");
    EXPECT_EQ(seen(), "Water");
    EXPECT_EQ(takeHistory(), "10:00 Eyes done");
}

TEST_F(NotchAlertControllerTest, ABreakInThePillEndingInTheMomentOfAFiringLosesNeither) {
    controller_.pill = &pill_;
    const auto eyes = add("Eyes", 59);
    const auto water = add("Water");
    edit(water, [](Reminder& r) { r.setStart({10, 1}); });
    due({eyes, add("Stretch")});
    open();
    actions().start();
    loop_.advance(10s);
    scheduler_.start();
    loop_.advance(49s + 1s);
    EXPECT_EQ(loop_.now(), ten + 61s);
    EXPECT_EQ(seen(), "Stretch +1");
    answer(actions().skip);
    EXPECT_EQ(seen(), "Water");
    EXPECT_EQ(takeHistory(), "10:00 Eyes done, 10:00 Stretch skipped");
}

TEST_F(NotchAlertControllerTest, LeavingAndGettingBusyHandTheAlertsBack) {
    const auto stretch = add("Stretch");
    const auto eyes = add("Eyes", 60);
    const auto water = add("Water");
    const auto dueAll = [&] {
        due({stretch, eyes});
        due({water}, ten + 3min);
        controller_.presentFocus({});
        controller_.presentSample({});
        open();
    };
    dueAll();
    controller_.userWentAway();
    EXPECT_EQ(kept(), "Stretch 10:00 3; Water 10:03 3; ");
    EXPECT_EQ(takeHistory(), "10:00 Eyes breakTaken");
    open();
    EXPECT_EQ(seen(), "-");
    scheduler_.presenceDidChange(Presence::present);
    loop_.advance(4s);
    EXPECT_EQ(seen(), "Stretch +1");
    EXPECT_EQ(controller_.model().content()->notice, "Missed at 10:00 · you were away");
    controller_.userGotBusy(Presence::busyCall);
    EXPECT_EQ(kept(), "Stretch 10:00 3; Water 10:03 3; ")
        << "when it was first missed, and the stronger reason";
    scheduler_.pause(ten + 1h);

    open();
    due({eyes, stretch}, ten + 5min);
    open();
    actions().start();
    controller_.userGotBusy(Presence::busyPresentation);
    EXPECT_EQ(kept(), "Stretch 10:05 1; ");
    EXPECT_EQ(seen(), "Eyes") << "a started break goes on";
    controller_.userWentAway();
    loop_.advance(60s);
    EXPECT_EQ(takeHistory(), "10:05 Eyes done");
}

TEST_F(NotchAlertControllerTest, FollowsEditsAndDeletionsOfReminders) {
    const std::vector ids{add("Stretch"), add("Water"), add("Eyes", 60), add("Stand"),
                          add("Nap", 60)};
    due(ids);
    open();
    edit(ids[0], [](Reminder& r) {
        r.title = "Reach";
        r.setKind(ReminderKind::private_);
    });
    EXPECT_EQ(seen(), "Reach +4");
    EXPECT_EQ(controller_.model().content()->kind, ReminderKind::private_);
    remove(ids[1]);
    EXPECT_EQ(seen(), "Reach +3");
    remove(ids[0]);
    EXPECT_EQ(seen(), "Eyes +2");
    open();
    actions().start();
    edit(ids[2], [](Reminder& r) { r.isOn = false; });
    edit(ids[3], [](Reminder& r) { r.isOn = false; });
    EXPECT_EQ(seen(), "Eyes +1") << "who started the break goes on with it";
    remove(ids[2]);
    EXPECT_EQ(seen(), "Nap");
    open();
    edit(ids[4], [](Reminder& r) { r.durationSeconds = 0; });
    EXPECT_EQ(controller_.model().content()->durationSeconds, std::nullopt);
    actions().start();
    EXPECT_EQ(controller_.model().content()->breakEndsAt, std::nullopt);
    edit(ids[4], [](Reminder& r) { r.isOn = false; });
    loop_.advance(5min);
    EXPECT_EQ(seen(), "-");
    EXPECT_EQ(takeHistory(), "") << "withdrawn is neither answered nor missed";
}

TEST_F(NotchAlertControllerTest, OpensWhereThePointerIsAndOutlivesItsScreen) {
    const std::vector ids{add("Stretch"), add("Water"), add("Eyes")};
    screens_.at = {1500, 300};
    settings_.alertAutoHide.set(AlertAutoHide::after10Seconds);
    due({ids[0]});
    open();
    EXPECT_EQ(panel_.shown, (Rect{1766, 0, 468, 212}));
    EXPECT_TRUE(controller_.model().hasNotch);
    screens_.become({left, right});
    EXPECT_EQ(panel_.shown->x, 1766) << "nothing happened to its screen";
    screens_.become({left});
    EXPECT_EQ(panel_.shown, (Rect{266, 0, 468, 204})) << "none has the pointer: the main one";
    EXPECT_FALSE(controller_.model().hasNotch);
    screens_.become({});
    EXPECT_EQ(seen(), "-");
    due({ids[1]});
    loop_.advance(1h);
    EXPECT_EQ(takeHistory(), "10:00 Water expired")
        << "waiting went on, but nobody could see the first";
    settings_.alertStyle.set(AlertStyle::compact);
    screens_.become({right});
    EXPECT_EQ(panel_.shown, (Rect{1780, 0, 440, 112}));
    EXPECT_EQ(seen(), "Stretch");
    due({ids[2]});
    answer(actions().skip);
    EXPECT_EQ(seen(), "Eyes");
    screens_.become({});
    controller_.dismissAll();
    open();
    due({ids[2]});
    open();
    screens_.become({left});
    EXPECT_EQ(seen(), "Eyes") << "it fell due while there was no screen";
}

TEST_F(NotchAlertControllerTest, DismissingAllRecordsNothingAndEndsARunningBreak) {
    controller_.pill = &pill_;
    due({add("Eyes", 60), add("Water")});
    open();
    actions().start();
    loop_.advance(2s);
    EXPECT_TRUE(pill_.shown);
    controller_.dismissAll();
    EXPECT_EQ(pill_.ended, "nothing");
    loop_.advance(1h);
    EXPECT_EQ(seen(), "-");
    EXPECT_EQ(sounds_.played, "");
    EXPECT_EQ(takeHistory(), "");
    EXPECT_EQ(loop_.nextDue(), std::nullopt);
}

}  // namespace
}  // namespace tendel
