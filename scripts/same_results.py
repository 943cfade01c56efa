#!/usr/bin/env python3
"""Runs two builds of the program on the same images and compares what they print, byte for byte:

    scripts/same_results.py OLD/orlix NEW/orlix

Every verb on every pixel type that it takes, on stacks, strips, masks and NaN, in every instruction set that the
machine has, with one thread and two. Prints what differs; the exit status is 1 if anything does.
"""
import itertools
import os
import random
import struct
import subprocess
import sys
import tempfile
from array import array

TYPES = {  # array code, bits, TIFF's sample format, lowest, highest
    "uint8": ("B", 8, 1, 0, 255), "int8": ("b", 8, 2, -128, 127),
    "uint16": ("H", 16, 1, 0, 65535), "int16": ("h", 16, 2, -32768, 32767),
    "uint32": ("I", 32, 1, 0, 2**32 - 1), "int32": ("i", 32, 2, -(2**31), 2**31 - 1),
    "float32": ("f", 32, 3, -1000, 1000),
}


def write_tiff(path, width, height, pages, bits, sample_format):
    """An uncompressed TIFF of one strip per page; `pages` are bytes."""
    blob = bytearray(struct.pack("<2sHI", b"II", 42, 0))
    link = 4
    for page in pages:
        data = len(blob)
        blob += page + b"\0" * (len(page) % 2)
        tags = [(256, 4, width), (257, 4, height), (258, 3, bits), (259, 3, 1), (262, 3, 1), (273, 4, data),
                (277, 3, 1), (278, 4, height), (279, 4, len(page)), (339, 3, sample_format)]
        struct.pack_into("<I", blob, link, len(blob))
        blob += struct.pack("<H", len(tags))
        for tag, kind, value in tags:
            blob += struct.pack("<HHII", tag, kind, 1, value)
        link = len(blob)
        blob += struct.pack("<I", 0)
    with open(path, "wb") as file:
        file.write(blob)


