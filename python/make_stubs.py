"""Writes the type stubs of the package, of the list of measures: make_stubs.py FOLDER.

FOLDER is the package with its extension. Needs no NumPy.
"""

import sys
import types
from pathlib import Path

HEAD = '''"""Made by the build, of the list of measures."""

from collections.abc import Callable, Mapping, Sequence
from os import PathLike
from typing import Any

import numpy as np
from numpy.typing import DTypeLike, NDArray

__version__: str

class Record(tuple[Any, ...]):
    """What all results share: a tuple with names, which does not change."""

    def _asdict(self) -> dict[str, Any]: ...
    def _repr_html_(self) -> str: ...

class Histogram(Record):
    @property
    def counts(self) -> NDArray[np.uint64]: ...
    @property
    def edges(self) -> NDArray[np.float64]: ...
    @property
    def min(self) -> Any: ...
    @property
    def max(self) -> Any: ...
    @property
    def bin_width(self) -> Any: ...

class Image:
    """An image in a file, as an array that is read when it is needed."""

    shape: tuple[int, ...]
    dtype: np.dtype[Any]
    @property
    def axes(self) -> str: ...
    @property
    def path(self) -> str: ...
    @property
    def pixel_size(self) -> dict[str, float]: ...
    @property
    def unit(self) -> str: ...
    @property
    def series(self) -> list[str]: ...
    @property
    def chunks(self) -> tuple[int, ...]: ...
    @property
    def ndim(self) -> int: ...
    @property
    def size(self) -> int: ...
    @property
    def nbytes(self) -> int: ...
    def __len__(self) -> int: ...
    def __getitem__(self, key: Any) -> NDArray[Any]: ...
    def __array__(self, dtype: DTypeLike | None = None, copy: bool | None = None) -> NDArray[Any]: ...

class State:
    """What a measure has found in pieces of an image: pieces are added, states merge, a result is finished."""

    def __init__(self, measure: str, *, per: str = "image", **parameters: Any) -> None: ...
    @property
    def measure(self) -> str: ...
    @property
    def margin(self) -> int: ...
    @property
    def needs_pass(self) -> bool: ...
    def add(self, *images: Any, axes: str | None = None, offset: Sequence[int] | None = None, mask: Any = None,
            core: tuple[slice, ...] | None = None, progress: Callable[[float], object] | None = None) -> State: ...
    def merge(self, other: State) -> State: ...
    def next_pass(self) -> bool: ...
    def copy(self) -> State: ...
    def finish(self) -> Any: ...

def open(path: str | PathLike[str], *, axes: str | None = None, pages: str | None = None, series: int | None = None,
         scaled: bool = False) -> Image: ...
def measure(image: Any, measures: Sequence[str] | Mapping[str, Mapping[str, Any]], *, axes: str | None = None,
            per: str | None = None, mask: Any = None,
            progress: bool | Callable[[float], object] | None = None) -> dict[str, Any]: ...
def set_threads(number: int) -> None: ...
def get_threads() -> int: ...
'''


def main(folder):
    # The package without its __init__, which needs NumPy.
    package = types.ModuleType("orlix")
    package.__path__ = [str(folder)]
    sys.modules["orlix"] = package
    from orlix._describe import MEASURES, docstring, signature

    lines = [HEAD]
    for verb, measure in sorted(MEASURES.items()):
        if verb not in ("histogram", "locate", "project", "regions"):
            lines.append(f"class {measure.record}(Record):")
            for name, field in zip(measure.field_names, measure.fields):
                ignored = "  # type: ignore[override]" if name == "count" else ""
                lines += ["    @property", f"    def {name}(self) -> Any:{ignored}", f'        """{field["help"]}"""']
            lines.append("")
    for verb, measure in sorted(MEASURES.items()):
        result = {"locate": "NDArray[np.int64]", "project": "NDArray[Any]", "regions": "dict[str, NDArray[Any]]"}
        text = "\n".join("    " + line if line else "" for line in docstring(measure).splitlines())
        lines.append(f'def {verb}({signature(measure, True)}) -> {result.get(verb, measure.record)}:\n'
                     f'    """{text.strip()}\n    """\n')
    (folder / "__init__.pyi").write_text("\n".join(lines))


main(Path(sys.argv[1]))
