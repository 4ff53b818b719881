#pragma once

#include <QFont>
#include <QRectF>
#include <QString>

#include <array>
#include <optional>
#include <vector>

#include "base/Calendar.h"
#include "reminders/DayTimeline.h"

namespace tendel {

// Where everything on the day's line stands, for one width. From the top: what the day is, the band
// of the line, the hours. In the band a sign stands on the line, a second one above it, and below
// the number of alerts where it is larger than that of the signs.
struct DayTimelineLayout {
    static constexpr double signSize = 12;
    static constexpr double headerHeight = 18;
    static constexpr double bandTop = headerHeight + 8;
    static constexpr double rowHeight = signSize + 1;
    static constexpr double bandHeight = 3 * rowHeight + 4;
    static constexpr double lineY = bandTop + bandHeight / 2;
    static constexpr double tickTop = bandTop + bandHeight + 1;
    static constexpr double tickHeight = 4;
    static constexpr double labelTop = tickTop + tickHeight + 2;
    static constexpr double labelHeight = 14;
    static constexpr double height = labelTop + labelHeight;

    // A sign of a state, in the colour of a kind where the state has none of its own.
    struct Sign {
        DayTimeline::State state;
        std::optional<ReminderKind> kind;  // none: of both kinds
    };
    // Alerts that stand in one place: the timeline's marks first … last - 1.
    struct Group {
        std::size_t first = 0;
        std::size_t last = 0;
        // By state, and how many of them are private.
        std::array<int, DayTimeline::states> counts{};
        std::array<int, DayTimeline::states> ofPrivate{};
        std::vector<Sign> signs{};  // one or two, from the line upwards
        QRectF box{};

        int total() const;
        bool showsTotal() const { return total() > static_cast<int>(signs.size()); }
    };
    struct Tick {
        double x = 0;
        QString label{};  // empty where there is no room
        QRectF box{};     // of the label
    };

    // The line shows the part of the day in which something is: working hours, alerts and now.
    static DayTimelineLayout of(const DayTimeline& timeline, const Calendar& calendar,
                                double width);
    static QFont captionFont(bool isSemibold = false);

    double workLeft = 0;  // == workRight on a day off
    double workRight = 0;
    std::vector<Tick> ticks;  // every whole hour
    Tick now;
    std::vector<Group> groups;  // from left to right; none touches another
};

}  // namespace tendel
