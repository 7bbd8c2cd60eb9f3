#!/usr/bin/env python3
"""Long runs, load, slow and full disks, and kills of kxhost with the simulated cameras.

Prints figures and complaints; the exit code is 1 when there is a complaint. The same seed does the
same things to a grab, though not at the same frame.
"""

import argparse
import concurrent.futures
import os
import random
import shutil
import sys
import tempfile
import time

import disk_piece
import kill_piece
import load_piece
import sessions_piece
import soak_piece


def parse():
    parser = argparse.ArgumentParser(prog="dev soak", description=__doc__)
    parser.add_argument("--kxhost", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--tests", required=True, help=argparse.SUPPRESS)
    parser.add_argument("--minutes", type=float, default=60, metavar="N",
                        help="length of the soak (default: 60)")
    parser.add_argument("--short", action="store_true",
                        help="two minutes: all at the same time, load of seconds, 10 kills, no "
                             "sessions in real time")
    parser.add_argument("--seed", type=int, default=random.randrange(1 << 32),
                        help="of faults, actions and kills (default: another one each time)")
    parser.add_argument("--only", metavar="PIECE", help="only pieces whose names hold this")
    return parser.parse_args()


def pieces_of(arguments, folder):
    """Name: what to call, of what is measured alone and of what runs beside the soak."""
    place = lambda name: os.path.join(folder, name.replace(" ", "-"))
    host, seed = arguments.kxhost, arguments.seed
    load_seconds, kills, seconds = (8, 10, 110) if arguments.short else (60, 50,
                                                                         arguments.minutes * 60)
    alone = {f"load {case[0]}": (load_piece.run, host, place(f"load {case[0]}"), case, load_seconds)
             for case in load_piece.CASES}
    beside = {f"slow disk, {when_full}": (disk_piece.run_slow, host, place(f"slow {when_full}"),
                                          when_full, 8) for when_full in ("drop", "wait")}
    beside |= {f"full disk, {kind}": (disk_piece.run_full, host, place(f"full {kind}"), kind)
               for kind in ("png", "raw")}
    beside["kills"] = (kill_piece.run, host, place("kills"), seed, kills)
    suites = {"sessions": ("conformance_test", "ControlSessionsTest")}
    if not arguments.short:  # with the scheduler as it is they take half a second each
        suites["sessions, real time"] = ("real_time_sessions_test", "RealTimeSessionsTest")
    beside |= {name: (sessions_piece.run, os.path.join(arguments.tests, program), suite)
               for name, (program, suite) in suites.items()}
    beside["soak"] = (soak_piece.run, host, place("soak"), seed, seconds)
    chosen = lambda pieces: {name: call for name, call in pieces.items()
                             if arguments.only is None or arguments.only in name}
    return chosen(alone), chosen(beside)


class Report:
    """Prints what each piece has found, as it comes, and knows whether there was a complaint."""

    def __init__(self):
        self.is_bad = False

    def add(self, name, figures, complaints):
        print(f"-- {name}: " + ", ".join(f"{key} {value}" for key, value in figures.items()),
              flush=True)
        for complaint in complaints[:20]:
            self.is_bad = True
            print(f"   COMPLAINT {complaint}", flush=True)


def run_one(report, name, call):
    report.add(name, *call[0](*call[1:]))


def run_in_a_row(report, pieces):
    for name, call in pieces.items():
        run_one(report, name, call)


def run_all(arguments, folder, report):
    alone, beside = pieces_of(arguments, folder)
    soak = {name: call for name, call in beside.items() if name == "soak"}
    others = {name: call for name, call in beside.items() if name != "soak"}
    if arguments.short:
        others |= alone
    else:
        run_in_a_row(report, alone)
    with concurrent.futures.ThreadPoolExecutor() as pool:
        for future in [pool.submit(run_in_a_row, report, each) for each in (soak, others)]:
            future.result()


def scratch_space():
    """Where the frames go: memory, if there is enough, so that no disk is measured."""
    shared = "/dev/shm"
    roomy = os.path.isdir(shared) and shutil.disk_usage(shared).free > 4 << 30
    return tempfile.TemporaryDirectory(prefix="kx-soak-", dir=shared if roomy else None)


def main():
    arguments = parse()
    start = time.monotonic()
    report = Report()
    with scratch_space() as folder:
        print(f"-- seed {arguments.seed}, frames go to {folder}", flush=True)
        run_all(arguments, folder, report)
    print(f"-- {'there are complaints' if report.is_bad else 'no complaints'}, "
          f"{time.monotonic() - start:.0f} s")
    sys.exit(1 if report.is_bad else 0)


if __name__ == "__main__":
    main()
