#!/usr/bin/env python3
"""Reads image files that other libraries wrote, and compares every pixel: check_formats.py PRINT_IMAGE ORLIX

PRINT_IMAGE prints what a file is and the CRC-32 of its pixels; ORLIX is the program."""

import gzip
import io
import json
import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import zlib

import h5py
import imageio.v3 as imageio
import mrcfile
import nibabel
import nrrd
import numpy as np
import pandas
import SimpleITK
import tifffile
import zarr

PRINT_IMAGE, ORLIX = (os.path.abspath(path) for path in sys.argv[1:3])
TYPES = ["uint8", "int8", "uint16", "int16", "uint32", "int32", "float32"]
random = np.random.default_rng(17)
faults = []
checks = 0


def make(shape, dtype):
    """Pixels that use the whole range of their type."""
    if np.dtype(dtype) == bool:
        return random.integers(0, 2, shape).astype(bool)
    if np.issubdtype(dtype, np.floating):
        return random.normal(0, 100, shape).astype(dtype)
    info = np.iinfo(dtype)
    return random.integers(info.min, info.max, shape, dtype=dtype, endpoint=True)


def tczyx(array, axes):
    """The array with all five axes; S counts as C."""
    axes = axes.replace("S", "C")
    array = np.asarray(array)
    for axis in "TCZYX":
        if axis not in axes:
            array, axes = array[..., np.newaxis], axes + axis
    return np.transpose(array, [axes.index(axis) for axis in "TCZYX"])


def fault(what):
    faults.append(what)
    print("FAULT:", what)


def print_image(path, *options):
    done = subprocess.run([PRINT_IMAGE, str(path), *map(str, options)], capture_output=True, text=True)
    if not done.stdout.startswith("{"):
        return {"error": f"exit status {done.returncode}: {done.stderr}"}
    return json.loads(done.stdout)


def expect(path, array, axes, *options, **facts):
    """The file holds the array, whose axes are these; facts are further fields of what it says of itself."""
    global checks
    checks += 1
    found = print_image(path, *options)
    name = f"{path} {' '.join(map(str, options))}"
    if "error" in found:
        return fault(f"{name}: {found['error']}")
    whole = tczyx(array, axes)
    dtype = "binary" if whole.dtype == bool else whole.dtype.name
    little = np.ascontiguousarray(whole.astype(whole.dtype.newbyteorder("<")))
    expected = {"type": dtype, "size": list(whole.shape), "crc": zlib.crc32(little.tobytes()), **facts}
    expected["crcOfParts"] = expected["crc"]
    for key, value in expected.items():
        same = np.allclose(found[key], value, rtol=1e-6) if key in ("pixelSize", "scale") else found[key] == value
        if not same:
            fault(f"{name}: {key} is {found[key]}, not {value}")
    return found


def expect_error(path, text, *options):
    global checks
    checks += 1
    found = print_image(path, *options)
    if text not in found.get("error", ""):
        fault(f"{path} {options}: {found} lacks {text!r}")


def run(*arguments, status=0, stdin=None):
    global checks
    checks += 1
    done = subprocess.run([ORLIX, *map(str, arguments)], capture_output=True, stdin=stdin)
    if done.returncode != status:
        fault(f"orlix {arguments}: exit status {done.returncode}, {done.stderr.decode()}")
    return done.stdout.decode(), done.stderr.decode()


def expect_note(path, text, *options):
    found = print_image(path, *options)
    if not any(text in note for note in found.get("notes", [])):
        fault(f"{path} {options}: no note holds {text!r}: {found}")


def check_tiff():
    for dtype in TYPES + ["bool"]:
        for byteorder in "<>":
            pixels = make((3, 37, 41), dtype)
            tifffile.imwrite("a.tif", pixels, byteorder=byteorder, photometric="minisblack")
            expect("a.tif", pixels, "ZYX", compression="none")
    for compression, name in [("lzw", "LZW"), ("zlib", "Deflate"), ("zstd", "ZSTD"), ("packbits", "PackBits")]:
        for options in [{}, {"tile": (32, 16)}, {"rowsperstrip": 5}]:
            predictor = compression in ("lzw", "zlib", "zstd")
            pixels = make((40, 50), "uint16")
            tifffile.imwrite("a.tif", pixels, compression=compression, predictor=predictor, **options)
            expect("a.tif", pixels, "YX", compression=name)
    large = (7 * np.arange(6100)[:, np.newaxis] + np.arange(6100)).astype("uint16")
    for compression in (None, "zlib", "lzw"):  # a strip that is not decoded whole
        tifffile.imwrite("a.tif", large, compression=compression, rowsperstrip=6100)
        expect("a.tif", large, "YX")
    for planar in ("contig", "separate"):
        shape, axes = ((2, 30, 20, 3), "ZYXS") if planar == "contig" else ((2, 3, 30, 20), "ZSYX")
        for options in [{}, {"tile": (16, 16)}, {"compression": "zlib"}]:
            pixels = make(shape, "uint16")
            tifffile.imwrite("a.tif", pixels, photometric="rgb", planarconfig=planar, metadata=None, **options)
            expect("a.tif", pixels, axes)
    for bits in (10, 12, 14):
        pixels = random.integers(0, 1 << bits, (5, 33), dtype="uint16")
        write_packed("a.tif", pixels, bits)
        expect("a.tif", pixels, "YX")
    for dtype, option in [("float64", "float32"), ("float16", "float32"), ("int64", "int32"), ("uint64", "uint32")]:
        pixels = random.integers(0, 1000, (11, 13)).astype(dtype)
        tifffile.imwrite("a.tif", pixels)
        expect_error("a.tif", f"{dtype} pixels are not measured as they are: convert them with --as {option}")
        expect("a.tif", pixels.astype(option), "YX", "--as", option, notes=[])
    pixels = np.array([[0.5, 1e300, -3, np.nan, np.inf, 254.5, 255.5, 16777217]])
    tifffile.imwrite("a.tif", pixels)
    expect("a.tif", np.array([[0, 255, 0, 0, 255, 254, 255, 255]], "uint8"), "YX", "--as", "uint8",
           notes=["a.tif: 8 of 8 pixels changed their value when they were converted from float64 to uint8"])
    with np.errstate(over="ignore"):
        expect("a.tif", pixels.astype("float32"), "YX", "--as", "float32")
    expect_note("a.tif", "2 of 8 pixels changed", "--as", "float32")
    wide = np.array([[0, 1, 2**53 + 1, 2**63 - 1, -2**63, -1, 2**31, 2**24 + 1]], "int64")
    tifffile.imwrite("a.tif", wide)
    expect("a.tif", wide.astype("float32"), "YX", "--as", "float32")
    expect_note("a.tif", "3 of 8 pixels changed", "--as", "float32")
    expect("a.tif", np.clip(wide, -2**31, 2**31 - 1).astype("int32"), "YX", "--as", "int32")
    expect_note("a.tif", "4 of 8 pixels changed", "--as", "int32")
    tifffile.imwrite("a.tif", np.ones((8, 8), "complex64"))
    expect_error("a.tif", "64-bit complex float pixels are not read")
    tifffile.imwrite("a.tif", make((32, 48), "uint8"), compression="jpeg2000")
    expect_error("a.tif", "JPEG 2000")


