"""Holds the statistics of random histories against a slow computation of its own.

Nothing is shared with the program: days are found by walking along the clock of a zone a quarter of
an hour at a time, and every record is looked for in every slot.
"""

import collections
import datetime
import functools
import itertools
import json
import random
import re
import subprocess
import sys
import unittest
import zoneinfo

HISTORIES = 2000
SECOND, HOUR, DAY = 10**6, 3600 * 10**6, 86400 * 10**6

# A moment near which something happens to the clock.
ZONES = [
    ("UTC", "2020-02-29"),
    ("Europe/Berlin", "2021-03-28"), ("Europe/Berlin", "2021-10-31"),
    ("America/New_York", "2019-11-03"), ("Asia/Kathmandu", "2022-01-01"),
    ("America/Sao_Paulo", "2017-10-15"), ("America/Sao_Paulo", "2018-02-18"),  # at midnight
    ("America/Havana", "2018-11-04"), ("Asia/Beirut", "2019-10-27"),
    ("Pacific/Apia", "2011-12-30"), ("Pacific/Apia", "2012-04-01"),  # a date left out
    ("Australia/Lord_Howe", "2022-04-03"), ("Australia/Lord_Howe", "2022-10-02"),  # half an hour
    ("America/Caracas", "2016-05-01"), ("Asia/Pyongyang", "2015-08-15"),  # at midnight, by half
]
TITLES = ["Drink", "Rest your eyes", "Stretch", "Task 1", "Task 2", "Task 10", "Task 11"]
OUTCOMES = {"done": "done", "breakTaken": "done", "snoozed": "snoozed",
            "skipped": "missed", "expired": "missed", "from a later version": "missed"}


