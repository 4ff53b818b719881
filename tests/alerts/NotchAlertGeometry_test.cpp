#include "alerts/NotchAlertGeometry.h"

#include <gtest/gtest.h>

#include <ostream>

namespace tendel {

std::ostream& operator<<(std::ostream& out, const AlertOutline& o) {
    return out << o.width << "×" << o.height << " " << o.topRadius << "/" << o.bottomRadius;
}

namespace {

using Phase = NotchAlertPhase;

const ScreenInfo plain{.frame = {1920, 100, 1000, 800}, .menuBarHeight = 24};
const ScreenInfo notched{.frame = {0, 0, 1512, 982},
                         .menuBarHeight = 33,
                         .safeAreaTop = 32,
                         .auxiliaryTopLeftWidth = 656,
                         .auxiliaryTopRightWidth = 656};

TEST(NotchAlertGeometryTest, FindsANotchOnlyWhereEverythingIsReported) {
    EXPECT_EQ(notched.notchSize(), (Size{200, 32}));
    ScreenInfo screen = notched;
    screen.safeAreaTop = 0;
    EXPECT_EQ(screen.notchSize(), std::nullopt);
    screen = notched;
    screen.auxiliaryTopRightWidth.reset();
    EXPECT_EQ(screen.notchSize(), std::nullopt);
}

TEST(NotchAlertGeometryTest, OutlinesByPhaseStyleNotchAndPill) {
    struct Row {
        ScreenInfo screen;
        std::optional<double> pill;
        AlertStyle style;
        AlertOutline hidden, peek, expanded, done;
    };
    ScreenInfo wide = notched;
    wide.auxiliaryTopLeftWidth = wide.auxiliaryTopRightWidth = 631;  // a notch of 250
    const auto full = AlertStyle::full;
    const auto compact = AlertStyle::compact;
    const AlertOutline drop{44, 34, 5, 17};
    for (const Row& row : {
             Row{plain, {}, full, {}, drop, {388, 164, 14, 28}, {280, 82, 10, 22}},
             Row{plain, {}, compact, {}, drop, {360, 64, 10, 16}, {280, 82, 10, 22}},
             Row{notched,
                 {},
                 full,
                 {200, 32, 0, 9},
                 {236, 38, 6, 14},
                 {388, 172, 14, 28},
                 {290, 90, 10, 22}},
             Row{notched,
                 288,
                 full,
                 {288, 32, 6, 12},
                 {324, 38, 6, 14},
                 {388, 172, 14, 28},
                 {290, 90, 10, 22}},
             Row{wide,
                 {},
                 compact,
                 {250, 32, 0, 9},
                 {286, 38, 6, 14},
                 {360, 72, 10, 16},
                 {340, 90, 10, 22}},
         }) {
        const auto geometry = NotchAlertGeometry::of(row.screen, row.pill, row.style);
        EXPECT_EQ(geometry.outline(Phase::hidden), row.hidden);
        EXPECT_EQ(geometry.outline(Phase::peek), row.peek);
        EXPECT_EQ(geometry.outline(Phase::expanded), row.expanded);
        EXPECT_EQ(geometry.outline(Phase::done), row.done);
    }
}

TEST(NotchAlertGeometryTest, PanelHangsFromTheMiddleOfTheScreensTopEdge) {
    const auto frame = [](const ScreenInfo& screen, AlertStyle style) {
        return NotchAlertGeometry::of(screen, {}, style).panelFrame(screen.frame);
    };
    EXPECT_EQ(frame(plain, AlertStyle::full), (Rect{1920 + 266, 100, 468, 24 + 140 + 40}));
    EXPECT_EQ(frame(plain, AlertStyle::compact), (Rect{1920 + 280, 100, 440, 24 + 80}));
    EXPECT_EQ(frame(notched, AlertStyle::full), (Rect{522, 0, 468, 32 + 180}));
}

}  // namespace
}  // namespace tendel
