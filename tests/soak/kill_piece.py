"""Kills: SIGKILL at any time leaves whole pictures and whole lines, and the next grab is clean."""

import os
import random
import signal
import time

import grab
import ledger
import pictures
import records

FORMATS = ["png", "tiff", "raw"]

# A kill comes so long after the start or after the first frame, at most.
LATEST_S = 0.8


def _description():
    return grab.bus(320, 240, 500, "register_time_us = 100\n", paced=False)


def _killed(kxhost, folder, picture_format, chance):
    """Output folder of a grab that is killed, whether a frame was there, and what is wrong.

    One in four kills may come before the first frame.
    """
    has_frame = False
    with grab.Grab(kxhost, folder, _description(), "",
                   [f"output.format={picture_format}", "output.overwrite=true",
                    "log.level=error"]) as running:
        if chance.randrange(4) != 0:
            has_frame = running.wait_for_frames()
        time.sleep(chance.uniform(0, LATEST_S))
        ended = not running.runs()
        running.signal(signal.SIGKILL)
        running.wait()
        wrong = [f"it had ended: {running.messages()}"] if ended else []
        return running.output, has_frame, wrong


def missing(figures, has_frame):
    """What a kill behind the first frame must leave, and has not."""
    if not has_frame:
        return []
    return [f"of the frame that was there no {kind} is left"
            for kind, count in (("line", figures["lines"]), ("picture", figures["pictures"]))
            if count == 0]


def too_little(total):
    """What is wrong with kills that have all found nothing: they show nothing."""
    return [f"{total['kills']} kills have left no {kind} at all"
            for kind in ("lines", "pictures") if total[kind] == 0]


def _left(output):
    """Figures of what a killed grab has left, and what is wrong with it."""
    figures = {"lines": 0, "pictures": 0, "parts": 0}
    if not os.path.isdir(output):
        return figures, []
    followed = records.Records(output)
    followed.end()
    found = followed.complaints
    for name in os.listdir(output):
        if name.endswith(".part"):
            figures["parts"] += 1
        elif name != "frames.ndjson":
            figures["pictures"] += 1
            found += pictures.complaints(os.path.join(output, name))
    figures["lines"] = followed.count
    return figures, found


def _next(kxhost, folder, picture_format):
    """What is wrong with a grab into the folder of the killed one."""
    with grab.Grab(kxhost, folder, _description(), "",
                   [f"output.format={picture_format}", "output.overwrite=true", "grab.frames=3",
                    "log.level=error"]) as running:
        code = running.wait()
        followed = records.Records(running.output)
        followed.end()
        found = followed.complaints + ledger.complaints(running.summary(), followed)
        if code != 0:
            found.append(f"the next grab ends with {code}: {running.messages()}")
        found += [f"{name} is left after the next grab" for name in os.listdir(running.output)
                  if name.endswith(".part")]
        return found


def run(kxhost, folder, seed, times):
    """Returns figures and complaints."""
    chance = random.Random(seed)
    total = {"kills": 0, "lines": 0, "pictures": 0, "parts": 0}
    found = []
    for i in range(times):
        place = os.path.join(folder, str(i))
        picture_format = chance.choice(FORMATS)
        output, has_frame, wrong = _killed(kxhost, place, picture_format, chance)
        figures, also_wrong = _left(output)
        total["kills"] += 1
        for name, count in figures.items():
            total[name] += count
        found += wrong + also_wrong + missing(figures, has_frame)
        found += _next(kxhost, place, picture_format)
    return total, found + too_little(total)
