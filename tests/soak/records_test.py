"""Metadata that lacks a frame, a line's end, a picture or the reason for a gap is found."""

import json
import os
import tempfile
import unittest

import records


def line(number, counter=None, stretch=1, **more):
    frame = {"number": number, "frame_counter": number if counter is None else counter,
             "stretch": stretch, "pictures": []}
    return json.dumps(frame | more) + "\n"


class RecordsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="kx-test-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def judge(self, *lines, **options):
        with open(os.path.join(self.folder, "frames.ndjson"), "w", encoding="ascii") as file:
            file.write("".join(lines))
        found = records.Records(self.folder, **options)
        found.end()
        return found

    def test_no_metadata_is_none(self):
        found = records.Records(self.folder)
        found.end()
        self.assertEqual((found.count, found.complaints), (0, []))

    def test_frames_in_order_are_fine(self):
        found = self.judge(line(1), line(2, rx_data=5), line(3, 0, 2, camera_away_s=1.5))
        self.assertEqual((found.complaints, found.untold), ([], []))
        self.assertEqual(found.values, [(1, 1), (1, 2), (2, 0)])
        self.assertEqual((found.count, found.words, found.gaps), (3, 1, 1))

    def test_a_frame_that_is_not_there_is_found(self):
        self.assertEqual(self.judge(line(1), line(3)).complaints, ["frame 3 stands behind frame 1"])

    def test_frames_that_could_not_be_written_leave_numbers_out_but_not_order(self):
        for lines, count in [((line(1), line(3)), 0), ((line(1), line(1)), 1),
                             ((line(2), line(1)), 1)]:
            found = self.judge(*lines, may_fail=True)
            self.assertEqual(len(found.complaints), count, lines)

    def test_a_line_that_is_cut_is_found(self):
        found = self.judge(line(1), line(2)[:-1])
        self.assertEqual(found.complaints, ["the last line of frames.ndjson is cut"])
        self.assertEqual(found.count, 1)

    def test_what_is_no_json_is_found(self):
        self.assertEqual(len(self.judge(line(1), "{\n").complaints), 1)

    def test_a_gap_without_a_cause_is_found(self):
        told = line(2, 4, lost_before={"queue_full": 1, "camera_skipped": 1})
        self.assertEqual(self.judge(line(1, 1), told).untold, [])
        self.assertEqual(self.judge(line(1, 1), line(2, 5)).untold, ["frame 2: 3 missing, 0 told"])
        # The first frame of a capture is no loss, but takes a number.
        self.assertEqual(self.judge(line(1, 1), line(2, 3)).untold, [])

    def test_lines_are_taken_as_they_come(self):
        found = self.judge(line(1))
        with open(os.path.join(self.folder, "frames.ndjson"), "a", encoding="ascii") as file:
            file.write(line(2) + line(3)[:10])
        found.follow()
        self.assertEqual((found.count, found.complaints), (2, []))

    def test_a_fast_grab_is_followed_in_portions(self):
        lines = [line(number) for number in range(1, records.MOST_LINES + 2)]
        with open(os.path.join(self.folder, "frames.ndjson"), "w", encoding="ascii") as file:
            file.write("".join(lines))
        found = records.Records(self.folder)
        self.assertTrue(found.follow())
        self.assertEqual(found.count, records.MOST_LINES)
        self.assertFalse(found.follow())
        self.assertEqual((found.count, found.complaints), (records.MOST_LINES + 1, []))

    def test_a_picture_that_is_cut_or_missing_is_found(self):
        picture = {"file": "a.raw", "bytes": 3}
        self.assertEqual(len(self.judge(line(1, pictures=[picture])).complaints), 1)
        with open(os.path.join(self.folder, "a.raw"), "wb") as file:
            file.write(b"abc")
        found = self.judge(line(1, pictures=[picture]))
        self.assertEqual((found.complaints, found.pictures), ([], 1))
        self.assertTrue(os.path.exists(os.path.join(self.folder, "a.raw")))
        self.judge(line(1, pictures=[picture]), tidy=True)
        self.assertFalse(os.path.exists(os.path.join(self.folder, "a.raw")))

    def test_complaints_do_not_grow_without_end(self):
        found = self.judge(*["{\n"] * 1000)
        self.assertEqual(len(found.complaints), records.MOST_COMPLAINTS)


if __name__ == "__main__":
    unittest.main()
