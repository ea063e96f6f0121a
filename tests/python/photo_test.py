"""Photos, and the programs that users are shown."""

import os
import re
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest
import zuqel
from PIL import Image

ROOT = Path(__file__).parents[2]


def test_read_photo(scene, zuqel_made):
    photo = zuqel.read_photo(scene.folder / "photo.jpg")
    np.testing.assert_array_equal(photo.picture, scene.photo)
    np.testing.assert_array_equal(
        photo.disparity, zuqel_made("depth", "photo.jpg", "-o", "OUT"))
    assert photo.size == scene.photo.shape[1::-1]
    assert photo.depth_size == (32, 24) and photo.disparity.dtype == np.uint16
    assert (photo.kind, photo.is_length, photo.unit, photo.known,
            photo.is_before_blur) == ("GDepth, RangeInverse", False, "1/m", 1,
                                      True)
    # 0 is the nearest, at 0.5 m.
    farthest = 2 - 1.75 * scene.photo_depth.max() / 255
    assert photo.range == pytest.approx((farthest, 2), rel=1e-4)
    for name, text in (("even.png", "even.png: has no depth inside"),
                       ("none.jpg", "none.jpg: ")):
        with pytest.raises(zuqel.PhotoError, match=text):
            zuqel.read_photo(scene.folder / name)


def run_script(code, folder, **settings):
    subprocess.run([sys.executable, "-c", code], cwd=folder, check=True,
                   env=os.environ | {"MPLBACKEND": "agg"} | settings)


def test_readme_shows_a_first_frame(scene, zuqel_made, tmp_path):
    readme = (ROOT / "README.md").read_text()
    block, = re.findall(r"```python\n(.*?)```", readme, re.S)
    os.link(scene.folder / "photo.jpg", tmp_path / "photo.jpg")
    run_script(block, tmp_path)
    focus = ",".join(re.search(r"focus=\((\d+), (\d+)\)", block).groups())
    f_number, = re.findall(r"f_number=([\d.]+)", block)
    with Image.open(tmp_path / "refocused.png") as result:
        np.testing.assert_array_equal(result, zuqel_made(
            "render", "photo.jpg", "--focus", focus, "--f-number", f_number,
            "-o", "OUT"))


def test_focus_sweep(scene, tmp_path):
    os.link(scene.folder / "even.png", tmp_path / "scene.png")
    os.link(scene.folder / "disparity.png", tmp_path / "disparity.png")
    run_script((ROOT / "examples/focus_sweep.py").read_text(), tmp_path,
               SWEEP_SCENE=".", SWEEP_WIDTH="160")
    with Image.open(tmp_path / "focus_sweep.png") as image:
        pixels = np.asarray(image.convert("RGB"))
    assert len(np.unique(pixels.reshape(-1, 3), axis=0)) > 1000