def write_packed(path, pixels, bits):
    """A TIFF file of numbers of so many bits, the highest bit first; rows begin with a byte."""
    rows = b""
    for row in pixels:
        text = "".join(f"{value:0{bits}b}" for value in row)
        text += "0" * (-len(text) % 8)
        rows += int(text, 2).to_bytes(len(text) // 8, "big")
    height, width = pixels.shape
    tags = [(256, 4, width), (257, 4, height), (258, 3, bits), (259, 3, 1), (262, 3, 1), (273, 4, 8), (277, 3, 1),
            (278, 4, height), (279, 4, len(rows))]
    directory = struct.pack("<H", len(tags))
    for tag, kind, value in tags:
        directory += struct.pack("<HHII", tag, kind, 1, value)
    pathlib.Path(path).write_bytes(b"II*\0" + struct.pack("<I", 8 + len(rows)) + rows + directory + bytes(4))


def check_tiff_axes():
    # OME: any order, samples that use up channels, several images, files of one set, reduced resolutions.
    for axes, shape in [("TCZYX", (2, 3, 4, 20, 30)), ("ZCYX", (4, 3, 20, 30)), ("TZYX", (2, 4, 20, 30)),
                        ("CTZYX", (3, 2, 4, 20, 30)), ("ZTCYX", (4, 2, 3, 20, 30))]:
        pixels = make(shape, "uint16")
        tifffile.imwrite("a.ome.tif", pixels, photometric="minisblack",
                         metadata={"axes": axes, "PhysicalSizeX": 0.1, "PhysicalSizeXUnit": "µm", "PhysicalSizeY": 0.2,
                                   "PhysicalSizeYUnit": "µm", "PhysicalSizeZ": 0.5, "PhysicalSizeZUnit": "µm"})
        expect("a.ome.tif", pixels, axes, rule="OME-XML", pixelSize=[0.1, 0.2, 0.5], unit="um")
    pixels = make((2, 20, 30, 3), "uint8")
    tifffile.imwrite("a.ome.tif", pixels, photometric="rgb", metadata={"axes": "ZYXS"})
    expect("a.ome.tif", pixels, "ZYXS", rule="OME-XML")
    with tifffile.TiffWriter("a.ome.tif", ome=True) as tiff:
        first, second = make((3, 20, 30), "uint8"), make((2, 25, 35), "uint16")
        tiff.write(first, metadata={"axes": "ZYX", "Name": "one"})
        tiff.write(second, metadata={"axes": "TYX", "Name": "two"})
    expect("a.ome.tif", first, "ZYX", "--series", 0)
    expect("a.ome.tif", second, "TYX", "--series", 1)
    expect_error("a.ome.tif", "it holds 2 images: pick one with --series (0: 30 x 20, 3 pages, \"one\"; 1: 35 x 25")
    with tifffile.TiffWriter("a.ome.tif") as tiff:
        pixels = make((2, 64, 64), "uint8")
        tiff.write(pixels, subifds=1, metadata={"axes": "CYX"}, photometric="minisblack")
        tiff.write(pixels[:, ::2, ::2], subfiletype=1)
    expect("a.ome.tif", pixels, "CYX")
    with tifffile.TiffWriter("a.tif") as tiff:
        for plane in pixels:
            tiff.write(plane, metadata=None)
            tiff.write(plane[::2, ::2], subfiletype=1, metadata=None)
    expect("a.tif", pixels, "ZYX")
    parts = make((3, 20, 30), "uint16")
    xml = ('<?xml version="1.0"?><OME xmlns="http://www.openmicroscopy.org/Schemas/OME/2016-06" UUID="urn:uuid:{own}">'
           '<Image ID="Image:0"><Pixels ID="Pixels:0" DimensionOrder="XYCZT" Type="uint16" SizeX="30" SizeY="20" '
           'SizeC="1" SizeZ="3" SizeT="1"><Channel ID="Channel:0:0" SamplesPerPixel="1"/>' +
           "".join(f'<TiffData FirstZ="{z}" IFD="0" PlaneCount="1"><UUID FileName="set_{z}.ome.tif">urn:uuid:{z}</UUID>'
                   "</TiffData>" for z in (2, 0, 1)) + "</Pixels></Image></OME>")
    for z in range(3):
        tifffile.imwrite(f"set_{z}.ome.tif", parts[z], description=xml.replace("{own}", str(z)), metadata=None)
    for z in range(3):
        expect(f"set_{z}.ome.tif", parts, "ZYX")
    expect("set_0.ome.tif", parts, "ZYX", "--stack", "z", "set_1.ome.tif", "set_2.ome.tif")  # they are one
    with open("piped", "wb") as file:
        file.write(pathlib.Path("set_2.ome.tif").read_bytes())
    expect("piped", parts, "ZYX")  # a renamed file knows itself
    # Its XML may be in another file: one of the set, or none of it.
    tifffile.imwrite("n.ome.tif", parts[1:], metadata=None, description=(
        '<?xml version="1.0"?><OME UUID="urn:uuid:n"><BinaryOnly MetadataFile="m.ome.tif" UUID="urn:uuid:m"/></OME>'))
    planes = [("m", 0), ("n", 0), ("n", 1)]
    companion = xml[:xml.index("<TiffData")] + "".join(
        f'<TiffData FirstZ="{z}" IFD="{page}" PlaneCount="1"><UUID FileName="{name}.ome.tif">urn:uuid:{name}</UUID></TiffData>'
        for z, (name, page) in enumerate(planes)) + "</Pixels></Image></OME>"
    tifffile.imwrite("m.ome.tif", parts[0], metadata=None, description=companion.replace("{own}", "m"))
    expect("m.ome.tif", parts, "ZYX")
    expect("n.ome.tif", parts, "ZYX")
    pathlib.Path("c.companion.ome").write_text(companion.replace("{own}", "c"))
    for name, pages in (("m", parts[:1]), ("n", parts[1:])):
        tifffile.imwrite(f"{name}.ome.tif", pages, metadata=None, description=(
            f'<?xml version="1.0"?><OME UUID="urn:uuid:{name}"><BinaryOnly MetadataFile="c.companion.ome" '
            'UUID="urn:uuid:c"/></OME>'))
    expect("m.ome.tif", parts, "ZYX")
    expect("n.ome.tif", parts, "ZYX")
    tifffile.imwrite("a.ome.tif", parts, metadata={
        "axes": "ZYX", "PhysicalSizeX": 0.1, "PhysicalSizeXUnit": "µm", "PhysicalSizeY": 200,
        "PhysicalSizeYUnit": "nm", "PhysicalSizeZ": 0.0005, "PhysicalSizeZUnit": "mm"})
    expect("a.ome.tif", parts, "ZYX", pixelSize=[0.1, 0.2, 0.5], unit="um")
    os.rename("set_1.ome.tif", "gone.tif")
    expect_error("set_0.ome.tif", "place planes in set_1.ome.tif, which is not there")

    # ImageJ: its order, calibration, signed data, big stacks behind one directory.
    pixels = make((2, 4, 3, 20, 30), "uint16")
    tifffile.imwrite("a.tif", pixels, imagej=True, resolution=(4, 2),
                     metadata={"axes": "TZCYX", "unit": "um", "spacing": 0.7})
    expect("a.tif", pixels, "TZCYX", rule="ImageJ", pixelSize=[0.25, 0.5, 0.7], unit="um")
    description = "ImageJ=1.53\nimages=24\nchannels=3\nslices=4\nframes=2\norder=zct\nhyperstack=true\n"
    tifffile.imwrite("a.tif", pixels.reshape(24, 20, 30), description=description, metadata=None, byteorder=">")
    expect("a.tif", pixels.reshape(2, 3, 4, 20, 30), "TCZYX", rule="ImageJ")
    description = "ImageJ=1.53\nimages=1\ncf=0\nc0=-32768.0\nc1=1.0\nvunit=Gray Value\n"
    tifffile.imwrite("a.tif", pixels[0, 0, 0], description=description, metadata=None)
    expect("a.tif", pixels[0, 0, 0], "YX", scale=[1, -32768])
    expect("a.tif", pixels[0, 0, 0].astype("float32") - 32768, "YX", "--scaled")
    description = "ImageJ=1.53\nimages=5\nunit=cm\n"
    tifffile.imwrite("a.tif", pixels[0, :, 0], description=description, metadata=None, resolution=(100, 50),
                     resolutionunit="CENTIMETER", photometric="minisblack")
    expect_error("a.tif", "it states 5 images (ImageJ), but has 4 pages")
    expect("a.tif", pixels[0, :, 0], "ZYX", "--pages", "z=4", pixelSize=[0.01, 0.02, 0], unit="cm")
    tifffile.imwrite("a.tif", pixels[0, :, 0], description="from host:OMERO", metadata=None,
                     photometric="minisblack")
    expect("a.tif", pixels[0, :, 0], "ZYX")
    colour = make((3, 20, 30, 3), "uint8")
    tifffile.imwrite("a.tif", colour, imagej=True, photometric="rgb", metadata={"axes": "ZYXS"})
    expect("a.tif", colour, "ZYXS")
    write_big_stack("big.tif")

    # tifffile's JSON, with its axes and without.
    for axes, shape in [("TZCYX", (2, 4, 3, 20, 30)), ("TZYX", (2, 4, 20, 30)), ("CYX", (3, 20, 30)),
                        ("TYX", (2, 20, 30)), ("TCYXS", (2, 3, 20, 30, 3))]:
        pixels = make(shape, "uint8")
        tifffile.imwrite("a.tif", pixels, metadata={"axes": axes},
                         photometric="rgb" if axes[-1] == "S" else "minisblack")
        whole = pixels if axes[-1] != "S" else np.moveaxis(pixels, 4, 2).reshape(2, 9, 20, 30)
        expect("a.tif", whole, "TCYX" if axes[-1] == "S" else axes, rule="tifffile axes")
    pixels = make((2, 3, 4, 20, 30), "uint8")
    tifffile.imwrite("a.tif", pixels, photometric="minisblack")
    expect("a.tif", pixels, "TCZYX", rule="tifffile shape")
    tifffile.imwrite("a.tif", pixels, photometric="minisblack", metadata={"axes": "TZCYX"}, truncate=True)
    expect("a.tif", pixels, "TZCYX", rule="tifffile axes")
    expect("a.tif", pixels.reshape(24, 20, 30), "TYX", "--pages", "t=24")

    tifffile.imwrite("a.tif", make((7, 9, 5), "uint8"), metadata={"axes": "YXZ"}, photometric="minisblack")
    expect_error("a.tif", "its axes (tifffile) are XZ in a page, where YX is read")

    # Volumes in one page, pages of several sizes.
    volume = make((32, 48, 64), "uint16")
    for options in [{"tile": (16, 16, 32)}, {"tile": (16, 16, 32), "compression": "zlib"}, {"tile": (1, 16, 32)},
                    {"tile": (16, 16, 32), "byteorder": ">"}]:
        tifffile.imwrite("a.tif", volume, volumetric=True, metadata=None, **options)
        expect("a.tif", volume, "ZYX", rule="TIFF image depth")
    volumes = np.stack([volume, volume[::-1]])
    tifffile.imwrite("a.tif", volumes, volumetric=True, tile=(16, 16, 32), metadata={"axes": "TZYX"})
    expect("a.tif", volumes, "TZYX")
    for options in [{"tile": (16, 16, 32), "compression": "lzw"}, {}]:
        tifffile.imwrite("a.tif", volume, volumetric=True, metadata=None, **options)
        expect_error("a.tif", "holds a volume in")
    with tifffile.TiffWriter("a.tif") as tiff:
        small, large = make((2, 10, 12), "uint8"), make((3, 20, 24), "uint8")
        for plane in [*large, *small]:
            tiff.write(plane, metadata=None)
    expect_error("a.tif", "pick one with --series (0: 24 x 20, 3 pages, 8-bit unsigned integer; 1: 12 x 10, 2 pages")
    expect("a.tif", large, "ZYX", "--series", 0)
    expect("a.tif", small, "ZYX", "--series", 1)


def write_big_stack(path):
    """As ImageJ writes a stack of more than 4 GiB: one directory, big-endian, all pixels behind it."""
    width, height, images = 2048, 2048, 1030
    description = f"ImageJ=1.53\nimages={images}\nslices={images}\n".encode() + b"\0"
    tags = [(256, 4, width), (257, 4, height), (258, 3, 8), (259, 3, 1), (262, 3, 1), (270, 2, 134), (273, 4, 4096),
            (277, 3, 1), (278, 4, height), (279, 4, width * height)]
    with open(path, "wb") as file:
        file.write(b"MM\0*" + struct.pack(">I", 8) + struct.pack(">H", len(tags)))
        for tag, kind, value in tags:
            count = len(description) if tag == 270 else 1
            file.write(struct.pack(">HHI", tag, kind, count) +
                       (struct.pack(">HH", value, 0) if kind == 3 else struct.pack(">I", value)))
        file.write(bytes(4))
        file.seek(134)
        file.write(description)
        last = 4096 + (images - 1) * width * height
        file.seek(last)
        file.write(bytes(range(256)))
        file.truncate(last + width * height)
    if os.path.getsize(path) < 1 << 32:
        fault("the big stack is small")
    output, _ = run("stats", path, "--plane", f"z={images - 1}", "--json")
    result = json.loads(output)
    if result["image"]["z"] != 1 or result["results"][0]["Sum"] != 255 * 128:
        fault(f"the last plane of a big stack: {output}")
    os.remove(path)


def check_many_pages():
    with tifffile.TiffWriter("pages.tif") as tiff:
        for i in range(70000):
            tiff.write(np.full((2, 2), i % 251, "uint8"), metadata=None, contiguous=False)
    output, _ = run("stats", "pages.tif", "--json")
    total = sum(i % 251 for i in range(70000)) * 4
    if json.loads(output)["image"]["z"] != 70000 or json.loads(output)["results"][0]["Sum"] != total:
        fault(f"70000 pages: {output}")


def check_pictures():
    for dtype in ("uint8", "uint16"):
        for channels in (1, 3, 4):
            shape = (33, 45) if channels == 1 else (33, 45, channels)
            pixels = make(shape, dtype)
            if dtype == "uint8" or channels == 1:
                imageio.imwrite("a.png", pixels)
                expect("a.png", pixels, "YX" if channels == 1 else "YXS", compression="deflate")
    from PIL import Image
    bits = make((20, 21), bool)
    Image.fromarray(bits).save("a.png")
    expect("a.png", bits, "YX")
    indices = random.integers(0, 16, (20, 21), dtype="uint8")
    palette = Image.fromarray(indices, mode="P")
    palette.putpalette(list(range(48)))
    for depth in (4, 8):
        palette.save("a.png", bits=depth)
        expect("a.png", indices, "YX")
        expect_note("a.png", "indices of a palette")
    pair = make((20, 21, 2), "uint8")
    Image.fromarray(pair, mode="LA").save("a.png")
    expect("a.png", pair, "YXS")
    write_interlaced("a.png", indices)
    expect("a.png", indices, "YX")
    yy, xx = np.mgrid[0:60, 0:70]
    for shape, axes in [((60, 70), "YX"), ((60, 70, 3), "YXS")]:
        smooth = (yy * 2 + xx).astype("uint8")
        smooth = smooth if len(shape) == 2 else np.stack([smooth, smooth[::-1], 255 - smooth], -1)
        for options in [{}, {"progressive": True}]:
            Image.fromarray(smooth).save("a.jpg", quality=90, **options)
            expect("a.jpg", np.asarray(Image.open("a.jpg")), axes, notes=[])
    Image.fromarray(smooth).save("a.jpg")
    data = pathlib.Path("a.jpg").read_bytes()
    pathlib.Path("cut.jpg").write_bytes(data[:-50])
    expect_note("cut.jpg", "its pixels may be damaged, and some are guessed")


def write_interlaced(path, pixels):
    """A PNG file whose rows come in seven passes."""
    height, width = pixels.shape
    data = b""
    for x0, y0, dx, dy in [(0, 0, 8, 8), (4, 0, 8, 8), (0, 4, 4, 8), (2, 0, 4, 4), (0, 2, 2, 4), (1, 0, 2, 2),
                           (0, 1, 1, 2)]:
        for row in pixels[y0::dy, x0::dx]:
            data += b"\0" + row.tobytes() if len(row) else b""

    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

    header = struct.pack(">IIBBBBB", width, height, 8, 0, 0, 0, 1)
    pathlib.Path(path).write_bytes(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(data)) +
                                   chunk(b"IEND", b""))


