#!/usr/bin/env python3
"""Hands made-up measurements to the script that makes tables of them. The script is
the one argument."""

import json
import pathlib
import subprocess
import sys
import tempfile

SCRIPT = sys.argv[1]
# Microseconds of ours before and after, on a machine that has become half as fast,
# and what is to be found. Processes differ by a tenth.
CHANGES = (
    ("keeps pace", 10, 20, None),
    ("changes within the spread", 10, 21.8, None),
    ("is slower", 10, 23, "15 % slower"),
    ("is faster", 10, 16, "25 % faster"),
    ("alone, keeps pace", 10, 20, None),
    ("alone, is slower", 10, 24, "20 % slower"),
)


def row(name, ours, pace, **more):
    """Of 1000 pixels; the copy takes 2 microseconds, the peer 8."""
    micro = 1e-6
    others = {"copy": [2 * pace * micro, 3 * pace * micro],
              "peer": [8.8 * pace * micro, 8 * pace * micro]}
    if name.startswith("alone"):
        del others["peer"]
    return {"section": "Planes", "row": name, "pixels": 1000, "bytes": 2048,
            "working memory": 0, "operations": 7, "which": "sums", "seconds": {
                "ours": [ours * micro, ours * 1.1 * micro]} | others} | more


def table(folder, old, new, *options):
    paths = folder / "old.json", folder / "new.json"
    for path, rows in zip(paths, (old, new)):
        path.write_text(json.dumps({"head": {"processor": str(path)}, "rows": rows}))
    done = subprocess.run(
        [SCRIPT, "--from", paths[1], "--against", paths[0], *options], check=True,
        capture_output=True, text=True)
    return done.stdout


def line(text, name):
    """Words of the first line that begins so."""
    return next(each for each in text.splitlines() if each.startswith(name)).split()


def main():
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        text = table(
            folder, [row(name, before, 1) for name, before, *_ in CHANGES],
            [row(name, after, 2) for name, _, after, _ in CHANGES] + [row("new", 4, 2)])
        changed = text[text.index("3 of 6 rows have changed"):]
        for name, *_, expected in CHANGES:
            found = [each for each in changed.splitlines() if each.startswith(name)]
            told = [" ".join(each.split()).startswith(f"{name} {expected}")
                    for each in found]
            assert told == [True] * bool(expected), (name, changed)

        peers = row("two peers", 3, 1)["seconds"] | {"other": [1e-6, 1e-6]}
        rows = [row("costly", 5, 1), row("cheap", 4, 1),
                row("two peers", 3, 1, seconds=peers),
                row("no bytes", 2, 1, bytes=0, seconds={"ours": [2e-6]}),
                row("of the driver", 9, 1, section="OpenGL ES")]
        rows[1]["working memory"] = 3_000_000
        text = table(folder, rows, rows, "--svg", folder / "ratios.svg")
        for name, expected in (
                ("costly", "5.0 peer 8.0 0.62 5.000 2 2.50 10 % 7"),
                ("cheap", "4.0 peer 8.0 0.50 4.000 2 2.00 10 %"),
                ("two peers", "3.0 peer 8.0 0.38 3.000 2 1.50 10 %"),
                ("   ", "other 1.0 3.00 10 %"),
                ("no bytes", "2.0 2.000"),
                ("of the driver", "9.0 peer 8.0 1.12 9.000 2 4.50 10 %"),
                ("sums", "sums. costly: 7")):
            found = line(text[text.index("\nPlanes"):], name)
            assert " ".join(found).endswith(expected), (expected, found)
        assert "cheap  3.0 MB" in text and "0 of 5 rows" in text, text
        svg = (folder / "ratios.svg").read_text()
        assert svg.count("<rect") == 1 + 5 and ">0.62<" in svg, svg


main()
