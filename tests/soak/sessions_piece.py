"""A thousand sessions in a row in one process, each with a control thread and a word on its way.

The tests themselves look for what they leave behind: threads, descriptors, memory.
"""

import os
import re
import subprocess

SESSIONS = 1000
TEST = "{}.LeaveNothingBehind"


def judge(code, text):
    """Figures and complaints of a test program that has ended."""
    if "[  SKIPPED ]" in text:
        reason = re.search(r"Skipped\n(.*)", text)
        return {"skipped": reason.group(1) if reason else "without a reason"}, []
    passed = re.search(r"\[  PASSED  \] 1 test\.", text)
    took = re.search(r"\[       OK \] .*\((\d+) ms\)", text)
    if code != 0 or not passed or not took:
        return {}, [f"exit code {code}: {text[-1500:]}"]
    return {"sessions": SESSIONS, "seconds": round(int(took.group(1)) / 1000, 1)}, []


def run(program, suite):
    """Returns figures and complaints of this suite of a test program."""
    done = subprocess.run([program, "--gtest_filter=" + TEST.format(suite)], check=False,
                          env=os.environ | {"KX_TEST_SESSIONS": str(SESSIONS)},
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, errors="replace")
    return judge(done.returncode, done.stdout)
