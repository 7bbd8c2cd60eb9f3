"""Disks that are slow, and that fill up."""

import os
import shutil
import subprocess

import grab
import ledger
import pictures
import records

EXIT_EXPORT = 6  # frames could not be written

# Each picture takes so long to get its name, as on a disk that is busy elsewhere.
SLOW_MS = 300


def can_slow_down():
    """Whether calls of a program may be delayed here; empty = yes, else why not."""
    try:
        done = subprocess.run(["strace", "-D", "-qq", "-o", "/dev/null", "true"], check=False,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True)
    except FileNotFoundError:
        return "strace is not installed"
    return "" if done.returncode == 0 else "strace may not trace here: " + done.stderr.strip()


def can_mount(folder):
    """Whether a small file system can be had; empty = yes, else why not."""
    try:
        done = subprocess.run(_within_small_disk(folder, "1m", ["true"]), check=False,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True)
    except FileNotFoundError:
        return "unshare is not installed"
    return "" if done.returncode == 0 else "mounting is not allowed: " + done.stderr.strip()


def _within_small_disk(folder, size, program):
    """The command that runs a program with a disk of its own on the folder.

    What the disk holds at the end is copied beside it, FOLDER.kept: nobody else sees it.
    """
    script = ('folder=$1 size=$2; shift 2; mkdir -p "$folder"; '
              'mount -t tmpfs -o size="$size" none "$folder" || exit 99; '
              '"$@"; code=$?; cp -a "$folder" "$folder.kept"; exit $code')
    return ["unshare", "--user", "--map-root-user", "--mount", "sh", "-c", script, "sh",
            folder, size, *program]


def run_slow(kxhost, folder, when_full, seconds):
    """A writer that is slower than the camera. Returns figures and complaints."""
    if reason := can_slow_down():
        return {"skipped": reason}, []
    slow = ["strace", "-D", "-f", "-qq", "-o", "/dev/null", "-e", "trace=/^rename",
            "-e", f"inject=/^rename:delay_enter={SLOW_MS * 1000}"]
    with grab.Grab(kxhost, folder, grab.bus(320, 240, 100),
                   "", [f"output.when_full={when_full}", "output.queue=4", "log.level=error"],
                   starter=slow) as running:
        running.wait_for_frames()
        running.wait(seconds)
        code = running.finish()
        followed = records.Records(running.output)
        followed.end()
        summary = running.summary()
        found = followed.complaints + ledger.complaints(summary, followed)
        if code != 0 or summary is None:
            return {}, found + [f"exit code {code} instead of 0: {running.messages()}"]
        return _slow_figures(summary), found + _slow_complaints(summary, when_full)


def _slow_figures(summary):
    return {"retrieved a second": round(summary["frame_rate"], 2),
            "written a second": round(summary["write_rate"], 2),
            "lost": summary["ledger"]["causes"],
            "longest hand-over in us": summary["longest_hand_over_us"]}


def _slow_complaints(summary, when_full):
    """The grab goes its way when frames may be dropped, and waits when they may not."""
    waits = summary["exported"]["waits"]
    if when_full == "wait":
        return [] if waits > 0 else ["the grab never waited for the disk"]
    found = []
    if summary["ledger"]["causes"].get("queue_full", 0) == 0:
        found.append("no frame was dropped for the slow disk")
    if waits != 0:
        found.append(f"the grab waited for the disk {waits} times")
    return found


def _left_over(kept):
    """The metadata of a grab that could not write on, and what is wrong with its files."""
    followed = records.Records(kept, may_fail=True)
    followed.end()
    found = followed.complaints
    for name in os.listdir(kept):
        if name.endswith(".part"):
            found.append(f"{name} is left behind")
        elif name != "frames.ndjson":
            found += pictures.complaints(os.path.join(kept, name))
    return followed, found


def run_full(kxhost, folder, picture_format):
    """A disk that fills up. Returns figures and complaints."""
    disk = os.path.join(folder, "out")
    reason = can_mount(os.path.join(folder, "probe"))
    # Where no disk can be had a limit on the size of files, the metadata's, stands in.
    starter = ["prlimit", "--fsize=40000"] if reason else _within_small_disk(disk, "2m", [])
    with grab.Grab(kxhost, folder, grab.bus(128, 96, 500, paced=False), "",
                   [f"output.format={picture_format}", "log.level=error"],
                   starter=starter) as running:
        code = running.wait(120)
        if code is None:
            return {}, ["the grab goes on, though the disk is full"]
        kept = disk if reason else disk + ".kept"
        if not os.path.isdir(kept):
            return {}, [f"there is nothing on the disk, exit code {code}: {running.messages()}"]
        followed, found = _left_over(kept)
        summary = running.summary()
        found += ledger.complaints(summary, followed)
        if code != EXIT_EXPORT:
            found.append(f"exit code {code} instead of {EXIT_EXPORT}: {running.messages()}")
        shutil.rmtree(kept)
        figures = {"frames kept": followed.count, "exit code": code}
        if reason:
            figures["stand-in"] = f"limited size of files ({reason})"
        return figures, found