def check_nifti():
    for dtype in TYPES:
        for name in ("a.nii", "a.nii.gz", "a.hdr"):
            for kind in (nibabel.Nifti1Image, nibabel.Nifti2Image) if name != "a.hdr" else (nibabel.Nifti1Pair,):
                pixels = make((11, 12, 5, 3), dtype)  # x, y, z, t
                image = kind(pixels, np.diag([0.5, 0.6, 2, 1]), dtype=dtype)
                image.header.set_xyzt_units("mm", "sec")
                image.to_filename(name)
                expect(name, pixels, "XYZT", pixelSize=[0.5, 0.6, 2], unit="mm")
    pixels = make((11, 12, 5), "int16")
    header = nibabel.Nifti1Header(endianness=">")
    header.set_data_dtype("int16")
    nibabel.Nifti1Image(pixels, np.eye(4), header).to_filename("a.nii")
    expect("a.nii", pixels, "XYZ")
    image = nibabel.Nifti1Image(pixels, np.eye(4))
    image.header.set_slope_inter(0.5, 10)
    image.to_filename("a.nii")
    stored = np.asarray(nibabel.load("a.nii").dataobj.get_unscaled())
    expect("a.nii", stored, "XYZ", scale=[0.5, 10])
    expect("a.nii", (stored * 0.5 + 10).astype("float32"), "XYZ", "--scaled")
    _, notes = run("stats", "a.nii")
    if "its numbers stand for 0.5 * stored + 10; the stored ones are measured" not in notes:
        fault(f"no note of the scale: {notes}")
    raw = bytearray(pathlib.Path("a.nii").read_bytes())
    raw[44:46] = bytes(2)
    pathlib.Path("b.nii").write_bytes(raw)
    expect_error("b.nii", "its header states a size of 0")
    compressed = gzip.compress(pathlib.Path("a.nii").read_bytes())
    pathlib.Path("b.nii.gz").write_bytes(compressed + bytes(512))
    expect("b.nii.gz", stored, "XYZ")
    pathlib.Path("b.nii.gz").write_bytes(compressed[:-8] + b"12345678")
    expect_error("b.nii.gz", "its compressed pixels are damaged")
    rgb = np.zeros((11, 12, 5), dtype=[("R", "u1"), ("G", "u1"), ("B", "u1")])
    for name in "RGB":
        rgb[name] = make((11, 12, 5), "uint8")
    nibabel.Nifti1Image(rgb, np.eye(4)).to_filename("a.nii")
    expect("a.nii", np.stack([rgb[name] for name in "RGB"], -1), "XYZS")
    wide = make((4, 5, 6), "int64") % 1000
    nibabel.Nifti1Image(wide, np.eye(4), dtype="int64").to_filename("a.nii")
    expect("a.nii", wide.astype("int32"), "XYZ", "--as", "int32", notes=[])
    vectors = make((4, 5, 6, 1, 3), "float32")
    nibabel.Nifti1Image(vectors, np.eye(4)).to_filename("a.nii")
    expect("a.nii", vectors[:, :, :, 0, :], "XYZC")