def shown(zone, t):
    return datetime.datetime.fromtimestamp(t // SECOND, zoneinfo.ZoneInfo(zone))


@functools.cache
def start_of(zone, date):
    """The first moment of a date, or of the next one that exists."""
    midnight = datetime.datetime(date.year, date.month, date.day, tzinfo=datetime.timezone.utc)
    t = int(midnight.timestamp()) * SECOND - 30 * HOUR
    while shown(zone, t).date() < date:
        t += HOUR // 4
    return t


def day_of(zone, t):
    date = shown(zone, t).date()
    while start_of(zone, date + datetime.timedelta(1)) <= t:
        date += datetime.timedelta(1)
    return date


def interval_of(zone, date):
    return start_of(zone, date), start_of(zone, date + datetime.timedelta(1))


def slots(zone, now, days):
    today = day_of(zone, now)
    if days == 1:
        start, end = interval_of(zone, today)
        return [(t, min(t + HOUR, end)) for t in range(start, end, HOUR)]
    dates = [today - datetime.timedelta(days - 1 - i) for i in range(days)]
    return [(start, end) for start, end in (interval_of(zone, d) for d in dates) if start < end]


def tally(outcomes):
    counts = collections.Counter(OUTCOMES[outcome] for outcome in outcomes)
    return [counts["done"], counts["missed"], counts["snoozed"]]


def mostly_missed(hours):
    if len(hours) < 3:
        return None
    windows = {h: hours.count(h) + hours.count((h + 1) % 24) for h in range(24)}
    largest = max(windows.values())
    if 2 * largest <= len(hours):
        return None
    return min((h for h in range(24) if windows[h] == largest), key=lambda h: (-hours.count(h), h))


def title_order(title):
    word, number = re.fullmatch(r"(\D+)(\d*)", title).groups()
    return word, int(number or 0)


def summary(zone, now, records, focus, days):
    rows, counted, seconds, finished = [], [], 0, 0
    for start, end in slots(zone, now, days):
        inside = [r for r in records if start <= r[3] < end]
        blocks = [b for b in focus if start <= b[0] < end]
        counted += inside
        seconds += sum(b[1] for b in blocks)
        finished += sum(b[2] for b in blocks)
        rows.append([start, end, tally(r[4] for r in inside), sum(b[1] for b in blocks)])

    counted.sort(key=lambda r: r[7])  # as they came
    habits = {}
    for r in counted:
        habits.setdefault((0, r[0]) if r[0] is not None else (1, r[1], r[2]), []).append(r)
    lines = []
    for key, own in habits.items():
        missed = [r for r in own if OUTCOMES[r[4]] == "missed"]
        lines.append([key[1] if key[0] == 0 else list(key[1:]), own[0][1], own[0][2],
                      tally(r[4] for r in own), mostly_missed([r[5] for r in missed])])
    lines.sort(key=lambda h: (isinstance(h[0], list), -h[3][1], title_order(h[1])))
    return [tally(r[4] for r in counted), rows, seconds, finished, lines]


def streak(zone, now, records):
    today, runs = day_of(zone, now), [0]
    for date, own in itertools.groupby(sorted(records, key=lambda r: r[6]), key=lambda r: r[6]):
        done, missed, _ = tally(r[4] for r in own)
        is_good = done / max(done + missed, 1) >= 0.6
        if done + missed > 0 and (date < today or (date == today and is_good)):
            runs.append(runs[-1] + 1 if is_good else 0)
    return [runs[-1], max(runs)]


def statistics(history):
    zone, now, focus = history["zone"], history["now"], history["focus"]
    # Besides, the hour that the clock shows, the day, and a number that makes each its own.
    records = [r + [shown(zone, r[3]).hour, day_of(zone, r[3]), i]
               for i, r in enumerate(history["records"])]
    answer = {}
    for name in ("all", "work", "private"):
        own = [r for r in records if name in ("all", r[2])]
        answer[name] = {"streak": streak(zone, now, own)}
        for days, range_name in ((1, "today"), (7, "week"), (30, "month")):
            answer[name][range_name] = summary(zone, now, own, focus, days)
    return answer


def any_history(dice):
    zone, near = dice.choice(ZONES)
    change = int(datetime.datetime.fromisoformat(near + "T00:00+00:00").timestamp()) * SECOND
    now = change + dice.choice([dice.randint(-DAY, DAY), dice.randint(-DAY, 29 * DAY)])
    edges = [t for days in (1, 7, 30) for interval in slots(zone, now, days) for t in interval]
    usual_hour, usually = dice.randint(0, 23), dice.choice(["done", "expired"])

    def any_time():
        kind = dice.randint(0, 9)
        if kind < 3:
            return dice.choice(edges) + dice.choice([-1, 0, 0, 1])
        spread = dice.choice([DAY, 4 * DAY, 35 * DAY])
        t = now - spread + dice.randint(0, spread + DAY)
        return t - t % DAY + usual_hour * HOUR + dice.randint(0, HOUR) if kind < 6 else t

    def any_record():
        title = dice.choice(TITLES)
        reminder = None if dice.random() < 0.4 else dice.randint(1, 4)
        outcome = usually if dice.random() < 0.5 else dice.choice(list(OUTCOMES))
        return [reminder, title, dice.choice(["work", "private"]), any_time(), outcome]

    records = [any_record() for _ in range(dice.choice([0, 3, 10, 40, 100]))]
    if dice.random() < 0.7:
        records.sort(key=lambda r: r[3])
    focus = [[any_time(), dice.randint(0, 3000), dice.random() < 0.5]
             for _ in range(dice.randint(0, 20))]
    return {"zone": zone, "now": now, "records": records, "focus": focus,
            "sharesTitles": dice.random() < 0.5}


class StatsOracle(unittest.TestCase):
    def test_agrees_with_a_slow_computation(self):
        dice = random.Random(20_261_121)
        histories = [any_history(dice) for _ in range(HISTORIES)]
        lines = "".join(json.dumps(history) + "\n" for history in histories)
        run = subprocess.run([PROGRAM], input=lines, capture_output=True, text=True, check=True)
        answers = [json.loads(line) for line in run.stdout.splitlines()]
        self.assertEqual(len(answers), HISTORIES)

        differences, met = 0, collections.Counter()
        for history, answer in zip(histories, answers):
            expected = statistics(history)
            if answer != expected:
                differences += 1
                if differences <= 3:
                    print(json.dumps(history), json.dumps(expected), json.dumps(answer), sep="\n")
            month, today = expected["all"]["month"], expected["all"]["today"]
            met["hour"] += any(habit[4] is not None for habit in month[4])
            met["deleted"] += any(isinstance(habit[0], list) for habit in month[4])
            met["no day of 24 hours"] += len(today[1]) != 24
            met["days"] += any(end - start != DAY for start, end, _, _ in month[1])
            met["streak"] += expected["all"]["streak"][1] > 1
        print(f"{differences} differences in {HISTORIES} histories; {dict(met)}")
        self.assertEqual(differences, 0)
        # The histories are worth something only when all of it comes up often.
        self.assertGreater(min(met.values()), HISTORIES // 20)


if __name__ == "__main__":
    PROGRAM = sys.argv.pop()
    unittest.main()
