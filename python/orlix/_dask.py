"""Measures of Dask arrays: blocks become states where they lie, states merge as a tree, the last one is finished."""

import numpy as np

import dask
import dask.array as da
from dask.base import DaskMethodsMixin
from dask.delayed import Delayed
from dask.graph_manipulation import bind
from dask.highlevelgraph import HighLevelGraph

from . import _core
from ._describe import MEASURES
from ._files import Image
from ._pieces import Piece, Whole, make_job

#: How many states a task merges.
FAN = 8


class Lazy(DaskMethodsMixin):
    """A result that is not computed yet: ``.compute()``, ``dask.compute(a, b)``, ``client.compute(a)``."""

    __slots__ = ("_graph", "_key", "_what")

    def __init__(self, graph, key, what):
        self._graph, self._key, self._what = graph, key, what

    __dask_scheduler__ = staticmethod(dask.threaded.get)

    @staticmethod
    def __dask_optimize__(graph, keys, **kwargs):
        return da.optimization.optimize(graph, keys, **kwargs)

    def __dask_graph__(self):
        return self._graph

    def __dask_keys__(self):
        return [self._key]

    def __dask_layers__(self):
        return (self._key,)

    def __dask_postcompute__(self):
        return _first, ()

    def __dask_postpersist__(self):
        return self._rebuild, ()

    def _rebuild(self, graph, *, rename=None):
        return Lazy(graph, (rename or {}).get(self._key, self._key), self._what)

    def __dask_tokenize__(self):
        return self._key

    def __repr__(self):
        return f"<orlix: {self._what} of a Dask array, not computed yet>"


def _first(results):
    return results[0]


class _Enter:
    """Makes of a block what jobs keep of it, in an array of one element."""

    def __init__(self, jobs, axes, bounds, margin, nb_images):
        self.jobs, self.axes, self.bounds, self.margin, self.nb_images = jobs, axes, bounds, margin, nb_images

    def __dask_tokenize__(self):
        return dask.base.tokenize([(job.verb, sorted(job.parameters.items(), key=str), vars(job.whole)) for job in self.jobs],
                                  self.axes, self.bounds, self.margin)

    def __call__(self, *blocks, found=None, block_id=None):
        begin, core_begin, core_end = {}, {}, {}
        for axis, at, bounds in zip(self.axes, block_id, self.bounds):
            core_begin[axis], core_end[axis] = bounds[at], bounds[at + 1]
            begin[axis] = max(0, bounds[at] - self.margin.get(axis, 0))
        arrays = list(blocks[: self.nb_images])
        mask = blocks[self.nb_images] if len(blocks) > self.nb_images else None
        piece = Piece(arrays, mask, self.axes, begin, core_begin, core_end)
        core = piece.cut_core() if self.margin else piece
        result = np.empty((1,) * len(self.axes), dtype=object)
        result[...] = None
        result[(0,) * len(self.axes)] = [
            job.enter(piece if job.margin else core, None if found is None else found[i]) for i, job in enumerate(self.jobs)]
        return result


def _merge(jobs, parts):
    parts = [part.item() if isinstance(part, np.ndarray) else part for part in parts]
    merged = parts[0]
    for part in parts[1:]:
        merged = [one if other is None else other if one is None else job.merge(one, other)
                  for job, one, other in zip(jobs, merged, part)]
    return merged


def _advance(jobs, found):
    return [job.advance(each) for job, each in zip(jobs, found)]


def _choose(new, old):
    return [before if now is None else now for now, before in zip(new, old)]


def _finish(job, index, found):
    return job.finish(found[index])


def _as_dask(given, axes, chunks=None):
    if hasattr(given, "__dask_graph__"):
        return given
    return da.from_array(given if isinstance(given, (np.ndarray, Image)) else np.asarray(given), chunks=chunks or "auto")


def _prepare(images, axes, mask, mask_axes):
    """The images and the mask as Dask arrays of the same chunks, and their axes."""
    first = next(image for image in images if hasattr(image, "__dask_graph__")) if any(
        hasattr(image, "__dask_graph__") for image in images) else None
    chunks = first.chunks if first is not None else None
    if chunks is not None and any(np.isnan(side) for sides in chunks for side in sides):
        raise ValueError("the array has chunks of unknown size: call compute_chunk_sizes() first")
    arrays = [_as_dask(image, axes, chunks) for image in images]
    axes = axes.upper() or "TCZYX"[-arrays[0].ndim :]
    for array in arrays[1:]:
        if array.shape != arrays[0].shape:
            raise ValueError(f"the images have the shapes {arrays[0].shape} and {array.shape}: both need the same")
    arrays = [arrays[0]] + [array.rechunk(arrays[0].chunks) for array in arrays[1:]]
    if mask is not None:
        mask = _as_dask(mask, mask_axes)
        letters = mask_axes.upper() or (axes if mask.ndim == len(axes) else "TCZYX"[-mask.ndim :])
        sizes = dict(zip(letters, mask.shape))
        if any(sizes.get(axis, 1) not in (1, side) or (axis in "YX" and sizes.get(axis) != side)
               for axis, side in zip(axes, arrays[0].shape)) or set(letters) - set(axes):
            raise ValueError(f"the mask has the shape {mask.shape}, but the image has {arrays[0].shape}: the mask has the "
                             "image's shape, or fewer axes")
        order = [letters.index(axis) for axis in axes if axis in letters]
        mask = mask.transpose(order)[tuple(slice(None) if axis in letters else None for axis in axes)] != 0
        mask = da.broadcast_to(mask, arrays[0].shape).rechunk(arrays[0].chunks)
    return arrays, axes, mask


