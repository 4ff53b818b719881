#include "focus/FocusTimer.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <sstream>

#include "focus/FocusWords.h"
#include "storage/Files.h"
#include "support/FakeDesktop.h"
#include "support/ReminderServices.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;
using Operation = void (FocusTimer::*)();

// Shows what it is given at once, and remembers it.
struct Screen : FocusAlertPresenting, ReminderAlertPresenting {
    std::string shown, focusAlert;

    void presentFocusAlert(const FocusAlert& alert) override {
        focusAlert = alert.title();
        add(focusAlert);
    }
    void removeFocusAlerts() override { focusAlert.clear(); }
    void present(const Upcoming& upcoming) override { add(upcoming.title()); }
    void dismissAll() override {}
    std::string take() { return std::exchange(shown, {}); }

private:
    void add(const std::string& title) { shown += (shown.empty() ? "" : ", ") + title; }
};

// At 10:00 in Berlin, with 25 minutes of focus and 5 of break.
class FocusTimerTest : public ::testing::Test, protected test::ReminderServices {
protected:
    FocusTimerTest() : ReminderServices("2026-03-02T10:00:00+01:00") {
        timer.presenter = &screen;
        scheduler.presenter = &screen;
        settings.focusPlan.set({.focusMinutes = 25, .breakMinutes = 5, .longBreakEvery = {}});
    }

    // Begins at 10:00 and does in turn what the words say: operations by their names, "5m" lets
    // time pass, "sleep:5m" while the computer sleeps, "clock:-3h" sets the wall clock, "present",
    // "away" and "busy" tell of the user.
    void run(const std::string& script) {
        static const std::map<std::string_view, Operation> operations{
            {"start", &FocusTimer::start},
            {"pause", &FocusTimer::pause},
            {"resume", &FocusTimer::resume},
            {"skip", &FocusTimer::skip},
            {"startNextFocus", &FocusTimer::startNextFocus},
            {"extendFocus", &FocusTimer::extendFocus},
            {"extendBreak", &FocusTimer::extendBreak},
            {"stop", &FocusTimer::stop},
            {"quit", &FocusTimer::appWillTerminate}};
        timer.stop();
        presence = Presence::present;
        loop.setWallClock(ten);
        screen.take();
        sounds.played.clear();
        std::istringstream words(script);
        for (std::string word; words >> word;) {
            if (const auto found = operations.find(word); found != operations.end())
                (timer.*found->second)();
            else if (word.starts_with("sleep:"))
                loop.sleep(length(word.substr(6)));
            else if (word.starts_with("clock:"))
                loop.setWallClock(loop.now() + length(word.substr(6)));
            else if (word == "present" || word == "away" || word == "busy")
                timer.presenceDidChange(presence = word == "present" ? Presence::present
                                                   : word == "away"  ? Presence::away
                                                                     : Presence::busyCall);
            else
                loop.advance(length(word));
        }
    }
    static Duration length(const std::string& text) {
        const double unit = text.ends_with("h") ? 3600 : text.ends_with("m") ? 60 : 1;
        return seconds(std::stod(text) * unit);
    }
    std::string state() const {
        const auto& session = *timer.session();
        if (!session) return "none";
        const char* const phases[] = {"focus ", "break ", "long ", "ready "};
        const auto phase = static_cast<std::size_t>(session->phase);
        std::string text = session->isExtension ? "more " : phases[phase];
        text += std::to_string(session->round);
        if (session->phase == FocusSession::Phase::ready) return text;
        return (session->pausedRemaining ? "paused " : "") + text + " " +
               clockText(session->remaining(loop.now()));
    }
    // "10:00-10:25 25/25 finished", with seconds where they are no whole minutes.
    std::string text(const FocusBlock& block) const {
        const int seconds = block.focusedSeconds;
        return time(block.start) + "-" + (block.end ? time(*block.end) : "") + " " +
               (seconds % 60 ? clockText(seconds) : std::to_string(seconds / 60)) + "/" +
               std::to_string(block.plannedMinutes) + (block.finished ? " finished" : "");
    }
    std::string blocks() const {
        std::string all;
        for (const FocusBlock& block : store->focusBlocks())
            all += (all.empty() ? "" : ", ") + text(block);
        return all;
    }
    const Instant ten = loop.now();
    Screen screen;
    test::FakeSounds sounds;
    FocusTimer timer{settings, *store, loop, scheduler, sounds, [this] { return presence; }};
};

