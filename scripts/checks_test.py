#!/usr/bin/env python3
"""Tests that the check scripts find what they are there to find."""

import json
import tempfile
import unittest
from pathlib import Path

import check_docs
import check_exports
import check_structure


class StructureTest(unittest.TestCase):
    def faults(self, files, check, *arguments):
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            for name, text in files.items():
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(text, encoding="utf-8")
            return list(check(check_structure.Tree(root), *(argument(root) for argument in arguments)))

    def test_includes(self):
        string, code_unit = "include/qmt/general/string.h", "include/qmt/general/code_unit.h"
        log, report = "include/qmt/diagnostics/error_log.h", "include/qmt/diagnostics/realtime_report.h"
        files = "src/platform/files.h"
        export = "include/qmt/export.h"
        everything = {name: "" for name in (string, code_unit, log, report, files, export)}
        cases = [
            # The file, the line in it, a part of the fault or None.
            ("src/general/a.cpp", '#include "platform/files.h"', None),
            ("src/general/a.cpp", '#include "qmt/export.h"', None),
            ("src/general/a.cpp", '#include "qmt/diagnostics/error_log.h"', "general may not include diagnostics"),
            ("src/chain/a.cpp", '#include "qmt/diagnostics/error_log.h"', None),
            ("src/chain/a.cpp", '#include "qmt/diagnostics/realtime_report.h"', "chain may not include"),
            ("src/helpers/countries.cpp", '#include "qmt/general/string.h"', None),
            ("src/helpers/rgb_scaling.cpp", '#include "platform/files.h"', "rgb_scaling may not include"),
            ("src/platform/files_posix.cpp", '#include "qmt/general/code_unit.h"', None),
            ("src/platform/files_posix.cpp", '#include "qmt/general/string.h"', "platform may not include"),
            ("src/platform/files_posix.cpp", "#include <sys/stat.h>", None),
            ("src/chain/a.cpp", "#include <pthread.h>", "belongs behind src/platform"),
            ("src/general/utf.cpp", "#include <utf8.h>", None),
            ("src/chain/a.cpp", "#include <utf8.h>", "belongs behind src/platform"),
            ("include/qmt/general/a.h", "#include <windows.h>", "belongs behind src/platform"),
            ("include/qmt/general/a.h", "#  include <vector>", None),
            ("include/qmt/general/a.h", '#include "platform/files.h"', 'no "platform/files.h" below include'),
        ]
        for name, line, expected in cases:
            with self.subTest(name=name, line=line):
                faults = self.faults({**everything, name: line + "\n"}, check_structure.check_includes)
                self.assertEqual([expected is None or expected in fault for fault in faults], [True] * len(faults))
                self.assertEqual(len(faults), 0 if expected is None else 1)

    def test_circles(self):
        a, b, c = ("include/qmt/general/%s.h" % name for name in "abc")
        road = {a: '#include "qmt/general/b.h"', b: '#include "qmt/general/c.h"', c: ""}
        self.assertEqual(self.faults(road, check_structure.check_circles), [])
        road[c] = '#include "qmt/general/a.h"'
        self.assertEqual(
            self.faults(road, check_structure.check_circles), ["circle: " + " -> ".join([a, b, c, a])]
        )

    def test_conditions_on_the_system(self):
        cases = [
            ("src/chain/a.cpp", "#ifdef _WIN32", 1),
            ("tests/chain/a_test.cpp", "#if defined(X) || \\\n    defined(__linux__)", 1),
            ("src/chain/a.cpp", "#if defined(__clang__) // linux_like is no macro of the system", 0),
            ("src/platform/a_posix.cpp", "#ifdef __linux__", 0),
            ("include/qmt/export.h", "#elif defined(_WIN32)", 0),
        ]
        for name, line, count in cases:
            with self.subTest(name=name, line=line):
                self.assertEqual(len(self.faults({name: line}, check_structure.check_conditions)), count)

    def test_build_lists(self):
        def compile_commands(root):
            path = root / "compile_commands.json"
            path.write_text(json.dumps([{"directory": str(root), "file": "src/general/a.cpp"}]), encoding="utf-8")
            return path

        files = dict.fromkeys(
            [
                "src/general/a.cpp",
                "src/platform/a_windows.cpp",
                "tests/consumer/main.cpp",
                "tests/general/forgotten_test.cpp",
            ],
            "",
        )
        faults = self.faults(files, check_structure.check_build_lists, compile_commands)
        self.assertEqual(faults, ["tests/general/forgotten_test.cpp: on disk, but in no build list"])


class ExportsTest(unittest.TestCase):
    def test_faults(self):
        ring = {str(number): name for number, name in enumerate(check_exports.ring_operations())}
        self.assertEqual(len(ring), 33)
        good = {
            "_ZN3QMT7GetLineEv": "QMT::GetLine()",
            "_ZNK3QMT5Event4NameEv": "QMT::Event::Name() const",
            "_ZTVN3QMT5EventE": "vtable for QMT::Event",
            "_ZThn16_N3QMT5Event4StopEv": "non-virtual thunk to QMT::Event::Stop()",
            "_ZTv0_n24_N3QMT5Event4StopEv": "virtual thunk to QMT::Event::Stop()",
        }
        for mangled in good:
            self.assertTrue(check_exports.OURS.match(mangled), mangled)
        bad = {
            "_ZNSt6vectorIN3QMT6StringEE9push_backEv": "std::vector<QMT::String>::push_back()",
            "_ZN3QMT8platform4OpenEv": "QMT::platform::Open()",
        }
        mangled_ring = {"_ZN3QMT" + number: name for number, name in ring.items()}
        del mangled_ring["_ZN3QMT5"]
        faults = check_exports.faults_of({"libqmtgenu.so": good | bad, "libqmtutilu.so": mangled_ring})
        self.assertEqual(
            list(faults),
            [
                "libqmtgenu.so: exports QMT::platform::Open(), which is private",
                "libqmtgenu.so: exports std::vector<QMT::String>::push_back(), which is not in namespace QMT",
                f"libqmtutilu.so: does not export {ring['5']}",
            ],
        )


class DocsTest(unittest.TestCase):
    def test_examples(self):
        source = "int main() {\n    // [start]\n    Go();\n\n        Far();\n    // [end]\n}\n"
        shown = "text\n```cpp\nGo();\n\n    Far();\n```\n"
        self.assertEqual(check_docs.snippets(source), ["Go();\n\n    Far();"])
        self.assertEqual(list(check_docs.example_faults("README.md", shown, [source])), [])
        self.assertEqual(
            len(list(check_docs.example_faults("README.md", shown.replace("Far", "Near"), [source]))), 1
        )

    def test_links(self):
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            (root / "there.md").touch()
            text = "[a](there.md#part) [b](missing.md) [c](https://example.org) ![d](missing.svg)"
            faults = list(check_docs.link_faults(root / "README.md", text))
            self.assertEqual(
                faults, ["README.md: no file missing.md", "README.md: no file missing.svg"]
            )


if __name__ == "__main__":
    unittest.main()
