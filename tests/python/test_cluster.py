"""A cluster of two workers with 1 GiB each: a volume of 6 GB, and a worker that dies in the middle."""

import os
import signal
import time

import numpy as np
import pytest

import orlix

da = pytest.importorskip("dask.array")
distributed = pytest.importorskip("distributed")
zarr = pytest.importorskip("zarr")


@pytest.fixture
def cluster():
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, memory_limit="1GiB", processes=True,
                                  dashboard_address=None) as made, distributed.Client(made):
        yield made


def write_volume(path, shape, chunk):
    """A volume of uint16 pixels: in its k-th chunk, counted slowest first, a pattern plus k."""
    volume = zarr.create_array(store=path, shape=shape, chunks=chunk, dtype="uint16")
    pattern = (np.arange(np.prod(chunk)) // 64 % 1000).astype(np.uint16).reshape(chunk)
    for k, at in enumerate(np.ndindex(*(side // step for side, step in zip(shape, chunk)))):
        volume[tuple(slice(i * step, (i + 1) * step) for i, step in zip(at, chunk))] = pattern + np.uint16(k)
    return pattern, k + 1


def test_a_volume_larger_than_memory(tmp_path, cluster):
    path = str(tmp_path / "volume.zarr")
    pattern, chunks = write_volume(path, (3072, 1024, 1024), (128, 512, 512))
    volume = da.from_zarr(path)
    assert volume.nbytes > 6e9
    results = orlix.measure(volume, {"describe": {}, "histogram": {"min": 0, "max": 1199, "classes": 12}})
    lazy = [results["describe"], results["histogram"]]
    described, histogram = (future.result() for future in distributed.get_client().compute(lazy))
    pixels = pattern.size * chunks
    assert described.nb_pixels == pixels == volume.size
    assert described.sum == int(pattern.sum(dtype=np.int64)) * chunks + pattern.size * (chunks * (chunks - 1) // 2)
    assert (described.min, described.max) == (0, 999 + chunks - 1)
    counts = np.zeros(1200, np.int64)
    of_pattern = np.bincount(pattern.ravel(), minlength=1000)
    for k in range(chunks):
        counts[k : k + 1000] += of_pattern
    np.testing.assert_array_equal(histogram.counts, counts.reshape(12, 100).sum(axis=1))
    assert described.median == np.searchsorted(np.cumsum(counts), pixels // 2, side="right")
    # The same from the file, without a cluster.
    assert orlix.describe(path) == described


def test_a_worker_that_dies(tmp_path, cluster):
    path = str(tmp_path / "volume.zarr")
    write_volume(path, (512, 512, 512), (32, 128, 128))
    volume = da.from_zarr(path).astype(np.float32) / np.float32(3)
    expected = orlix.describe(volume).compute(scheduler="threads")
    client = distributed.get_client()
    future = client.compute(orlix.describe(volume))
    begun = client.run(os.getpid)
    victim = next(iter(begun.values()))
    while not any(state == "memory" for state in client.run_on_scheduler(
            lambda dask_scheduler: [task.state for task in dask_scheduler.tasks.values()])):
        time.sleep(0.01)
    os.kill(victim, signal.SIGKILL)
    assert future.result(timeout=300) == expected
    assert victim not in client.run(os.getpid).values()
