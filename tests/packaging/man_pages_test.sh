#!/usr/bin/env bash
# Checks the manual pages that were built: man_pages_test.sh BUILD_DIR.
#
# They have no mistake that mandoc knows, fit into 80 columns, and name whatever kxhost names: verbs,
# options and exit codes in kxhost(1), keys in kxhost.toml(5).
set -euo pipefail

build=$1

fail() {
    printf 'FAILED: %s\n' "$*" >&2
    exit 1
}

# The page as a terminal of 80 columns shows it, without bold and italics.
shown() {
    mandoc -T utf8 -O width=78 "$build/man/$1" | sed -E 's/.\x08//g'
}

# The same without blocks of code, which are shown as they stand.
shown_text() {
    sed '/^\.EX/,/^\.EE/d' "$build/man/$1" | mandoc -T utf8 -O width=78 | sed -E 's/.\x08//g'
}

# Reads words, and wants each of them in a page's text.
wants() {
    local page=$1 text word count=0
    text=$(shown "$page")
    while read -r word; do
        grep -q -E -e "(^|[^a-z0-9-])$word([^a-z0-9-]|$)" <<<"$text" || fail "$page does not have '$word'"
        count=$((count + 1))
    done
    [ "$count" -gt 5 ] || fail "only $count words are wanted of $page"
}

pages=$(cd "$build/man" && echo *[0-9])
[ "$pages" = "flycapture2-sim.toml.5 kxhost.1 kxhost.toml.5" ] || fail "the pages are $pages"
for page in $pages; do
    mandoc -T lint -W warning "$build/man/$page" || fail "mandoc complains about $page"
    shown_text "$page" | LC_ALL=C.UTF-8 grep -E '^.{81,}' && fail "$page is too wide"
done

mapfile -t verbs < <("$build/kxhost" --help | sed -n '/^Verbs:/,/^$/s/^  \([a-z]\+\) .*/\1/p')
printf '%s\n' "${verbs[@]}" | grep -q -x grab || fail "no verbs in the help"
{
    printf '%s\n' "${verbs[@]}"
    for verb in "${verbs[@]}"; do
        "$build/kxhost" "$verb" --help | grep -oE -e '--[a-z][a-z0-9-]*'
    done | sort -u | sed '/^--help$/d'
    "$build/kxhost" --help | sed -n '/^Exit codes:/,/^$/p' | grep -oE '(^| ) {1,}[0-9]+  ' | tr -d ' '
} | wants kxhost.1

"$build/kxhost" check | sed -n -E 's/^(# )?([a-z_0-9]+)( =|:).*/\2/p' | sort -u | wants kxhost.toml.5
