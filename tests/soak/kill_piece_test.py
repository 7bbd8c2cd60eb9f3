"""Kills that leave nothing are found: they would show nothing."""

import unittest

import kill_piece


class Kills(unittest.TestCase):
    def test_a_frame_that_was_there_must_be_left(self):
        self.assertEqual(kill_piece.missing({"lines": 1, "pictures": 1}, True), [])
        self.assertEqual(kill_piece.missing({"lines": 0, "pictures": 0}, False), [])
        self.assertEqual(kill_piece.missing({"lines": 0, "pictures": 1}, True),
                         ["of the frame that was there no line is left"])
        self.assertEqual(kill_piece.missing({"lines": 1, "pictures": 0}, True),
                         ["of the frame that was there no picture is left"])

    def test_kills_of_which_none_has_left_anything_are_found(self):
        self.assertEqual(kill_piece.too_little({"kills": 9, "lines": 1, "pictures": 1}), [])
        self.assertEqual(kill_piece.too_little({"kills": 9, "lines": 0, "pictures": 1}),
                         ["9 kills have left no lines at all"])
        self.assertEqual(kill_piece.too_little({"kills": 9, "lines": 1, "pictures": 0}),
                         ["9 kills have left no pictures at all"])


if __name__ == "__main__":
    unittest.main()
