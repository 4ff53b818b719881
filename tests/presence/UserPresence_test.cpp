#include "presence/UserPresence.h"

#include <gtest/gtest.h>

#include "base/Iso8601.h"
#include "base/SimulatedEventLoop.h"
#include "support/FakeFacts.h"

namespace tendel {

void PrintTo(Presence presence, std::ostream* out) {
    const char* names[] = {"present", "away", "busyCall", "busyPresentation"};
    *out << names[static_cast<int>(presence)];
}

namespace {

using namespace std::chrono_literals;
using enum Presence;

class UserPresenceTest : public ::testing::Test {
protected:
    UserPresenceTest() {
        presence_.onChange = [this](Presence found) { log_ += name(found) + " "; };
        presence_.onSystemAwayChange = [this](bool away) { log_ += away ? "leaves " : "returns "; };
        presence_.observeSettings();
    }

    static std::string name(Presence presence) { return ::testing::PrintToString(presence); }
    std::string takeLog() { return std::exchange(log_, {}); }
    // Facts: locked, microphone, camera, film, full screen, and u for those not known.
    void set(bool countsAway, bool holds, double idle, std::string_view facts) {
        const auto has = [&](char fact) { return facts.find(fact) != facts.npos; };
        settings_.countsAwayAsBreak.set(countsAway);
        settings_.holdsAlertsWhenBusy.set(holds);
        facts_.setIdle(idle);
        facts_.setLocked(has('l'));
        facts_.setMicrophone(has('m'));
        facts_.setCamera(has('c'));
        facts_.setFilm(has('f'));
        facts_.setFullScreen(has('s'));
        if (!has('u')) return;
        facts_.microphone.found.reset();
        facts_.camera.found.reset();
        facts_.wakeRequests.found.reset();
        facts_.windows.found.reset();
    }
    // Seconds until it looks again; nothing when it does not.
    std::optional<double> untilCheck() const {
        const auto due = loop_.nextDue();
        if (!due) return std::nullopt;
        return toSeconds(*due - loop_.monotonicNow());
    }

