"""What an array may be: strides, axes, types, masks, files, refusals; and what looks at it while it is measured."""

import asyncio
import ctypes
import gc
import os
import pickle
import resource
import signal
import threading
import time

import numpy as np
import pytest
from conftest import as_dtype

import orlix


@pytest.fixture
def image(smooth):
    return as_dtype(smooth, "uint16")


VIEWS = {
    "backwards": lambda a: a[::-1, :, ::-1, ::-1],
    "every second": lambda a: a[:, :, ::2, 1::3],
    "a part": lambda a: a[:, 1:, 2:4, 5:50, 7:31],
    "every second column": lambda a: a[..., ::2],
    "columns backwards": lambda a: a[..., ::-1],
    "foreign order": lambda a: a.astype(a.dtype.newbyteorder()),
    "Fortran": np.asfortranarray,
    "read-only": lambda a: np.frombuffer(a.tobytes(), a.dtype).reshape(a.shape),
    "off its alignment": lambda a: np.frombuffer(b"x" + a.tobytes(), np.uint8)[1:].view(a.dtype).reshape(a.shape),
    "repeated": lambda a: np.broadcast_to(a[:1, :, :1], a.shape),
}


@pytest.mark.parametrize("view", VIEWS)
@pytest.mark.parametrize("verb", ["stats", "describe", "noise", "histogram"])
def test_any_strides(image, view, verb):
    seen = VIEWS[view](image)
    found, expected = (getattr(orlix, verb)(a, per="volume") for a in (seen, np.array(seen, np.uint16, order="C")))
    for one, other in zip(found, expected):
        np.testing.assert_equal(one, other)


def test_any_axes(image):
    expected = orlix.stats(image, per="plan")
    turned = image.transpose(2, 3, 0, 4, 1)
    np.testing.assert_array_equal(orlix.stats(turned, axes="zytxc", per="plane").mean, expected.mean.transpose(2, 0, 1))
    assert orlix.stats(image[0, 0, 0].T, axes="XY").mean == expected.mean[0, 0, 0]
    assert orlix.stats(image[0, 0, 0, 0], axes="X").nb_pixels == 83
    assert orlix.stats(image[:, 0], axes="TZYX", per="volume").mean.shape == (2,)
    assert orlix.stats(image[0], per="volume").mean.shape == (3,)
    assert orlix.histogram(image, classes=4, per="volume").counts.shape == (2, 3, 4)
    assert orlix.describe(image, per="plan").max_position.shape == (2, 3, 5, 2)


def test_whatever_looks_like_an_array(image, tmp_path):
    plan = image[0, 0, 0]
    expected = orlix.stats(plan)
    plan.tofile(tmp_path / "plan.raw")
    mapped = np.memmap(tmp_path / "plan.raw", np.uint16, "r", shape=plan.shape)
    buffer = (ctypes.c_uint16 * plan.size).from_buffer_copy(plan.tobytes())

    class Exchanged:
        def __dlpack__(self, **options):
            return plan.__dlpack__()

        def __dlpack_device__(self):
            return plan.__dlpack_device__()

    class Sliced:
        """Read by slices, as an array of a file."""

        shape, dtype, chunks = plan.shape, plan.dtype, (16, 32)
        largest = 0

        def __getitem__(self, places):
            part = plan[places]
            self.largest = max(self.largest, part.size)
            return part

    for given in (mapped, memoryview(buffer).cast("B").cast("H", plan.shape), Exchanged(), Sliced()):
        assert orlix.stats(given) == expected
    xarray = pytest.importorskip("xarray")
    labelled = xarray.DataArray(image[0].transpose(1, 0, 2, 3), dims=("z", "channel", "y", "x"))
    np.testing.assert_array_equal(orlix.stats(labelled, per="volume").mean, orlix.stats(image[0], per="volume").mean)
    with pytest.raises(ValueError, match="the dimensions depth are no axes"):
        orlix.stats(xarray.DataArray(image[0, 0], dims=("depth", "y", "x")))


