#!/usr/bin/env python3
"""Installs a build's device tree and reads it as the device's build systems do.

    device_tree_test.py BUILD_FOLDER
"""

import json
import pathlib
import re
import runpy
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).parents[1]
BUILD = pathlib.Path(sys.argv.pop())


def run(*command):
    """What the command prints, on either channel, where it succeeds."""
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT).stdout


def settings():
    """The configured build's variables."""
    text = (BUILD / "CMakeCache.txt").read_text()
    return dict(re.findall(r"^(\w+):\w+=(.*)$", text, re.MULTILINE))


class DeviceTree(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.tree = pathlib.Path(folder.name)
        run("cmake", "--install", BUILD, "--prefix", cls.tree)
        cls.module = cls.tree / "prefab/modules/zuQelRT_GL"
        cls.blueprint = (cls.tree / "Android.bp").read_text()

    def test_prefab_describes_the_build(self):
        its = settings()
        abi = its["ANDROID_ABI"]
        libraries = self.module / "libs" / f"android.{abi}"
        for path, expected in (
            (self.tree / "prefab/prefab.json",
             {"schema_version": 2, "name": self.module.name,
              "version": its["CMAKE_PROJECT_VERSION"], "dependencies": []}),
            (self.module / "module.json",
             {"export_libraries": [], "library_name": "libzuQelRT_GL"}),
            (libraries / "abi.json",
             {"abi": abi, "api": int(its["ANDROID_PLATFORM_LEVEL"]),
              "ndk": int(its["ANDROID_NDK_MAJOR"]), "stl": its["ANDROID_STL"],
              "static": False}),
        ):
            with self.subTest(path.name):
                self.assertEqual(json.loads(path.read_text()), expected)

        manifest = xml.etree.ElementTree.parse(self.tree / "AndroidManifest.xml")
        sdk = manifest.find("uses-sdk").attrib.values()
        self.assertEqual(list(sdk), [its["ANDROID_PLATFORM_LEVEL"]])

    def test_nothing_else_is_installed(self):
        installed = {str(path.relative_to(self.module))
                     for path in self.module.rglob("*") if path.is_file()}
        headers = {f"include/{path.name}" for path in (ROOT / "include").iterdir()}
        libraries = f"libs/android.{settings()['ANDROID_ABI']}"
        self.assertEqual(installed, headers | {
            "module.json", f"{libraries}/abi.json", f"{libraries}/libzuQelRT_GL.so"})
        self.assertEqual({path.name for path in self.tree.iterdir()}, {
            "Android.bp", "Android.mk", "AndroidManifest.xml", "prefab"})

    def test_blueprint_is_well_formed_and_is_the_makefile(self):
        self.assertEqual(run("bpfmt", "-d", self.tree / "Android.bp"), "")
        self.assertEqual(run("androidmk", self.tree / "Android.mk"), self.blueprint)

    def test_blueprint_names_what_is_there(self):
        for field in "srcs", "export_include_dirs":
            named = re.search(rf'{field}: \["(.*)"\]', self.blueprint)[1]
            self.assertTrue((self.tree / named).exists(), named)
        shared = re.search(r"shared_libs: \[(.*?)\]", self.blueprint, re.DOTALL)[1]
        check = runpy.run_path(str(ROOT / "scripts/check-object"))
        self.assertEqual({f"{name}.so" for name in re.findall(r'"(.*)"', shared)},
                         check["NEEDED"]["device"])

    def test_library_can_be_handed_out(self):
        library = next(self.module.rglob("*.so"))
        run(ROOT / "scripts/check-object", library)
        self.assertNotIn("RUNPATH", run("readelf", "--dynamic", library))


if __name__ == "__main__":
    unittest.main()
