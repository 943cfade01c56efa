"""Every function against NumPy, SciPy or scikit-image."""

import math

import numpy as np
import pytest
from conftest import as_dtype
from scipy import ndimage
from skimage import filters, measure, metrics

import orlix

INTEGERS = ["uint8", "int8", "uint16", "int16", "uint32", "int32"]
PER = {"image": (0, 1, 2, 3, 4), "volume": (2, 3, 4), "plan": (3, 4)}


@pytest.mark.parametrize("dtype", INTEGERS + ["float32"])
@pytest.mark.parametrize("per", PER)
def test_statistics(smooth, dtype, per):
    image = as_dtype(smooth, dtype)
    wide, axes = image.astype(np.float64), PER[per]
    for result in (orlix.stats(image, per=per), orlix.describe(image, per=per)):
        np.testing.assert_array_equal(result.nb_pixels, wide.size // np.asarray(result.mean).size)
        np.testing.assert_allclose(result.sum, wide.sum(axis=axes), rtol=1e-12)
        np.testing.assert_allclose(result.mean, wide.mean(axis=axes), rtol=1e-12)
        np.testing.assert_array_equal(result.min, image.min(axis=axes))
        np.testing.assert_array_equal(result.max, image.max(axis=axes))
        np.testing.assert_allclose(result.std_dev, wide.std(axis=axes), rtol=1e-9)
    described = orlix.describe(image, per=per, percentiles=(10, 90), moments=4)
    np.testing.assert_allclose(described.median, np.median(wide, axis=axes))
    for percent in (10, 90):
        np.testing.assert_allclose(described.percentiles[percent], np.percentile(wide, percent, axis=axes), rtol=1e-9)
    centred = wide - wide.mean(axis=axes, keepdims=True)
    np.testing.assert_allclose(
        described.skewness, (centred**3).mean(axis=axes) / wide.var(axis=axes) ** 1.5, rtol=1e-6, atol=1e-9)


def test_positions_are_x_first(smooth):
    volume = as_dtype(smooth[0, 0], "uint16")
    z, y, x = np.unravel_index(volume.argmax(), volume.shape)
    assert orlix.describe(volume).max_position == (x, y, z)
    plan = volume[2] > 900
    np.testing.assert_array_equal(orlix.locate(plan), np.argwhere(plan)[:, ::-1])
    np.testing.assert_array_equal(orlix.locate(volume > 900, per="volume"), np.argwhere(volume > 900)[:, ::-1])
    assert len(orlix.locate(plan, limit=7)) == 7


@pytest.mark.parametrize("dtype", ["uint8", "float32"])
def test_noise(dtype):
    image = as_dtype(np.random.default_rng(2).normal(100, 7, (3, 300, 200)), dtype)
    kernel = np.outer([1, -2, 1], [1, -2, 1])
    responses = [np.abs(ndimage.convolve(plan.astype(np.float64), kernel, mode="nearest")).sum() for plan in image]
    result = orlix.noise(image, per="plan")
    np.testing.assert_allclose(result.sum_abs_laplacian, responses, rtol=1e-6)
    np.testing.assert_allclose(result.noise_std_dev, math.sqrt(math.pi / 2) * np.array(responses) / (6 * 60000), rtol=1e-6)


@pytest.mark.parametrize("dtype", INTEGERS + ["float32"])
def test_histogram_and_entropy(smooth, dtype):
    image = as_dtype(smooth[0, 0], dtype)
    low, high = float(image.min()), float(image.max())
    result = orlix.histogram(image, min=low, max=high, classes=10)
    assert result.counts.sum() == image.size and len(result.edges) == 11
    if dtype == "float32":
        # Edges are rounded to single precision by the one, and not by the other.
        assert np.abs(result.counts.astype(int) - np.histogram(image, 10, (low, high))[0]).sum() <= 4
    else:
        places = np.floor((image.astype(np.int64) - low) / result.bin_width).astype(int)
        np.testing.assert_array_equal(result.counts, np.bincount(places.ravel(), minlength=10))
    if dtype in ("uint8", "int8", "uint16", "int16"):
        for plan, entropy in zip(image, orlix.entropy(image).entropy):
            share = np.unique(plan, return_counts=True)[1] / plan.size
            assert math.isclose(entropy, -(share * np.log(share)).sum())
    counts, edges = orlix.histogram(image)
    assert edges[0] == low and counts.sum() == image.size


def test_density_sample(smooth):
    image = smooth[0, 0, 0].astype(np.float32)
    sample = orlix.kde(image, samples=500, seed=3)
    assert np.isin(sample.samples, image).all()
    assert np.array_equal(sample.samples, orlix.kde(image, samples=500, seed=3).samples)
    assert not np.array_equal(sample.samples, orlix.kde(image, samples=500, seed=4).samples)
    spread = sample.samples.std(ddof=1)
    quartiles = np.subtract(*np.percentile(sample.samples, [75, 25])) / 1.34
    assert math.isclose(sample.bandwidth, 0.9 * min(spread, quartiles) * 500**-0.2, rel_tol=1e-9)
    assert math.isclose(orlix.kde(image, samples=500, seed=3, bandwidth="scott").bandwidth, spread * 500**-0.2)
    assert orlix.kde(image, bandwidth=2.5).bandwidth == 2.5


def middle(numbers, axis):
    """The median of projections: of two middle numbers the higher."""
    return np.take(np.sort(numbers, axis=axis), numbers.shape[axis] // 2, axis=axis)


STATISTICS = {"max": np.max, "min": np.min, "mean": np.mean, "median": middle, "sum": np.sum, "stddev": np.std, "var": np.var}


@pytest.mark.parametrize("stat", STATISTICS)
def test_projections(smooth, stat):
    image = as_dtype(smooth, "uint16")
    for place, axis in enumerate("tczyx"):
        if axis == "c":
            continue
        expected = STATISTICS[stat](image.astype(np.float64), axis=3 if axis == "x" else 4 if axis == "y" else place)
        kind = None if axis in "xy" else np.float32
        np.testing.assert_allclose(orlix.project(image, axis, stat, dtype=kind), expected, rtol=1e-4, atol=1e-3)
    out = np.zeros((2, 3, 61, 83), np.float32)
    assert orlix.project(image, "z", stat, out=out) is out
    turned = np.zeros((2, 3, 83, 61), np.float32).swapaxes(2, 3)
    orlix.project(image, "z", stat, out=turned)
    np.testing.assert_array_equal(turned, out)
    assert orlix.project(image, "t", "max").dtype == np.uint16


def test_pairs(smooth):
    first = as_dtype(smooth[0, 0], "uint16")
    second = np.roll(first, 2, axis=2)
    r = [np.corrcoef(a.ravel(), b.ravel())[0, 1] for a, b in zip(first, second)]
    np.testing.assert_allclose(orlix.ncc(first, second).correlation, r, rtol=1e-5)
    np.testing.assert_allclose(orlix.pearson(first, second).r, r, rtol=1e-9)
    np.testing.assert_allclose(orlix.pearson(first, second).pearson_cc, np.array(r) * 61 * 83, rtol=1e-9)
    difference = first.astype(np.float64) - second
    result = orlix.similarity(first, second, peak=1000)
    assert result.mse == (difference**2).mean()
    assert math.isclose(result.psnr, metrics.peak_signal_noise_ratio(first, second, data_range=1000))
    compared = orlix.compare(first, second, per="plan")
    np.testing.assert_allclose(compared.r, r, rtol=1e-12)
    np.testing.assert_allclose(compared.rmse, np.sqrt((difference**2).mean(axis=(1, 2))), rtol=1e-12)
    structure = [metrics.structural_similarity(a, b, data_range=65535) for a, b in zip(first, second)]
    np.testing.assert_allclose(compared.ssim, structure, rtol=1e-9)


def test_labels(smooth):
    labels, number = ndimage.label(smooth[0, 0, 0] > 700)
    image = as_dtype(smooth[0, 0, 0], "uint16")
    labels = labels.astype(np.uint16)
    assert number > 3 and orlix.count(labels).count == number
    shares = 100 * np.bincount(labels.ravel()) / labels.size
    np.testing.assert_allclose(orlix.percent(labels).values, shares)
    np.testing.assert_allclose(orlix.percent(labels > 0).values, [shares[0], 100 - shares[0]])
    table = orlix.regions(labels, image, median=True)
    for row, region in enumerate(measure.regionprops(labels, image)):
        values = image[labels == region.label]
        y0, x0, y1, x1 = region.bbox
        assert table["label"][row] == region.label and table["nb_pixels"][row] == region.area
        assert [table[f"bounding_box_{side}"][row] for side in ("x0", "y0", "x1", "y1")] == [x0, y0, x1, y1]
        np.testing.assert_allclose((table["centroid_y"][row], table["centroid_x"][row]), region.centroid)
        np.testing.assert_allclose((table["weighted_centroid_y"][row], table["weighted_centroid_x"][row]),
                                   region.centroid_weighted)
        assert math.isclose(table["mean"][row], values.mean()) and table["median"][row] == np.median(values)
        assert table["touches_border"][row] == (x0 == 0 or y0 == 0 or x1 == 83 or y1 == 61)
    with_places = orlix.regions(np.stack([labels, labels]), per="plan")
    np.testing.assert_array_equal(with_places["z"], np.repeat([0, 1], number))


def test_tables_are_taken_as_they_are(smooth):
    pandas = pytest.importorskip("pandas")
    table = pandas.DataFrame(orlix.regions((smooth[0, 0, 0] > 700).astype(np.uint8)))
    assert list(table.columns[:2]) == ["label", "nb_pixels"] and table.dtypes["touches_border"] == bool


def test_surface(smooth):
    y, x = np.mgrid[0:50, 0:70].astype(np.float64)
    image = (0.5 * x**2 - 0.25 * y**2 + 0.1 * x * y + 3 * x - 2 * y + 10).astype(np.float32)
    basis = np.stack([x**2, y**2, x * y, x, y, np.ones_like(x)], axis=-1)
    mask = x > 20
    for chosen in (None, mask):
        where = slice(None) if chosen is None else chosen
        expected = np.linalg.lstsq(basis[where].reshape(-1, 6), image[where].ravel(), rcond=None)[0]
        np.testing.assert_allclose(orlix.paraboloid(image, mask=chosen), expected, rtol=1e-3, atol=2e-3)


def test_threshold(smooth):
    image = as_dtype(smooth[0, 0, 0] / 8, "uint8")
    assert orlix.threshold(image).threshold == filters.threshold_otsu(image)
    assert orlix.threshold(image, method="mean").threshold == pytest.approx(image.mean())
    assert orlix.threshold(image, method="yen").method == "yen"


def test_nan_stays():
    image = np.array([[1, np.nan], [3, 4]], np.float32)
    assert math.isnan(orlix.stats(image).mean)
    result = orlix.describe(image)
    assert result.nb_nan == 1 and result.mean == 8 / 3
    assert math.isnan(orlix.describe(image, nan="propagate").mean)
    with pytest.raises(ValueError, match="1 pixels are NaN"):
        orlix.describe(image, nan="fail")


def test_several_measures(smooth):
    image = as_dtype(smooth[0], "uint16")
    results = orlix.measure(image, {"describe": {"percentiles": (50,)}, "noise": {}})
    assert results["describe"].percentiles == {50: np.median(image)}
    assert results["noise"] == orlix.noise(image)
    with pytest.raises(ValueError, match="compare is no measure of one image"):
        orlix.measure(image, ["compare"])
