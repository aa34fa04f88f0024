#!/usr/bin/env python3
"""Measures an optimised build beside its floors, in one run and one table. ./dev bench calls it.

Usage: bench.py BUILD_FOLDER [--peers]
"""

import glob
import os
import sys

import database
import html_reader
import network
import reader
import saving
import store
import table
import window
from session import Session


def sample_calendars(session, programs):
    """Sets the session's home up as a person's would be."""
    calendars = os.path.join(session.home, "Calendars")
    session.run(f"{programs}/quillora-samples", "--out", calendars)
    session.run(f"{programs}/quillora", "setup", "--yes", "--keychain", "file")
    session.run(f"{programs}/quillora", "sources", "add", calendars)


def one_large_file(session, programs, events):
    """A single calendar file of about that many generated events."""
    folder = os.path.join(session.home, f"Generated-{events}")
    session.run(f"{programs}/quillora-samples", "--out", folder, "--events", str(events))
    path = folder + ".ics"
    with open(path, "wb") as joined:
        for part in sorted(glob.glob(f"{folder}/**/*.ics", recursive=True)):
            with open(part, "rb") as file:
                joined.write(file.read())
    return path


def main(build, peers):
    programs, benchmarks = f"{build}/bin", f"{build}/benchmarks"
    peer = f"{benchmarks}/quillora_bench_libical_read"
    rows = []
    with Session() as session:
        sample_calendars(session, programs)
        rows += window.measure(session, [f"{programs}/quillora-widget"], [f"{benchmarks}/quillora_bench_bare_window"])
        rows += reader.measure(
            session,
            f"{benchmarks}/quillora_bench_read_calendar",
            one_large_file(session, programs, 20000),
            one_large_file(session, programs, 2000),
            peer if peers else None,
        )
        rows += network.measure(
            session, f"{programs}/quillora-backend", f"{benchmarks}/quillora_bench_client_requests"
        )
        rows += database.measure(session, f"{benchmarks}/quillora_bench_database_operations")
        rows += saving.measure(session, f"{benchmarks}/quillora_bench_save_event")
        rows += store.measure(session, programs, benchmarks, peers)
        rows += html_reader.measure(session, f"{benchmarks}/quillora_bench_read_html")
    table.show(rows)


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main(os.path.abspath(sys.argv[1]), "--peers" in sys.argv[2:])
