"""Dask arrays: the same bits for every chunking, and those of the array in memory where that is promised."""

import math
import pickle

import numpy as np
import pytest
from conftest import as_dtype
from scipy import ndimage

import orlix

dask = pytest.importorskip("dask")
da = pytest.importorskip("dask.array")

CHUNKINGS = [(1, 2, 3, 20, 30), (2, 3, 5, 61, 83), (1, 1, 2, 7, 83), (2, 3, 5, 13, 9)]

#: Verb, arguments besides the images, and the fields whose bits are those of the array in memory (None: all).
CASES = [
    ("describe", "image", {"moments": 4}, None),
    ("describe", "image mask", {"percentiles": (50,), "nan": "propagate"}, None),
    ("compare", "image other", {"peak": 100.0}, None),
    ("compare", "image other mask", {"peak": 100.0, "ssim": False}, None),
    ("regions", "labels image", {"median": True}, None),
    ("threshold", "image", {}, None),
    ("stats", "image", {}, ["nb_pixels", "min", "max"]),
    ("stats", "image mask", {}, ["nb_pixels", "min", "max"]),
    ("noise", "image", {}, ["nb_pixels"]),
    ("histogram", "image", {}, None),
    ("histogram", "image", {"classes": 7}, None),
    ("histogram", "image mask", {"min": 100, "max": 120, "bin_width": 1.5}, None),
    ("entropy", "image", {}, None),
    ("entropy", "image", {"classes": 20}, None),
    ("ncc", "image other", {}, []),
    ("pearson", "image other", {}, []),
    ("similarity", "image other", {"peak": 1000}, ["nb_pixels"]),
    ("count", "labels", {}, None),
    ("percent", "labels", {}, []),
    ("percent", "binary mask", {}, []),
    ("locate", "binary", {}, None),
    ("locate", "binary", {"limit": 9}, None),
    ("paraboloid", "image mask", {}, None),
]
WITHOUT_VOLUMES = ("entropy", "paraboloid")


def assert_same(one, other, fields=None, rtol=None):
    if hasattr(one, "_asdict"):
        one, other = one._asdict(), other._asdict()
        for name in one:
            exact = fields is None or name in fields
            assert_same(one[name], other[name], rtol=None if exact else 1e-7)
    elif isinstance(one, dict):
        assert one.keys() == other.keys()
        for name in one:
            assert_same(one[name], other[name], rtol=rtol)
    elif isinstance(one, np.ndarray) and one.dtype == object:
        assert one.shape == other.shape
        for a, b in zip(one.ravel(), other.ravel()):
            assert_same(a, b, rtol=rtol)
    elif rtol is None or one is None or isinstance(one, str):
        np.testing.assert_equal(one, other)
    else:
        np.testing.assert_allclose(one, other, rtol=rtol, atol=1e-9)


@pytest.mark.parametrize("dtype", ["uint8", "uint16", "float32"])
@pytest.mark.parametrize("verb, images, parameters, fields", CASES, ids=[f"{v}-{i}-{list(p)}" for v, i, p, _ in CASES])
def test_every_chunking(smooth, dtype, verb, images, parameters, fields):
    image = as_dtype(smooth / (8 if dtype == "uint8" else 1), dtype)
    given = {"image": image, "other": np.roll(image, 1, axis=4), "mask": smooth > 300, "binary": smooth > 700,
             "labels": ndimage.label(smooth > 700)[0].astype("uint8" if dtype == "uint8" else "int32")}
    if verb == "percent":
        given["labels"] = given["labels"].astype(np.uint16)
    names = images.split()
    mask = {"mask": names.pop()} if names[-1] == "mask" else {}
    per = ["image"] if verb == "similarity" else ["plan"] if verb in WITHOUT_VOLUMES else ["volume", "plan"]
    for covers in per:
        settings = dict(parameters) if verb in WITHOUT_VOLUMES else dict(parameters, per=covers)
        in_memory = getattr(orlix, verb)(*(given[name] for name in names), **settings,
                                         **{key: given[name] for key, name in mask.items()})
        found = []
        for chunks in CHUNKINGS[:3] if covers == "plan" else CHUNKINGS:
            lazy = {name: da.from_array(array, chunks=chunks) for name, array in given.items()}
            result = getattr(orlix, verb)(*(lazy[name] for name in names), **settings,
                                          **{key: lazy[name] for key, name in mask.items()})
            found.append(result.compute(scheduler="sync" if chunks[0] == 2 else "threads"))
        for other in found[1:]:
            assert_same(found[0], other)
        exact = fields
        if dtype != "float32" and verb in ("stats", "noise", "similarity"):  # sums of integers are exact in any order
            exact = fields + ["sum", "mean", "sum_abs_laplacian", "noise_std_dev", "sum_squared_diff", "mse"]
        assert_same(in_memory, found[0], exact)


