#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "alerts/NotchAlertController.h"

// The desktop as a test wants it to be.
namespace tendel::test {

struct FakeScreens : Screens {
    std::vector<ScreenInfo> screens{{.frame = {0, 0, 1000, 800}, .menuBarHeight = 24}};
    std::optional<std::pair<double, double>> at;

    std::vector<ScreenInfo> all() const override { return screens; }
    std::optional<std::pair<double, double>> pointer() const override { return at; }
    void become(std::vector<ScreenInfo> now) {
        screens = std::move(now);
        changed.emit();
    }
};

struct FakeSounds : SystemSounds {
    std::string played;
    void play(std::string_view name) override { played += name; }
};

struct FakePanel : AlertPanel {
    std::optional<Rect> shown;
    void show(const Rect& frame, const NotchAlertGeometry&) override { shown = frame; }
    void hide() override { shown.reset(); }
};

struct FakePill : BreakPill {
    bool isThere = true;
    std::optional<NotchAlertContent> shown;
    std::string ended;

    bool canShowBreak(const ScreenInfo&) const override { return isThere; }
    bool hasScreen() const override { return isThere; }
    std::optional<double> restingWidth(const ScreenInfo&) const override { return std::nullopt; }
    void showBreak(const NotchAlertContent& content) override { shown = content; }
    void endBreak(const std::optional<std::string>& message) override {
        shown.reset();
        ended = message.value_or("nothing");
    }
};

}  // namespace tendel::test
