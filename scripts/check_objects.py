#!/usr/bin/env python3
"""Checks what the release build emits: check_objects.py BUILD_FOLDER

A file with vector flags must share nothing with other files and run nothing while the library loads: otherwise its
instructions reach machines that lack them. The libraries export nothing but their own names.
"""

import pathlib
import re
import subprocess
import sys


def symbols(path, *options):
    lines = subprocess.run(["nm", *options, str(path)], capture_output=True, text=True, check=True).stdout.splitlines()
    for line in lines:
        match = re.match(r"[0-9a-f]* *([A-Za-z]) (.*)", line)
        if match:
            yield match.group(1), match.group(2)


def check_kernel_object(path, domain):
    for kind, name in symbols(path):
        if kind in "WVuv":
            yield f"{path.name}: {name} is a weak symbol, which the linker may share"
        elif kind in "TDBRSG" and domain not in name:
            yield f"{path.name}: {name} is global and does not name its domain, {domain}"
    sections = subprocess.run(["objdump", "-h", str(path)], capture_output=True, text=True, check=True).stdout
    for section in (".init_array", ".ctors"):
        if section in sections:
            yield f"{path.name}: it has {section}, code that runs while the library loads"


def check_exports(path):
    for kind, name in symbols(path, "-D", "-C", "--defined-only"):
        if kind == "u":
            yield f"{path.name}: {name} is unique, so the library would never unload"
        elif "orlix" not in name:
            yield f"{path.name}: {name} is exported"
        elif re.match(r"(vtable|typeinfo) for orlix::.*StatsMsrLvl[23]$", name):
            yield f"{path.name}: {name} is exported, but the class is private"


def main():
    build = pathlib.Path(sys.argv[1])
    kernels = [p for p in build.glob("src/**/*.o") if re.search(r"Kernels_(?!generic)[a-z0-9]+\.cpp\.o$", p.name)]
    libraries = [*build.glob("src/**/lib*.so"), *build.glob("framework/lib*.so")]
    if not kernels or len(libraries) != 3:
        sys.exit(f"{build} holds {len(kernels)} kernel objects and {len(libraries)} libraries: is it built?")
    faults = []
    for path in kernels:
        faults += check_kernel_object(path, re.search(r"Kernels(_[a-z0-9]+)\.cpp", path.name).group(1))
    for path in libraries:
        faults += check_exports(path)
    print("\n".join(faults) or f"{len(kernels)} kernel objects and {len(libraries)} libraries are as they should be")
    sys.exit(1 if faults else 0)


main()