def test_samples_are_those_of_one_plan(smooth):
    plan = smooth[0, 0, 0].astype(np.float32)
    expected = orlix.kde(plan, samples=300, seed=7, bandwidth="scott")
    for chunks in ((61, 83), (10, 17)):
        assert_same(expected, orlix.kde(da.from_array(plan, chunks=chunks), samples=300, seed=7, bandwidth="scott").compute())
    volumes = [orlix.kde(da.from_array(smooth.astype(np.float32), chunks=chunks), per="volume").compute()
               for chunks in CHUNKINGS[:3]]
    assert_same(volumes[0], volumes[1])
    assert_same(volumes[0], volumes[2])


def test_projections_are_dask_arrays(smooth):
    image = as_dtype(smooth, "uint16")
    lazy = da.from_array(image, chunks=CHUNKINGS[0])
    for axis in "xyzt":
        for stat in ("max", "median", "stddev"):
            projected = orlix.project(lazy, axis, stat, dtype=np.float32)
            expected = orlix.project(image, axis, stat, dtype=np.float32)
            assert projected.shape == expected.shape and projected.dtype == expected.dtype
            np.testing.assert_array_equal(projected.compute(), expected)


def test_axes_and_lacking_axes_of_masks(smooth):
    image = as_dtype(smooth[0], "uint16")
    lazy = da.from_array(image.transpose(1, 0, 2, 3), chunks=(2, 1, 20, 83))
    expected = orlix.describe(image, per="plan", mask=smooth[0, 0, 0] > 300)
    found = orlix.describe(lazy, axes="ZCYX", per="plan", mask=smooth[0, 0, 0] > 300).compute()
    np.testing.assert_array_equal(found.mean, expected.mean.T)
    np.testing.assert_array_equal(found.max_position, expected.max_position.transpose(1, 0, 2))
    xarray = pytest.importorskip("xarray")
    labelled = xarray.DataArray(lazy, dims=("z", "c", "y", "x"))
    assert orlix.stats(labelled).compute() == orlix.stats(lazy, axes="ZCYX").compute()


def count_reads(image, chunks):
    """A Dask array of an image, and how often each block of it was read."""
    reads = {}

    def read(block, block_id):
        reads[block_id] = reads.get(block_id, 0) + 1
        return block

    return da.from_array(image, chunks=chunks).map_blocks(read, dtype=image.dtype, meta=np.empty((0, 0), image.dtype)), reads


def test_reads_are_shared():
    image = np.random.default_rng(1).integers(0, 60000, (64, 96)).astype(np.uint16)
    lazy, reads = count_reads(image, (32, 32))
    one, other = dask.compute(orlix.describe(lazy), orlix.threshold(lazy))
    assert set(reads.values()) == {1} and len(reads) == 6
    assert (one, other) == (orlix.describe(image), orlix.threshold(image))
    lazy, reads = count_reads(image, (32, 32))
    results = orlix.measure(lazy, ["describe", "histogram", "count"])
    (results,) = dask.compute(results)
    assert set(reads.values()) == {1}
    assert_same(results["histogram"], orlix.histogram(image))
    assert_same(results["count"], orlix.count(image))
    # A further pass reads once more, rather than keeping what was read.
    lazy, reads = count_reads(image.astype(np.float32), (32, 32))
    assert orlix.threshold(lazy).compute() == orlix.threshold(image.astype(np.float32))
    assert set(reads.values()) == {2}


def test_refusals_come_at_once():
    lazy = da.zeros((40, 40), chunks=20, dtype=np.float64)
    with pytest.raises(TypeError, match="float64.*astype"):
        orlix.stats(lazy)
    lazy = lazy.astype(np.uint8)
    for error, text, call in [
        (ValueError, "percentiles is a number", lambda: orlix.describe(lazy, percentiles=(300,))),
        (ValueError, "both need the same", lambda: orlix.ncc(lazy, lazy[:20])),
        (ValueError, "the mask has the shape", lambda: orlix.stats(lazy, mask=np.ones((40, 30)))),
        (ValueError, "unknown size", lambda: orlix.stats(lazy[lazy[:, 0] > 3])),
        (TypeError, "there is no out", lambda: orlix.project(lazy, "x", "max", out=np.zeros(40))),
    ]:
        with pytest.raises(error, match=text):
            call()
    broken = lazy.astype(np.float64) + math.pi
    with pytest.raises(TypeError, match="no float32 numbers"):
        orlix.describe(broken).compute()


def test_results_are_collections(smooth):
    lazy = orlix.stats(da.from_array(as_dtype(smooth, "uint16"), chunks=(1, 1, 5, 61, 83)))
    assert "not computed yet" in repr(lazy)
    assert dask.is_dask_collection(lazy)
    assert lazy.persist().compute() == lazy.compute() == dask.delayed(lambda x: x)(lazy).compute()
    assert pickle.loads(pickle.dumps(lazy)).compute() == lazy.compute()
