#include "ui/alert/AlertAnswers.h"

#include <gtest/gtest.h>

namespace tendel {
namespace {

using enum AlertAnswer;
using Answers = std::vector<AlertAnswer>;

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
