#!/bin/bash
# Builds the Xerces-C++ of this Debian from its source package, instrumented for libFuzzer and the sanitizers, in
# build/xerces-instrumented. The preset "fuzz" takes it from there; without it, a fuzzer does not see into Xerces.
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=../cmake/setup.sh
. "$(dirname "$0")/../cmake/setup.sh"
install_missing build fuzz

folder=$root/build/xerces-instrumented
[ ! -e "$folder/installed/include/xercesc" ] || exit 0
rm -rf "$folder"
mkdir -p "$folder/apt/lists/partial" "$folder/apt/cache/archives/partial"

# Source packages by a private state of apt: that of the machine stays as it is.
eval "$(apt-config shell parts Dir::Etc::sourceparts/d)"
awk 'BEGIN { RS = ""; ORS = "\n\n" } !/-security/' "${parts:?}/debian.sources" |
    sed 's/^Types:.*/Types: deb-src/' >"$folder/apt/debian.sources"
cat >"$folder/apt.conf" <<END
Dir::State "$folder/apt"; Dir::State::Lists "$folder/apt/lists"; Dir::Cache "$folder/apt/cache";
Dir::Etc::SourceList "$folder/apt/debian.sources"; Dir::Etc::SourceParts "-"; APT::Sandbox::User "";
END
export APT_CONFIG=$folder/apt.conf
cd "$folder"
apt-get -q update
apt-get -q source xerces-c

flags="-g -O1 -fno-omit-frame-pointer -fsanitize=fuzzer-no-link,address -w"
cmake -G Ninja -S xerces-c-*/ -B compiled \
    -DCMAKE_BUILD_TYPE=None -DCMAKE_CXX_COMPILER=clang++-14 -DCMAKE_C_COMPILER=clang-14 \
    "-DCMAKE_CXX_FLAGS=$flags" "-DCMAKE_C_FLAGS=$flags" -DCMAKE_SHARED_LINKER_FLAGS=-fsanitize=address \
    "-DCMAKE_INSTALL_PREFIX=$folder/installed" -DCMAKE_INSTALL_LIBDIR=lib \
    -Dnetwork=OFF -Dtranscoder=icu -Dmessage-loader=inmemory
cmake --build compiled --target xerces-c
cmake --install compiled/src >/dev/null
