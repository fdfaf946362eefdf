#!/usr/bin/env bash
# The tool: the files that it writes, what it prints, and its exit codes.
source "$(dirname "$0")/../support/toolScript.sh" "$1"

# A 2 x 1 picture without any library: blue-green-red 10 20 30 and 200 100 50, as a 24-bit BMP.
printf 'BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\x08\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x0a\x14\x1e\xc8\x64\x32\0\0' >in.bmp
bmp_bytes() { tail -c 8 "$1" | od -An -tu1 | tr -s ' '; }

expect 0 '' "$tool" list
[ "$(grep -c . out.txt)" -ge 6 ] || fail "list is short"
expect 0 '' "$tool" list --search equalize
[ "$(wc -l <out.txt)" -eq 1 ] || fail "search finds one"
expect 2 'did you mean "colour"' "$tool" list --kind color
expect 0 '' "$tool" list --json --search EQUALIZE
grep -q '"name" : "equalize"' out.txt || fail "the catalogue names the effect"
expect 0 '' "$tool" describe --json hue-shift
grep -q '"name" : "Hue"' out.txt || fail "describe as JSON"
expect 0 '' "$tool" describe hue-shift
grep -q '^Hue .*95' out.txt || fail "describe shows the default"
expect 0 '' "$tool" describe "tv WALL"
grep -Eq '^SpliteSize +Split Size +integer' out.txt || fail "describe shows titles"
expect 0 '' "$tool" --help
grep -q 'Exit codes' out.txt || fail "help documents exit codes"

expect 0 '' "$tool" apply black-and-white in.bmp grey.bmp
[ "$(bmp_bytes grey.bmp)" = " 20 20 20 255 116 116 116 255" ] || fail "grey bytes:$(bmp_bytes grey.bmp)"
expect 0 '' "$tool" apply DEE5DFA9-F7FE-4cd1-9871-37A3C7673A1A in.bmp guid.bmp
cmp -s grey.bmp guid.bmp || fail "name and GUID differ"
expect 0 '' "$tool" apply -e hue-shift -p kex_effect_enable=0 -e black-and-white in.bmp chain.bmp
cmp -s grey.bmp chain.bmp || fail "a parameter belongs to the effect before it"
expect 0 '' "$tool" apply "Black and White" in.bmp title.bmp
cmp -s grey.bmp title.bmp || fail "name and title differ"
expect 0 '' "$tool" apply -e tv-wall -p "split size=2" --save-preset wall.json in.bmp wall.bmp
grep -q '"SpliteSize" : 2' wall.json || fail "a preset holds exact names"
for kind in png jpg jpeg tga PNG; do
    expect 0 '' "$tool" apply equalize in.bmp "out.$kind"
    expect 0 '' "$tool" apply blank "out.$kind" again.bmp
done
expect 0 '' "$tool" apply black-and-white --size 5x7 in.bmp sized.bmp
[ "$(od -An -tu4 -j18 -N8 sized.bmp | tr -s ' ')" = " 5 7" ] || fail "size"

expect 2 'did you mean "equalize"' "$tool" apply equalise in.bmp out.png
expect 2 'no parameter "Hew"' "$tool" apply hue-shift -p Hew=1 in.bmp out.png
expect 2 'did you mean "Split Size"' "$tool" apply tv-wall -p splitsise=1 in.bmp out.png
for bad in Hue=nan Hue=1.5 Hue= Hue=1x Hue=99999999999; do
    expect 2 'takes a whole number' "$tool" apply hue-shift -p "$bad" in.bmp out.png