TEST_F(FocusTimerTest, LongBreaksComeAfterTheirRounds) {
    struct Case {
        FocusPlan plan;
        std::string breaks;
    };
    for (const auto& [plan, breaks] : {Case{{25, 5, 4}, "5 5 5 15L 5 5 5 15L "},
                                       {{50, 15, 2}, "15 15 15 15 15 15 15 15 "},
                                       {{25, 10, 3}, "10 10 30L 10 10 30L 10 10 "},
                                       {{25, 11, 1}, "11 11 11 11 11 11 11 11 "},
                                       {{25, 5, 0}, "15L 15L 15L 15L 15L 15L 15L 15L "},
                                       {{25, 5, -3}, "15L 15L 15L 15L 15L 15L 15L 15L "},
                                       {{-7, 0, {}}, "1 1 1 1 1 1 1 1 "},
                                       {{30, 5, {}}, "5 5 5 5 5 5 5 5 "}}) {
        settings.focusPlan.set(plan);
        std::string seen;
        timer.start();
        for (int round = 1; round <= 8; ++round) {
            loop.advanceTo(*(*timer.session())->endsAt);
            const auto& session = **timer.session();
            EXPECT_EQ(session.round, round);
            EXPECT_EQ(session.endsAt, loop.now() + seconds(session.phaseDuration));
            seen += std::to_string(int(session.phaseDuration) / 60);
            seen += session.phase == FocusSession::Phase::longBreak ? "L " : " ";
            loop.advanceTo(*session.endsAt);
            timer.skip();
        }
        EXPECT_EQ(seen, breaks);
    }
}

TEST_F(FocusTimerTest, EveryOperationInEveryPhase) {
    const std::vector<std::string> operations{
        "pause", "resume", "skip", "startNextFocus", "extendFocus", "extendBreak", "stop", "start"};
    const std::string f = "focus 1 15:00", b = "break 1 4:00", r = "ready 1", n = "none",
                      pf = "paused " + f, pb = "paused " + b, fresh = "break 1 5:00",
                      next = "focus 2 25:00", more = "more 1 5:00", first = "focus 1 25:00";
    const std::map<std::string, std::vector<std::string>> results{
        {"", {n, n, n, n, n, n, n, first}},
        {"start 10m", {pf, f, fresh, f, f, f, n, first}},
        {"start 10m pause", {pf, f, fresh, pf, pf, pf, n, first}},
        {"start 26m", {pb, b, r, b, more, b, n, first}},
        {"start 26m pause", {pb, b, r, pb, more, pb, n, first}},
        {"start 31m", {r, r, next, next, r, fresh, n, first}}};
    for (const auto& [phase, expected] : results) {
        for (std::size_t i = 0; i < operations.size(); ++i) {
            run(phase);
            const std::string before = state(), alert = screen.focusAlert;
            run(phase + " " + operations[i]);
            EXPECT_EQ(state(), expected[i]) << phase << " " << operations[i];
            EXPECT_EQ(screen.focusAlert, state() == before ? alert : "");
            EXPECT_EQ(*scheduler.isHoldingReminders(),
                      state().starts_with("focus") || state().starts_with("more"));
        }
    }
    timer.stop();
    for (const FocusBlock& block : store->focusBlocks())
        EXPECT_TRUE(block.end) << text(block);
}

