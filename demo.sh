#!/bin/sh
# Installs what is missing, builds, and shows the library at work: on a sample document that ships with the project, or
# by writing out the documents given: ./demo.sh [FILE...]
set -eu
. "$(dirname "$0")/cmake/setup.sh"

install_missing build
build demo
bin=$root/build/demo

show() {
    printf '\n\033[1m%s\033[0m\n' "$1"
    shift
    printf '$'
    printf ' %s' "$@" | sed "s|$root/||g"
    printf '\n'
    "$@"
}
[ -t 1 ] || show() {
    printf '\n%s\n' "$1"
    shift
    printf '$'
    printf ' %s' "$@" | sed "s|$root/||g"
    printf '\n'
    "$@"
}

if [ $# -gt 0 ]; then
    status=0
    for file in "$@"; do
        "$bin/tools/qrmxml/qrmxml" write "$file" || status=$?
    done
    exit $status
fi

sample=$root/examples/library.xml
tool=$bin/tools/qrmxml/qrmxml
show "Read a document, search it, change it, write it" "$bin/examples/read_change_write" "$sample"
show "Check that it is well-formed and valid" "$tool" check --dtd "$sample"
show "Look at its tree" "$tool" tree "$sample"
show "Write it in another encoding" "$tool" write --encoding ISO-8859-1 "$sample"
