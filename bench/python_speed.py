#!/usr/bin/env python3
"""The Python package beside NumPy and Dask, as ratios of the best of interleaved rounds: python_speed.py [GIB]

GIB is the size of the array that is measured over Dask (default 1). dask-image is compared with where it is installed.
"""

import resource
import subprocess
import sys
import time

import dask
import dask.array as da
import numpy as np

import orlix


def best(rounds, **functions):
    """The shortest time of each function in seconds."""
    times = {name: [] for name in functions}
    for _ in range(rounds):
        for name, function in functions.items():
            begin = time.perf_counter()
            function()
            times[name].append(time.perf_counter() - begin)
    return {name: min(each) for name, each in times.items()}


def make_image(shape, dtype):
    plane = np.random.default_rng(1).integers(5, 250, shape[1:]).astype(dtype)
    image = np.empty(shape, dtype)
    for z in range(shape[0]):
        np.add(np.roll(plane, 7 * z, axis=1), z % 3, out=image[z], casting="unsafe")
    return image


def compare_with_numpy():
    for dtype in ("uint8", "uint16", "float32"):
        image = make_image((128, 512, 512), dtype)
        before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
        orlix.stats(image)
        grown = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before
        found = best(9, orlix=lambda: orlix.stats(image), numpy=lambda: (image.min(), image.max(), image.mean(), image.std()))
        print(f"stats {dtype}: {1e3 * found['orlix']:.2f} ms, NumPy {1e3 * found['numpy']:.1f} ms: "
              f"{found['numpy'] / found['orlix']:.0f} x; memory grew by {grown} KiB")
    small = make_image((1, 64, 64), "uint8")[0]
    found = best(5, stats=lambda: [orlix.stats(small) for _ in range(1000)],
                 describe=lambda: [orlix.describe(small) for _ in range(1000)])
    print("64 x 64:", ", ".join(f"{name} {1e3 * seconds:.1f} us" for name, seconds in found.items()))


def compare_with_dask(gib):
    for dtype in ("uint8", "uint16", "float32"):
        planes = int(gib * 2**30) // (np.dtype(dtype).itemsize << 20) // 16 * 16
        image = make_image((planes, 1024, 1024), dtype)
        lazy = da.from_array(image, chunks=(planes // 16, 1024, 1024))
        found = best(
            5, stats=lambda: orlix.stats(image), describe=lambda: orlix.describe(image, percentiles=()),
            lazy_stats=lambda: orlix.stats(lazy).compute(),
            lazy_describe=lambda: orlix.describe(lazy, percentiles=()).compute(),
            dask=lambda: dask.compute(lazy.mean(), lazy.std(), lazy.min(), lazy.max()))
        print(f"over Dask, {dtype}, {planes} planes of 1 Mi pixels: describe {found['describe'] / found['lazy_describe']:.2f} and stats "
              f"{found['stats'] / found['lazy_stats']:.2f} of the speed in one piece; "
              f"stats {found['dask'] / found['lazy_stats']:.0f} x Dask's own")


def compare_regions():
    try:
        import dask_image.ndmeasure as peer
    except ImportError:
        print("regions: dask-image is not installed")
        return
    image = make_image((16, 1024, 1024), "uint16")
    cells = np.add.outer(np.arange(1024) // 32 * 32, np.arange(1024) // 32).astype(np.int32) + 1
    labels = np.broadcast_to(cells, image.shape).copy()
    lazy, lazy_labels = (da.from_array(each, chunks=(4, 1024, 1024)) for each in (image, labels))
    index = np.arange(1, 101)

    def theirs():
        dask.compute(peer.mean(lazy, lazy_labels, index), peer.standard_deviation(lazy, lazy_labels, index),
                     peer.minimum(lazy, lazy_labels, index), peer.maximum(lazy, lazy_labels, index),
                     peer.center_of_mass(lazy, lazy_labels, index), peer.area(lazy, lazy_labels, index))

    found = best(1, orlix=lambda: orlix.regions(lazy_labels, lazy).compute(), peer=theirs)
    print(f"regions, 1024 of them: {1e3 * found['orlix']:.0f} ms; dask-image, of the first 100: {1e3 * found['peer']:.0f} ms: "
          f"{found['peer'] / found['orlix']:.0f} x")


def time_import():
    code = "import time; t = time.perf_counter(); import orlix; print(time.perf_counter() - t)"
    times = [float(subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, check=True).stdout)
             for _ in range(5)]
    print(f"import orlix, NumPy included: {1e3 * min(times):.0f} ms")


time_import()
compare_with_numpy()
compare_regions()
compare_with_dask(float(sys.argv[1]) if len(sys.argv) > 1 else 1)
