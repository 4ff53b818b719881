#include <gtest/gtest.h>

#include <cmath>

#include "support/WholeApplication.h"
#include "ui/remote/RemoteControl.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

// With a break of a minute due at 10:00 and a plan of 25 minutes of focus and 5 of break.
class RemoteControlTest : public ::testing::Test, protected test::WholeApplication {
protected:
    RemoteControlTest() {
        app.settings.focusPlan.set({.focusMinutes = 25, .breakMinutes = 5, .longBreakEvery = {}});
        save([](Store::Writer& writer) {
            Reminder reminder;
            reminder.title = "Stretch";
            reminder.setStart({10, 0});
            reminder.durationSeconds = 60;
            writer.insert(reminder);
        });
        app.start();
        loop.advance({});
        shown_ = remote.alertShown.connect([this](const auto& title, const auto&) {
            // Whoever hears of it finds it there.
            told += title + (remote.state()->alertTitle == title ? " shown; " : " not there; ");
        });
        closed_ = remote.alertClosed.connect([this](const auto& title, const auto& outcome) {
            told += title + " " + (outcome.empty() ? "without outcome" : outcome) + "; ";
        });
    }

    // The first word of why it was refused, or what the session and the pause then are.
    std::string after(RemoteControl::Refused refused) {
        static constexpr std::array kinds{"InvalidArgument", "NotPaused", "NoAlert",
                                          "NoFocusSession", "NotPossibleNow"};
        remote.refresh();
        if (refused) return kinds.at(static_cast<std::size_t>(refused->kind));
        const RemoteState& state = *remote.state();
        std::string all = state.focusPhase;
        if (state.isFocusPaused)
            all += " paused " + std::to_string(std::lround(state.focusPausedRemaining));
        if (state.focusRound > 1) all += " round " + std::to_string(state.focusRound);
        if (state.focusEndsAt) all += " to " + calendar.formatTime(*state.focusEndsAt);
        if (!state.holdReason.empty()) all += " | " + state.holdReason;
        if (state.holdUntil) all += " to " + calendar.formatTime(*state.holdUntil);
        return all;
    }
    std::string answers() {
        remote.refresh();
        std::string all = remote.state()->alertTitle;
        for (const auto& answer : remote.state()->alertAnswers)
            all += " " + answer;
        return all;
    }
    std::string heard() {
        loop.advance({});
        return std::exchange(told, {});
    }

    AlertHoldMonitor hold{app.scheduler, app.presence.state(), app.focus, loop};
    RemoteControl remote{app, hold.current()};
    std::string told;
    Subscription shown_, closed_;
};

TEST_F(RemoteControlTest, RunsAFocusSessionAndRefusesWhatItsPhaseDoesNotAllow) {
    using Request = RemoteControl::Refused (RemoteControl::*)();
    const auto start = &RemoteControl::startFocus, pause = &RemoteControl::pauseFocus,
               resume = &RemoteControl::resumeFocus, skip = &RemoteControl::skipFocus,
               more = &RemoteControl::extendFocus, moreBreak = &RemoteControl::extendBreak,
               stop = &RemoteControl::stopFocus;
    const struct {
        Request request;
        std::string result;
    } steps[] = {
        {start, "focus to 09:55 | focus to 09:55"},
        {start, "NotPossibleNow"},
        {resume, "NotPossibleNow"},
        {more, "NotPossibleNow"},
        {moreBreak, "NotPossibleNow"},
        {pause, "focus paused 1500"},
        {pause, "NotPossibleNow"},
        {start, "NotPossibleNow"},
        {resume, "focus to 09:55 | focus to 09:55"},
        {skip, "shortBreak to 09:35"},
        {more, "focus to 09:35 | focus to 09:35"},
        {skip, "shortBreak to 09:35"},
        {skip, "ready"},
        {pause, "NotPossibleNow"},
        {moreBreak, "shortBreak to 09:35"},
        {skip, "ready"},
        {start, "focus round 2 to 09:55 | focus to 09:55"},
        {stop, ""},
    };
    for (int number = 0; const auto& step : steps)
        EXPECT_EQ(after((remote.*step.request)()), step.result) << "step " << ++number;
}

