#!/usr/bin/env python3
"""Loads the library into a Java runtime and calls the test activity's methods.

The sample files have fixed places below /sdcard. A root folder of the test's
own, in a mount namespace of its own, has that folder, so that the machine's
files are neither needed nor touched.
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile

SKIPPED = 77  # SKIP_RETURN_CODE of the test
CLASS = "com.example.lvglrefocusing.MainActivity"
FOLDER = "a folder"

CALIBRATION = "OTP_DATA.bin"
IMAGE = "filesmain.raw"
DEPTH = "filesdepth320x240.raw"
IMAGE_BYTES = 1280 * 960 * 3 // 2
DEPTH_BYTES = 320 * 240 * 2

GOOD = "*VX* Read File Success."
BAD = "*VX* Read File Fail."


CASES = [  # name, sizes of the files, calls, size of calibration, outcomes
    ("no files", {}, "init start close", 0, [BAD, BAD, BAD]),
    ("all files",
     {CALIBRATION: 2048, IMAGE: IMAGE_BYTES, DEPTH: DEPTH_BYTES},
     "init start close", 2048, [GOOD, GOOD, GOOD]),
    ("short files, buffers reused, closed twice",
     {CALIBRATION: 0, IMAGE: 1000, DEPTH: 1},
     "init init close close init close", 0, [GOOD, GOOD, GOOD]),
    # Far longer, so that a read past the buffer does not pass unseen.
    ("long files", {IMAGE: 1 << 28, DEPTH: 1 << 28}, "init start close", 0,
     [BAD, GOOD, GOOD]),
    ("folder in a file's place, one past 2 GiB",
     {CALIBRATION: 1 << 31, IMAGE: FOLDER, DEPTH: DEPTH_BYTES},
     "init start close", 0, [BAD, BAD, GOOD]),
    ("out of order", {DEPTH: DEPTH_BYTES}, "start close start init start", 0,
     [BAD, BAD, GOOD]),
]


def run_in_namespace():
    """Runs this script again where it may mount; returns its exit code."""
    for unshare in (["unshare", "-m"], ["unshare", "-rm"]):
        may_mount = subprocess.run(
            unshare + ["mount", "-t", "tmpfs", "tmpfs", "/tmp"],
            stderr=subprocess.DEVNULL)
        if may_mount.returncode == 0:
            with tempfile.TemporaryDirectory() as root:
                script = [sys.executable, os.path.abspath(__file__)]
                return subprocess.run(unshare + script + sys.argv[1:] +
                                      ["--root", root]).returncode
    print("no mount namespace of its own can be had for /sdcard")
    return 1 if os.environ.get("CI") else SKIPPED


def enter_root(root):
    """Makes `root` this process's root: the machine's, with an own /sdcard."""
    subprocess.run(["mount", "-t", "tmpfs", "tmpfs", root], check=True)
    for entry in os.scandir("/"):
        place = os.path.join(root, entry.name)
        if entry.name == "sdcard":
            continue
        if entry.is_symlink():
            os.symlink(os.readlink(entry.path), place)
        elif entry.is_dir():
            os.mkdir(place)
            subprocess.run(["mount", "--rbind", entry.path, place], check=True)
    os.mkdir(os.path.join(root, "sdcard"))
    os.chroot(root)
    os.chdir("/sdcard")


def place_files(sizes):
    subprocess.run(["rm", "-rf", CALIBRATION, IMAGE, DEPTH], check=True)
    for name, size in sizes.items():
        if size == FOLDER:
            os.mkdir(name)
        else:
            with open(name, "wb") as file:
                file.truncate(size)


def run_case(options, sizes, calls, calibration_size, outcomes):
    """What differs from the expected, as lines; none when all is well."""
    place_files(sizes)
    # Java tells on standard error what it takes from these.
    environment = {k: v for k, v in os.environ.items()
                   if not re.search("JAVA.*OPTIONS", k)}
    if options.preload:
        # The runtime reads its own guard pages, and frees little at its end.
        environment.update(LD_PRELOAD=options.preload,
                           ASAN_OPTIONS="detect_leaks=0:handle_segv=0")
    process = subprocess.Popen(
        [options.java, "-Xshare:auto", "-XX:TieredStopAtLevel=1",
         "-XX:+UseSerialGC", "-Xcheck:jni", "-cp", options.classes, CLASS,
         options.library, *calls.split()],
        env=environment, text=True,
        stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    out, err = process.communicate(timeout=60)
    log = re.sub(r"Runtime = \d+ ", "Runtime = N ", err).splitlines()
    prefix = "E/System.out(%5d): " % process.pid
    expected = {  # printed and logged
        "init": ("initGL", [f"*VX* dOTPSize = {calibration_size}", *outcomes,
                            "*VX* zuQel_GLInit errNum = 0"]),
        "start": ("startGL = 0", ["*VX* Runtime = N (ms)"]),
        "close": ("closeGL = 0",
                  ["*VX* Close", "zuQelRT_GLClose +", "zuQelRT_GLClose -"])}
    called = [expected[call] for call in calls.split()]
    return [f"  {actual}\n  expected: {wanted}" for actual, wanted in (
        (process.returncode, 0), (out.splitlines(), [row[0] for row in called]),
        (log, [prefix + line for row in called for line in row[1]]))
        if actual != wanted]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--java", required=True)
    parser.add_argument("--classes", required=True, type=os.path.abspath)
    parser.add_argument("--library", required=True, type=os.path.abspath)
    parser.add_argument("--preload", help="a sanitizer's runtime library")
    parser.add_argument("--root", help=argparse.SUPPRESS)
    options = parser.parse_args()
    if options.root is None:
        return run_in_namespace()
    enter_root(options.root)
    failed = 0
    for name, *case in CASES:
        wrong = run_case(options, *case)
        print("\n".join([f"{'FAILED' if wrong else 'ok'}: {name}"] + wrong))
        failed += bool(wrong)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
