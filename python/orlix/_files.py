"""Images in files, seen as arrays that are read when they are needed."""

import os

import numpy as np

from . import _core


class Image:
    """An image in a file, as an array that is read when it is needed.

    It has a ``shape``, a ``dtype``, ``axes``, and what is sliced of it is a NumPy array. Every measure takes it, and
    reads it piece by piece. It pickles, as what it is opened with. Made by :func:`orlix.open`.
    """

    __slots__ = ("_file", "_arguments", "shape", "dtype")

    def __init__(self, path, axes=None, pages=None, series=None, scaled=False):
        self._arguments = (os.fspath(path), axes, pages, series, scaled)
        self._file = _core.FileImage(self._arguments[0], axes or "", pages or "", series, scaled)
        self.shape = self._file.shape
        self.dtype = np.dtype(self._file.facts["dtype"])

    @property
    def axes(self):
        """The axes that the image has, slowest first, as ``"ZYX"``."""
        return self._file.axes

    @property
    def path(self):
        return self._arguments[0]

    @property
    def pixel_size(self):
        """The size of a pixel along x, y and z, as far as the file tells, in :attr:`unit`."""
        return dict(self._file.facts["pixel_size"])

    @property
    def unit(self):
        return self._file.facts["unit"]

    @property
    def series(self):
        """The images that the file holds, a line each; empty where this is the only one."""
        return list(self._file.facts["series"])

    @property
    def chunks(self):
        """What is decoded together along each axis."""
        block = dict(zip("TCZYX", self._file.facts["block"]))
        return tuple(min(block[axis], side) for axis, side in zip(self.axes, self.shape))

    @property
    def ndim(self):
        return len(self.shape)

    @property
    def size(self):
        return int(np.prod(self.shape))

    @property
    def nbytes(self):
        return self.size * self.dtype.itemsize

    def __len__(self):
        return self.shape[0]

    def __getitem__(self, key):
        keys = list(key if isinstance(key, tuple) else (key,))
        if Ellipsis in keys:
            at = keys.index(Ellipsis)
            keys[at : at + 1] = [slice(None)] * (self.ndim - len(keys) + 1)
        if len(keys) > self.ndim:
            raise IndexError(f"there are {self.ndim} axes, {self.axes}, but {len(keys)} indices")
        keys += [slice(None)] * (self.ndim - len(keys))
        begin, end, rest = [], [], []
        for each, side, axis in zip(keys, self.shape, self.axes):
            if isinstance(each, slice):
                places = range(*each.indices(side))
                low, high = (min(places), max(places) + 1) if places else (0, 0)
                rest.append(slice(None, None, places.step) if places else slice(None))
            else:
                try:
                    place = each.__index__()
                except AttributeError:
                    raise TypeError("an Image is indexed by numbers, slices and ...: make an array of it for more") from None
                if not -side <= place < side:
                    raise IndexError(f"index {place} is out of the {side} of axis {axis}")
                low = place % side
                high = low + 1
                rest.append(0)
            begin.append(low)
            end.append(high)
        return self._file.read(begin, end)[tuple(rest)]

    def __array__(self, dtype=None, copy=None):
        if copy is False:
            raise ValueError("the pixels of an Image lie in a file: they are copied")
        array = self[...]
        return array if dtype is None else array.astype(dtype, copy=False)

    def __reduce__(self):
        return Image, self._arguments

    def __repr__(self):
        sides = ", ".join(f"{axis}={side}" for axis, side in zip(self.axes, self.shape))
        return f"<orlix.Image {self.path!r}: {self.dtype}, {sides}>"


Image.__module__ = "orlix"


def open(path, *, axes=None, pages=None, series=None, scaled=False):
    """Open an image of any file that the library reads, without reading its pixels.

    Parameters
    ----------
    path : str or path
        TIFF (ImageJ, OME-TIFF), PNG, JPEG, NIfTI, NRRD, MetaImage, MRC, NumPy, HDF5 (``"file.h5:/path"``), OME-Zarr.
    axes : str, optional
        The axes of an array, slowest first, as ``"TCZYX"``, where the file does not tell or is not to be believed.
    pages : str, optional
        How the pages of a stack nest, fastest first, as ``"z=4,c=2,t=3"``.
    series : int, optional
        Which image of a file that holds several.
    scaled : bool, default False
        Measure the numbers that a header's scale gives.

    Returns
    -------
    Image
        Has a shape, a dtype, axes, the size of a pixel; slices of it are NumPy arrays.

    Raises
    ------
    OSError
        There is no such file, or it is damaged, or of no kind that is read.
    ValueError
        The file does not have what is asked for.

    Examples
    --------
    >>> stack = orlix.open("samples/stack.ome.tif")
    >>> stack.axes, stack.shape, stack.dtype, stack.pixel_size, stack.unit
    ('CZYX', (2, 8, 96, 96), dtype('uint16'), {'x': 0.2, 'y': 0.2, 'z': 0.6}, 'um')
    >>> stack[0, 3, 10:12, 10:14]
    array([[17, 27, 22, 25],
           [22, 26, 17, 28]], dtype=uint16)
    >>> orlix.stats(stack).max
    504.0
    """
    return Image(path, axes, pages, series, scaled)
