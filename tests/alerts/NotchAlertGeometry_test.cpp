#include "alerts/NotchAlertGeometry.h"

#include <gtest/gtest.h>

namespace tendel {
namespace {

using Phase = NotchAlertPhase;

const ScreenInfo plain{.frame = {1920, 100, 1000, 800}, .menuBarHeight = 24};

ScreenInfo notched(double notchWidth) {
    const double beside = (1512 - notchWidth) / 2;
    return {.frame = {0, 0, 1512, 982},
            .menuBarHeight = 33,
            .safeAreaTop = 32,
            .auxiliaryTopLeftWidth = beside,
            .auxiliaryTopRightWidth = beside};
}

TEST(NotchAlertGeometryTest, OutlinesByPhaseStyleNotchAndPill) {
    const auto full = AlertStyle::full, compact = AlertStyle::compact;
    struct Row {
        ScreenInfo screen;
        std::optional<double> pill;
        AlertStyle style;
        Phase phase;
        AlertOutline expected;
    };
    // There is a notch only where everything about it is reported.
    ScreenInfo noInset = notched(200), noRightArea = notched(200);
    noInset.safeAreaTop = 0;
    noRightArea.auxiliaryTopRightWidth.reset();
    const Row rows[] = {
        {noInset, {}, full, Phase::hidden, {}},
        {noRightArea, {}, full, Phase::hidden, {}},
        {plain, {}, full, Phase::hidden, {}},
        {plain, {}, full, Phase::peek, {44, 34, 5, 17}},
        {plain, {}, full, Phase::expanded, {388, 164, 14, 28}},
        {plain, {}, full, Phase::done, {280, 82, 10, 22}},
        {plain, {}, compact, Phase::expanded, {360, 64, 10, 16}},
        {notched(200), {}, full, Phase::hidden, {200, 32, 0, 9}},
        {notched(200), {}, full, Phase::peek, {236, 38, 6, 14}},
        {notched(200), {}, full, Phase::expanded, {388, 172, 14, 28}},
        {notched(200), {}, full, Phase::done, {290, 90, 10, 22}},
        {notched(200), 288, full, Phase::hidden, {288, 32, 6, 12}},
        {notched(200), 288, full, Phase::peek, {324, 38, 6, 14}},
        {notched(180), {}, full, Phase::done, {280, 90, 10, 22}},
    };
    for (const Row& row : rows) {
        const auto geometry = NotchAlertGeometry::of(row.screen, row.pill, row.style);
        EXPECT_EQ(geometry.outline(row.phase), row.expected) << "row " << &row - rows;
    }
}

TEST(NotchAlertGeometryTest, PanelHangsFromTheMiddleOfTheScreensTopEdge) {
    const auto frame = [](const ScreenInfo& screen, AlertStyle style) {
        return NotchAlertGeometry::of(screen, {}, style).panelFrame(screen.frame);
    };
    EXPECT_EQ(frame(plain, AlertStyle::full), (Rect{1920 + 266, 100, 468, 24 + 140 + 40}));
    EXPECT_EQ(frame(plain, AlertStyle::compact), (Rect{1920 + 280, 100, 440, 24 + 80}));
    EXPECT_EQ(frame(notched(200), AlertStyle::full), (Rect{522, 0, 468, 32 + 180}));
}

}  // namespace
}  // namespace tendel
