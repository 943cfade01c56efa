"""The functions of the measures."""

import os

import numpy as np

from . import _core
from ._describe import MEASURES, docstring, signature
from ._files import Image, open
from ._progress import follow
from ._records import make_result

_AXES = {"x": "X", "y": "Y", "z": "Z", "c": "C", "channel": "C", "t": "T", "time": "T", "plane": "Z", "row": "Y",
         "column": "X", "col": "X"}


def as_image(given, axes=None):
    """What is measured, and its axes (empty: by its dimensions)."""
    if isinstance(given, Image):
        if axes is not None and axes.upper() != given.axes:
            raise ValueError(f"the image has the axes {given.axes}, not {axes}: orlix.open() takes others")
        return given, given.axes
    if isinstance(given, (str, os.PathLike)):
        image = open(given, axes=axes)
        return image, image.axes
    if axes is None and hasattr(given, "dims") and hasattr(given, "data"):
        names = [str(name).lower() for name in given.dims]
        unknown = [name for name in names if name not in _AXES]
        if unknown:
            raise ValueError(f"the dimensions {', '.join(unknown)} are no axes that are known: say which they are with axes, "
                             "as axes=\"ZYX\"")
        axes = "".join(_AXES[name] for name in names)
    if hasattr(given, "dims") and hasattr(given, "data") and not isinstance(given, np.ndarray):
        given = given.data
    return given, axes or ""


def is_dask(given):
    return hasattr(given, "__dask_graph__")


def _unwrap(image):
    return image._file if isinstance(image, Image) else image


def run(verb, images, axes, per, mask, parameters, progress):
    """Measures arrays, at once or, of Dask arrays, lazily."""
    mask_axes = ""
    if type(images[0]) is not np.ndarray or mask is not None or len(images) > 1:
        first, found = as_image(images[0], axes)
        images = [first] + [as_image(each, axes)[0] for each in images[1:]]
        axes = found
        if mask is not None:
            mask, mask_axes = as_image(mask)
        if any(map(is_dask, images)) or is_dask(mask):
            from ._dask import measure_lazily

            return measure_lazily({verb: parameters}, images, axes, per, mask, mask_axes)[verb]
        images = [_unwrap(each) for each in images]
        mask = _unwrap(mask)
    if progress is not None:
        with follow(progress, verb) as report:
            found = _core.measure(verb, list(images), axes or "", mask, mask_axes, per, parameters, report)
    else:
        found = _core.measure(verb, list(images), axes or "", mask, mask_axes, per, parameters, None)
    return make_result(verb, *found)


def make_function(measure):
    """The function of a measure, with its signature and docstring."""
    names = [parameter["argument"] for parameter in measure.parameters]
    given = "{" + ", ".join(f"{name!r}: {name}" for name in names) + "}"
    images = "(labels, *images)" if measure.takes_list else "(" + ", ".join(measure.arguments) + ",)"
    per = "per" if len(measure.per) > 1 else repr(measure.per[0])
    mask = "mask" if measure.takes_mask else "None"
    source = (f"def {measure.verb}({signature(measure)}):\n"
              f"    return run({measure.verb!r}, {images}, axes, {per}, {mask}, {given}, progress)\n")
    scope = {"run": run}
    exec(compile(source, f"<orlix.{measure.verb}>", "exec"), scope)
    function = scope[measure.verb]
    function.__module__ = "orlix"
    function.__doc__ = docstring(measure)
    return function


FUNCTIONS = {verb: make_function(measure) for verb, measure in MEASURES.items() if verb != "project"}


def find_dropped(letters, axis):
    """The axis that is projected along, and the one that a projection lacks: profiles along x have no y."""
    axis = axis.upper()
    dropped = {"X": "Y", "Y": "X"}.get(axis, axis)
    if axis not in letters or dropped not in letters:
        raise ValueError(f"the image has the axes {letters}: there is no {axis.lower()} to project along")
    return axis, dropped


