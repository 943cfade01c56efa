"""The measures as Python sees them: names, signatures and docstrings, made of the library's own list.

Nothing here needs NumPy: the build makes type stubs with it.
"""

import re
from types import SimpleNamespace

from . import _core
from ._examples import EXAMPLES

PIXELS = "bool, uint8, int8, uint16, int16, uint32, int32 or float32"

#: What an array may be, for docstrings.
IMAGE = f"""Pixels of {PIXELS}: a NumPy array, a memory map or a view of one, anything with the buffer
    protocol or DLPack, an xarray ``DataArray``, what :func:`orlix.open` returns, or the path of a file. Measured
    where it lies if x is contiguous, else copied plane by plane. A Dask array gives a lazy result."""


def snake_case(name):
    """``"NbPixels"`` as ``"nb_pixels"``; ``"Centroid.x"`` as ``"centroid_x"``."""
    name = name.replace("NaN", "Nan").replace("Psnr", "PSNR").replace(".", "_")
    name = re.sub(r"(?<=[a-z])(?=[A-Z])", "_", name)
    return name.lower()


def _describe(entry):
    measure = SimpleNamespace(**entry)
    measure.takes_list = measure.inputs[-1]["is_list"]
    measure.record = "".join(word[0].upper() + word[1:] for word in measure.name.split())
    measure.is_table = measure.takes_list
    for parameter in measure.parameters:
        parameter["argument"] = parameter["name"].replace("-", "_")
    measure.field_names = [snake_case(field["name"]) for field in measure.fields]
    names = ["labels", "*images"] if measure.takes_list else ["image", "image2"][: len(measure.inputs)]
    measure.arguments = names
    return measure


#: By verb.
MEASURES = {entry["verb"]: _describe(entry) for entry in _core.list_measures()}


def _type_of(parameter):
    default = parameter["default"]
    if parameter["name"] == "bandwidth":
        return "str | float"
    if parameter["names"]:
        return "str"
    if isinstance(default, tuple):
        return "Sequence[float]"
    kind = "bool" if isinstance(default, bool) else "int" if parameter["is_whole"] else "float"
    return kind if default is not None else f"{kind} | None"


def list_arguments(measure):
    """The arguments of a measure's function: name, annotation, default (``None``: there is none), help."""
    arguments = []
    for name, given in zip(measure.arguments, measure.inputs):
        what = IMAGE if not arguments else "Another image of the same shape."
        if name == "labels":
            what = "Labels: an image of integers, 0 where there is none. As ``image`` of the other measures."
        elif name == "*images":
            what = "Images of the same shape that are measured in every region, or none."
        elif given["types"][-1:] == ["binary"] and len(given["types"]) == 1:
            what = "A binary image: bool. " + what
        arguments.append((name, "Any", None, what))
    parameters = list(measure.parameters)
    if measure.verb == "project":
        along = ("The axis: ``x`` gives a number for every column of each plan, ``y`` for every row, ``z`` and ``t`` an image "
                 "over all planes or times.")
        stat = parameters.pop(0)
        arguments += [("axis", "str", None, along), (stat["argument"], "str", None, f"The statistic: {stat['help']}.")]
    arguments.append(("axes", "str | None", "None", "The axes of the array, slowest first, as ``\"TCZYX\"``. Default: YX, "
                      "ZYX, CZYX or TCZYX by the number of dimensions; those of a ``DataArray`` or a file."))
    default = measure.per[0]
    covers = "``, ``".join(measure.per)
    if measure.verb != "project" and len(measure.per) > 1:
        arguments.append(("per", "str", repr(default), f"What one result covers: ``{covers}`` (``plane`` is a plan). Per plan "
                          "each value becomes an array of the shape that is left without y and x, per volume without z."))
    if measure.takes_mask:
        arguments.append(("mask", "Any", "None", "Pixels count where it is not 0. An array of the image's shape, or with fewer "
                          "axes, along which it repeats itself; or a path."))
    for parameter in parameters:
        text = parameter["help"]
        text = text[0].upper() + text[1:] + (f", in {parameter['unit']}" if parameter["unit"] else "") + "."
        if parameter["names"]:
            text += " One of " + ", ".join(f"``{name}``" for name in parameter["names"]) + "."
        default = parameter["default"]
        default = tuple(int(x) if x == int(x) else x for x in default) if isinstance(default, tuple) else default
        arguments.append((parameter["argument"], _type_of(parameter), repr(default), text))
    if measure.verb == "project":
        arguments += [("out", "NDArray[Any] | None", "None", "An array of the result's shape that is written, in its dtype."),
                      ("dtype", "DTypeLike | None", "None", "The dtype of the result. Default: along x and y float64, else that "
                       "of the image, to which numbers are rounded and limited.")]
    arguments.append(("progress", "bool | Callable[[float], object] | None", "None",
                      "True shows a bar (with tqdm); a function is called with the share that is done."))
    return arguments


def signature(measure, annotated=False):
    """What stands between the parentheses of a measure's function."""
    parts = []
    for name, kind, default, _ in list_arguments(measure):
        if default is None:
            parts.append(f"{name}: {kind}" if annotated else name)
        else:
            if "*" not in "".join(parts):
                parts.append("*")
            parts.append(f"{name}: {kind} = {default}" if annotated else f"{name}={default}")
    return ", ".join(parts)


def _wrap(text, indent):
    import textwrap

    return textwrap.fill(" ".join(text.split()), 100, initial_indent=indent, subsequent_indent=indent)


def docstring(measure):
    """The docstring of a measure's function."""
    lines = [measure.help[0].upper() + measure.help[1:] + ".", "", "Parameters", "----------"]
    for name, kind, default, text in list_arguments(measure):
        if name in ("image", "image2", "labels", "*images", "mask"):
            kind = "array_like or path" + (", optional" if default else "")
        elif default is not None:
            kind += f", default {default}"
        lines += [f"{name} : {kind}", _wrap(text, "    ")]
    lines += ["", "Returns", "-------"]
    if measure.verb == "project":
        lines += ["ndarray", _wrap("Of the image's axes, without y along x, without x along y, without the axis along z and t. "
                                   "Of a Dask array, a Dask array.", "    ")]
    elif measure.verb == "locate":
        lines += ["ndarray", _wrap("Of int64: a row (x, y), per volume (x, y, z), for every set pixel in raster order; of "
                                   "several plans an array of such arrays.", "    ")]
    elif measure.is_table:
        lines += ["dict", _wrap("A column for every field, as ``pandas.DataFrame`` takes it; positions have a column for "
                                "each axis, fields of several images a number.", "    ")]
    else:
        lines += [measure.record, "    A frozen record."]
    if measure.verb in ("project", "locate"):
        return _end(measure, lines)
    lines += ["", "    ==================== ==========================================================================="]
    for name, field in zip(measure.field_names, measure.fields):
        unit = f" ({field['unit']})" if field["unit"] else ""
        lines.append(f"    {name:<20} {field['help']}{unit}")
    lines += ["    ==================== ==========================================================================="]
    return _end(measure, lines)


def _end(measure, lines):
    lines += ["", "Raises", "------", "TypeError", "    The pixels are of a dtype that is not measured; the message names the "
              "conversion to write.", "ValueError", "    Axes, shapes or parameters that cannot be, or do not go together.",
              "OSError", "    A file that cannot be read."]
    if measure.remark:
        lines += ["", "Notes", "-----", _wrap(measure.remark, "")]
    if measure.verb in EXAMPLES:
        lines += ["", "Examples", "--------", EXAMPLES[measure.verb].strip("\n")]
    return "\n".join(lines) + "\n"