done
expect 2 'name=value' "$tool" apply hue-shift -p Hue in.bmp out.png
expect 2 'takes 2 numbers' "$tool" apply highlight -p iMouse=1 in.bmp out.png
expect 2 'takes a number' "$tool" apply highlight -p Radius=inf in.bmp out.png
expect 2 '--size takes' "$tool" apply equalize --size 0x5 in.bmp out.png
expect 2 'apply takes' "$tool" apply equalize in.bmp
expect 2 'effectengine --help' "$tool" nonsense
expect 3 'no such file: missing.png' "$tool" apply equalize missing.png out.png
mkdir folder folder.png
expect 2 'is a directory' "$tool" apply equalize folder out.png
expect 3 'no pictures' "$tool" apply equalize folder results
printf 'no picture' >text.png
expect 4 'not a picture' "$tool" apply equalize text.png out.png
"$tool" apply equalize in.bmp whole.png
head -c 40 whole.png >cut.png
expect 4 'cut.png' "$tool" apply equalize cut.png cut-out.png
expect 5 'must end in' "$tool" apply equalize in.bmp out.xyz
expect 5 'no such directory' "$tool" apply equalize in.bmp nowhere/out.png
expect 0 '' "$tool" apply equalize in.bmp folder.png
[ "$(ls folder.png)" = in.bmp ] || fail "a directory as output takes the source's name"

# Several pictures, folders, processes.
mkdir -p photos/inner
for name in a b c inner/d; do cp in.bmp "photos/$name.bmp"; done
expect 0 '3 done' "$tool" apply black-and-white -j 1 photos one
expect 0 '' "$tool" apply black-and-white -j 3 -r --progress json photos many
grep -q '"done":4,"total":4' out.txt || fail "progress as JSON: $(cat out.txt)"
[ "$(ls one)" = "$(printf '%s\n' a.bmp b.bmp c.bmp)" ] || fail "a folder without -r: $(ls one)"
for name in a b c inner/d; do cmp -s grey.bmp "many/$name.bmp" || fail "many/$name.bmp"; done
"$tool" --seed 1 apply am-noise photos/?.bmp noise1 -j 1 && "$tool" --seed 1 apply am-noise photos/?.bmp noise3 -j 3
for name in a b c; do cmp -s noise1/a.bmp "noise3/$name.bmp" || fail "a result depends on other pictures: $name"; done
expect 0 '' "$tool" apply black-and-white --format png photos/a.bmp one
[ -f one/a.png ] || fail "--format"
expect 5 'overwrite the source' "$tool" apply black-and-white photos photos
cp in.bmp photos/a.jpg
expect 5 'would become' "$tool" apply black-and-white --format png photos clash
rm photos/a.jpg
printf 'no picture' >photos/bad.png
for jobs in 1 3; do
    expect 6 'photos/bad.png' "$tool" apply black-and-white -j "$jobs" --progress none photos "some$jobs"
    [ "$(ls "some$jobs")" = "$(ls one | grep bmp)" ] || fail "the other pictures are made all the same"
done
expect 2 'would have to be one' "$tool" apply equalize in.bmp grey.bmp out.png
expect 0 '' "$tool" apply push in.bmp --with grey.bmp pushed.bmp --time 5
cmp -s pushed.bmp grey.bmp || fail "--with is the second picture"

# Graphs and presets.
cat >look.json <<'JSON'
{"effectengine": 1, "nodes": [{"effect": "am-binary",
    "parameters": {"Percent": {"keyframes": [{"time": 0, "value": 0}, {"time": 4, "value": 100}]}}}]}
JSON
expect 0 '' "$tool" apply --graph look.json --time 1 in.bmp moved.bmp
expect 0 '' "$tool" apply am-binary -p Percent=25 --save-preset preset.json in.bmp still.bmp
cmp -s moved.bmp still.bmp || fail "a keyframe at 1 of 4 seconds"
expect 0 '' "$tool" apply --preset preset.json in.bmp again.bmp
cmp -s again.bmp still.bmp || fail "a preset repeats"
expect 0 '' "$tool" apply --preset preset.json -p Percent=30 -e am-negative in.bmp more.bmp
expect 0 '' "$tool" apply -e am-binary -p Percent=30 -e am-negative in.bmp chain.bmp
cmp -s more.bmp chain.bmp || fail "options go on from a preset"
expect 3 'no such file: missing.json' "$tool" apply --graph missing.json in.bmp out.png
printf '{' >broken.json
expect 4 'broken.json: not valid JSON: Line 1' "$tool" apply --graph broken.json in.bmp out.png
sed 's/"value": 0/"value": NaN/' look.json >nan.json
expect 2 'nan.json: node 1: parameter Percent' "$tool" apply --graph nan.json in.bmp out.png
expect 5 'cannot write' "$tool" apply am-binary --save-preset nowhere/x.json in.bmp out.png
expect 3 'no such file: missing.cube' "$tool" apply cube-lut -p CubeLutFile=missing.cube in.bmp out.png
"$tool" apply --graph <(sed 's/100/500/' look.json) in.bmp warned.png 2>err.txt || fail "a warning is no error"
grep -q 'effect am-binary: Percent=500' err.txt || fail "warnings name the effect and the parameter: $(cat err.txt)"

