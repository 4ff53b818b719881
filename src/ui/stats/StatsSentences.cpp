#include "ui/stats/StatsSentences.h"

#include <QLocale>

#include <algorithm>
#include <array>
#include <cmath>

#include "ui/theme/QtText.h"

namespace tendel {

namespace {

struct Clock {
    std::int64_t hours;
    std::int64_t minutes;
};

Clock clockOf(std::int64_t seconds) {
    return {seconds / 3600, seconds % 3600 / 60};
}

// "5 done", "2 missed"; what is 0 is left out.
QStringList counts(const StatsTally& tally) {
    QStringList parts;
    if (tally.done > 0)
        parts << StatsSentences::tr("%1 done").arg(StatsSentences::number(tally.done));
    if (tally.missed > 0)
        parts << StatsSentences::tr("%1 missed").arg(StatsSentences::number(tally.missed));
    if (tally.snoozed > 0)
        parts << StatsSentences::tr("%1 snoozed").arg(StatsSentences::number(tally.snoozed));
    return parts;
}

// Minutes are left out where the hours alone fill a tile.
QString figureOf(std::int64_t seconds) {
    const auto [hours, minutes] = clockOf(seconds);
    if (seconds > 0 && seconds < 60) return QStringLiteral("<1 ") + StatsSentences::tr("min");
    if (hours == 0) return StatsSentences::tr("%1 min").arg(minutes);
    if (hours >= 100 || minutes == 0)
        return StatsSentences::tr("%1 h").arg(StatsSentences::number(hours));
    return StatsSentences::tr("%1 h %2 m").arg(hours).arg(minutes);
}

QString finishedBlocks(std::int64_t count) {
    if (count == 0) return StatsSentences::tr("no block finished");
    return count == 1 ? StatsSentences::tr("1 block finished")
                      : StatsSentences::tr("%1 blocks finished").arg(StatsSentences::number(count));
}

QString goodDays(std::int64_t count) {
    return count == 1
               ? StatsSentences::tr("1 good day in a row")
               : StatsSentences::tr("%1 good days in a row").arg(StatsSentences::number(count));
}

QString mostlyMissed(int hour, const Calendar& calendar) {
    return StatsSentences::tr("mostly missed %1–%2")
        .arg(toQString(calendar.formatTime(hour, 0)),
             toQString(calendar.formatTime((hour + 2) % 24, 0)));
}

QString counted(std::int64_t count, const QString& one, const QString& many) {
    return count == 1 ? one : many.arg(StatsSentences::number(count));
}

}  // namespace

QString StatsSentences::number(std::int64_t count) {
    return QLocale().toString(static_cast<qlonglong>(count));
}

QString StatsSentences::percent(double rate) {
    return tr("%1%").arg(std::lround(rate * 100));
}

QString StatsSentences::duration(std::int64_t seconds) {
    const auto [hours, minutes] = clockOf(seconds);
    if (seconds > 0 && seconds < 60) return tr("under 1 min");
    if (hours == 0) return tr("%1 min").arg(minutes);
    if (minutes == 0) return tr("%1 h").arg(number(hours));
    return tr("%1 h %2 min").arg(number(hours)).arg(minutes);
}

QString StatsSentences::spokenDuration(std::int64_t seconds) {
    const auto [hours, minutes] = clockOf(seconds);
    if (seconds > 0 && seconds < 60) return tr("less than a minute");
    const QString spokenMinutes = counted(minutes, tr("1 minute"), tr("%1 minutes"));
    if (hours == 0) return spokenMinutes;
    const QString spokenHours = counted(hours, tr("1 hour"), tr("%1 hours"));
    return minutes == 0 ? spokenHours : spokenHours + u' ' + spokenMinutes;
}

std::vector<StatsSentences::Tile> StatsSentences::tiles(const StatsSummary& summary,
                                                        const StatsStreak& streak) {
    const StatsTally& tally = summary.tally;
    const auto rate = tally.doneRate();
    const QString nothing = QStringLiteral("–");
    const QString nothingYet = tr("Nothing yet");

    Tile done{.caption = tr("Done"), .figure = nothing, .note = nothingYet};
    Tile missed{.caption = tr("Missed"), .figure = nothing, .note = nothingYet};
    done.sentence = missed.sentence = tr("Nothing done or missed yet");
    if (rate) {
        const QString total = number(tally.done + tally.missed);
        done.figure = number(tally.done);
        done.note = tr("of %1 · %2").arg(total, percent(*rate));
        done.sentence = tr("%1 of %2 done, %3").arg(done.figure, total, percent(*rate));
        missed.figure = number(tally.missed);
        missed.sentence = tr("%1 missed").arg(missed.figure);
    }
    if (rate || tally.snoozed > 0) {
        missed.note = tr("%1 snoozed").arg(number(tally.snoozed));
        missed.sentence += QStringLiteral(", ") + missed.note;
    }
    done.explanation = tr("A break that you took counts as done.");
    missed.explanation = tr("Skipped or not answered. A snooze counts as neither done nor missed.");

    Tile run{.caption = tr("Streak"),
             .figure = counted(streak.current, tr("1 day"), tr("%1 days"))};
    run.note = tr("Best %1").arg(number(streak.best));
    run.hasRule = true;
    run.explanation = tr("At least 60% done. Good days in a row make your streak.");
    run.sentence = tr("Streak: %1, best %2").arg(goodDays(streak.current), number(streak.best));

    Tile focus{.caption = tr("Focus"), .figure = nothing, .note = tr("None yet")};
    focus.sentence = tr("No focus yet");
    if (summary.focusSeconds > 0 || summary.finishedFocusBlocks > 0) {
        focus.figure = figureOf(summary.focusSeconds);
        focus.note = finishedBlocks(summary.finishedFocusBlocks);
        focus.sentence = tr("Focus: %1, %2")
                             .arg(spokenDuration(summary.focusSeconds),
                                  finishedBlocks(summary.finishedFocusBlocks));
    }
    focus.explanation = tr("All focus time, of work and private.");
    for (Tile* each : {&done, &run, &focus, &missed})
        each->sentence += QStringLiteral(". ") + each->explanation;
    return {done, run, focus, missed};
}

QString StatsSentences::slotTitle(const DateInterval& slot, StatsRange range,
                                  const Calendar& calendar) {
    if (range == StatsRange::today)
        return tr("%1–%2").arg(toQString(calendar.formatTime(slot.start)),
                               toQString(calendar.formatTime(slot.end)));
    return toQString(calendar.formatDateWithWeekday(slot.start));
}

QStringList StatsSentences::slotLines(const StatsBucket& bucket) {
    QStringList lines = counts(bucket.tally);
    if (bucket.focusSeconds > 0) lines << tr("%1 of focus").arg(duration(bucket.focusSeconds));
    if (lines.isEmpty()) lines << tr("Nothing counted");
    return lines;
}

QString StatsSentences::slotSentence(const StatsBucket& bucket, StatsRange range,
                                     const Calendar& calendar) {
    QStringList parts = counts(bucket.tally);
    if (bucket.focusSeconds > 0)
        parts << tr("%1 of focus").arg(spokenDuration(bucket.focusSeconds));
    if (parts.isEmpty()) parts << tr("nothing counted");
    return slotTitle(bucket.interval, range, calendar) + QStringLiteral(": ") +
           parts.join(QStringLiteral(", "));
}

QString StatsSentences::habitLine(const StatsHabit& habit, const Calendar& calendar) {
    QStringList parts;
    if (habit.isDeleted()) parts << tr("Deleted");
    parts << toQString(habit.tally.countsText());
    if (habit.mostlyMissedHour) parts << mostlyMissed(*habit.mostlyMissedHour, calendar);
    return parts.join(QStringLiteral(" · "));
}

QString StatsSentences::habitSentence(const StatsHabit& habit, const Calendar& calendar) {
    QString sentence = toQString(habit.title);
    if (habit.isDeleted()) sentence += tr(", deleted");
    sentence += QStringLiteral(": ");
    if (const auto rate = habit.tally.doneRate()) sentence += tr("%1 done, ").arg(percent(*rate));
    sentence += counts(habit.tally).join(QStringLiteral(", "));
    if (habit.mostlyMissedHour)
        sentence += QStringLiteral(", ") + mostlyMissed(*habit.mostlyMissedHour, calendar);
    return sentence;
}

QString StatsSentences::emptyTitle(StatsRange range, StatsFilter filter) {
    const QString kind = filter == StatsFilter::work       ? tr("Nothing from work")
                         : filter == StatsFilter::private_ ? tr("Nothing private")
                                                           : tr("Nothing");
    switch (range) {
        case StatsRange::today:
            return tr("%1 to count yet today").arg(kind);
        case StatsRange::week:
            return tr("%1 to count in these 7 days").arg(kind);
        case StatsRange::month:
            break;
    }
    return tr("%1 to count in these 30 days").arg(kind);
}

QString StatsSentences::emptyText(StatsRange range, StatsFilter filter) {
    if (range == StatsRange::today)
        return tr("The next alert that you answer or miss appears here.");
    if (filter != StatsFilter::all) return tr("Your other reminders may have more to tell.");
    return range == StatsRange::week ? tr("A month looks further back.")
                                     : tr("It was a quiet time. Your history is kept.");
}

QString StatsSentences::imported(const ImportCounts& counts, const QString& fileName) {
    QStringList parts;
    if (counts.reminders > 0)
        parts << counted(counts.reminders, tr("1 reminder"), tr("%1 reminders"));
    if (counts.events > 0)
        parts << counted(counts.events, tr("1 answered or missed alert"),
                         tr("%1 answered or missed alerts"));
    if (counts.focusBlocks > 0)
        parts << counted(counts.focusBlocks, tr("1 focus block"), tr("%1 focus blocks"));
    if (parts.isEmpty()) return tr("Nothing new in “%1”. It's all here already.").arg(fileName);
    QString all = parts.takeLast();
    if (!parts.isEmpty()) all = parts.join(QStringLiteral(", ")) + tr(" and ") + all;
    return tr("Added %1 from “%2”.").arg(all, fileName);
}

}  // namespace tendel
