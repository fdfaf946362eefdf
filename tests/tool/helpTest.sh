#!/usr/bin/env bash
# Help, man pages and completions: every verb has them, and shells and formatters accept them.
source "$(dirname "$0")/../support/toolScript.sh" "$1"
export PATH=$(dirname "$tool"):$PATH

"$tool" man --dir pages || fail "man --dir"
verbs=$("$tool" --help | sed -n '/^Subcommands:/,/^$/p' | awk 'NR > 1 && /^  [a-z]/ { print $1 }')
[ "$(wc -w <<<"$verbs")" -ge 8 ] || fail "verbs: $verbs"
for verb in $verbs; do
    page=pages/effectengine-$verb.1
    warnings=$(groff -man -ww -z -Tutf8 "$page" 2>&1)
    [ -z "$warnings" ] || fail "$page: $warnings"
    text=$(groff -man -Tascii -P-cbou "$page")
    for option in $("$tool" "$verb" --help | grep -o -- ' --[a-z-]*' | sort -u); do
        grep -qF -- "$option" <<<"$text" || fail "$page lacks $option"
    done
done
groff -man -Tascii -P-cbou pages/effectengine.1 | grep -q '7  disk full' || fail "exit codes in the man page"

for shell in bash zsh fish; do
    "$tool" completion "$shell" >"completion.$shell" || fail "completion $shell"
    if command -v "$shell" >/dev/null; then
        "$shell" -n "completion.$shell" || fail "$shell does not accept its completion"
    fi
done
for verb in $verbs; do
    for shell in bash zsh fish; do
        grep -q -- "$verb" "completion.$shell" || fail "completion.$shell lacks $verb"
    done
done

# completes EXPECTED words...: bash and fish offer EXPECTED for the last word.
completes() {
    local expected=$1 got
    shift
    got=$(bash -c 'source completion.bash; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _effectengine; echo "${COMPREPLY[*]}"' _ "$@")
    [ "$got" = "$expected" ] || fail "bash completes \"$*\" with \"$got\""
    command -v fish >/dev/null || return
    got=$(fish -c 'source completion.fish; complete -C "$argv"' -- "$*" | cut -f1 | paste -sd' ')
    [ "$got" = "$expected" ] || fail "fish completes \"$*\" with \"$got\""
}
completes apply effectengine appl
completes hue-shift effectengine apply -e hue-
completes Hue= effectengine apply -e am-binary -e hue-shift -p H
completes BlockSize= effectengine apply delay-grab -p B
completes bar effectengine apply --progress b
completes 'am-filter am-local am-look am-texture' effectengine list --kind am
completes fish effectengine completion f
completes --search effectengine list --se

[ "$failures" -eq 0 ] && echo "help is complete"
exit "$((failures > 0))"
