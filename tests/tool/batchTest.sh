#!/usr/bin/env bash
# Batches: what is skipped, how results are called, what is said at the end, pipes, and dry runs.
source "$(dirname "$0")/../support/toolScript.sh" "$1"

printf 'BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\x08\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x0a\x14\x1e\xc8\x64\x32\0\0' >in.bmp
mkdir -p photos/inner
for name in a b c inner/d; do cp in.bmp "photos/$name.bmp"; done
invert=(apply am-negative)
# said CODE LINE...: the last command's exit code and lines on stderr.
run() { "$tool" "$@" >out.txt 2>err.txt; code=$?; }
said() {
    local wanted=$1
    shift
    [ "$code" -eq "$wanted" ] || fail "exit code $code instead of $wanted: $(cat err.txt)"
    [ "$(cat err.txt)" = "$(printf '%s\n' "$@")" ] || fail "said \"$(cat err.txt)\" instead of \"$*\""
}

# The summary, and what is wrong with failures.
run "${invert[@]}" photos all
said 0 'effectengine: 3 done'
printf 'no picture' >photos/bad.png
reason='not a picture that can be decoded: photos/bad.png'
for jobs in 1 2; do
    run "${invert[@]}" -j $jobs photos "some$jobs"
    said 6 "effectengine: $reason" 'effectengine: 3 done, 1 failed:' "  $reason"
done
run "${invert[@]}" -j 2 --progress json photos some2
said 6 "effectengine: $reason"
tail -1 out.txt | python3 -c '
import json, sys
summary = json.load(sys.stdin)
assert (summary["done"], summary["skipped"], summary["left"]) == (3, 0, 0), summary
assert summary["failed"] == [{"in": "photos/bad.png", "out": "some2/bad.png", "code": 4, "reason": sys.argv[1]}], summary
' "$reason" || fail "the summary as JSON: $(cat out.txt)"
mkdir bad && cp photos/bad.png bad/1.png && cp photos/bad.png bad/2.png
run "${invert[@]}" --progress none bad none
[ "$code" -eq 4 ] && [ "$(wc -l <err.txt)" -eq 2 ] || fail "nothing but failures: $code $(cat err.txt)"
rm photos/bad.png

# Finished results stay, cut ones and older ones are made again.
for kind in png jpg bmp tga; do
    skip=("${invert[@]}" -r --skip-existing --format $kind photos "$kind")
    run "${skip[@]}"
    said 0 'effectengine: 4 done'
    cp -r $kind whole
    run "${skip[@]}"
    said 0 'effectengine: 0 done, 4 skipped'
    diff -r $kind whole || fail "$kind: finished files were touched"
    size=$(stat -c %s "$kind/b.$kind")
    [ $kind = tga ] && size=$((18 + 8))
    for cut in $((size - 1)) $((size / 2)) 0; do
        truncate -s $cut "$kind/b.$kind"
        run "${skip[@]}"
        said 0 'effectengine: 1 done, 3 skipped'
        diff -r $kind whole || fail "$kind: cut at $cut, and not made anew"
    done
    touch -d '+1 minute' photos/inner/d.bmp
    run "${skip[@]}"
    said 0 'effectengine: 1 done, 3 skipped'
    touch -d '-1 minute' photos/inner/d.bmp
    rm -rf whole
done
run "${invert[@]}" --skip-existing in.bmp png/a.png
said 0 'effectengine: 0 done, 1 skipped'

# Results lie in folders as their sources do, and are no sources of the next run.
cp -r photos tree
run "${invert[@]}" -r tree tree/results
said 0 'effectengine: 4 done'
run "${invert[@]}" -r --skip-existing tree tree/results
said 0 'effectengine: 0 done, 4 skipped'

# Names.
run apply -e am-negative -e equalize --rename '{name}-{effect}.{ext}' photos names
[ "$(ls names)" = "$(printf '%s-am-negative+equalize.bmp\n' a b c)" ] || fail "--rename: $(ls names)"
"$tool" "${invert[@]}" --save-preset look.json in.bmp out.bmp
run apply --graph look.json -r --rename '{{{index}}}{parent}-{effect}.png' photos more
[ "$(cd more && find . -type f | LC_ALL=C sort)" = "$(printf '%s\n' ./inner/{4}inner-look.png ./{1}photos-look.png ./{2}photos-look.png ./{3}photos-look.png)" ] \
    || fail "--rename: $(find more -type f)"
run "${invert[@]}" --rename '{name}x.{ext}' in.bmp single
[ "$(ls single)" = inx.bmp ] || fail "--rename makes OUT a directory: $(ls)"
expect 2 'did you mean "effect"' "$tool" "${invert[@]}" --rename '{efect}.png' photos no
expect 2 'no slashes' "$tool" "${invert[@]}" --rename '../{name}.{ext}' photos no
expect 2 'single brace' "$tool" "${invert[@]}" --rename '{name' photos no
expect 2 'single brace' "$tool" "${invert[@]}" --rename 'name}.png' photos no
expect 2 'no kind of picture' "$tool" "${invert[@]}" --rename '{name}' photos no
expect 5 'would become' "$tool" "${invert[@]}" --rename 'same.{ext}' photos no
expect 2 'is a name' "$tool" "${invert[@]}" --rename '{name}.{ext}' in.bmp out.bmp
[ ! -e no ] || fail "a refused run made a directory"

