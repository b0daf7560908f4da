#!/bin/bash
# fuzz.sh [SECONDS]: runs each fuzz target that long, 60 seconds if nothing is said, from its seed corpus. What a target
# learns stays in build/fuzz-corpus, and what it finds in build/fuzz-found.
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=../cmake/setup.sh
. "$(dirname "$0")/../cmake/setup.sh"
cd "$root"
seconds=${1:-60}

mkdir -p build/fuzz-found
echo "Building Xerces-C++ instrumented (log: build/xerces.log)"
fuzz/build_xerces.sh >build/xerces.log 2>&1 ||
    echo "Its source package does not come: the fuzzers see this project's code only"
targets=$(sed -n 's/^qrm_fuzz(\([a-z]*\) CORPUS \([a-z]*\).*/\1:\2/p' fuzz/CMakeLists.txt)
# shellcheck disable=SC2046 # one word a target
build fuzz --target $(for target in $targets; do echo "${target%:*}_fuzz"; done)

# run TARGET:CORPUS
run() {
    local name=${1%:*} corpus=${1#*:}
    mkdir -p "build/fuzz-corpus/$name"
    # Xerces leaks in parses that fail, so leaks are not looked for here.
    ASAN_OPTIONS=detect_leaks=0 "build/fuzz/fuzz/${name}_fuzz" -dict=fuzz/xml.dict -max_len=4000 -timeout=60 \
        "-max_total_time=$seconds" -detect_leaks=0 "-artifact_prefix=build/fuzz-found/$name-" \
        "build/fuzz-corpus/$name" "fuzz/corpus/$corpus" >"build/fuzz-$name.log" 2>&1 || {
        grep -vE '^#[0-9]+\s' "build/fuzz-$name.log" | tail -50
        return 1
    }
    printf '%-8s %s, %s\n' "$name" "$(grep '^Done' "build/fuzz-$name.log")" \
        "$(grep -oE 'cov: [0-9]+' "build/fuzz-$name.log" | tail -1)"
}
export seconds
export -f run
# shellcheck disable=SC2086 # one word a target
printf '%s\n' $targets | xargs -P "$(nproc)" -I{} bash -c 'run {}'
