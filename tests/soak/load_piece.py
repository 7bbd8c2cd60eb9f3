"""Load: fast frames and large frames, written as raw files that a consumer takes away."""

import shutil
import time

import grab
import ledger
import records

LEAST_FREE = 2 << 30  # bytes

# Name, width, height, frames a second, frames that may wait for a writer. 30 large frames a second
# take 97 % of what the bus of a USB 3 camera brings.
CASES = [("640 x 480", 640, 480, 500, 64), ("4096 x 3000", 4096, 3000, 30, 16)]


def _settings(queue):
    return ["output.format=raw", f"output.queue={queue}", "output.when_full=drop",
            "log.level=error"]


def _has_room(folder):
    """Whether the consumer keeps up; frames go to memory that others need too."""
    return shutil.disk_usage(folder).free > LEAST_FREE


def _measure(running, followed, seconds):
    """Share of one processor while it grabs."""
    start, used = time.monotonic(), running.cpu_seconds()
    while running.runs() and time.monotonic() < start + seconds:
        if not followed.follow():
            time.sleep(0.02)
        if not _has_room(running.folder):
            followed.complain("the consumer of the pictures does not keep up")
            break
    if not running.runs():
        return None
    return (running.cpu_seconds() - used) / (time.monotonic() - start)


def _figures(case, summary, share):
    _, width, height, rate, _ = case
    causes = {cause: count for cause, count in summary["ledger"]["causes"].items()
              if cause != "timing"}
    return {
        "seconds": round(summary["seconds"], 1), "asked a second": rate,
        "retrieved a second": round(summary["frame_rate"], 2),
        "written a second": round(summary["write_rate"], 2),
        "MB a second": round(summary["write_rate"] * width * height / 1e6, 1),
        "values": summary["ledger"]["values"], "lost": causes or "none",
        "deepest queue": summary["exported"]["deepest_queue"],
        "longest hand-over in us": summary["longest_hand_over_us"],
        "share of one processor": round(share, 2),
    }


def run(kxhost, folder, case, seconds):
    """Returns figures and complaints. A busy machine may lose frames, but not without cause."""
    _, width, height, rate, queue = case
    # What the camera sees costs the camera's processor, not the computer's: nothing is drawn.
    description = grab.bus(width, height, rate, scene=False)
    with grab.Grab(kxhost, folder, description, f'[acquisition]\nframe_rate = {rate}\n',
                   _settings(queue)) as running:
        followed = records.Records(running.output, tidy=True)
        if not running.wait_for_frames():
            return {}, [f"no frame comes: {running.messages()}"]
        share = _measure(running, followed, seconds)
        code = running.finish()
        followed.end()
        summary = running.summary()
        found = followed.complaints + ledger.complaints(summary, followed)
        if code != 0 or share is None or summary is None:
            return {}, found + [f"exit code {code} instead of 0: {running.messages()}"]
        return _figures(case, summary, share), found
