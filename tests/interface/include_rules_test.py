"""Folders are permissions: who may include what.

Usage: include_rules_test.py PROJECT_ROOT
"""

import glob
import os
import re
import sys
import unittest

ROOT = sys.argv[1]

# Folder: where the files that it names in quotes may lie.
OWN_HEADERS = {
    "include": ["include"],
    "src": ["src", "include"],
    "host": ["host", "include"],
    "flycapture2/include": ["flycapture2/include"],
    "flycapture2/sim": ["flycapture2/sim"],
}
# The folders of the host, each with those that it may use besides itself: a folder never needs one
# that needs it.
HOST_LAYERS = {
    "base": set(),
    "picture": set(),
    "clock": set(),
    "export": {"base", "picture"},
    "config": {"base", "picture", "export"},
    "report": {"base", "picture", "export", "clock"},
    "grab": {"base", "picture", "export", "clock", "config"},
    "live": {"base", "picture", "export", "clock", "config", "grab"},
    "doctor": {"base", "config", "grab"},
    "services": {"base", "picture", "export", "clock", "config", "grab"},
    "command": {"base", "clock", "config", "doctor", "export", "grab", "live", "report"},
}
MAY_USE_THE_CAMERA_LIBRARY = {"src", "flycapture2/sim"}

# The plug-in depends on nothing but the language's library, POSIX and the camera library.
PLUGIN_SYSTEM_HEADERS = {"pthread.h", "sched.h", "stdint.h", "sys/time.h", "syslog.h", "unistd.h"}


def includes(folder):
    """Each include of a folder: file, quote sign, name."""
    for path in sorted(glob.glob(os.path.join(ROOT, folder, "**", "*.h"), recursive=True)
                       + glob.glob(os.path.join(ROOT, folder, "**", "*.cpp*"), recursive=True)):
        with open(path, encoding="utf-8") as file:
            for quote, name in re.findall(r'^\s*#\s*include\s*(["<])([^">]+)[">]', file.read(), re.M):
                yield os.path.relpath(path, ROOT), quote, name


class IncludeRules(unittest.TestCase):
    def test_headers_of_the_project_lie_where_the_folder_may_look(self):
        ours = {os.path.basename(path) for folder in OWN_HEADERS
                for path in glob.glob(os.path.join(ROOT, folder, "**", "*.h"),
                                  recursive=True)}
        for folder, allowed in OWN_HEADERS.items():
            found = list(includes(folder))
            self.assertTrue(found, folder)
            for path, quote, name in found:
                if quote == "<" and (name not in ours or name == "FlyCapture2.h"):
                    continue
                if not any(os.path.exists(os.path.join(ROOT, place, name)) for place in allowed):
                    self.fail(f"{path} includes {name}, which is not in {' or '.join(allowed)}")

    def test_folders_of_the_host_use_those_below(self):
        folders = {entry.name for entry in os.scandir(os.path.join(ROOT, "host")) if entry.is_dir()}
        self.assertEqual(folders, set(HOST_LAYERS))
        for folder, below in HOST_LAYERS.items():
            for path, quote, name in includes(f"host/{folder}"):
                used, slash, _ = name.partition("/")
                if quote == '"' and slash:
                    self.assertIn(used, below | {folder}, f"{path} includes {name}")

    def test_only_plugin_and_simulation_use_the_camera_library(self):
        for folder in OWN_HEADERS.keys() - MAY_USE_THE_CAMERA_LIBRARY:
            for path, quote, name in includes(folder):
                if quote == "<":
                    self.assertNotIn("FlyCapture2", name, path)

    def test_the_plugin_includes_no_other_library(self):
        for folder in ("src", "include"):
            for path, quote, name in includes(folder):
                if quote == "<" and name not in PLUGIN_SYSTEM_HEADERS | {"FlyCapture2.h"}:
                    self.assertRegex(name, r"\A[a-z_]+\Z", path)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
