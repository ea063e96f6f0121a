#!/usr/bin/env python3
"""Runs the shell commands of the documents, in a folder with small files of the
names that they use. The arguments are the project's root and the program."""

import base64
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

ROOT, PROGRAM = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
NOT_RUN = (  # what a command begins with, and the reason
    (r"scripts/|cmake |ctest |apt |pip |cc ", "installs, builds or tests"),
    (r"build/release/bin/(\w+_test|\w+ --gtest)", "is built for tests"),
    (r"export |python3 examples/", "depends on where things were installed"),
    (r"adb ", "wants a phone"),
    (r"zuqel view", "opens a window"),
    (r"zuqel --device 1", "wants two GPUs"),
)
# A tenth of the size, few frames, one way to make a picture.
SHORTER = (
    (r"build/release/bin/zuqel", "zuqel"),
    (r"(--focus(?:-to)? \d+)\d,(\d+)\d", r"\1,\2"),
    (r" \.\.\.", " --focus 20,20 -o out.png"),
    (r"--count 50|(?<=sequence) --demo", r"\g<0> --count 2"),
    (r"--count 50 --count 2", "--count 2"),
    (r"zuqel demo -o demo", "cp -r scenes/table demo"),
    (r"zuqel report", "zuqel report --makers frame --f-numbers 2"),
    (r"\| display -", "> shown.png"),
)
SIZE, MAP = "224x168", "56x42"
CHIP = "-depth 16 -evaluate multiply 0.01"  # of a gradient: at most 655
PICTURES = {  # file and what ImageMagick makes it of
    "photo.jpg": f"-size {SIZE} plasma:tomato-navy",
    "map.png": f"-size {MAP} gradient: -depth 8",
    "aloeGT.png": f"-size {MAP} gradient: -depth 8",
    "disp0.pfm": f"-size {MAP} gradient:",
    "depth_mm.png": f"-size {MAP} gradient: -depth 16",
    "disparity.png": f"-size {MAP} gradient: {CHIP}",
}
COPIES = {
    "photo.jpg": ("aloeL.jpg", "im0.png", "colour.png", "in_0001.png", "in_0002.png",
                  "scenes/table/scene.png"),
    "disparity.png": ("d.png", "d_0000.png", "d_0001.png", "d_0002.png",
                      "scenes/table/disparity.png"),
    "photo.heic": ("other.heic",),
}
XMP = """http://ns.adobe.com/xap/1.0/\0<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF
xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#"><rdf:Description
xmlns:GDepth="http://ns.google.com/photos/1.0/depthmap/" GDepth:Format="RangeLinear"
GDepth:Near="1" GDepth:Far="9" GDepth:Mime="image/png" GDepth:Data="%s"/></rdf:RDF>
</x:xmpmeta>"""


def make_samples(folder):
    (folder / "scenes/table").mkdir(parents=True)
    for name, made_of in PICTURES.items():
        subprocess.run(["convert", *made_of.split(), name], cwd=folder, check=True)
    # What a photo is shows in its bytes, not in its name: this one is a JPEG.
    jpeg = (folder / "photo.jpg").read_bytes()
    xmp = XMP % base64.b64encode((folder / "map.png").read_bytes()).decode()
    (folder / "photo.heic").write_bytes(
        jpeg[:2] + b"\xff\xe1" + (len(xmp) + 2).to_bytes(2, "big") + xmp.encode() +
        jpeg[2:])
    for name, copies in COPIES.items():
        for copy in copies:
            subprocess.run(["convert", name, copy] if name.endswith(".jpg") else
                           ["cp", name, copy], cwd=folder, check=True)
    for name in ("in.y4m", "in.mp4"):
        subprocess.run(["ffmpeg", "-v", "error", "-i", "in_%04d.png", "-pix_fmt",
                        "yuv420p", name], cwd=folder, check=True)


def blocks():
    for path in (ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))):
        text = path.read_text()
        for found in re.finditer(r"^```sh\n(.*?)^```", text, re.M | re.S):
            line = text.count("\n", 0, found.start()) + 1
            yield f"{path.relative_to(ROOT)}:{line}", found[1]


def commands(block):
    """Each with the lines it goes on over."""
    command, end = "", None
    for line in block.splitlines(keepends=True):
        command += line
        begin = re.search(r"<<'(\w+)'", line)
        end = begin[1] if begin else end
        if line.rstrip().endswith(("\\", "|")) or end not in (None, line.rstrip()):
            continue
        yield command
        command, end = "", None


def main():
    environment = os.environ | {"PATH": f"{PROGRAM.parent}:{os.environ['PATH']}"}
    failed = count = 0
    unused = set(NOT_RUN)
    with tempfile.TemporaryDirectory() as name:
        samples = pathlib.Path(name) / "samples"
        make_samples(samples)
        for place, block in blocks():
            text = ""
            for command in commands(block):
                reasons = [row for row in NOT_RUN if re.match(row[0], command)]
                unused.difference_update(reasons)
                text += "" if reasons else command
                count += not reasons
            for pattern, shorter in SHORTER:
                text = re.sub(pattern, shorter, text)
            folder = shutil.copytree(samples, pathlib.Path(name) / place.replace(
                "/", "_"))
            for pattern in re.findall(r"\S*GLOutput_\S+", text):
                dump = folder / pattern.replace("*", "64x48_v1", 1).replace("*", "9_9")
                width, height = re.search(r"_(\d+)x(\d+)", dump.name).groups()
                dump.parent.mkdir(exist_ok=True)
                dump.write_bytes(bytes(int(width) * int(height) * 4))
            done = subprocess.run(["bash", "-euo", "pipefail", "-c", text], cwd=folder,
                                  env=environment, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT)
            if done.returncode:
                failed += 1
                print(f"{place}: {text}{done.stdout.decode(errors='replace')}")
    print(f"{count} commands, {failed} blocks failed")
    for pattern, _ in unused:
        print(f"nothing begins with {pattern}")
    return 1 if failed or unused or count < 20 else 0


sys.exit(main())
