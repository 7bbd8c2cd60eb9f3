#!/usr/bin/env bash
# Makes the Debian package, looks at it, unpacks it into an empty root and grabs from there:
# debian_package_test.sh SOURCE_DIR BUILD_DIR VERSION.
set -euo pipefail

source=$1
build=$2
version=$3
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/root/usr
# shellcheck source=tests/packaging/installed_tree.sh
source "$source/tests/packaging/installed_tree.sh"

cpack --config "$build/CPackConfig.cmake" -B "$scratch" >"$scratch/log" 2>&1 || fail "$(cat "$scratch/log")"
package=$(echo "$scratch"/*.deb)
architecture=$(dpkg --print-architecture)
[ "${package##*/}" = "driver-pointgrey_${version}_$architecture.deb" ] || fail "the package is $package"

# A field of the package reads so, as an extended regular expression.
field() {
    dpkg-deb -f "$package" "$1" | tr '\n' ' ' | grep -q -x -E "$2 ?" ||
        fail "$1 is $(dpkg-deb -f "$package" "$1")"
}
field Package driver-pointgrey
field Version "$version"
field Architecture "$architecture"
field Section video
field Depends '.*libc6 \(>= .*libpng16-16.*libstdc\+\+6 \(>= .*libtiff6.*'
dpkg-deb -f "$package" Depends | grep flycapture && fail "the camera library is no package"
dpkg-deb --ctrl-tarfile "$package" | tar -xO ./triggers | grep -q -x "activate-noawait ldconfig" ||
    fail "nobody tells the loader of the new library"
dpkg-deb -c "$package" | grep -v ' root/root ' && fail "these files belong to somebody"
dpkg-deb -c "$package" | grep -E '^.....w|^........w' | grep -v '^l' && fail "others may write to these files"

dpkg-deb -x "$package" "$scratch/root"
check_contents share/doc/driver-pointgrey/changelog.gz share/doc/driver-pointgrey/copyright \
    share/lintian/overrides/driver-pointgrey
check_detached
check_demo
check_program
gzip -d <"$prefix/share/doc/driver-pointgrey/changelog.gz" | head -n 1 |
    grep -q -F "driver-pointgrey ($version) " || fail "the changelog is of another version"
(cd "$scratch/root" && dpkg-deb --ctrl-tarfile "$package" | tar -xO ./md5sums | md5sum --check --quiet) ||
    fail "the check sums are wrong"
