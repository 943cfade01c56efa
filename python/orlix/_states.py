"""States: what pieces of an image have found, until they are merged."""

from . import _core
from ._api import _unwrap, as_image
from ._describe import MEASURES
from ._records import make_result


class State:
    """What a measure has found in pieces of an image: pieces are added, states merge, a result is finished.

    Whatever the pieces, their order and the machines they were added on, the result is the same to the last bit. A
    state pickles to some kilobytes, so that any scheduler can send it: ``concurrent.futures``, MPI, Ray, Spark.

    Parameters
    ----------
    measure : str
        One of describe, compare, regions, threshold.
    per : str, default "image"
        What one result covers: image, plan or volume.
    **parameters
        Those of the measure.

    Examples
    --------
    >>> image = np.arange(48, dtype=np.uint16).reshape(3, 4, 4)
    >>> pieces = []
    >>> for z in range(3):
    ...     piece = orlix.State("describe")
    ...     pieces.append(piece.add(image[z : z + 1], offset=(z, 0, 0)))
    >>> whole = pieces[2].merge(pieces[0]).merge(pieces[1])
    >>> whole.finish() == orlix.describe(image)
    True
    >>> whole.finish().max_position
    (3, 3, 2)
    """

    __slots__ = ("_state",)

    def __init__(self, measure, *, per="image", **parameters):
        self._state = _core.State.create(measure, per, parameters)

    @property
    def measure(self):
        """The name of the measure."""
        return self._state.verb

    @property
    def margin(self):
        """How many pixels around a piece the measure looks at, in x and y: see ``core`` of :meth:`add`."""
        return self._state.margin

    def add(self, *images, axes=None, offset=None, mask=None, core=None, progress=None):
        """Lets a piece enter: pixels that no other piece has.

        Parameters
        ----------
        *images : array_like or path
            As many as the measure takes, of one shape.
        axes : str, optional
            The axes of the piece, as of the measures.
        offset : sequence of int, optional
            Where the piece begins in the whole image, along each of its axes. Default: at its beginning.
        mask : array_like, optional
            Pixels count where it is not 0.
        core : tuple of slices, optional
            The part of the whole image of which pixels enter, along each axis; what lies around it is only looked at.

        Returns
        -------
        State
            Itself.
        """
        first, axes = as_image(images[0], axes)
        letters = axes.upper() or "TCZYX"[-first.ndim :]
        mask_axes = ""
        if mask is not None:
            mask, mask_axes = as_image(mask)
        at = dict(zip(letters, offset or ()))
        begin = [int(at.get(axis, 0)) for axis in "TCZYX"]
        limits = None
        if core is not None:
            cut = dict(zip(letters, core))
            shape = dict(zip(letters, first.shape))
            limits = [0 if axis not in cut else cut[axis].start for axis in "TCZYX"]
            limits += [shape.get(axis, 1) if axis not in cut else cut[axis].stop for axis in "TCZYX"]
        arrays = [_unwrap(first)] + [_unwrap(as_image(each)[0]) for each in images[1:]]
        self._state.add(arrays, axes, _unwrap(mask), mask_axes, begin, limits, progress)
        return self

    def merge(self, other):
        """Takes what another state of the same measure and parameters has found. Returns itself.

        Raises ValueError where they do not go together.
        """
        self._state.merge(other._state)
        return self

    @property
    def needs_pass(self):
        """Whether all pieces must enter once more before there is a result: see :meth:`next_pass`."""
        return self._state.needs_pass

    def next_pass(self):
        """Readies the merged state of all pieces for another pass; False if none is needed.

        Copies of it take the pieces again, and are merged again. (What is added to a copy does not enter twice.)
        """
        return self._state.next_pass()

    def copy(self):
        """A state of its own that has found the same."""
        other = object.__new__(State)
        other._state = self._state.clone()
        return other

    def finish(self):
        """The result: as the measure's function gives it.

        Raises ValueError while another pass is needed.
        """
        values, shape = self._state.finish()
        return make_result(self.measure, values, None if shape is None else (shape, None))

    def __reduce__(self):
        return _read, (self._state.write(),)

    def __repr__(self):
        return f"<orlix.State of {self.measure}>"


def _read(data):
    state = object.__new__(State)
    state._state = _core.State.read(data)
    return state


State.__module__ = "orlix"
