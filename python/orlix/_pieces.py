"""What each measure keeps of a piece of an image, how two such things merge, and what they make in the end.

A job is what a measure does with an image in pieces, wherever they lie: `enter` makes something of a piece, `merge`
one thing of two, `advance` readies it for another pass over the pixels, `finish` makes the result. Whatever the pieces
are, the result is the same to the last bit.
"""

import math

import numpy as np

from . import _core
from ._describe import MEASURES
from ._records import RECORDS, make_result
from ._states import State

PLACES = "TCZ"


class Piece:
    """A piece of an image: its pixels, with a margin, and where those of its core lie in the whole image."""

    def __init__(self, arrays, mask, axes, begin, core_begin, core_end):
        self.arrays = arrays
        self.mask = mask
        self.axes = axes
        self.begin = begin  # of the arrays, by axis
        self.core_begin = core_begin
        self.core_end = core_end

    def cut_core(self):
        """The piece without its margin."""
        cut = tuple(slice(self.core_begin[a] - self.begin[a], self.core_end[a] - self.begin[a]) for a in self.axes)
        mask = None if self.mask is None else self.mask[cut]
        return Piece([each[cut] for each in self.arrays], mask, self.axes, self.core_begin, self.core_begin, self.core_end)

    def parts(self, per):
        """The parts of plans, or of volumes, that the piece has: their place (t, c, z), arrays and mask."""
        inner = [axis for axis in self.axes if axis in ("YX" if per == "plan" else "ZYX" if per == "volume" else "TCZYX")]
        outer = [axis for axis in self.axes if axis not in inner]
        for at in np.ndindex(*(self.arrays[0].shape[self.axes.index(axis)] for axis in outer)):
            index = tuple(at[outer.index(axis)] if axis in outer else slice(None) for axis in self.axes)
            place = tuple(self.begin.get(axis, 0) + (at[outer.index(axis)] if axis in outer else 0)
                          if axis in outer else 0 for axis in PLACES)
            mask = None if self.mask is None else self.mask[index]
            yield place, "".join(inner), [each[index] for each in self.arrays], mask


class Whole:
    """The whole image: its shape, its axes, the types of its pixels and what a result covers."""

    def __init__(self, shape, axes, dtypes, per, has_mask):
        self.sizes = dict(zip(axes, shape))
        self.axes = axes
        self.dtypes = dtypes
        self.per = per
        self.has_mask = has_mask
        self.kept = "".join(axis for axis in axes if axis in ("TCZ" if per == "plan" else "TC" if per == "volume" else ""))

    def count_pixels(self):
        """How many pixels a result covers."""
        return math.prod(side for axis, side in self.sizes.items() if axis not in self.kept)

    def list_places(self):
        """The places of all results, in their order."""
        sides = [self.sizes.get(axis, 1) if axis in self.kept else 1 for axis in PLACES]
        return list(np.ndindex(*sides))

    def make_result(self, verb, values):
        """The result of a measure whose values are those of one result, or lists of those of all places."""
        if not self.kept:
            return make_result(verb, values, None)
        left = "".join(axis for axis in PLACES if axis in self.kept)
        shape = tuple(self.sizes[axis] for axis in left)
        order = None if left == self.kept else tuple(left.index(axis) for axis in self.kept)
        return make_result(verb, values, (shape, order))

    def gather(self, verb, rows):
        """The result of rows of values, by place."""
        rows = [rows[place] for place in self.list_places()]
        if not self.kept:
            return self.make_result(verb, list(rows[0]))
        return self.make_result(verb, [_stack(column) for column in zip(*rows)])


def _take_only(value):
    """The value of the only result of several."""
    if isinstance(value, dict):
        return {key: _take_only(each) for key, each in value.items()}
    only = value if value is None else value[0]
    if isinstance(only, np.ndarray):
        return tuple(only.tolist())
    return only.item() if isinstance(only, np.generic) else only


def _stack(column):
    if isinstance(column[0], np.ndarray) and len({each.shape for each in column}) > 1 or column[0] is None:
        return list(column)
    return np.asarray(column)


class Job:
    """A measure of an image in pieces. Jobs are sent to where the pieces are, so they hold no pixels.

    What a job makes of a piece is None where it needs no other pass; what is merged is never changed.
    """

    whole_axes = ""  # of which each piece has all
    passes = 1

    def __init__(self, verb, whole, parameters):
        self.verb = verb
        self.whole = whole
        self.parameters = {name: value for name, value in parameters.items() if value is not None}

    @property
    def margin(self):
        """How many pixels around a piece are looked at, by axis."""
        return {}

    def advance(self, found):
        return found


