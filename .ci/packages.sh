#!/bin/bash
# Makes the Debian packages, installs them on a clean machine (a Debian without anything, in a folder), and uses them
# there: a program built by CMake and by pkg-config, the tool, its manual page.
set -euo pipefail
# shellcheck source-path=SCRIPTDIR source=../cmake/setup.sh
. "$(dirname "$0")/../cmake/setup.sh"
cd "$root"
install_missing build packages

build package
(cd build/package && rm -f ./*.deb && quietly ../cpack.log cpack)
ls build/package/*.deb

machine=$root/build/clean-machine
if [ "$(id -u)" -ne 0 ]; then
    echo "Skipped: only root can make a clean machine to install the packages on"
    exit 0
fi
if [ ! -e "$machine.complete" ]; then
    rm -rf "$machine"
    # shellcheck disable=SC1091 # of the system
    release=$(. /etc/os-release && echo "$VERSION_CODENAME")
    mirror=$(sed -n 's/^URIs: *//p' /etc/apt/sources.list.d/debian.sources 2>/dev/null | head -1)
    if ! quietly build/debootstrap.log debootstrap --variant=minbase "$release" "$machine" "${mirror:-http://deb.debian.org/debian}"; then
        echo "Skipped: a clean machine does not come"
        exit 0
    fi
    : >"$machine.complete"
fi
mkdir -p "$machine/packages"
rm -rf "${machine:?}/packages/"* "${machine:?}/consumer"
cp build/package/*.deb "$machine/packages/"
cp -r tests/install/consumer "$machine/consumer"
cp tests/install/pkg_config_consumer.sh "$machine/consumer/"
cat >"$machine/packages/use.sh" <<'END'
set -eu
export DEBIAN_FRONTEND=noninteractive LC_ALL=C
apt-get -q update
apt-get -q -y --no-install-recommends install /packages/libqrmidom1_*.deb /packages/qrmxml_*.deb
qrmxml --version
printf '<a><b k="v"/></a>' | qrmxml find --tag b -
test -f /usr/share/man/man1/qrmxml.1
test -f /usr/share/bash-completion/completions/qrmxml
test -f /usr/share/zsh/site-functions/_qrmxml
test ! -e /usr/include/QRMCore
apt-get -q -y --no-install-recommends install /packages/libqrmidom-dev_*.deb g++ cmake make pkg-config
cmake -S /consumer -B /consumer/build
cmake --build /consumer/build
/consumer/build/consumer >/consumer/printed
cmp /consumer/expected.txt /consumer/printed
sh -eu /consumer/pkg_config_consumer.sh /consumer/consumer.cpp /consumer/by-pkg-config g++ env >/consumer/printed
cmp /consumer/expected.txt /consumer/printed
apt-get -q -y purge qrmxml libqrmidom-dev libqrmidom1
test ! -e /usr/bin/qrmxml
END
quietly build/clean-machine.log chroot "$machine" sh /packages/use.sh
echo "Installed, used and removed on a clean machine"