def check_nrrd():
    for dtype in TYPES:
        for encoding in ("raw", "gzip", "bzip2", "ascii"):
            for endian in ("little", "big") if encoding != "ascii" else ("little",):
                pixels = make((7, 8, 9), dtype)  # x, y, z
                nrrd.write("a.nrrd", pixels, {"encoding": encoding, "endian": endian, "spacings": [0.5, 1.5, 2.5]})
                expect("a.nrrd", pixels, "XYZ", pixelSize=[0.5, 1.5, 2.5])
    pixels = make((3, 8, 9, 4), "uint8")
    nrrd.write("a.nrrd", pixels, {"kinds": ["RGB-color", "domain", "domain", "domain"],
                                  "space directions": np.array([[np.nan] * 3, [1, 0, 0], [0, 2, 0], [0, 0, 3]]),
                                  "space": "left-posterior-superior"})
    expect("a.nrrd", pixels, "CXYZ", pixelSize=[1, 2, 3])
    pixels = make((8, 9, 4, 5), "int16")
    nrrd.write("a.nrrd", pixels, {"kinds": ["domain", "domain", "domain", "time"]})
    expect("a.nrrd", pixels, "XYZT")
    nrrd.write("a.nhdr", pixels, {"encoding": "raw", "kinds": ["domain", "domain", "domain", "time"]})
    expect("a.nhdr", pixels, "XYZT")
    nrrd.write("a.nhdr", pixels, {"encoding": "gzip"})
    expect("a.nhdr", pixels, "XYZC")
    nrrd.write("a.nrrd", pixels[:, :, :, 0], {"labels": ["z", "y", "x"]})
    expect("a.nrrd", pixels[:, :, :, 0], "ZYX")
    planes = make((8, 9, 3), "uint16")
    for z in range(3):
        planes[:, :, z].T.tofile(f"plane{z + 1:03}.raw")
    text = "NRRD0004\ntype: uint16\ndimension: 3\nsizes: 8 9 3\nencoding: raw\nendian: little\ndata file: "
    pathlib.Path("a.nhdr").write_text(text + "plane%03d.raw 1 3 1\n")
    expect("a.nhdr", planes, "XYZ")
    pathlib.Path("a.nhdr").write_text(text + "LIST\nplane001.raw\nplane002.raw\nplane003.raw\n")
    expect("a.nhdr", planes, "XYZ")


