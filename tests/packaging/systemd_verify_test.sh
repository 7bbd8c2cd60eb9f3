#!/usr/bin/env bash
# What systemd itself says of a file of ours: systemd_verify_test.sh rules|unit FILE. Exit code 77, which
# stands for a skipped test, where there is nothing that could say it.
set -euo pipefail

what=$1
file=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

skip() {
    echo "skipped: $*"
    exit 77
}

case $what in
rules)
    udevadm verify --help >/dev/null 2>&1 || skip "there is no udevadm that verifies rules"
    udevadm verify --resolve-names=never "$file"
    ;;
unit)
    command -v systemd-analyze >/dev/null || skip "systemd-analyze is not installed"
    instance=$scratch/$(basename "$file" @.service)@left.service
    cp "$file" "$scratch"
    systemd-analyze verify --man=no --recursive-errors=no "$instance" 2>"$scratch/said"
    cat "$scratch/said"
    [ ! -s "$scratch/said" ]
    ;;
esac
