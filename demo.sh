#!/bin/sh
# Installs what is missing, builds, and shows the library at work: on a sample document that ships with the project, or
# by writing out the documents given: ./demo.sh [FILE...]
set -eu
. "$(dirname "$0")/cmake/setup.sh"

install_missing build >&2
build demo >&2
bin=$root/build/demo
tool=$bin/tools/qrmxml/qrmxml

if [ $# -gt 0 ]; then
    status=0
    for file in "$@"; do
        "$tool" write "$file" || status=$?
    done
    exit $status
fi

bold='' plain=''
if [ -t 1 ]; then
    bold=$(printf '\033[1m') plain=$(printf '\033[0m')
fi

# show TITLE COMMAND...: the title, the command as one would type it, and what it prints.
show() {
    printf '\n%s%s%s\n$' "$bold" "$1" "$plain"
    shift
    printf ' %s' "$@"
    printf '\n'
    "$@"
}

# Short names for what is shown.
cd "$root"
PATH=$bin/examples:$bin/tools/qrmxml:$PATH
show "The document" cat examples/library.xml
show "Check that it is well-formed and valid" qrmxml check --dtd examples/library.xml
show "Read it, search it, change it, and write it to a file" \
    read_change_write examples/library.xml build/changed.xml
show "What came out" cat build/changed.xml
show "The same as a tree" qrmxml tree build/changed.xml
show "Find what is in it" qrmxml find --name title --all --as text build/changed.xml
show "Make sure that something is in it, made where it is missing" \
    qrmxml set -i build/changed.xml notices/notice --text "Closed on Sundays"
show "And it is there" qrmxml find --tag notice --as path build/changed.xml
show "The prefixes that it declares" qrmxml namespaces build/changed.xml
show "Make a message in namespaces, and write it with the declarations that it needs" namespaces
show "Read the document event by event" events examples/library.xml
show "The events themselves" sh -c 'qrmxml events examples/library.xml | head -n 8'
show "URLs" urls
show "The document in ASCII, with references for what ASCII does not have" qrmxml write --encoding US-ASCII build/changed.xml
