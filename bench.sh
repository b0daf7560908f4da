#!/bin/sh
# Installs what is missing, builds, runs the benchmarks and prints them as ratios to the same work on raw Xerces or a
# named peer, both sides in one run, and draws them for docs/performance.md. ./bench.sh --quick repeats less.
set -eu
. "$(dirname "$0")/cmake/setup.sh"

repetitions=7 large=4096
if [ "${1:-}" = --quick ]; then
    repetitions=3 large=400
fi

install_missing build bench
build bench
bin=$root/build/bench/bench
mkdir -p "$root/docs/performance"
"$bin/qrm_bench" --benchmark_repetitions="$repetitions" --benchmark_enable_random_interleaving=true \
    --benchmark_min_time=0.05 --benchmark_out="$root/build/bench.json" --benchmark_out_format=json >"$root/build/bench.log"
# The interpreter of the packages: another one that comes first in the path would not find theirs.
/usr/bin/python3 "$root/bench/summary.py" "$root/build/bench.json" "$("$bin/peak_memory" raw)" "$("$bin/peak_memory" handles)" "$root/docs/performance"
printf 'peak memory of an event parse: %s KiB for 40 MiB, %s KiB for %s MiB\n' \
    "$("$bin/peak_memory" events 40)" "$("$bin/peak_memory" events $large)" "$large"
