#!/usr/bin/env bash
# Runs what the documents tell readers to run: doc_commands_test.sh SOURCE_DIR BUILD_DIR.
#
# Blocks that begin with ```sh run are executed; in all documents, each verb of ./dev and each option
# of kxhost must be one that the program's help knows.
set -euo pipefail

source=$1
build=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
documents=("$source"/README.md "$source"/docs/*.md)

fail() {
    printf 'FAILED: %s\n' "$*" >&2
    exit 1
}

# The commands see a tree like the one that readers have, but what they write lands in the scratch.
ln -s "$source/examples" "$source/docs" "$source/dev" "$scratch"
export PATH="$build:$PATH"

run_blocks() {
    local document=$1
    awk '/^```sh run$/ { inside = 1; next } /^```/ { inside = 0 } inside' "$document" \
        >"$scratch/commands"
    [ -s "$scratch/commands" ] || return 0
    (cd "$scratch" && bash -e -u -x commands) || fail "commands of $document"
    blocks=$((blocks + 1))
}

# Reads words, and wants each of them in the text of the help.
check_words() {
    local help=$1 word
    while read -r word; do
        grep -q -E -e "(^|[^a-z-])$word([^a-z-]|$)" <<<"$help" || fail "'$word' is not in the help"
    done
}

blocks=0
for document in "${documents[@]}"; do
    run_blocks "$document"
done
[ "$blocks" -gt 0 ] || fail "no document has a block marked to be run"

grep -hoE '\./dev [a-z]+' "${documents[@]}" | sed 's/.* //' | sort -u |
    check_words "$("$source/dev" help)"
sed -n 's/^.*kxhost //p' "${documents[@]}" | grep -oE -e '--[a-z-]+' | sort -u |
    check_words "$(kxhost --help; for verb in grab list check version ctl doctor clock; do kxhost "$verb" --help; done)"

# The lines of a document behind a heading that are in its first block of a kind.
block_behind() {
    awk -v heading="$2" -v fence="\`\`\`$3" '$0 == heading { behind = 1 }
        inside && /^```/ { exit }
        inside
        behind && $0 == fence { inside = 1 }' "$1"
}

# What kxhost check prints is shown as it is, section by section.
reference=$source/docs/configuration.md
block_behind "$reference" "## What \`check\` prints" 'sh run' >"$scratch/commands"
block_behind "$reference" "## What \`check\` prints" console >"$scratch/shown"
[ -s "$scratch/shown" ] || fail "there is no block of what kxhost check prints"
(cd "$scratch" && bash -e -u commands) >"$scratch/printed"
awk 'BEGIN { RS = "" }
    NR == FNR { printed[$0]; next }
    !($0 in printed) { print; wrong = 1 }
    END { exit wrong }' "$scratch/printed" "$scratch/shown" >&2 ||
    fail "kxhost check prints this section of $reference differently"

# The exit codes have the same words in the source, the help and the manual page.
sed -n -E 's/^ *kExit[A-Za-z]+ = ([0-9]+), *\/\/\/< (.*)$/\1  \2/p' "$source/host/base/exit_code.h" >"$scratch/codes"
[ "$(wc -l <"$scratch/codes")" -eq "$(grep -c 'kExit.* = ' "$source/host/base/exit_code.h")" ] ||
    fail "an exit code has no words"
kxhost --help | sed -n -E 's/^ +([0-9]+  )/\1/p' | diff "$scratch/codes" - >&2 || fail "exit codes of the help"
sed -n '/^## Exit status/,/^## Env/s/^| \([0-9]*\) | \(.*\) |$/\1  \2/p' "$source/docs/kxhost.1.md" |
    diff "$scratch/codes" - >&2 || fail "exit codes of docs/kxhost.1.md"

# Each key that kxhost knows is in the reference.
kxhost check | sed -n -E 's/^(# )?([a-z_0-9]+)( =|:).*/\2/p' | sort -u >"$scratch/keys"
[ -s "$scratch/keys" ] || fail "kxhost check prints no keys"
while read -r key; do
    grep -q -F -e "| \`$key\` |" "$source/docs/configuration.md" ||
        fail "docs/configuration.md does not have $key"
done <"$scratch/keys"
