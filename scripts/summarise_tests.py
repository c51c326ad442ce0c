#!/usr/bin/env python3
"""Counts the tests in a folder of GoogleTest's XML reports and names those skipped: summarise_tests.py FOLDER"""

import sys
import xml.etree.ElementTree as ElementTree
from pathlib import Path


def main(folder):
    run = 0
    skips = {}
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
    skipped = sum(len(names) for names in skips.values())
    print(f"    {run} tests in {len(reports)} programs passed, {skipped} skipped")
    for reason, names in skips.items():
        print(f"    skipped: {reason}")
        for name in names:
            print(f"        {name}")


if __name__ == "__main__":
    main(sys.argv[1])
