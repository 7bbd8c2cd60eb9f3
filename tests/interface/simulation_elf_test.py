"""The simulation as a file: it has every name of the maker's library, and tables as long.

Usage: simulation_elf_test.py SIMULATION FLYCAPTURE_SYMBOLS
"""

import re
import sys
import unittest

import elf

SIMULATION, SYMBOLS = sys.argv[1:3]

# Virtual functions per class, the two destructors included.
SLOTS = {"Error": 15, "BusManager": 19, "Camera": 61, "GigECamera": 75, "Image": 37}
TABLE_HEAD = 2 # offset to the top, type information


class SimulationElf(unittest.TestCase):
    def test_soname(self):
        self.assertEqual(elf.dynamic_entries(SIMULATION)["SONAME"], ["libflycapture.so.2"])

    def test_has_every_name_of_the_interface(self):
        with open(SYMBOLS, encoding="utf-8") as file:
            names = set(file.read().split())
        self.assertEqual(sorted(names - elf.exported(SIMULATION)), [])

    def test_virtual_tables_have_their_length(self):
        measured = {}
        for symbol in elf.dynamic_symbols(SIMULATION):
            match = re.fullmatch(r"_ZTVN11FlyCapture2\d+(\w+)E", symbol.name)
            if match and match.group(1) in SLOTS:
                measured[match.group(1)] = symbol.size // 8 - TABLE_HEAD
        self.assertEqual(measured, SLOTS)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
