#include "menubar/LiveActivity.h"

#include <gtest/gtest.h>

namespace tendel {
namespace {

using namespace std::chrono_literals;
using Detail = LiveActivity::Detail;

const Instant ten = parseIso8601("2026-03-02T10:00:00+01:00").value();

TEST(LiveActivityTest, TimeTextsAndWhenTheyChange) {
    struct Row {
        double left;
        std::string compact, full;
        double compactWait, fullWait;  // seconds until something looks different
    };
    const LiveActivity activity{.endsAt = ten, .duration = 1500};  // its ring moves every 6 s
    for (const Row& row : {
             Row{1440.5, "25m", "24:01", 0.5, 0.5},
             Row{1440, "24m", "24:00", 6, 1},
             Row{60.25, "2m", "1:01", 0.25, 0.25},
             Row{60, "1:00", "1:00", 1, 1},
             Row{0.5, "0:01", "0:01", 0.5, 0.5},
             Row{3599, "60m", "59:59", 5, 1},
             Row{3599.5, "60m", "1h 0m", 5.5, 0.5},
             Row{3601, "61m", "1h 1m", 1, 1},
         }) {
        const Instant now = ten - seconds(row.left);
        EXPECT_EQ(activity.compactText(now), row.compact) << row.left;
        EXPECT_EQ(activity.fullText(now), row.full) << row.left;
        EXPECT_EQ(activity.untilNextChange(now, Detail::compact), seconds(row.compactWait));
        EXPECT_EQ(activity.untilNextChange(now, Detail::full), seconds(row.fullWait));
    }
    EXPECT_EQ(activity.compactText(ten + 1h), "0:00");
    EXPECT_EQ(activity.untilNextChange(ten + 1h, Detail::full), std::nullopt);
    EXPECT_EQ(activity.progressLeft(ten - 375s), 0.25);
    EXPECT_EQ(LiveActivity{.endsAt = ten}.progressLeft(ten - 1s), 0) << "of no length";
    LiveActivity paused = activity;
    paused.pausedRemaining = 90;
    EXPECT_EQ(paused.compactText(ten - 1s), "2m");
    EXPECT_EQ(paused.untilNextChange(ten - 1s, Detail::full), std::nullopt);
}

TEST(LiveActivityTest, OffersWhatTheFocusTimerCanDoInThePhase) {
    const Calendar calendar("Europe/Berlin", "en_GB");
    const auto said = [&](FocusSession::Phase phase, std::optional<double> paused = {}) {
        FocusSession session;
        session.begin(phase, ten, 300);
        if (paused) session.endsAt.reset();
        session.pausedRemaining = paused;
        const auto activity = LiveActivity::focus(session, LiveActivity::Control::mute, calendar);
        std::string all = activity.title + ". " + *activity.subtitle + ".";
        for (const auto control : activity.controls)
            all += " " + controlTitle(activity, control) + ",";
        return all + " " + activity.compactText(ten);
    };
    using Phase = FocusSession::Phase;
    EXPECT_EQ(said(Phase::focus, 200),
              "Paused. Then a 5 min break. Resume, Skip to Break, Stop, Mute, 4m");
    EXPECT_EQ(said(Phase::shortBreak),
              "Break. Until 10:05. Step away from the screen.. Pause, Skip Break, Stop, Mute, 5m");
    EXPECT_EQ(said(Phase::ready),
              "Break's over. Ready for the next focus block?. Start Focus, "
              "5 more minutes of break, Stop, Mute, Ready");
}

}  // namespace
}  // namespace tendel
