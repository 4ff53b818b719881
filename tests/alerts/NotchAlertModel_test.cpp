#include "alerts/NotchAlertModel.h"

#include <gtest/gtest.h>

#include <sstream>

#include "base/SimulatedEventLoop.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;
namespace Motion = NotchAlertMotion;

// Writes down every change: time in ms, phase, text and check mark, curve.
class NotchAlertModelTest : public ::testing::Test {
protected:
    NotchAlertModelTest() {
        model_.onHidden = [this] { log_ << elapsed() << " gone\n"; };
    }

    static NotchAlertContent content(std::string title) {
        return {.id = AlertQueue::Entry::newId(), .title = std::move(title)};
    }
    Duration::rep elapsed() const { return (loop_.monotonicNow() - start_).count() / 1000; }
    // What happens from now on, until nothing moves any more.
    std::string play(const std::function<void()>& action) {
        log_.str("");
        start_ = loop_.monotonicNow();
        action();
        loop_.advance(10s);
        return log_.str();
    }
    std::string present(std::string title) {
        return play([&] { model_.present(content(title)); });
    }
    std::string dismiss() {
        return play([&] { model_.dismiss(); });
    }
    void write(std::optional<MotionCurve> curve) {
        const char* phases[] = {"hidden", "peek", "expanded", "done"};
        log_ << elapsed() << " " << phases[int(model_.phase())];
        if (model_.showsContent()) log_ << " " << model_.content()->title;
        if (model_.showsCompletion()) log_ << " ✓" << model_.completionMessage();
        log_ << ": " << nameOf(curve) << "\n";
    }
    static std::string nameOf(const std::optional<MotionCurve>& curve) {
        if (!curve) return "at once";
        const std::pair<const char*, MotionCurve> names[] = {
            {"bulge", Motion::bulge},
            {"drop", Motion::drop},
            {"expand", Motion::expand},
            {"contentIn", Motion::contentIn},
            {"contentOut", Motion::contentOut},
            {"collapse", Motion::collapse},
            {"collapseToDrop", Motion::collapseToDrop},
            {"dropOut", Motion::dropOut},
            {"swap", Motion::swap},
            {"completion", Motion::completion},
            {"reduced", Motion::reduced},
            {"compactGrow", Motion::compactGrow},
            {"compactShrink", Motion::compactShrink}};
        for (const auto& [name, known] : names)
            if (known == *curve) return name;
        return "unknown";
    }

    SimulatedEventLoop loop_{Instant{}};
    NotchAlertModel model_{loop_};
    MonotonicInstant start_;
    std::ostringstream log_;
    Subscription changed_ = model_.changed.connect([this](auto curve) { write(curve); });
};

TEST_F(NotchAlertModelTest, GrowsOutOfTheNotchAndTucksIn) {
    model_.hasNotch = true;
    EXPECT_EQ(present("A"), "0 peek: bulge\n280 expanded: expand\n400 expanded A: contentIn\n");
    EXPECT_TRUE(model_.isInteractive());
    EXPECT_EQ(dismiss(), "0 expanded: contentOut\n80 hidden: collapse\n530 gone\n");
    EXPECT_EQ(dismiss(), "") << "there is nothing to hide";
    model_.setHovered(true);
    model_.speed = 4;
    EXPECT_EQ(present("B"), "0 peek: bulge\n70 expanded: expand\n100 expanded B: contentIn\n");
    EXPECT_TRUE(model_.isHovered());
    dismiss();
    EXPECT_FALSE(model_.isHovered()) << "nobody sees the pointer leave what is gone";
}

TEST_F(NotchAlertModelTest, FallsAsADropWhereThereIsNoNotch) {
    EXPECT_EQ(present("A"), "0 peek: drop\n140 expanded: expand\n260 expanded A: contentIn\n");
    EXPECT_EQ(dismiss(),
              "0 expanded: contentOut\n80 peek: collapseToDrop\n340 hidden: dropOut\n790 gone\n");
}

TEST_F(NotchAlertModelTest, CompactAndReducedOpenAndCloseInOneStep) {
    model_.style = AlertStyle::compact;
    EXPECT_EQ(present("A"), "0 expanded A: compactGrow\n");
    EXPECT_EQ(dismiss(), "0 hidden: compactShrink\n450 gone\n");
    model_.reduceMotion = true;
    for (const AlertStyle style : {AlertStyle::compact, AlertStyle::full}) {
        model_.style = style;
        EXPECT_EQ(present("A"), "0 expanded A: reduced\n");
        EXPECT_EQ(present("B"), "0 expanded B: reduced\n");
        EXPECT_EQ(play([&] { model_.celebrate({}); }),
                  "0 done B ✓Nice work!: reduced\n750 hidden ✓Nice work!: reduced\n1200 gone\n");
    }
}

TEST_F(NotchAlertModelTest, CompletionGoesOnToTheNextOrTucksIn) {
    model_.hasNotch = true;
    present("A");
    EXPECT_EQ(play([&] { model_.complete(content("B"), "Well done"); }),
              "0 done A ✓Well done: completion\n750 expanded B: expand\n");
    EXPECT_EQ(play([&] { model_.celebrate({}); }),
              "0 done B ✓Nice work!: completion\n750 done ✓Nice work!: contentOut\n"
              "830 hidden ✓Nice work!: collapse\n1280 gone\n");
}

TEST_F(NotchAlertModelTest, WhatComesNextReplacesWhatRuns) {
    present("A");
    EXPECT_EQ(present("B"), "0 expanded B: swap\n");
    EXPECT_EQ(play([&] {
                  model_.celebrate(content("C"));
                  loop_.advance(300ms);
                  model_.dismiss();
                  loop_.advance(200ms);
                  model_.present(content("E"));
              }),
              "0 done B ✓Nice work!: completion\n300 done ✓Nice work!: contentOut\n"
              "380 peek ✓Nice work!: collapseToDrop\n500 peek: drop\n640 expanded: expand\n"
              "760 expanded E: contentIn\n");
    EXPECT_EQ(play([&] {
                  model_.dismiss();
                  loop_.advance(500ms);
                  EXPECT_FALSE(model_.isHidden()) << "the drop is still leaving";
                  model_.dismiss();
              }),
              "0 expanded: contentOut\n80 peek: collapseToDrop\n340 hidden: dropOut\n790 gone\n");
    EXPECT_TRUE(model_.isHidden());
}

TEST_F(NotchAlertModelTest, RewritesWhatIsShownOrComesAfterTheCheckMark) {
    NotchAlertContent a = content("A");
    NotchAlertContent b = content("B");
    play([&] { model_.present(a); });
    a.title = "A2";
    EXPECT_EQ(play([&] { model_.refresh(a); }), "0 expanded A2: at once\n");
    EXPECT_EQ(play([&] { model_.refresh(a); }), "") << "nothing differs";
    EXPECT_EQ(play([&] { model_.refresh(b); }), "") << "another alert's";
    EXPECT_EQ(play([&] {
                  model_.celebrate(b);
                  b.title = "B2";
                  model_.refresh(b);
                  model_.setQueuedCount(3);
              }),
              "0 done A2 ✓Nice work!: completion\n0 done A2 ✓Nice work!: at once\n"
              "750 expanded B2: expand\n");
    EXPECT_EQ(model_.content()->queuedCount, 3);
}

}  // namespace
}  // namespace tendel
