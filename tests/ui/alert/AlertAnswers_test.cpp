#include "ui/alert/AlertAnswers.h"

#include <gtest/gtest.h>

namespace tendel {
namespace {

using enum AlertAnswer;
using Answers = std::vector<AlertAnswer>;

TEST(AlertAnswersTest, OfferWhatTheContentAllows) {
    using Style = NotchAlertContent::Style;
    NotchAlertContent plain;
    NotchAlertContent offersBreak;
    offersBreak.durationSeconds = 20;
    offersBreak.offersHadBreak = true;
    NotchAlertContent othersWait;
    othersWait.queuedCount = 2;
    NotchAlertContent running = offersBreak;
    running.offersHadBreak = false;
    running.breakEndsAt = Instant{};
    running.canHideInPill = true;
    NotchAlertContent focusEnded;
    focusEnded.style = Style::focusEnded;
    NotchAlertContent breakEnded;
    breakEnded.style = Style::breakEnded;

    struct Case {
        NotchAlertContent content;
        Answers answers;
        bool hasPrimary = true;
    };
    for (const Case& c : {Case{plain, {done, snooze, skip}},
                          Case{offersBreak, {start, done, snooze, skip, hadBreak}},
                          Case{othersWait, {done, snooze, skip, skipAll}},
                          Case{running, {hideInPill, done, skip}, false},
                          Case{focusEnded, {done, extendFocus, skipBreak}},
                          Case{breakEnded, {startFocus, extendBreak, skip}}}) {
        EXPECT_EQ(answersTo(c.content), c.answers);
        EXPECT_EQ(isPrimary(c.answers.front(), c.content), c.hasPrimary);
    }
}

TEST(AlertAnswersTest, NameTheLengthOfTheBreak) {
    NotchAlertContent content;
    for (const auto& [seconds, text] :
         std::initializer_list<std::pair<int, const char*>>{{20, "Start 20 s"},
                                                            {60, "Start 1 min"},
                                                            {90, "Start 1:30 min"},
                                                            {605, "Start 10:05 min"}}) {
        content.durationSeconds = seconds;
        EXPECT_EQ(textOf(start, content), QString::fromLatin1(text));
    }
}

TEST(AlertAnswersTest, PutsWhatDoesNotFitUnderTheEllipsis) {
    const auto width = [](AlertAnswer answer) { return answer == more ? 30.0 : 100.0; };
    struct Case {
        double width;
        std::size_t limit;
        Answers first;
        Answers further;
    };
    const Answers all{done, snooze, skip};
    for (const Case& c :
         {Case{320, 9, all, {}}, Case{319, 9, {done, snooze, more}, {skip}},
          Case{250, 9, {done, snooze, more}, {skip}}, Case{249, 9, {done, more}, {snooze, skip}},
          Case{10, 9, {done, more}, {snooze, skip}}, Case{900, 2, {done, snooze, more}, {skip}},
          Case{900, 3, all, {}}}) {
        const AlertAnswerRows rows = arranged(all, c.width, 10, c.limit, width);
        EXPECT_EQ(rows.first, c.first) << c.width;
        EXPECT_EQ(rows.further, c.further) << c.width;
    }
}

}  // namespace
}  // namespace tendel
