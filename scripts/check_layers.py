#!/usr/bin/env python3
"""Checks that includes run downward only: check_layers.py SOURCE_ROOT"""

import pathlib
import re
import sys

# A folder may include itself and what stands before it.
LAYERS = ["framework/core", "framework/maths", "framework/data", "framework/image", "framework/attribute",
          "framework/process", "framework/kernel", "framework/gpu", "files", "ORLIX", "ORLIXIPL", "orlix"]
FOLDERS = {"include": "ORLIXIPL", "src": "ORLIXIPL", "apps": "orlix", "python": "orlix"}


def layer_of(include):
    return next((i for i, layer in enumerate(LAYERS) if include.startswith(layer + "/")), None)


def main():
    root = pathlib.Path(sys.argv[1])
    faults = []
    files = 0
    for folder in ("framework", "files", *FOLDERS):
        for path in sorted((root / folder).rglob("*.[hci]*")):
            if path.suffix not in (".hpp", ".cpp", ".inl", ".cu", ".cuh"):
                continue
            files += 1
            name = path.relative_to(root).as_posix()
            own = LAYERS.index(FOLDERS[folder]) if folder in FOLDERS else layer_of(name)
            if "/ORLIX/" in name:
                own = LAYERS.index("ORLIX")
            for include in re.findall(r"#include <([^>]+)>", path.read_text()):
                target = layer_of(include)
                is_beside = LAYERS[own] == "ORLIXIPL" and target == LAYERS.index("ORLIX")
                if target is not None and (target > own or is_beside):
                    faults.append(f"{name} includes {include}, which stands above it or beside it")
                if folder in ("apps", "python") and (root / "include/private" / include).exists():
                    faults.append(f"{name} includes {include}, which is private")
    if files == 0:
        sys.exit(f"{root} holds no sources")
    print("\n".join(faults) or f"the includes of {files} files run downward")
    sys.exit(1 if faults else 0)


main()
