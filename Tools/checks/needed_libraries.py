#!/usr/bin/env python3
"""Holds the libraries that the quick program needs against a list: each one costs time at every start.

What it names itself must be on the list. What those bring along is the system's affair, but none of the heavy
ones may be among it.

Usage: needed_libraries.py READELF EXECUTABLE        exits 1 and names every library that is one too many
"""

import re
import subprocess
import sys

# Names without "lib", version and ending. What a compiler adds by itself, then what the quick commands use.
COMPILER = {"stdc++", "gcc_s", "m", "c", "pthread", "asan", "ubsan", "tsan", "ld-linux-x86-64", "ld-linux-aarch64"}
MAY_NEED = COMPILER | {"icui18n", "icuuc", "glib-2.0", "fmt", "boost_json", "boost_url", "systemd"}
HEAVY = {
    "curl", "xml2", "secret-1", "sqlite3", "pango-1.0", "pangocairo-1.0", "pangoft2-1.0", "cairo", "gtk-3", "gdk-3", "X11",
    "wayland-client", "gio-2.0", "gobject-2.0", "gnutls", "ldap-2.5", "gssapi_krb5", "crypto", "ssl",
}

NEEDED = re.compile(r"\(NEEDED\).*\[([^\]]+)\]")
# "libz.so.1 => /lib/libz.so.1 (0x...)"; the program's interpreter and the kernel's own have no arrow.
LOADED = re.compile(r"^\s*(\S+) => ", re.MULTILINE)


def name_of(file):
    return re.sub(r"^lib", "", re.sub(r"\.so(\.[0-9.]+)?$", "", file))


def needed(readelf_output):
    return [name_of(file) for file in NEEDED.findall(readelf_output)]


def loaded(ldd_output):
    return [name_of(file) for file in LOADED.findall(ldd_output)]


def faults(named, all_of_them):
    for name in named:
        if name not in MAY_NEED:
            yield f"it needs {name}, which is not on the list of {len(MAY_NEED)}"
    for name in all_of_them:
        if name in HEAVY and name not in named:
            yield f"what it needs brings {name} along"


def output_of(*words):
    return subprocess.run(words, check=True, capture_output=True, text=True).stdout


def main(readelf, executable):
    named = needed(output_of(readelf, "-d", executable))
    all_of_them = loaded(output_of("ldd", executable))
    bad = list(faults(named, all_of_them))
    print(*bad, sep="\n")
    print(f"{executable} names {len(named)} libraries and loads {len(all_of_them)}, {len(bad)} too many")
    return 1 if bad or not named or not all_of_them else 0


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2]))
