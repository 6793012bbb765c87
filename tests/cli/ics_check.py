"""Reads iCalendar files written by movfrec agenda --ics with the icalendar package.

Usage: ics_check.py FILE [FILE...]. Prints one line per event of the first file: its UID, its
start (ISO form) and the TRIGGER of its alarm in seconds from the start ("-" when it has none).
Exits 1, saying why on stderr, when a file does not parse, an event has no UID, a UID repeats,
an event has more than one alarm or an alarm lacks ACTION, DESCRIPTION or a duration TRIGGER,
or when the files do not hold the same events (UID, start and alarm).
"""
import datetime
import sys

from icalendar import Calendar


def fail(message):
    print(message, file=sys.stderr)
    sys.exit(1)


def events(path):
    with open(path, "rb") as f:
        calendar = Calendar.from_ical(f.read())
    found = []
    for event in calendar.walk("VEVENT"):
        if "UID" not in event:
            fail(f"{path}: an event without UID")
        uid = str(event["UID"])
        alarms = [c for c in event.subcomponents if c.name == "VALARM"]
        if len(alarms) > 1:
            fail(f"{path}: {uid} has {len(alarms)} alarms")
        trigger = "-"
        for alarm in alarms:
            if str(alarm.get("ACTION")) != "DISPLAY" or not str(alarm.get("DESCRIPTION", "")):
                fail(f"{path}: the alarm of {uid} lacks ACTION:DISPLAY or DESCRIPTION")
            delta = alarm.decoded("TRIGGER")
            if not isinstance(delta, datetime.timedelta):
                fail(f"{path}: the alarm of {uid} is not relative to the start")
            trigger = str(int(delta.total_seconds()))
        found.append((uid, event.decoded("DTSTART").isoformat(), trigger))
    uids = [e[0] for e in found]
    if len(set(uids)) != len(uids):
        fail(f"{path}: a UID repeats")
    return found


def main(paths):
    first = events(paths[0])
    for other in paths[1:]:
        if events(other) != first:
            fail(f"{paths[0]} and {other} hold different events")
    for uid, start, trigger in first:
        print(uid, start, trigger)


if __name__ == "__main__":
    main(sys.argv[1:])
