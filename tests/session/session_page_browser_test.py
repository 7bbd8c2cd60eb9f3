"""The live page in a browser, steered by clicks.

Usage: session_page_browser_test.py CHROMIUM KXHOST SUPPORT_FOLDER [SCREENSHOT_FOLDER]
"""

import json
import os
import re
import sys
import time
import unittest

sys.path.append(sys.argv[3])
from chromium import Chromium  # noqa: E402 (the folder is an argument)
from page_grab import BUS, PageGrab  # noqa: E402

CHROMIUM, KXHOST = sys.argv[1:3]
SCREENSHOTS = sys.argv[4] if len(sys.argv) > 4 else None
TOKEN = "0123456789-abc%f"
# Milliseconds between the end of a request for a picture and the next one.
PAUSES = """(() => {
    const all = performance.getEntriesByType("resource").filter(
        each => each.name.endsWith("/frame.png"));
    return all.slice(1).map((each, i) => each.startTime - all[i].responseEnd);
})()"""
FAULT = '[[camera.fault]]\nkind = "lose"\nframe = 5\ncount = 3\n'


class LivePageInABrowser(unittest.TestCase):
    def setUp(self):
        self.browser = self.enterContext(Chromium(CHROMIUM))
        self.browser.resize(1280, 900)

    def text(self, selector):
        """What an element says; nothing while the page is loaded."""
        return self.browser.evaluate(
            f"document.querySelector({json.dumps(selector)})?.innerText || ''")

    def wait(self, what, condition):
        end = time.monotonic() + 60
        while time.monotonic() < end:
            value = condition()
            if value:
                return value
            time.sleep(0.1)
        return self.fail(f"in vain: {what}; the page says:\n{self.text('body')}")

    def frame(self):
        """Number of the frame whose picture is shown."""
        return int(self.browser.evaluate(
            'document.getElementById("picture").naturalWidth'
            ' && document.getElementById("picture").dataset.frame || 0'))

    def shoot(self, name):
        if SCREENSHOTS:
            with open(os.path.join(SCREENSHOTS, name + ".png"), "wb") as file:
                file.write(self.browser.screenshot())

    def test_it_shows_the_grab_and_its_buttons_steer_it(self):
        with PageGrab(KXHOST, bus=BUS.format(rate=20) + FAULT,
                      configuration='[format]\nrotation = "off"\n') as page:
            self.browser.open(page.url()[1])
            first = self.wait("a picture", self.frame)
            self.wait("another picture", lambda: self.frame() > first)
            self.wait("the state", lambda: self.text("#state") == "grabbing")
            exported = int(self.text("#exported"))
            self.wait("more frames", lambda: int(self.text("#exported")) > exported)
            self.wait("losses", lambda: "camera skipped before frame" in self.text("#losses"))
            self.wait("a histogram", lambda: "grey: " in self.text("#clipped"))
            self.reload(page)
            self.compute_tables()
            self.finish(page)
        # Frames that do not come in time, a grab that has ended, and hints for authors of pages.
        known = ("status of 503", "ERR_CONNECTION_REFUSED", "ERR_CONNECTION_RESET",
                 "ERR_EMPTY_RESPONSE", "'level': 'verbose'")
        self.assertEqual([each for each in self.browser.console
                          if not any(part in str(each) for part in known)], [])
        own = ("http://127.0.0.1:", "blob:http://127.0.0.1:", "data:")
        self.assertEqual([each for each in self.browser.requests if not each.startswith(own)], [])

    def reload(self, page):
        page.write("camera.toml", "[format]\nrotatoin = 1\n")
        self.browser.click('[data-word="reload"]')
        self.wait("the refusal", lambda: "unknown key format.rotatoin" in self.text("#answer") and
                  "the one in force stays" in self.text("#answer"))
        page.write("camera.toml", '[format]\nrotation = "on"\n')
        self.browser.click('[data-word="reload"]')
        self.wait("the take-over", lambda: "Reloaded " in self.text("#answer"))
        self.wait("its number", lambda: self.text("#configuration") == "no. 2")

    def compute_tables(self):
        self.browser.click('[data-word="lut"]')
        self.wait("a table", lambda: "computed (1 in this grab)" in self.text("#answer"))
        self.browser.click('[data-word="lut12"]')
        self.wait("another table", lambda: "computed (2 in this grab)" in self.text("#answer"))

    def finish(self, page):
        self.browser.click("#finish")
        self.wait("the question", lambda: self.text("#finish") == "Really finish?")
        self.assertIsNone(page.process.poll())
        self.browser.click("#finish")
        self.assertEqual(page.end(), 0)
        self.wait("the end", lambda: self.text("#state") == "ended")
        self.assertEqual(self.text("#answer"), "The grab has ended with exit code 0: "
                                               "Finished as asked by a signal.")
        self.assertTrue(self.browser.evaluate('document.getElementById("finish").disabled'))

    def test_a_lost_camera_and_a_lost_kxhost_are_told(self):
        fault = '[[camera.fault]]\nkind = "detach"\nframe = 40\ncount = 20\nback_after = 4.0\n'
        with PageGrab(KXHOST, bus=BUS.format(rate=20) + fault) as page:
            self.browser.open(page.url()[1])
            self.wait("the loss", lambda: self.text("#state") == "camera lost, waiting for it")
            self.wait("its return", lambda: self.text("#state") == "grabbing")
            page.process.kill()
            self.wait("silence", lambda: self.text("#state") == "no answer from kxhost")
            self.browser.evaluate('press("reload")')
            self.assertEqual(self.text("#answer"),
                             "kxhost does not answer; whether it did anything is not known.")

    def test_the_grab_that_follows_is_shown_as_its_own(self):
        with PageGrab(KXHOST) as page:
            address, port = page.url()[1], page.url()[3]
            self.browser.open(address)
            self.wait("a picture", self.frame)
            page.ask("/finish", "POST")
            self.wait("the end", lambda: self.text("#state") == "ended")
            self.assertEqual(page.end(), 0)
        with PageGrab(KXHOST, live=port) as page:
            self.wait("the other one", lambda: self.text("#state") == "grabbing")
            self.wait("its process", lambda: str(page.process.pid) in self.text("#what"))
            self.wait("its picture", self.frame)

    def test_the_caption_is_that_of_the_picture(self):
        # The camera counts from 0, its first frame starts the timing, and three are lost.
        fault = '[[camera.fault]]\nkind = "lose"\nframe = 2\ncount = 3\n'
        unpaced = BUS.format(rate=20).replace("paced = true", "paced = false")
        with PageGrab(KXHOST, bus=unpaced + fault) as page:
            self.browser.open(page.url()[1])
            first = self.wait("a picture", self.frame)
            self.wait("another picture", lambda: self.frame() > first)
            self.wait("the caption", lambda: self.text("#caption"))
            for _ in range(20):
                caption = self.browser.evaluate("showAge(), byId('caption').innerText")
                self.assertRegex(caption, r"^Frame \d+ · 64 × 48 MONO8T · camera's counter \d+$")
                numbers = re.findall(r"\d+", caption)
                self.assertEqual(int(numbers[-1]) - int(numbers[0]), 3)
                time.sleep(0.05)

    def test_who_waits_for_a_slow_camera_asks_on(self):
        with PageGrab(KXHOST, "--wait", "600", bus="") as page:
            self.browser.open(page.url()[1])
            pauses = self.wait("requests in vain", lambda: (lambda all: len(all) > 3 and all)(
                self.browser.evaluate(PAUSES)))
            self.assertLess(min(pauses), 500)  # so long a frame that nobody fetched is kept

    def test_a_token_is_asked_for(self):
        with PageGrab(KXHOST, live="0.0.0.0:0", environment={"KXHOST_LIVE_TOKEN": TOKEN}) as page:
            url = page.url()[1].replace("0.0.0.0", "127.0.0.1")
            self.browser.open(url)
            self.wait("the door", lambda: self.text("#state") == "token needed")
            self.browser.write("#token", "wrong-wrong-wrong")
            self.browser.click("#token-form button")
            self.wait("the refusal", lambda: self.text("#token-answer") == "The token is wrong.")
            self.browser.write("#token", TOKEN)
            self.browser.click("#token-form button")
            self.wait("a picture", self.frame)
            self.browser.evaluate("sessionStorage.clear()")
            self.browser.open("about:blank")
            self.browser.open(url + "#token=" + TOKEN)
            self.wait("a picture without a question", self.frame)

    def test_nothing_is_wider_than_the_window(self):
        colour = BUS.format(rate=20).replace("width = 64, height = 48", "width = 1280, height = 960")
        colour = colour.replace("colour = false", 'colour = true, bayer_tile = "RGGB"')
        with PageGrab(KXHOST, bus=colour + FAULT + FAULT.replace("= 5", "= 50"),
                      configuration='[format]\npixel_format = "bayer8"\n') as page:
            self.browser.open(page.url()[1])
            self.wait("a picture", self.frame)
            self.wait("losses", lambda: self.text("#losses"))
            for width, height in ((320, 600), (390, 1500), (768, 1024), (1280, 860), (1900, 1000)):
                for scheme in ("light", "dark"):
                    self.browser.resize(width, height)
                    self.browser.shine(scheme)
                    number = self.frame()
                    self.wait("a picture", lambda: self.frame() > number)
                    if SCREENSHOTS:
                        time.sleep(1)
                    self.shoot(f"{width}-{scheme}")
                    self.assertLessEqual(
                        self.browser.evaluate("document.documentElement.scrollWidth"), width)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
