"""Draws the demo scene, focused from near to far, into focus_sweep.png.

Run it as a whole, or cell by cell in an editor that knows `# %%`. It needs
Pillow and matplotlib. SWEEP_SCENE names another folder with scene.png and
disparity.png, SWEEP_WIDTH the width to render.
"""

# %% The scene: a picture, and disparities, which have a size of their own
import os
import subprocess
import tempfile
from pathlib import Path

import matplotlib.pyplot as plt
import numpy as np
import zuqel
from PIL import Image

width = int(os.environ.get("SWEEP_WIDTH", "1280"))
with tempfile.TemporaryDirectory() as made:
    folder = os.environ.get("SWEEP_SCENE", made)
    if folder == made:
        subprocess.run([zuqel.find_program(), "demo", "-o", folder], check=True,
                       stdout=subprocess.DEVNULL)
    picture = Image.open(Path(folder) / "scene.png").convert("RGB")
    picture = np.array(picture.resize((width, width * 3 // 4)))
    disparity = np.array(Image.open(Path(folder) / "disparity.png"))
    disparity = disparity.astype(np.uint16)
height = len(picture)
depth_size = disparity.shape[1], disparity.shape[0]

# %% What to focus on, in parts of the width and height
points = {"vase": (0.31, 0.76), "oranges": (0.79, 0.72), "pot": (0.685, 0.62),
          "cup": (0.52, 0.63), "town": (0.75, 0.40)}


def at(point, size):
    return int(point[0] * size[0]), int(point[1] * size[1])


# %% One session: for each point, the weights of the blur and a frame from them
frames, maps = [], []
with zuqel.Session((width, height), depth_size) as session:
    for point in points.values():
        weights = session.refocus_map(disparity, at(point, depth_size), "gpu")
        maps.append(weights)
        frames.append(session.frame(rgb=picture, weights=weights,
                                    focus=at(point, (width, height))))


# %% How much of the source's detail each frame keeps around each point
def detail(image, point):
    x, y = at(point, (width, height))
    side = width // 20
    luma, _ = zuqel.to_nv21(image)
    part = luma[max(y - side, 0):y + side, max(x - side, 0):x + side]
    return np.abs(np.diff(part.astype(float), axis=1)).mean()


kept = [[100 * detail(frame, point) / detail(picture, point)
         for point in points.values()] for frame in frames]

# %% The figure
figure = plt.figure(figsize=(16, 4.2), layout="constrained")
grid = figure.add_gridspec(2, len(points) + 2)
for column, (name, point) in enumerate(points.items()):
    top = figure.add_subplot(grid[0, column])
    top.imshow(frames[column])
    top.plot(*at(point, (width, height)), "+", color="white", markersize=12)
    top.set_title(f"focus: {name}")
    bottom = figure.add_subplot(grid[1, column])
    bottom.imshow(maps[column], cmap="gray", vmin=0, vmax=255)
    bottom.set_title("weights: white is blurred")
    for axes in top, bottom:
        axes.set_axis_off()
axes = figure.add_subplot(grid[:, len(points):])
axes.imshow(kept, cmap="viridis", vmin=0, vmax=100)
for row, values in enumerate(kept):
    for column, value in enumerate(values):
        axes.text(column, row, f"{value:.0f}", ha="center", va="center",
                  color="white" if value < 60 else "black")
axes.set_xticks(range(len(points)), points)
axes.set_yticks(range(len(points)), points)
axes.set(title="detail kept, %", xlabel="at", ylabel="focus")
figure.savefig("focus_sweep.png", dpi=100)
