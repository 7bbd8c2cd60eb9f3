# Completion of kxhost for bash. Verbs, options, keys and words come from the program itself.
# shellcheck shell=bash

_kxhost_verbs() {
    kxhost --help 2>/dev/null | sed -n '/^Verbs:/,/^$/s/^  \([a-z]\{1,\}\) .*/\1/p'
}

# Options of a verb.
_kxhost_options() {
    kxhost "$1" --help 2>/dev/null | sed -n '/^Options:/,/^$/p' |
        sed -n 's/^  \(-[^ ]*\).*/\1/p' | tr ',' '\n'
}

# SECTION.KEY= for each key of a configuration.
_kxhost_keys() {
    kxhost check 2>/dev/null | sed -E -n -e '/^\[/{s/^\[+([a-z]+).*/\1/;h;d}' \
        -e '/^(# )?[a-z_0-9]+( =|:)/{s/^(# )?([a-z_0-9]+).*/\2=/;G;s/(.*)\n(.*)/\2.\1/p}'
}

_kxhost_log_levels() {
    kxhost grab --help 2>/dev/null | sed -n 's/^ *--log-level LEVEL *\([a-z, ]*\) (.*/\1/p' |
        sed 's/ or / /; s/,//g'
}

# What ctl tells a grab.
_kxhost_ctl_words() {
    kxhost ctl --help 2>/dev/null | sed -n 's/^  \([a-z0-9]\{1,\}\)  *[a-z].*/\1/p'
}

_kxhost_offer() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}

_kxhost() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} verb=${COMP_WORDS[1]}
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        _kxhost_offer "$(_kxhost_verbs) --help --version" "$current"
    elif [[ $current == -* ]]; then
        _kxhost_offer "$(_kxhost_options "$verb")" "$current"
    elif [ "$verb" = ctl ]; then
        case $COMP_CWORD in
        2) _kxhost_offer "$(pidof kxhost)" "$current" ;;
        3) _kxhost_offer "$(_kxhost_ctl_words)" "$current" ;;
        esac
    elif [ "$previous" = -s ] || [ "$previous" = --set ]; then
        compopt -o nospace
        _kxhost_offer "$(_kxhost_keys)" "$current"
    elif [ "$previous" = --log-level ]; then
        _kxhost_offer "$(_kxhost_log_levels)" "$current"
    else
        # bash makes the = of --simulate=FILE a word of its own.
        compopt -o filenames
        mapfile -t COMPREPLY < <(compgen -f -- "${current#=}")
    fi
}

complete -F _kxhost kxhost
