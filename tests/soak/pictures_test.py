"""A picture that lacks a byte, or has a wrong one, is found; what kxhost writes is whole.

Usage: pictures_test.py KXHOST
"""

import os
import sys
import tempfile
import unittest

import grab
import pictures

KXHOST = sys.argv.pop(1)


def grabbed(folder, picture_format):
    """Path of the second picture of a grab."""
    with grab.Grab(KXHOST, folder, grab.bus(48, 18, 200, paced=False), "",
                   [f"output.format={picture_format}", "grab.frames=2"]) as running:
        assert running.wait() == 0, running.messages()
        return os.path.join(running.output, f"frame_000002.{picture_format}")


class Pictures(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory(prefix="kx-test-")
        self.addCleanup(self.folder.cleanup)

    def judge(self, name, data, raw_bytes=None):
        path = os.path.join(self.folder.name, name)
        with open(path, "wb") as file:
            file.write(data)
        return pictures.complaints(path, raw_bytes)

    def expect_whole_only(self, extension, cuts):
        """The file as it was written passes; with that much cut off its end it does not."""
        with open(grabbed(self.folder.name, extension[1:]), "rb") as file:
            data = file.read()
        self.assertEqual(self.judge("whole" + extension, data), [])
        for cut in cuts:
            self.assertEqual(len(self.judge("cut" + extension, data[:-cut])), 1, cut)
        self.assertEqual(len(self.judge("empty" + extension, b"")), 1)
        return data

    def test_png(self):
        data = self.expect_whole_only(".png", [1, 4, 12, 13, 100])
        damaged = bytearray(data)
        damaged[len(data) // 2] ^= 1
        self.assertEqual(self.judge("damaged.png", bytes(damaged)),
                         ["damaged.png: a chunk is damaged"])
        self.assertEqual(len(self.judge("two.png", data + data)), 1)

    def test_tiff(self):
        # Its directory may stand behind the pixels.
        self.expect_whole_only(".tiff", [1, 100, 400])

    def test_raw(self):
        self.assertEqual(self.judge("frame.raw", bytes(10), 10), [])
        self.assertEqual(self.judge("frame.raw", bytes(9), 10),
                         ["frame.raw: has 9 bytes instead of 10"])

    def test_other_files_and_missing_ones_are_no_pictures(self):
        self.assertEqual(self.judge("notes.txt", b"x"), ["notes.txt: is no picture"])
        self.assertEqual(len(pictures.complaints(os.path.join(self.folder.name, "none.png"))), 1)


if __name__ == "__main__":
    unittest.main()
