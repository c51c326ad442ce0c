#!/usr/bin/env python3
"""Checks how the sources hang together: check_structure.py [--compile-commands FILE] ROOT

Without an option: who includes whom, what is included from outside, circles between files, and conditions on
the system outside the platform seam. With one: that every source on disk is among the compile commands.
"""

import json
import re
import sys
from pathlib import Path

# Which subsystem may include which; docs/layout.md tells it to readers. An entry is a folder or one header
# of it. Everything may include itself and the export header.
SEAM = "platform"
MAY_INCLUDE = {
    "platform": ["general/code_unit"],
    "general": [SEAM],
    "time": ["general", SEAM],
    "diagnostics": ["general", "time", "helpers/system", SEAM],
    "chain": ["general", "diagnostics/error_log", "platform/fetch_for_writing"],
    "html": ["general", "diagnostics/error_log"],
    "config": ["general", "helpers/system", SEAM],
    "helpers/system": ["general", SEAM],
    "helpers/rgb_scaling": ["general"],
    "helpers/validators": ["general", "html/native_strings"],
    "helpers/countries": ["general", "html/native_strings"],
    "helpers/calendar": ["general", "html/native_strings"],
    "helpers/paths": ["general", "helpers/system", SEAM],
}

# Headers from outside, other than the C++ library's, that a subsystem's sources may include.
OUTSIDE = {
    "general": re.compile(r"utf8(/.*)?\.h"),
    # Instructions of one processor, with a way without them beside.
    "html": re.compile(r"emmintrin\.h"),
    "helpers/rgb_scaling": re.compile(r"immintrin\.h"),
}

SYSTEM_MACRO = re.compile(
    r"\b(_?WIN(32|64)|_WIN\w+|__(linux|unix|APPLE|ANDROID|CYGWIN|MINGW\w*|FreeBSD|gnu_linux|GLIBC)\w*|"
    r"linux|unix|_POSIX\w*)\b"
)
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)
CONDITION = re.compile(r"^\s*#\s*(?:if|ifdef|ifndef|elif)\b(.*)$", re.M)
SOURCES = ("include", "src", "tests", "bench", "examples")


class Tree:
    def __init__(self, root):
        self.root = root
        self.texts = {
            path.relative_to(root).as_posix(): path.read_text(encoding="utf-8")
            for folder in SOURCES
            for path in sorted((root / folder).rglob("*"))
            if path.suffix in (".h", ".cpp")
        }

    def library_files(self):
        return {name: text for name, text in self.texts.items() if name.startswith(("include/qmt/", "src/"))}

    def find(self, included, includer):
        """The file that a quoted include in a library file means, or None."""
        candidates = ["include/" + included]
        if includer.startswith("src/"):
            candidates.append("src/" + included)
        return next((name for name in candidates if name in self.texts), None)


def unit(name):
    """`include/qmt/chain/chain_links.h` is `chain/chain_links`."""
    return re.sub(r"^(include/qmt|src)/|\.\w+$", "", name)


def subsystem(name):
    """The folder; each helper is a subsystem of its own, with private files named <helper>_<what>."""
    parts = unit(name).split("/")
    if parts[0] != "helpers":
        return parts[0]
    whole = "/".join(parts[:2])
    return next((helper for helper in MAY_INCLUDE if whole.startswith(helper + "_")), whole)


def may_include(includer, included):
    if unit(included) == "export" or subsystem(includer) == subsystem(included):
        return True
    allowed = MAY_INCLUDE.get(subsystem(includer), [])
    return subsystem(included) in allowed or unit(included) in allowed


def is_standard(header):
    return re.fullmatch(r"[a-z_0-9]+", header) is not None


def check_outside(name, header):
    if is_standard(header) or name.startswith("src/platform/"):
        return None
    allowed = OUTSIDE.get(subsystem(name))
    if name.startswith("src/") and allowed and allowed.fullmatch(header):
        return None
    return f"{name}: <{header}> belongs behind src/platform"


def check_includes(tree):
    for name, text in tree.library_files().items():
        for kind, header in INCLUDE.findall(text):
            if kind == "<":
                fault = check_outside(name, header)
                if fault:
                    yield fault
                continue
            target = tree.find(header, name)
            if target is None:
                yield f'{name}: no "{header}" below include{" or src" if name.startswith("src/") else ""}'
            elif not may_include(name, target):
                yield f"{name}: {subsystem(name)} may not include {unit(target)}"


def check_circles(tree):
    state = {}

    def visit(name, road):
        state[name] = "open"
        for kind, header in INCLUDE.findall(tree.texts[name]):
            target = tree.find(header, name) if kind == '"' else None
            if target is None:
                continue
            if state.get(target) == "open":
                yield "circle: " + " -> ".join(road[road.index(target) :] + [target])
            elif target not in state:
                yield from visit(target, road + [target])
        state[name] = "done"

    for name in tree.library_files():
        if name not in state:
            yield from visit(name, [name])


def check_conditions(tree):
    for name, text in tree.texts.items():
        if name.startswith("src/platform/") or name == "include/qmt/export.h":
            continue
        for condition in CONDITION.findall(text.replace("\\\n", " ")):
            if SYSTEM_MACRO.search(condition):
                yield f"{name}: condition on the system outside src/platform:{condition}"


def check_guards(tree):
    for name, text in tree.texts.items():
        if name.endswith(".h") and "#pragma once" not in text:
            yield f"{name}: no #pragma once"


def check_build_lists(tree, compile_commands):
    entries = json.loads(Path(compile_commands).read_text(encoding="utf-8"))
    built = {Path(entry["directory"], entry["file"]).resolve() for entry in entries}
    for name in tree.texts:
        # The consumer is a project of its own.
        apart = name.startswith("tests/consumer/") or name.endswith("_windows.cpp")
        if name.endswith(".cpp") and not apart and (tree.root / name).resolve() not in built:
            yield f"{name}: on disk, but in no build list"


def main(arguments):
    if len(arguments) == 3 and arguments[0] == "--compile-commands":
        tree = Tree(Path(arguments[2]))
        faults = list(check_build_lists(tree, arguments[1]))
    elif len(arguments) == 1:
        tree = Tree(Path(arguments[0]))
        checks = (check_includes, check_circles, check_conditions, check_guards)
        faults = [fault for check in checks for fault in check(tree)]
    else:
        sys.exit(__doc__)
    for fault in faults:
        print(fault)
    print(f"{len(tree.texts)} files, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
