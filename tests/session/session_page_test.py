"""The live page of the real program over HTTP: routes, buttons, refusals, errors, the end.

Usage: session_page_test.py KXHOST
"""

import json
import re
import socket
import subprocess
import sys
import unittest

from page_grab import BUS, Answer, PageGrab

KXHOST = sys.argv[1]
TOKEN = "0123456789-abcdef"


def grab(*arguments, **options):
    return PageGrab(KXHOST, *arguments, **options)


def has_ipv6():
    try:
        with socket.socket(socket.AF_INET6) as probe:
            probe.bind(("::1", 0))
        return True
    except OSError:
        return False


class LivePage(unittest.TestCase):
    def test_a_grab_is_seen_and_finished(self):
        with grab() as page:
            self.assertEqual(page.ask("/").headers["Content-Type"], "text/html; charset=utf-8")
            page.wait("frames", lambda: page.status()["frames"]["exported"] > 3)
            before = page.status()
            self.assertEqual(before["state"], "grabbing")
            page.wait("more frames", lambda: page.status()["frames"]["exported"] >
                      before["frames"]["exported"])
            page.wait("a rate", lambda: page.status()["frames"]["per_second"] > 0)
            self.assertEqual(page.ask("/finish", "POST").status, 202)
            self.assertEqual(page.end(), 0)
            summary = json.loads(page.read("summary.json"))
            self.assertEqual(summary["reason"], "Finished as asked by a signal.")
            self.assertEqual(summary["ledger"]["imbalance"], 0)

    def test_pictures_come_and_change_whether_they_are_written_or_not(self):
        for pictures in ("none", "png"):
            with self.subTest(pictures), grab(pictures=pictures) as page:
                first = page.wait("a picture", lambda: self.picture(page))
                self.assertTrue(first.body.startswith(b"\x89PNG\r\n"))
                number = int(first.headers["X-Frame-Number"])
                self.assertGreater(number, 0)
                later = page.wait("a later picture", lambda: (
                    lambda now: int(now.headers["X-Frame-Number"]) > number and now)(
                        self.picture(page)))
                self.assertNotEqual(later.body, first.body)
                shown = page.status()["picture"]
                self.assertEqual((shown["width"], shown["height"]), (64, 48))
                self.assertEqual(shown["configuration"], 1)
                grey = page.ask("/histogram.json").json()["channels"][0]
                self.assertEqual(sum(grey["bins"]), 64 * 48)

    def picture(self, page):
        answer = page.ask("/frame.png")
        self.assertIn(answer.status, (200, 503))
        return answer if answer.status == 200 else None

    def test_reload_takes_over_a_changed_file_and_says_so(self):
        with grab(configuration='[format]\nrotation = "off"\n') as page:
            page.wait("frames", lambda: page.status()["frames"]["exported"] > 1)
            page.write("camera.toml", '[format]\nrotation = "on"\n')
            self.assertEqual(page.ask("/reload", "POST").status, 202)
            self.assertIn("rotation", page.wait_for_notice("Reloaded ")[0])
            page.wait("the new configuration", lambda: self.picture(page) and
                      page.status()["picture"]["configuration"] == 2)

    def test_reload_of_a_file_with_an_error_is_refused_in_words(self):
        with grab() as page:
            page.wait("frames", lambda: page.status()["frames"]["exported"] > 1)
            page.write("camera.toml", "[format]\nrotatoin = 1\n")
            self.assertEqual(page.ask("/reload", "POST").status, 202)
            page.wait_for_notice("unknown key format.rotatoin")
            page.wait_for_notice("The configuration is refused; the one in force stays.")

    def test_look_up_tables_are_computed(self):
        with grab() as page:
            page.wait("frames", lambda: page.status()["frames"]["exported"] > 1)
            for count, word in enumerate(("lut", "lut12"), 1):
                self.assertEqual(page.ask("/" + word, "POST").status, 202)
                page.wait(word, lambda: page.status()["tables"] == count and
                          page.status()["pending"] == [])

    def test_losses_are_told_by_their_causes(self):
        fault = '[[camera.fault]]\nkind = "lose"\nframe = 5\ncount = 3\n'
        with grab(bus=BUS.format(rate=20) + fault) as page:
            losses = page.wait("losses", lambda: page.status()["losses"]["latest"] and
                               page.status()["losses"])
            self.assertGreaterEqual(losses["causes"]["camera_skipped"], 3)
            self.assertGreaterEqual(page.status()["frames"]["lost"], 3)

    def test_a_lost_camera_is_told_and_its_return(self):
        fault = '[[camera.fault]]\nkind = "detach"\nframe = 5\ncount = 1000\nback_after = 1.0\n'
        with grab(bus=BUS.format(rate=50) + fault) as page:
            page.wait("the loss", lambda: page.status()["state"] == "lost")
            page.wait_for_notice(" is lost: ")
            page.wait_for_notice(" is back after ")
            page.wait("frames again", lambda: page.status()["state"] == "grabbing")

    def test_who_waits_for_the_end_learns_the_reason_and_the_code(self):
        for arguments, code, reason in (
                (("--frames", "400"), 0, "Finished."),
                (("--set", "grab.max_losses=0"), 7, " frames were lost, 0 are allowed.")):
            fault = '[[camera.fault]]\nkind = "lose"\nframe = 3\ncount = 2\n'
            with self.subTest(code), grab(*arguments, bus=BUS.format(rate=100) + fault) as page:
                page.wait("losses", lambda: page.status()["losses"]["latest"])
                waiting = page.begin_to_ask("/end.json")
                if code:
                    page.ask("/finish", "POST")
                told = Answer(waiting.getresponse()).json()
                self.assertEqual(page.end(), code)
                self.assertEqual((told["ended"], told["exit_code"]), (True, code))
                self.assertIn(reason, told["reason"])

    def test_without_a_camera_the_page_is_there_and_finishes(self):
        with grab("--wait", "600", bus="") as page:
            self.assertEqual(page.status()["state"], "waiting")
            self.assertEqual(page.ask("/frame.png").status, 503)
            self.assertEqual(page.ask("/finish", "POST").status, 202)
            self.assertEqual(page.end(), 0)

    def test_while_the_last_frames_are_written_the_grab_is_finishing(self):
        # The metadata goes into a pipe that nobody reads from.
        with grab("--frames", "3", "--set", "output.overwrite=true", pipe="frames.ndjson") as page:
            page.wait("the end of the frames", lambda: page.status()["state"] == "finishing")
            self.assertEqual(page.status()["queue"]["written"], 0)
            self.assertEqual(page.ask("/reload", "POST").status, 409)
            self.assertEqual(page.ask("/finish", "POST").status, 409)
            self.assertEqual(page.read_pipe().count("\n"), 3)
            self.assertEqual(page.end(), 0)

    def test_a_second_finish_is_refused_and_loses_nothing(self):
        with grab("--wait", "600", pictures="png") as page:
            page.wait("frames", lambda: page.status()["frames"]["exported"] > 3)
            page.ask("/finish", "POST")
            try:
                self.assertEqual(page.ask("/finish", "POST").status, 409)
            except OSError:
                pass  # it was faster than that
            self.assertEqual(page.end(), 0)


