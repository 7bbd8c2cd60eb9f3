"""Which SDK the build takes: the one at FLYCAPTURE2_ROOT, or else the bundled interface.

Usage: sdk_choice_test.py CMAKE FIND_SDK_CMAKE
"""

import os
import subprocess
import sys
import tempfile
import unittest

CMAKE, MODULE = sys.argv[1:3]

SCRIPT = """
include("%s")
set(CMAKE_LIBRARY_ARCHITECTURE x86_64-linux-gnu)
kx_choose_flycapture2("${ROOT}")
message(STATUS "headers=${FLYCAPTURE2_MAKER_HEADERS} library=${FLYCAPTURE2_MAKER_LIBRARY}")
"""


class SdkChoice(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = os.path.join(folder.name, "sdk")
        os.mkdir(self.root)
        self.script = os.path.join(folder.name, "choose.cmake")
        with open(self.script, "w", encoding="utf-8") as file:
            file.write(SCRIPT % MODULE)

    def place(self, name):
        path = os.path.join(self.root, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8"):
            return path

    def choose(self):
        result = subprocess.run([CMAKE, f"-DROOT={self.root}", "-P", self.script],
                                capture_output=True, text=True, check=False)
        return result.returncode, " ".join((result.stdout + result.stderr).split())

    def assert_takes(self, header, library):
        header, library = self.place(header), self.place(library)
        code, text = self.choose()
        self.assertEqual(code, 0, text)
        self.assertIn(f"headers={os.path.dirname(header)} library={library}", text)
        self.assertIn("the maker's SDK", text)

    def test_takes_the_usual_layout(self):
        self.assert_takes("include/FlyCapture2.h", "lib/libflycapture.so")

    def test_takes_the_layout_of_packages(self):
        self.assert_takes("include/flycapture/FlyCapture2.h",
                          "lib/x86_64-linux-gnu/libflycapture.so.2")

    def test_takes_a_library_without_its_links(self):
        self.assert_takes("include/flycapture/FlyCapture2.h", "lib64/libflycapture.so.2.13.3.31")

    def test_prefers_the_link_for_developers(self):
        self.place("lib/libflycapture.so.2.13.3.31")
        self.assert_takes("include/FlyCapture2.h", "lib/libflycapture.so")

    def test_passes_over_another_architecture(self):
        self.place("include/FlyCapture2.h")
        self.place("lib/aarch64-linux-gnu/libflycapture.so")
        code, text = self.choose()
        self.assertNotEqual(code, 0)
        self.assertIn("there is no libflycapture.so", text)

    def test_says_where_headers_are_missing(self):
        self.place("lib/libflycapture.so")
        code, text = self.choose()
        self.assertNotEqual(code, 0)
        self.assertIn(f"{self.root}/include/flycapture/FlyCapture2.h exists", text)

    def test_says_where_the_library_is_missing(self):
        self.place("include/FlyCapture2.h")
        code, text = self.choose()
        self.assertNotEqual(code, 0)
        self.assertIn(f"there is no libflycapture.so in {self.root}/lib", text)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
