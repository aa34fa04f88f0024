"""The window: how soon it shows its first frame, what that costs, and what it costs to leave it open."""

import os
import subprocess
import time
from statistics import median

from table import Row

START_ROUNDS = 15
RESIDENT_ROUNDS = 3
SETTLE_SECONDS = 3
IDLE_SECONDS = 10


def start_to_first_frame(session, command):
    """Seconds from the start of the process to its first painted frame, and its processor seconds by then."""
    began = time.monotonic()
    process = subprocess.Popen(
        [*command, "--print-first-frame", "--quit-after-first-frame"],
        env=session.environment,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
    )
    line = process.stdout.readline()
    seen = time.monotonic() - began
    process.stdout.read()
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if not line or process.returncode != 0:
        raise RuntimeError(f"{command[0]} ended with {process.returncode} before its first frame")
    return seen, usage.ru_utime + usage.ru_stime


def proportional_memory(pid):
    """PSS in MB."""
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
        return next(int(line.split()[1]) for line in file if line.startswith("Pss:")) / 1024


def context_switches(pid):
    """Of all threads so far, voluntary and not."""
    total = 0
    for thread in os.listdir(f"/proc/{pid}/task"):
        with open(f"/proc/{pid}/task/{thread}/status", encoding="utf-8") as file:
            total += sum(int(line.split()[1]) for line in file if "ctxt_switches" in line)
    return total


def left_open(session, command):
    """PSS in MB of a window at rest, and its context switches while it idles."""
    process = subprocess.Popen(
        [*command, "--print-first-frame"],
        env=session.environment,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.DEVNULL,
    )
    try:
        if not process.stdout.readline():
            raise RuntimeError(f"{command[0]} ended before its first frame")
        time.sleep(SETTLE_SECONDS)
        memory, before = proportional_memory(process.pid), context_switches(process.pid)
        time.sleep(IDLE_SECONDS)
        return memory, context_switches(process.pid) - before
    finally:
        process.terminate()
        process.wait()


def measure(session, widget, bare):
    # Interleaved, so that whatever else the machine does weighs on both.
    starts = [(start_to_first_frame(session, widget), start_to_first_frame(session, bare)) for _ in range(START_ROUNDS)]
    rests = [(left_open(session, widget), left_open(session, bare)) for _ in range(RESIDENT_ROUNDS)]

    def of(rounds, side, figure):
        return median(pair[side][figure] for pair in rounds)

    floor = "a bare GTK 3 window"
    yield Row.at_most_times("window: first painted frame", of(starts, 0, 0) * 1e3, of(starts, 1, 0) * 1e3, "ms", floor, 1.8)
    yield Row.at_most_times("window: processor time until then", of(starts, 0, 1) * 1e3, of(starts, 1, 1) * 1e3, "ms", floor, 2.0)
    yield Row.at_most_times("window: memory at rest (PSS)", of(rests, 0, 0), of(rests, 1, 0), "MB", floor, 1.7)
    yield Row.at_most(f"window: context switches in {IDLE_SECONDS} s at rest", of(rests, 0, 1), "", 2)