def check_metaimage():
    for dtype in TYPES + ["float64"]:
        for name, compressed in [("a.mha", False), ("a.mha", True), ("a.mhd", False), ("a.mhd", True)]:
            pixels = (make((5, 8, 9), dtype) if dtype != "float64" else make((5, 8, 9), "float32").astype("float64"))
            image = SimpleITK.GetImageFromArray(pixels)
            image.SetSpacing((0.5, 1.5, 2.5))
            SimpleITK.WriteImage(image, name, useCompression=compressed)
            options = ["--as", "float32"] if dtype == "float64" else []
            expect(name, pixels.astype("float32") if options else pixels, "ZYX", *options, pixelSize=[0.5, 1.5, 2.5])
    colour = make((8, 9, 3), "uint8")
    SimpleITK.WriteImage(SimpleITK.GetImageFromArray(colour, isVector=True), "a.mha")
    expect("a.mha", colour, "YXS")
    for z in range(3):  # headers of several lengths before the pixels
        pathlib.Path(f"slice{z}").write_bytes(bytes(z + 3) + colour[:, :, z].tobytes())
    pathlib.Path("l.mhd").write_text("ObjectType = Image\nNDims = 3\nDimSize = 9 8 3\nElementType = MET_UCHAR\n"
                                     "HeaderSize = -1\nElementDataFile = LIST\nslice0\nslice1\nslice2\n")
    expect("l.mhd", np.moveaxis(colour, 2, 0), "ZYX")
    os.remove("a.raw") if os.path.exists("a.raw") else None
    os.remove("a.zraw") if os.path.exists("a.zraw") else None
    expect_error("a.mhd", "which is not there")
    # NIfTI and NRRD from yet another library.
    volume = make((5, 8, 9), "int16")
    for name in ("b.nii.gz", "b.nrrd"):
        SimpleITK.WriteImage(SimpleITK.GetImageFromArray(volume), name)
        expect(name, volume, "ZYX")


