"""What somebody who looks at the live page costs the grab.

Usage: live_viewer.py KXHOST [SECONDS]

One grab of frames that come as fast as they are fetched, without pictures on disk. Turns with and
without a viewer follow each other, and each pair gives a ratio; so what else the computer does
shows in both.
"""

import os
import statistics
import sys
import threading
import time

sys.path.append(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "session"))
from page_grab import BUS, PageGrab  # noqa: E402 (the folder is no package)

PAIRS = 10


class Viewer(threading.Thread):
    """Asks for what the page asks for, as often as it does."""

    def __init__(self, page):
        super().__init__()
        self.page = page
        self.pictures = 0
        self.is_over = threading.Event()

    def run(self):
        while not self.is_over.wait(0.2):
            self.pictures += self.page.ask("/frame.png").status == 200
            self.page.ask("/histogram.json")
            self.page.ask("/status.json")


def frames_per_second(page, seconds):
    def sample():
        return page.status()["frames"]["exported"], time.monotonic()
    first, start = sample()
    time.sleep(seconds)
    last, end = sample()
    return (last - first) / (end - start)


def main():
    kxhost = sys.argv[1]
    seconds = float(sys.argv[2]) if len(sys.argv) > 2 else 2
    bus = BUS.format(rate=30).replace("paced = true", "paced = false")
    bus = bus.replace("width = 64, height = 48", "width = 640, height = 480")
    ratios, pictures, alone = [], 0, []
    with PageGrab(kxhost, bus=bus) as page:
        page.wait("frames", lambda: page.status()["frames"]["exported"] > 10)
        for _ in range(PAIRS):
            alone.append(frames_per_second(page, seconds))
            viewer = Viewer(page)
            viewer.start()
            ratios.append(frames_per_second(page, seconds) / alone[-1])
            viewer.is_over.set()
            viewer.join()
            pictures += viewer.pictures
    print(f"without a viewer {statistics.median(alone):.0f} frames/s, {pictures} pictures seen")
    print(f"with one, {statistics.median(ratios):.3f} times as many frames "
          f"({min(ratios):.3f} to {max(ratios):.3f} in {PAIRS} pairs of {seconds:g} s)")


if __name__ == "__main__":
    main()