def test_binary_images(image):
    binary = image > 500
    assert orlix.stats(binary).mean == pytest.approx(binary.mean())
    assert orlix.describe(binary).max == 1
    assert orlix.locate(binary[0, 0, 0]).shape == (binary[0, 0, 0].sum(), 2)
    assert [len(each) for each in orlix.locate(binary[0, 0])] == binary[0, 0].sum(axis=(1, 2)).tolist()


@pytest.mark.parametrize("dtype", ["bool", "uint8", "int32", "float32", "float64"])
def test_masks(image, dtype):
    mask = np.where(image > 500, 3, 0).astype(dtype)
    assert orlix.stats(image, mask=mask).sum == image[mask != 0].sum()
    plan = mask[0, 0, 0]
    assert orlix.describe(image, mask=plan).sum == image[:, :, :, plan != 0].sum()
    assert orlix.stats(image, mask=mask[0, 0]).sum == image[:, :, mask[0, 0] != 0].sum()
    assert orlix.stats(image[::-1], mask=mask[::-1, ..., ::1]).sum == image[mask != 0].sum()


def test_wide_floats(smooth):
    exact = smooth.astype(np.float32).astype(np.float64)
    for function, arrays in ((orlix.describe, [exact]), (orlix.compare, [exact, exact[..., ::-1]])):
        found, expected = (function(*given, **({"peak": 1.0} if len(arrays) > 1 else {}))
                           for given in (arrays, [a.astype(np.float32) for a in arrays]))
        assert found == expected
    labels = (exact > 600).astype(np.uint8)
    assert orlix.regions(labels, exact)["sum"][0] == orlix.regions(labels, exact.astype(np.float32))["sum"][0]
    with pytest.raises(TypeError, match=r"no float32 numbers.*astype\(numpy.float32\)"):
        orlix.describe(smooth)


REFUSED = [
    (TypeError, r"float64.*image.astype\(numpy.float32\)", lambda a: orlix.stats(a.astype(np.float64))),
    (TypeError, r"float16.*image.astype\(numpy.float32\)", lambda a: orlix.noise(a.astype(np.float16))),
    (TypeError, r"int64.*image.astype\(numpy.int32\)", lambda a: orlix.describe(a.astype(np.int64))),
    (TypeError, r"uint64.*image.astype\(numpy.uint32\)", lambda a: orlix.stats(a.astype(np.uint64))),
    (TypeError, "complex128 are not measured", lambda a: orlix.stats(a.astype(complex))),
    (TypeError, "datetime64.*not measured", lambda a: orlix.stats(a.astype("M8[s]"))),
    (TypeError, "it is uint16, and locate takes a binary image: pass an array of bool", orlix.locate),
    (TypeError, "it is float32, and count takes uint8", lambda a: orlix.count(a.astype(np.float32))),
    (TypeError, "both need the same pixel type", lambda a: orlix.similarity(a, a.astype(np.uint8))),
    (ValueError, "0 dimensions has no axes by itself", lambda a: orlix.stats(a[0, 0, 0, 0, 0])),
    (ValueError, "6 dimensions has no axes by itself", lambda a: orlix.stats(a[None])),
    (ValueError, 'axes is "ZYX", but the array has 5', lambda a: orlix.stats(a, axes="ZYX")),
    (ValueError, "letters of TCZYX, each of them once", lambda a: orlix.stats(a, axes="TCZZX")),
    (ValueError, "there is no X", lambda a: orlix.stats(a[0, 0, 0], axes="TY")),
    (ValueError, "stats takes per=image or plan or volume, not row", lambda a: orlix.stats(a, per="row")),
    (ValueError, "count takes per=plan or volume, not image", lambda a: orlix.count(a, per="image")),
    (ValueError, "the mask has 82 x 61", lambda a: orlix.stats(a, mask=a[..., :-1])),
    (ValueError, "min and max go together", lambda a: orlix.histogram(a, min=3)),
    (ValueError, "uint16 pixels lie from 0 to 65535", lambda a: orlix.histogram(a, min=-1, max=9)),
    (ValueError, "definition is one of linear, lower, higher, nearest, not 'middle'",
     lambda a: orlix.describe(a, definition="middle")),
    (ValueError, "percentiles is a number from 0 to 100, not", lambda a: orlix.describe(a, percentiles=(5, 101))),
    (ValueError, "samples is a whole number", lambda a: orlix.kde(a, samples=2.5)),
    (TypeError, "ssim is True or False, not 1", lambda a: orlix.compare(a, a, ssim=1)),
    (TypeError, "unexpected keyword argument 'ddoff'", lambda a: orlix.describe(a, ddoff=1)),
    (ValueError, "axis is one of x, y, z, t", lambda a: orlix.project(a, "c", "max")),
    (ValueError, "there is no t to project along", lambda a: orlix.project(a[0], "t", "max")),
    (ValueError, "stat is one of max, mean", lambda a: orlix.project(a, "z", "mode")),
    (ValueError, r"out has the shape \(3,\)", lambda a: orlix.project(a, "z", "max", out=np.zeros(3))),
    (ValueError, "both need the same|size|geometry", lambda a: orlix.ncc(a, a[..., :-1])),
    (OSError, "no-such-file.tif", lambda a: orlix.stats("no-such-file.tif")),
]


