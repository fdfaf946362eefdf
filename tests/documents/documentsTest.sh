#!/usr/bin/env bash
# The documents agree with the tree: links lead somewhere, and code in the guide stands in the examples.
set -uo pipefail
cd "$(dirname "$0")/../.." || exit 1
failures=0

fail() {
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}

for document in *.md docs/*.md docs/decisions/*.md; do
    while read -r link; do
        [ -e "$(dirname "$document")/${link%%#*}" ] || fail "$document: no $link"
    done < <(sed '/^```/,/^```/d' "$document" | grep -Eo '\]\([^)#:]+[^):]*\)' | sed 's/^](//; s/)$//')
done

examples=$(cat docs/examples/*)
blocks=0
block=
while IFS= read -r line; do
    case $line in
    '```c' | '```cpp') block=$'\n' ;;
    '```')
        if [ -n "$block" ]; then
            blocks=$((blocks + 1))
            [[ $'\n'$examples$'\n' == *"$block"* ]] || fail "docs/host-guide.md: not in the examples:$block"
        fi
        block=
        ;;
    *) [ -z "$block" ] || block+=$line$'\n' ;;
    esac
done <docs/host-guide.md
[ "$blocks" -ge 3 ] || fail "only $blocks pieces of code in the guide"

exit "$((failures > 0))"
