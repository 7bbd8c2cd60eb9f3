"""Every source has a unit test of its stem, or an entry that says which test covers it instead.

Usage: tested_stems_test.py PROJECT_ROOT ENTRIES

An entry is a line "SOURCE TEST", both as paths from the root. An entry is wrong as soon as its test
is gone or its source has a test of its own, so that the list cannot rot.
"""

import glob
import os
import sys
import unittest

ROOT, ENTRIES = sys.argv[1:3]


def relative(pattern):
    return sorted(os.path.relpath(path, ROOT)
                  for path in glob.glob(os.path.join(ROOT, pattern), recursive=True))


def stem(path):
    return os.path.splitext(os.path.basename(path))[0]


class TestedStems(unittest.TestCase):
    def setUp(self):
        self.sources = [path for folder in ("src", "host", "flycapture2/sim")
                        for path in relative(f"{folder}/**/*.cpp")]
        self.tested = {stem(path).removesuffix("_test") for path in relative("tests/unit/*/*_test.cpp")}
        self.entries = {}
        with open(ENTRIES, encoding="utf-8") as file:
            for line in file:
                if line.strip() and not line.startswith("#"):
                    source, test = line.split()
                    self.entries[source] = test

    def test_every_source_is_tested(self):
        self.assertTrue(self.sources)
        untested = [path for path in self.sources
                    if stem(path) not in self.tested and path not in self.entries]
        self.assertEqual(untested, [], "no test of that stem and no entry")

    def test_every_entry_is_needed(self):
        for source, test in self.entries.items():
            self.assertIn(source, self.sources)
            self.assertNotIn(stem(source), self.tested, "has a test of its own by now")
            self.assertTrue(os.path.exists(os.path.join(ROOT, test)), test)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
