#!/usr/bin/env bash
# Builds the example host against an installation, as its authors do, and looks at its pictures:
# host_package_test.sh BUILD_DIR CXX.
set -euo pipefail

build=$1
export CXX=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    printf 'FAILED: %s\n' "$*" >&2
    exit 1
}

# Moved after it was installed: nothing in it may know where that was.
cmake --install "$build" --prefix "$scratch/first" >/dev/null
prefix=$scratch/moved
mv "$scratch/first" "$prefix"
example=$scratch/example
cp -r "$prefix/share/driver-pointgrey/examples/host" "$example"
[ "$(wc -l <"$example/example_host.cpp")" -lt 150 ] || fail "the example is no longer short"
wanted=$(grep '^find_package' "$example/CMakeLists.txt")
grep -q -x -F "$wanted" "$prefix/share/doc/driver-pointgrey/hosts.md" || fail "hosts.md has no '$wanted'"

cmake -S "$example" -B "$scratch/build" "-DCMAKE_PREFIX_PATH=$prefix" \
    "-DCMAKE_CXX_FLAGS=-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror" >/dev/null
cmake --build "$scratch/build" >/dev/null || fail "the example does not build"
host=$scratch/build/example_host
plugin=$prefix/lib/libdriver-pointgrey.so
simulation=$prefix/lib/driver-pointgrey/sim/libflycapture.so.2

# A small camera without noise, so that its pictures are soon looked at.
cat >"$scratch/bus.toml" <<'END'
[[camera]]
model = "Example"
serial = 1
interface = "usb3"
[camera.sensor]
width = 160
height = 120
frame_rate = 100
noise = false
END
export FLYCAPTURE2_SIM_BUS=$scratch/bus.toml

mkdir "$scratch/pictures"
"$host" "$plugin" "$simulation" "$scratch/pictures" >"$scratch/said" || fail "$(cat "$scratch/said")"
grep -q -x "10 pictures in $scratch/pictures" "$scratch/said" || fail "$(cat "$scratch/said")"
python3 - "$scratch/pictures" <<'END' || fail "the pictures are not what the camera sees"
import pathlib, re, sys, time
pictures = [path.read_bytes() for path in sorted(pathlib.Path(sys.argv[1]).glob("*.pgm"))]
assert len(pictures) == 10, len(pictures)
heads = [re.fullmatch(rb"P5\n# exposed at (\d+) us\n160 120\n255\n(.*)", picture, re.S)
         for picture in pictures]
assert all(heads)
times = [int(head[1]) for head in heads]
assert all(abs(instant / 1e6 - time.time()) < 600 for instant in times), times
pixels = [head[2] for head in heads]
assert all(len(picture) == 160 * 120 for picture in pixels)
assert all(len(set(picture)) > 10 for picture in pixels), "a picture is empty"
assert len(set(pixels)) == 10, "the chart does not move"
END

# What goes wrong is said, and the exit code tells it.
refuses() {
    local reason=$1
    shift
    "$host" "$@" >/dev/null 2>"$scratch/said" && fail "'$*' is taken"
    grep -q "$reason" "$scratch/said" || fail "'$*' gives: $(cat "$scratch/said")"
}
refuses "usage:"
refuses "cannot write pictures into /nonexistent" "$plugin" "$simulation" /nonexistent
refuses "nothing.so: cannot open" "$plugin" "$scratch/nothing.so" "$scratch"
refuses "nothing.so: cannot open" "$scratch/nothing.so" "$simulation" "$scratch"
refuses "KxLibGetVer\|gKxLogLevelLib" "$simulation" "$simulation" "$scratch"
echo "camera = 1" >"$scratch/bus.toml"
refuses "the grab ended with code 2" "$plugin" "$simulation" "$scratch"

# The same compiler call by pkg-config.
if command -v pkg-config >/dev/null; then
    export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
    read -r -a flags < <(pkg-config --cflags --libs driver-pointgrey)
    "$CXX" -std=c++20 "$example"/*.cpp "${flags[@]}" -o "$scratch/by_pkg_config"
    [ -e "$(pkg-config --variable=plugin driver-pointgrey)" ] || fail "pkg-config: no plug-in"
    [ -e "$(pkg-config --variable=simulation driver-pointgrey)" ] || fail "pkg-config: no simulation"
fi

# Another second number of the version may have other services.
for version in 0.36 0.38 1.0; do
    sed -i "s/find_package(driver-pointgrey [0-9.]*/find_package(driver-pointgrey $version/" \
        "$example/CMakeLists.txt"
    cmake -S "$example" -B "$scratch/other" "-DCMAKE_PREFIX_PATH=$prefix" >/dev/null 2>&1 &&
        fail "version $version is found"
done
exit 0