@pytest.mark.parametrize("error, text, call", REFUSED, ids=[text for _, text, _ in REFUSED])
def test_refusals(image, error, text, call):
    with pytest.raises(error, match=text):
        call(image)


def test_an_array_on_a_gpu(image):
    class OnGpu:
        __cuda_array_interface__ = {"shape": (4, 4), "typestr": "<u2", "data": (4096, True), "version": 3}

    with pytest.raises(ValueError, match="GPU"):
        orlix.noise(OnGpu())


def test_empty_arrays():
    for shape in ((0, 5), (5, 0), (0, 4, 4)):
        result = orlix.stats(np.zeros(shape, np.uint8))
        assert result.nb_pixels == 0 and np.isnan(result.mean)
        assert orlix.describe(np.zeros(shape, np.uint8)).nb_pixels == 0
    assert len(orlix.regions(np.zeros((0, 5), np.uint8))["label"]) == 0
    assert orlix.stats(np.zeros((0, 4, 4), np.uint8), per="plan").mean.shape == (0,)


def test_results_are_frozen_records(image):
    for result in (orlix.stats(image), orlix.stats(image, per="plan"), orlix.histogram(image), orlix.describe(image)):
        again = pickle.loads(pickle.dumps(result))
        assert type(again) is type(result)
        for one, other in zip(result._asdict().values(), again._asdict().values()):
            np.testing.assert_equal(one, other)
        with pytest.raises(AttributeError):
            result.mean = 3
        assert "<table>" in result._repr_html_() and type(result).__name__ in repr(result)
    histogram = pickle.loads(pickle.dumps(orlix.histogram(image)))
    assert len([*histogram]) == 2 and histogram.bin_width == orlix.histogram(image).bin_width


def test_files(tmp_path):
    stack = orlix.open("samples/stack.ome.tif")
    assert (stack.axes, stack.shape, stack.dtype) == ("CZYX", (2, 8, 96, 96), np.uint16)
    whole = np.asarray(stack)
    for places in (np.s_[0], np.s_[1, 2:5], np.s_[..., 3], np.s_[-1, ::-2, 5:50:7, 90:2:-11], np.s_[:, 4:4]):
        np.testing.assert_array_equal(stack[places], whole[places])
    assert orlix.describe(stack) == orlix.describe(whole) == orlix.describe("samples/stack.ome.tif")
    np.testing.assert_array_equal(orlix.stats(stack, per="volume").mean, whole.mean(axis=(1, 2, 3)))
    np.testing.assert_array_equal(orlix.project(stack, "z", "max"), whole.max(axis=1))
    np.testing.assert_array_equal(pickle.loads(pickle.dumps(stack))[0, 0], whole[0, 0])
    mask = whole[0, 0] > 30
    np.save(tmp_path / "mask.npy", mask)
    assert orlix.stats(stack, mask=tmp_path / "mask.npy").sum == whole[:, :, mask].sum()
    with pytest.raises(IndexError, match="out of the 8 of axis Z"):
        stack[0, 8]
    with pytest.raises(ValueError, match="has the axes CZYX, not TZYX"):
        orlix.stats(stack, axes="TZYX")


