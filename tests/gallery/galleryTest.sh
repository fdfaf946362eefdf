#!/usr/bin/env bash
# The gallery command: which files it makes, from what, and what it leaves alone.
source "$(dirname "$0")/../support/toolScript.sh" "$1"

printf 'BM\x3e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\2\0\0\0\1\0\0\0\1\0\x18\0\0\0\0\0\x08\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x0a\x14\x1e\xc8\x64\x32\0\0' >two.bmp
"$tool" apply hue-shift -p kex_effect_enable=0 --size 320x200 two.bmp photo.png
chosen=(-e hue-shift -e push -e delay-grab -e am-snow -e am-noise -e highlight -e cube-lut)

# Each effect has a still and a small picture; a loop if it moves; sweeps of parameters that have a range and change
# the picture.
expect 0 '' "$tool" gallery one photo.png "${chosen[@]}" -j 1 --progress json
grep -q '"done":7,"total":7' out.txt || fail "progress: $(cat out.txt)"
[ "$(ls -A one)" = "$(printf 'index.html\npictures')" ] || fail "contents: $(ls -A one)"
loops=$(cd one/pictures && echo *.loop.jpg)
[ "$loops" = "am-noise.loop.jpg am-snow.loop.jpg delay-grab.loop.jpg push.loop.jpg" ] || fail "loops: $loops"
[ "$(ls one/pictures/*.small.jpg | wc -l)" -eq 7 ] || fail "small pictures"
[ "$(ls one/pictures/hue-shift.*)" = "$(printf 'one/pictures/hue-shift.%s\n' jpg small.jpg sweep-3.jpg)" ] ||
    fail "hue-shift: $(ls one/pictures/hue-shift.*)"
[ -f one/pictures/first.input.jpg ] && [ -f one/pictures/second.input.jpg ] || fail "the pictures themselves"

# The page names every file, and no address on the network.
for file in one/pictures/*; do
    grep -qF "\"$(basename "$file")\"" one/index.html || fail "not on the page: $file"
done
grep -Eq '(https?:)?//[a-z]' one/index.html && fail "an outside address: $(grep -Eo '.{20}(https?:)?//[a-z].{20}' one/index.html | head -1)"
printf '%s' '{{' | grep -qFf - one/index.html && fail "an open place in the template"

# The files do not depend on the number of processes, nor on which effects came before.
expect 0 '' "$tool" gallery two photo.png "${chosen[@]}" -j 3
diff -r one two || fail "one process and three differ"
expect 0 '' "$tool" gallery three photo.png -e am-snow
cmp -s one/pictures/am-snow.loop.jpg three/pictures/am-snow.loop.jpg || fail "an effect alone differs"

# A gallery replaces a gallery with its files, and no other files.
echo mine >two/notes.txt
expect 0 '' "$tool" gallery two photo.png -e hue-shift --no-sweeps --with two.bmp
[ "$(ls two two/pictures | grep -c .)" -eq 9 ] && [ -f two/notes.txt ] || fail "replaced: $(ls two two/pictures)"
mkdir site && echo '<p>mine</p>' >site/index.html
expect 5 'in the way' "$tool" gallery site photo.png -e hue-shift
[ "$(cat site/index.html)" = '<p>mine</p>' ] || fail "another's page was overwritten"
expect 3 'no such file' "$tool" gallery new missing.png
expect 2 'did you mean' "$tool" gallery new photo.png -e hue-shif
expect 4 'not a picture' "$tool" gallery new site/index.html
expect 5 'two.bmp' "$tool" gallery two.bmp photo.png -e hue-shift
[ ! -e new ] || fail "a failed run left its directory"

# Pages for reading: one for each effect, whose links and pictures are there.
expect 0 '' "$tool" gallery two photo.png -e hue-shift -e push -e highlight --pages
[ "$(ls two/pages)" = "$(printf '%s\n' highlight.html hue-shift.html index.html push.html style.css)" ] || fail "pages: $(ls two/pages)"
grep -q '<td>95</td><td>0 to 100</td><td>position on the hue wheel' two/pages/hue-shift.html || fail "the table of parameters"
grep -Eoh '(href|src)="[^"#]+|url\([^)]+' two/pages/*.html | sed 's/.*["(]//' | sort -u | while read -r link; do
    [ -e "two/pages/$link" ] || echo "$link"
done >links.txt
[ ! -s links.txt ] || fail "links that lead nowhere: $(cat links.txt)"
expect 0 '' "$tool" gallery two photo.png -e hue-shift
[ ! -e two/pages ] || fail "old pages stay"

# The picture is turned upright, and its name, which HTML would take for an element, is escaped.
"$tool" apply hue-shift --size 90x700 two.bmp '<b>&".png'
expect 0 '' "$tool" gallery upright '<b>&".png' -e hue-shift
grep -q '<title>Effects on &lt;b&gt;&amp;&quot;.png</title>' upright/index.html || fail "the title: $(grep title upright/index.html)"

# Ctrl-C leaves no visible files. What a process left that was ended by force, the next one removes.
setsid env --default-signal=INT "$tool" gallery stopped photo.png -j 2 2>err.txt &
job=$!
sleep 1
kill -INT -- "-$job"
wait "$job"
[ $? -gt 128 ] || fail "not ended by SIGINT"
[ ! -e stopped ] || [ -z "$(ls stopped)" ] || fail "an interrupted gallery stays: $(ls stopped)"
sleep 1 # its workers end as well
mkdir -p stopped/.effectengine-99999999/pages
expect 0 '' "$tool" gallery stopped two.bmp -e hue-shift
[ -e stopped/index.html ] && [ -z "$(ls -A stopped | grep effectengine-)" ] || fail "leftovers: $(ls -A stopped)"

[ "$failures" -eq 0 ] && echo "all of the gallery's promises hold"
exit "$((failures > 0))"
