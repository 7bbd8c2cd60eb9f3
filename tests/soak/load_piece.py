"""Load: fast frames and large frames, written as raw files that a consumer takes away."""

import os
import shutil
import time

import grab
import ledger
import records

LEAST_FREE = 2 << 30  # bytes

# Name, width, height, frames a second, frames that may wait for a writer. 30 large frames a second
# take 97 % of what the bus of a USB 3 camera brings.
CASES = [("640 x 480", 640, 480, 500, 64), ("4096 x 3000", 4096, 3000, 30, 16)]

# So much of what is asked has to be retrieved by a grab that gets the processors it wants.
LEAST_SHARE = 0.9

# Where it is not known whether it got them, only a grab that loses nearly all is told from one that
# was kept waiting.
LEAST_SHARE_UNKNOWN = 0.1

# Who waits for a processor for longer than this share of the time is kept from his work.
MOST_WAIT = 0.05

# The machine may have stood still without telling, but hardly each time.
TRIES = 3

NS = 1e9
TICKS = os.sysconf("SC_CLK_TCK")


def _settings(queue):
    return ["output.format=raw", f"output.queue={queue}", "output.when_full=drop",
            "log.level=error"]


def _has_room(folder):
    """Whether the consumer keeps up; frames go to memory that others need too."""
    return shutil.disk_usage(folder).free > LEAST_FREE


def waited_seconds(process_folder):
    """How long the threads of a process have wanted a processor and got none, so far.

    What the machine below gave to others counts, too. None = this kernel does not tell.
    """
    try:
        waited = 0.0
        for thread in os.listdir(f"{process_folder}/task"):
            with open(f"{process_folder}/task/{thread}/schedstat", encoding="ascii") as file:
                waited += int(file.read().split()[1]) / NS
        with open("/proc/stat", encoding="ascii") as file:
            return waited + int(file.readline().split()[8]) / TICKS
    except OSError:
        return None


def is_short(figures, wait_share):
    """Whether a grab has retrieved too little of what is asked, and not for want of a processor."""
    if wait_share is None:
        least = LEAST_SHARE_UNKNOWN
    else:
        least = LEAST_SHARE if wait_share <= MOST_WAIT else 0
    return figures["retrieved a second"] < least * figures["asked a second"]


def _measure(running, followed, seconds):
    """Shares of the time while it grabs: on a processor, and waiting for one (None = not known)."""
    process = f"/proc/{running.process.pid}"
    start, used, waited = time.monotonic(), running.cpu_seconds(), waited_seconds(process)
    while running.runs() and time.monotonic() < start + seconds:
        if not followed.follow():
            time.sleep(0.02)
        if not _has_room(running.folder):
            followed.complain("the consumer of the pictures does not keep up")
            break
    if not running.runs():
        return None
    took = time.monotonic() - start
    later = waited_seconds(process)
    wait_share = None if None in (waited, later) else (later - waited) / took
    return (running.cpu_seconds() - used) / took, wait_share


def _figures(case, summary, shares):
    _, width, height, rate, _ = case
    causes = {cause: count for cause, count in summary["ledger"]["causes"].items()
              if cause != "timing"}
    share, wait_share = shares
    return {
        "seconds": round(summary["seconds"], 1), "asked a second": rate,
        "retrieved a second": round(summary["frame_rate"], 2),
        "written a second": round(summary["write_rate"], 2),
        "MB a second": round(summary["write_rate"] * width * height / 1e6, 1),
        "values": summary["ledger"]["values"], "lost": causes or "none",
        "deepest queue": summary["exported"]["deepest_queue"],
        "longest hand-over in us": summary["longest_hand_over_us"],
        "share of one processor": round(share, 2),
        "waiting for one": "not known" if wait_share is None else round(wait_share, 2),
    }


def _try(kxhost, folder, case, seconds):
    """Figures, complaints, and whether the rate was too low without an excuse."""
    _, width, height, rate, queue = case
    # What the camera sees costs the camera's processor, not the computer's: nothing is drawn.
    description = grab.bus(width, height, rate, scene=False)
    with grab.Grab(kxhost, folder, description, f'[acquisition]\nframe_rate = {rate}\n',
                   _settings(queue)) as running:
        followed = records.Records(running.output, tidy=True)
        if not running.wait_for_frames():
            return {}, [f"no frame comes: {running.messages()}"], False
        shares = _measure(running, followed, seconds)
        code = running.finish()
        followed.end()
        summary = running.summary()
        found = followed.complaints + ledger.complaints(summary, followed)
        if code != 0 or shares is None or summary is None:
            return {}, found + [f"exit code {code} instead of 0: {running.messages()}"], False
        figures = _figures(case, summary, shares)
        return figures, found, is_short(figures, shares[1])


def run(kxhost, folder, case, seconds):
    """Returns figures and complaints. A busy machine may lose frames, but not without cause."""
    for number in range(TRIES):
        figures, found, short = _try(kxhost, os.path.join(folder, str(number)), case, seconds)
        if found or not short:
            return figures, found
    return figures, [f"{figures['retrieved a second']} frames retrieved a second of "
                     f"{figures['asked a second']}, not for want of a processor"]
