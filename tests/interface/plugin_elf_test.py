"""The plug-in as a file: what a loader sees of it, and what it does when it is run as a program.

Usage: plugin_elf_test.py PLUGIN EXPORTED_SYMBOLS KX_HOST_H
"""

import re
import subprocess
import sys
import unittest

import elf

PLUGIN, EXPORTS, HOST_HEADER = sys.argv[1:4]

RUNTIME = {"libstdc++.so.6", "libgcc_s.so.1", "libc.so.6", "libm.so.6", "ld-linux-x86-64.so.2",
           "ld-linux-aarch64.so.1"}
# Weak references that every shared object of this compiler has, whatever its source says.
COMPILER_WEAK = {"__cxa_finalize", "__gmon_start__", "_ITM_deregisterTMCloneTable",
                 "_ITM_registerTMCloneTable"}


class PluginElf(unittest.TestCase):
    def setUp(self):
        self.dynamic = elf.dynamic_entries(PLUGIN)

    def test_soname(self):
        self.assertEqual(self.dynamic["SONAME"], ["libdriver-pointgrey.0"])

    def test_needs_the_camera_library_and_the_runtime_only(self):
        needed = set(self.dynamic["NEEDED"])
        self.assertIn("libflycapture.so.2", needed)
        self.assertEqual(needed - RUNTIME, {"libflycapture.so.2"})

    def test_binds_lazily(self):
        # Run as a program it has no host: immediate binding would end it before its entry point.
        self.assertNotIn("BIND_NOW", self.dynamic)
        self.assertNotIn("BIND_NOW", self.dynamic.get("FLAGS", [""])[0])
        self.assertNotIn("NOW", self.dynamic.get("FLAGS_1", [""])[0].split())

    def test_entry_point_is_LibEntry(self):
        entry = re.search(r"Entry point address:\s+(0x\w+)", elf.output("readelf", "-hW", PLUGIN))
        symbol = re.search(r"\s([0-9a-f]{16})\s.*\sLibEntry$",
                           elf.output("readelf", "--dyn-syms", "-W", PLUGIN), re.M)
        self.assertEqual(int(entry.group(1), 16), int(symbol.group(1), 16))

    def test_names_an_interpreter_that_exists(self):
        match = re.search(r"program interpreter: (\S+)\]", elf.output("readelf", "-lW", PLUGIN))
        self.assertIsNotNone(match)
        with open(match.group(1), "rb") as file:
            self.assertEqual(file.read(4), b"\x7fELF")

    def test_exports_what_the_list_says(self):
        with open(EXPORTS, encoding="utf-8") as file:
            listed = file.read().splitlines()
        self.assertEqual(sorted(set(elf.demangle(sorted(elf.exported(PLUGIN))))), listed)

    def test_takes_names_from_host_camera_library_and_runtime_only(self):
        services = set(elf.host_services(HOST_HEADER))
        # What comes from the runtime has a version.
        unversioned = {s.name for s in elf.dynamic_symbols(PLUGIN)
                       if not s.defined and not s.version} - COMPILER_WEAK
        camera_library = {name for name in unversioned if re.match(r"_Z(TI|TV)?NK?11FlyCapture2", name)}
        self.assertTrue(unversioned & services)
        self.assertTrue(camera_library)
        self.assertEqual(unversioned - services - camera_library, set())

    def test_has_no_weak_references_of_its_own(self):
        weak = {s.name for s in elf.dynamic_symbols(PLUGIN) if s.bind == "WEAK" and not s.defined}
        self.assertEqual(weak - COMPILER_WEAK, set())

    def test_run_as_a_program_it_prints_its_version_into_a_pipe(self):
        result = subprocess.run([PLUGIN], capture_output=True, check=False)
        self.assertEqual(result.returncode, 0)
        self.assertRegex(result.stdout, rb"\AVersion: 0\.37\.28-[0-9a-f]{40}\n\Z")
        self.assertEqual(result.stderr, b"")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
