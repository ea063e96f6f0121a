"""A scene, as arrays and as files, and the program that the package is held
against. The environment's ZUQEL_LIBRARY and ZUQEL_PROGRAM name the build's."""

import base64
import io
import os
import subprocess
from types import SimpleNamespace

import numpy as np
import pytest
import zuqel
from PIL import Image

WIDTH, HEIGHT = 161, 121  # odd: the program pads, and cuts the result
DEPTH, WORK = (64, 48), (320, 240)

# Good arguments of frame().
GREY = np.full((HEIGHT, WIDTH, 3), 128, np.uint8)
FLAT = np.full(DEPTH[::-1], 500, np.uint16)
GOOD = {"rgb": GREY, "disparity": FLAT, "focus": (5, 5)}


def open_session(**options):
    return zuqel.Session((WIDTH, HEIGHT), DEPTH, **options)


def png(array):
    file = io.BytesIO()
    Image.fromarray(array).save(file, "png")
    return file.getvalue()


def jpeg_with_depth(picture, depth):
    """A JPEG file with the picture and, in its metadata, the depth and the
    picture from before the blur, which is another."""
    file = io.BytesIO()
    Image.fromarray(picture[::-1].copy()).save(file, "jpeg")

    def attribute(name, value):
        if isinstance(value, np.ndarray):
            value = base64.b64encode(png(value)).decode()
        return f' {name}="{value}"'

    packet = ('<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF '
              'xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">'
              '<rdf:Description'
              ' xmlns:GDepth="http://ns.google.com/photos/1.0/depthmap/"'
              ' xmlns:GImage="http://ns.google.com/photos/1.0/image/"' +
              "".join(attribute(*row) for row in (
                  ("GDepth:Format", "RangeInverse"), ("GDepth:Near", "0.5"),
                  ("GDepth:Far", "4"), ("GDepth:Units", "m"),
                  ("GDepth:Mime", "image/png"), ("GDepth:Data", depth),
                  ("GImage:Mime", "image/png"), ("GImage:Data", picture))) +
              "/></rdf:RDF></x:xmpmeta>").encode()
    content = b"http://ns.adobe.com/xap/1.0/\0" + packet
    assert len(content) < 65534
    segment = b"\xff\xe1" + (len(content) + 2).to_bytes(2, "big") + content
    return file.getvalue()[:2] + segment + file.getvalue()[2:]


@pytest.fixture(scope="session")
def scene(tmp_path_factory):
    """In a folder of files: picture.png, even.png, disparity.png, ..."""
    random = np.random.default_rng(1)
    folder = tmp_path_factory.mktemp("scene")
    rows, columns = np.indices((HEIGHT, WIDTH))
    picture = np.stack([rows, columns, rows ^ columns], -1).astype(np.uint8)
    picture ^= random.integers(0, 64, picture.shape, np.uint8)
    disparity = np.full(DEPTH[::-1], 120, np.uint16)
    disparity[12:40, 10:36] = 700 + np.arange(26)
    disparity[random.random(disparity.shape) < 0.05] = 1023
    weights = random.integers(0, 256, (60, 80), np.uint8)
    arrays = dict(
        picture=picture, even=picture[:-1, :-1].copy(), disparity=disparity,
        weights=weights,
        distance=(disparity % 1023 * 37).astype(np.uint16))
    for name, array in arrays.items():
        (folder / f"{name}.png").write_bytes(png(array))
    small = picture[::3, ::3].copy()
    depth = (disparity[::2, ::2] % 1023 // 4).astype(np.uint8)
    (folder / "photo.jpg").write_bytes(jpeg_with_depth(small, depth))
    return SimpleNamespace(folder=folder, photo=small, photo_depth=depth,
                           **arrays)


@pytest.fixture(scope="session")
def zuqel_made(scene):
    """Runs the program, in the scene's folder; returns the picture it writes,
    in the place of "OUT"."""
    def run(*arguments):
        out = scene.folder / "out.png"
        line = [os.environ["ZUQEL_PROGRAM"]] + [
            str(out) if a == "OUT" else str(a) for a in arguments]
        done = subprocess.run(line, cwd=scene.folder, capture_output=True,
                              text=True)
        assert done.returncode == 0, done.stderr
        with Image.open(out) as image:
            return np.array(image)
    return run
