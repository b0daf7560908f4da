# To be sourced by the scripts at the root: what a fresh Debian machine lacks, and how the presets are built.
# shellcheck shell=sh

root=$(cd "$(dirname "$0")" && pwd)
while [ ! -f "$root/cmake/packages.txt" ]; do
    [ "$root" != / ] || { echo "$0: stands outside its tree" >&2; exit 2; }
    root=$(dirname "$root")
done

# The packages of a group.
packages() {
    awk -v group="[$1]" '/^\[/ { found = $0 == group } /^[^#[]/ { if (found) print }' "$root/cmake/packages.txt"
}

is_installed() {
    dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q '^install ok installed$'
}

# install_missing GROUP...: installs what is not there yet; asks the network only then.
install_missing() {
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
            echo "These packages are missing and only root can install them:$missing" >&2
            exit 2
        }
        as_root=sudo
    fi
    log=$(mktemp)
    # shellcheck disable=SC2086 # one word a package
    if ! { $as_root apt-get -q update &&
        $as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y --no-install-recommends install $missing; } \
        >"$log" 2>&1; then
        cat "$log" >&2
        echo "The packages could not be installed:$missing" >&2
        exit 2
    fi
    rm -f "$log"
}

# build PRESET [TARGET...]: configures and builds, and shows the log only when that fails.
build() {
    preset=$1
    shift
    echo "Building ($preset)"
    mkdir -p "$root/build"
    log=$root/build/$preset.log
    if ! { (cd "$root" && cmake --preset "$preset" && cmake --build --preset "$preset" ${1:+--target "$@"}); } \
        >"$log" 2>&1; then
        cat "$log" >&2
        exit 1
    fi
}
