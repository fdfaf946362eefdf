#!/usr/bin/env bash
# Stills show the effect: they are opaque and taken at a moment when effects have something to show, and an effect that
# lacks something says so.
source "$(dirname "$0")/../support/toolScript.sh" "$1"

printf 'BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\x08\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x0a\x14\x1e\xc8\x64\x32\0\0' >two.bmp
copy() { "$tool" apply equalize -p kex_effect_enable=0 "$@"; }
copy --size 96x64 two.bmp in.png
copy in.png in.bmp
"$tool" apply am-negative --size 96x64 two.bmp other.bmp
pixels_of() { tail -c +$(($(od -An -tu4 -j10 -N4 "$1") + 1)) "$1" | od -An -v -w4 -tu1; }
transparent() { pixels_of "$1" | awk '$4 != 255' | grep -c .; }

# Opaque pictures give opaque ones, one by one and on a sheet; effects that compute alpha stay transparent.
expect 0 '' "$tool" list --kind transition --names
while read -r name; do
    expect 0 '' "$tool" transition "$name" in.png other.bmp still.bmp
    [ "$(transparent still.bmp)" -eq 0 ] || fail "$name: $(transparent still.bmp) transparent pixels"
done < <(cat out.txt)
expect 0 '' "$tool" apply am-bad-tv-signal in.png still.bmp
[ "$(transparent still.bmp)" -eq 0 ] || fail "am-bad-tv-signal is transparent"
"$tool" transition fade in.png other.bmp middle --frames 3
copy middle/frame-0001.png still.bmp
[ "$(transparent still.bmp)" -eq 0 ] || fail "a strip is transparent"
"$tool" apply blank in.png still.bmp
[ "$(transparent still.bmp)" -eq 6144 ] || fail "blank is for being transparent"
"$tool" transition zoom still.bmp other.bmp mixed.bmp
[ "$(transparent mixed.bmp)" -gt 0 ] || fail "transparency that came in is gone"

# A still without --time shows the middle of the duration.
for effect in push particles-snow am-snow; do
    with=()
    [ "$effect" != push ] || with=(--with other.bmp)
    expect 0 '' "$tool" --seed 1 apply "$effect" in.png "${with[@]}" still.bmp
    expect 0 '' "$tool" --seed 1 apply "$effect" in.png "${with[@]}" middle.bmp --time 2.5
    cmp -s still.bmp middle.bmp || fail "$effect: not the middle of 5 seconds"
    cmp -s still.bmp in.bmp && fail "$effect: nothing to be seen"
    expect 0 '' "$tool" --seed 1 apply "$effect" in.png "${with[@]}" middle.bmp --total 5 --time 0.08
    cmp -s still.bmp middle.bmp && fail "$effect: --time does nothing"
    expect 0 '' "$tool" --seed 1 apply "$effect" in.png "${with[@]}" still.bmp --total 0.16
    [ "$effect" = push ] || cmp -s still.bmp middle.bmp || fail "$effect: not the middle of --total"
done
# Scenes of particles are filled from the start.
expect 0 '' "$tool" list --kind particles --names
while read -r name; do
    expect 0 '' "$tool" apply "$name" in.png still.bmp --time 0
    cmp -s still.bmp in.bmp && fail "$name: empty at its first frame"
done < <(cat out.txt)

# Effects with a history have seen the picture before: a trail that turns takes some frames to fade in.
expect 0 '' "$tool" apply vertigo in.png still.bmp
expect 0 '' "$tool" apply vertigo in.png first.bmp --time 0
level() { pixels_of "$1" | awk '{ sum += $1 + $2 + $3 } END { print int(sum / NR) }'; }
[ "$(level still.bmp)" -gt $((3 * $(level first.bmp))) ] || fail "no frames before: $(level first.bmp) to $(level still.bmp)"
# A still is the same whether it is made alone or after others.
mkdir many && cp in.png many/a.png && cp in.png many/b.png
expect 0 '2 done' "$tool" apply -j 1 --format bmp vertigo many results
cmp -s still.bmp results/b.bmp || fail "a still depends on the one before it"
# Pictures of one size share memory: nothing of one shows in the next, damaged ones in between included.
mkdir others && cp in.png others/d.png
"$tool" apply am-negative in.png others/a.jpg
"$tool" apply blur --size 20x30 in.png others/c.jpg
"$tool" --seed 1 apply am-noise in.png others/e.jpg
head -c 1500 others/e.jpg >others/b.jpg
for effect in blank vertigo am-noise black-and-white; do
    rm -rf results && mkdir results
    expect 6 'damaged or cut short' "$tool" --seed 1 apply -j 1 --progress none --format bmp "$effect" others results
    for name in a.jpg c.jpg d.png e.jpg; do
        "$tool" --seed 1 apply "$effect" "others/$name" alone.bmp 2>err.txt
        cmp -s alone.bmp "results/${name%.*}.bmp" || fail "$effect: $name depends on the pictures before it"
    done