def project(image, axis, stat, *, axes=None, out=None, dtype=None, progress=None):
    image, axes = as_image(image, axes)
    if axis not in ("x", "y", "z", "t"):
        raise ValueError(f"axis is one of x, y, z, t, not {axis!r}")
    if is_dask(image):
        from ._dask import project_lazily

        return project_lazily(image, axis, stat, axes, out, dtype)
    letters = axes.upper() or "TCZYX"[-np.ndim(image) :]
    axis, dropped = find_dropped(letters, axis)
    left = letters.replace(dropped, "")
    shape = tuple(side for letter, side in zip(letters, np.shape(image)) if letter != dropped)
    if out is not None and out.shape != shape:
        raise ValueError(f"out has the shape {out.shape}, but the projection has {shape}")
    with follow(progress, "project") as report:
        if axis in "XY":
            if letters[-2:] != "YX":
                raise ValueError(f"profiles are along x or y of an array whose last axes are YX, not {letters}")
            values, places = _core.profile(_unwrap(image), axes, axis, {"stat": stat}, report)
            result = make_result("project", values, places)
            if out is None:
                return result if dtype is None else result.astype(dtype)
            out[...] = result
            return out
        kind = getattr(image, "dtype", None) if dtype is None else dtype
        if out is not None and not out.flags.writeable:
            raise ValueError("out is read-only")
        kind = np.dtype(kind if kind is not None else np.asarray(image).dtype) if out is None else out.dtype
        at = left.index("X")
        target = out
        if out is None or out.strides[at] != out.itemsize or not out.dtype.isnative or not out.flags.aligned:
            # What is written has rows whose pixels touch.
            turned = shape[:at] + shape[at + 1 :] + shape[at : at + 1]
            target = np.moveaxis(np.empty(turned, np.uint8 if kind == bool else kind.newbyteorder("=")), -1, at)
        _core.project(_unwrap(image), axes, axis, {"stat": stat}, target, report)
    if out is not None and target is not out:
        out[...] = target
    return target if out is None else out


def measure(image, measures, *, axes=None, per=None, mask=None, progress=None):
    """Several measures of one image, which over Dask read it once.

    Parameters
    ----------
    image : array_like or path
        As of the measures.
    measures : sequence of str, or dict
        The names of measures of one image; of a dict the values are their parameters, as
        ``{"describe": {"percentiles": (5, 95)}, "noise": {}}``.
    axes, per, mask, progress : optional
        As of the measures. Those that know no such ``per`` or mask refuse it.

    Returns
    -------
    dict
        The result of each measure, by its name. Of a Dask array the results are lazy, and computed together they
        read it once.

    Raises
    ------
    ValueError
        A name is none of a measure of one image.

    Examples
    --------
    >>> results = orlix.measure("samples/cells.tif", ["describe", "noise"])
    >>> results["describe"].median, round(results["noise"].noise_std_dev, 3)
    (38.0, 5.02)
    """
    asked = dict(measures) if hasattr(measures, "keys") else {verb: {} for verb in measures}
    known = [verb for verb, each in MEASURES.items() if len(each.inputs) == 1 and verb != "project"]
    for verb in asked:
        if verb not in known:
            raise ValueError(f"{verb} is no measure of one image: there are {', '.join(known)}")
    image, axes = as_image(image, axes)
    if is_dask(image):
        from ._dask import measure_lazily

        mask, mask_axes = as_image(mask) if mask is not None else (None, "")
        return measure_lazily(asked, [image], axes, per, mask, mask_axes)
    return {verb: run(verb, (image,), axes or None, per or MEASURES[verb].per[0], mask, dict(parameters), progress)
            for verb, parameters in asked.items()}


def set_threads(number):
    """Bounds the threads that measures use together; 0: one for each processor. Results do not depend on it.

    Examples
    --------
    >>> orlix.set_threads(2)
    >>> orlix.get_threads()
    2
    >>> orlix.set_threads(0)
    """
    _core.set_threads(number)


def get_threads():
    """How many threads measures use together."""
    return _core.get_threads()


project.__doc__ = docstring(MEASURES["project"])
for _function in (project, measure, set_threads, get_threads, open):
    _function.__module__ = "orlix"
