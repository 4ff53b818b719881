#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <vector>

#include "stats/Stats.h"
#include "storage/Archive.h"

namespace tendel {

// What the statistics say in words and figures. Numbers are written as the desktop's locale does,
// dates and times as the calendar does.
struct StatsSentences {
    Q_DECLARE_TR_FUNCTIONS(StatsSentences)
public:
    // One figure with what surrounds it.
    struct Tile {
        QString caption{};
        QString figure{};       // "12 h 5 m": words in it are units
        QString note{};         // beneath the figure
        QString sentence{};     // all of it, to be spoken
        QString explanation{};  // what is counted
        bool hasRule = false;   // the explanation is a rule that a person should find
    };

    static QString number(std::int64_t count);
    // To the nearest whole number.
    static QString percent(double rate);
    // "under 1 min", "50 min", "1 h 30 min".
    static QString duration(std::int64_t seconds);
    // "50 minutes", "1 hour 30 minutes".
    static QString spokenDuration(std::int64_t seconds);

    // In reading order: done, streak, focus, missed.
    static std::vector<Tile> tiles(const StatsSummary& summary, const StatsStreak& streak);

    // "Tuesday, 17 November"; an hour is "14:00–15:00".
    static QString slotTitle(const DateInterval& slot, StatsRange range, const Calendar& calendar);
    // What was counted in a slot; "Nothing counted" when nothing was.
    static QStringList slotLines(const StatsBucket& bucket);
    static QString slotSentence(const StatsBucket& bucket, StatsRange range,
                                const Calendar& calendar);

    // "3 done · 1 missed · mostly missed 14:00–16:00".
    static QString habitLine(const StatsHabit& habit, const Calendar& calendar);
    static QString habitSentence(const StatsHabit& habit, const Calendar& calendar);

    // Why the range shows nothing though there is a history, and what would change that.
    static QString emptyTitle(StatsRange range, StatsFilter filter);
    static QString emptyText(StatsRange range, StatsFilter filter);

    static QString imported(const ImportCounts& counts, const QString& fileName);
};

}  // namespace tendel
