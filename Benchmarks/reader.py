"""The iCalendar reader: speed, and instructions for each byte (which no other load on the machine changes)."""

import os
import re

from table import Row

ROUNDS = 9


def speed(session, program, path):
    """MB/s as the program prints it."""
    return float(re.search(r"([\d.]+) MB/s", session.run(program, path, str(ROUNDS)))[1])


def instructions(session, program, path, times):
    """What callgrind counts for reading the file so many times."""
    out = os.path.join(session.home, "callgrind.out")
    session.run("valgrind", "--tool=callgrind", f"--callgrind-out-file={out}", program, path, str(times))
    with open(out, encoding="utf-8") as file:
        return next(int(line.split()[1]) for line in file if line.startswith(("summary:", "totals:")))


def measure(session, program, large, small, peer):
    """`large` is read for the speed, `small` under callgrind; `peer` reads `large` with the packaged library."""
    own = speed(session, program, large)
    if peer:
        yield Row.at_least_times("reader: speed", own, speed(session, peer, large), "MB/s", "the packaged library", 10)
    else:
        yield Row.plain("reader: speed", own, "MB/s")
    cost = instructions(session, program, small, 2) - instructions(session, program, small, 1)
    yield Row.at_most("reader: instructions a byte", cost / os.path.getsize(small), "", 32)
