"""A kxhost grab with a live page, as a process, and what its page answers."""

import http.client
import json
import os
import re
import shutil
import subprocess
import tempfile
import time

LIMIT_S = 60

BUS = """
[[camera]]
model = "Tester TST-1"
serial = 424242
interface = "usb3"
sensor = {{ width = 64, height = 48, frame_rate = {rate}, colour = false }}
delivery.paced = true
"""


class Answer:
    def __init__(self, response):
        self.status = response.status
        self.headers = response.headers
        self.body = response.read()

    def json(self):
        return json.loads(self.body)


class PageGrab:
    """Starts `kxhost grab --live`; what it leaves is gone at the end of the `with` block."""

    def __init__(self, kxhost, *arguments, live="0", bus=BUS.format(rate=50), configuration="",
                 environment=None, pictures="none"):
        self.folder = tempfile.mkdtemp(prefix="kx-page-")
        self.write("bus.toml", bus)
        self.configuration = self.write("camera.toml", configuration)
        self.errors = os.path.join(self.folder, "err")
        self.output = os.path.join(self.folder, "out")
        self.token = ""
        command = [kxhost, "grab", f"--simulate={self.folder}/bus.toml", "-c", self.configuration,
                   "--output", os.path.join(self.folder, "pictures"),
                   "--set", f"output.format={pictures}", "--summary", self.summary_file(),
                   "--quiet", "--live", live, *arguments]
        with open(self.errors, "wb") as errors, open(self.output, "wb") as output:
            self.process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=output,
                                            stderr=errors, env={**os.environ, **(environment or {})})

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        shutil.rmtree(self.folder)

    def write(self, name, text):
        path = os.path.join(self.folder, name)
        with open(path + ".new", "w", encoding="utf-8") as file:
            file.write(text)
        os.rename(path + ".new", path)
        return path

    def read(self, name):
        with open(os.path.join(self.folder, name), encoding="utf-8") as file:
            return file.read()

    def summary_file(self):
        return os.path.join(self.folder, "summary.json")

    def said(self):
        return self.read("err")

    def url(self):
        """Where the page is, as soon as that is told."""
        return self.wait("the address of the page", lambda: re.search(
            r"^kxhost: The live page is at (http://(\S+):(\d+)/)$", self.said(), re.M))

    def ask(self, path, method="GET", headers=None, limit_s=LIMIT_S):
        found = self.url()
        connection = http.client.HTTPConnection(found[2].strip("[]"), int(found[3]), limit_s)
        shown = {"Authorization": f"Bearer {self.token}"} if self.token else {}
        try:
            connection.request(method, path, headers={**shown, **(headers or {})})
            return Answer(connection.getresponse())
        finally:
            connection.close()

    def status(self):
        answer = self.ask("/status.json")
        assert answer.status == 200, answer.body
        return answer.json()

    def wait(self, what, condition):
        """Waits until the condition gives something, and returns that."""
        end = time.monotonic() + LIMIT_S
        while time.monotonic() < end:
            value = condition()
            if value:
                return value
            time.sleep(0.02)
        raise AssertionError(f"in vain: {what}; kxhost said:\n{self.said()}")

    def wait_for_notice(self, part):
        return self.wait(part, lambda: [each["text"] for each in self.status()["notices"]
                                        if part in each["text"]])

    def end(self):
        """Waits for the end and returns the exit code."""
        return self.process.wait(LIMIT_S)
