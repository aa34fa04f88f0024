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

        outputs = [session.run(program, folder, str(events), str(TIMES)) for _ in range(ROUNDS)]
        store, bare = (
            statistics.median(float(re.search(rf"{kind} ([\d.]+) us", output)[1]) for output in outputs)
            for kind in ("store", "bare")
        )
        yield Row.at_most_times(
            f"save of one event among {events:,}", store, bare, "µs", "bare write, fsync, rename, fsync", 1.5
        )