def check_mrc():
    for dtype in ("int8", "int16", "uint16", "float32"):
        pixels = make((5, 8, 9), dtype)
        with mrcfile.new("a.mrc", pixels, overwrite=True) as file:
            file.voxel_size = (1.5, 1.5, 3)
            file.set_extended_header(np.zeros(100, "V80"))
        expect("a.mrc", pixels, "ZYX", pixelSize=[1.5, 1.5, 3], unit="angstrom")
        with mrcfile.new("a.mrc", pixels.astype(pixels.dtype.newbyteorder(">")), overwrite=True) as file:
            pass
        expect("a.mrc", pixels, "ZYX")
    half = make((5, 8, 9), "float16")
    with mrcfile.new("a.mrc", half, overwrite=True):
        pass
    expect("a.mrc", half.astype("float32"), "ZYX", "--as", "float32", notes=[])
    with mrcfile.new("a.mrc", np.ones((4, 4), "complex64"), overwrite=True):
        pass
    expect_error("a.mrc", "complex")


def check_npy():
    for dtype in TYPES + ["bool"]:
        for shape, axes in [((8, 9), "YX"), ((5, 8, 9), "ZYX"), ((2, 5, 8, 9), "CZYX"), ((3, 2, 5, 8, 9), "TCZYX")]:
            for order in "CF":
                for endian in "<>":
                    pixels = make(shape, dtype)
                    np.save("a.npy", np.asarray(pixels.astype(pixels.dtype.newbyteorder(endian)), order=order))
                    expect("a.npy", pixels, axes)
    pixels = make((30, 40, 3), "uint16")
    np.save("a.npy", pixels)
    expect_note("a.npy", "say --axes YXS")
    expect("a.npy", pixels, "YXS", "--axes", "YXS")
    expect("a.npy", pixels, "TYX", "--axes", "tyx")
    expect("a.npy", pixels, "TYX", "--pages", "t=30")
    expect_error("a.npy", "the letters of --axes YX are 2, but the array has 3 dimensions", "--axes", "YX")
    pixels = make((2, 3, 4, 8, 9), "uint8")
    np.save("a.npy", pixels)
    expect("a.npy", pixels, "CTZYX", "--pages", "z=4,t=3,c=2")
    np.save("a.npy", np.ones((3, 4), "complex64"))
    expect_error("a.npy", "complex of type c8")
    np.save("a.npy", np.zeros(3, dtype=[("a", "u1")]))
    expect_error("a.npy", "records")
    np.save("a.npy", np.zeros((0, 4)))
    expect_error("a.npy", "size of 0")
    large = make((70, 300, 5, 40), "uint16")  # larger than what is read at once, in all orders
    for order in "CF":
        np.save("a.npy", np.asarray(large, order=order))
        expect("a.npy", large, "TYCX", "--axes", "TYCX")


def check_hdf5():
    for dtype in TYPES + ["bool"]:
        for options in [{}, {"chunks": (2, 5, 7)}, {"chunks": (2, 5, 7), "compression": "gzip", "shuffle": True}]:
            pixels = make((5, 18, 19), dtype)
            with h5py.File("a.h5", "w") as file:
                file.create_dataset("data", data=pixels, **options)
            expect("a.h5", pixels, "ZYX", compression="gzip" if "compression" in options else "none")
    with h5py.File("a.h5", "w") as file:
        first, second = make((5, 18, 19), "uint16"), make((18, 19, 3, 2), "int16").astype(">i2")
        file["group/first"] = first
        file["group/first"].attrs["element_size_um"] = (2.0, 0.5, 0.25)
        file["second"] = second
        for dimension, label in enumerate(("y", "x", "channel", "time")):
            file["second"].dims[dimension].label = label
        file["line"] = np.zeros(7)
        file["text"] = "no image"
    expect_error("a.h5", "it holds 2 images: pick one with --series, or name one as a.h5:/group/first (0: /group/first (5 x 18 x 19 uint16)")
    expect("a.h5:/group/first", first, "ZYX", pixelSize=[0.25, 0.5, 2], unit="um")
    expect("a.h5:/group", first, "ZYX")
    expect("a.h5:/second", second.astype("int16"), "YXCT", rule="dimension labels")
    expect("a.h5", second.astype("int16"), "YXCT", "--series", 1)
    expect_error("a.h5:/none", "there is no array /none in it")
    with h5py.File("a.h5", "w") as file:
        tagged = make((3, 18, 19, 2), "uint8")
        file["data"] = tagged
        file["data"].attrs["axistags"] = json.dumps({"axes": [{"key": key} for key in "tyxc"]})
        file["data"].attrs["scale_factor"] = 0.5
        file["data"].attrs["add_offset"] = -1.0
    expect("a.h5", tagged, "TYXC", rule="axistags", scale=[0.5, -1])
    expect("a.h5", (tagged * 0.5 - 1).astype("float32"), "TYXC", "--scaled")
    with h5py.File("a.h5", "w") as file:
        file["data"] = tagged[..., 0]
        for dimension, label in enumerate(("trial", "", "x")):
            file["data"].dims[dimension].label = label
        numbers = h5py.enum_dtype({"background": 0, "set": 255}, basetype="u1")
        file.create_dataset("numbers", data=np.zeros((4, 5), "u1"), dtype=numbers)
    expect("a.h5", tagged[..., 0], "ZYX", rule="the number of dimensions")
    piped, _ = run("info", "-", "--json", stdin=subprocess.Popen(["cat", "a.h5"], stdout=subprocess.PIPE).stdout)
    if json.loads(piped)["results"][0]["z"] != 3:
        fault(f"HDF5 from a pipe: {piped}")
    layout = h5py.VirtualLayout(shape=(2, 18, 19), dtype="uint8")
    for z in range(2):
        with h5py.File(f"v{z}.h5", "w") as file:
            file["data"] = tagged[z, ..., 0]
        layout[z] = h5py.VirtualSource(f"v{z}.h5", "data", shape=(18, 19))
    with h5py.File("v.h5", "w") as file:
        file.create_virtual_dataset("data", layout)
    expect("v.h5", tagged[:2, ..., 0], "ZYX")
    os.remove("v1.h5")
    expect_error("v.h5", "its pixels are in v1.h5, which is not there")
    with h5py.File("a.h5", "w") as file:
        file["half"] = make((6, 7), "float16")
        half = file["half"][...]
    expect("a.h5", half.astype("float32"), "YX", "--as", "float32", notes=[])
    large = make((3, 400, 500, 60), "uint8")
    with h5py.File("a.h5", "w") as file:
        file.create_dataset("data", data=large, chunks=(1, 64, 64, 60))
    expect("a.h5", large, "TYXC", "--axes", "TYXC")
    with h5py.File("a.h5", "w") as file:
        file.create_dataset("data", data=make((40, 50), "uint8"), compression="lzf")
    expect_error("a.h5", "lzf")