TEST_F(RemoteControlTest, AnswersWhatTheAlertOffersAndTellsWhatBecameOfIt) {
    EXPECT_EQ(after(remote.answer("done")), "NoAlert");
    workUntil("10:00:05");
    EXPECT_EQ(heard(), "Stretch shown; ");
    EXPECT_EQ(answers(), "Stretch start done snooze skip hadBreak");
    EXPECT_EQ(after(remote.answer("skipBreak")), "InvalidArgument");
    EXPECT_EQ(after(remote.answer("more")), "InvalidArgument");
    EXPECT_EQ(after(remote.answer("")), "InvalidArgument");
    EXPECT_EQ(after(remote.answer("snooze")), "");
    EXPECT_EQ(heard(), "Stretch snoozed; ");
    EXPECT_EQ(after(remote.answer("done")), "NoAlert");

    workUntil("10:05:10");
    EXPECT_EQ(heard(), "Stretch shown; ");
    EXPECT_EQ(after(remote.answer("start")), "");
    EXPECT_EQ(remote.state()->breakEndsAt, loop.now() + 60s);
    EXPECT_EQ(answers(), "Stretch done skip");
    EXPECT_EQ(heard(), "");
    workUntil("10:06:15");
    EXPECT_EQ(heard(), "Stretch done; ");
    EXPECT_EQ(answers(), "");
}

TEST_F(RemoteControlTest, FollowsABreakIntoThePillAndItsEndThere) {
    screens.become({{.frame = {0, 0, 1000, 800},
                     .menuBarHeight = 24,
                     .safeAreaTop = 32,
                     .auxiliaryTopLeftWidth = 400,
                     .auxiliaryTopRightWidth = 400}});
    workUntil("10:00:05");
    EXPECT_EQ(after(remote.answer("start")), "");
    EXPECT_EQ(answers(), "Stretch hideInPill done skip");
    EXPECT_EQ(after(remote.answer("hideInPill")), "");
    EXPECT_EQ(answers(), "Stretch done skip");
    EXPECT_EQ(after(remote.answer("hideInPill")), "InvalidArgument");
    EXPECT_EQ(heard(), "Stretch shown; ");
    workUntil("10:01:10");
    EXPECT_EQ(heard(), "Stretch done; ");
}

TEST_F(RemoteControlTest, TellsOfAlertsThatGoUnansweredAndOfTheFocusTimers) {
    workUntil("10:00:05");
    EXPECT_EQ(after(remote.pauseFor(1)), " | pause to 10:01");
    EXPECT_EQ(heard(), "Stretch shown; Stretch without outcome; ");

    EXPECT_EQ(after(remote.startFocus()), "focus to 10:25 | pause to 10:01");
    workUntil("10:25:05");
    EXPECT_EQ(answers(), "Time for a 5 min break done extendFocus skipBreak");
    EXPECT_EQ(after(remote.answer("skipBreak")), "ready");
    EXPECT_EQ(heard(), "Time for a 5 min break shown; Time for a 5 min break without outcome; ");
}

// Neither in place of the one before, nor behind its check mark.
TEST_F(RemoteControlTest, RefusesAnAnswerToAnAlertThatNobodyHasSeenYet) {
    save([](Store::Writer& writer) {
        Reminder reminder;
        reminder.title = "Water";
        reminder.setStart({10, 0});
        writer.insert(reminder);
    });
    workUntil("10:00:05");
    Upcoming::Item sample;
    sample.title = "Sample";
    app.alerts.presentSample(sample);
    EXPECT_EQ(after(remote.answer("skip")), "");
    EXPECT_EQ(after(remote.answer("done")), "NotPossibleNow");
    EXPECT_EQ(answers(), "Water done snooze skip skipAll");
    loop.advance(1s);
    EXPECT_EQ(after(remote.answer("done")), "");
    EXPECT_EQ(after(remote.answer("skip")), "NoAlert");
    loop.advance(1s);
    EXPECT_EQ(after(remote.answer("skip")), "");
    EXPECT_EQ(heard(),
              "Stretch shown; Stretch skipped; Water shown; Water done; Sample shown; "
              "Sample without outcome; ");
}

}  // namespace
}  // namespace tendel
