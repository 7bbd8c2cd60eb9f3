"""The judge of creeping quantities finds a leak and lets noise pass."""

import random
import unittest

import flat


class Flat(unittest.TestCase):
    def test_what_does_not_move_is_flat(self):
        self.assertEqual(flat.complaints("threads", [5] * 100, 0), [])

    def test_a_slow_leak_is_found(self):
        leaking = [4000 + 2 * i for i in range(400)]  # 2 KiB with each sample
        self.assertEqual(flat.growth(leaking), 400)
        self.assertEqual(flat.complaints("memory", leaking, 400), [])
        self.assertEqual(flat.complaints("memory", leaking, 399),
                         ["memory creeps: 400 more at the end than behind the warm-up, "
                          "allowed are 399"])

    def test_a_leak_is_found_in_noise(self):
        chance = random.Random(1)
        noise = [chance.randrange(-50, 50) for _ in range(400)]
        self.assertEqual(flat.complaints("memory", [4000 + each for each in noise], 40), [])
        leaking = [4000 + each + i for i, each in enumerate(noise)]
        self.assertEqual(len(flat.complaints("memory", leaking, 40)), 1)

    def test_a_descriptor_lost_late_is_found(self):
        self.assertEqual(len(flat.complaints("descriptors", [7] * 70 + [8] * 30, 0)), 1)

    def test_growth_in_the_warm_up_does_not_count(self):
        self.assertEqual(flat.complaints("memory", list(range(25)) + [25] * 75, 0), [])
        self.assertEqual(flat.complaints("memory", list(range(65)) + [65] * 35, 0) != [], True)

    def test_single_peaks_do_not_count(self):
        samples = [7] * 100
        samples[80] = samples[99] = 500
        self.assertEqual(flat.complaints("descriptors", samples, 0), [])

    def test_what_shrinks_is_no_leak(self):
        self.assertEqual(flat.complaints("memory", list(range(100, 0, -1)), 0), [])

    def test_too_few_samples_prove_nothing(self):
        self.assertEqual(flat.complaints("threads", [5] * flat.FEWEST, 0), [])
        self.assertEqual(flat.complaints("threads", [5] * (flat.FEWEST - 1), 0),
                         ["threads: only 11 samples, nothing can be said"])


if __name__ == "__main__":
    unittest.main()