class StateJob(Job):
    """A measure that is a state."""

    def __init__(self, verb, whole, parameters):
        super().__init__(verb, whole, parameters)
        self.passes = self.make_state()._state.count_passes([dtype.name for dtype in whole.dtypes])

    def make_state(self):
        return State(self.verb, per=self.whole.per, **self.parameters)

    @property
    def margin(self):
        margin = self.make_state().margin
        return {"Y": margin, "X": margin} if margin else {}

    def enter(self, piece, found):
        if found is not None and not found.needs_pass:
            return None
        axes = piece.axes
        core = [slice(piece.core_begin[axis], piece.core_end[axis]) for axis in axes] if self.margin else None
        state = self.make_state() if found is None else found.copy()
        return state.add(*piece.arrays, axes=axes, mask=piece.mask, offset=[piece.begin[axis] for axis in axes], core=core)

    def merge(self, one, other):
        return one.copy().merge(other)

    def advance(self, found):
        found = found.copy()
        found.next_pass()
        return found

    def finish(self, found):
        values, shape = found._state.finish()
        if shape is not None and not self.whole.kept:
            values = [_take_only(value) for value in values]
        return make_result(self.verb, values, None) if shape is None else self.whole.make_result(self.verb, values)


class ExactJob(Job):
    """A measure whose numbers follow from those of an exact one."""

    def __init__(self, verb, whole, parameters, inner_verb, **inner):
        super().__init__(verb, whole, parameters)
        self.inner = StateJob(inner_verb, whole, inner)

    def enter(self, piece, found):
        return self.inner.enter(piece, found)

    def merge(self, one, other):
        return self.inner.merge(one, other)


class StatsJob(ExactJob):
    def __init__(self, verb, whole, parameters):
        super().__init__(verb, whole, parameters, "describe", percentiles=(), entropy="never", saturated=False)

    def finish(self, found):
        exact = self.inner.finish(found)
        has_nan = np.asarray(exact.nb_nan) > 0
        pixels = np.asarray(exact.nb_pixels) + np.asarray(exact.nb_nan)

        def told(values):
            return np.where(has_nan, np.nan, values)

        with np.errstate(invalid="ignore", divide="ignore"):
            values = [pixels, told(exact.sum), told(np.asarray(exact.sum) / pixels), exact.min, exact.max,
                      told(exact.std_dev)]
        if not self.whole.kept:
            values = [int(pixels)] + [float(value) for value in values[1:]]
        return RECORDS["stats"]._make(values)