def test_states_merge_and_pickle(smooth):
    image = smooth[0, 0].astype(np.float32)
    mask = image > 400
    whole = orlix.describe(image, mask=mask)
    found = None
    while found is None or found.next_pass():
        pieces = []
        for y in range(0, 61, 20):
            state = orlix.State("describe") if found is None else found.copy()
            state.add(image[:, y : y + 20], mask=mask[:, y : y + 20], offset=(0, y, 0))
            pieces.append(pickle.loads(pickle.dumps(state)))
        found = pieces.pop()
        for piece in pieces:
            found.merge(piece)
    assert found.finish() == whole
    with pytest.raises(ValueError, match="this one is of threshold"):
        orlix.State("describe").merge(orlix.State("threshold"))
    margin = orlix.State("compare", bins=0).margin
    first, second = (smooth[i, 0, 0].astype(np.float32) for i in (0, 1))
    parts = []
    for y in range(0, 61, 30):
        low, high = max(0, y - margin), min(61, y + 30 + margin)
        parts.append(orlix.State("compare", bins=0, peak=1.0).add(
            first[low:high], second[low:high], offset=(low, 0), core=(slice(y, min(61, y + 30)), slice(0, 83))))
    assert parts[2].merge(parts[0]).merge(parts[1]).finish() == orlix.compare(first, second, bins=0, peak=1.0)


def large():
    return np.broadcast_to(np.arange(4096, dtype=np.float32), (600, 2048, 4096))


def test_threads_and_asyncio_overlap():
    """Another thread of Python goes on while a measure runs."""
    runs = threading.Thread(target=orlix.describe, args=(large()[:150],))
    ticks = 0
    runs.start()
    while runs.is_alive():
        ticks += 1
        time.sleep(0.001)
    assert ticks > 20

    async def both():
        return await asyncio.gather(*(asyncio.to_thread(orlix.stats, large()[:20]) for _ in range(2)))

    one, other = asyncio.run(both())
    assert one == other == orlix.stats(large()[:20])


def test_interruption():
    ended = []

    def interrupt():
        time.sleep(0.3)
        ended.append(time.perf_counter())
        os.kill(os.getpid(), signal.SIGINT)

    old = signal.signal(signal.SIGINT, signal.default_int_handler)
    try:
        for function in (orlix.describe, orlix.noise):
            sender = threading.Thread(target=interrupt)
            sender.start()
            with pytest.raises(KeyboardInterrupt):
                while True:
                    function(large())
            sender.join()
        assert orlix.stats(large()[:2]).max == 4095  # and goes on
    finally:
        signal.signal(signal.SIGINT, old)


def test_progress(capsys):
    shares = []
    orlix.describe(large()[:60], progress=shares.append)
    assert shares == sorted(shares) and shares[-1] == 1
    with pytest.raises(ZeroDivisionError):
        orlix.describe(large()[:60], progress=lambda share: 1 / 0)
    pytest.importorskip("tqdm")
    orlix.stats(large()[:10], progress=True)
    assert "stats" in capsys.readouterr().err


def test_nothing_leaks():
    """Many calls, of those that succeed and those that fail, take no memory."""
    plan = np.arange(1024, dtype=np.uint8).reshape(32, 32)
    strided, wide = plan[:, ::2], plan.astype(np.float64)
    calls = [lambda: orlix.stats(plan), lambda: orlix.stats(strided), lambda: orlix.histogram(plan),
             lambda: orlix.describe(wide, per="plan"), lambda: orlix.regions(plan), lambda: orlix.stats(plan, mask=plan > 3),
             lambda: pytest.raises(TypeError, orlix.stats, wide)]

    def run(times):
        for _ in range(times):
            for call in calls[:3]:
                call()
        for _ in range(times // 20):
            for call in calls:
                call()
        gc.collect()
        return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss

    before = run(2000)
    assert run(33000) - before < 8 << 10  # KiB: less than 90 bytes a call
