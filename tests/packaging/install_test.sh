#!/usr/bin/env bash
# Installs a build into an empty folder and uses it from there: install_test.sh BUILD_DIR CXX.
set -euo pipefail

build=$1
cxx=$2
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT

fail() {
    printf 'FAILED: %s\n' "$*" >&2
    exit 1
}

cmake --install "$build" --prefix "$prefix" >/dev/null
plugin=$(find "$prefix" -name 'libdriver-pointgrey.so' -o -name 'libdriver-pointgrey.so.*' | head -n 1)
[ -n "$plugin" ] || fail "no plug-in was installed"

# The maker's library must be found, not the simulation of the build tree.
readelf -d "$plugin" | grep -E 'RPATH|RUNPATH' && fail "the installed plug-in has a search path"
find "$(dirname "$plugin")" -maxdepth 1 -name 'libflycapture*' | grep . &&
    fail "the simulation lies where libraries are searched"

examples=$prefix/share/driver-pointgrey/examples
for example in "$examples"/*-*.toml; do
    "$prefix/bin/kxhost" check -c "$example" >"$prefix/checked" || fail "kxhost check $example"
    grep '  hint:' "$prefix/checked" && fail "$example holds a value without effect"
done
"$prefix/bin/kxhost" grab "--simulate=$examples/bus.toml" -c "$examples/mono8-usb3.toml" \
    --frames 2 --output "$prefix/out" >/dev/null || fail "kxhost grab"
pictures=$(find "$prefix/out" -name '*.png' | wc -l)
[ "$pictures" -eq 2 ] || fail "asked for 2 pictures, got $pictures"

for page in man1/kxhost.1 man5/kxhost.toml.5 man5/flycapture2-sim.toml.5; do
    [ -s "$prefix/share/man/$page" ] || fail "no man page $page"
done
for header in kx_host.h kx_scenario.h; do
    "$cxx" -std=c++20 -fsyntax-only -I "$prefix/include/driver-pointgrey" -include "$header" \
        -x c++ /dev/null || fail "$header does not compile alone"
done
echo "installed, grabbed $pictures pictures"