def smooth(draw, n, lowest, highest, whole):
    """Pixels that wander over part of a range, as images do, with its ends among them."""
    span = highest - lowest
    at, pixels = lowest + span / 2, []
    for _ in range(n):
        at = min(max(at + span / 50 * (draw.random() - 0.5), lowest), highest)
        pixels.append(int(at) if whole else at)
    pixels[n // 3], pixels[n // 2] = lowest, highest
    return pixels


def make_images(folder):
    draw = random.Random(16)
    for name, (code, bits, sample_format, lowest, highest) in TYPES.items():
        whole = code != "f"
        for kind, width, height, count in (("stack", 131, 67, 12), ("large", 1203, 801, 1), ("point", 1, 1, 1)):
            for which in "ab":
                pages = [array(code, smooth(draw, width * height, lowest, highest, whole)) for _ in range(count)]
                write_tiff(f"{folder}/{kind}-{name}-{which}.tif", width, height, [p.tobytes() for p in pages], bits,
                           sample_format)
        labels = [array(code, [draw.choice((0, 0, 1, 2, 3, 7, 100)) for _ in range(131 * 67)]) for _ in range(12)]
        write_tiff(f"{folder}/labels-{name}.tif", 131, 67, [p.tobytes() for p in labels], bits, sample_format)
        flat = array(code, [100] * (131 * 67)).tobytes()
        write_tiff(f"{folder}/flat-{name}.tif", 131, 67, [flat] * 12, bits, sample_format)
    odd = [array("f", smooth(draw, 131 * 67, -5, 5, False)) for _ in range(12)]
    for page, value in zip(odd, itertools.cycle((float("nan"), float("inf"), -0.0, 1e30))):
        for _ in range(40):
            page[draw.randrange(len(page))] = value
    write_tiff(f"{folder}/odd.tif", 131, 67, [p.tobytes() for p in odd], 32, 3)
    for name, share in (("mask", 0.4), ("none", 0.0)):
        for kind, width, height, count in (("stack", 131, 67, 12), ("large", 1203, 801, 1)):
            pages = [bytes(255 * (draw.random() < share) for _ in range(width * height)) for _ in range(count)]
            write_tiff(f"{folder}/{name}-{kind}.tif", width, height, pages, 8, 1)
    row = (131 + 7) // 8
    write_tiff(f"{folder}/binary.tif", 131, 67, [draw.randbytes(row * 67) for _ in range(12)], 1, 1)


def commands():
    pages = ["--pages", "z=3,c=2,t=2"]
    per3 = [["--per", per] for per in ("image", "plan", "volume")]
    per2 = per3[1:]
    statistics = ("max", "mean", "median", "min", "stddev", "sum", "var")
    for kind, name in itertools.product(("stack", "large", "flat", "labels", "point"), TYPES):
        a = f"{kind}-{name}-a.tif" if kind in ("stack", "large", "point") else f"{kind}-{name}.tif"
        b = a.replace("-a.", "-b.") if kind != "labels" else a.replace("labels", "flat")
        nest = pages if kind not in ("large", "point") else []
        mask = "mask-large.tif" if kind == "large" else "mask-stack.tif"
        yield ["info", a, *nest]
        for per in per3:
            for masked in ([], ["--mask", mask]):
                yield ["stats", a, *nest, *per, *masked]
                yield ["histogram", a, *nest, *per, *masked]
        for masked in ([], ["--mask", mask]):
            yield ["histogram", a, *nest, "--classes", "10", "--min", "0", "--max", "100", *masked]
            yield ["histogram", a, *nest, "--bin-width", "3.5", "--per", "plan", *masked]
            yield ["paraboloid", a, *nest, *masked]
            for per in per2:
                yield ["percent", a, *nest, *per, *masked]
                yield ["percent", "--binary", a, *nest, *per, *masked]
        yield ["entropy", a, *nest]
        yield ["entropy", a, *nest, "--classes", "64"]
        yield ["noise", a, *nest]
        yield ["similarity", a, b, *nest]
        yield ["similarity", a, a, *nest, "--peak", "1000"]
        for per in per2:
            yield ["kde", a, *nest, *per, "--samples", "50", "--bandwidth", "scott"]
            yield ["count", a, *nest, *per]
            yield ["locate", "--binary", a, *nest, *per, "--limit", "60"]
            yield ["ncc", a, b, *nest, *per]
            yield ["pearson", a, b, *nest, *per]
            other = "int8" if name == "float32" else "float32"
            yield ["pearson", a, b.replace(name, other), *nest, *per]
            yield ["ncc", a, b.replace(name, other), *nest, *per]
        for statistic in statistics:
            for axis in "xy":
                yield ["project", a, *nest, "--axis", axis, "--stat", statistic]
            for axis in "zt":
                yield ["project", a, *nest, "--axis", axis, "--stat", statistic, "-o", "OUT.tif"]
        yield ["project", a, *nest, "--axis", "z", "--stat", "mean", "-o", "OUT.tif", "--out-type", "float32"]
    for per in per3:
        yield ["stats", "odd.tif", *pages, *per]
        yield ["stats", "odd.tif", *pages, *per, "--mask", "none-stack.tif"]
        yield ["histogram", "odd.tif", *pages, *per, "--mask", "none-stack.tif"]
        yield ["histogram", "odd.tif", *pages, *per, "--min", "-5", "--max", "5"]
    for statistic in statistics:
        for axis in "xyzt":
            yield ["project", "odd.tif", *pages, "--axis", axis, "--stat", statistic] + \
                (["-o", "OUT.tif"] if axis in "zt" else [])
    for verb in ("noise", "entropy"):
        yield [verb, "odd.tif", *pages]
    for per in per2:
        for verb in ("percent", "locate"):
            yield [verb, "binary.tif", *pages, *per]
        yield ["percent", "binary.tif", *pages, *per, "--mask", "mask-stack.tif"]


def run(program, folder, words):
    out = os.path.join(folder, "OUT.tif")
    if os.path.exists(out):
        os.remove(out)
    done = subprocess.run([program, *words], cwd=folder, capture_output=True, check=False)
    image = b""
    if os.path.exists(out):
        with open(out, "rb") as file:
            image = file.read()
    return done.returncode, done.stdout, done.stderr, image


def main():
    old, new = (os.path.abspath(p) for p in sys.argv[1:3])
    sets = [s for s in ("generic", "sse2", "avx", "avx2", "avx512")
            if b"does not have it" not in subprocess.run([old, "processors", "--isa", s], capture_output=True,
                                                         check=False).stderr]
    runs = different = failed = 0
    with tempfile.TemporaryDirectory() as folder:
        make_images(folder)
        everything = [["processors", "--json"], ["processors"]]
        for words in commands():
            for isa in [None, *sets]:
                forced = [] if isa is None else ["--isa", isa]
                if words[0] != "info" or isa is None:
                    everything.append([*words, "--json", *forced, "--threads",
                                       "2" if isa is None and words[0] != "kde" else "1"])
            everything.append(words + ["--threads", "1"])
        for words in everything:
            a, b = run(old, folder, words), run(new, folder, words)
            runs += 1
            failed += a[0] != 0
            if a != b:
                different += 1
                print("differs:", " ".join(words))
    print(f"{runs} runs in {', '.join(sets)}: {different} differ ({failed} fail in both alike)")
    return different != 0


if __name__ == "__main__":
    sys.exit(main())
