import numpy as np
import pytest
from scipy import ndimage


@pytest.fixture(scope="session")
def smooth():
    """Numbers that go up and down over t, c, z, y and x; no side divides another."""
    noise = np.random.default_rng(1).normal(size=(2, 3, 5, 61, 83))
    return ndimage.gaussian_filter(noise, (0, 0, 0, 3, 3)) * 2000 + 500


def as_dtype(numbers, dtype):
    """Numbers as pixels of a type, limited to its range."""
    dtype = np.dtype(dtype)
    if dtype.kind in "ui":
        info = np.iinfo(dtype)
        numbers = np.clip(np.rint(numbers), info.min, min(info.max, 2**31 - 1))
    return numbers.astype(dtype)
