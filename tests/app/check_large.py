#!/usr/bin/env python3
"""Measures files that are larger than what memory may be taken, and small ones as if they were: the numbers are those of
the pixels in memory, the system's own figure of the peak stays below the bound, and Ctrl-C ends a run.
check_large.py ORLIX SAMPLES"""

import gzip
import json
import os
import pty
import re
import select
import signal
import subprocess
import sys
import tempfile
import time

import h5py
import numpy as np
import tifffile
import zarr

ORLIX, SAMPLES = (os.path.abspath(path) for path in sys.argv[1:3])
faults = []
checks = 0


def check(name, holds):
    global checks
    checks += 1
    if not holds:
        faults.append(name)


def run(*arguments):
    """What the program prints, and the most memory that it had, in MiB."""
    with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as error:
        process = subprocess.Popen([ORLIX, *map(str, arguments)], stdout=output, stderr=error)
        _, status, usage = os.wait4(process.pid, 0)
        output.seek(0)
        error.seek(0)
        text, said = output.read().decode(), error.read().decode()
        if status:
            raise RuntimeError(f"{arguments}: {said}")
        return text + said, usage.ru_maxrss / 1024


def stack():
    """Pixels of five axes, of several strips a plane, and a second image, labels and a mask for them."""
    random = np.random.default_rng(3)
    shape = (2, 2, 5, 180, 1100)  # t, c, z, y, x
    pixels = (random.normal(900, 90, shape) + np.arange(1100)).astype(np.uint16)
    other = (pixels // 2 + random.integers(0, 100, shape)).astype(np.uint16)
    labels = np.broadcast_to((np.arange(1100) // 37 + np.arange(180)[:, None] // 41 * 30) % 97, shape).astype(np.uint8)
    return pixels, other, labels, (random.random(shape[-2:]) < 0.4).astype(np.uint8)


def write_files(pixels):
    """The same pixels as formats have them: where they lie, in strips, tiles and chunks, in streams, turned round."""
    np.save("plain.npy", pixels)
    np.save("swapped.npy", pixels.astype(">u2"))
    np.save("fortran.npy", np.asfortranarray(pixels))
    np.save("double.npy", pixels.astype(np.float64))
    tifffile.imwrite("strips.tif", pixels, metadata={"axes": "TCZYX"}, compression="zlib", rowsperstrip=7)
    tifffile.imwrite("tiles.tif", pixels, metadata={"axes": "TCZYX"}, compression="zlib", tile=(128, 256), bigtiff=True)
    tifffile.imwrite("raw.tif", pixels, metadata={"axes": "TCZYX"}, byteorder=">")
    tifffile.imwrite("halves.tif", pixels[0, 0] / 8, metadata={"axes": "ZYX"}, tile=(64, 64))  # changes as integers
    with h5py.File("chunks.h5", "w") as file:
        file.create_dataset("d", data=pixels, chunks=(1, 2, 3, 64, 200), compression="gzip", shuffle=True,
                            fletcher32=True)
    with h5py.File("contiguous.h5", "w") as file:
        file.create_dataset("d", data=pixels)
    for name, chunks, shards in (("chunks.zarr", (1, 1, 4, 100, 256), None),
                                 ("shards.zarr", (1, 1, 2, 50, 275), (1, 2, 4, 150, 550))):
        zarr.create_array(name, data=pixels, chunks=chunks, shards=shards)
    header = "NRRD0004\ntype: uint16\ndimension: 5\nsizes: 1100 180 5 2 2\nkinds: space space space vector time\n"
    with open("stream.nrrd", "wb") as file:
        file.write((header + "endian: little\nencoding: gzip\n\n").encode() + gzip.compress(pixels.tobytes(), 1))
    os.mkdir("planes")
    for z in range(5):
        tifffile.imwrite(f"planes/{z}.tif", pixels[0, 0, z], compression="zlib")
    return {"plain.npy": [], "swapped.npy": [], "fortran.npy": [], "double.npy": ["--as", "uint16"], "strips.tif": [],
            "tiles.tif": [], "raw.tif": [], "chunks.h5": [], "contiguous.h5": [], "chunks.zarr": [], "shards.zarr": [],
            "stream.nrrd": []}


def forget_names(text):
    return re.sub(r'"path":"[^"]*"', "", text)


def check_alike(name, *arguments):
    """What is fetched bit by bit gives what is read whole."""
    whole, _ = run(*arguments, "--memory", "4G")
    pieces, _ = run(*arguments, "--memory", "64K")
    check(f"{name}: {arguments} is another where pixels are fetched", whole == pieces)
    return forget_names(whole)


STATISTICS = ("max", "mean", "median", "min", "stddev", "sum", "var")


def check_results():
    pixels, other, labels, mask = stack()
    for name, array in (("other.npy", other), ("labels.npy", labels), ("mask.npy", mask)):
        np.save(name, array)
    files = write_files(pixels)
    commands = [["project", "--axis", "x", "--stat", "median"], ["project", "--axis", "y", "--stat", "mean"],
                ["stats", "--per", "plan"], ["stats", "--per", "volume"], ["describe", "--per", "volume"], ["noise"],
                ["kde", "--samples", "99", "--threads", "1"]]
    first = {}
    for file, options in files.items():
        for command in commands:
            printed = check_alike(file, command[0], file, *command[1:], *options, "--json", "--quiet")
            check(f"{file}: {command} is not that of the same pixels elsewhere",
                  printed == first.setdefault(str(command), printed))
        for axis in "zt":
            for statistic in STATISTICS if file in ("plain.npy", "tiles.tif", "chunks.zarr") else ("mean", "median"):
                written = []
                for memory in ("4G", "64K"):
                    run("project", file, "--axis", axis, "--stat", statistic, "-o", "out.tif", "--memory", memory,
                        "--quiet", *options)
                    written.append(tifffile.imread("out.tif"))
                check(f"{file}: {axis} {statistic}", np.array_equal(*written))
                reference = first.setdefault(axis + statistic, written[0])
                check(f"{file}: {axis} {statistic} is not that of the same pixels elsewhere",
                      np.array_equal(written[0], reference))
    check_alike("stack", "stats", "planes", "--stack", "z", "--json")
    for command in (["entropy", "plain.npy"], ["similarity", "plain.npy", "other.npy"], ["count", "labels.npy"],
                    ["ncc", "chunks.zarr", "tiles.tif"], ["ncc", "plain.npy", "other.npy", "--per", "volume"],
                    ["pearson", "plain.npy", "other.npy"], ["percent", "labels.npy"], ["paraboloid", "plain.npy"],
                    ["locate", "mask.npy", "--binary"], ["paraboloid", "strips.tif", "--mask", "mask.npy"],
                    ["stats", "tiles.tif", "--mask", "mask.npy"], ["histogram", "plain.npy", "--mask", "mask.npy"],
                    ["compare", "tiles.tif", "other.npy", "--window-size", "9"], ["threshold", "chunks.h5"],
                    ["compare", "chunks.zarr", "other.npy", "--mask", "mask.npy", "--per", "plan"],
                    ["regions", "labels.npy", "chunks.zarr", "stream.nrrd", "--median"],
                    ["describe", "double.npy", "--as", "float32", "--moments", "4"],
                    ["stats", "tiles.tif", "--region", "77:900,31:170", "--plane", "z=1:4,c=1"],
                    ["describe", "shards.zarr", "--region", "77:900,31:170", "--plane", "z=1:4,t=1"],
                    ["stats", "tiles.tif", "--region", "700:1000,140:180", "--per", "plan"],
                    ["describe", "chunks.zarr", "--region", "700:1000,140:180"],
                    ["describe", "chunks.h5", "--region", "700:1000,140:180", "--plane", "z=3:5"],
                    ["stats", "halves.tif", "--as", "uint8"], ["describe", "halves.tif", "--as", "uint8"],
                    ["noise", "strips.tif", "--region", "77:900,31:170"]):
        check_alike("any", *command, "--json")
    for sample in ("cells.tif", "stack.ome.tif", "frames.tif", "colour.png"):
        check_alike(sample, "stats", os.path.join(SAMPLES, sample), "--per", "plan", "--json")


PLANES, SIDE = 448, 2048  # 3.5 GiB of 16 bits, of which the system keeps next to nothing
BOUND = 400 + 4 * SIDE * SIDE * 2 / 2**20


def make_sparse(name, dtype, points):
    array = np.lib.format.open_memmap(name, mode="w+", dtype=dtype, shape=(PLANES, SIDE, SIDE))
    for place, value in points.items():
        array[place] = value
    array.flush()


def check_memory():
    points = {(0, 0, 0): 7, (3, 17, 2000): 40000, (PLANES - 1, SIDE - 1, SIDE - 1): 65535}
    make_sparse("large.npy", np.uint16, points)
    make_sparse("bytes.npy", np.uint8, {place: 1 for place in points})
    zarr.create_array("large.zarr", shape=(PLANES, SIDE, SIDE), dtype=np.uint16, chunks=(64, 256, 256), fill_value=5)

    def measure(*arguments):
        printed, peak = run(*arguments, "--json", "--quiet")
        check(f"{arguments[:2]} took {peak:.0f} MiB", peak < BOUND)
        return json.loads(printed)["results"] if printed else None

    values = list(points.values())
    for command in (["stats"], ["stats", "--per", "volume"], ["stats", "--mask", "bytes.npy"], ["describe"]):
        found = measure(command[0], "large.npy", *command[1:])[0]
        check(f"{command}: {found}", found["Sum"] == sum(values) and found["Max"] == 65535)
    check("histogram", sum(measure("histogram", "large.npy")[0]["Frequencies"]) == PLANES * SIDE * SIDE)
    for statistic, expected in (("max", 40000), ("sum", 40000), ("mean", round(40000 / PLANES))):
        measure("project", "large.npy", "--axis", "z", "--stat", statistic, "-o", "out.tif")
        found = tifffile.imread("out.tif")
        check(f"z {statistic}: {found[17, 2000]}", found[17, 2000] == expected)
    _, peak = run("project", "large.npy", "--axis", "z", "--stat", "median", "-o", "out.tif", "--memory", "256M")
    check(f"a median in 256 MiB took {peak:.0f} MiB", peak < 256 + 100)
    found = measure("locate", "bytes.npy", "--binary", "--per", "volume")[0]["Coordinates"]
    check(f"locate: {found}", sorted(found) == sorted([x, y, z] for z, y, x in points))
    for command in (["noise", "large.npy"], ["entropy", "large.npy"], ["kde", "large.npy", "--samples", "20"],
                    ["project", "large.npy", "--axis", "x", "--stat", "mean", "--plane", "z=0:40"],
                    ["ncc", "large.npy", "large.npy"], ["pearson", "large.npy", "large.npy", "--per", "volume"],
                    ["similarity", "large.npy", "large.npy"], ["count", "bytes.npy"], ["percent", "bytes.npy"],
                    ["paraboloid", "large.npy"], ["regions", "bytes.npy", "large.npy"],
                    ["compare", "large.npy", "large.npy", "--no-ssim"]):
        measure(*command)
    for command in (["stats"], ["stats", "--per", "volume"], ["describe"]):
        found = measure(command[0], "large.zarr", *command[1:])[0]
        check(f"zarr {command}: {found}", found["Min"] == 5 and found["Max"] == 5)


def check_chunks():
    """Chunks that do not compress, of which no layer fits."""
    random = np.random.default_rng(7)
    shape = (80, 1024, 2048)
    for name in ("deep.zarr", "other.zarr"):
        array = zarr.create_array(name, shape=shape, dtype=np.uint16, chunks=(64, 512, 512))
        for z, y, x in np.ndindex(2, 2, 4):
            place = tuple(slice(at * side, (at + 1) * side) for at, side in zip((z, y, x), array.chunks))
            array[place] = random.integers(0, 65536, array[place].shape, dtype=np.uint16)
    bound = 400 + 4 * shape[1] * shape[2] * 2 / 2**20
    for command in (["stats", "deep.zarr"], ["stats", "deep.zarr", "--per", "volume"], ["describe", "deep.zarr"],
                    ["project", "deep.zarr", "--axis", "z", "--stat", "mean", "-o", "out.tif"],
                    ["ncc", "deep.zarr", "other.zarr"], ["compare", "deep.zarr", "other.zarr", "--no-ssim"]):
        _, peak = run(*command, "--quiet")
        check(f"{command} took {peak:.0f} MiB", peak < bound)


def check_openings():
    """What is not asked for is not read."""
    huge = zarr.create_array("huge.zarr", shape=(100000, 5000, 5000), dtype=np.uint16, chunks=(16, 500, 500))
    huge[32:48, :500, :500] = 9
    os.makedirs("huge.zarr/c/5/0")
    with open("huge.zarr/c/5/0/0", "wb") as file:
        file.write(b"no chunk")
    printed, _ = run("info", "huge.zarr", "--json")
    check("info of 5 TB", json.loads(printed)["results"][0]["bytes"] == 5 * 10**12)
    printed, _ = run("stats", "huge.zarr", "--plane", "z=33", "--json", "--quiet")
    check("a plane of 5 TB", json.loads(printed)["results"][0]["Sum"] == 9 * 500 * 500)


def check_interrupt():
    """A run of minutes ends on Ctrl-C, and leaves nothing behind. Waits are bounded, and long."""
    np.lib.format.open_memmap("endless.npy", mode="w+", dtype=np.uint8, shape=(100000, 2000, 2000)).flush()
    before = set(os.listdir("."))
    signal.signal(signal.SIGINT, signal.default_int_handler)  # a script in the background ignores it, and what it runs

    def waits_for_interrupt(process):
        with open(f"/proc/{process}/status") as status:
            caught = int(next(line for line in status if line.startswith("SigCgt")).split()[1], 16)
            return caught >> (signal.SIGINT - 1) & 1

    def start(arguments):
        process, terminal = pty.fork()
        if process == 0:
            os.execv(ORLIX, [ORLIX, *arguments])
        return process, terminal

    def read(terminal, wanted, seconds):
        text = ""
        end = time.monotonic() + seconds
        while not re.search(wanted, text) and time.monotonic() < end:
            if select.select([terminal], [], [], 0.1)[0]:
                try:
                    text += os.read(terminal, 4096).decode()
                except OSError:
                    break
        return text

    for arguments in (["stats", "endless.npy"], ["describe", "endless.npy", "-o", "out.json"],
                      ["project", "endless.npy", "--axis", "z", "--stat", "mean", "-o", "z.tif"]):
        process, terminal = start(arguments)
        text = read(terminal, r"\d+ % \[.*\].*/s.*left", 60)
        check(f"{arguments}: there is no bar: {text!r}", "left" in text)
        os.write(terminal, b"\x03")
        read(terminal, "never", 60)
        os.kill(process, signal.SIGKILL)  # where it has not ended
        _, status = os.waitpid(process, 0)
        check(f"{arguments}: status {status}", os.waitstatus_to_exitcode(status) == 130)
        os.close(terminal)
        check(f"{arguments}: it left {set(os.listdir('.')) - before}", set(os.listdir(".")) == before)
    # In a pipe, and where nobody wants it, there is no bar.
    process = subprocess.Popen([ORLIX, "stats", "endless.npy"], stderr=subprocess.PIPE)
    while not waits_for_interrupt(process.pid):
        time.sleep(0.01)
    process.send_signal(signal.SIGINT)
    _, said = process.communicate(timeout=60)
    check(f"in a pipe: {process.returncode}, {said}", process.returncode == 130 and not said)


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    for part in (check_results, check_memory, check_chunks, check_openings, check_interrupt):
        began = time.monotonic()
        part()
        print(f"{part.__name__}: {time.monotonic() - began:.0f} s")
    os.chdir("/")
for fault in faults[:40]:
    print(fault)
print(f"{checks} checks, {len(faults)} faults")
sys.exit(bool(faults))
