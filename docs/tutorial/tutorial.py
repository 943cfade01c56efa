# ## A first look
#
# An image of cells, a label image that goes with it, and a stack of two channels and eight planes:

import numpy as np

import orlix

cells = orlix.open("samples/cells.tif")
labels = orlix.open("samples/labels.tif")
stack = orlix.open("samples/stack.ome.tif")
print(cells, stack, sep="\n")

# `orlix.open` reads nothing yet. Every measure takes such an image, a path, or an array:

print(orlix.stats(cells))

# `describe` gives exact numbers, and where the extremes lie (x first):

result = orlix.describe(cells, percentiles=(5, 95))
print(result.median, result.percentiles, result.max_position)

# ## Numbers per plane
#
# Per plan every value becomes an array of the axes that are left: here channels and planes.

planes = orlix.describe(stack, per="plan")
print(stack.axes, planes.mean.shape)
print(planes.mean.round(1))

import matplotlib.pyplot as plt

figure, axes = plt.subplots(figsize=(6, 3), layout="constrained")
for channel, (mean, spread) in enumerate(zip(planes.mean, planes.std_dev)):
    axes.errorbar(range(8), mean, spread, capsize=3, label=f"channel {channel}")
axes.set(xlabel="plane", ylabel="mean and deviation (grey levels)")
axes.legend()
# FIGURE planes.png: Mean and deviation of every plane, a line for each channel.

# ## Histogram and threshold

histogram = orlix.histogram(cells, classes=64)
otsu = orlix.threshold(cells).threshold
figure, axes = plt.subplots(figsize=(6, 3), layout="constrained")
axes.stairs(*histogram, fill=True)
axes.axvline(otsu, color="tab:red", label=f"Otsu: {otsu:g}")
axes.set(xlabel="grey level", ylabel="pixels")
axes.legend()
# FIGURE histogram.png: The histogram of the cells, with Otsu's threshold.

share = orlix.percent(np.asarray(cells) > otsu).values[1]
print(f"{share:.1f} % of the pixels are above {otsu:g}")

# ## Regions
#
# A row for every label, as columns that pandas or polars take as they are:

table = orlix.regions(labels, cells)
largest = np.argmax(table["nb_pixels"])
print(len(table["label"]), "regions; the largest:", {name: column[largest].item() for name, column in table.items()
                                                    if name in ("label", "nb_pixels", "mean", "centroid_x")})

figure, axes = plt.subplots(figsize=(5, 5), layout="constrained")
axes.imshow(np.asarray(cells), cmap="gray")
axes.scatter(table["centroid_x"], table["centroid_y"], s=table["nb_pixels"] / 10, c=table["mean"], alpha=0.7)
axes.set_axis_off()
# FIGURE regions.png: The cells, with a dot at the centroid of every region: its size by area, its colour by mean.

# ## Projections

flat = orlix.project(stack, "z", "max")
print(flat.shape, flat.dtype)
figure, both = plt.subplots(1, 2, figsize=(6, 3), layout="constrained")
for channel, axes in enumerate(both):
    axes.imshow(flat[channel], cmap="viridis", vmax=np.percentile(flat[channel], 99))
    axes.set(title=f"channel {channel}", xticks=[], yticks=[])
# FIGURE projection.png: The maximum over the planes of both channels.

# ## Larger than memory, and in pieces
#
# A file is read piece by piece, so its size does not matter. Nor does it matter how an array is cut: pieces become
# states, which merge to the same bits.

halves = [orlix.State("describe").add(stack[:, z : z + 4], axes="CZYX", offset=(0, z, 0, 0)) for z in (0, 4)]
print(halves[1].merge(halves[0]).finish() == orlix.describe(stack))

# Over Dask the same happens by itself, on threads, processes or a cluster:

import dask.array as da

lazy = da.from_array(stack, chunks=(1, 3, 50, 50))
print(orlix.describe(lazy).compute() == orlix.describe(stack))