def _check(verb, arrays, axes, mask, per, parameters):
    """Refuses now what the library would refuse later: a small image of the same kind is measured."""
    side = (2,) * len(axes)
    small = [np.zeros(side, array.dtype) for array in arrays]
    shown = np.ones(side, bool) if mask is not None else None
    _core.measure(verb, small, axes, shown, axes if mask is not None else "", per, parameters, None)


def _measure_group(jobs, arrays, mask, axes):
    """The last states of jobs that want the same pieces, and their graph."""
    whole_axes = {axis for job in jobs for axis in job.whole_axes}
    margin = {}
    for job in jobs:
        for axis, depth in job.margin.items():
            if axis in axes:
                margin[axis] = max(depth, margin.get(axis, 0))
    inputs = arrays + ([mask] if mask is not None else [])
    chunks = {axes.index(axis): -1 for axis in whole_axes if axis in axes and arrays[0].numblocks[axes.index(axis)] > 1}
    if chunks:
        inputs = [array.rechunk({i: "auto" if i not in chunks else -1 for i in range(len(axes))})
                  for array in inputs]
        inputs = [array.rechunk(inputs[0].chunks) for array in inputs]
    if margin:
        least = tuple(da.overlap.ensure_minimum_chunksize(min(margin.get(axis, 1), sum(sides)), sides)
                      for axis, sides in zip(axes, inputs[0].chunks))
        inputs = [array.rechunk(least) for array in inputs]
    bounds = [tuple(np.cumsum((0, *sides)).tolist()) for sides in inputs[0].chunks]
    if margin:
        depth = {axes.index(axis): min(width, bounds[axes.index(axis)][-1]) for axis, width in margin.items()}
        inputs = [da.overlap.overlap(array, depth, "none", allow_rechunk=False) for array in inputs]
        margin = {axes[i]: width for i, width in depth.items()}
    enter = _Enter(jobs, axes, bounds, margin, len(arrays))
    chunks = tuple((1,) * (len(each) - 1) for each in bounds)
    found, originals = None, inputs
    for number in range(max(job.passes for job in jobs)):
        name = f"orlix-{dask.base.tokenize(enter, inputs, number)}"
        if found is not None:
            advanced = _add_layer(f"{name}-advance", [found], {f"{name}-advance": (_advance, jobs, found.key)})
            inputs = bind(originals, advanced)  # read once more, rather than kept
        blocks = da.map_blocks(enter, *inputs, dtype=object, chunks=chunks, name=f"{name}-enter",
                               meta=np.empty((0,) * len(axes), dtype=object), found=None if found is None else advanced)
        layer, keys = {}, list(dask.core.flatten(blocks.__dask_keys__()))
        while len(keys) > 1 or not layer:
            groups = [keys[i : i + FAN] for i in range(0, len(keys), FAN)]
            keys = [(f"{name}-merge", len(layer) + i) for i in range(len(groups))]
            layer.update({key: (_merge, jobs, group) for key, group in zip(keys, groups)})
        if found is not None:
            layer[f"{name}-merge"] = (_choose, keys[0], found.key)
            keys = [f"{name}-merge"]
        found = _add_layer(f"{name}-merge", [blocks] + ([] if found is None else [found]), layer, keys[0])
    return found


def _add_layer(name, dependencies, layer, key=None):
    graph = HighLevelGraph.from_collections(name, layer, dependencies=dependencies)
    return Delayed(key or name, graph, layer=name)


def measure_lazily(asked, images, axes, per, mask, mask_axes):
    """A lazy result for each measure that is asked for."""
    arrays, axes, mask = _prepare(images, axes, mask, mask_axes)
    jobs = {}
    for verb, parameters in asked.items():
        covers = per or MEASURES[verb].per[0]
        covers = "plan" if covers == "plane" else covers
        _check(verb, arrays, axes, mask, covers, dict(parameters))
        whole = Whole(arrays[0].shape, axes, [array.dtype for array in arrays], covers, mask is not None)
        jobs[verb] = make_job(verb, whole, dict(parameters))
    results = {}
    groups = {}
    for verb, job in jobs.items():
        groups.setdefault((job.whole_axes, job.passes), []).append(verb)
    for verbs in groups.values():
        group = [jobs[verb] for verb in verbs]
        found = _measure_group(group, arrays, mask, axes)
        for index, verb in enumerate(verbs):
            name = f"orlix-{verb}-{dask.base.tokenize(found.key, index)}"
            last = _add_layer(name, [found], {name: (_finish, jobs[verb], index, found.key)})
            results[verb] = Lazy(last.dask, name, verb)
    return {verb: results[verb] for verb in asked}


def project_lazily(image, axis, stat, axes, out, dtype):
    """The projection of a Dask array along an axis: another one."""
    from ._api import find_dropped, project

    letters = axes.upper() or "TCZYX"[-image.ndim :]
    if out is not None:
        raise TypeError("the projection of a Dask array is a Dask array: there is no out")
    axis, dropped = find_dropped(letters, axis)
    at = letters.index(dropped)
    small = project(np.zeros((2,) * len(letters), image.dtype), axis.lower(), stat, axes=letters, dtype=dtype)
    image = image.rechunk({i: -1 if i == at else "auto" for i in range(image.ndim)}) if image.numblocks[at] > 1 else image
    return da.map_blocks(_project, image, dtype=small.dtype, drop_axis=at, meta=np.empty((0,) * (image.ndim - 1), small.dtype),
                         axis=axis.lower(), stat=stat, axes=letters, out_dtype=dtype)


def _project(block, axis, stat, axes, out_dtype):
    from ._api import project

    return project(block, axis, stat, axes=axes, dtype=out_dtype)
