#!/bin/bash
# Compares the binary interface of the libraries (symbols, fields, virtual slots) with the descriptions in abi/, so that
# it does not change by accident. With --update, makes the descriptions anew.
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=../cmake/setup.sh
. "$(dirname "$0")/../cmake/setup.sh"
cd "$root"

if [ "$(uname -m)" != x86_64 ]; then
    echo "The descriptions are of x86-64 only: not compared"
    exit 0
fi
build abi
rm -rf build/abi-installed
cmake --install build/abi --prefix build/abi-installed >/dev/null
changed=0
for library in QRMCore WQSStreamsDLL QRMIDOM; do
    current=build/abi/$library.abi
    abidw --no-corpus-path --no-comp-dir-path --no-show-locs --exported-interfaces-only --no-architecture \
        --no-elf-needed --type-id-style hash --drop-private-types --headers-dir build/abi-installed/include \
        "build/abi-installed/lib/lib$library.so" >"$current"
    if [ "${1:-}" = --update ]; then
        cp "$current" "abi/$library.abi"
    elif ! abidiff "abi/$library.abi" "$current"; then
        changed=1
    fi
done
if [ "$changed" -ne 0 ]; then
    echo "The binary interface has changed. If that is wanted, .ci/abi.sh --update describes the new one."
    exit 1
fi
