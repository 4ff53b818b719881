#include "ui/window/DayTimelineLayout.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

#include "ui/theme/QtText.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {

using Group = DayTimelineLayout::Group;
using Sign = DayTimelineLayout::Sign;
using State = DayTimeline::State;
using Tick = DayTimelineLayout::Tick;

constexpr double signSize = DayTimelineLayout::signSize;
constexpr double leastLabelGap = 8;
constexpr double leastMarkGap = 4;
constexpr double nowGap = 4;                      // between now and the marks beside it
constexpr double sideMargin = signSize + nowGap;  // so that there is room for one beside now
constexpr double cellWidth = 6;                   // alerts in one are never told apart
constexpr int mostSigns = 2;

// The line shows at least this much, and so much around what is on it.
constexpr Duration shortestSpan = std::chrono::hours(8);
constexpr Duration margin = std::chrono::minutes(20);

bool areApart(const QRectF& a, const QRectF& b) {
    return a.right() + leastLabelGap <= b.left() || b.right() + leastLabelGap <= a.left();
}

class Builder {
public:
    Builder(const DayTimeline& timeline, const Calendar& calendar, double width)
        : timeline_(timeline), calendar_(calendar), width_(width) {
        for (int hour = 0; hour < 24; ++hour) {
            const Instant t = calendar.time(timeline.day, hour, 0);
            // An hour that the day skips.
            if (hours_.empty() || t > hours_.back()) hours_.push_back(t);
        }
        hours_.push_back(timeline.day.end);
        findSpan();
    }

    DayTimelineLayout build() {
        if (timeline_.workStart < timeline_.workEnd) {
            layout_.workLeft = xOf(timeline_.workStart);
            layout_.workRight = xOf(timeline_.workEnd);
        }
        placeTicks();
        // What is over stays left of now, what is to come right of it.
        const auto& marks = timeline_.marks;
        const auto split = static_cast<std::size_t>(
            std::ranges::upper_bound(marks, timeline_.now, {}, &DayTimeline::Mark::at) -
            marks.begin());
        group(0, split, 0, layout_.now.x - nowGap);
        group(split, marks.size(), layout_.now.x + nowGap, width_);
        return std::move(layout_);
    }

private:
    void findSpan() {
        Instant first = timeline_.now;
        Instant last = timeline_.now;
        const auto include = [&](Instant t) {
            first = std::min(first, t);
            last = std::max(last, t);
        };
        if (timeline_.workStart < timeline_.workEnd) {
            include(timeline_.workStart);
            include(timeline_.workEnd);
        }
        if (!timeline_.marks.empty()) {
            include(timeline_.marks.front().at);
            include(timeline_.marks.back().at);
        }
        const Instant middle = first + (last - first) / 2;
        first = std::min(first - margin, middle - shortestSpan / 2);
        first = std::min(first, timeline_.day.end - shortestSpan);
        last = std::max(last + margin, first + shortestSpan);
        const auto start = std::ranges::upper_bound(hours_, first);
        spanStart_ = start == hours_.begin() ? hours_.front() : *(start - 1);
        const auto end = std::ranges::lower_bound(hours_, last);
        spanEnd_ = end == hours_.end() ? hours_.back() : *end;
    }

    double xOf(Instant t) const {
        return sideMargin + (width_ - 2 * sideMargin) * toSeconds(t - spanStart_) /
                                toSeconds(spanEnd_ - spanStart_);
    }

    Tick labelled(Instant t, bool isSemibold) const {
        Tick tick{.x = xOf(t), .label = toQString(calendar_.formatTime(t))};
        const QFontMetricsF metrics(DayTimelineLayout::captionFont(isSemibold));
        const double wide = std::ceil(metrics.horizontalAdvance(tick.label));
        const double left = std::clamp(tick.x - wide / 2, 0.0, std::max(0.0, width_ - wide));
        tick.box = {left, DayTimelineLayout::labelTop, wide, DayTimelineLayout::labelHeight};
        return tick;
    }

    // Of the labels every first, second, third … that leaves room for all, and none where the time
    // of now stands.
    void placeTicks() {
        layout_.now = labelled(timeline_.now, true);
        for (const int step : {1, 2, 3, 4, 6, 12}) {
            layout_.ticks.clear();
            bool fits = true;
            std::optional<QRectF> before;
            for (const Instant t : hours_) {
                if (t < spanStart_ || t > spanEnd_) continue;
                const LocalTime local = calendar_.localTime(t);
                Tick tick{.x = xOf(t)};
                if (local.minute == 0 && local.hour % step == 0) {
                    Tick with = labelled(t, false);
                    fits = fits && (!before || areApart(*before, with.box));
                    before = with.box;
                    if (areApart(with.box, layout_.now.box)) tick = std::move(with);
                }
                layout_.ticks.push_back(std::move(tick));
            }
            if (fits) return;
        }
    }

