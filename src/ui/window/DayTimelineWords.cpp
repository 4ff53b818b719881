#include "ui/window/DayTimelineWords.h"

#include <array>
#include <string_view>

namespace tendel {

namespace {

using Mark = DayTimeline::Mark;
using State = DayTimeline::State;

constexpr std::size_t mostLines = 6;

std::string keptText(std::optional<KeptReason> reason) {
    if (reason == KeptReason::focus) return "waits for the end of your focus block";
    if (reason == KeptReason::presentation) return "waits for the end of your presentation";
    if (reason == KeptReason::call) return "waits for the end of your call";
    return "waits until you are back";
}

std::string stateText(const Mark& mark) {
    switch (mark.state) {
        case State::done:
            return "done";
        case State::missed:
            return "missed";
        case State::snoozed:
            return "snoozed";
        case State::kept:
            return keptText(mark.keptReason);
        case State::showing:
            return "waits for you";
        case State::coming:
            break;
    }
    return "coming";
}

// With when it was answered, where it was.
std::string wholeStateText(const Mark& mark, const Calendar& calendar) {
    std::string text = stateText(mark);
    const bool wasAnswered = mark.state == State::done || mark.state == State::snoozed;
    if (wasAnswered && mark.respondedAt) text += " at " + calendar.formatTime(*mark.respondedAt);
    return text;
}

std::string titleOf(const Mark& mark) {
    if (mark.count == 1) return mark.title;
    return mark.title + " and " + std::to_string(mark.count - 1) + " more";
}

// "3 done · 1 missed"; what is kept and what is shown both wait.
std::string countsText(std::span<const Mark> marks) {
    std::array<int, DayTimeline::states> counts{};
    for (const Mark& mark : marks)
        counts[static_cast<std::size_t>(mark.state)] += mark.count;
    const auto of = [&](State state) { return counts[static_cast<std::size_t>(state)]; };
    std::string text;
    const auto add = [&](int count, std::string_view word) {
        if (count == 0) return;
        if (!text.empty()) text += " · ";
        (text += std::to_string(count)) += word;
    };
    add(of(State::done), " done");
    add(of(State::missed), " missed");
    add(of(State::snoozed), " snoozed");
    add(of(State::kept) + of(State::showing), " waiting");
    add(of(State::coming), " to come");
    return text;
}

}  // namespace

DayTimelineWords DayTimelineWords::of(std::span<const Mark> marks, const Calendar& calendar) {
    const auto sentenceOf = [&](const Mark& mark) {
        return titleOf(mark) + ", " + calendar.formatTime(mark.at) + ", " +
               wholeStateText(mark, calendar);
    };
    const Mark& first = marks.front();
    if (marks.size() == 1)
        return {.title = titleOf(first),
                .lines = {calendar.formatTime(first.at) + ", " + wholeStateText(first, calendar)},
                .sentence = sentenceOf(first)};

    int all = 0;
    for (const Mark& mark : marks)
        all += mark.count;
    const bool isOneTime = first.at == marks.back().at;
    DayTimelineWords words;
    words.title = std::to_string(all) + (isOneTime ? " alerts at " : " alerts around ") +
                  calendar.formatTime(marks[marks.size() / 2].at);
    words.sentence = words.title + ": ";
    const bool fits = marks.size() <= mostLines;
    if (!fits) {
        words.lines.push_back(countsText(marks));
        words.sentence += words.lines.front() + "; ";
    }
    int told = 0;
    for (const Mark& mark : marks.first(fits ? marks.size() : mostLines - 2)) {
        const std::string time = isOneTime ? std::string() : calendar.formatTime(mark.at) + " ";
        words.lines.push_back(time + titleOf(mark) + ", " + stateText(mark));
        if (told > 0) words.sentence += "; ";
        words.sentence += sentenceOf(mark);
        told += mark.count;
    }
    if (!fits) {
        words.lines.push_back("and " + std::to_string(all - told) + " more");
        words.sentence += "; " + words.lines.back();
    }
    return words;
}

std::string summary(const DayTimeline& timeline) {
    const std::string text = countsText(timeline.marks);
    return text.empty() ? "No alerts today" : text;
}

std::string workText(const DayTimeline& timeline, const Calendar& calendar) {
    if (timeline.workStart == timeline.workEnd) return "Day off";
    return "Work from " + calendar.formatTime(timeline.workStart) + " to " +
           calendar.formatTime(timeline.workEnd);
}

}  // namespace tendel