def check_zarr():
    from numcodecs import BZ2, Blosc, GZip, Zlib, Zstd
    for dtype in TYPES + ["bool"]:
        pixels = make((5, 18, 19), dtype)
        for compressor in (None, Zstd(), GZip(), Zlib(), BZ2(), Blosc("lz4"), Blosc("zstd", shuffle=2), Blosc("blosclz")):
            for order in "CF":
                array = zarr.create_array("a.zarr", shape=pixels.shape, chunks=(2, 7, 8), dtype=dtype, zarr_format=2,
                                          compressors=compressor, order=order, overwrite=True)
                array[...] = pixels
                expect("a.zarr", pixels, "ZYX", notes=[])
        for codecs in (None, zarr.codecs.ZstdCodec(), zarr.codecs.GzipCodec(), zarr.codecs.BloscCodec()):
            for options in ({}, {"shards": (4, 14, 16)}, {"filters": zarr.codecs.TransposeCodec(order=(2, 0, 1))},
                            {"serializer": zarr.codecs.BytesCodec(endian="big")} if dtype not in ("int8", "uint8", "bool")
                            else {}):
                array = zarr.create_array("a.zarr", shape=pixels.shape, chunks=(2, 7, 8), dtype=dtype, zarr_format=3,
                                          compressors=codecs, overwrite=True, **options)
                array[...] = pixels
                expect("a.zarr", pixels, "ZYX", notes=[])
    array = zarr.create_array("a.zarr", shape=(40, 50), chunks=(16, 16), dtype="uint16", fill_value=7, overwrite=True)
    whole = np.full((40, 50), 7, "uint16")
    array[16:32, 16:32] = whole[16:32, 16:32] = 9
    expect("a.zarr", whole, "YX")
    expect_note("a.zarr", "chunks that were read are not there, which stands for the fill value")
    for dtype, fill in (("float16", 1.5), ("float32", np.nan), ("float32", 1.5)):
        for version in (2, 3):
            array = zarr.create_array("a.zarr", shape=(40, 50), chunks=(16, 16), dtype=dtype, fill_value=fill,
                                      zarr_format=version, overwrite=True)
            expect("a.zarr", np.full((40, 50), fill, "float32"), "YX", "--as", "float32")
    array = zarr.create(shape=(8, 8), chunks=(8, 8), dtype="uint8", zarr_format=3, store="a.zarr", overwrite=True, codecs=[
        zarr.codecs.TransposeCodec(order=(1, 0)),
        zarr.codecs.ShardingCodec(chunk_shape=(4, 4))])
    expect_error("a.zarr", "its shards are transposed, compressed or nested, which is not read")
    pathlib.Path("deep.zarr").mkdir()
    pathlib.Path("deep.zarr/zarr.json").write_text('{"node_type": "group", "attributes": ' + "[" * 200000 + "]" * 200000 + "}")
    expect_error("deep.zarr", "is no JSON")
    for version in (2, 3):
        write_ome_zarr(version)
    with open("a.zarr/0/c/0/0/0/0", "r+b") if os.path.exists("a.zarr/0/c") else open(os.devnull, "wb") as file:
        file.truncate(10)
    if os.path.exists("a.zarr/0/c"):
        expect_error("a.zarr", "its chunk c/0/0/0/0 is")


def write_ome_zarr(version):
    pixels = make((2, 3, 20, 30), "uint16")
    axes = [{"name": "t", "type": "time"}, {"name": "c", "type": "channel"},
            {"name": "y", "type": "space", "unit": "micrometer"}, {"name": "x", "type": "space", "unit": "micrometer"}]
    group = zarr.open_group("a.zarr", mode="w", zarr_format=version)
    for level, step in enumerate((1, 2)):
        reduced = pixels[:, :, ::step, ::step]
        array = group.create_array(str(level), shape=reduced.shape, chunks=(1, 1, 16, 16), dtype="uint16",
                                   **({"chunk_key_encoding": {"name": "v2", "separator": "/"}} if version == 2 else {}))
        array[...] = reduced
    multiscales = [{"axes": axes, "datasets": [
        {"path": str(level), "coordinateTransformations": [{"type": "scale", "scale": [1, 1, 0.5 * step, 0.25 * step]}]}
        for level, step in enumerate((1, 2))]}]
    group.attrs.update({"multiscales": multiscales} if version == 2 else {"ome": {"multiscales": multiscales}})
    expect("a.zarr", pixels, "TCYX", rule="OME-Zarr axes", pixelSize=[0.25, 0.5, 0], unit="um")
    expect("a.zarr/1", pixels[:, :, ::2, ::2], "TCYX", rule="OME-Zarr axes")


def check_stacks():
    planes = make((12, 9, 8), "uint16")
    os.makedirs("frames", exist_ok=True)
    for i, plane in enumerate(planes):
        tifffile.imwrite(f"frames/f{i + 1}.tif", plane)
    names = [f"frames/f{i + 1}.tif" for i in range(12)]
    expect(names[0], planes, "TYX", "--stack", "t", *names[1:])
    output, _ = run("stats", "frames/*.tif", "--stack", "z", "--per", "plan", "--json")
    sums = [row["Sum"] for row in json.loads(output)["results"]]
    if sums != planes.sum(axis=(1, 2), dtype=float).tolist():
        fault(f"files are not stacked in natural order: {sums}")
    table = pandas.read_csv(io.StringIO(run("stats", "frames", "--csv")[0]))
    if table.path.tolist() != names or table.Sum.tolist() != sums:
        fault(f"a folder is not what it holds, in natural order: {table}")
    piped, _ = run("stats", "-", "--json", stdin=subprocess.Popen(["cat", names[3]], stdout=subprocess.PIPE).stdout)
    if json.loads(piped)["results"][0]["Sum"] != sums[3]:
        fault(f"standard input: {piped}")
    with open(names[3], "rb") as file:
        if run("stats", "-", "--json", stdin=file)[0] != piped:
            fault("standard input from a file is another image than that from a pipe")


