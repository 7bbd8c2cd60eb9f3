"""A soak in which the torment did not happen is found."""

import unittest

import soak_piece

MET = {"camera lost": 1, "camera back": 1, "reloads": 1, "live changes": 1,
       "captures for a table": 10, "words received": 1}
DONE = {"wide_table": 40, "word": 100}


def complaints(figures=(), done=(), real_time=True):
    return soak_piece.left_out(MET | dict(figures), DONE | dict(done), real_time)


class Soak(unittest.TestCase):
    def test_one_in_which_all_happened_passes(self):
        self.assertEqual(complaints(), [])

    def test_what_did_not_happen_is_named(self):
        for name in ("camera lost", "camera back", "reloads", "live changes"):
            self.assertEqual(complaints({name: 0}), [f"the soak met no {name}"])

    def test_tables_that_were_not_computed_are_found(self):
        self.assertEqual(complaints({"captures for a table": 9}),
                         ["9 captures for a table of 12 bits, asked for 40 times"])
        self.assertEqual(complaints({"captures for a table": 0}, {"wide_table": 0}),
                         ["0 captures for a table of 12 bits, asked for 0 times"])

    def test_words_count_where_there_are_enough_and_real_time_is_allowed(self):
        self.assertEqual(complaints({"words received": 0}), ["none of 100 words came back"])
        self.assertEqual(complaints({"words received": 0}, {"word": 99}), [])
        self.assertEqual(complaints({"words received": 0}, real_time=False), [])


if __name__ == "__main__":
    unittest.main()
