"""Results: frozen records, made of the fields that a measure has."""

from collections import namedtuple

import numpy as np

from ._describe import MEASURES, snake_case


def _show(value):
    if isinstance(value, float):
        return f"{value:.10g}"
    if isinstance(value, np.ndarray):
        if value.size <= 6 and value.dtype != object:
            return np.array2string(value, separator=", ", precision=6).replace("\n", "")
        return f"array of shape {value.shape}, {value.dtype}"
    if isinstance(value, tuple):
        return "(" + ", ".join(_show(each) for each in value) + ")"
    if isinstance(value, dict):
        return "{" + ", ".join(f"{_show(key)}: {_show(each)}" for key, each in value.items()) + "}"
    return str(value)


class Record:
    """What all results share: a tuple with names, which does not change."""

    __slots__ = ()
    _units = {}

    def _rows(self):
        return [(name, _show(value), self._units.get(name, "")) for name, value in self._asdict().items()
                if value is not None]

    def __repr__(self):
        rows = self._rows()
        wide = max((len(name) for name, _, _ in rows), default=0)
        return "\n".join([type(self).__name__] + [f"  {name:<{wide}}  {text} {unit}".rstrip() for name, text, unit in rows])

    def _repr_html_(self):
        from html import escape

        cells = "".join(
            f"<tr><th style='text-align:left'>{name}</th><td>{escape(text)}</td><td>{escape(unit)}</td></tr>"
            for name, text, unit in self._rows()
        )
        return f"<table><caption>{type(self).__name__}</caption>{cells}</table>"


def _make_class(measure):
    base = namedtuple(measure.record, measure.field_names)
    units = dict(zip(measure.field_names, (field["unit"] for field in measure.fields)))
    lines = [f"{name} : {field['help']}" + (f", in {field['unit']}" if field["unit"] else "")
             for name, field in zip(measure.field_names, measure.fields)]
    doc = f"The result of :func:`orlix.{measure.verb}`.\n\nAttributes\n----------\n" + "\n".join(lines) + "\n"
    return type(measure.record, (Record, base),
                {"__slots__": (), "__module__": "orlix", "__doc__": doc, "_units": units})


class Histogram(Record, namedtuple("Histogram", ("counts", "edges"))):
    """The result of :func:`orlix.histogram`, which ``matplotlib.pyplot.stairs(*result)`` draws.

    Attributes
    ----------
    counts : pixels in each class
    edges : where classes begin and end, one more than there are classes, in grey levels
    bin_width : width of a class, in grey levels
    min : lower bound of the first class
    max : upper bound of the range, itself in the last class
    """

    __module__ = "orlix"
    _units = {"counts": "pixels", "edges": "grey levels", "bin_width": "grey levels"}

    @classmethod
    def _make(cls, values):
        low, high, width, counts = values
        if isinstance(low, float):
            edges = np.arange(len(counts) + 1, dtype=np.float64) * width + low
        elif isinstance(counts, np.ndarray) and counts.dtype != object:
            steps = np.arange(counts.shape[-1] + 1, dtype=np.float64)
            edges = np.asarray(low)[..., None] + steps * np.asarray(width)[..., None]
        else:
            edges = np.empty(counts.shape, dtype=object)
            for at in np.ndindex(counts.shape):
                edges[at] = low[at] + width[at] * np.arange(len(counts[at]) + 1, dtype=np.float64)
        histogram = cls(counts, edges)
        histogram.__dict__.update(min=low, max=high, bin_width=width)
        return histogram

    def __setattr__(self, name, value):
        raise AttributeError(f"a Histogram does not change: {name} cannot be set")

    def __reduce__(self):
        return Histogram._make, ((self.min, self.max, self.bin_width, self.counts),)


#: The class of each measure's results, by verb.
RECORDS = {verb: _make_class(measure) for verb, measure in MEASURES.items()
           if verb not in ("histogram", "locate", "project", "regions")}
RECORDS["histogram"] = Histogram


def _reshape(value, shape, order):
    if isinstance(value, dict):
        return {key: _reshape(each, shape, order) for key, each in value.items()}
    if isinstance(value, list):
        array = np.empty(len(value), dtype=object)
        array[:] = value
        value = array if not isinstance(value[0] if value else None, str) else np.asarray(value)
    if value is None:
        return None if all(shape) else np.zeros(shape)
    value = value.reshape(tuple(shape) + value.shape[1:])
    return value if order is None else value.transpose(*order, *range(len(shape), value.ndim))


def make_result(verb, values, shape):
    """The result of a measure from what the library gives: values, or arrays of a shape in some order."""
    if verb == "regions":
        return {snake_case(name): column for name, column in values.items()}
    if shape is not None:
        values = [_reshape(value, *shape) for value in values]
    if verb == "locate":
        return _as_positions(values[0])
    if verb == "project":
        return values[0]
    return RECORDS[verb]._make(values)


def _as_positions(value):
    if value.dtype != object:
        return value.astype(np.int64)
    for at in np.ndindex(value.shape):
        value[at] = value[at].astype(np.int64)
    return value
