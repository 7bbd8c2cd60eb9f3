#!/bin/sh
# Counts the plug-in's own instructions per frame with callgrind: the whole loop less the bare loop,
# and the same beside a control thread. Of each only the grab thread's count.
#
#     bench/plugin_instructions.sh [BUILD_FOLDER]      (default: build/release)
set -eu
build=${1:-build/release}
few=200
many=1200
aim=1500
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

instructions() { # KIND FRAMES [beside]
    valgrind --tool=callgrind --separate-threads=yes --callgrind-out-file="$folder/count" \
        "$build/bench/tools/plugin_loop" "$@" >/dev/null 2>"$folder/output" || return
    awk '/^totals:/ { print $2 }' "$folder/count-01"
}

# The difference of two lengths leaves out starting and ending.
perFrame() { # KIND [beside]
    more=$(instructions "$1" $many ${2:+"$2"}) && less=$(instructions "$1" $few ${2:+"$2"}) || return
    echo $(((more - less) / (many - few)))
}

if ! whole=$(perFrame whole) || ! bare=$(perFrame bare); then
    cat "$folder/output" >&2
    exit 1
fi
echo "instructions per frame: whole loop $whole, bare loop $bare," \
     "the plug-in's own $((whole - bare)) (aim $aim)"
if whole=$(perFrame whole beside) && bare=$(perFrame bare beside); then
    echo "beside a control thread: whole loop $whole, bare loop $bare," \
         "the plug-in's own $((whole - bare))"
else
    grep plugin_loop: "$folder/output"
fi