TEST_F(FocusTimerTest, ABlockHoldsWhatWasFocusedAndNoMore) {
    const std::vector<std::array<std::string, 2>> cases{
        {"10m", "focus 1 15:00; 10:00- 0/25"},
        {"26m", "break 1 4:00; 10:00-10:25 25/25 finished"},
        {"9m 20.5s skip", "break 1 5:00; 10:00-10:09 9:21/25"},
        {"10m stop", "none; 10:00-10:10 10/25"},
        {"10m quit", "focus 1 15:00; 10:00-10:10 10/25"},
        {"10m start 1m stop", "none; 10:10-10:11 1/25"},
        {"10m pause 1h", "paused focus 1 15:00; 10:00- 10/25"},
        {"10m pause 1h stop", "none; 10:00-11:10 10/25"},
        {"10m pause 1h resume 5m pause 1h resume 15m", "ready 1; 10:00-12:25 25/25 finished"},
        {"23m 30s pause 1h resume 89s", "focus 1 0:01; 10:00- 23:30/25"},
        {"26m extendFocus 1m", "more 1 4:00; 10:00- 25/30 finished"},
        {"26m extendFocus 9m", "break 1 1:00; 10:00-10:31 30/30 finished"},
        {"26m extendFocus 2m stop", "none; 10:00-10:28 27/30 finished"},
        {"26m extendFocus 2m pause 1h resume 4m", "break 1 4:00; 10:00-11:31 30/30 finished"},
        {"26m extendFocus 6m extendFocus 6m", "break 1 4:00; 10:00-10:37 35/35 finished"},
        {"26m extendFocus 6m skip skip 25m", "break 2 5:00; 10:32-10:57 25/25 finished"},
        {"5m skip 1m extendFocus 6m", "break 1 4:00; 10:00-10:11 10/30"},
        // Sleep ends phases when they were to end,
        {"10m sleep:14m", "focus 1 1:00; 10:00- 0/25"},
        {"10m sleep:17m", "break 1 3:00; 10:00-10:25 25/25 finished"},
        {"10m sleep:9h", "ready 1; 10:00-10:25 25/25 finished"},
        // and setting the clock neither ends nor prolongs them.
        {"10m clock:-3h 14m 59.9s", "focus 1 0:01; 10:00- 0/25"},
        {"10m clock:-3h 15m", "break 1 5:00; 07:00-07:25 25/25 finished"},
        {"10m clock:24m 14m 59.9s", "focus 1 0:01; 10:00- 0/25"},
        {"10m clock:48h 15m", "break 1 5:00; 10:00-10:25 25/25 finished"},
        {"26m clock:48h 3m", "break 1 1:00; 10:00-10:25 25/25 finished"}};
    for (const auto& [script, expected] : cases) {
        run("start " + script);
        EXPECT_EQ(state() + "; " + text(store->focusBlocks().back()), expected) << script;
    }
    // Whoever is quicker than the tick on waking up does not make the block longer.
    run("start");
    loop.schedule(loop.monotonicNow() + 1s, [&] { timer.stop(); });
    loop.sleep(3h);
    EXPECT_EQ(text(store->focusBlocks().back()), "10:00-10:25 25/25 finished");
}

TEST_F(FocusTimerTest, AnEndIsToldByPresence) {
    const std::string pause = "Time for a 5 min break", over = "Break's over";
    const std::vector<std::array<std::string, 2>> cases{
        {"26m", pause + "; Glass"},
        {"31m", pause + ", " + over + "; GlassHero"},
        {"sleep:9h", over + "; Hero"},
        {"away 31m", "; GlassHero"},
        {"busy 31m", "; "},
        // What was held back is shown once, and only while it applies.
        {"busy 26m present present", pause + "; "},
        {"busy 26m away present", pause + "; "},
        {"busy 31m present", over + "; "},
        {"away sleep:9h present", over + "; Hero"},
        {"busy 26m skip present", "; "},
        {"busy 26m pause present", "; "},
        {"busy 26m pause resume present", "; "},
        {"busy 26m extendFocus present", "; "},
        {"busy 31m startNextFocus present", "; "},
        {"busy 31m extendBreak present", "; "},
        {"busy 31m extendBreak skip present", "; "},
        {"busy 31m stop start present", "; "}};
    for (const auto& [script, expected] : cases) {
        run("start " + script);
        EXPECT_EQ(screen.take() + "; " + sounds.played, expected) << script;
    }
    // Nobody has told yet that the user is there again.
    run("start busy 26m");
    presence = Presence::present;
    loop.advance(5min);
    timer.presenceDidChange(presence);
    EXPECT_EQ(screen.take(), over);
    settings.playsBreakEndSound.set(false);
    run("start 31m");
    EXPECT_EQ(sounds.played, "");
}

TEST_F(FocusTimerTest, HoldsRemindersAndReleasesThemOnTheInstant) {
    add("Stretch", {.start = {10, 5}, .intervalMinutes = 1440});
    scheduler.start();
    const std::vector<std::array<std::string, 2>> cases{
        {"10m pause", "Stretch"}, {"10m skip", "Stretch"},
        {"10m stop", "Stretch"},  {"25m", "Time for a 5 min break, Stretch"},
        {"24m 59.9s", ""},        {"busy 10m stop", ""}};
    for (const auto& [script, shown] : cases) {
        run("clock:-1m start " + script);
        EXPECT_EQ(screen.take(), shown) << script;
        if (script != cases.back()[0]) scheduler.pause(loop.now());  // forgets what is kept
    }
    EXPECT_EQ(kept(), "Stretch 10:05 2");
}

