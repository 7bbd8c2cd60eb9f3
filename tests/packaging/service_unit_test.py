"""The unit for systemd follows the exit codes of kxhost, and systemd has nothing against it.

Usage: service_unit_test.py PROJECT_ROOT
"""

import os
import re
import sys
import unittest

ROOT = sys.argv[1]
UNIT = os.path.join(ROOT, "packaging", "kxhost@.service")

# What is worth another start, what takes a person, and what no grab ends with.
RESTARTED = {"kExitInternal", "kExitNoCamera", "kExitCamera", "kExitExport", "kExitLive"}
LEFT = {"kExitUsage", "kExitConfiguration", "kExitLosses", "kExitPlugin", "kExitNoLibrary",
        "kExitLibraryAge"}
NO_GRAB = {"kExitFine", "kExitNoGrab", "kExitMend", "kExitUnchecked"}


def text_of(*path):
    with open(os.path.join(ROOT, *path), encoding="utf-8") as file:
        return file.read()


def exit_codes():
    """Name: number, of host/base/exit_code.h."""
    return {name: int(number) for name, number in
            re.findall(r"^\s*(kExit\w+) = (\d+),", text_of("host", "base", "exit_code.h"), re.M)}


def settings():
    """Key: value, of the unit; each key once."""
    pairs = re.findall(r"^(\w+)=(.*)$", text_of("packaging", "kxhost@.service"), re.M)
    assert len(pairs) == len(dict(pairs)), "a key twice"
    return dict(pairs)


class ServiceUnit(unittest.TestCase):
    def test_every_exit_code_is_either_cured_by_a_start_or_not(self):
        # A verb's own codes, which no grab ends with, are told apart by their comment.
        others = set(re.findall(r"^\s*(kExit\w+) = \d+,\s*///< (?!doctor|ctl)\w+:",
                                text_of("host", "base", "exit_code.h"), re.M))
        self.assertEqual(set(exit_codes()) - others, RESTARTED | LEFT | NO_GRAB)

    def test_what_takes_a_person_is_not_started_again(self):
        codes = exit_codes()
        prevented = {int(word) for word in settings()["RestartPreventExitStatus"].split()}
        self.assertEqual(prevented, {codes[name] for name in LEFT})
        self.assertEqual(settings()["Restart"], "on-failure")

    def test_comments_name_the_same_codes(self):
        comments = " ".join(re.findall(r"^# ?(.*)$", text_of("packaging", "kxhost@.service"), re.M))
        again = comments[comments.index("is started again"):comments.index("What stays wrong")]
        left = comments[comments.index("What stays wrong"):comments.index("The thread of")]
        codes = exit_codes()
        numbers = lambda text: {int(number) for number in re.findall(r"\((\d+)\)", text)}
        self.assertEqual(numbers(again), {codes[name] for name in RESTARTED})
        self.assertEqual(numbers(left), {codes[name] for name in LEFT})

    def test_the_grab_may_do_what_it_needs(self):
        unit = settings()
        self.assertEqual(unit["LimitRTPRIO"], "98")
        self.assertEqual(unit["LimitMEMLOCK"], "infinity")
        self.assertEqual(unit["Type"], "notify")
        self.assertIn("exec kxhost grab -c /etc/kxhost/%i.toml", unit["ExecStart"])
        # Waiting for a camera is the grab's, and no failed start.
        self.assertEqual(unit["TimeoutStartSec"], "infinity")

    def test_booting_does_not_wait_for_a_camera(self):
        unit = settings()
        # Else multi-user.target would be reached behind the first frame.
        self.assertEqual(unit["DefaultDependencies"], "no")
        self.assertEqual(unit["WantedBy"], "multi-user.target")
        self.assertNotIn("multi-user.target", unit["Before"] + unit["After"])
        # What else the default is: not before the system is set up, and not behind its end.
        self.assertEqual(unit["Requires"], "sysinit.target")
        self.assertLessEqual({"sysinit.target", "basic.target"}, set(unit["After"].split()))
        self.assertEqual((unit["Conflicts"], unit["Before"]),
                         ("shutdown.target", "shutdown.target"))

    def test_what_starts_it_does_not_wait_either(self):
        lines = re.findall(r"systemctl[^\n]*(?:\b(?:re)?start\b|--now)[^\n]*kxhost@",
                           text_of("docs", "operations.md") +
                           text_of("packaging", "kxhost@.service"))
        self.assertGreaterEqual(len(lines), 3)
        for line in lines:
            self.assertIn("--no-block", line)

    def test_the_document_tells_the_same_codes(self):
        codes = exit_codes()
        told = {"yes": set(), "no": set()}
        for what, answer in re.findall(r"^\| (\S.*) \| (yes|no)\b[^|]* \|$",
                                       text_of("docs", "operations.md"), re.M):
            told[answer] |= {int(number) for number in re.findall(r"\b\d+\b", what)}
        self.assertEqual(told["yes"], {codes[name] for name in RESTARTED})
        self.assertEqual(told["no"], {codes[name] for name in LEFT | {"kExitFine"}})

    def test_a_slow_disk_is_given_as_much_time_again_as_a_stop_has(self):
        seconds = int(settings()["TimeoutStopSec"])
        self.assertIn(f"`EXTEND_TIMEOUT_USEC={seconds * 1000000}`", text_of("docs", "operations.md"))

    def test_the_user_that_the_document_gives_it_may_open_cameras(self):
        rules = text_of("packaging", "60-driver-pointgrey.rules")
        group = re.search(r'GROUP="(\w+)"', rules).group(1)
        self.assertIn(f"[Service]\nUser=grabber\nSupplementaryGroups={group}\n",
                      text_of("docs", "operations.md"))
        # The pictures go where systemd makes a folder for that user.
        self.assertIn(f"/var/lib/{settings()['StateDirectory']}/", settings()["ExecStart"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
