"""A load that is not held is found, unless the processors were not to be had."""

import os
import time
import unittest

import load_piece


def retrieved(rate):
    return {"asked a second": 500, "retrieved a second": rate}


class Load(unittest.TestCase):
    def test_less_than_nine_tenths_are_short(self):
        self.assertFalse(load_piece.is_short(retrieved(450), 0.0))
        self.assertTrue(load_piece.is_short(retrieved(449.9), 0.0))
        self.assertTrue(load_piece.is_short(retrieved(5), 0.0))

    def test_a_grab_that_had_to_wait_is_excused(self):
        self.assertTrue(load_piece.is_short(retrieved(5), load_piece.MOST_WAIT))
        self.assertFalse(load_piece.is_short(retrieved(5), load_piece.MOST_WAIT + 0.01))

    def test_a_kernel_that_does_not_tell_excuses_much_but_not_all(self):
        self.assertTrue(load_piece.is_short(retrieved(49.9), None))
        self.assertFalse(load_piece.is_short(retrieved(50), None))

    def test_the_time_of_waiting_never_shrinks(self):
        before = load_piece.waited_seconds("/proc/self")
        if before is None:
            self.skipTest("this kernel does not tell")
        until = time.monotonic() + 0.05
        while time.monotonic() < until:
            pass
        self.assertGreaterEqual(load_piece.waited_seconds("/proc/self"), before)

    def test_of_no_process_nothing_is_known(self):
        self.assertIsNone(load_piece.waited_seconds(os.devnull))


if __name__ == "__main__":
    unittest.main()
