#!/bin/sh
# Installs what is missing, builds, and runs every test. Arguments go to ctest: ./test.sh -R Parser
set -eu
. "$(dirname "$0")/cmake/setup.sh"

install_missing build test
build release
cd "$root"
ctest --preset release "$@"