    // Those that nearly coincide are one from the start; then the two that are nearest to each
    // other become one until none touch, which keeps each near its time.
    void group(std::size_t first, std::size_t last, double leftmost, double rightmost) {
        std::vector<Group> groups;
        double cell = -1;
        for (std::size_t i = first; i < last; ++i) {
            const Group one = groupOf(i);
            const double before =
                std::exchange(cell, std::floor(xOf(timeline_.marks[i].at) / cellWidth));
            if (!groups.empty() && cell == before)
                join(groups.back(), one);
            else
                groups.push_back(one);
        }
        for (Group& each : groups)
            place(each, leftmost, rightmost);
        const auto gapAfter = [&](std::size_t i) {
            return groups[i + 1].box.left() - groups[i].box.right();
        };
        while (groups.size() > 1) {
            std::size_t nearest = 0;
            for (std::size_t i = 1; i + 1 < groups.size(); ++i)
                if (gapAfter(i) < gapAfter(nearest)) nearest = i;
            if (gapAfter(nearest) >= leastMarkGap) break;
            join(groups[nearest], groups[nearest + 1]);
            groups.erase(groups.begin() + static_cast<std::ptrdiff_t>(nearest) + 1);
            place(groups[nearest], leftmost, rightmost);
        }
        std::ranges::move(groups, std::back_inserter(layout_.groups));
    }

    Group groupOf(std::size_t index) const {
        const DayTimeline::Mark& mark = timeline_.marks[index];
        Group one{.first = index, .last = index + 1};
        const auto state = static_cast<std::size_t>(mark.state);
        one.counts[state] = mark.count;
        if (mark.kind == ReminderKind::private_) one.ofPrivate[state] = mark.count;
        return one;
    }

    static void join(Group& group, const Group& next) {
        group.last = next.last;
        for (std::size_t i = 0; i < group.counts.size(); ++i) {
            group.counts[i] += next.counts[i];
            group.ofPrivate[i] += next.ofPrivate[i];
        }
    }

    void place(Group& group, double leftmost, double rightmost) const {
        group.signs = signsOf(group);
        double wide = signSize;
        double top = DayTimelineLayout::lineY - signSize / 2;
        double bottom = top + signSize;
        if (group.signs.size() > 1) top -= DayTimelineLayout::rowHeight;
        if (group.showsTotal()) {
            const QFontMetricsF metrics(DayTimelineLayout::captionFont(true));
            wide = std::max(wide, metrics.horizontalAdvance(QString::number(group.total())));
            bottom += DayTimelineLayout::rowHeight;
        }
        const auto& marks = timeline_.marks;
        const double x = (xOf(marks[group.first].at) + xOf(marks[group.last - 1].at)) / 2;
        const double left = std::max(leftmost, std::min(x - wide / 2, rightmost - wide));
        group.box = {left, top, wide, bottom - top};
    }

    // Of two alerts both; of more what most of them are, and the most telling of the other states.
    std::vector<Sign> signsOf(const Group& group) const {
        std::vector<Sign> signs;
        if (group.total() <= mostSigns) {
            for (std::size_t i = group.first; i < group.last; ++i)
                for (int n = 0; n < timeline_.marks[i].count; ++n)
                    signs.push_back({timeline_.marks[i].state, timeline_.marks[i].kind});
            return signs;
        }
        const auto add = [&](std::size_t state) {
            std::optional<ReminderKind> kind;
            if (group.ofPrivate[state] == 0) kind = ReminderKind::work;
            if (group.ofPrivate[state] == group.counts[state]) kind = ReminderKind::private_;
            signs.push_back({State(state), kind});
        };
        const auto most =
            static_cast<std::size_t>(std::ranges::max_element(group.counts) - group.counts.begin());
        add(most);
        for (const State state : {State::showing, State::kept, State::missed, State::snoozed,
                                  State::done, State::coming}) {
            const auto index = static_cast<std::size_t>(state);
            if (index == most || group.counts[index] == 0) continue;
            add(index);
            break;
        }
        return signs;
    }

    const DayTimeline& timeline_;
    const Calendar& calendar_;
    double width_;
    std::vector<Instant> hours_;  // the whole hours of the day, with its end
    Instant spanStart_, spanEnd_;
    DayTimelineLayout layout_;
};

}  // namespace

int DayTimelineLayout::Group::total() const {
    return std::accumulate(counts.begin(), counts.end(), 0);
}

DayTimelineLayout DayTimelineLayout::of(const DayTimeline& timeline, const Calendar& calendar,
                                        double width) {
    return Builder(timeline, calendar, width).build();
}

QFont DayTimelineLayout::captionFont(bool isSemibold) {
    return Theme::instance().font(Theme::Type::caption, isSemibold);
}

}  // namespace tendel
