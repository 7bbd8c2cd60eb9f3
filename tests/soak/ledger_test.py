"""A ledger that is off by one frame, anywhere, is found."""

import copy
import types
import unittest

import ledger

# 6 values: the first starts the timing, one was dropped, one skipped, three are on disk.
GOOD = {
    "retrieved": 5, "timing_only": 1, "failed_retrievals": 0,
    "exported": {"frames": 3, "written": 3, "pictures": 3},
    "lost": {"total": 2, "camera": 1, "queue_full": 1, "after_export_error": 0, "refused": 0,
             "export": 0},
    "ledger": {
        "counted_by_camera": True, "arrived": 5, "values": 6, "off_counter": 0, "stand_ins": 0,
        "delivered": 3, "causes": {"timing": 1, "queue_full": 1, "camera_skipped": 1},
        "imbalance": 0, "failed_retrievals_without_frame": 0,
        "stretches": [{"stretch": 1, "first": 0, "last": 5}], "stretches_not_listed": 0,
        "ranges": [{"stretch": 1, "first": 0, "last": 0}, {"stretch": 1, "first": 2, "last": 3}],
        "ranges_not_listed": 0},
}


def records_of(values, untold=()):
    return types.SimpleNamespace(values=values, count=len(values), pictures=len(values),
                                 untold=list(untold))


def changed(path, value):
    """The good summary with one entry changed; `path` as "ledger.causes.timing"."""
    summary = copy.deepcopy(GOOD)
    *outer, last = path.split(".")
    at = summary
    for key in outer:
        at = at[key]
    at[last] = value
    return summary


class Ledger(unittest.TestCase):
    values = [(1, 1), (1, 4), (1, 5)]

    def test_a_good_one_passes(self):
        self.assertEqual(ledger.complaints(GOOD, records_of(self.values)), [])

    def test_no_summary_is_a_complaint(self):
        self.assertEqual(ledger.complaints(None), ["there is no summary"])

    def test_every_count_that_is_off_by_one_is_found(self):
        for path, value in [
                ("retrieved", 6), ("timing_only", 0), ("failed_retrievals", 1),
                ("exported.frames", 4), ("exported.written", 2), ("lost.total", 1),
                ("lost.queue_full", 0), ("lost.refused", 1), ("lost.export", 1),
                ("ledger.arrived", 4), ("ledger.values", 5), ("ledger.off_counter", 1),
                ("ledger.delivered", 4), ("ledger.causes.timing", 2),
                ("ledger.causes.camera_skipped", 0), ("ledger.imbalance", -1)]:
            with self.subTest(path):
                self.assertNotEqual(ledger.complaints(changed(path, value)), [])

    def test_waits_in_vain_are_lost_only_where_nothing_numbers_the_frames(self):
        waited = changed("failed_retrievals", 1)
        waited["ledger"]["failed_retrievals_without_frame"] = 1
        self.assertEqual(ledger.complaints(waited), [])
        waited["lost"].update(total=3, camera=2)
        self.assertEqual(ledger.complaints(waited),
                         ["ledger, lost by the camera: 2 is not 1"])
        waited["ledger"]["counted_by_camera"] = False
        self.assertEqual(ledger.complaints(waited), [])

    def test_metadata_has_the_frames_that_were_written(self):
        self.assertNotEqual(ledger.complaints(GOOD, records_of(self.values[:2])), [])
        records = records_of(self.values)
        records.pictures = 2
        self.assertEqual(ledger.complaints(GOOD, records), ["2 pictures of 3"])

    def test_a_value_without_cause_is_found(self):
        lost = changed("ledger.ranges", GOOD["ledger"]["ranges"][:1])
        self.assertEqual(ledger.complaints(lost, records_of(self.values)),
                         ["2 values have no cause, 0 lie outside of all stretches"])

    def test_a_value_that_is_lost_and_there_is_found(self):
        found = ledger.complaints(GOOD, records_of([(1, 1), (1, 3), (1, 5)]))
        self.assertIn("value 3 of stretch 1 is lost and there", found)

    def test_frames_out_of_order_are_found(self):
        self.assertEqual(ledger.complaints(GOOD, records_of([(1, 4), (1, 1), (1, 5)])),
                         ["frames are out of order"])
        self.assertIn("value (1, 1) comes twice",
                      ledger.complaints(GOOD, records_of([(1, 1), (1, 1), (1, 5)])))

    def test_gaps_have_to_be_told_where_no_value_is_doubtful(self):
        untold = records_of(self.values, ["frame 2: 2 missing, 0 told"])
        self.assertEqual(ledger.complaints(GOOD, untold), ["frame 2: 2 missing, 0 told"])
        self.assertEqual(ledger.complaints(changed("ledger.stand_ins", 1), untold), [])


if __name__ == "__main__":
    unittest.main()
