"""A state for each piece of a volume, on processes of their own: pieces.py VOLUME.

Any scheduler does: what is sent is a path, a range of planes and a pickled state.
"""

import sys
from concurrent.futures import ProcessPoolExecutor
from functools import reduce

import orlix


def measure_piece(path, begin, end, found):
    """The state of some planes; `found` is what all pieces have found in the pass before."""
    volume = orlix.open(path)
    state = orlix.State("describe") if found is None else found.copy()
    return state.add(volume[..., begin:end, :, :], axes=volume.axes, offset=[0] * (volume.ndim - 3) + [begin, 0, 0])


def main(path):
    planes = orlix.open(path).shape[-3]
    found = None
    with ProcessPoolExecutor() as pool:
        while found is None or found.next_pass():  # percentiles of 32-bit pixels take another pass
            pieces = [pool.submit(measure_piece, path, z, min(z + 3, planes), found) for z in range(0, planes, 3)]
            found = reduce(orlix.State.merge, (piece.result() for piece in pieces))
    print(found.finish())
    assert found.finish() == orlix.describe(path)


if __name__ == "__main__":
    main(sys.argv[1])
