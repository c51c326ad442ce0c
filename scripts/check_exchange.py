#!/usr/bin/env python3
"""Has two builds read the files that each has written: check_exchange.py HERE WINDOWS FOLDER

HERE is the folder of a build for this system, WINDOWS that of the windows preset; FOLDER, which is emptied, gets the
files. What is read must be the same, whoever wrote and whoever reads, and be what was written.
"""

import shutil
import subprocess
import sys
from pathlib import Path

WINE = Path(__file__).parent / "wine.sh"
VALUES = [" plain ", "ä€😀", "lone \ud800 one", "\ufeffmark"]  # those of tests/exchange/main.cpp

EXPECTED = "".join(
    [f"{value}|{value}|" for value in VALUES]
    + [f"2024/03/05 14:07:09 {value}|" for value in VALUES]
    + [f"({10 * number:08}) {value} {number}|" for number, value in enumerate(VALUES)]
)


def runners(here, windows):
    def run_here(*arguments):
        subprocess.run([here / "tests/exchange", *arguments], check=True)

    def run_windows(verb, *paths):
        wine = [WINE, windows / "wine", windows / "bin/exchange.exe", verb]
        subprocess.run([*wine, *(f"Z:{path}" for path in paths)], check=True)

    return {"here": run_here, "windows": run_windows}


def main(here, windows, folder):
    shutil.rmtree(folder, ignore_errors=True)
    faults = 0
    for writer, write in runners(here, windows).items():
        place = folder / writer
        place.mkdir(parents=True)
        write("write", place)
        for reader, read in runners(here, windows).items():
            result = folder / f"{writer}_{reader}.txt"
            read("read", place, result)
            found = result.read_bytes().decode("utf-8", "surrogatepass")
            faults += found != EXPECTED
            print(f"written {writer}, read {reader}: {'as expected' if found == EXPECTED else ascii(found)}")
    subprocess.run([WINE, windows / "wine", "--stop"], check=False)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*(Path(argument).resolve() for argument in sys.argv[1:4])))
