"""A headless Chromium that tests look at pages with. It is spoken to through a pair of pipes, so it
needs no port; everything that it keeps lies in a folder of its own.
"""

import base64
import json
import os
import select
import shutil
import subprocess
import tempfile
import time


class Chromium:
    """One browser with one page. Use as a context manager.

    `console` collects what pages say, errors among it, `requests` the addresses that they ask for.
    """

    LIMIT_S = 60  # for an answer; a loaded machine is slow

    def __init__(self, program):
        self.console = []
        self.requests = []
        self._profile = tempfile.mkdtemp(prefix="kx-chromium-")
        self._number = 0
        self._events = []
        self._buffer = b""
        commands_out, self._commands = os.pipe()
        self._answers, answers_in = os.pipe()
        self._process = subprocess.Popen(
            ["/bin/sh", "-c", 'exec "$@" 3<&"$IN" 4>&"$OUT"', "sh", program, "--headless",
             "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage", "--no-first-run",
             "--disable-background-networking", "--disable-component-update",
             "--remote-debugging-pipe", f"--user-data-dir={self._profile}", "about:blank"],
            pass_fds=(commands_out, answers_in), env={**os.environ, "IN": str(commands_out),
                                                      "OUT": str(answers_in)},
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(commands_out)
        os.close(answers_in)
        self._session = None
        pages = [each for each in self._call("Target.getTargets")["targetInfos"]
                 if each["type"] == "page"]
        self._session = self._call("Target.attachToTarget", targetId=pages[0]["targetId"],
                                   flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self._call(domain + ".enable")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self._commands)  # it ends with its pipes, and its helpers with it
        os.close(self._answers)
        try:
            self._process.wait(20)
        except subprocess.TimeoutExpired:
            self._process.kill()
            self._process.wait()
        shutil.rmtree(self._profile, ignore_errors=True)

    def open(self, address):
        """Loads a page and waits until all that belongs to it is there."""
        self._events.clear()
        self._call("Page.navigate", url=address)
        self._wait_for("Page.loadEventFired")

    def resize(self, width, height):
        """Gives the page a window of so many CSS pixels."""
        self._call("Emulation.setDeviceMetricsOverride", width=width, height=height,
                   deviceScaleFactor=1, mobile=False)

    def evaluate(self, expression):
        """What a JavaScript expression gives in the page; promises are waited for."""
        answer = self._call("Runtime.evaluate", expression=expression, returnByValue=True,
                            awaitPromise=True)
        if "exceptionDetails" in answer:
            raise RuntimeError(json.dumps(answer["exceptionDetails"]))
        return answer["result"].get("value")

    def click(self, selector):
        """Presses the left button of the mouse in the middle of an element, which must be seen."""
        x, y = self.evaluate(f"""(() => {{
            const element = document.querySelector({json.dumps(selector)});
            element.scrollIntoView({{block: "center"}});
            const box = element.getBoundingClientRect();
            return [box.x + box.width / 2, box.y + box.height / 2];
        }})()""")
        for kind in ("mousePressed", "mouseReleased"):
            self._call("Input.dispatchMouseEvent", type=kind, x=x, y=y, button="left", clickCount=1)

    def write(self, selector, text):
        """Types into a field."""
        self.click(selector)
        self._call("Input.insertText", text=text)

    def shine(self, scheme):
        """Lets the page think that people like "dark" or "light"."""
        self._call("Emulation.setEmulatedMedia",
                   features=[{"name": "prefers-color-scheme", "value": scheme}])

    def screenshot(self):
        """The page as it is seen, as PNG."""
        return base64.b64decode(self._call("Page.captureScreenshot")["data"])

    def _call(self, method, **parameters):
        self._number += 1
        message = {"id": self._number, "method": method, "params": parameters}
        if self._session:
            message["sessionId"] = self._session
        os.write(self._commands, json.dumps(message).encode() + b"\0")
        while True:
            answer = self._read()
            if answer.get("id") == self._number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]

    def _wait_for(self, event):
        while event not in self._events:
            self._read()

    def _read(self):
        """The next message; what it tells of the page is noted."""
        end = time.monotonic() + self.LIMIT_S
        while b"\0" not in self._buffer:
            ready = select.select([self._answers], [], [], max(end - time.monotonic(), 0))[0]
            piece = os.read(self._answers, 1 << 16) if ready else b""
            if not piece:
                raise RuntimeError("Chromium does not answer")
            self._buffer += piece
        text, self._buffer = self._buffer.split(b"\0", 1)
        message = json.loads(text)
        self._note(message.get("method"), message.get("params", {}))
        return message

    def _note(self, event, parameters):
        self._events.append(event)
        if event in ("Runtime.consoleAPICalled", "Runtime.exceptionThrown", "Log.entryAdded"):
            self.console.append(parameters)
        elif event == "Network.requestWillBeSent":
            self.requests.append(parameters["request"]["url"])