class NoiseJob(Job):
    """Sums of rows that lie together in the whole image, whatever the pieces are: no other sum of doubles is the same."""

    whole_axes = "X"
    rows = 16

    @property
    def margin(self):
        return {"Y": self.rows}

    def enter(self, piece, found):
        step = self.rows
        groups = range(-(-piece.core_begin["Y"] // step), -(-piece.core_end["Y"] // step))
        if not groups:
            return []
        first = groups[0] * step - piece.begin["Y"]
        last = min(groups[-1] * step + step, self.whole.sizes["Y"]) - piece.begin["Y"]
        at = tuple(slice(None) if axis in "YX" else slice(piece.core_begin[axis] - piece.begin[axis],
                                                          piece.core_end[axis] - piece.begin[axis]) for axis in piece.axes)
        sums = _core.sum_responses(piece.arrays[0][at], piece.axes, first, last, step)
        return [(tuple(piece.core_begin.get(axis, 0) for axis in PLACES) + (groups[0],), sums)]

    def merge(self, one, other):
        return one + other

    def finish(self, found):
        sizes = [self.whole.sizes.get(axis, 1) for axis in PLACES]
        sums = np.zeros(sizes + [-(-self.whole.sizes["Y"] // self.rows)])
        for begin, part in found:
            sums[tuple(slice(b, b + side) for b, side in zip(begin, part.shape))] = part
        pixels = self.whole.count_pixels()
        rows = {}
        for place in self.whole.list_places():
            inside = tuple(at if axis in self.whole.kept else slice(None) for axis, at in zip(PLACES, place))
            total = math.fsum(sums[inside].ravel())
            # The told formula, whose number of pixels goes through single precision.
            rows[place] = (pixels, 1.2533141373155001 * total / (float(np.float32(pixels)) * 6), total)
        return self.whole.gather("noise", rows)


def _run(verb, arrays, axes, mask, per, parameters):
    """What a measure finds in a part that is one result."""
    values, shape = _core.measure(verb, arrays, axes, mask, axes if mask is not None else "", per, parameters, None)
    return values if shape is None else [np.asarray(value).reshape(-1)[0] for value in values]


class HistogramJob(Job):
    """Counts in the bins of the whole image. Of 8 and 16 bits every value is counted, of others the range comes first."""

    def __init__(self, verb, whole, parameters):
        super().__init__(verb, whole, parameters)
        self.is_by_value = whole.dtypes[0].itemsize < 4
        self.has_range = "min" in self.parameters
        self.passes = 1 if self.is_by_value or self.has_range else 2

    def choose_bins(self, low, high):
        return {**self.parameters, "min": low, "max": high}

    def enter(self, piece, found):
        counts = {}
        for place, axes, arrays, mask in piece.parts(self.whole.per):
            if self.is_by_value:
                dtype = self.whole.dtypes[0]
                limits = (0, 1) if dtype == bool else (np.iinfo(dtype).min, np.iinfo(dtype).max)
                counts[place] = self.count(arrays, axes, mask, {"min": limits[0], "max": limits[1], "bin_width": 1})[3]
            elif found is None and not self.has_range:
                state = State("describe", percentiles=(), entropy="never").add(*arrays, axes=axes, mask=mask).finish()
                counts[place] = (state.min, state.max) if state.nb_pixels else (math.inf, -math.inf)
            else:
                low, high = found[place] if found is not None else (self.parameters["min"], self.parameters["max"])
                counts[place] = self.count(arrays, axes, mask, self.choose_bins(low, high)) if low <= high else None
        return counts

    @staticmethod
    def count(arrays, axes, mask, parameters):
        return _run("histogram", arrays, axes, mask, "image", parameters)

    def merge(self, one, other):
        merged = dict(one)
        for place, there in other.items():
            here = merged.get(place)
            if here is None or there is None:
                merged[place] = there if here is None else here
            elif isinstance(here, tuple):
                merged[place] = (min(here[0], there[0]), max(here[1], there[1]))
            elif self.is_by_value:
                merged[place] = here + there
            else:
                merged[place] = [*here[:3], here[3] + there[3]]
        return merged

    def finish_place(self, found):
        if found is None:
            return [math.nan, math.nan, math.nan, np.zeros(1, np.uint64)]
        if not self.is_by_value:
            return found
        dtype = self.whole.dtypes[0]
        lowest = 0 if dtype == bool else np.iinfo(dtype).min
        if self.has_range:
            low, high = self.parameters["min"], self.parameters["max"]
        else:
            there = np.flatnonzero(found)
            if not there.size:
                return [math.nan, math.nan, math.nan, np.zeros(1, np.uint64)]
            low, high = int(there[0]) + lowest, int(there[-1]) + lowest
        # The library says which class each value of the range is in: how many of them each class has.
        first, last = math.ceil(low), math.floor(high)
        values = np.arange(first, last + 1).astype(np.uint8 if dtype == bool else dtype)[None, :]
        *bins, sizes = self.count([values], "YX", None, self.choose_bins(low, high))
        ends = np.concatenate(([0], np.cumsum(sizes))).astype(np.int64) + (first - lowest)
        totals = np.concatenate((np.zeros(1, found.dtype), np.cumsum(found, dtype=found.dtype)))
        return [*bins, totals[ends[1:]] - totals[ends[:-1]]]

    def finish(self, found):
        return self.whole.gather("histogram", {place: self.finish_place(each) for place, each in found.items()})


class EntropyJob(HistogramJob):
    def choose_bins(self, low, high):
        if self.parameters:
            return {**self.parameters, "min": low, "max": high}
        width = max(1.0, (high - low) / 65536)
        if self.whole.dtypes[0].kind == "f":
            width = min((high - low) / 256, width)
        return {"min": low, "max": high, "bin_width": width} if width > 0 else {"min": low, "max": high}

    def finish(self, found):
        rows = {}
        for place, each in found.items():
            counts = [int(count) for count in self.finish_place(each)[3] if count]
            total, entropy = sum(counts), 0.0
            for count in counts:
                share = count / total
                entropy += share * math.log(1 / share)
            rows[place] = (entropy,)
        return self.whole.gather("entropy", rows)


class SampleJob(Job):
    """Pixels at random places, which are drawn for each plan or volume before any piece is looked at."""

    def __init__(self, verb, whole, parameters):
        super().__init__(verb, whole, parameters)
        axes = "YX" if whole.per == "plan" else "ZYX"
        self.shape = [whole.sizes.get(axis, 1) for axis in axes]
        self.axes = axes

    def draw(self, place):
        """The positions that a plan or volume is sampled at, an array for each axis."""
        number = self.whole.list_places().index(place)
        asked = {"samples": self.parameters.get("samples", 1000), "seed": self.parameters.get("seed", 5489) + number}
        positions = {}
        for i, axis in enumerate(self.axes):
            along = np.arange(self.shape[i], dtype=np.int32).reshape([-1 if j == i else 1 for j in range(len(self.axes))])
            found = _run("kde", [np.broadcast_to(along, self.shape)], self.axes, None, self.whole.per, asked)
            positions[axis] = np.asarray(found[0], np.int64)
        return positions

    def enter(self, piece, found):
        taken = {}
        for place, axes, arrays, _ in piece.parts(self.whole.per):
            positions = self.draw(place)
            local = {axis: positions[axis] - piece.begin.get(axis, 0) for axis in axes}
            inside = np.ones(len(positions["X"]), bool)
            for axis, side in zip(axes, arrays[0].shape):
                inside &= (local[axis] >= 0) & (local[axis] < side)
            index = np.flatnonzero(inside)
            values = np.asarray(arrays[0][tuple(local[axis][index] for axis in axes)], np.float64)
            taken[place] = [(index, values)]
        return taken

    def merge(self, one, other):
        return {place: one.get(place, []) + other.get(place, []) for place in {**one, **other}}

    def finish(self, found):
        rows = {}
        for place, parts in found.items():
            index = np.concatenate([part[0] for part in parts])
            samples = np.concatenate([part[1] for part in parts])[np.argsort(index)]
            rows[place] = (samples, _core.compute_bandwidth(self.parameters.get("bandwidth", "silverman"), samples))
        return self.whole.gather("kde", rows)


class CorrelationJob(Job):
    """Both correlations follow from exact ones; the deviations from the images' variances."""

    def __init__(self, verb, whole, parameters):
        super().__init__(verb, whole, parameters)
        self.jobs = [StateJob("compare", whole, {"bins": 0, "ssim": False, "peak": 1.0})]
        if verb == "ncc":
            self.jobs.append(StateJob("describe", whole, {"percentiles": (), "entropy": "never"}))

    def enter(self, piece, found):
        second = Piece(piece.arrays[1:], piece.mask, piece.axes, piece.begin, piece.core_begin, piece.core_end)
        return [job.enter(each, None) for job, each in zip(self.jobs, (piece, second))]

    def merge(self, one, other):
        return [job.merge(a, b) for job, a, b in zip(self.jobs, one, other)]

    def finish(self, found):
        exact = self.jobs[0].finish(found[0])
        r = np.where(np.asarray(exact.nb_nan) > 0, np.nan, exact.r)
        if self.verb == "pearson":
            # Of a constant image the told coefficient is 0.
            r = np.where(np.isnan(r) & (np.asarray(exact.nb_nan) == 0), 0.0, r)
            values = [r * self.whole.count_pixels(), r]
        else:
            second = self.jobs[1].finish(found[1])
            squares = np.asarray(second.variance) * np.asarray(second.nb_pixels)
            values = [squares, np.zeros_like(squares), r]
        if not self.whole.kept:
            values = [float(value) for value in values]
        return RECORDS[self.verb]._make(values)


class SimilarityJob(ExactJob):
    def __init__(self, verb, whole, parameters):
        super().__init__(verb, whole, parameters, "compare", bins=0, ssim=False, peak=1.0)
        if len(set(whole.dtypes)) > 1:
            raise TypeError(f"the images are {' and '.join(map(str, whole.dtypes))}: both need the same pixel type")

    def finish(self, found):
        exact = self.inner.finish(found)
        pixels = self.whole.count_pixels()
        mse = np.where(np.asarray(exact.nb_nan) > 0, np.nan, exact.mse)
        total = mse * pixels
        total = total if self.whole.dtypes[0].kind == "f" else np.rint(total)
        with np.errstate(divide="ignore"):
            ratio = np.where(mse == 0, np.finfo(np.float64).max, 20 * np.log10(self.parameters.get("peak", 255) / np.sqrt(mse)))
        values = [np.full(mse.shape, pixels, np.uint64), total, mse, ratio]
        if not self.whole.kept:
            values = [pixels] + [float(value) for value in values[1:]]
        return RECORDS[self.verb]._make(values)


class LabelJob(ExactJob):
    """How many pixels each label has."""

    def __init__(self, verb, whole, parameters):
        super().__init__(verb, whole, parameters, "regions")

    def enter(self, piece, found):
        image = piece.arrays[0]
        if piece.mask is not None:
            image = np.where(piece.mask, image, np.zeros((), image.dtype))
        image = image.astype(np.uint8) if image.dtype == bool else image
        piece = Piece([image], None, piece.axes, piece.begin, piece.core_begin, piece.core_end)
        return super().enter(piece, None)

    def list_labels(self, found):
        """By place: the labels other than 0, and the pixels that each of them has."""
        table = self.inner.finish(found)
        zeros = np.zeros(len(table["label"]), np.int64)
        places = np.stack([table.get(axis, zeros) for axis in ("t", "c", "z")], axis=1)
        labels = {}
        for place in self.whole.list_places():
            there = (places == place).all(axis=1)
            labels[place] = table["label"][there], table["nb_pixels"][there]
        return labels


class CountJob(LabelJob):
    def finish(self, found):
        total = self.whole.count_pixels()
        rows = {}
        for place, (labels, pixels) in self.list_labels(found).items():
            # The lowest label is the background, whatever it is.
            rows[place] = (len(labels) + (int(pixels.sum()) < total) - 1,)
        return self.whole.gather("count", rows)


class PercentJob(LabelJob):
    def finish(self, found):
        total = self.whole.count_pixels()
        rows = {}
        for place, (labels, pixels) in self.list_labels(found).items():
            size = 2 if self.whole.dtypes[0] == bool else int(labels.max(initial=0)) + 1
            counts = np.zeros(size)
            counts[labels] = pixels
            counts[0] = total - pixels.sum()
            rows[place] = (100 * counts / total,)
        return self.whole.gather("percent", rows)


class LocateJob(Job):
    def enter(self, piece, found):
        positions = {}
        for place, axes, arrays, _ in piece.parts(self.whole.per):
            local = np.asarray(_run("locate", arrays, axes, None, self.whole.per, self.parameters)[0], np.int64)
            offset = [piece.begin.get(axis, 0) for axis in "XYZ"[: local.shape[1]]]
            positions[place] = [local + np.asarray(offset, np.int64)]
        return positions

    def merge(self, one, other):
        return {place: one.get(place, []) + other.get(place, []) for place in {**one, **other}}

    def finish(self, found):
        rows = {}
        for place, parts in found.items():
            positions = np.concatenate(parts)
            order = np.lexsort(tuple(positions[:, i] for i in range(positions.shape[1])))
            rows[place] = (positions[order[: self.parameters.get("limit")]],)
        if not self.whole.kept:
            return rows[(0, 0, 0)][0]
        return make_result("locate", [[rows[place][0] for place in self.whole.list_places()]],
                           (tuple(self.whole.sizes[axis] for axis in self.whole.kept), None))


class PlanJob(Job):
    """A measure of plans each of which lies in one piece."""

    whole_axes = "YX"

    def enter(self, piece, found):
        return {place: _run(self.verb, arrays, axes, mask, "plan", self.parameters)
                for place, axes, arrays, mask in piece.parts("plan")}

    def merge(self, one, other):
        return {**one, **other}

    def finish(self, found):
        return self.whole.gather(self.verb, found)


JOBS = {"stats": StatsJob, "noise": NoiseJob, "histogram": HistogramJob, "entropy": EntropyJob, "kde": SampleJob,
        "ncc": CorrelationJob, "pearson": CorrelationJob, "similarity": SimilarityJob, "count": CountJob,
        "percent": PercentJob, "locate": LocateJob, "paraboloid": PlanJob}


def make_job(verb, whole, parameters):
    return (StateJob if MEASURES[verb].is_state else JOBS[verb])(verb, whole, parameters)