    Defaults defaults_;
    AppSettings settings_{defaults_};
    SimulatedEventLoop loop_{*parseIso8601("2026-03-02T09:00:00Z")};
    test::FakeFacts facts_{loop_};
    UserPresence presence_{settings_, loop_, facts_.sources()};
    std::string log_;
};

TEST_F(UserPresenceTest, EvaluatesInItsOrderAndAsksNoMoreThanItNeeds) {
    // With the default threshold of 300 seconds.
    const struct {
        const char* what;
        bool countsAway, holds;
        double idle;
        const char* facts;
        Presence found;
        const char* asked;
    } situations[] = {
        {"free", true, true, 0, "", present, "imcr"},
        {"below the threshold", true, true, 299.5, "", present, "imcr"},
        {"at the threshold", true, true, 300, "", away, "imcr"},
        {"idle, but that does not count", false, true, 9000, "", present, "imcr"},
        {"nothing is wanted", false, false, 9000, "mcfs", present, "i"},
        {"busy does not count", true, false, 10, "mcfs", present, "i"},
        {"locked", true, true, 0, "lm", away, "i"},
        {"locked, whatever is wanted", false, false, 0, "l", away, "i"},
        {"microphone", true, true, 0, "mfs", busyCall, "im"},
        {"camera", true, true, 0, "c", busyCall, "imc"},
        {"a call and idle", true, true, 3600, "m", busyCall, "im"},
        {"a call and idle, not held", true, false, 3600, "c", present, "imc"},
        {"film, idle", true, true, 3600, "f", present, "imcrw"},
        {"film in full screen, idle", true, true, 3600, "fs", busyPresentation, "imcrw"},
        {"film in full screen, idle, not held", true, false, 3600, "fs", present, "imcr"},
        {"presentation", true, true, 10, "fs", busyPresentation, "imcrw"},
        {"full screen alone", true, true, 10, "s", present, "imcr"},
        {"unknown, idle", true, true, 300, "u", away, "imcr"},
        {"unknown, not idle", true, true, 10, "u", present, "imcr"},
    };
    for (const auto& each : situations) {
        SCOPED_TRACE(each.what);
        set(each.countsAway, each.holds, each.idle, each.facts);
        facts_.asked.clear();
        EXPECT_EQ(presence_.refresh(), each.found);
        EXPECT_EQ(*presence_.state(), each.found);
        EXPECT_EQ(facts_.asked, each.asked);
    }
}

TEST_F(UserPresenceTest, SchedulesItsNextLook) {
    const struct {
        const char* what;
        bool countsAway, holds, watches;
        double idle;
        const char* facts;
        std::optional<double> next;
    } cases[] = {
        {"just typed", true, true, false, 0, "", 301},
        {"half a second to go", true, true, false, 299.5, "", 1.5},
        {"an alert is up", true, true, true, 0, "", 15},
        {"the threshold comes before", true, true, true, 295, "", 6},
        {"an alert is up, busy does not count", true, false, true, 0, "", 301},
        {"nothing to wait for", false, true, false, 0, "", std::nullopt},
        {"away does not count, an alert is up", false, true, true, 0, "", 15},
        {"nothing counts, an alert is up", false, false, true, 0, "", std::nullopt},
        {"film", true, true, false, 400, "f", 30},
        {"film, an alert is up", true, true, true, 400, "f", 15},
        {"film, busy does not count", true, false, true, 400, "f", 30},
        {"in a call", true, true, false, 0, "m", 15},
        {"presentation", true, true, false, 400, "fs", 15},
        {"idle", true, true, false, 300, "", 2},
        {"locked", true, true, true, 300, "l", std::nullopt},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        set(each.countsAway, each.holds, each.idle, each.facts);
        loop_.advance(1s);  // the announcement about windows
        facts_.setIdle(each.idle);
        presence_.setWatchesForBusy(!each.watches);
        presence_.refresh();
        presence_.setWatchesForBusy(each.watches);
        EXPECT_EQ(untilCheck(), each.next);
    }
}

TEST_F(UserPresenceTest, LooksJustAfterTheThresholdAndThenOnlyForInput) {
    presence_.refresh();
    loop_.advance(301s);
    EXPECT_EQ(takeLog(), "away ");
    facts_.asked.clear();
    loop_.advance(5s);
    EXPECT_EQ(facts_.asked, "ii");
    facts_.setIdle(0.5);
    loop_.advance(2s);
    EXPECT_EQ(takeLog(), "present ");
}

TEST_F(UserPresenceTest, DoesNotAskForInputThatItIsToldOf) {
    facts_.idle.tells = true;
    presence_.refresh();
    EXPECT_EQ(facts_.idle.threshold, 300);
    loop_.advance(300s);
    facts_.idle.crossed.emit();
    EXPECT_EQ(takeLog(), "away ");
    EXPECT_EQ(untilCheck(), std::nullopt);
    facts_.setIdle(0);
    facts_.idle.crossed.emit();
    EXPECT_EQ(takeLog(), "present ");

    // What told of it is gone while the user is away: from now on it is asked.
    facts_.setIdle(300);
    facts_.idle.crossed.emit();
    facts_.idle.tells = false;
    facts_.idle.crossed.emit();
    EXPECT_EQ(untilCheck(), 2);

    settings_.idleMinutes.set(10);
    EXPECT_EQ(facts_.idle.threshold, 600);
    settings_.countsAwayAsBreak.set(false);
    EXPECT_EQ(facts_.idle.threshold, std::nullopt);
}

TEST_F(UserPresenceTest, HearsOfWhatChangesAtOnceAndTellsOnce) {
    const struct {
        std::function<void()> change;
        const char* log;
    } steps[] = {
        {[&] { facts_.setMicrophone(true); }, "busyCall "},
        {[&] { facts_.setCamera(true); }, ""},
        {[&] { settings_.holdsAlertsWhenBusy.set(false); }, "present "},
        {[&] { settings_.holdsAlertsWhenBusy.set(true); }, "busyCall "},
        // The owner hears of an absence before the state, and of the return after it.
        {[&] { facts_.setLocked(true); }, "leaves away "},
        {[&] { facts_.setMicrophone(false); }, ""},
        {[&] { facts_.setLocked(true); }, ""},
        {[&] { facts_.system.set(SystemState::screensAsleep, true); }, ""},
        {[&] { facts_.setLocked(false); }, ""},
        {[&] { facts_.system.set(SystemState::screensAsleep, std::nullopt); }, "busyCall returns "},
        {[&] { facts_.setCamera(false); }, "present "},
        {[&] { facts_.setFullScreen(true); }, ""},
        {[&] { facts_.setFilm(true); }, "busyPresentation "},
        {[&] { facts_.setFilm(false); }, "present "},
        {[&] {
             facts_.setIdle(200);
             settings_.idleMinutes.set(3);
         },
         "away "},
    };
    for (std::size_t i = 0; i < std::size(steps); ++i) {
        SCOPED_TRACE(i);
        steps[i].change();
        EXPECT_EQ(takeLog(), steps[i].log);
    }
}

TEST_F(UserPresenceTest, TakesACallOfTwoHoursForAForgottenMicrophone) {
    facts_.idle.isKnown = false;
    facts_.setMicrophone(true);
    loop_.advance(1h);
    loop_.setWallClock(loop_.now() - 3h);  // how long it lasts does not depend on the date
    loop_.advance(1h - 16s);
    EXPECT_EQ(takeLog(), "busyCall ");
    loop_.advance(16s);
    EXPECT_EQ(takeLog(), "present ");
    loop_.advance(5h);
    EXPECT_EQ(presence_.refresh(), present);
    facts_.setMicrophone(false);
    EXPECT_EQ(takeLog(), "");
    facts_.setMicrophone(true);
    EXPECT_EQ(takeLog(), "busyCall ");
}

TEST_F(UserPresenceTest, BelievesTheFirstSourceThatCanTell) {
    test::FakeFacts second(loop_);
    PresenceSources sources = facts_.sources();
    const PresenceSources others = second.sources();
    sources.idle.push_back(others.idle[0]);
    sources.microphones.push_back(others.microphones[0]);
    sources.wakeRequests.push_back(others.wakeRequests[0]);
    sources.windows.push_back(others.windows[0]);
    UserPresence presence(settings_, loop_, sources);

    second.setIdle(400);
    EXPECT_EQ(presence.refresh(), present);
    facts_.idle.isKnown = false;
    EXPECT_EQ(presence.refresh(), away);
    second.idle.isKnown = false;
    EXPECT_EQ(presence.refresh(), present);

    second.setFilm(true);
    second.setFullScreen(true);
    EXPECT_EQ(presence.refresh(), present);
    facts_.windows.found.reset();
    EXPECT_EQ(presence.refresh(), busyPresentation);
    second.setMicrophone(true);
    EXPECT_EQ(presence.refresh(), busyCall);
}

}  // namespace
}  // namespace tendel
