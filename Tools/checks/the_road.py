#!/usr/bin/env python3
"""Proves who uses whom: every include and every link goes down the list, and the two lists say the same.

Usage: the_road.py SOURCE_FOLDER TARGETS_FILE        exits 1 and names every place, if there is one
TARGETS_FILE is what CMake/QuilloraArchitecture.cmake writes. Docs/ARCHITECTURE.md gives the reasons.
"""

import os
import re
import sys

INTERFACE, PART = "a Platform interface", "a Platform part"
PACKAGES = ["Networking", "Meetings", "CalendarProviders", "WidgetExtension"]
GROUND = {"Foundation", INTERFACE}

# A layer may use itself and what stands here. A part is an implementation or a fake of an interface.
MAY_USE = {
    "Foundation": set(),
    INTERFACE: GROUND,
    PART: GROUND,
    "Networking": GROUND,
    "Meetings": GROUND | {"Networking"},
    "CalendarProviders": GROUND,
    "WidgetExtension": GROUND | {"Meetings", "CalendarProviders"},
    "Samples": {"Foundation"},
    "Applications": GROUND | {PART, "Samples"} | set(PACKAGES),
}
# These prove or measure the others, and may use whatever they exercise.
FREE = {"Tests", "Benchmarks", "Fuzzing"}
# Outside libraries are wrapped in these; everything between is plain C++.
MAY_WRAP = {"Foundation", PART, "Samples", "Applications"}

# The parts of one service share code with each other. These few also use another service's parts.
PARTS_ACROSS = {
    # Keys and sealed databases are files, read and written by descriptor.
    "quillora_platform_keychain_file": {"quillora_platform_files_posix"},
    "quillora_platform_objectdatabase_sealed": {"quillora_platform_files_posix"},
    # Sound and speech are other programs.
    "quillora_platform_audio_programs": {"quillora_platform_processes_posix"},
    # The desktop's looks, and presses from elsewhere, come over the bus.
    "quillora_platform_appearance_portal": {"quillora_platform_sessionbus_systemd"},
    "quillora_platform_widgethost_glib": {"quillora_platform_sessionbus_systemd"},
    # The window shows what the painter draws, and is one instance on the bus that the host listens to.
    "quillora_platform_desktop_gtk": {
        "quillora_platform_face_cairo",
        "quillora_platform_sessionbus_systemd",
        "quillora_platform_widgethost_glib",
    },
}

# Targets without code of their own.
EVERYWHERE = {"quillora_settings"}

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"]+)[>"]', re.MULTILINE)
STANDARD_HEADER = re.compile(r"^[a-z_0-9]+$|^(?:unistd|fcntl|sys/[a-z_]+)\.h$")


class Target:
    def __init__(self, name, folder):
        self.name, self.folder, self.links, self.files = name, folder, [], []

    @property
    def layer(self):
        top = self.folder.split("/")[0]
        if top != "Platform":
            return top
        # In Platform/Files, quillora_platform_files is the interface; every other target implements it.
        return INTERFACE if self.name == "quillora_platform_" + self.folder.split("/")[1].lower() else PART


def read_targets(text):
    targets = {}
    for line in text.splitlines():
        kind, name, rest = line.split(" ", 2)
        if kind == "target":
            targets[name] = Target(name, rest.split(" ", 1)[1] if " " in rest else "")
        elif kind == "link":
            targets[name].links.append(rest)
        elif kind == "file":
            targets[name].files.append(rest)
    return {name: target for name, target in targets.items() if name not in EVERYWHERE}


def may_use(user, used):
    """Whether code of the target `user` may name code of the target `used`."""
    if user.layer in FREE:
        return True
    if used.layer in FREE:
        return False
    if user.layer == PART and used.layer == PART:
        return user.folder.split("/")[:2] == used.folder.split("/")[:2] or used.name in PARTS_ACROSS.get(user.name, ())
    return user.layer == used.layer or used.layer in MAY_USE.get(user.layer, ())


def link_violations(targets):
    for target in targets.values():
        if target.layer not in MAY_USE and target.layer not in FREE:
            yield f"{target.name}: its folder {target.folder or '.'} has no place in the list of layers"
            continue
        for link in target.links:
            if link in EVERYWHERE:
                continue
            if link in targets:
                if not may_use(target, targets[link]):
                    yield f"{target.name} ({target.layer}) links {link} ({targets[link].layer})"
            elif target.layer not in MAY_WRAP | FREE:
                yield f"{target.name} ({target.layer}) links the outside library {link}"


def reachable(target, targets):
    """The names of the targets whose headers `target` may see through its links."""
    seen, waiting = set(), [target.name]
    while waiting:
        name = waiting.pop()
        if name not in seen and name in targets:
            seen.add(name)
            waiting.extend(targets[name].links)
    return seen


def include_violations(targets, sources):
    """`sources` maps a path below the root to its text."""
    owners = {}
    for target in targets.values():
        for path in target.files:
            owners.setdefault(path, []).append(target)
    seen_by = {name: reachable(target, targets) for name, target in targets.items()}
    for path, text in sorted(sources.items()):
        if path not in owners:
            # A test's own little header needs no target.
            if not (path.split("/")[0] in FREE and path.endswith(".h")):
                yield f"{path}: no target lists this file"
            continue
        for bracket, name in INCLUDE.findall(text):
            beside = f"{os.path.dirname(path)}/{name}"
            if path.split("/")[0] in FREE and name not in owners and (beside in sources or name in sources):
                continue
            for user in owners[path]:
                yield from one_include(path, user, bracket, name, owners, seen_by[user.name])


def one_include(path, user, bracket, name, owners, seen):
    if bracket == "<":
        if user.layer not in MAY_WRAP | FREE and not STANDARD_HEADER.match(name):
            yield f"{path}: {user.layer} includes the outside header <{name}>"
    elif name not in owners:
        yield f'{path}: "{name}" is not the path of a header from the root of the project'
    else:
        used = [target for target in owners[name] if may_use(user, target)]
        if not used:
            yield f'{path}: {user.layer} includes "{name}" ({owners[name][0].layer})'
        elif not any(target.name in seen for target in used):
            yield f'{path}: includes "{name}", but {user.name} does not link {used[0].name}'


def read_sources(root):
    tops = set(MAY_USE) - {INTERFACE, PART} | {"Platform"} | FREE
    sources = {}
    for top in sorted(tops):
        for folder, _, names in os.walk(os.path.join(root, top)):
            for name in names:
                if name.endswith((".h", ".cpp")):
                    path = os.path.join(folder, name)
                    with open(path, encoding="utf-8") as file:
                        sources[os.path.relpath(path, root)] = file.read()
    return sources


def main(root, listing):
    with open(listing, encoding="utf-8") as file:
        targets = read_targets(file.read())
    sources = read_sources(root)
    # A preset without benchmarks or fuzzers knows no target for their files.
    tops = {target.folder.split("/")[0] for target in targets.values()}
    sources = {path: text for path, text in sources.items() if path.split("/")[0] in tops or path.split("/")[0] not in FREE}
    bad = [*link_violations(targets), *include_violations(targets, sources)]
    print(*bad, sep="\n")
    print(f"{len(targets)} targets and {len(sources)} files read, {len(bad)} uses against the rule")
    return 1 if bad or not targets or not sources else 0


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2]))