# Kill and Ctrl-C: the process ends by the signal, and nothing half-written stays.
"$tool" apply --size 2000x2000 blank in.bmp large.bmp 2>err.txt
mkdir larges
for i in $(seq 60); do ln large.bmp "larges/$i.bmp"; done
for signal in INT TERM; do
    setsid env --default-signal=INT "$tool" apply am-negative -j 2 --format png larges stopped 2>err.txt &
    job=$!
    sleep 0.7
    kill "-$signal" -- "-$job"
    wait "$job"
    [ $? -gt 128 ] || fail "not ended by SIG$signal"
    [ -z "$(find stopped -name '.*.*')" ] || fail "partial files stay: $(find stopped -name '.*.*')"
    for file in $(find stopped -name '*.png'); do
        "$tool" apply blank "$file" whole.bmp || fail "half-written: $file"
    done
    rm -rf stopped
done
rm -rf large.bmp larges whole.bmp

# Transitions: one frame, a strip, and what is no transition.
expect 0 '' "$tool" list --kind transition
[ "$(wc -l <out.txt)" -eq 81 ] || fail "64 transitions on the CPU and 17 on the GPU"
expect 0 '' "$tool" transition push in.bmp grey.bmp frame.bmp --at 1
cmp -s frame.bmp grey.bmp || fail "a transition ends with the second picture"
expect 0 '' "$tool" transition row-whisk in.bmp grey.bmp strip --frames 3
[ "$(ls strip)" = "$(printf 'frame-%04d.png\n' 0 1 2)" ] || fail "three frames: $(ls strip)"
cat >wipe.json <<'GRAPH'
{"effectengine": 1, "nodes": [{"effect": "picture-wipe", "inputs": ["source", "source-2"],
  "start": 0, "duration": 2, "parameters": {"WipePicture": "clock", "Softness": 0}}]}
GRAPH
for name in clock clock.png; do
    expect 0 '' "$tool" transition picture-wipe in.bmp grey.bmp wiped.bmp -p WipePicture=$name -p Softness=0 --at 0.5
    mv wiped.bmp "wiped-$name.bmp"
done
expect 0 '' "$tool" transition picture-wipe in.bmp grey.bmp plain.bmp -p Softness=0 --at 0.5
expect 0 '' "$tool" apply --graph wipe.json in.bmp --with grey.bmp graph.bmp --time 1
cmp -s graph.bmp wiped-clock.bmp || fail "a wipe picture of the pack in a graph file"
cmp -s wiped-clock.bmp wiped-clock.png.bmp || fail "a wipe picture of the pack, without its extension"
! cmp -s wiped-clock.bmp plain.bmp || fail "the wipe picture is not used"
expect 3 "none in the pack's wipes" "$tool" transition picture-wipe in.bmp grey.bmp wiped.bmp -p WipePicture=clok
expect 3 'no such file' "$tool" transition picture-wipe in.bmp grey.bmp wiped.bmp -p WipePicture=./clock
expect 6 'refuses the value' "$tool" transition picture-wipe in.bmp grey.bmp wiped.bmp -p WipePicture=wipe.json
expect 2 'no parameter "Speed"' "$tool" transition push in.bmp grey.bmp frame.bmp -p Speed=1
expect 2 'is no transition' "$tool" transition equalize in.bmp grey.bmp frame.bmp
expect 2 'needs 2 pictures' "$tool" apply push in.bmp frame.bmp
expect 2 '--at' "$tool" transition push in.bmp grey.bmp frame.bmp --at 1.5
expect 3 'no such file' "$tool" transition push in.bmp missing.bmp frame.bmp

