"""What a session makes is what the program makes, byte for byte."""

import numpy as np
import pytest
import zuqel
from conftest import DEPTH, HEIGHT, WIDTH, WORK


def size_of(array):
    return array.shape[1], array.shape[0]


@pytest.mark.parametrize("picture, form, made_from, f_number", [
    ("picture", "rgb", "disparity", 1), ("picture", "rgb", "weights", 2.8),
    ("even", "planes", "disparity", 4), ("even", "planes", "weights", 1),
    ("picture", "rgb", "cpu", 1), ("even", "planes", "cpu", 1)])
def test_frame(scene, zuqel_made, picture, form, made_from, f_number):
    focus = 60, 60
    rgb = getattr(scene, picture)
    given = {"rgb": rgb} if form == "rgb" else {"luma_vu": zuqel.to_nv21(rgb)}
    # Strides of the caller's own.
    map_name = "disparity" if made_from == "cpu" else made_from
    given[map_name] = np.asfortranarray(getattr(scene, map_name))
    before = [np.array(a) for v in given.values() for a in v]
    work = size_of(scene.weights) if made_from == "weights" else WORK
    with zuqel.Session(size_of(rgb), DEPTH, work_size=work) as session:
        if made_from == "cpu":
            result = session.cpu_frame(**given, focus=focus)
        else:
            result = session.frame(**given, focus=focus, f_number=f_number)
    if form == "planes":
        result = zuqel.to_rgb(*result)
    expected = zuqel_made(
        "render", f"{picture}.png", f"--{map_name}", f"{map_name}.png",
        "--focus", "60,60", "--f-number", f_number, "--renderer",
        "cpu" if made_from == "cpu" else "gpu", "-o", "OUT")
    np.testing.assert_array_equal(result, expected)
    assert (result != rgb).any()
    for array, old in zip((a for v in given.values() for a in v), before):
        np.testing.assert_array_equal(array, old)


@pytest.mark.parametrize("name", zuqel.GENERATORS)
def test_refocus_map(scene, zuqel_made, name):
    depth = getattr(scene, zuqel.GENERATORS[name].takes)
    before = depth.copy()
    with zuqel.Session((WIDTH, HEIGHT), DEPTH, work_size=DEPTH) as session:
        weights = session.refocus_map(depth, (20, 30), name)
        again = session.refocus_map(depth, (60, 3), name)
    takes = zuqel.GENERATORS[name].takes
    for array, focus in (weights, "20,30"), (again, "60,3"):
        np.testing.assert_array_equal(array, zuqel_made(
            "refocus-map", f"--{takes}", f"{takes}.png", "--focus", focus,
            "--generator", name, "-o", "OUT"))
    assert len(np.unique(weights)) > 1 and (weights != again).any()
    np.testing.assert_array_equal(depth, before)


def test_conversion_keeps_extremes_in_range():
    corners = np.array(np.meshgrid([0, 1, 128, 254, 255], [0, 255, 7], [0, 255]
                                   )).T.reshape(-1, 3).astype(np.uint8)
    # One colour for each 2x2 pixels.
    rgb = np.tile(np.repeat(corners, 2, 0), (2, 1, 1))
    back = zuqel.to_rgb(*zuqel.to_nv21(rgb)).astype(int)
    assert abs(back - rgb).max() <= 3


def test_cpu_mask_is_smoothed_over_calls(scene):
    with zuqel.Session((WIDTH, HEIGHT), DEPTH) as session:
        def render(shift):
            return session.cpu_frame(
                rgb=scene.picture, focus=(60 + 161 * shift // 64, 60),
                disparity=np.roll(scene.disparity, shift, 1))
        alone = [render(20) for _ in range(3)][0]
        still = render(20)
        moving = [render(0) for _ in range(5)]
    np.testing.assert_array_equal(still, alone)
    with zuqel.Session((WIDTH, HEIGHT), DEPTH) as session:
        settled = render(0)
    first, last = (abs(frame.astype(int) - settled).mean()
                   for frame in (moving[0], moving[-1]))
    assert last < first