def check_csv():
    pixels = make((2, 20, 30), "float32")
    pixels[1, 3, 4] = np.nan
    os.makedirs("odd, \"names\"", exist_ok=True)
    name = "odd, \"names\"/a\nb ü.tif"
    tifffile.imwrite(name, pixels)

    def read(*arguments):
        return pandas.read_csv(io.StringIO(run(*arguments, "--csv")[0], newline=""))

    stats = read("stats", name, "--per", "plan")
    if list(stats.columns) != ["path", "z", "c", "t", "NbPixels", "Sum", "Mean", "Min", "Max", "StdDev"]:
        fault(f"the columns of stats: {list(stats.columns)}")
    if stats.path.tolist() != [name] * 2 or not np.isnan(stats.Sum[1]) or stats.Min[0] != pixels[0].min():
        fault(f"stats as CSV: {stats}")
    labels = random.integers(0, 5, (2, 20, 30), dtype="uint8")
    tifffile.imwrite("l.tif", labels)
    histogram = read("histogram", "l.tif", "--min", "0", "--max", "4", "--bin-width", "1")
    counts = np.bincount(labels.ravel(), minlength=5)
    if histogram.frequency.tolist() != counts.tolist() or histogram["from"].tolist() != [0, 1, 2, 3, 4]:
        fault(f"histogram as CSV: {histogram}")
    located = read("locate", "l.tif", "--binary", "--region", "5:25,10:18", "--plane", "z=1")
    z, y, x = np.nonzero(labels)
    inside = (z == 1) & (x >= 5) & (x < 25) & (y >= 10) & (y < 18)
    if sorted(zip(located.z, located.y, located.x)) != sorted(zip(z[inside], y[inside], x[inside])):
        fault("positions in a part are not those of the whole image")
    profile = read("project", "l.tif", "--axis", "x", "--stat", "sum", "--region", "5:25,10:18")
    if profile[profile.z == 1].value.tolist() != labels[1, 10:18, 5:25].sum(axis=0).tolist() or \
            profile["index"].tolist() != list(range(5, 25)) * 2:
        fault(f"a profile as CSV: {profile}")
    with tifffile.TiffWriter("sizes.tif") as tiff:
        for shape in ((10, 12), (10, 12), (5, 6)):
            tiff.write(make(shape, "uint8"), metadata=None)
    series = read("info", "sizes.tif").series.tolist()
    if series != ["12 x 10, 2 pages, 8-bit unsigned integer; 6 x 5, 8-bit unsigned integer"]:
        fault(f"a list as CSV: {series}")
    info = read("info", name, "l.tif")
    if info.type.tolist() != ["float32", "uint8"] or info.bytes.tolist() != [4800, 1200]:
        fault(f"info as CSV: {info}")


def check_bad_files():
    """One line of error, never a crash and never a number."""
    good = {}
    pixels = make((3, 20, 30), "uint16")
    tifffile.imwrite("g.tif", pixels)
    imageio.imwrite("g.png", pixels[0])
    nibabel.Nifti1Image(pixels, np.eye(4)).to_filename("g.nii.gz")
    nrrd.write("g.nrrd", pixels, {"encoding": "gzip"})
    SimpleITK.WriteImage(SimpleITK.GetImageFromArray(pixels), "g.mha", useCompression=True)
    with mrcfile.new("g.mrc", pixels, overwrite=True):
        pass
    np.save("g.npy", pixels)
    with h5py.File("g.h5", "w") as file:
        file.create_dataset("data", data=pixels, chunks=(1, 8, 8), compression="gzip")
    for path in sorted(pathlib.Path(".").glob("g.*")):
        data = path.read_bytes()
        damaged = f"damaged{''.join(path.suffixes)}"
        for size in [*range(0, min(len(data), 600), 23), len(data) // 2, len(data) - 1]:
            pathlib.Path(damaged).write_bytes(data[:size])
            found = print_image(damaged)
            whole = path.suffix in (".h5", ".png") and size == len(data) - 1  # behind the pixels
            if "error" not in found and not found["notes"] and not whole:
                fault(f"{path} cut to {size} of {len(data)} bytes: {found}")
            if "exit status" in found.get("error", ""):
                fault(f"{path} cut to {size} bytes: {found}")
        if path.suffix == ".h5" and "asan" in PRINT_IMAGE:
            continue  # the HDF5 library itself reads beyond its buffers there
        for _ in range(60):
            turned = bytearray(data)
            turned[random.integers(0, min(len(data), 2000))] = random.integers(0, 256)
            pathlib.Path(damaged).write_bytes(turned)
            if "exit status" in print_image(damaged).get("error", ""):
                fault(f"{path} with a byte turned: {print_image(damaged)}")
                pathlib.Path(damaged).rename(f"/tmp/crash{''.join(path.suffixes)}")
    np.save("t.npy", np.zeros((2, 2)))
    header = pathlib.Path("t.npy").read_bytes()
    pathlib.Path("t.npy").write_bytes(header.replace(b"(2, 2)", b"(1048576, 1048576)")[: len(header)])
    for error in (run("stats", "t.npy", status=1)[1], run("stats", "t.npy", "--as", "float32", status=1)[1]):
        if error.count("\n") != 1 or not error.startswith("orlix: t.npy: it states"):
            fault(f"a header that promises a terabyte: {error}")


with tempfile.TemporaryDirectory() as folder:
    os.chdir(folder)
    for check in [each for name, each in sorted(globals().items()) if name.startswith("check_")]:
        if len(sys.argv) < 4 or sys.argv[3] in check.__name__:
            check()
    os.chdir("/")
print(f"{checks} checks, {len(faults)} faults")
sys.exit(1 if faults else 0)
