#!/usr/bin/env python3
"""`zuqel info` and what it tells of: displays that cannot be opened, devices,
properties. The program is the one argument."""

import json
import os
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv.pop(1)
STALE = ({"DISPLAY": ":9999"}, {"WAYLAND_DISPLAY": "none"},
         {"DISPLAY": "none:1:2", "WAYLAND_DISPLAY": "/none"})
# The system's own loader, without a driver to load.
NO_GL = {"__EGL_VENDOR_LIBRARY_FILENAMES": "/none", "LD_LIBRARY_PATH": ""}


def run(arguments, **settings):
    clean = {name: value for name, value in os.environ.items() if name not in
             ("DISPLAY", "WAYLAND_DISPLAY", "ZUQEL_PROPERTIES")}
    # A driver is unloaded with its session, with what it still holds.
    clean["ASAN_OPTIONS"] = os.environ.get("ASAN_OPTIONS",
                                           "") + ":detect_leaks=0"
    return subprocess.run([PROGRAM, *arguments.split()], env=clean | settings,
                          capture_output=True)


def info(arguments="", **settings):
    """The report and the exit code."""
    done = run(f"info --json {arguments}", **settings)
    return json.loads(done.stdout), done.returncode


def lines_of(report):
    """What the text has to say, without columns."""
    gl, egl = report["gl"], report["egl"]
    yield (f"zuqel {report['program']}, library {report['library']}, built "
           f"for {report['instruction_set']}")
    if gl["works"]:
        yield "drawn by " + ("software" if gl["is_software"] else "hardware")
        for name in ("vendor", "renderer", "version"):
            yield f"{name} {gl[name]}"
    else:
        yield f"does not work {gl['failure']}"
    for name in ("platform", "vendor", "version"):
        yield f"{name} {egl[name] or 'unknown'}"
    failed = " (cannot be opened)" if egl["display_failed"] else ""
    for name, value in egl["display_variables"].items():
        yield f"{name} {value}{failed}"
    for row in report["devices"]:
        kind = "software" if row["is_software"] else "hardware"
        texts = (str(row["number"]), kind, row["is_in_use"] and "in use",
                 row["name"], row["file"])
        yield " ".join(text for text in texts if text)
    states = {True: "present", False: "missing", None: "unknown"}
    for row in report["extensions"]:
        yield f"{row['name']} {states[row['is_present']]} {row['purpose']}"
    for row in report["properties"]:
        origin = {"default": ""}.get(row["origin"], "from the ") + row["origin"]
        known = "" if row["is_known"] else " (unknown)"
        yield f"{row['name']} {row['value'] or '-'} {origin}{known}"


class InfoTest(unittest.TestCase):

    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory())
        self.file = os.path.join(self.folder, "properties")

    def test_text_agrees_with_json(self):
        with open(self.file, "w") as file:
            file.write("my.own=1\n")
        for settings in ({}, *STALE, NO_GL, {"ZUQEL_PROPERTIES": self.file}):
            with self.subTest(settings):
                report, code = info(**settings)
                self.assertEqual(code, 0 if report["gl"]["works"] else 1)
                done = run("info", **settings)
                self.assertEqual(done.returncode, code)
                text = [" ".join(line.split())
                        for line in done.stdout.decode().splitlines()]
                for line in lines_of(report):
                    self.assertIn(line, text)

    def test_tells_why_gl_does_not_work(self):
        report, code = info(**NO_GL)
        failure = report["gl"]["failure"]
        self.assertIn("no OpenGL ES 2.0 to render with: egl", failure)
        self.assertEqual((code, report["devices"]), (1, []))
        self.assertEqual(run("info", **NO_GL).stderr.decode(),
                         f"zuqel: {failure}\n")

    def test_draws_without_a_display(self):
        frame, scene, map_, result = (f"{self.folder}/{name}" for name in (
            "frame", "scene.png", "map.png", "result.png"))
        with open(frame, "wb") as file:
            file.write(bytes(i % 251 for i in range(96 * 64)))
        run(f"raw {frame} --size 48x32 --kind output -o {scene}")
        run(f"raw {frame} --size 96x64 --kind weights -o {map_}")

        # In two sessions. Returns the picture and how often it warns.
        def render(**settings):
            done = run(f"--verbose render {scene} --disparity {map_} -o "
                       f"{result} --focus 9,9 --map-from gpu", **settings)
            self.assertEqual(done.returncode, 0)
            with open(result, "rb") as file:
                return file.read(), done.stderr.count(b"cannot be opened")

        picture, warnings = render()
        self.assertEqual(warnings, 0)
        for settings in STALE:
            with self.subTest(settings):
                report, code = info(**settings)
                self.assertEqual(code, 0)
                # Other drivers' default display may need no window system.
                failed = report["egl"]["display_failed"]
                self.assertEqual(failed, "Mesa" in report["egl"]["vendor"])
                self.assertEqual(render(**settings), (picture, int(failed)))
                self.assertEqual(run("info", **settings).stderr, b"")
        self.assertFalse(info()[0]["egl"]["display_failed"])

    def test_draws_on_the_chosen_device(self):
        count = len(info()[0]["devices"])
        for i in range(count):
            report, code = info(f"--device {i}")
            self.assertEqual(code, 0)
            self.assertEqual(report["egl"]["platform"], "device")
            self.assertEqual([row["number"] for row in report["devices"]
                              if row["is_in_use"]], [i])
        for number, settings in ((count, {}), (-1, {}), (0, NO_GL)):
            done = run(f"--device {number} demo -o {self.folder}/new",
                       **settings)
            self.assertEqual(done.returncode, 2)
            self.assertRegex(
                done.stderr.decode(),
                rf"^zuqel: --device {number}: there (is|are) .* devices?.*\n$")
        with open(self.file, "w") as file:
            file.write(f"zuqel.device={count}\n")
        report, code = info(ZUQEL_PROPERTIES=self.file)
        self.assertEqual(code, 1)
        self.assertIn("no device has the number that zuqel.device gives",
                      report["gl"]["failure"])

    def test_tells_who_has_set_properties(self):
        with open(self.file, "wb") as file:
            file.write(b'persist.zu.LVGLbokeh.FocusDot=2\nzuqel.device=7\n'
                       b'my.own="\\\t\x01\xff\n')
        devices = len(info()[0]["devices"])
        device = "--device 0" if devices else ""
        report, _ = info(device, ZUQEL_PROPERTIES=self.file)
        self.assertEqual(report["properties_file"], self.file)
        found = {row["name"]: (row["value"], row["origin"], row["is_known"])
                 for row in report["properties"]}
        for name, expected in {
                "persist.zu.LVGLbokeh.FocusDot": ("2", "file", True),
                "persist.zu.LVGLbokeh.StillCount": ("90", "default", True),
                "zuqel.device": (("0", "program", True) if devices else
                                 ("7", "file", True)),
                "my.own": ('"\\\t\x01\ufffd', "file", False)}.items():
            self.assertEqual(found[name], expected)


if __name__ == "__main__":
    unittest.main()
