#!/bin/bash
# Fetches what 32-bit x86 programs are built with and run on into build/i386-sysroot: packages of the i386 port, unpacked
# beside the system. The machine stays as it is; nothing is installed but a compiler that can make such programs.
# Ends with 3 where the machine cannot provide it.
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=setup.sh
. "$(dirname "$0")/setup.sh"
install_missing build i386

sysroot=$root/build/i386-sysroot
[ ! -e "$sysroot.complete" ] || exit 0
cannot() {
    echo "No 32-bit x86 here: $1" >&2
    exit 3
}
[ "$(dpkg --print-architecture)" = amd64 ] || cannot "the machine is no x86-64"
eval "$(apt-config shell parts Dir::Etc::sourceparts/d)"
[ -f "${parts:?}/debian.sources" ] || cannot "there is no $parts/debian.sources to take packages from"

state=$sysroot.apt
rm -rf "$sysroot" "$state"
mkdir -p "$sysroot" "$state/lists/partial" "$state/cache/archives/partial"
: >"$state/status"
# A state of apt that knows no other architecture: equal versions on both sides are not asked for.
awk 'BEGIN { RS = ""; ORS = "\n\n" } !/-security/' "$parts/debian.sources" >"$state/debian.sources"
cat >"$state/apt.conf" <<END
APT::Architecture "i386"; APT::Architectures { "i386"; }; APT::Install-Recommends "false";
Dir::State "$state"; Dir::State::Lists "$state/lists"; Dir::State::status "$state/status"; Dir::Cache "$state/cache";
Dir::Etc::SourceList "$state/debian.sources"; Dir::Etc::SourceParts "-"; APT::Sandbox::User ""; Debug::NoLocking "true";
END
export APT_CONFIG=$state/apt.conf
apt-get -q update || cannot "the package lists of i386 do not come"
mapfile -t wanted < <(packages i386-sysroot)
apt-get -q -y --download-only install "${wanted[@]}" || cannot "the packages of i386 do not come"
for package in "$state"/cache/archives/*.deb; do
    dpkg -x "$package" "$sysroot"
done
# Absolute links lead out of the folder.
find "$sysroot" -type l -lname '/*' | while read -r link; do
    ln -sfn "$sysroot$(readlink "$link")" "$link"
done
: >"$sysroot.complete"
