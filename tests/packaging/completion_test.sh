#!/usr/bin/env bash
# Completes command lines as bash does: completion_test.sh BUILD_DIR COMPLETION.
set -euo pipefail

build=$1
completion=$2
export PATH="$build:$PATH"

fail() {
    printf 'FAILED: %s\n' "$*" >&2
    exit 1
}

# Only bash itself may call the real one.
compopt() { :; }
# shellcheck disable=SC1090,SC1091 # the caller says which file
source "$completion"

# What is offered for the last of the words.
offered() {
    COMP_WORDS=(kxhost "$@")
    COMP_CWORD=$#
    _kxhost
    echo "${COMPREPLY[*]}"
}

# The words that have to be offered, in any order: offers EXPECTED WORD...
offers() {
    local expected=$1 got
    shift
    got=$(offered "$@")
    [ "$(tr ' ' '\n' <<<"$got" | sort)" = "$(tr ' ' '\n' <<<"$expected" | sort)" ] ||
        fail "'kxhost $*' is completed by '$got', expected '$expected'"
}

# Every verb is offered and has options; each of them is known to the verb.
read -r -a verbs <<<"$(offered '')"
[ ${#verbs[@]} -ge 7 ] || fail "only ${verbs[*]} are offered"
for verb in "${verbs[@]}"; do
    [[ $verb == --* ]] && continue
    read -r -a options <<<"$(offered "$verb" -)"
    [[ " ${options[*]} " == *" --help "* ]] || fail "$verb is offered ${options[*]}"
    help=$(kxhost "$verb" --help) || fail "$verb is no verb"
    for option in "${options[@]}"; do
        grep -q -E -e "^  (-[a-z],)?$option( |$)|^  $option," <<<"$help" || fail "$verb has no $option"
    done
    # And the other way round: whatever looks like an option at the start of a line of the help.
    while read -r option; do
        [[ " ${options[*]} " == *" $option "* ]] || fail "$verb is not offered $option"
    done < <(grep -oE '^  (-[a-z],)?--[a-z-]+' <<<"$help" | grep -oE -e '--[a-z-]+')
done

offers "grab" gr
offers "--version" --v
offers "--summary" grab --su
offers "--max-losses" grab -c x.toml --max
offers "acquisition.gain= acquisition.gain_mode= acquisition.gamma=" grab --set acquisition.ga
offers "output.folder= output.format=" grab -s output.fo
offers "log.id=" check --set log.i
offers "off error warning info debug trace" grab --log-level ''
offers "lut lut12" ctl 1234 lu
offers "finish reload lut lut12" ctl 1234 ''
offers "" ctl 1234 finish ''

# Each level and each key is one that the program takes, and no key is left out.
for level in $(offered grab --log-level ''); do
    kxhost check --set "log.level=$level" >/dev/null || fail "$level is no level"
done
keys=$(offered grab --set '' | tr ' ' '\n')
[ "$(kxhost check | grep -c -E '^(# )?[a-z_0-9]+( =|:)')" -eq "$(wc -l <<<"$keys")" ] || fail "keys: $keys"
grep -v -E '^[a-z]+\.[a-z_0-9]+=$' <<<"$keys" && fail "these are no keys"

# Files, also behind --simulate=.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
touch "$scratch/bus.toml"
cd "$scratch"
offers "bus.toml" grab -c bu
offers "bus.toml" grab --simulate = bu
offers "bus.toml" grab --simulate =
