"""The sealed database beside a bare SQLite file that synchronises as strictly."""

import os
import re
import statistics

from table import Row

ROUNDS, TIMES = 5, {"read": 200, "upsert": 100}
NAMES = {"read": "database: open and read", "upsert": "database: open and change one object"}


def measure(session, program):
    def figure(kind, operation):
        folder = os.path.join(session.home, f"database-{kind}-{operation}")
        os.makedirs(folder, exist_ok=True)
        return float(re.search(r"([\d.]+) us", session.run(program, kind, operation, folder, str(TIMES[operation])))[1])

    for operation, name in NAMES.items():
        # In turn, so that a change of the machine's mood strikes both.
        pairs = [[figure(kind, operation) for kind in ("sealed", "bare")] for _ in range(ROUNDS)]
        sealed, bare = (statistics.median(column) for column in zip(*pairs))
        yield Row.at_most_times(name, sealed, bare, "µs", "bare SQLite", 1.5)
