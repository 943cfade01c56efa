#!/usr/bin/env python3
"""Makes the tutorial's page of its program: tutorial.py [--check] in the root of the project.

Comments are text, code is shown with what it prints, and a line `# FIGURE name.png: caption` saves the figure that was
made last. With --check the page must be what it was, but for its pictures.
"""

import contextlib
import io
import sys
from pathlib import Path

import matplotlib

matplotlib.use("Agg")
import matplotlib.pyplot as plt

FOLDER = Path("docs/tutorial")


def split(source):
    """The blocks of a program: text, code, figures."""
    blocks = []
    for line in source.splitlines():
        kind = "figure" if line.startswith("# FIGURE ") else "text" if line.startswith("#") else "code"
        if kind == "code" and not line and blocks and blocks[-1][0] != "code":
            continue
        if kind == "figure" or not blocks or blocks[-1][0] != kind:
            blocks.append((kind, []))
        blocks[-1][1].append(line)
    return blocks


def main():
    keeps = "--check" in sys.argv
    scope = {}
    page = ["# Tutorial", "", "Made by `scripts/tutorial.py` of [tutorial.py](tutorial.py), which runs on the samples.", ""]
    for kind, lines in split((FOLDER / "tutorial.py").read_text()):
        if kind == "text":
            page += [line[2:] for line in lines] + [""]
        elif kind == "figure":
            name, caption = lines[0][len("# FIGURE "):].split(": ", 1)
            if not keeps:
                plt.gcf().savefig(FOLDER / name, dpi=90, metadata={"Software": None})
            plt.close("all")
            if not (FOLDER / name).exists():
                sys.exit(f"there is no {FOLDER / name}")
            page += [f"![{caption}]({name})", ""]
        elif any(lines):
            code = "\n".join(lines).strip("\n")
            output = io.StringIO()
            with contextlib.redirect_stdout(output):
                exec(compile(code, "tutorial.py", "exec"), scope)
            page += ["```python", code, "```", ""]
            if output.getvalue():
                page += ["```text", output.getvalue().rstrip("\n"), "```", ""]
    text = "\n".join(page)
    target = FOLDER / "README.md"
    if not keeps:
        target.write_text(text)
    elif target.read_text() != text:
        Path("build/tutorial.md").write_text(text)
        sys.exit(f"{target} is not what its program gives: diff {target} build/tutorial.md")

main()
