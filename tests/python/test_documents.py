"""Examples run: those of the docstrings, and of the pages. And the package is what it says it is."""

import doctest
import inspect
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

import orlix

PAGES = sorted(Path("docs").glob("*python*.md")) + sorted(Path("docs").glob("coming-from.md"))
PUBLIC = [name for name in orlix.__all__ if callable(getattr(orlix, name))]


def run_examples(text, name):
    examples = doctest.DocTestParser().get_doctest(text, {"orlix": orlix, "np": np}, name, None, 0)
    report = []
    failed, _ = doctest.DocTestRunner(optionflags=doctest.ELLIPSIS).run(examples, out=report.append)
    assert failed == 0, "".join(report)
    return len(examples.examples)


@pytest.mark.parametrize("name", PUBLIC)
def test_docstrings(name):
    given = getattr(orlix, name)
    count = run_examples(inspect.getdoc(given), name)
    assert count > 0 or (isinstance(given, type) and name not in ("State",)) or name == "get_threads"


@pytest.mark.parametrize("page", PAGES, ids=str)
def test_pages(page):
    assert run_examples(page.read_text(), str(page)) > 3


def test_signatures_follow_from_the_list():
    parameters = inspect.signature(orlix.describe).parameters
    assert parameters["percentiles"].default == (1, 5, 25, 75, 95, 99) and parameters["ddof"].default == 0
    assert list(inspect.signature(orlix.ncc).parameters) == ["image", "image2", "axes", "per", "progress"]
    assert list(inspect.signature(orlix.regions).parameters)[:2] == ["labels", "images"]
    assert inspect.signature(orlix.count).parameters["per"].default == "plan"


def test_stubs_are_what_type_checkers_read(tmp_path):
    program = tmp_path / "program.py"
    program.write_text("""import orlix
found: float = orlix.stats("a.tif", per="plan").mean
orlix.count("a.tif").count
orlix.stats("a.tif", pre="plan")
orlix.regions("a.tif", "b.tif", "c.tif", median=True)["mean"].sum()
""")
    found = subprocess.run([sys.executable, "-m", "mypy", "--follow-imports=silent", "--cache-dir", tmp_path / "cache", program],
                           capture_output=True, text=True, cwd=tmp_path).stdout
    assert 'Unexpected keyword argument "pre" for "stats"' in found and "Found 1 error in 1 file" in found


def test_import_takes_numpy_alone():
    code = """if True:
        import sys
        before = {name.split(".")[0] for name in sys.modules}
        import orlix
        print(*sorted({name.split(".")[0] for name in sys.modules} - before - set(sys.stdlib_module_names)))"""
    found = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, check=True).stdout.split()
    assert found == ["numpy", "orlix"]