# A sheet: three tiles of 20 x 10 in two columns, with gaps of 8 and labels of 20.
expect 0 '' "$tool" sheet in.bmp sheet.png --tile 20x10 --columns 2 -e am-negative -e push -e zoom
expect 0 '' "$tool" apply blank sheet.png sheet.bmp
[ "$(od -An -tu4 -j18 -N8 sheet.bmp | tr -s ' ')" = " 64 84" ] || fail "size of the sheet"
expect 2 'no effect fits' "$tool" sheet in.bmp sheet.png --search 'nothing has this'
expect 5 'must end in .png' "$tool" sheet in.bmp sheet.jpg
expect 2 'did you mean' "$tool" sheet in.bmp sheet.png -e am-negativ

# doctor finds nothing wrong here, and names what is missing elsewhere.
expect 0 '' "$tool" doctor
for what in library resources graphics driver paths effects pictures clips; do
    grep -q "^ok *$what" out.txt || fail "doctor does not examine $what: $(cat out.txt)"
done
expect 0 '' env EFFECTENGINE_PATH=cpu "$tool" doctor
grep -q "^ok *paths .*take the CPU (EFFECTENGINE_PATH=cpu)" out.txt || fail "doctor on paths: $(cat out.txt)"

# The graphics system starts for effects that draw, and not for others.
expect 0 '' "$tool" --log-dir quiet apply black-and-white in.bmp grey.bmp
[ -e quiet/EffectEngine.log ] && [ ! -e quiet/Ogre.log ] || fail "an effect of the CPU starts the graphics system"
expect 0 '' "$tool" --log-dir drawn apply bloom in.bmp bloom.bmp
[ -e drawn/Ogre.log ] || fail "where is the graphics system's log?"
mkdir empty
"$tool" --resources empty doctor >out.txt 2>err.txt
[ $? -eq 3 ] || fail "doctor misses missing resources: $(cat out.txt)"
grep -q -- '->' out.txt || fail "doctor names no remedy"

expect 0 '' "$tool" bench --size 64x64 --seconds 0.01 --threads 1 am-negative push
[ "$(tail -2 out.txt | awk '{ print $1 }' | paste -sd' ')" = "am-negative push" ] || fail "bench: $(cat out.txt)"
expect 0 '' "$tool" bench --json --size 64x64 --seconds 0.01 --threads 2 am-negative
grep -q '"threads" : 2' out.txt || fail "bench as JSON"

# Lookup tables.
printf 'LUT_3D_SIZE 2\n0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n' >identity.cube
expect 0 '' "$tool" lut check identity.cube
expect 0 '' "$tool" lut info identity.cube
grep -q 'size *2 x 2 x 2' out.txt || fail "lut info shows the size"
expect 0 '' "$tool" apply cube-lut -p CubeLutFile=identity.cube in.bmp lut.bmp
expect 0 '' "$tool" apply black-and-white -p kex_effect_enable=0 in.bmp copy.bmp
cmp -s lut.bmp copy.bmp || fail "an identity table changes nothing"
printf 'LUT_1D_SIZE 2\n0 0 0\n1 1 1\n' >line.cube
expect 4 'line.cube:1' "$tool" lut check line.cube
expect 3 'no such file' "$tool" lut check missing.cube

