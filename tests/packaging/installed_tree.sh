# What the tests of an installation share: source it. The tree is what `prefix` names.
# shellcheck shell=bash disable=SC2154,SC2120

fail() {
    printf 'FAILED: %s\n' "$*" >&2
    exit 1
}

# The tree holds the files of installed_files.txt, all headers, examples and documents, each with the
# content that it has in the sources, and the files that the arguments name; nothing else.
check_contents() {
    {
        cat "$source/tests/packaging/installed_files.txt"
        (cd "$source/packaging" && find . -name '*.service' -printf 'lib/systemd/system/%P\n')
        (cd "$source" && printf 'share/driver-pointgrey/%s\n' examples/*.* examples/*/*)
        (cd "$source/docs" && printf 'share/doc/driver-pointgrey/%s\n' *.md *.png) | grep -v kxhost.1.md
        (cd "$source/include" && printf 'include/driver-pointgrey/%s\n' *.h)
        printf '%s\n' "$@" | sed '/^$/d'
    } | sort >"$scratch/expected"
    (cd "$prefix" && find . -not -type d | sed 's,^\./,,' | sort) >"$scratch/found"
    diff -u "$scratch/expected" "$scratch/found" >&2 || fail "the installation holds other files"
    diff -r "$source/include" "$prefix/include/driver-pointgrey" >&2 || fail "headers differ"
    diff -r "$source/examples" "$prefix/share/driver-pointgrey/examples" >&2 || fail "examples differ"
}

# Nothing points back to where it was built.
check_detached() {
    local file
    for file in bin/kxhost lib/libdriver-pointgrey.so lib/driver-pointgrey/sim/libflycapture.so.2; do
        readelf -d "$prefix/$file" | grep -E 'RPATH|RUNPATH' && fail "$file has a search path"
    done
    grep -r -l -I -F -e "$source" "$prefix" && fail "these files name the source tree"
    find "$prefix/lib" -maxdepth 1 -name 'libflycapture*' | grep . &&
        fail "the simulation lies where libraries are searched"
    return 0
}

# Each example that is no bus of simulated cameras is a configuration without mistakes, and a grab works.
check_demo() {
    local examples=$prefix/share/driver-pointgrey/examples example pictures
    for example in "$examples"/*.toml; do
        grep -q '^\[\[camera\]\]' "$example" && continue
        "$prefix/bin/kxhost" check -c "$example" >"$scratch/checked" || fail "kxhost check $example"
        grep '  hint:' "$scratch/checked" && fail "$example holds a value without effect"
    done
    "$prefix/bin/kxhost" grab "--simulate=$examples/bus.toml" -c "$examples/mono8-usb3.toml" \
        --quiet --frames 2 --output "$scratch/out" || fail "kxhost grab"
    pictures=$(find "$scratch/out" -name '*.png' | wc -l)
    [ "$pictures" -eq 2 ] || fail "asked for 2 pictures, got $pictures"
}

# The plug-in is a program too.
check_program() {
    LD_LIBRARY_PATH=$prefix/lib/driver-pointgrey/sim "$prefix/lib/libdriver-pointgrey.so" |
        grep -q -x -E 'Version: [0-9.]+-[0-9a-f]{40}' || fail "the plug-in does not run by itself"
}
