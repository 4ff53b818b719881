#include <gtest/gtest.h>

#include <cstdio>

#include "base/SimulatedEventLoop.h"
#include "sound/FocusSoundController.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;
using Phase = FocusSession::Phase;
using Row = FocusSoundRules::Row;

// "brown 0.60 rain 1.00", "silence".
std::string text(const SoundLevels& levels) {
    std::string all;
    for (const auto& [sound, level] : levels) {
        char number[16];
        std::snprintf(number, sizeof number, "%.2f", double{level});
        all += (all.empty() ? "" : " ") + std::string(rawValue(sound)) + " " + number;
    }
    return all.empty() ? "silence" : all;
}

const SoundMix brownMix{.levels = {{FocusSound::brown, 0.5}}, .on = {FocusSound::brown}};
const SoundMix rainMix{.levels = {}, .on = {FocusSound::rain}};

TEST(FocusSoundRules, OnlyWhatIsOnAndTurnedUpIsAudible) {
    using enum FocusSound;
    const SoundMix mix{.levels = {{brown, 0.25}, {pink, 0}, {white, -1}, {ocean, 0.9}, {fan, 7}},
                       .on = {brown, pink, white, FocusSound::rain, fan}};
    EXPECT_EQ(text(audible(mix)), "brown 0.25 rain 0.60 fan 1.00");
}

TEST(FocusSoundRules, ThePhaseChoosesTheMix) {
    struct Case {
        std::optional<Phase> phase;
        bool isPaused, isMuted;
        std::optional<Row> preview;
        std::string wanted;
    };
    for (const auto& [phase, isPaused, isMuted, preview, wanted] :
         {Case{Phase::focus, false, false, {}, "brown 0.50"},
          {Phase::shortBreak, false, false, {}, "rain 0.60"},
          {Phase::longBreak, false, false, {}, "rain 0.60"},
          {Phase::ready, false, false, {}, "silence"},
          {Phase::focus, true, false, {}, "silence"},
          {Phase::focus, false, true, {}, "silence"},
          {Phase::focus, false, true, Row::breaks, "silence"},
          {Phase::ready, false, false, Row::focus, "silence"},
          {{}, false, false, {}, "silence"},
          {{}, false, false, Row::focus, "brown 0.50"},
          {{}, true, true, Row::breaks, "rain 0.60"}}) {
        FocusSoundRules::Input input{.phase = phase,
                                     .isPaused = isPaused,
                                     .focusMix = brownMix,
                                     .breakMix = rainMix,
                                     .isMuted = isMuted,
                                     .preview = preview};
        EXPECT_EQ(text(FocusSoundRules::wanted(input)), wanted);
        for (bool FocusSoundRules::Input::*reason :
             {&FocusSoundRules::Input::isBusy, &FocusSoundRules::Input::isAwayFromMac}) {
            auto silent = input;
            silent.*reason = true;
            EXPECT_EQ(text(FocusSoundRules::wanted(silent)), "silence");
        }
    }
}

class FocusSoundControllerTest : public ::testing::Test {
protected:
    struct Player : SoundPlaying {
        std::string played;
        void play(const SoundLevels& levels, double fade) override {
            char seconds[16];
            std::snprintf(seconds, sizeof seconds, " in %.1f", fade);
            played += (played.empty() ? "" : ", ") + text(levels) + seconds;
        }
    };

    FocusSoundControllerTest() {
        settings.focusMix.set(brownMix);
        settings.breakMix.set(rainMix);
    }
    void come(std::optional<Phase> phase) {
        session.reset();
        if (phase) session.emplace().begin(*phase, loop.now(), 60);
        controller.sessionDidChange();
    }
    std::string take() { return std::exchange(player.played, {}); }

    SimulatedEventLoop loop{*parseIso8601("2026-03-02T09:00:00Z")};
    Defaults defaults;
    AppSettings settings{defaults};
    Player player;
    std::optional<FocusSession> session;
    FocusSoundController controller{settings, loop, player, [this] { return session; }};
};

TEST_F(FocusSoundControllerTest, HandsOverOnlyDifferencesAndFadesThem) {
    std::string told;
    controller.onPlayingChange = [&](bool plays) { told += plays ? "on " : "off "; };
    come(Phase::focus);
    EXPECT_EQ(take(), "brown 0.50 in 2.0");
    controller.sessionDidChange();
    EXPECT_EQ(take(), "");
    come(Phase::longBreak);
    settings.breakMix.set({.levels = {{FocusSound::rain, 0.5}}, .on = {FocusSound::rain}});
    EXPECT_EQ(take(), "rain 0.60 in 2.0, rain 0.50 in 0.3");
    controller.toggleMute();
    EXPECT_EQ(take(), "silence in 1.0");
    controller.presenceDidChange(Presence::busyCall);
    come(Phase::focus);
    controller.toggleMute();
    controller.presenceDidChange(Presence::away);
    EXPECT_EQ(take(), "");
    controller.presenceDidChange(Presence::present);
    EXPECT_EQ(take(), "brown 0.50 in 1.0");
    settings.focusMix.set({.levels = {{FocusSound::brown, 0.75}}, .on = {FocusSound::brown}});
    controller.edited(Row::focus);
    settings.breakMix.set({});
    controller.edited(Row::breaks);
    EXPECT_EQ(take(), "brown 0.75 in 0.3") << "and nothing of the other row";
    EXPECT_FALSE(*controller.preview());
    come(Phase::ready);
    come({});
    EXPECT_EQ(take(), "silence in 2.0");
    EXPECT_EQ(told, "on on on off on on off ");
    EXPECT_FALSE(loop.nextDue());
}

TEST_F(FocusSoundControllerTest, AnEditIsHeardForAWhileWithoutASession) {
    int changes = 0;
    controller.onChange = [&] { ++changes; };
    controller.toggleMute();
    controller.edited(Row::breaks);
    EXPECT_EQ(take(), "rain 0.60 in 0.3") << "also when muted";
    loop.advance(7s);
    controller.edited(Row::breaks);
    loop.advance(7s);
    EXPECT_EQ(take(), "") << "every touch prolongs it";
    controller.edited(Row::focus);
    EXPECT_EQ(take(), "brown 0.50 in 0.3");
    loop.advance(8s);
    EXPECT_EQ(take(), "silence in 2.0");
    controller.startPreview(Row::focus);
    controller.cancelPreview();
    EXPECT_EQ(take(), "brown 0.50 in 0.3, silence in 0.3");
    controller.startPreview(Row::focus);
    come(Phase::shortBreak);
    EXPECT_EQ(take(), "brown 0.50 in 0.3, silence in 2.0") << "a session ends it";
    controller.startPreview(Row::focus);
    come({});
    EXPECT_EQ(take(), "") << "and it does not come back afterwards";
    EXPECT_EQ(changes, 8);
    EXPECT_FALSE(loop.nextDue());
}

}  // namespace
}  // namespace tendel
