"""The report of a grab, looked at in a browser.

Usage: session_report_browser_test.py CHROMIUM KXHOST SUPPORT_FOLDER
"""

import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHROMIUM, KXHOST, SUPPORT = sys.argv[1:4]
sys.path.insert(0, SUPPORT)
import chromium  # noqa: E402

FRAMES = 300
BUS = """
[[camera]]
model = "Tester TST-1"
serial = 424242
interface = "usb3"
sensor = { width = 64, height = 48, frame_rate = 200.0, colour = true, bayer_tile = "RGGB" }
properties.SHUTTER.value = 1
delivery.paced = false
[[camera.fault]]
kind = "lose"
frame = 20
count = 3
[[camera.fault]]
kind = "detach"
frame = 100
back_after = 0.2
"""

# Each image with the width that it has and the one that it should have.
IMAGES = """[...document.images].map(i => [i.complete, i.naturalWidth, i.width > 0,
                                           Number(i.getAttribute("width"))])"""
# Each line of a figure: its length, and whether it lies within its figure.
LINES = """[...document.querySelectorAll("svg.plot")].map(plot =>
    [...plot.querySelectorAll("path.middle, path.curve, rect.loss")].map(line => {
        const box = line.getBBox();
        const points = line.tagName == "rect" ? 2 : line.getAttribute("d").split(/[ML]/).length - 1;
        const height = Number(plot.getAttribute("height"));
        return [points, box.x >= 0 && box.x + box.width <= 1001 && box.y >= -1 &&
                        box.y + box.height <= height + 1];
    }))"""
LEDGER = """Object.fromEntries([...document.querySelectorAll("data[id^=ledger-]")].map(
    each => [each.id.slice(7), Number(each.value)]))"""
# What the page does when something in it reaches for the network.
REACH_OUT = """new Promise(done => {
    document.addEventListener("securitypolicyviolation", e => done(e.effectiveDirective));
    document.body.append(Object.assign(new Image(), {src: "http://192.0.2.1/a.png"}));
})"""
OVERFLOW = "document.documentElement.scrollWidth - document.documentElement.clientWidth"


class Report(unittest.TestCase):
    """One grab with losses and a gap, and one browser for all tests."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="kx-report-")
        cls.addClassCleanup(cls.folder.cleanup)
        folder = pathlib.Path(cls.folder.name)
        (folder / "bus.toml").write_text(BUS)
        page = folder / "report.html"
        subprocess.run(
            [KXHOST, "grab", f"--simulate={folder / 'bus.toml'}", "--quiet", "--frames", str(FRAMES),
             "--output", folder / "out", "--report", page, "--summary", folder / "summary.json",
             "--set", "format.pixel_format=bayer8", "--set", "output.format=raw"],
            check=True, timeout=60, stderr=subprocess.DEVNULL)
        cls.summary = json.loads((folder / "summary.json").read_text())
        cls.metadata = (folder / "out" / "frames.ndjson").read_text().splitlines()
        cls.browser = cls.enterClassContext(chromium.Chromium(CHROMIUM))
        cls.browser.open(page.as_uri())
        cls.address = page.as_uri()

    def test_loads_alone_and_in_silence(self):
        asked = [each for each in self.browser.requests if not each.startswith("data:")]
        self.assertEqual(asked, [self.address])
        self.assertEqual(self.browser.console, [])
        self.assertEqual(self.browser.evaluate("document.scripts.length"), 0)

    def test_ledger_is_that_of_summary_and_metadata(self):
        ledger = self.browser.evaluate(LEDGER)
        told = self.summary["ledger"]
        in_vain = ledger.pop("failed-without-frame", 0)
        self.assertEqual(in_vain, told["failed_retrievals_without_frame"])
        expected = {"values": told["values"], "delivered": told["delivered"], **told["causes"]}
        self.assertEqual(ledger, expected)
        self.assertEqual(ledger["delivered"], len(self.metadata))
        self.assertEqual(ledger["camera_skipped"], 6)  # in each of two captures
        self.assertEqual(ledger["values"], sum(ledger.values()) - ledger["values"])

    def test_every_picture_is_shown(self):
        images = self.browser.evaluate(IMAGES)
        self.assertGreaterEqual(len(images), 12)
        for complete, natural, visible, wanted in images:
            self.assertEqual((complete, natural, visible), (True, wanted, True))

    def test_figures_have_their_points(self):
        figures = self.browser.evaluate(LINES)
        # Two histograms of three channels, three figures over time, the losses.
        self.assertEqual([len(lines) for lines in figures][:5], [3, 3, 1, 1, 1])
        self.assertEqual(len(figures), 6)
        for lines in figures:
            for points, inside in lines:
                self.assertTrue(inside)
                self.assertGreater(points, 1)
        self.assertEqual({points for lines in figures[:2] for points, _ in lines}, {256})
        buckets = figures[4][0][0]
        self.assertGreaterEqual(buckets, 128)
        self.assertLessEqual(buckets, 256)

    def test_gap_and_configuration_are_marked(self):
        self.assertEqual(self.browser.evaluate("document.querySelectorAll('rect.away').length"), 4)
        self.assertEqual(self.browser.evaluate("document.querySelectorAll('.flag text').length"), 4)

    def test_fits_narrow_and_wide_windows(self):
        for width in (360, 1280):
            self.browser.resize(width, 900)
            self.assertLessEqual(self.browser.evaluate(OVERFLOW), 0, f"{width} pixels")

    def test_zz_nothing_in_it_reaches_the_network(self):  # last: it leaves an error in the console
        self.assertEqual(self.browser.evaluate(REACH_OUT), "img-src")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
