"""A save of one event beside the bare steps of any safe save, in small calendars and large ones."""

import os
import re
import statistics

from table import Row

ROUNDS, TIMES = 5, 40


def measure(session, program, sizes=(1_000, 100_000)):
    for events in sizes:
        folder = os.path.join(session.home, f"saving-{events}")
        os.makedirs(folder, exist_ok=True)

        def figure(kind):
            output = session.run(program, kind, folder, str(events), str(TIMES))
            return float(re.search(r"([\d.]+) us", output)[1])

        # In turn, so that a change of the machine's mood strikes both.
        pairs = [[figure(kind) for kind in ("store", "bare")] for _ in range(ROUNDS)]
        store, bare = (statistics.median(column) for column in zip(*pairs))
        yield Row.at_most_times(
            f"save of one event among {events:,}", store, bare, "µs", "bare write, fsync, rename, fsync", 1.5
        )