class Guard(unittest.TestCase):
    def test_other_names_and_sites_are_refused(self):
        with grab() as page:
            port = page.url()[3]
            for headers, status in (
                    ({"Host": "evil.example"}, 403),
                    ({"Host": f"evil.example:{port}"}, 403),
                    ({"Host": f"localhost:{port}"}, 202),
                    ({"Host": f"127.5.0.1:{port}"}, 202),
                    ({"Origin": "http://evil.example"}, 403),
                    ({"Origin": "null"}, 403),
                    ({"Origin": f"http://127.0.0.1:{port}"}, 202),
                    ({"Sec-Fetch-Site": "cross-site"}, 403),
                    ({"Content-Length": "5"}, 413),
                    ({"Transfer-Encoding": "chunked"}, 413)):
                with self.subTest(headers):
                    self.assertEqual(page.ask("/reload", "POST", headers).status, status)
            self.assertEqual(page.ask("/finish").status, 405)
            self.assertEqual(page.ask("/nothing").status, 404)
            self.assertEqual(page.ask("/status.json", "OPTIONS").status, 405)
            self.assertIsNone(page.process.poll())

    def test_nonsense_does_no_harm(self):
        with grab() as page:
            address = (page.url()[2], int(page.url()[3]))
            for text in (b"", b"\r\n\r\n", b"GET", b"\x00\xff\r\n\r\n", b"x" * 100000,
                         b"GET / HTTP/1.1\r\n" + b"A: b\r\n" * 1000 + b"\r\n",
                         b"POST /finish HTTP/1.1\r\n\r\n"):
                with socket.create_connection(address) as connection:
                    try:
                        connection.sendall(text)
                        connection.shutdown(socket.SHUT_WR)
                        connection.settimeout(60)
                        connection.recv(100)
                    except OSError:
                        pass  # it has hung up
            self.assertEqual(page.status()["state"] in ("waiting", "starting", "grabbing"), True)

    def test_with_a_token_only_who_shows_it_is_answered(self):
        with grab(live="0.0.0.0:0", environment={"KXHOST_LIVE_TOKEN": TOKEN}) as page:
            self.assertEqual(page.ask("/").status, 200)
            answer = page.ask("/status.json")
            self.assertEqual((answer.status, answer.headers["WWW-Authenticate"]), (401, "Bearer"))
            page.token = TOKEN + "x"
            self.assertEqual(page.ask("/status.json").status, 403)
            self.assertEqual(page.ask("/finish", "POST").status, 403)
            page.token = TOKEN
            self.assertEqual(page.status()["process"], page.process.pid)
            self.assertEqual(page.ask("/status.json", headers={"Host": "lab"}).status, 200)
            self.assertEqual(page.ask("/finish", "POST", {"Origin": "http://evil"}).status, 403)
            self.assertEqual(page.ask("/finish", "POST").status, 202)
            self.assertEqual(page.end(), 0)
            for file in ("err", "out", "summary.json"):
                self.assertNotIn(TOKEN, page.read(file))

    def test_a_token_file_counts_on_loopback_too(self):
        with grab(bus="") as folder:
            file = folder.write("token", TOKEN + "\n")
            with grab("--live-token-file", file, live="localhost:0") as page:
                self.assertEqual(page.ask("/status.json").status, 401)
                page.token = TOKEN
                self.assertEqual(page.ask("/status.json").status, 200)

    @unittest.skipUnless(has_ipv6(), "no IPv6 on this computer")
    def test_the_other_kind_of_address(self):
        with grab(live="[::1]:0") as page:
            self.assertRegex(page.url()[1], r"^http://\[::1\]:\d+/$")
            self.assertEqual(page.ask("/status.json").status, 200)


