"""Loading the plug-in: with every host service, without one of them, with an old camera library.

Usage: plugin_load_test.py COMPILER LOADER PLUGIN SIMULATION KX_HOST_H KXHOST

LOADER opens the libraries it is given, one after the other, with immediate binding.
"""

import os
import subprocess
import sys
import tempfile
import unittest

import elf

COMPILER, LOADER, PLUGIN, SIMULATION, HOST_HEADER, KXHOST = sys.argv[1:7]

EVENT_FUNCTIONS = ("13RegisterEventE", "15DeregisterEventE", "17RegisterAllEventsE",
                   "19DeregisterAllEventsE")
KXHOST_LIBRARY_AGE = 10


def build_library(path, source, *flags, language="c"):
    """Builds a shared library from source."""
    subprocess.run([COMPILER, "-x", language, "-", "-shared", "-fPIC", *flags, "-o", path], input=source,
                   text=True, check=True)


def build_host(path, services):
    """A library in place of a host, which has these services and no others."""
    build_library(path, "".join(f"void {name}(void) {{}}\n" for name in services))


def build_camera_library(path, without=()):
    """The simulation's names with nothing behind them; a name that contains one of `without` is
    left out."""
    names = [name for name in sorted(elf.exported(SIMULATION))
             if not any(part in name for part in without)]
    build_library(path, "".join(f"void* {name}[16];\n" for name in names),
                  "-Wl,-soname,libflycapture.so.2", "-fno-builtin", "-w")


class Loading(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.host = self.path("libhost.so")
        self.services = elf.host_services(HOST_HEADER)

    def path(self, name):
        return os.path.join(self.folder, name)

    def load(self, *libraries):
        return subprocess.run([LOADER, *libraries, PLUGIN], capture_output=True, text=True,
                              check=False)

    def test_loads_into_a_host_with_every_service(self):
        build_host(self.host, self.services)
        result = self.load(self.host)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_loads_into_a_host_of_default_services(self):
        build_library(self.host, "#include <kx_host_defaults.h>\n", "-std=c++20",
                      "-I" + os.path.dirname(HOST_HEADER), language="c++")
        self.assertEqual(elf.exported(self.host) & set(self.services), set(self.services))
        result = self.load(self.host)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_does_not_load_into_a_host_without_one_service(self):
        used = [name for name in self.services if name in elf.undefined(PLUGIN)]
        self.assertGreater(len(used), 20)
        for missing in used:
            with self.subTest(missing=missing):
                build_host(self.host, [name for name in self.services if name != missing])
                result = self.load(self.host)
                self.assertEqual(result.returncode, 1)
                self.assertTrue(result.stderr.endswith(f"undefined symbol: {missing}\n"),
                                result.stderr)

    def test_loads_with_a_camera_library_that_has_all_functions(self):
        # The counterpart of the next test: it is the missing functions that make the difference.
        build_host(self.host, self.services)
        build_camera_library(self.path("libflycapture.so.2"))
        result = self.load(self.host, self.path("libflycapture.so.2"))
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_does_not_load_with_a_camera_library_of_the_older_releases(self):
        build_host(self.host, self.services)
        build_camera_library(self.path("libflycapture.so.2"), without=EVENT_FUNCTIONS)
        result = self.load(self.host, self.path("libflycapture.so.2"))
        self.assertEqual(result.returncode, 1)
        self.assertRegex(result.stderr, r"undefined symbol: _ZN11FlyCapture2.*(Event|AllEvents)E")

    def test_kxhost_says_what_is_wrong_with_an_older_camera_library(self):
        library = self.path("libflycapture.so.2")
        build_camera_library(library, without=EVENT_FUNCTIONS)
        result = subprocess.run([KXHOST, "list", "--camera-library", library, "--plugin", PLUGIN],
                                capture_output=True, text=True, check=False)
        self.assertEqual(result.returncode, KXHOST_LIBRARY_AGE, result.stderr)
        self.assertEqual(result.stdout, "")
        self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)
        self.assertIn(library, result.stderr)
        self.assertIn("another release", result.stderr)
        self.assertIn("FLYCAPTURE2_ROOT", result.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
