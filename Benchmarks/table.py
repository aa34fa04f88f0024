"""The rows that the measurements yield, and the one table that shows them."""

from typing import NamedTuple


def number(value):
    return f"{value:.0f}" if value >= 100 or value == int(value) else f"{value:.3g}"


class Row(NamedTuple):
    what: str
    measured: str
    against: str
    ratio: str
    bar: str
    held: bool | None

    @classmethod
    def at_most_times(cls, what, value, floor, unit, floor_name, bar):
        times = value / floor
        return cls(what, f"{number(value)} {unit}", f"{floor_name}: {number(floor)} {unit}", f"{times:.2f}×", f"at most {bar}×", times <= bar)

    @classmethod
    def at_least_times(cls, what, value, peer, unit, peer_name, bar):
        times = value / peer
        return cls(what, f"{number(value)} {unit}", f"{peer_name}: {number(peer)} {unit}", f"{times:.1f}×", f"at least {bar}×", times >= bar)

    @classmethod
    def at_most(cls, what, value, unit, bar):
        return cls(what, f"{number(value)} {unit}".strip(), "", "", f"at most {bar}", value <= bar)

    @classmethod
    def at_least(cls, what, value, unit, bar):
        return cls(what, f"{number(value)} {unit}", "", "", f"at least {bar}", value >= bar)

    @classmethod
    def plain(cls, what, value, unit):
        return cls(what, f"{number(value)} {unit}", "", "", "", None)


def show(rows):
    verdicts = {True: "held", False: "MISSED", None: ""}
    lines = [("what", "measured", "against", "ratio", "bar", "")]
    lines += [(*row[:5], verdicts[row.held]) for row in rows]
    widths = [max(len(line[column]) for line in lines) for column in range(6)]
    for line in lines:
        print("  ".join(cell.ljust(width) for cell, width in zip(line, widths)).rstrip())
