#!/usr/bin/env python3
"""Plants includes in small trees and expects check-includes to find the wrong
ones, and only those. The script is the one argument."""

import pathlib
import subprocess
import sys
import tempfile

FILES = (
    "include/zuQelRT_GL.h", "platform/gbwrapper/gb_wrapper.h",
    "src/api/call.cpp", "src/api/harness/activity.cpp", "src/base/plane.h",
    "src/calib/key.h", "src/frame/frame.h", "src/refocus/map.h",
    "src/depth/mask.h", "src/depth/region.h", "src/render/quad.h",
    "src/gl/texture.h", "testing/scene.h", "tools/calibration/seal.cpp",
    "tools/commands/calibration_command.cpp", "tools/files/bytes.h",
    "tools/look/panel.cpp", "tools/look/panel.h", "tools/zuqel.cpp")

# File, what is added to it, and the finding: none where that is allowed.
CASES = (
    ("src/api/harness/activity.cpp", '#include "frame/frame.h"', None),
    ("src/gl/texture.h", "#include <gb_wrapper.h>", None),
    ("tools/calibration/seal.cpp", '#include "calib/key.h"', None),
    ("tools/commands/calibration_command.cpp", '#include "calib/key.h"', None),
    ("tools/zuqel.cpp", '#include "look/panel.h"', None),
    ("src/depth/mask.h", '#include "depth/region.h"', None),
    ("src/base/plane.h", '#include "gl/texture.h"', "base must not know gl"),
    ("src/render/quad.h", ' # include "../frame/frame.h"',
     "render must not know frame"),
    ("src/frame/frame.h", '#include "refocus/map.h"',
     "frame must not know refocus"),
    ("src/depth/mask.h", "#include <render/quad.h>",
     "depth must not know render"),
    ("src/calib/key.h", '#include "base/plane.h"', "calib must not know base"),
    ("src/frame/frame.h", '#include "scene.h"', "frame must not know testing"),
    ("src/api/call.cpp", "#include <gb_wrapper.h>",
     "api must not know platform"),
    ("tools/look/panel.cpp", '#include "base/plane.h"',
     "tools/look must not know base"),
    ("tools/look/panel.h", '#include "calib/key.h"',
     "tools/look must not know calib"),
    ("tools/files/bytes.h", '#include "look/panel.h"',
     "tools/files must not know tools/look"),
    ("src/depth/mask.h", '#include "depth/region.h"\n#include "depth/mask.h"',
     "circle: src/depth/mask.h -> src/depth/mask.h"),
)
# Two files are needed to make a circle.
TWO_FILES = (("src/depth/mask.h", '#include "depth/region.h"'),
             ("src/depth/region.h", '#include "depth/mask.h"'))
CIRCLE = "circle: src/depth/mask.h -> src/depth/region.h -> src/depth/mask.h"


def find(script, additions):
    with tempfile.TemporaryDirectory() as folder:
        for name in FILES:
            file = pathlib.Path(folder, name)
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text("#pragma once\n")
        for name, text in additions:
            pathlib.Path(folder, name).write_text(f"// Some file\n{text}\n")
        run = subprocess.run([script, folder], capture_output=True, text=True,
                             check=False)
        return run.returncode, run.stdout.splitlines()


def main():
    failures = 0
    for additions, finding in (*(([case[:2]], case[2]) for case in CASES),
                               (TWO_FILES, CIRCLE)):
        code, lines = find(sys.argv[1], additions)
        as_expected = ((code, lines) == (0, []) if finding is None else
                       code == 1 and len(lines) == 1 and finding in lines[0])
        if not as_expected:
            print(f"{additions}: expected {finding}, got {code}, {lines}")
            failures += 1
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
