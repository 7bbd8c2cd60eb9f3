#!/usr/bin/env bash
# Debian's own check has nothing to say of the package beyond what packaging/ explains:
# lintian_test.sh BUILD_DIR. Exit code 77, which stands for a skipped test, where there is no lintian.
set -euo pipefail

build=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

command -v lintian >/dev/null || {
    echo "skipped: lintian is not installed"
    exit 77
}
cpack --config "$build/CPackConfig.cmake" -B "$scratch" >"$scratch/log" 2>&1 || {
    cat "$scratch/log"
    exit 1
}
lintian --allow-root --fail-on error,warning "$scratch"/*.deb
