"""One grab of kxhost with a simulated camera, as a process, steered and looked at from outside."""

import json
import os
import signal
import subprocess
import time

SERIAL = 424242
TICKS = os.sysconf("SC_CLK_TCK")


def bus(width, height, rate, extra="", paced=True, scene=True, noise=True):
    """TOML of a bus with one monochrome camera; `extra` holds further keys and tables of it."""
    flag = lambda value: "true" if value else "false"
    return (f'[[camera]]\nmodel = "Tester TST-1"\nserial = {SERIAL}\ninterface = "usb3"\n'
            f"sensor = {{ width = {width}, height = {height}, frame_rate = {rate:.1f}, "
            f"noise = {flag(noise)} }}\n"
            f"properties.SHUTTER.value = 1\ndelivery.paced = {flag(paced)}\n"
            + ("" if scene else 'scene.kind = "none"\n') + extra)


class Grab:
    """A running kxhost. It is killed when this process ends, however that comes."""

    def __init__(self, kxhost, folder, description, configuration="", settings=(), starter=()):
        """`folder` takes its files, `starter` is a program with arguments that starts it."""
        self.kxhost = kxhost
        self.folder = folder
        self.output = os.path.join(folder, "out")
        self.summary_file = os.path.join(folder, "summary.json")
        self.configuration_file = os.path.join(folder, "camera.toml")
        os.makedirs(folder, exist_ok=True)
        self.write("bus.toml", description)
        self.write("camera.toml", configuration)
        arguments = ["setpriv", "--pdeathsig=KILL", *starter, kxhost, "grab", "--quiet",
                     f"--simulate={os.path.join(folder, 'bus.toml')}",
                     "-c", self.configuration_file, "-o", self.output,
                     "--summary", self.summary_file]
        for setting in settings:
            arguments += ["--set", setting]
        self._out = open(os.path.join(folder, "out.txt"), "wb")
        self._err = open(os.path.join(folder, "err.txt"), "wb")
        self.process = subprocess.Popen(arguments, stdin=subprocess.DEVNULL, stdout=self._out,
                                        stderr=self._err)
        self.started = time.monotonic()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
            self.process.wait()
        self._out.close()
        self._err.close()

    def write(self, name, text, rename=False):
        """Writes a file of the grab, in place or as an editor that renames a new one."""
        path = os.path.join(self.folder, name)
        written = path + ".new" if rename else path
        with open(written, "w", encoding="utf-8") as file:
            file.write(text)
        if rename:
            os.rename(written, path)

    def runs(self):
        return self.process.poll() is None

    def signal(self, number):
        self.process.send_signal(number)

    def ctl(self, word):
        """Exit code of `kxhost ctl`."""
        return subprocess.run([self.kxhost, "ctl", str(self.process.pid), word],
                              stdin=subprocess.DEVNULL, check=False).returncode

    def wait(self, seconds=60):
        """Exit code, negative after a signal; None = it has not ended in time."""
        try:
            return self.process.wait(seconds)
        except subprocess.TimeoutExpired:
            return None

    def finish(self):
        """Asks for the end and returns the exit code as `wait` does."""
        self.signal(signal.SIGTERM)
        return self.wait()

    def wait_for_frames(self, count=1, seconds=60):
        """Whether so many are complete in time."""
        path = os.path.join(self.output, "frames.ndjson")
        end = time.monotonic() + seconds
        while self.runs() and time.monotonic() < end:
            if os.path.exists(path):
                with open(path, "rb") as file:
                    if file.read().count(b"\n") >= count:
                        return True
            time.sleep(0.01)
        return False

    def summary(self):
        """What it left; None = nothing, as when it was killed."""
        try:
            with open(self.summary_file, encoding="utf-8") as file:
                return json.load(file)
        except FileNotFoundError:
            return None

    def messages(self):
        """What kxhost has said so far."""
        with open(os.path.join(self.folder, "err.txt"), encoding="utf-8", errors="replace") as file:
            return file.read()

    def sample(self):
        """Memory of its own in KiB, open descriptors and threads; None when it has ended."""
        folder = f"/proc/{self.process.pid}"
        try:
            with open(f"{folder}/status", encoding="ascii", errors="replace") as file:
                fields = dict(line.split(":", 1) for line in file if ":" in line)
            return {"memory": int(fields["RssAnon"].split()[0]),
                    "descriptors": len(os.listdir(f"{folder}/fd")),
                    "threads": int(fields["Threads"])}
        except (OSError, KeyError):
            return None

    def cpu_seconds(self):
        """Time on processors so far, of all threads."""
        with open(f"/proc/{self.process.pid}/stat", encoding="ascii", errors="replace") as file:
            fields = file.read().rsplit(")", 1)[1].split()
        return (int(fields[11]) + int(fields[12])) / TICKS
