"""Writes a history into a store that the program has made, as if it had been in use for a while."""

import random
import sqlite3
from datetime import datetime, timedelta, timezone

REMINDERS = (("Drink water", "work", 45, 0.85), ("Look into the distance", "work", 20, 0.7), ("Stretch", "work", 90, 0.55),
             ("Stand up", "work", 60, 0.75), ("Water the plants", "private", 1440, 0.9),
             ("Breathe slowly for a minute", "private", 180, 0.4))


def microseconds(moment):
    return round(moment.timestamp() * 1_000_000)


def write(store, reminders=(), events=(), blocks=()):
    """Reminders are (title, kind, startHour, intervalMinutes), events (number of the reminder from 1 or None, fireDate,
    respondedAt, outcomeRaw, title, kind), blocks (start, focusedSeconds, finished); times are datetimes with a zone."""
    with sqlite3.connect(store) as database:
        database.executemany(
            "INSERT INTO reminders (kindRaw, title, details, startHour, startMinute, intervalMinutes, isOn, createdAt)"
            " VALUES (?2, ?1, '', ?3, 0, ?4, 1, 1)", reminders)
        database.executemany(
            "INSERT INTO events (reminder, fireDate, respondedAt, outcomeRaw, reminderTitle, kindRaw)"
            " VALUES (?, ?, ?, ?, ?, ?)",
            ((number, microseconds(due), microseconds(answered), *rest) for number, due, answered, *rest in events))
        database.executemany(
            'INSERT INTO focusBlocks (start, "end", plannedMinutes, focusedSeconds, finished) VALUES (?, ?, ?, ?, ?)',
            ((microseconds(start), microseconds(start + timedelta(seconds=seconds)), -(-seconds // 60), seconds, finished)
             for start, seconds, finished in blocks))
    database.close()


def lifelike(now, days, seed=1):
    """Events and blocks of so many days up to now: workdays with all reminders, misses mostly in the afternoon, quiet
    weekends, a holiday each summer, and a reminder that was deleted halfway."""
    chance = random.Random(seed)
    events, blocks = [], []
    midnight = now.replace(hour=0, minute=0, second=0, microsecond=0)
    for back in range(days, -1, -1):
        day = midnight - timedelta(days=back)
        is_workday = day.weekday() < 5
        if day.month == 8 and day.day < 15:
            continue
        for number, (title, kind, interval, rate) in enumerate(REMINDERS, 1):
            if (kind == "work") != is_workday:
                continue
            due = day + timedelta(hours=9)
            while due < min(now, day + timedelta(hours=17)):
                is_afternoon = 14 <= due.hour < 16
                outcome = ("done" if chance.random() < rate * (0.5 if is_afternoon else 1) else
                           chance.choice(("expired", "expired", "skipped", "snoozed")))
                if outcome == "done" and chance.random() < 0.1:
                    outcome = "breakTaken"
                known = None if title == "Stretch" and back > days // 2 else number
                events.append((known, due, due + timedelta(seconds=chance.randint(2, 30)), outcome, title, kind))
                due += timedelta(minutes=interval)
        for block in range(chance.randint(0, 4) if is_workday else 0):
            start = day + timedelta(hours=9 + 2 * block, minutes=chance.randint(0, 30))
            finished = chance.random() < 0.8
            if start + timedelta(minutes=30) < now:
                blocks.append((start, 1800 if finished else chance.randint(60, 1700), finished))
    return sorted(events, key=lambda event: event[1]), blocks


if __name__ == "__main__":
    import sys
    events, blocks = lifelike(datetime.now(timezone.utc).astimezone(), int(sys.argv[2]))
    write(sys.argv[1], [(title, kind, 9, interval) for title, kind, interval, _ in REMINDERS], events, blocks)
    print(f"{len(events)} events, {len(blocks)} blocks")
