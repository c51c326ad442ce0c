#!/usr/bin/env python3
"""Checks the documents: check_docs.py ROOT

Every example in C++ must stand, letter for letter, between the lines `// [start]` and `// [end]` of a compiled
source below examples/, and every link to a file must lead to one.
"""

import re
import sys
import textwrap
from pathlib import Path

EXAMPLE = re.compile(r"^```cpp\n(.*?)^```$", re.M | re.S)
SNIPPET = re.compile(r"^ *// \[start\]\n(.*?)^ *// \[end\]$", re.M | re.S)
LINK = re.compile(r"\]\(([^)#\s]+)[^)]*\)")


def snippets(source):
    return [textwrap.dedent(snippet).strip() for snippet in SNIPPET.findall(source)]


def example_faults(name, text, sources):
    compiled = [snippet for source in sources for snippet in snippets(source)]
    for example in EXAMPLE.findall(text):
        if example.strip() not in compiled:
            yield f"{name}: an example stands in no source below examples/:\n{example}"


def link_faults(path, text):
    for link in LINK.findall(EXAMPLE.sub("", text)):
        if not re.match(r"[a-z]+:", link) and not (path.parent / link).exists():
            yield f"{path.name}: no file {link}"


def main(root):
    sources = [path.read_text(encoding="utf-8") for path in sorted((root / "examples").rglob("*.cpp"))]
    pages = sorted(root.glob("*.md")) + sorted((root / "docs").rglob("*.md"))
    faults = []
    for page in pages:
        text = page.read_text(encoding="utf-8")
        faults += example_faults(page.name, text, sources)
        faults += link_faults(page, text)
    for fault in faults:
        print(fault)
    print(f"{len(pages)} pages, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1])))