# Pipes.
"$tool" "${invert[@]}" in.bmp file.png
"$tool" "${invert[@]}" in.bmp file.jpg
"$tool" "${invert[@]}" - - <in.bmp >piped.png 2>err.txt && cmp piped.png file.png && [ ! -s err.txt ] || fail "- -: $(cat err.txt)"
"$tool" "${invert[@]}" --format jpg - - <in.bmp | cmp - file.jpg || fail "--format of a pipe"
"$tool" "${invert[@]}" in.bmp - | "$tool" apply -e am-negative - back.bmp && "$tool" apply equalize -p kex_effect_enable=0 in.bmp copy.bmp
cmp back.bmp copy.bmp || fail "one side alone"
cat in.bmp | "$tool" apply bloom - - 2>err.txt | cmp - <("$tool" apply bloom in.bmp - 2>>err.txt) || fail "the graphics system writes to stdout"
expect 4 'not a picture that can be decoded: stdin' "$tool" "${invert[@]}" - out.png </dev/null
expect 4 'damaged or cut short: stdin' "$tool" "${invert[@]}" - out.png < <(head -c 60 file.png)
expect 2 'stands for one picture' "$tool" "${invert[@]}" - in.bmp folder
expect 2 'stands for one picture' "$tool" "${invert[@]}" photos -
expect 2 'stdout' "$tool" "${invert[@]}" --progress json in.bmp -
"$tool" "${invert[@]}" --size 2000x2000 --format bmp in.bmp - 2>err.txt | head -c 10 >ten
[ "${PIPESTATUS[0]}" -eq 141 ] && [ ! -s err.txt ] || fail "a closed reader: ${PIPESTATUS[*]} $(cat err.txt)"

# Dry runs tell and write nothing.
touch mark
sleep 0.01
printf 'no picture' >photos/bad.png
run apply -e hue-shift --dry-run --save-preset preset.json photos/a.bmp planned.png
[ "$code" -eq 0 ] && grep -q '^make *photos/a.bmp (2 x 1) -> planned.png (2 x 1)' out.txt || fail "one picture: $(cat out.txt)"
run apply -e delay-grab -e bloom -r --size 40x30 --skip-existing --format png --dry-run photos png
[ "$code" -eq 6 ] || fail "a dry run sees what will fail: $code"
for text in 'effects   delay-grab (CPU), bloom (GPU)' 'history   ' 'processes ' \
    'skip      photos/a.bmp (2 x 1) -> png/a.png (40 x 30): is finished' \
    'fail      photos/bad.png -> png/bad.png: not a picture that can be decoded: photos/bad.png' \
    'in all    4 to skip, 1 cannot be done'; do
    grep -qF -- "$text" out.txt || fail "no \"$text\" in $(cat out.txt)"
done
run apply -e hue-shift -r --dry-run --json photos fresh
python3 - <<'P' || fail "a dry run as JSON: $(cat out.txt)"
import json
plan = json.load(open("out.txt"))
assert plan["verb"] == "apply" and plan["history"] == 0
assert plan["effects"] == [{"node": "hue-shift", "effect": "hue-shift", "runsOn": "cpu", "history": 0}], plan["effects"]
assert plan["counts"] == {"make": 4, "replace": 0, "skip": 0, "fail": 1}, plan["counts"]
step = next(step for step in plan["steps"] if step["reads"][0]["file"] == "photos/inner/d.bmp")
assert step["writes"] == [{"file": "fresh/inner/d.bmp", "width": 2, "height": 1}], step
P
run transition picture-wipe in.bmp file.png strip --frames 4 -p WipePicture=heart --dry-run
grep -q '^reads *heart' out.txt && grep -q 'strip/frame-%04d.png' out.txt || fail "transition: $(cat out.txt)"
run sheet in.bmp sheet.png --kind am-look --dry-run
[ "$code" -eq 0 ] && grep -q '^make' out.txt || fail "sheet: $(cat out.txt err.txt)"
EFFECTENGINE_PATH=cpu run sheet in.bmp sheet.png -e cube-lut --dry-run
grep -q 'cube-lut (CPU)' out.txt || fail "where an effect runs: $(cat out.txt)"
[ -z "$(find . -newer mark -not -name out.txt -not -name err.txt -not -name bad.png -not -path . -not -path ./photos)" ] \
    || fail "a dry run wrote: $(find . -newer mark)"
expect 2 'requires --dry-run' "$tool" "${invert[@]}" --json in.bmp out.png

[ "$failures" -eq 0 ] && echo "batches keep their promises"
exit "$((failures > 0))"
