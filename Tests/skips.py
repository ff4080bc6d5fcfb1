#!/usr/bin/env python3
"""skips.py LOG: prints what the tests of a run have left out, and fails when nothing about this machine explains it."""
import os
import re
import shutil
import subprocess
import sys

def can_mount():
    tried = subprocess.run(['unshare', '--mount', 'mount', '-t', 'tmpfs', 'none', '/tmp'], capture_output=True)
    return tried.returncode == 0

def can_use_fuse():
    return os.access('/dev/fuse', os.R_OK | os.W_OK) and bool(shutil.which('fusermount3'))

def has_loop_device():
    return subprocess.run(['losetup', '--find'], capture_output=True).returncode == 0

IS_ROOT = os.geteuid() == 0
# (tests, reasons, whether that is so here)
EXPECTED = [
    (r'.*', r'root (may|reads)\b.*', IS_ROOT),
    (r'.*', r'.*\bonly (by )?root\b.*', not IS_ROOT),
    (r'.*', r'.*\bmounted\b.*|mounts cannot be made here', not can_mount()),
    (r'.*', 'no FUSE here', not can_use_fuse()),
    (r'.*', 'no loop device here', not (can_mount() and has_loop_device())),
    # Each of these runs a second time the other way round.
    (r'PowerTest', 'there is a bus', True),
    (r'PowerTestWithoutBus', 'there is no bus', True),
    (r'ApplicationCatalogTest', 'no dpkg or no desktop entries', not os.path.isdir('/usr/share/applications')),
]

def skips(log):
    """(test, case, reason) of what Qt's and Python's test frameworks say they have skipped."""
    test = ''
    for line in log:
        if started := re.match(r'\d+/\d+ Test: (\S+)', line):
            test = started[1]
        elif skipped := re.match(r'SKIP   : (\S+?\([^)]*\)) (.*)', line):
            yield test, skipped[1], skipped[2]
        # What others write to the terminal may stand between the name and this.
        elif skipped := re.match(r"(?:(\S+) \(.*\) \.\.\. )?skipped ['\"](.*)['\"]$", line):
            yield test, skipped[1] or '?', skipped[2]

unexpected = 0
with open(sys.argv[1], errors='replace') as log:
    for test, case, reason in skips(log):
        known = any(so and re.fullmatch(tests, test) and re.fullmatch(reasons, reason)
                    for tests, reasons, so in EXPECTED)
        unexpected += not known
        print(f"{'left out' if known else 'LEFT OUT FOR NO KNOWN REASON'}: {test} {case}: {reason}")
sys.exit(bool(unexpected))
