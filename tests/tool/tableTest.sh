#!/usr/bin/env bash
# The order of lookup tables: 3DL files in which blue varies fastest are told from the others, and the command that the
# tool prints repairs them.
source "$(dirname "$0")/../support/toolScript.sh" "$1"

# table ORDER LOOK: a 3DL file of 9 entries per axis. LOOK is awk that makes R, G and B, 0 to 1, of r, g and b.
table() {
    awk -v order="$1" "BEGIN {
        n = 9
        for (i = 0; i < n; i++) printf \"%d \", i * 512 - (i == n - 1)
        print \"\"
        for (k = 0; k < n; k++) for (j = 0; j < n; j++) for (i = 0; i < n; i++) {
            r = (order == \"red\" ? i : k) / (n - 1); g = j / (n - 1); b = (order == \"red\" ? k : i) / (n - 1)
            y = 0.3 * r + 0.59 * g + 0.11 * b
            $2
            printf \"%d %d %d\\n\", R * 4095, G * 4095, B * 4095
        } }"
}
says='looks as if blue varied fastest'
looks=(
    'R = r; G = g; B = b'
    'R = 1 - r; G = 1 - g; B = 1 - b'                                          # a negative
    'R = r * r; G = 0.8 * g + 0.2 * b; B = 0.1 + 0.7 * sqrt(b)'                # curves, and green with some blue
    'R = 0.7 * r + 0.3 * y; G = 0.7 * g + 0.3 * y; B = 0.7 * b + 0.3 * y'      # paler
    'R = r < 0.5 ? 0 : 1; G = g < 0.5 ? 0 : 1; B = b < 0.5 ? 0 : 1'            # posters
    'R = r; G = g; B = 0.2 + 0.1 * b'                                          # hardly any blue left
)
for look in "${looks[@]}"; do
    table blue "$look" >'blue first.3dl'
    expect 0 "$says" "$tool" lut check 'blue first.3dl'
    table red "$look" >red.3dl
    expect 0 '' "$tool" lut check red.3dl
done
# The order cannot be told where red and blue come out alike, or where all channels are curves of the same grey.
for look in 'R = y; G = y; B = y' 'R = 0.5 * y; G = y; B = y' 'R = y; G = 0.8 * y; B = 0.5 * y' 'R = 0.5; G = 0.5; B = 0.5'; do
    for order in blue red; do
        table "$order" "$look" >grey.3dl
        expect 0 '' "$tool" lut check grey.3dl
    done
done

# The printed command works as it stands, and replaces no file.
table blue "${looks[0]}" >"it's.3dl"
echo precious >"it's.cube"
"$tool" lut check "it's.3dl" >out.txt 2>err.txt
line=$(sed -n 's/.*: effectengine lut fix/lut fix/p' err.txt)
eval "\"\$tool\" $line" >out.txt 2>err.txt || fail "the line cannot be typed: $line ($(cat err.txt))"
[ "$(cat "it's.cube")" = precious ] || fail "the line writes over a file"
[ -f "it's-2.cube" ] || fail "no table from: $line"
awk 'NF == 3 && !/[A-Z]/' "it's-2.cube" | sed -n '2p;82p' >turned.txt
[ "$(awk '{ print ($1 > 0.1) ($2 > 0.1) ($3 > 0.1) }' turned.txt | paste -sd' ')" = "100 001" ] ||
    fail "red does not vary fastest, and blue slowest: $(cat turned.txt)"

# A repair that keeps the order warns as well, with its own file names; one that turns the order round does not.
expect 0 "lut fix --blue-first 'blue first.3dl' kept.cube" "$tool" lut fix 'blue first.3dl' kept.cube
expect 0 '' "$tool" lut fix --blue-first 'blue first.3dl' turned.cube
expect 0 '' "$tool" lut fix red.3dl kept.cube

exit "$((failures > 0))"
