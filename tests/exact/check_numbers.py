#!/usr/bin/env python3
"""Compares the numbers of describe, compare, regions and threshold with those of NumPy, SciPy, scikit-image and exact
fractions, on samples and made images, whole and in merged pieces: check_numbers.py ORLIX SAMPLES"""

import json
import math
import os
import subprocess
import sys
import tempfile
import warnings
from fractions import Fraction

import numpy as np
import skimage.filters
import tifffile
from scipy import ndimage
from skimage.measure import regionprops
from skimage.metrics import normalized_mutual_information, structural_similarity

ORLIX, SAMPLES = (os.path.abspath(path) for path in sys.argv[1:3])
warnings.simplefilter("ignore")
random = np.random.default_rng(11)
faults = []
checks = 0


def run(*arguments):
    result = subprocess.run([ORLIX, *map(str, arguments)], capture_output=True, text=True)
    if result.returncode:
        raise RuntimeError(f"{arguments}: {result.stderr}")
    return result.stdout


def measure(*arguments):
    return json.loads(run(*arguments, "--json", "--quiet"))["results"]


def check(name, holds):
    global checks
    checks += 1
    if not holds:
        faults.append(name)


def near(name, found, expected, relative=1e-12):
    check(f"{name}: {found}, not {expected}", abs(found - expected) <= relative * max(1, abs(expected)))


def nearest(name, found, exact):
    """No double is nearer."""
    error = abs(Fraction(found) - exact)
    others = [math.nextafter(found, math.inf), math.nextafter(found, -math.inf)]
    check(f"{name}: {found}, not {float(exact)}", all(error <= abs(Fraction(o) - exact) for o in others))


def save(name, pixels):
    np.save(name, pixels)
    return name


def check_describe(name, pixels):
    path = save("pixels.npy", pixels)
    wanted = [0, 2.5, 50, 97.3, 100]
    result = measure("describe", path, "--percentiles", ",".join(map(str, wanted)))[0]
    exact = [Fraction(float(x)) for x in pixels.ravel()]
    total = sum(exact)
    nearest(f"{name} sum", result["Sum"], total)
    nearest(f"{name} mean", result["Mean"], total / len(exact))
    nearest(f"{name} variance", result["Variance"], sum(x * x for x in exact) / len(exact) - (total / len(exact)) ** 2)
    expected = np.percentile(pixels.astype(float), wanted)
    check(f"{name} percentiles", [p["value"] for p in result["Percentiles"]] == expected.tolist())
    at = [int(i) for i in np.unravel_index(pixels.argmax(), pixels.shape)][::-1]
    check(f"{name} maximum", result["MaxPosition"] == at and result["Max"] == pixels.max())


def check_compare(name, first, second, peak):
    paths = save("a.npy", first), save("b.npy", second)
    a, b = first.astype(float), second.astype(float)
    result = measure("compare", *paths, "--peak", peak, "--bins", 100)[0]
    near(f"{name} SSIM", result["SSIM"], structural_similarity(a, b, data_range=peak))
    near(f"{name} NMI", result["NMI"], normalized_mutual_information(a, b, bins=100))
    near(f"{name} r", result["r"], np.corrcoef(a.ravel(), b.ravel())[0, 1])
    gaussian = measure("compare", *paths, "--peak", peak, "--window", "gaussian", "--no-sample-covariance")[0]
    expected = structural_similarity(a, b, data_range=peak, gaussian_weights=True, use_sample_covariance=False)
    near(f"{name} Gaussian SSIM", gaussian["SSIM"], expected)


