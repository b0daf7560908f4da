# To be sourced by the scripts at the root: what a fresh Debian machine lacks, and how the presets are built.
# shellcheck shell=sh

root=$(cd "$(dirname "$0")" && pwd)
while [ ! -f "$root/cmake/packages.txt" ]; do
    [ "$root" != / ] || { echo "$0: stands outside its tree" >&2; exit 2; }
    root=$(dirname "$root")
done

# packages GROUP: the packages of a group.
packages() {
    awk -v group="[$1]" '/^\[/ { found = $0 == group } /^[^#[]/ { if (found) print }' "$root/cmake/packages.txt"
}

is_installed() {
    dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q '^install ok installed$'
}

# install_missing GROUP...: installs what is not there yet; asks the network only then.
install_missing() {
    if ! command -v dpkg-query >/dev/null; then
        echo "Not a Debian system: going on with what is there; cmake/packages.txt names what is needed" >&2
        return 0
    fi
    missing=
    for group in "$@"; do
        for package in $(packages "$group"); do
            is_installed "$package" || missing="$missing $package"
        done
    done
    [ -n "$missing" ] || return 0
    echo "Installing:$missing"
    as_root=
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || {
            echo "There is no sudo here. As root: apt-get install$missing" >&2
            exit 2
        }
        as_root=sudo
    fi
    log=$(mktemp)
    # One package source that is down is no reason to stop, a package that does not come is.
    $as_root apt-get -q update >"$log" 2>&1 || true
    # shellcheck disable=SC2086 # one word a package
    if ! $as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y --no-install-recommends \
        -o DPkg::Lock::Timeout=120 install $missing >>"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        rm -f "$log"
        echo "These packages could not be installed:$missing" >&2
        exit 2
    fi
    rm -f "$log"
}

# quietly LOG COMMAND...: shows what the command says only when it fails, and then fails.
quietly() {
    log=$1
    shift
    "$@" >"$log" 2>&1 || {
        cat "$log" >&2
        return 1
    }
}

# In a subshell: the caller's folder stays the current one.
configure_and_build() (
    preset=$1
    shift
    cd "$root" &&
        cmake --preset "$preset" &&
        cmake --build --preset "$preset" --parallel "$(nproc)" "$@"
)

# build PRESET [--target NAME]: configures and builds.
build() {
    echo "Building $1 (log: build/$1.log)"
    mkdir -p "$root/build"
    quietly "$root/build/$1.log" configure_and_build "$@"
}
