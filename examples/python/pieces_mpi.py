"""The same over MPI, for describe of 8 and 16 bit pixels: mpirun -n 4 python pieces_mpi.py VOLUME"""

import sys

from mpi4py import MPI

import orlix

world = MPI.COMM_WORLD
volume = orlix.open(sys.argv[1])
planes = volume.shape[-3]
begin, end = (planes * rank // world.size for rank in (world.rank, world.rank + 1))
state = orlix.State("describe", percentiles=(5, 50, 95))
if begin < end:
    state.add(volume[..., begin:end, :, :], axes=volume.axes, offset=[0] * (volume.ndim - 3) + [begin, 0, 0])

whole = world.reduce(state, op=lambda one, other: one.merge(other), root=0)
if world.rank == 0:
    print(whole.finish())
