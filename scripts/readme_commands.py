#!/usr/bin/env python3
"""Runs every ./orlix command of a page, and the examples of the program's help, as they stand, and compares what they
print with what the page shows: readme_commands.py PAGE ROOT"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

page, root = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
lines = page.read_text().splitlines()
commands = []  # and what they print, where the page shows it
for i, line in enumerate(lines):
    if line.startswith("    $ "):
        shown = []
        for following in lines[i + 1:]:
            if not following.startswith("    ") or following.startswith("    $ "):
                break
            shown.append(following[4:])
        commands.append((line[6:], shown))
    elif line.startswith("    ") and "./orlix" in line:
        commands.append((re.sub(r"\s+#.*", "", line[4:]), None))
    elif not line.startswith("    "):
        commands += [(command, None) for command in re.findall(r"`([^`]*\./orlix [^`]*)`", line)]

def help_of(*verb):
    return subprocess.run([root / "orlix", *verb, "--help"], capture_output=True, text=True, check=True).stdout


verbs = re.findall(r"^  ([a-z]+)  ", help_of().split("Subcommands:")[1], re.MULTILINE)
for text in (help_of(), *map(help_of, verbs)):
    commands += [("./orlix " + example, None) for example in re.findall(r"^  orlix (.*)$", text, re.MULTILINE)]

faults = 0
with tempfile.TemporaryDirectory() as folder:
    for name in ("orlix", "samples"):
        os.symlink(root / name, pathlib.Path(folder) / name)
    for command, shown in commands:
        done = subprocess.run(["bash", "-c", command], cwd=folder, capture_output=True, text=True)
        is_wrong = done.returncode != 0 or (shown is not None and done.stdout.splitlines() != shown)
        if is_wrong and "--gpu" not in command:
            faults += 1
            print(f"{command}\nexit status {done.returncode}\n{done.stdout[-600:]}{done.stderr[-600:]}")
print(f"{len(commands)} commands of {page.name}, {faults} faults")
sys.exit(1 if faults or not commands else 0)
