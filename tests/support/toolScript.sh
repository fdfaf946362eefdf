# What test scripts of the tool share: sourced with the tool's path, it makes a directory of its own, goes there, and
# tidies up at the end.
set -uo pipefail
support=$(realpath "$(dirname "${BASH_SOURCE[0]}")")
tool=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failures=0

fail() {
    echo "FAILED: $*" >&2
    failures=$((failures + 1))
}

# expect CODE TEXT command...: the exit code, and exactly one line on stderr that holds TEXT (none for no TEXT).
expect() {
    local code=$1 text=$2
    shift 2
    "$@" >out.txt 2>err.txt
    local got=$?
    [ "$got" -eq "$code" ] || fail "exit code $got instead of $code: $* ($(cat err.txt))"
    if [ -z "$text" ]; then
        [ -s err.txt ] && fail "said something: $* ($(cat err.txt))"
    else
        [ "$(wc -l <err.txt)" -eq 1 ] || fail "not one line: $* ($(cat err.txt))"
        grep -qF -- "$text" err.txt || fail "no \"$text\": $* ($(cat err.txt))"
    fi
}
