"""Random faults for a camera, and random things that are done to a grab while it runs."""

import signal
import time

import grab

# A frame lost, broken or late now and then; each capture sees them all again.
FRAME_FAULTS = ["lose", "error", "corrupt"]

# Calls that fail now and then: those of every set-up of the camera, those for its parameters, those
# of every frame.
SET_UP_CALLS = ["SetFormat7Configuration", "SetUserBuffers", "StartCapture", "SetConfiguration",
                "SetEmbeddedImageInfo"]
PARAMETER_CALLS = ["SetProperty", "GetPropertyInfo", "SetLUTChannel", "EnableLUT",
                   "SetActiveLUTBank", "GetLUTInfo", "WriteRegister", "StopCapture", "SetStrobe"]
FRAME_CALLS = ["GetProperty", "ReadRegister", "GetStats", "RetrieveBuffer"]

BOX = "[[camera.io_box]]\nlistens_on = 0\nanswers_on = 1\n"


def _call_fault(random, operation, skip, may_throw=True):
    text = f'[[camera.call_fault]]\noperation = "{operation}"\nskip = {skip}\n'
    kind = random.randrange(6)
    if kind == 0:
        text += f"detach = true\nback_after = {random.uniform(0.1, 1.5):.2f}\n"
    elif kind == 1 and may_throw:
        text += 'throws = "simulated"\n'
    return text


def faulty_bus(random):
    """A small camera that answers slowly, so that frames come in hundreds a second, with faults."""
    text = "register_time_us = 300\n" + BOX
    for kind in FRAME_FAULTS:
        for _ in range(4):
            text += (f'[[camera.fault]]\nkind = "{kind}"\nframe = {random.randrange(20, 8000)}\n'
                     f"count = {random.randrange(1, 6)}\n")
    text += (f'[[camera.fault]]\nkind = "clock_step"\nframe = {random.randrange(100, 4000)}\n'
             f"amount = {random.randrange(-3000000, 3000000)}\n")
    text += (f'[[camera.fault]]\nkind = "detach"\nframe = {random.randrange(3000, 6000)}\n'
             f"count = 1000\ntimes = 0\nback_after = {random.uniform(0.1, 2):.2f}\n")
    # A set-up that fails three times in a row ends the grab, as it should: only one of its calls
    # fails, and never twice running.
    operation = random.choice(SET_UP_CALLS)
    for i in range(100):
        text += _call_fault(random, operation, 3 + 8 * i + random.randrange(4))
    for operation in PARAMETER_CALLS:
        for i in range(50):
            text += _call_fault(random, operation, 20 + 100 * i + random.randrange(100), False)
    for operation in FRAME_CALLS:
        for i in range(50):
            text += _call_fault(random, operation, 2000 + 5000 * i + random.randrange(5000))
    return grab.bus(64, 48, 200, text, paced=False)


class Storm:
    """Does one thing after the other to a grab. What it does follows from `random` alone."""

    def __init__(self, running, random):
        self.grab = running
        self.random = random
        self.done = {}
        self._geometry = ""

    def strike(self):
        """Does one of the actions, and counts it."""
        action = self.random.choice([
            self.reload_by_signal, self.reload_by_ctl, self.table, self.wide_table, self.change,
            self.change, self.replace, self.mistake, self.word, self.starve])
        action()
        self.done[action.__name__] = self.done.get(action.__name__, 0) + 1

    def configuration(self):
        """Live keys, and now and then another size or format, which takes a reload."""
        random = self.random
        if random.randrange(5) == 0:
            self._geometry = f"[region]\nwidth = {16 * random.randrange(1, 5)}\n"
            if random.randrange(4) == 0:
                self._geometry += '[format]\npixel_format = "mono12"\n'
        text = self._geometry + f'[acquisition]\ngain = "{random.randrange(4)} dB"\n'
        if random.randrange(2) == 0:
            text += f'[lut]\ncurve = "gamma {random.uniform(1, 2):.3f}"\n'
        return text

    def reload_by_signal(self):
        self.grab.write("camera.toml", self.configuration())
        self.grab.signal(signal.SIGHUP)

    def reload_by_ctl(self):
        self.grab.write("camera.toml", self.configuration(), rename=True)
        self.grab.ctl("reload")

    def table(self):
        self.grab.signal(signal.SIGUSR1)

    def wide_table(self):
        self.grab.ctl("lut12")

    def change(self):
        self.grab.write("camera.toml", self.configuration())

    def replace(self):
        self.grab.write("camera.toml", self.configuration(), rename=True)

    def mistake(self):
        self.grab.write("camera.toml", "[region]\nwidth = \n")
        self.grab.signal(signal.SIGHUP)

    def word(self):
        """Sends a word to the I/O box, which sends it back."""
        bits = self.random.randrange(2, 9)
        self.grab.write("camera.toml", self.configuration() + (
            '[[iobox]]\npin = "gpio0"\nmode = "output"\nsource = "data"\n'
            f"bits = {bits}\nword = {self.random.randrange(2 ** bits)}\n"
            '[[iobox]]\npin = "gpio1"\nmode = "input"\nsource = "data"\n'))

    def starve(self):
        """The process gets no processor for a moment."""
        self.grab.signal(signal.SIGSTOP)
        time.sleep(self.random.uniform(0, 0.3))
        self.grab.signal(signal.SIGCONT)
