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
                 environment=None, pictures="none", pipe=None):
        self.folder = tempfile.mkdtemp(prefix="kx-page-")
        self.write("bus.toml", bus)
        self.configuration = self.write("camera.toml", configuration)
        self.errors = os.path.join(self.folder, "err")
        self.output = os.path.join(self.folder, "out")
        self.token = ""
        output_folder = os.path.join(self.folder, "pictures")
        if pipe:  # in the place of a file of the output folder
            os.mkdir(output_folder)
            self.pipe = os.path.join(output_folder, pipe)
            os.mkfifo(self.pipe)
        command = [kxhost, "grab", f"--simulate={self.folder}/bus.toml", "-c", self.configuration,
                   "--output", output_folder,
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

    def read_pipe(self):
        with open(self.pipe, encoding="utf-8") as pipe:
            return pipe.read()

    def begin_to_ask(self, path, method="GET", headers=None):
        """Sends a request; the answer is for the caller to take from the connection."""
        found = self.url()
        connection = http.client.HTTPConnection(found[2].strip("[]"), int(found[3]), LIMIT_S)
        shown = {"Authorization": f"Bearer {self.token}"} if self.token else {}
        connection.request(method, path, headers={**shown, **(headers or {})})
        return connection

    def ask(self, path, method="GET", headers=None):
        connection = self.begin_to_ask(path, method, headers)
        try:
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
