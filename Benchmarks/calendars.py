"""Calendars to measure on. Equal arguments give equal bytes; about the day that is asked for, all have the same."""

import datetime
import os
import random

DAY = datetime.date(2026, 3, 11)
FIRST, LAST = datetime.date(2006, 1, 1), datetime.date(2027, 1, 1)
BASE = 100_000  # What is beyond so many events lies far from the day, its last repetition too.
ZONES = ["Europe/Berlin"] * 7 + ["America/New_York", "Asia/Shanghai", "Australia/Sydney"]
WORDS = "agenda budget review lunch call with the team about next steps and the numbers of last quarter".split()
WEEKDAYS = "MO TU WE TH FR SA SU".split()


def stamp(moment):
    return moment.strftime("%Y%m%dT%H%M%S")


class Event:
    """One event of a tenth that repeat, of which one in twenty never ends."""

    def __init__(self, number):
        numbers = random.Random(number)
        self.number = number
        last = LAST if number < BASE else datetime.date(2022, 1, 1)
        self.day = FIRST + datetime.timedelta(numbers.randrange((last - FIRST).days))
        self.is_all_day = numbers.random() < 0.17
        self.start = datetime.datetime.combine(self.day, datetime.time(numbers.randrange(7, 21), numbers.choice([0, 15, 30, 45])))
        self.length = datetime.timedelta(minutes=numbers.choice([15, 30, 45, 60, 60, 90, 120]))
        self.zone = numbers.choice(ZONES)
        self.rule = None
        if numbers.random() < 0.1:
            self.frequency = numbers.choice(["DAILY", "WEEKLY", "WEEKLY", "MONTHLY"])
            self.rule = f"FREQ={self.frequency}"
            is_endless = number < BASE and numbers.random() < 0.05
            self.count = None if is_endless else numbers.randrange(3, 40)
            if self.count:
                self.rule += f";COUNT={self.count}"
        self.title = f"{numbers.choice(WORDS).capitalize()} {number}"
        self.notes = " ".join(numbers.choices(WORDS, k=numbers.randrange(100))) if numbers.random() < 0.45 else ""

    def text(self):
        lines = ["BEGIN:VEVENT", f"UID:{self.number:07}@generated.example", "DTSTAMP:20260101T120000Z"]
        if self.is_all_day:
            lines += [f"DTSTART;VALUE=DATE:{self.day:%Y%m%d}", f"DTEND;VALUE=DATE:{self.day + datetime.timedelta(1):%Y%m%d}"]
        else:
            lines += [f"DTSTART;TZID={self.zone}:{stamp(self.start)}", f"DTEND;TZID={self.zone}:{stamp(self.start + self.length)}"]
        lines += [f"SUMMARY:{self.title}", "LOCATION:Room 4.12", "SEQUENCE:0", "STATUS:CONFIRMED", "TRANSP:OPAQUE"]
        if self.notes:
            lines.append("DESCRIPTION:" + "\r\n ".join(self.notes[at : at + 70] for at in range(0, len(self.notes), 70)))
        if self.rule:
            lines.append(f"RRULE:{self.rule}")
        lines += ["BEGIN:VALARM", "ACTION:DISPLAY", "TRIGGER:-PT15M", "DESCRIPTION:Soon", "END:VALARM", "END:VEVENT", ""]
        return "\r\n".join(lines)

    def reminder(self):
        """The same for remind, which knows no COUNT: its end is worked out."""
        when = f"{self.day:%d %b %Y}"
        if self.rule:
            days = {"DAILY": 1, "WEEKLY": 7, "MONTHLY": 28}[self.frequency]
            when += f" *{days}"
            if self.count:
                when += f" UNTIL {self.day + datetime.timedelta(days * (self.count - 1)):%d %b %Y}"
        clock = "" if self.is_all_day else f" AT {self.start:%H:%M} DURATION {int(self.length.total_seconds()) // 3600}:{int(self.length.total_seconds()) // 60 % 60:02}"
        return f"REM {when}{clock} MSG {self.title}\n"


HEAD, FOOT = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Quillora//Benchmark//EN\r\n", "END:VCALENDAR\r\n"


def small_files(folder, count, calendars=8):
    """One event a file, in so many calendar folders."""
    for calendar in range(calendars):
        os.makedirs(os.path.join(folder, f"calendar-{calendar}"))
    for number in range(count):
        path = os.path.join(folder, f"calendar-{number % calendars}", f"{number:07}.ics")
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write(HEAD + Event(number).text() + FOOT)
    return folder


def large_files(folder, count, calendars=16):
    """All events in so many calendar folders with one file each."""
    for calendar in range(calendars):
        path = os.path.join(folder, f"calendar-{calendar:02}")
        os.makedirs(path)
        with open(os.path.join(path, "events.ics"), "w", encoding="utf-8", newline="") as file:
            file.write(HEAD)
            for number in range(calendar, count, calendars):
                file.write(Event(number).text())
            file.write(FOOT)
    return folder


def reminders(path, count):
    with open(path, "w", encoding="utf-8") as file:
        for number in range(count):
            file.write(Event(number).reminder())
    return path
