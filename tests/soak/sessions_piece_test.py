"""Sessions that leave something behind, or that did not take place, are found."""

import unittest

import sessions_piece

PASSED = ("[       OK ] ControlSessionsTest.LeaveNothingBehind (34821 ms)\n"
          "[==========] 1 test from 1 test suite ran. (34821 ms total)\n[  PASSED  ] 1 test.\n")


class Sessions(unittest.TestCase):
    def test_those_that_leave_nothing_pass(self):
        self.assertEqual(sessions_piece.judge(0, PASSED), ({"sessions": 1000, "seconds": 34.8}, []))

    def test_a_failure_is_a_complaint(self):
        self.assertEqual(len(sessions_piece.judge(1, "[  FAILED  ] 1 test")[1]), 1)
        self.assertEqual(len(sessions_piece.judge(-11, PASSED)[1]), 1)

    def test_a_program_without_the_test_is_a_complaint(self):
        self.assertEqual(sessions_piece.judge(0, "[  PASSED  ] 0 tests.\n"),
                         ({}, ["exit code 0: [  PASSED  ] 0 tests.\n"]))

    def test_a_skip_is_told(self):
        text = ("x.cpp:9: Skipped\nreal-time threads are not allowed here\n\n"
                "[  SKIPPED ] RealTimeSessionsTest.LeaveNothingBehind (0 ms)\n[  PASSED  ] 0 tests.")
        self.assertEqual(sessions_piece.judge(0, text),
                         ({"skipped": "real-time threads are not allowed here"}, []))


if __name__ == "__main__":
    unittest.main()
