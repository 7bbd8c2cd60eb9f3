#!/usr/bin/env bash
# Installs a build into an empty folder and uses it from there: install_test.sh SOURCE_DIR BUILD_DIR CXX.
set -euo pipefail

source=$1
build=$2
cxx=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
# shellcheck source=tests/packaging/installed_tree.sh
source "$source/tests/packaging/installed_tree.sh"

cmake --install "$build" --prefix "$prefix" >/dev/null
# shellcheck disable=SC2119
check_contents
check_detached
check_demo
check_program

# Limits are given in four fields, to the group that the udev rule gives cameras to.
grep -v -E '^(#|$)' "$prefix/share/driver-pointgrey/limits.conf" |
    grep -v -x -E '@plugdev +- +(rtprio +98|memlock +unlimited|nice +-20)' && fail "limits.conf"
for page in man1/kxhost.1 man5/kxhost.toml.5 man5/flycapture2-sim.toml.5; do
    gzip -d <"$prefix/share/man/$page.gz" | cmp - "$build/man/${page#*/}" || fail "manual page $page"
done
for header in kx_host.h kx_scenario.h kx_host_defaults.h; do
    "$cxx" -std=c++20 -fsyntax-only -I "$prefix/include/driver-pointgrey" -include "$header" \
        -x c++ /dev/null || fail "$header does not compile alone"
done
