"""What is refused, and in which words; what the headers have too."""

import re
from pathlib import Path

import pytest
import zuqel
from conftest import FLAT, GOOD, GREY, open_session

ROOT = Path(__file__).parents[2]


def test_tables_are_those_of_the_headers():
    header = (ROOT / "include/zuQelRT_GL.h").read_text()
    codes = dict(re.findall(r"#define (ZUQEL_\w+) (0x[0-9A-F]{4})u", header))
    assert {code.name: code for code in zuqel.Status} == {
        name: int(value, 16) for name, value in codes.items()}
    text = (ROOT / "include/zuQelRT_generators.h").read_text()
    text = re.sub(r"\\\n", "", text).split("(ROW)", 1)[1]
    rows = re.findall(r'ROW\(\w+, "([^"]+)",\s*(\w+),\s*\w+,\s*(\w+),\s*(\w+),'
                      r'\s*"([^"]+)"\)', text)
    assert len(rows) == text.count("ROW(") > 0
    assert [tuple(row) for row in zuqel.GENERATORS.values()] == [
        (name, call, takes.lower(), size.lower(), summary)
        for name, call, takes, size, summary in rows]


# What is wrong with arguments that are good otherwise, and what is said.
BAD_FRAMES = [
    ({"rgb": GREY[:-1]}, ValueError,
     "rgb: is 120x161x3; wanted is a NumPy array, uint8, 121x161x3"),
    ({"rgb": GREY.astype(float)}, TypeError, "rgb: is float64; wanted is"),
    ({"rgb": GREY.tolist()}, TypeError, "rgb: is list; wanted is"),
    ({"rgb": None}, TypeError, "give one of luma_vu and rgb"),
    ({"rgb": None, "luma_vu": (GREY, GREY)}, ValueError, "NV21 has even sizes"),
    ({"disparity": FLAT.T}, ValueError,
     "disparity: is 64x48; wanted is a NumPy array, uint16, 48x64"),
    ({"disparity": FLAT.astype(">u2")}, TypeError, "disparity: is >u2;"),
    ({"disparity": FLAT * 3}, ValueError, "disparity: has values up to 1500; "
     "wanted are disparities of at most 1023"),
    ({"disparity": None}, TypeError, "give one of disparity and weights"),
    ({"weights": GREY}, TypeError, "give one of disparity and weights"),
    ({"disparity": None, "weights": GREY[..., 0]}, ValueError,
     "weights: is 121x161; wanted is a NumPy array, uint8, 240x320"),
    ({"focus": (161, 0)}, ValueError,
     "focus: (161, 0) is outside of the frame, 161x121"),
    ({"focus": (0, -1)}, ValueError, "focus: (0, -1) is outside of"),
    ({"focus": (1.5, 2)}, TypeError, "focus: is (1.5, 2); wanted are whole"),
    ({"focus": 7}, TypeError, "focus: is 7; wanted are whole numbers, (x, y)"),
    ({"f_number": float("nan")}, ValueError, "f_number: is nan; wanted is"),
    ({"f_number": "f/2"}, TypeError, "f_number: is 'f/2'; wanted is a number"),
    ({"rect": (0, 0, 1)}, TypeError, "rect: is (0, 0, 1); wanted are whole"),
    ({"rect": (0, 0, 1, 1 << 31)}, ValueError, "rect: is (0, 0, 1, 21474"),
]


def test_refuses_before_it_calls():
    with open_session() as session:
        for wrong, error, text in BAD_FRAMES:
            with pytest.raises(error, match=re.escape(text)):
                session.frame(**GOOD | wrong)
        for error, text, call in (
            (ValueError, "'gnu' is not one of gpu, disparity-base, dis",
             lambda: session.refocus_map(FLAT, (1, 1), "gnu")),
            (ValueError, "focus: (64, 0) is outside of the map, 64x48",
             lambda: session.refocus_map(FLAT, (64, 0))),
            (ValueError, "depth: has values up to 1500",
             lambda: session.refocus_map(FLAT * 3, (1, 1))),
            (TypeError, "depth: is int64",
             lambda: session.refocus_map(FLAT.astype(int), (1, 1), "distance")),
            (ValueError, "disparity: has values up to 1500",
             lambda: session.cpu_frame(rgb=GREY, disparity=FLAT * 3,
                                       focus=(1, 1))),
            (ValueError, "the session is off screen; take frame()",
             lambda: session.draw(**GOOD)),
            (zuqel.SessionRunning, "one per process", open_session),
            (ValueError, "rgb: is 3x2; NV21 has even sizes",
             lambda: zuqel.to_nv21(GREY[:2, :3])),
            (ValueError, "luma: is 161x121; NV21 has even sizes",
             lambda: zuqel.to_rgb(GREY[..., 0], GREY[:60, :80, :2]))):
            with pytest.raises(error, match=re.escape(text)):
                call()
        session.frame(**GOOD)  # goes on
    with open_session(work_size=(64, 48)) as session:
        with pytest.raises(ValueError, match="work_size of 320x240, not 64x48"):
            session.frame(**GOOD)
    with zuqel.Session((64, 64)) as session:
        with pytest.raises(ValueError, match="opened without a depth_size"):
            session.refocus_map(FLAT, (1, 1))


@pytest.mark.parametrize("options, error, text", [
    ({"frame_size": (0, 4)}, ValueError, "frame_size: is 0x4; wanted is 1x1 "),
    ({"depth_size": (4, 8193)}, ValueError, "depth_size: is 4x8193; wanted"),
    ({"work_size": (4.0, 4)}, TypeError, "work_size: is (4.0, 4); wanted are"),
    ({"calibration": [1]}, TypeError, "calibration: is list; wanted is bytes"),
    ({"calibration": bytes(5)}, zuqel.StatusError,
     "zuQelRT_GLInitV1 returned ZUQEL_CALIB_BAD_LENGTH (0x6002)"),
    ({"key_block": bytes(32)}, zuqel.StatusError, "ZUQEL_CALIB_"),
])
def test_refused_sessions_leave_room_for_another(options, error, text):
    with pytest.raises(error, match=re.escape(text)):
        zuqel.Session(**{"frame_size": (64, 64)} | options)
    open_session().close()