class Mistakes(unittest.TestCase):
    def expect(self, code, message, *arguments, **options):
        with grab(*arguments, **options) as page:
            self.assertEqual(page.end(), code, page.said())
            self.assertRegex(page.said(), message)
            return page.said()

    def test_a_port_that_is_taken_ends_it_before_the_camera_is_touched(self):
        with grab() as page:
            port = page.url()[3]
            said = self.expect(15, rf"^kxhost: There is no live page at http://127\.0\.0\.1:{port}/: "
                               r"cannot take the address: Address already in use\.\n$", live=port)
            self.assertEqual(said.count("\n"), 1)

    def test_an_address_of_another_computer_cannot_be_had(self):
        self.expect(15, r"cannot take the address: Cannot assign requested address",
                    live="192.0.2.1:0", environment={"KXHOST_LIVE_TOKEN": TOKEN})

    def test_other_computers_are_let_in_with_a_token_only(self):
        for live in ("0.0.0.0:0", "[::]:0", "192.0.2.1:80"):
            self.expect(2, r"^kxhost: A live page that other computers reach needs a token: give "
                        r"--live-token-file, or KXHOST_LIVE_TOKEN in the environment\.\n$", live=live)

    def test_what_is_no_token_is_refused(self):
        self.expect(2, r"^kxhost: Cannot read the token file /nowhere/token: "
                    r"No such file or directory\.\n$", "--live-token-file", "/nowhere/token")
        said = self.expect(2, r"^kxhost: KXHOST_LIVE_TOKEN holds no token: ",
                           environment={"KXHOST_LIVE_TOKEN": "too-short"})
        self.assertNotIn("too-short", said)

    def test_what_is_no_address_is_refused(self):
        for live in ("x", "65536", "::1:80", "example.org:80", ""):
            self.expect(2, r'--live: "' + re.escape(live) + r'" is no address, expected PORT, '
                        r'HOST:PORT or \[HOST\]:PORT', live=live)

    def test_a_token_without_a_page_is_a_mistake(self):
        done = subprocess.run([KXHOST, "grab", "--live-token-file", "x"], capture_output=True,
                              text=True, check=False)
        self.assertEqual(done.returncode, 2)
        self.assertIn("--live", done.stderr)

    def test_who_reads_the_summary_learns_why(self):
        with grab(live="0.0.0.0:0") as page:
            self.assertEqual(page.end(), 2)
            self.assertIn("needs a token", json.loads(page.read("summary.json"))["reason"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
