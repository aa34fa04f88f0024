"""The calendar store and the index: a day of `quillora day` and of the store itself, beside floors and peers.

Small files are one event a file in eight folders; large files are one a calendar, in sixteen.
"""

import os
import re
import shutil
import statistics
import subprocess
import time

import calendars
from table import Row

DAY = f"{calendars.DAY}"
KHAL = """[calendars]
[[all]]
path = {root}/*
type = discover
[locale]
local_timezone = Europe/Berlin
default_timezone = Europe/Berlin
timeformat = %H:%M
dateformat = %Y-%m-%d
longdateformat = %Y-%m-%d
datetimeformat = %Y-%m-%d %H:%M
longdatetimeformat = %Y-%m-%d %H:%M
[sqlite]
path = {folder}/khal.db
"""
IN_MEMORY = "/dev/shm"


class Home:
    """Programs in the session's place, with a home of their own whose calendars are those of `root`."""

    def __init__(self, session, programs, name, root):
        self.session, self.quillora = session, f"{programs}/quillora"
        home = os.path.join(session.home, name)
        self.environment = session.environment | {
            "HOME": home, "XDG_CONFIG_HOME": f"{home}/config", "XDG_DATA_HOME": f"{home}/data", "XDG_CACHE_HOME": f"{home}/cache",
        }
        os.makedirs(home, mode=0o700)
        self.run(self.quillora, "setup", "--yes", "--keychain", "file")
        self.run(self.quillora, "sources", "add", root)
        self.day()  # Makes the index.
        time.sleep(3)  # Until the youngest files and folders are old enough to be trusted.
        self.settle()

    def run(self, *command):
        done = subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL, capture_output=True, check=False)
        if done.returncode != 0:
            raise RuntimeError(f"{' '.join(command)} ended with {done.returncode}: {done.stderr.decode().strip()}")

    def day(self):
        self.run(self.quillora, "day", "--day", DAY)

    def settle(self):
        """Waits for the look at every file that an answer leaves behind, so that it disturbs no other: that has
        its turn first."""
        self.run(self.quillora, "sources", "refresh")

    def milliseconds_of_day(self):
        time_taken = milliseconds(self.day)
        self.settle()
        return time_taken

    def peak(self, *command):
        """MB that the command holds at most."""
        child = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        return os.wait4(child.pid, 0)[2].ru_maxrss / 1024

    def peak_of_day(self):
        return max(self.peak(self.quillora, "day", "--day", DAY) for _ in range(3))


def milliseconds(work):
    begin = time.perf_counter()
    work()
    return (time.perf_counter() - begin) * 1000


def in_turns(rounds, home, second):
    """Medians in milliseconds of the home's day and of `second`, and of their ratio: what else the machine does
    meets both alike."""
    pairs = []
    for _ in range(rounds):
        first = home.milliseconds_of_day()
        pairs.append((first, milliseconds(second)))
    return (
        statistics.median(one for one, _ in pairs),
        statistics.median(two for _, two in pairs),
        statistics.median(one / two for one, two in pairs),
    )


def row(what, value, unit, floor, floor_name, ratio, bar, held):
    show = lambda number: f"{number:.3g}" if number < 100 else f"{number:.0f}"
    return Row(what, f"{show(value)} {unit}", f"{floor_name}: {show(floor)} {unit}", f"{ratio:.3g}×", bar, held)


class StoreProgram:
    def __init__(self, session, program):
        self.session, self.program = session, program

    def measure(self, what, root, rounds):
        """Milliseconds of the floor and of the answer, and their ratio."""
        cache = os.path.join(self.session.home, "store-" + os.path.basename(root))
        line = self.session.run(self.program, what, root, cache, str(rounds))
        return tuple(float(number) for number in re.findall(r"(?:floor|answer|ratio) ([\d.a-z]+)", line)[:3])