def check_regions(labels, image, kind):
    rows = measure("regions", save("l.npy", labels), save("i.npy", image), "--median", *kind)
    regions = regionprops(labels, image)
    check("labels", [row["Label"] for row in rows] == [region.label for region in regions])
    for row, region in zip(rows, regions):
        name = f"region {region.label}"
        axes = labels.ndim
        check(f"{name} box", row["BoundingBox"] == [*region.bbox[:axes][::-1], *region.bbox[axes:][::-1]])
        for found, expected in zip(row["Centroid"], region.centroid[::-1]):
            near(f"{name} centroid", found, expected)
        for found, expected in zip(row["WeightedCentroid"], region.centroid_weighted[::-1]):
            near(f"{name} weighted centroid", found, expected, 1e-6)
    for field, function in (("Mean", ndimage.mean), ("StdDev", ndimage.standard_deviation), ("Min", ndimage.minimum),
                            ("Max", ndimage.maximum), ("Median", ndimage.median), ("Sum", ndimage.sum_labels)):
        for row, expected in zip(rows, function(image.astype(float), labels, [row["Label"] for row in rows])):
            near(f"region {row['Label']} {field}", row[field], expected, 1e-10)


def check_threshold(name, pixels, relative):
    path = save("pixels.npy", pixels)
    for method in ("otsu", "triangle", "isodata", "li", "yen", "mean"):
        expected = float(getattr(skimage.filters, "threshold_" + method)(pixels.copy()))
        near(f"{name} {method}", measure("threshold", path, "--method", method)[0]["Threshold"], expected, relative)


def check_pieces(verb, paths, options, passes):
    """A job array: each piece in a process of its own, pass by pass."""
    whole = measure(verb, *paths, *options)
    state = None
    for last in range(passes):
        pieces = []
        for i, (x, y) in enumerate((x, y) for x in ("0:50", "50:70", "70:") for y in (":33", "33:")):
            pieces.append(f"piece{i}.state")
            how = ["--next-pass", state] if state else options
            run(verb, *paths, *how, "--region", f"{x},{y}", "--save-state", pieces[-1])
        state = f"pass{last}.state"
        run("merge", *pieces, "--save-state", state)
    check(f"{verb} in pieces", measure("merge", state) == whole)


def main():
    sample = {name: os.path.join(SAMPLES, name + ".tif") for name in ("cells", "labels", "surface")}
    cells, labels = tifffile.imread(sample["cells"]), tifffile.imread(sample["labels"])
    surface = np.nan_to_num(tifffile.imread(sample["surface"]))
    check_describe("cells", cells)
    check_describe("surface", surface)
    check_describe("far from zero", (1e6 + random.random((90, 100))).astype(np.float32))
    check_describe("large numbers", random.integers(2**32 - 100, 2**32, (90, 100), dtype=np.uint32))
    noisy = np.clip(cells + random.normal(0, 9, cells.shape), 0, 255)
    check_compare("cells", cells, noisy.astype(np.uint8), 255)
    check_compare("16 bits", cells.astype(np.uint16) * 200, (noisy * 200).astype(np.uint16), 65535)
    check_compare("floats", noisy.astype(np.float32), cells.astype(np.int16), 200)
    check_regions(labels, cells, [])
    check_regions(np.stack([labels, labels // 2]).astype(np.int32) * 50021, random.random((2, *labels.shape)).astype("f4"),
                  ["--per", "volume"])
    check_threshold("cells", cells, 0)
    check_threshold("16 bits", cells.astype(np.uint16) * 77, 1e-12)
    check_threshold("floats", noisy.astype(np.float32), 1e-5)
    check_pieces("describe", [sample["cells"]], ["--moments", "4"], 1)
    check_pieces("describe", [sample["surface"]], ["--percentiles", "3,50"], 2)
    check_pieces("compare", [sample["cells"], sample["labels"]], ["--window-size", "9"], 1)
    check_pieces("regions", [sample["labels"], sample["cells"]], ["--median"], 1)
    check_pieces("threshold", [sample["surface"]], [], 2)
    check_pieces("histogram", [sample["cells"]], ["--min", "0", "--max", "255", "--classes", "16"], 1)
    print("\n".join(faults) or f"{checks} numbers are as they should be")
    sys.exit(1 if faults else 0)


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    main()