done
expect 0 '2 done' "$tool" --seed 1 apply -j 1 am-noise many noises
cmp -s noises/a.png noises/b.png || fail "chance depends on the pictures before"

EFFECTENGINE_SEED=1 "$tool" apply am-noise in.png still.png
cmp -s still.png noises/a.png || fail "the seed of the environment"
EFFECTENGINE_SEED=2 "$tool" --seed 1 apply am-noise in.png still.png
cmp -s still.png noises/a.png || fail "--seed goes before the environment"
EFFECTENGINE_SEED=2 "$tool" apply am-noise in.png still.png
cmp -s still.png noises/a.png && fail "another seed gives the same noise"
expect 0 '2 done' "$tool" apply -j 1 am-noise many alike
cmp -s alike/a.png alike/b.png || fail "without a seed, chance depends on the pictures before"

# Steps that only the GPU has are drawn by it, also where the CPU would be quicker.
for path in gpu auto; do
    EFFECTENGINE_PATH=$path "$tool" apply light-room -p u_vib=50 in.png still.bmp
    cmp -s still.bmp in.bmp && fail "EFFECTENGINE_PATH=$path: vibrance does nothing"
done
EFFECTENGINE_PATH=cpu "$tool" apply light-room -p u_vib=50 in.png still.bmp 2>err.txt
cmp -s still.bmp in.bmp || fail "EFFECTENGINE_PATH=cpu: drawn by the GPU"

# Values that a host is to store: without any setting an effect does nothing, here and from presets.
"$tool" apply light-room in.png still.bmp --save-preset plain.json 2>err.txt
cmp -s still.bmp in.bmp || fail "light-room changes the picture by itself"
grep -q '"u_temperature" : 11500' plain.json || fail "the preset leaves the white balance to chance: $(cat plain.json)"
"$tool" apply light-room -p u_temperature=0 in.png still.bmp
cmp -s still.bmp in.bmp && fail "a white balance of 0 is a value as well"
expect 0 '' "$tool" describe light-room
grep -Eq '^u_temperature +Temperature +integer +11500 ' out.txt || fail "describe: $(grep u_temp out.txt)"
expect 0 '' "$tool" describe --json light-room
grep -q '"hostDefault" : 11500' out.txt || fail "the catalogue: $(cat out.txt)"

# An effect that lacks something says what, once for any number of pictures.
expect 0 'light-room does nothing as it was called' "$tool" apply light-room in.png still.bmp
expect 0 'cube-lut does nothing as it was called: it waits for CubeLutFile' "$tool" apply cube-lut in.png still.bmp
expect 0 'highlight does nothing as it was called: it waits for iMouse' "$tool" apply highlight in.png still.bmp
expect 0 'waits for' "$tool" apply highlight -p Radius=2 in.png still.bmp
expect 0 'rings does nothing as it was called' "$tool" apply -e am-negative -e rings in.png still.bmp
expect 0 'delay-grab does nothing here' "$tool" apply delay-grab in.png still.bmp
expect 0 'rings does nothing as it was called' "$tool" apply -j 2 --progress none --format bmp rings many rung
expect 0 '' "$tool" apply highlight -p kex_effect_enable=0 in.png still.bmp
expect 0 '' "$tool" apply highlight -p Enable=1 -p Radius=1 -p Opacity=0.5 -p iMouse=40,30 -p Color=1,0,0 in.png still.bmp
expect 0 '' "$tool" apply am-blur2 -p kex_effect_enable=0 in.png still.bmp
expect 0 '' "$tool" apply soft-blur -p Radius=0 in.png still.bmp
expect 0 '' "$tool" apply push in.png --with other.bmp still.bmp --time 0

exit "$((failures > 0))"
