#include "ui/alert/AlertAnswers.h"

namespace tendel {

namespace {

using Style = NotchAlertContent::Style;

// "20 s", "2 min", "1:30 min".
QString lengthText(int seconds) {
    if (seconds < 60) return QStringLiteral("%1 s").arg(seconds);
    const int minutes = seconds / 60;
    if (seconds % 60 == 0) return QStringLiteral("%1 min").arg(minutes);
    return QStringLiteral("%1:%2 min").arg(minutes).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

}  // namespace

std::vector<AlertAnswer> answersTo(const NotchAlertContent& content) {
    using enum AlertAnswer;
    std::vector<AlertAnswer> answers;
    if (content.style == Style::focusEnded) {
        answers = {done, extendFocus, skipBreak};
    } else if (content.style == Style::breakEnded) {
        answers = {startFocus, extendBreak, skip};
    } else if (content.breakEndsAt) {
        if (content.canHideInPill) answers.push_back(hideInPill);
        answers.insert(answers.end(), {done, skip});
    } else {
        if (content.durationSeconds) answers.push_back(start);
        answers.insert(answers.end(), {done, snooze, skip});
    }
    if (content.offersHadBreak) answers.push_back(hadBreak);
    if (content.queuedCount > 0) answers.push_back(skipAll);
    return answers;
}

bool isPrimary(AlertAnswer answer, const NotchAlertContent& content) {
    return !content.breakEndsAt && answer == answersTo(content).front();
}

QString textOf(AlertAnswer answer, const NotchAlertContent& content) {
    switch (answer) {
        case AlertAnswer::start:
            return QStringLiteral("Start ") + lengthText(content.durationSeconds.value_or(0));
        case AlertAnswer::done:
            return QStringLiteral("Done");
        case AlertAnswer::snooze:
            return QStringLiteral("Snooze %1 min").arg(content.snoozeMinutes);
        case AlertAnswer::skip:
            return QStringLiteral("Skip");
        case AlertAnswer::skipAll:
            return QStringLiteral("Skip All");
        case AlertAnswer::hadBreak:
            return QStringLiteral("I had a break");
        case AlertAnswer::hideInPill:
            return QStringLiteral("Hide in the notch");
        case AlertAnswer::extendFocus:
            return QStringLiteral("5 more minutes");
        case AlertAnswer::skipBreak:
            return QStringLiteral("Skip break");
        case AlertAnswer::startFocus:
            return QStringLiteral("Start focus");
        case AlertAnswer::extendBreak:
            return QStringLiteral("5 more minutes of break");
        case AlertAnswer::more:
            return QStringLiteral("More answers");
        case AlertAnswer::back:
            return QStringLiteral("Back");
    }
    return {};
}

std::string_view symbolOf(AlertAnswer answer) {
    switch (answer) {
        case AlertAnswer::start:
        case AlertAnswer::startFocus:
            return "play";
        case AlertAnswer::done:
            return "check";
        case AlertAnswer::snooze:
            return "zzz";
        case AlertAnswer::skip:
        case AlertAnswer::skipAll:
        case AlertAnswer::skipBreak:
            return "forward.end";
        case AlertAnswer::hadBreak:
            return "cup.and.saucer";
        case AlertAnswer::hideInPill:
            return "chevron.up";
        case AlertAnswer::extendFocus:
        case AlertAnswer::extendBreak:
            return "plus";
        case AlertAnswer::more:
            return "ellipsis";
        case AlertAnswer::back:
            return "chevron.left";
    }
    return {};
}

void give(AlertAnswer answer, const NotchAlertActions& actions) {
    switch (answer) {
        case AlertAnswer::start:
            return actions.start();
        case AlertAnswer::done:
            return actions.done();
        case AlertAnswer::snooze:
            return actions.snooze();
        case AlertAnswer::skip:
            return actions.skip();
        case AlertAnswer::skipAll:
            return actions.skipAll();
        case AlertAnswer::hadBreak:
            return actions.hadBreak();
        case AlertAnswer::hideInPill:
            return actions.hideInPill();
        case AlertAnswer::extendFocus:
            return actions.focus(FocusAlertAction::extendFocus);
        case AlertAnswer::skipBreak:
            return actions.focus(FocusAlertAction::skipBreak);
        case AlertAnswer::startFocus:
            return actions.focus(FocusAlertAction::startFocus);
        case AlertAnswer::extendBreak:
            return actions.focus(FocusAlertAction::extendBreak);
        case AlertAnswer::more:
        case AlertAnswer::back:
            return;
    }
}

AlertAnswerRows arranged(const std::vector<AlertAnswer>& answers, double width, double gap,
                         std::size_t limit, const std::function<double(AlertAnswer)>& widthOf) {
    const auto fits = [&](std::size_t count) {
        double taken = 0;
        for (std::size_t i = 0; i < count; ++i)
            taken += widthOf(answers[i]) + gap;
        if (count < answers.size()) taken += widthOf(AlertAnswer::more) + gap;
        return count <= limit && taken - gap <= width;
    };
    std::size_t count = answers.size();
    while (count > 1 && !fits(count))
        --count;
    const auto split = answers.begin() + static_cast<std::ptrdiff_t>(count);
    AlertAnswerRows rows{{answers.begin(), split}, {split, answers.end()}};
    if (!rows.further.empty()) rows.first.push_back(AlertAnswer::more);
    return rows;
}

}  // namespace tendel
