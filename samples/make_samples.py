#!/usr/bin/env python3
"""Makes the samples beside it, the same every time (needs numpy, tifffile, imagecodecs and imageio)."""

import pathlib

import imageio.v3 as imageio
import numpy as np
import tifffile

folder = pathlib.Path(__file__).parent
random = np.random.default_rng(4)


def blur(image, sigma):
    """A Gaussian of the last two axes, whose borders repeat."""
    reach = int(4 * sigma) + 1
    kernel = np.exp(-0.5 * (np.arange(-reach, reach + 1) / sigma) ** 2)
    kernel /= kernel.sum()
    for axis in (-2, -1):
        image = np.apply_along_axis(
            lambda row: np.convolve(np.pad(row, reach, mode="edge"), kernel, mode="valid"), axis, image)
    return image


def discs(size, number, radius):
    """Labels of round cells that do not touch."""
    yy, xx = np.mgrid[:size, :size]
    labels = np.zeros((size, size), "uint8")
    while labels.max() < number:
        y, x = random.uniform(radius, size - radius, 2)
        r = random.uniform(0.6, 1) * radius
        distance = np.hypot((yy - y) * random.uniform(0.8, 1.25), xx - x)
        if not labels[distance < r + 2].any():
            labels[distance < r] = labels.max() + 1
    return labels


def save(name, image, **options):
    tifffile.imwrite(folder / name, image, compression="zlib", predictor=image.dtype != "float32", **options)


# Cells on a background that is brighter to one side, and their labels.
labels = discs(256, 40, 17)
brightness = np.concatenate([[0], random.uniform(60, 150, labels.max())])
yy, xx = np.mgrid[:256, :256]
cells = blur(brightness[labels], 1.5) + 20 + xx / 16 + random.normal(0, 5, labels.shape)
save("cells.tif", np.clip(cells, 0, 255).astype("uint8"), resolution=(20000, 20000), resolutionunit="CENTIMETER",
     metadata=None)
save("labels.tif", labels, metadata=None)

# Two channels of a volume, 0.2 x 0.2 x 0.6 um, with the noise of single photons.
z, y, x = np.mgrid[:8, :96, :96]
stack = np.zeros((2, 8, 96, 96))
for channel in range(2):
    for _ in range(12):
        at = random.uniform((1, 10, 10), (7, 86, 86))
        stack[channel] += random.uniform(100, 400) * np.exp(
            -((z - at[0]) ** 2 / 4 + ((y - at[1]) ** 2 + (x - at[2]) ** 2) / 50))
save("stack.ome.tif", random.poisson(stack + 20).astype("uint16"), photometric="minisblack",
     metadata={"axes": "CZYX", "UUID": "urn:uuid:00000000-0000-0000-0000-000000000004", "PhysicalSizeX": 0.2, "PhysicalSizeXUnit": "µm", "PhysicalSizeY": 0.2,
               "PhysicalSizeYUnit": "µm", "PhysicalSizeZ": 0.6, "PhysicalSizeZUnit": "µm",
               "Channel": {"Name": ["nuclei", "membranes"]}})

# A spot that moves and bleaches.
yy, xx = np.mgrid[:64, :64]
frames = [200 * 0.93**t * np.exp(-((yy - 20 - t) ** 2 + (xx - 16 - 1.5 * t) ** 2) / 40) + 15 for t in range(20)]
tifffile.imwrite(folder / "frames.tif", np.clip(random.normal(frames, 3), 0, 255).astype("uint8"), imagej=True,
                 metadata={"axes": "TYX", "finterval": 0.5})

# A picture in colours.
yy, xx = np.mgrid[:120, :160]
picture = np.stack([xx * 1.5, yy * 2, 255 - xx - yy / 2], -1)
picture[np.hypot(yy - 60, xx - 100) < 35] = (230, 120, 40)
imageio.imwrite(folder / "colour.png", np.clip(picture, 0, 255).astype("uint8"))

# A height in mm, measured from (0, 0), with holes where nothing was seen.
yy, xx = np.mgrid[:128, :128]
surface = 0.001 * (xx - 60.0) ** 2 + 0.0005 * (yy - 70.0) ** 2 - 0.0004 * xx * yy + random.normal(0, 0.01, xx.shape)
surface[np.hypot(yy - 30, xx - 90) < 6] = np.nan
save("surface.tif", surface.astype("float32"), metadata=None)
