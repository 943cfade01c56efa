#!/usr/bin/env python3
"""Writes the C++ snippets of a text, each as a program: snippet_0.cpp, snippet_1.cpp, ... in a folder."""
import pathlib
import re
import sys

text, folder = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
folder.mkdir(parents=True, exist_ok=True)
for old in folder.glob("snippet_*.cpp"):
    old.unlink()
snippets = re.findall(r"^```cpp\n(.*?)^```", text.read_text(), re.M | re.S)
if not snippets:
    sys.exit(f"{text} has no C++ snippets")
for number, snippet in enumerate(snippets):
    lines = snippet.splitlines()
    includes = [line for line in lines if line.startswith("#include")]
    others = [line for line in lines if not line.startswith("#include")]
    program = [*includes, "", "int main()", "{", *others, "}", ""]
    (folder / f"snippet_{number}.cpp").write_text("\n".join(program))
