#include <gtest/gtest.h>

#include "menubar/Countdown.h"
#include "menubar/MenuBarLabelMonitor.h"
#include "support/FakeDesktop.h"
#include "support/ReminderServices.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

const Instant ten = parseIso8601("2026-03-02T10:00:00+01:00").value();

TEST(CountdownTest, RoundsUpBeforeItSplitsHoursFromMinutes) {
    for (const auto& [left, text] : {std::pair<Duration, std::string>{-1h, "0m"},
                                     {0s, "0m"},
                                     {1us, "1m"},
                                     {59min, "59m"},
                                     {59min + 1s, "1h 0m"},
                                     {65min, "1h 5m"},
                                     {119min + 1us, "2h 0m"}})
        EXPECT_EQ(countdownText(ten, ten + left), text);
}

// "[symbol] text"
std::string seen(const MenuBarLabel& label) {
    return "[" + label.symbol + "] " + label.text;
}

TEST(MenuBarLabelTest, TellsTheFocusTimerThenAPauseThenWhatComesNext) {
    using Phase = FocusSession::Phase;
    Upcoming stretch{.items = std::vector<Upcoming::Item>(1), .fireDate = ten + 11min + 1s};
    stretch.items[0].title = "Stretch";
    const auto label = [&](std::optional<Phase> phase, std::string_view facts) {
        const auto is = [&](char fact) { return facts.find(fact) != facts.npos; };
        FocusSession session;
        session.begin(phase.value_or(Phase::focus), ten, 1500);
        if (is('s')) session.pausedRemaining = 90;
        if (is('s')) session.endsAt.reset();
        return seen(
            MenuBarLabel::of({phase ? std::optional(session) : std::nullopt, ten + 1min + 1s,
                              is('F'), is('p'), is('P'), is('c'), stretch, ten}));
    };
    // Of the facts: the session (s) and reminders (p) are paused, the pill is the place for focus
    // (F) and pauses (P), the countdown is wanted (c).
    EXPECT_EQ(label(Phase::focus, "pPc"), "[target] 24m");
    EXPECT_EQ(label(Phase::longBreak, ""), "[cup.and.saucer] 24m");
    EXPECT_EQ(label(Phase::shortBreak, "sc"), "[pause.circle] ");
    EXPECT_EQ(label(Phase::ready, "pc"), "[target] Ready");
    EXPECT_EQ(label(Phase::focus, "Fpc"), "[pause.circle] ");
    EXPECT_EQ(label(Phase::focus, "FpPc"), "[] Stretch in 12m");
    EXPECT_EQ(label({}, "Fpc"), "[pause.circle] ");
    EXPECT_EQ(label({}, "c"), "[] Stretch in 12m");
    EXPECT_EQ(label({}, "FP"), "[] ");
}

TEST(MenuBarLabelMonitorTest, ChangesOnTheMinutesAndWithWhatItSpeaksOf) {
    test::ReminderServices at("2026-03-02T10:00:20+01:00");
    test::FakeScreens screens;
    test::FakeSounds sounds;
    FocusTimer focus{at.settings,  *at.store, at.loop,
                     at.scheduler, sounds,    [] { return Presence::present; }};
    NotchLiveController live{at.settings, at.loop, screens, [](const auto&) { return false; }};
    MenuBarLabelMonitor monitor{at.settings, at.loop, at.scheduler, focus, live};
    std::string all;
    const auto watch = monitor.label().observe(
        [&] { all += at.time(at.loop.now()) + seen(*monitor.label()) + "; "; });
    const auto during = [&](Duration span) {
        at.loop.advance(span);
        return std::exchange(all, "");
    };
    at.scheduler.start();
    at.add("Stretch", {.start = {10, 3}});
    at.settings.showsMenuBarCountdown.set(true);
    EXPECT_EQ(during(2min),
              "10:00[] Stretch in 3m; 10:01[] Stretch in 2m; 10:02[] Stretch in 1m; ");
    at.settings.focusPlan.set({.focusMinutes = 2, .breakMinutes = 1, .longBreakEvery = {}});
    focus.start();
    EXPECT_EQ(
        during(3min + 1s),
        "10:02[target] 2m; 10:03[target] 1m; 10:04[cup.and.saucer] 1m; 10:05[target] Ready; ");
    at.scheduler.pause(at.loop.now() + 2h);
    EXPECT_EQ(during(1min), "") << "the focus timer goes before a pause";
    screens.become({{.safeAreaTop = 32, .auxiliaryTopLeftWidth = 0, .auxiliaryTopRightWidth = 0}});
    EXPECT_EQ(during(0s), "10:06[] Stretch in 23h 57m; ") << "the pill is the place for both";
    at.settings.showsPausesInNotch.set(false);
    EXPECT_EQ(during(1h), "10:06[pause.circle] ; ");
}

}  // namespace
}  // namespace tendel
