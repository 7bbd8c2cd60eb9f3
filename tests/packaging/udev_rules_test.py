"""What the udev rules do with devices: udev_rules_test.py RULES.

The rules are carried out by the few statements of udev that they are written in; a statement beyond
those is an error here.
"""
import os
import re
import sys
import unittest

RULES = sys.argv.pop(1)

TOKEN = re.compile(r'\s*([A-Z]+(?:\{[^}]*\})?)\s*(==|!=|\+=|=)\s*"([^"]*)"\s*(?:,|$)')
MATCHED = re.compile(r"ACTION|SUBSYSTEM|TEST|ENV\{\w+\}|ATTR\{[\w/]+\}")
ASSIGNED = re.compile(r"MODE|GROUP|TAG|ATTR\{[\w/]+\}")

CAMERA = {"ACTION": "add", "SUBSYSTEM": "usb", "ENV{DEVTYPE}": "usb_device", "ATTR{idVendor}": "1e10",
          "TEST": ["power/control"]}
ALLOWED = {"MODE": "0660", "GROUP": "plugdev", "TAG": "uaccess", "ATTR{power/control}": "on"}


def tokens(line):
    """(key, operator, value) of one line of rules."""
    found, at = [], 0
    while at < len(line):
        token = TOKEN.match(line, at)
        if token is None:
            raise ValueError(f"no rule: {line[at:]}")
        found.append(token.groups())
        at = token.end()
    return found


def matches(device, key, operator, value):
    if not MATCHED.fullmatch(key):
        raise ValueError(f"{key} cannot be matched")
    if key == "TEST":
        return (value in device["TEST"]) == (operator == "==")
    return (device.get(key) == value) == (operator == "==")


def carried_out(device):
    """What the rules assign to a device."""
    with open(RULES, encoding="ascii") as file:
        lines = [line for line in file.read().splitlines() if line and not line.startswith("#")]
    assigned, label = {}, None
    for line in map(tokens, lines):
        if label is not None:
            label = None if ("LABEL", "=", label) in line else label
            continue
        wanted = [token for token in line if token[1] in ("==", "!=") or token[0] == "TEST"]
        if not all(matches(device, *token) for token in wanted):
            continue
        for key, operator, value in line:
            if key == "GOTO":
                label = value
            elif operator in ("=", "+=") and key not in ("LABEL", "TEST"):
                if not ASSIGNED.fullmatch(key) or (key == "TAG") != (operator == "+="):
                    raise ValueError(f"{key}{operator} is nothing that rules may do")
                assigned[key] = value
    if label is not None:
        raise ValueError(f"there is no label {label}")
    return assigned


class UdevRules(unittest.TestCase):
    def test_camera_is_given_to_the_group_and_the_seat_and_stays_awake(self):
        for action in ("add", "change", "bind"):
            self.assertEqual(carried_out(CAMERA | {"ACTION": action}), ALLOWED)

    def test_camera_without_power_control_is_given_all_the_same(self):
        expected = {key: value for key, value in ALLOWED.items() if "power" not in key}
        self.assertEqual(carried_out(CAMERA | {"TEST": []}), expected)

    def test_nothing_else_is_touched(self):
        for other in ({"ACTION": "remove"}, {"SUBSYSTEM": "tty"}, {"ENV{DEVTYPE}": "usb_interface"},
                      {"ATTR{idVendor}": "1d6b"}, {"ATTR{idVendor}": None}):
            with self.subTest(other):
                self.assertEqual(carried_out(CAMERA | other), {})

    def test_number_lies_before_the_rules_that_act_on_uaccess(self):
        self.assertLess(os.path.basename(RULES), "73-seat-late.rules")


if __name__ == "__main__":
    unittest.main()