def own_rows(session, program, hundred_thousand):
    store = StoreProgram(session, program)
    floor, answer, ratio = store.measure("verified", hundred_thousand, 9)
    yield row("store: verified day, 100k small files", answer, "ms", floor, "a stat of every file", ratio, "at most 1.3× + 5 ms", answer <= 1.3 * floor + 5)
    floor, answer, ratio = store.measure("changed", hundred_thousand, 9)
    yield row("store: one of 100k small files changed", answer, "ms", floor, "a stat of every file", ratio, "at most + 10 ms", answer <= floor + 10)
    floor, answer, ratio = store.measure("build", hundred_thousand, 3)
    yield row("store: index of 100k small files made", answer, "ms", floor, "reading them", ratio, "at most 2.5×", ratio <= 2.5)


def size_rows(session, program):
    store = StoreProgram(session, program)
    roots = [calendars.large_files(os.path.join(session.home, f"large-{count}"), count) for count in (100_000, 1_000_000)]
    for what in ("unverified", "resident"):
        small, large = (store.measure(what, root, 15)[1] for root in roots)
        yield row(f"store: {what} day, 1M in large files", large, "ms", small, "100k of the same", large / small, "at most 2×", large <= 2 * small)
    for root in roots:
        shutil.rmtree(root)


def peer_rows(session, programs, count, root, khal_days, khal_bar, home):
    # It syncs its cache after each event, which for 100k takes an hour on a disk; in memory, a minute or two.
    folder = session.folder(f"khal-{count}", beneath=IN_MEMORY)
    config = os.path.join(folder, "khal.conf")
    with open(config, "w", encoding="utf-8") as file:
        file.write(KHAL.format(root=root, folder=folder))
    khal = lambda: home.run("khal", "-c", config, "list", DAY, f"{khal_days}d")
    khal()  # Makes its cache.
    own, peer, ratio = in_turns(7, home, khal)
    yield row(f"quillora day: {count} small files", own, "ms", peer, f"khal, {khal_days} days", ratio, f"at most 1/{khal_bar}", ratio <= 1 / khal_bar)
    if count < 100_000:
        return
    khal_peak = home.peak("khal", "-c", config, "list", DAY, f"{khal_days}d")
    own_peak = home.peak_of_day()
    yield row(f"quillora day: most memory, {count}", own_peak, "MB", khal_peak, "khal", own_peak / khal_peak, "at most 1×", own_peak <= khal_peak)
    script = calendars.reminders(os.path.join(session.home, "generated.rem"), count)
    own, peer, ratio = in_turns(9, home, lambda: home.run("remind", script, DAY))
    yield row(f"quillora day: {count} small files", own, "ms", peer, "remind", ratio, "at most 1×", ratio <= 1)


def rule_rows(session, own, peer):
    for name, rule, bar in (("daily since 2005", "FREQ=DAILY", 50), ("daily, COUNT=20000", "FREQ=DAILY;COUNT=20000", 1000)):
        microseconds = lambda program, times: float(re.search(r"([\d.]+) us", session.run(program, rule, str(times)))[1])
        mine, other = microseconds(own, 2001), microseconds(peer, 21)
        yield row(f"rules: 21 days of {name}", mine, "µs", other, "the packaged library's iterator", mine / other, f"at most 1/{bar}", mine <= other / bar)


def measure(session, programs, benchmarks, peers):
    small = calendars.small_files(os.path.join(session.home, "small-10k"), 10_000)
    hundred_thousand = calendars.small_files(os.path.join(session.home, "small-100k"), 100_000)
    os.sync()  # Otherwise the kernel writes them back later, beside whatever is timed then.
    program = f"{benchmarks}/quillora_bench_calendar_store"
    yield from own_rows(session, program, hundred_thousand)
    home = Home(session, programs, "home-100k", hundred_thousand)
    yield Row.plain("quillora day: 100k small files", statistics.median(home.milliseconds_of_day() for _ in range(7)), "ms")
    yield Row.at_most("quillora day: most memory, 100k", home.peak_of_day(), "MB", 35)
    if peers:
        yield from peer_rows(session, programs, 10_000, small, 1, 10, Home(session, programs, "home-10k", small))
        yield from peer_rows(session, programs, 100_000, hundred_thousand, 21, 50, home)
        yield from rule_rows(session, f"{benchmarks}/quillora_bench_expand_rule", f"{benchmarks}/quillora_bench_libical_expand")
    shutil.rmtree(hundred_thousand)
    yield from size_rows(session, program)
