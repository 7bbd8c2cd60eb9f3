"""The soak: a grab of a faulty camera is tormented for a long time, and must stay as it was."""

import random
import subprocess
import time

import flat
import grab
import ledger
import records
import storm

# What a process may grow by from the first to the last third of a run, memory in KiB. The heap of a
# program with threads is not flat to the page. One thread comes and goes with the camera, one
# descriptor with each picture.
ALLOWED = {"memory": 1024, "descriptors": 1, "threads": 1}

SAMPLES = 400  # of a run, about


# So many times a word has to be sent before silence on the line says anything: the machine may
# stand still for longer than a pulse, and a loss of the camera ends a word, too.
FEWEST_WORDS = 100

# One in so many 12-bit passes asked for takes place at least: a camera that is away makes none.
PASSES_TAKEN = 4


def may_real_time():
    """Whether the thread of the I/O lines gets the priority without which it does not work."""
    return subprocess.run(["chrt", "--fifo", "98", "true"], check=False, stdin=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL).returncode == 0


def left_out(figures, done, real_time):
    """What was to be done to the grab and did not happen, so that nothing is known of it."""
    found = [f"the soak met no {name}" for name in ("camera lost", "camera back", "reloads",
                                                    "live changes") if figures[name] == 0]
    # Each of them is a capture, and the grab's own format behind it another one.
    asked, met = done.get("wide_table", 0), figures["captures for a table"]
    if asked == 0 or met * PASSES_TAKEN < asked:
        found.append(f"{met} captures for a table of 12 bits, asked for {asked} times")
    if real_time and done.get("word", 0) >= FEWEST_WORDS and figures["words received"] == 0:
        found.append(f"none of {done['word']} words came back")
    return found


def _torment(running, tormentor, followed, seconds):
    """Strikes and looks until the time is over or the grab has ended. Returns the samples."""
    samples = {name: [] for name in ALLOWED}
    between = max(0.25, seconds / SAMPLES)
    end = time.monotonic() + seconds
    next_sample = time.monotonic()
    while running.runs() and time.monotonic() < end:
        tormentor.strike()
        time.sleep(tormentor.random.uniform(0, 0.4))
        followed.follow()
        if time.monotonic() >= next_sample and (sample := running.sample()) is not None:
            next_sample += between
            for name, value in sample.items():
                samples[name].append(value)
    return samples


def _figures(running, followed, samples, tormentor, seconds):
    messages = running.messages()
    said = lambda part: messages.count(part)
    captures = followed.values[-1][0] if followed.values else 0
    back = said(" is back after ")
    figures = {
        "minutes": round(seconds / 60, 1), "frames": followed.count, "pictures": followed.pictures,
        "captures": captures,
        "captures for a table": captures - 1 - back - said("starts again with it."),
        "camera lost": said(" is lost: "), "camera back": back,
        "reloads": said(" Reloaded "), "live changes": said(" in force from now on."),
        "words received": followed.words, "actions": sum(tormentor.done.values()),
    }
    for name, values in samples.items():
        if len(values) >= flat.FEWEST:
            figures[f"{name} grown by"] = flat.growth(values)
            figures[f"{name} at the end"] = values[-1]
    return figures


def run(kxhost, folder, seed, seconds):
    """Returns figures and complaints."""
    chance = random.Random(seed)
    with grab.Grab(kxhost, folder, storm.faulty_bus(chance), "",
                   ["output.format=raw", "log.level=error"]) as running:
        followed = records.Records(running.output, tidy=True)
        tormentor = storm.Storm(running, chance)
        if not running.wait_for_frames():  # until then a signal ends the process
            return {}, [f"no frame comes: {running.messages()}"]
        samples = _torment(running, tormentor, followed, seconds)
        found = [] if running.runs() else ["the grab has ended by itself"]
        code = running.finish()
        followed.end()
        if code != 0:
            found.append(f"exit code {code} instead of 0: {running.messages()[-500:]}")
        found += followed.complaints
        found += ledger.complaints(running.summary(), followed)
        for name, values in samples.items():
            found += flat.complaints(name, values, ALLOWED[name])
        figures = _figures(running, followed, samples, tormentor, seconds)
        return figures, found + left_out(figures, tormentor.done, may_real_time())