# Repairs: each broken table becomes the identity, and the lines say what was wrong.
expect 2 'IN is required' "$tool" lut fix
table='0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n'
# The graphics processor interpolates large tables to within one level of what the CPU does.
within_a_level() {
    paste <(od -An -v -w1 -tu1 "$1") <(od -An -v -w1 -tu1 "$2") | awk '{ d = $1 - $2; if (d < -1 || d > 1) exit 1 }'
}
repairs() {
    local name=$1 said=$2
    shift 2
    printf "$@" >"$name"
    expect 0 '' "$tool" lut fix "$name" fixed.cube
    grep -qF -- "$said" out.txt || fail "lut fix does not say \"$said\": $(cat out.txt)"
    expect 0 '' "$tool" apply cube-lut -p CubeLutFile=fixed.cube in.bmp lut.bmp
    within_a_level lut.bmp copy.bmp || fail "$name is not the identity after its repair"
}
repairs a.cube 'nothing to put right' "LUT_3D_SIZE 2\n$table"
repairs a.cube 'not in quotes' "TITLE My look\nLUT_3D_SIZE 2\n$table"
repairs a.cube 'size was missing' "$table"
repairs a.cube 'the table has 2 entries' "LUT_3D_SIZE 33\n$table"
repairs a.cube '1 lines after the table' "LUT_3D_SIZE 2\n${table}5 5 5\n"
repairs a.cube 'not known' "FILM_STOCK 5219\nLUT_3D_SIZE 2\n$table"
repairs a.cube 'one-dimensional' "LUT_1D_SIZE 2\n0 0 0\n1 1 1\n"
repairs a.cube 'exchanged' "DOMAIN_MIN 1 1 1\nDOMAIN_MAX 0 0 0\nLUT_3D_SIZE 2\n$table"
repairs a.cube 'decimal commas' "LUT_3D_SIZE 2\n$(printf "$table" | sed 's/\([01]\)/\1,0/g')\n"
repairs a.cube 'between commas' "LUT_3D_SIZE 2\n$(printf "$table" | tr ' ' ,)\n"
repairs a.3dl '10 bits' "0 512 1023\n$(for r in 0 512 1023; do for g in 0 512 1023; do for b in 0 512 1023; do printf '%s %s %s\\n' $b $g $r; done; done; done)"
"$tool" lut fix --blue-first a.3dl turned.cube >out.txt
"$tool" apply cube-lut -p CubeLutFile=turned.cube in.bmp turned.bmp
[ "$(bmp_bytes turned.bmp)" = " 30 20 10 255 50 100 200 255" ] || fail "--blue-first: $(bmp_bytes turned.bmp)"
awk 'BEGIN { n = 65; print "LUT_3D_SIZE " n; for (b = 0; b < n; b++) for (g = 0; g < n; g++) for (r = 0; r < n; r++)
    printf "%.9g %.9g %.9g\n", r / (n - 1), g / (n - 1), b / (n - 1) }' >large.cube
repairs a.cube 'resampled to 64' '%s\n' "$(cat large.cube)"
for bad in "LUT_3D_SIZE 2\n0 0 0\n" "LUT_3D_SIZE 2\n0 0\n$table" "LUT_3D_SIZE 2\n0 nan 0\n$table" 'no table\n'; do
    printf "$bad" >bad.cube
    expect 4 bad.cube "$tool" lut fix bad.cube never.cube
    [ ! -e never.cube ] || fail "a table was invented for: $bad"
done

# A warning names the parameter and does not stop the work.
"$tool" apply hue-shift -p Hue=500 in.bmp warned.png 2>err.txt || fail "a value outside the range is allowed"
grep -q 'Hue=500' err.txt || fail "warning"

# Nothing half-written stays, and an existing file survives a failed write.
cp whole.png kept.png
expect 4 'cut.png' "$tool" apply equalize cut.png kept.png
cmp -s whole.png kept.png || fail "a failed run touched the output"
[ -z "$(find . -name '.*.png' -o -name '.*.bmp')" ] || fail "partial files stay: $(find . -name '.*.*')"

# A full disk, where one can be made.
if [ "$(id -u)" -eq 0 ] && mkdir small && mount -t tmpfs -o size=64k none small 2>/dev/null; then
    "$tool" apply --size 600x600 -e equalize in.bmp big.bmp
    expect 7 'no room' "$tool" apply equalize big.bmp small/out.bmp
    expect 7 'no room' "$tool" apply equalize -j 2 --progress none big.bmp in.bmp small
    expect 7 'no room' "$tool" sheet big.bmp small/sheet.png --tile 300x300
    rm -f small/in.bmp
    [ -z "$(ls -A small)" ] || fail "a partial file stays on the full disk: $(ls -A small)"
    head -c 64k /dev/zero >small/filler 2>/dev/null
    expect 7 'no room' "$tool" lut fix large.cube small/large.cube
    expect 7 'no room' "$tool" apply equalize --save-preset small/preset.json in.bmp out.bmp
    umount small
fi

[ "$failures" -eq 0 ] && echo "all of the tool's promises hold"
exit "$((failures > 0))"
