#!/usr/bin/env python3
"""Counts the tests in a folder of GoogleTest's XML reports: summarise_tests.py FOLDER

Of tests that run over several backends it counts those of each. Skipped ones are named with their reasons.
"""

import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path


def backend_of(case):
    """Suite and backend, which is the parameter's name or else, where that is a number, the instance's; or None."""
    instance, _, suite = case.get("classname").partition("/")
    parameter = case.get("name").rpartition("/")[2]
    has_parameter = suite and not suite.isdigit()  # a number there counts types
    return (suite, instance if parameter.isdigit() else parameter) if has_parameter else None


def main(folder):
    run = 0
    skips = {}
    backends = {}
    reports = sorted(Path(folder).glob("*.xml"))
    for report in reports:
        for case in ElementTree.parse(report).getroot().iter("testcase"):
            name = f"{case.get('classname')}.{case.get('name')}"
            skip = case.find("skipped")
            if skip is not None:
                # The message begins with a line that names the place in the source.
                reason = skip.get("message", "").split("\n", 1)[-1].strip() or "no reason given"
                skips.setdefault(reason, []).append(name)
            elif case.get("status") == "run":
                run += 1
                if backend_of(case):
                    backends[backend_of(case)] = backends.get(backend_of(case), 0) + 1
    skipped = sum(len(names) for names in skips.values())
    print(f"    {run} tests in {len(reports)} programs passed, {skipped} skipped")
    for suite in sorted({suite for suite, _ in backends}):
        counts = (f"{name} {count}" for (of, name), count in sorted(backends.items()) if of == suite)
        print(f"    {suite}: {', '.join(counts)}")
    for reason, names in skips.items():
        print(f"    skipped: {reason}")
        for name in names:
            print(f"        {name}")


if __name__ == "__main__":
    main(sys.argv[1])
