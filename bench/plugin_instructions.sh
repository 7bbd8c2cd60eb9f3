#!/bin/sh
# Counts the plug-in's own instructions per frame with callgrind: the whole loop less the bare loop.
#
#     bench/plugin_instructions.sh [BUILD_FOLDER]      (default: build/release)
set -eu
build=${1:-build/release}
few=200
many=1200
aim=1500
output=$(mktemp)
trap 'rm -f "$output"' EXIT

instructions() { # KIND FRAMES
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "$build/bench/tools/plugin_loop" "$1" "$2" \
        >/dev/null 2>"$output" || { cat "$output" >&2; exit 1; }
    awk '/Collected/ { print $4 }' "$output"
}

# The difference of two lengths leaves out starting and ending.
perFrame() { # KIND
    echo $((($(instructions "$1" $many) - $(instructions "$1" $few)) / (many - few)))
}

whole=$(perFrame whole)
bare=$(perFrame bare)
echo "instructions per frame: whole loop $whole, bare loop $bare," \
     "the plug-in's own $((whole - bare)) (aim $aim)"
