# What ./orlix and ./check share. They say what they do on standard error, in one line where it takes long.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
build=$root/build

say() { echo "$me: $*" >&2; }
die() { say "$*"; exit 1; }

# Runs a command whose output nobody needs while it works. After a second it says what it does; when the command fails
# it shows the end of the output.
quietly() {
    local what=$1 log=$2 status running
    shift 2
    exec {running}< <("$@" >"$log" 2>&1 </dev/null; echo $?)
    if ! read -r -t 1 -u "$running" status; then
        say "$what (log: ${log#"$root"/})"
        read -r -u "$running" status || status=1
    fi
    exec {running}<&-
    if [ "$status" -ne 0 ]; then
        tail -n 30 "$log" >&2
        die "failed: $what"
    fi
}

# Builds with ninja. On a terminal one line shows how far it is, and what is being compiled.
run_ninja() {
    local log=$1 width line status
    shift
    if [ ! -t 2 ]; then
        quietly "building, which takes some minutes from clean" "$log" ninja "$@"
        return
    fi
    width=$(tput cols 2>/dev/null || echo 80)
    set +e
    NINJA_STATUS="[%f/%t] " ninja "$@" 2>&1 </dev/null | tee "$log" | while IFS= read -r line; do
        case $line in
        "["*"] Building "*) printf '\r\033[K%s' "$(line=${line%.o}; printf "%s" "${line%%]*}] ${line##*/}" | cut -c "1-$((width - 1))")" >&2 ;;
        esac
    done
    status=${PIPESTATUS[0]}
    set -e
    printf '\r\033[K' >&2
    if [ "$status" -ne 0 ]; then
        tail -n 30 "$log" >&2
        die "failed: building (log: ${log#"$root"/})"
    fi
}

# The packages of a list that are not installed.
missing_packages() {
    local package
    grep -v '^#' "$1" | while read -r package; do
        dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || echo "$package"
    done
}

# Takes a lock until the shell ends or unlock is called; says so when another call keeps it for long.
lock() {
    exec 9>"$1"
    flock -w 1 9 || {
        say "waiting for another call that is installing or building"
        flock 9
    }
}
unlock() { exec 9>&-; }

# Installs what is missing of a list. A stamp that is newer than the list spares later calls even the question.
need_packages() {
    local list=$root/scripts/packages-$1.txt stamp=$build/.packages-$1
    [ "$stamp" -nt "$list" ] && return
    lock "$build/.lock"
    local missing
    missing=$(missing_packages "$list" | tr '\n' ' ')
    if [ -n "$missing" ]; then
        local sudo=
        [ "$(id -u)" -eq 0 ] || sudo=sudo
        [ -z "$sudo" ] || command -v sudo >/dev/null || die "these packages are missing and need root to install: $missing"
        quietly "installing packages: $missing" "$build/apt.log" \
            $sudo bash -c "export DEBIAN_FRONTEND=noninteractive; apt-get update && apt-get install -y --no-install-recommends $missing"
    fi
    touch "$stamp"
    unlock
}

# Makes a Python environment with what a list of packages names.
need_python() {
    local list=$1 stamp=$build/venv/.installed
    [ "$stamp" -nt "$list" ] && return
    quietly "installing Python packages" "$build/pip.log" bash -c "
        python3 -m venv '$build/venv' && '$build/venv/bin/pip' install -q -r '$list'"
    touch "$stamp"
}

# Whether nothing that goes into a preset has changed since it was last built with these targets.
is_fresh() {
    local stamp=$build/$1/.built-$2
    [ -e "$stamp" ] && [ -z "$(cd "$root" && find framework include src files apps tests cmake CMakeLists.txt CMakePresets.json \
        -newer "$stamp" -print -quit)" ]
}

# Builds targets of a preset: only what is stale, and one call at a time.
build_preset() {
    local preset=$1 dir=$build/$1
    shift
    mkdir -p "$dir"
    lock "$dir/.lock"
    if [ ! -e "$dir/build.ninja" ]; then
        quietly "configuring $preset" "$dir/configure.log" cmake --preset "$preset" -S "$root"
    fi
    touch "$dir/.building"
    run_ninja "$dir/build.log" -C "$dir" "$@"
    mv "$dir/.building" "$dir/.built-$1"
    unlock
}
