"""Reads iCalendar files written by movfrec agenda --ics with the icalendar package.

Usage: ics_check.py FILE [FILE...]. Prints one line per event of the first file: UID, start (ISO)
and the TRIGGER of its alarm in seconds from the start ("-" without alarm). Exits 1, saying why,
when a file does not parse, an event has no UID, a UID repeats, an event has two alarms, an alarm
lacks ACTION:DISPLAY, a DESCRIPTION or a duration TRIGGER, or the files hold other events.
"""
import datetime
import sys

from icalendar import Calendar


def events(path):
    with open(path, "rb") as f:
        calendar = Calendar.from_ical(f.read())
    found = []
    for event in calendar.walk("VEVENT"):
        uid = str(event.get("UID", ""))
        alarms = [c for c in event.subcomponents if c.name == "VALARM"]
        if not uid or len(alarms) > 1:
            sys.exit(f"{path}: an event without UID or with {len(alarms)} alarms: {uid}")
        trigger = "-"
        for alarm in alarms:
            delta = alarm.decoded("TRIGGER")
            if (str(alarm.get("ACTION")) != "DISPLAY" or not str(alarm.get("DESCRIPTION", ""))
                    or not isinstance(delta, datetime.timedelta)):
                sys.exit(f"{path}: the alarm of {uid} is incomplete or not relative to the start")
            trigger = str(int(delta.total_seconds()))
        found.append((uid, event.decoded("DTSTART").isoformat(), trigger))
    if len({e[0] for e in found}) != len(found):
        sys.exit(f"{path}: a UID repeats")
    return found


if __name__ == "__main__":
    first = events(sys.argv[1])
    for other in sys.argv[2:]:
        if events(other) != first:
            sys.exit(f"{sys.argv[1]} and {other} hold different events")
    for uid, start, trigger in first:
        print(uid, start, trigger)
