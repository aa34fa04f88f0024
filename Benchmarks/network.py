"""The backend's client: what a request costs beside the bare library, and how fast events are decoded."""

import json
import os
import re
import statistics
import subprocess

from table import Row

ROUNDS, REQUESTS, EVENTS = 5, 400, 10000


def stored_events(count):
    """A service's file of that many events."""
    return [
        {
            "evtId": f"e{number}",
            "evtTitle": f"Review of item {number}, ñandú",
            "evtSchedule": "2026-03-11T08:00:00Z",
            "evtDurationMinutes": 30,
            "evtDescription": "Please bring the printed agenda and the numbers of the last quarter.",
            "evtRepeat": "every_week",
            "evtCustomRepeat": "mon|wed",
        }
        for number in range(count)
    ]


def figure(text):
    return float(re.search(r"([\d.]+) (?:us|MB)", text)[1])


def measure(session, server, program):
    token, events = os.path.join(session.home, "token"), os.path.join(session.home, "events.json")
    with open(events, "w", encoding="utf-8") as file:
        json.dump(stored_events(20), file)
    service = subprocess.Popen([server, "--token-file", token, "--file", events], stdout=subprocess.PIPE, text=True)
    try:
        base = service.stdout.readline().strip()
        # In turn, so that a change of the machine's mood strikes both.
        pairs = [
            [figure(session.run(program, kind, base, token, str(REQUESTS))) for kind in ("client", "bare")]
            for _ in range(ROUNDS)
        ]
    finally:
        service.terminate()
        service.wait()
    client, bare = (statistics.median(column) for column in zip(*pairs))
    yield Row.at_most_times("client: one request", client, bare, "µs", "bare libcurl", 1.25)

    many = os.path.join(session.home, "many.json")
    with open(many, "w", encoding="utf-8") as file:
        json.dump(stored_events(EVENTS), file, ensure_ascii=False)
    yield Row.plain("client: decoding 10,000 events", figure(session.run(program, "decode", many, "9")), "MB/s")
