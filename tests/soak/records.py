"""Follows the metadata of a grab while it grows, and what it says of each frame."""

import json
import os

import pictures

MOST_COMPLAINTS = 20
# Taken at a time, so that who follows a fast grab gets to do something else.
MOST_LINES = 1000


class Records:
    """Checks each line as it comes: whole, numbered in order, its gaps told, its pictures whole.

    Pictures are removed once they have been looked at when `tidy` is true, as by a consumer that
    takes them away; a long run would fill the disk otherwise. With `may_fail` numbers may be left
    out: of two frames that are written at the same time the second may find room on a full disk.
    """

    def __init__(self, folder, tidy=False, may_fail=False):
        self.folder = folder
        self.tidy = tidy
        self.may_fail = may_fail
        self.values = []      # (stretch, frame counter) of each frame that has them
        self.count = 0        # lines
        self.pictures = 0     # looked at
        self.words = 0        # received on an I/O line
        self.gaps = 0         # of camera_away_s
        self.complaints = []  # the first of them
        self.untold = []      # gaps of the counter that the metadata tells otherwise, likewise
        self._read = 0
        self._number = 0
        self._before = None

    def complain(self, text, about=None):
        about = self.complaints if about is None else about
        if len(about) < MOST_COMPLAINTS:
            about.append(text)

    def follow(self):
        """Takes lines that were completed since the last call; returns whether there may be more."""
        try:
            with open(os.path.join(self.folder, "frames.ndjson"), "rb") as file:
                file.seek(self._read)
                for _ in range(MOST_LINES):
                    if not (line := file.readline()).endswith(b"\n"):
                        return False
                    self._read += len(line)
                    self.take(line)
                return True
        except FileNotFoundError:
            return False

    def end(self):
        """Takes what is left; a line that was cut is a complaint."""
        while self.follow():
            pass
        path = os.path.join(self.folder, "frames.ndjson")
        if os.path.exists(path) and os.path.getsize(path) != self._read:
            self.complain("the last line of frames.ndjson is cut")

    def take(self, line):
        """One line of metadata."""
        try:
            frame = json.loads(line)
        except ValueError:
            self.complain(f"no line of metadata: {line[:200]!r}")
            return
        self.count += 1
        step = frame["number"] - self._number
        if step != 1 and not (self.may_fail and step > 1):
            self.complain(f"frame {frame['number']} stands behind frame {self._number}")
        self._number = frame["number"]
        self.words += "rx_data" in frame
        self.gaps += "camera_away_s" in frame
        if "stretch" in frame:
            self._take_value(frame)
        for picture in frame["pictures"]:
            self._take_picture(picture)

    def _take_value(self, frame):
        value = (frame["stretch"], frame["frame_counter"])
        self.values.append(value)
        lost = sum(frame.get("lost_before", {}).values())
        if self._before is not None and self._before[0] == value[0]:
            missing = value[1] - self._before[1] - 1
            # The first frame of a capture is no loss, but takes a number.
            if missing not in (lost, lost + 1):
                self.complain(f"frame {frame['number']}: {missing} missing, {lost} told",
                              self.untold)
        self._before = value

    def _take_picture(self, picture):
        if "file" not in picture:
            return
        path = os.path.join(self.folder, picture["file"])
        self.pictures += 1
        for complaint in pictures.complaints(path, picture["bytes"]):
            self.complain(complaint)
        if self.tidy and os.path.exists(path):
            os.unlink(path)
