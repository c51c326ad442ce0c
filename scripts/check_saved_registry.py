#!/usr/bin/env python3
"""Has wine's regedit read a saved registry back: check_saved_registry.py PROGRAM FOLDER

PROGRAM is the build's platform_registry_test. FOLDER, made when missing, gets the files and wine's own
directory. regedit imports the saved file and exports its registry again; every value must be in both files, the same.
"""

import os
import re
import subprocess
import sys
from pathlib import Path

WINE = "/usr/lib/wine/wine64"  # wine64 alone brings no command of its own
LONGEST_RUN = 300  # seconds; the first one sets up wine's directory
KEY = r"HKEY_CURRENT_USER\Software\QmtSaved"
ESCAPES = {"n": "\n", "r": "\r", "0": "\0"}


def regedit(folder, *arguments):
    environment = os.environ | {
        "WINEPREFIX": str(folder / "wine"),
        "WINEDEBUG": "-all",
        "WINEDLLOVERRIDES": "mscoree,mshtml=",
    }
    environment.pop("DISPLAY", None)
    subprocess.run([WINE, "regedit", *arguments], cwd=folder, env=environment, check=True, timeout=LONGEST_RUN)


def bytes_of(text):
    return text.encode("utf-16-le", "surrogatepass")


def unescaped(quoted):
    return re.sub(r"\\(.)", lambda found: ESCAPES.get(found[1], found[1]), quoted, flags=re.S)


def value_of(text):
    """The type and the data of what stands behind the equals sign."""
    if text.startswith('"'):
        return 1, bytes_of(unescaped(text[1:-1]) + "\0")
    if text.startswith("dword:"):
        return 4, int(text[6:], 16).to_bytes(4, "little")
    kind, digits = re.fullmatch(r"hex(?:\((\w+)\))?:(.*)", text, re.S).groups()
    return int(kind or "3", 16), bytes(int(pair, 16) for pair in digits.split(",") if pair)


def values_in(file):
    """Maps key and name, as bytes, to type and data."""
    text = file.read_bytes().decode("utf-16", "surrogatepass").replace("\\\r\n  ", "")
    values, key = {}, None
    for line in text.split("\r\n")[1:]:
        if line.startswith("["):
            key = line[1:-1].removeprefix("HKEY_CURRENT_USER\\")
        elif line:
            name, value = re.fullmatch(r'(@|"(?:[^"\\]|\\.)*")=(.*)', line, re.S).groups()
            values[key, b"" if name == "@" else bytes_of(unescaped(name[1:-1]))] = value_of(value)
    return values


def main(program, folder):
    folder.mkdir(parents=True, exist_ok=True)
    environment = os.environ | {"QMT_SAVED_REGISTRY": str(folder)}
    (folder / "saved.reg").unlink(missing_ok=True)
    subprocess.run([program, "--gtest_filter=SavedRegistry.*"], env=environment, check=True)
    exported = folder / "exported.reg"
    exported.unlink(missing_ok=True)
    regedit(folder, "/D", KEY)
    regedit(folder, "/S", "saved.reg")
    regedit(folder, "/E", "exported.reg", KEY)
    expected, found = values_in(folder / "saved.reg"), values_in(exported)
    faults = [place for place in expected.keys() | found.keys() if expected.get(place) != found.get(place)]
    for place in sorted(faults):
        print(f"{place}: saved {expected.get(place)}, read back {found.get(place)}")
    print(f"{len(expected)} values, {len(faults)} faults")
    return 1 if faults or not expected else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], Path(sys.argv[2]).resolve()))
