#!/usr/bin/env bash
# Installs a wheel in a root that has Python, NumPy and the C library, and nothing else, and measures a file there:
# check_bare_root.sh PYTHON WHEEL IMAGE
set -euo pipefail
python=$1 wheel=$2 image=$3
bare=$(mktemp -d)
trap 'rm -rf "$bare"' EXIT

prefix=$("$python" -c 'import sys; print(sys.base_prefix)')
name=$("$python" -c 'import sys; print("python%d.%d" % sys.version_info[:2])')
library=$("$python" -c 'import sysconfig; print(sysconfig.get_path("stdlib", vars={"installed_base": __import__("sys").base_prefix}))')

# Copies a file, or a folder, to its own place.
take() {
    mkdir -p "$bare$(dirname "$1")"
    cp -rL --no-preserve=ownership "$1" "$bare$1"
}
# Copies what a program is linked with.
take_libraries() {
    ldd "$1" 2>/dev/null | grep -o '/[^ ]*' | while read -r each; do [ -e "$bare$each" ] || take "$each"; done
}

interpreter=$(readlink -f "$prefix/bin/$name")
take "$interpreter"
take_libraries "$interpreter"
mkdir -p "$bare$library"
tar -C "$library" --exclude=test --exclude=site-packages --exclude=dist-packages --exclude=__pycache__ \
    --exclude='config-*' -ch . 2>/dev/null | tar -C "$bare$library" -x
for module in "$library"/lib-dynload/{_ctypes,zlib,math,_struct,_datetime,_random}.*.so; do
    [ ! -e "$module" ] || take_libraries "$module"
done
known=$(ldconfig -p)
for each in lib{stdc++.so.6,gcc_s.so.1,m.so.6,pthread.so.0,dl.so.2,rt.so.1,util.so.1,resolv.so.2}; do # what wheels may rely on
    path=$(awk -v name="$each" '$1 == name && /x86-64/ { print $NF; exit }' <<<"$known")
    [ -e "$bare$path" ] || take "$path"
done
"$python" -m pip install -q --no-compile --target "$bare/packages" "$wheel"
cp "$image" "$bare/image.tif"

enter=(chroot)
[ "$(id -u)" -eq 0 ] || enter=(unshare -r chroot)
PYTHONHOME=$prefix PYTHONPATH=/packages "${enter[@]}" "$bare" "$interpreter" -S -c '
import orlix, numpy, time
result = orlix.describe("/image.tif")
assert result == orlix.describe(numpy.asarray(orlix.open("/image.tif"))), result
assert orlix.stats(numpy.ones((9, 9), numpy.float32)).sum == 81
'
