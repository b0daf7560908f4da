#!/bin/sh
# pkg_config_consumer.sh SOURCE PROGRAM COMPILER RUNNER...: builds the program as a makefile would, and runs it.
source=$1 program=$2 compiler=$3
shift 3

for module in qrmcore wqsstreams qrmidom; do
    pkg-config --exists --print-errors "$module"
done
# shellcheck disable=SC2046,SC2086 # lists of flags
$compiler -std=c++17 "$source" -o "$program" $(pkg-config --cflags --libs qrmidom)
"$@" "$program"