TEST_F(FocusTimerTest, TicksAtTheWholeMinutesBeforeTheEnd) {
    std::string seen;
    const auto watch = timer.now().observe([&] {
        if (*timer.session()) seen += clockText((*timer.session())->remaining(*timer.now())) + " ";
    });
    settings.focusPlan.set({.focusMinutes = 2, .breakMinutes = 1, .longBreakEvery = {}});
    timer.start();
    loop.advance(30s);
    timer.pause();
    seen.clear();
    loop.advance(45min);
    EXPECT_EQ(seen, "1:30 ") << "now and then, for the interface";
    seen.clear();
    timer.resume();
    loop.advance(150s);
    EXPECT_EQ(seen, "1:30 1:00 1:00 0:00 ");
    timer.stop();
    EXPECT_FALSE(loop.nextDue()) << "nothing wakes up without a session";
}

TEST_F(FocusTimerTest, BlocksLeftRunningEndAtTheLatestTheyCan) {
    struct Case {
        int secondsSaved;
        Duration gone;
        std::string closed;
    };
    for (const auto& [secondsSaved, gone, closed] : {Case{0, 3h, "10:00-10:25 25/25"},
                                                     {0, 90s, "10:00-10:01 1:30/25"},
                                                     {0, -2h, "10:00-10:00 0/25"},
                                                     {600, 3h, "10:00-10:25 10/25"},
                                                     {600, 15min, "10:00-10:15 10/25"}}) {
        FocusBlock left;
        left.start = ten;
        left.plannedMinutes = 25;
        left.focusedSeconds = secondsSaved;
        save([&](Store::Writer& writer) { writer.insert(left); });
        loop.setWallClock(ten + gone);
        timer.closeBlocksLeftRunning();
        EXPECT_EQ(text(store->focusBlocks().back()), closed);
    }
    const std::string before = blocks();
    loop.advance(1h);
    timer.closeBlocksLeftRunning();
    EXPECT_EQ(blocks(), before);
}

TEST_F(FocusTimerTest, BlocksThatCouldNotBeSavedGoAlongLater) {
    {
        const FullDisk full(0);
        timer.start();
        loop.advance(30min);
        timer.skip();
        loop.advance(10min);
        timer.stop();
    }
    EXPECT_EQ(blocks(), "");
    timer.appWillTerminate();
    EXPECT_EQ(blocks(), "10:00-10:25 25/25 finished, 10:30-10:40 10/25");
}

TEST(FocusWords, TellTheRoundTheTimeAndWhatComes) {
    const Instant now = *parseIso8601("2026-03-02T10:00:00Z");
    struct Case {
        FocusSession::Phase phase;
        int round;
        double left;
        std::string text;
    };
    using Phase = FocusSession::Phase;
    for (const auto& [phase, round, left, text] :
         {Case{Phase::focus, 2, 720, "Focusing · round 2 · 12 min left · then a 5 min break"},
          {Phase::focus, 4, 719.2, "Focusing · round 4 · 12 min left · then a 15 min long break"},
          {Phase::focus, 1, 60.1, "Focusing · round 1 · 2 min left · then a 5 min break"},
          {Phase::focus, 1, 60, "Focusing · round 1 · 60 s left · then a 5 min break"},
          {Phase::shortBreak, 1, 0.4, "Break · round 1 · 1 s left · then round 2"},
          {Phase::longBreak, 4, 900, "Long break · round 4 · 15 min left · then round 5"},
          {Phase::ready, 2, 0, "Ready for round 3"}}) {
        FocusSession session{.plan = {25, 5, 4}, .round = round};
        session.begin(phase, now, left);
        EXPECT_EQ(statusText(session, now), text);
    }
    FocusSession paused{.plan = {25, 5, {}}, .endsAt = {}, .pausedRemaining = 90};
    EXPECT_EQ(statusText(paused, now), "Paused · round 1 · 2 min left · then a 5 min break");
    EXPECT_EQ(clockText(1499.2) + " " + clockText(6.01) + " " + clockText(-3), "25:00 0:07 0:00");
}

}  // namespace
}  // namespace tendel
