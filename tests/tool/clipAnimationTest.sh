#!/usr/bin/env bash
# Animated pictures through the verb for clips: frames, delays, transparency and the number of plays, from files of
# several programs.
source "$(dirname "$0")/../support/toolScript.sh" "$1"
source "$support/clipScript.sh"

cat >look.py <<'END'
# The delays of an animated picture in milliseconds, its plays as the file tells them, and the alpha of each corner.
import sys
from PIL import Image
picture = Image.open(sys.argv[1])
delays, corners = [], []
for i in range(picture.n_frames):
    picture.seek(i)
    picture.load()
    delays.append(round(picture.info.get('duration', 0)))
    corners.append(picture.convert('RGBA').getpixel((0, 0))[3])
print(*delays, 'plays', picture.info.get('loop', 'once'), 'alpha', *corners)
END
cat >draw.py <<'END'
# Four frames with a clear corner in the second and third, of which parts of the canvas change.
from PIL import Image, ImageDraw
frames = []
for i in range(4):
    frame = Image.new('RGBA', (64, 48), (200, 40 * i, 30, 255))
    draw = ImageDraw.Draw(frame)
    draw.rectangle((20 + 8 * i, 10, 30 + 8 * i, 30), fill=(0, 60 * i, 255, 255))
    if i in (1, 2):
        draw.rectangle((0, 0, 9, 9), fill=(0, 0, 0, 0))
    frames.append(frame)
delays = [100, 250, 40, 500]
frames[0].save('made.webp', save_all=True, append_images=frames[1:], duration=delays, loop=3, lossless=True, exact=True)
frames[0].save('made.png', save_all=True, append_images=frames[1:], duration=delays, loop=3)
frames[0].save('made.gif', save_all=True, append_images=frames[1:], duration=delays, loop=2, disposal=2)
frames[0].save('once.gif', save_all=True, append_images=frames[1:], duration=delays, disposal=2)
frames[0].save('still.webp', lossless=True)
for i, frame in enumerate(frames):
    frame.save('drawn%d.png' % i)
END
look() { /usr/bin/python3 look.py "$1"; }
/usr/bin/python3 draw.py || fail "cannot draw"
mv made.png made.apng
rgba() { ffmpeg -v error -i "$1" -f rawvideo -pix_fmt rgba - | md5sum; }

# Every frame of every format comes in as it was drawn.
for kind in webp apng; do
    expect 0 '' "$tool" video made.$kind "$kind%d.png"
    for i in 0 1 2 3; do same "$(rgba $kind$i.png)" "$(rgba drawn$i.png)" "frame $i of $kind"; done
done
same "$(ls webp?.png | wc -l)" 4 "frames of WebP"
expect 0 '' "$tool" video still.webp 'still%d.png'
same "$(rgba still0.png) $(ls still?.png | wc -l)" "$(rgba drawn0.png) 1" "a still WebP"

# Delays, transparency and plays from each format to each. A GIF counts the plays after the first.
# FFmpeg's decoder lets an opaque frame of a GIF stand that is to be cleared.
for kind in webp apng gif; do
    alpha='255 0 0 255'
    [ $kind = gif ] && alpha='255 255 0 255'
    expect 0 '' "$tool" video made.$kind "from-$kind.apng"
    same "$(look "from-$kind.apng")" "100 250 40 500 plays 3 alpha $alpha" "from $kind to APNG"
    expect 0 '' "$tool" video made.$kind "from-$kind.gif"
    same "$(look "from-$kind.gif")" "100 250 40 500 plays 2 alpha $alpha" "from $kind to GIF"
    expect 0 '' "$tool" video made.$kind "from-$kind.webp"
    same "$(look "from-$kind.webp" | sed 's/^\([0-9]* [0-9]* [0-9]*\) [0-9]*/\1 last/')" \
        "100 250 40 last plays 3 alpha $alpha" "from $kind to WebP"
done
expect 0 '' "$tool" video once.gif once.apng
same "$(look once.apng | grep -o 'plays [a-z0-9]*')" 'plays 1' "a GIF that is played once"
expect 0 '' "$tool" video once.gif again.gif
same "$(look again.gif | grep -o 'plays [a-z0-9]*')" 'plays once' "once stays once"
make -f lavfi -i testsrc2=s=64x48:r=10:d=0.4 clip.mp4
for kind in gif apng webp; do
    expect 0 '' "$tool" video clip.mp4 clip.$kind -e equalize
    same "$(look clip.$kind | cut -d' ' -f1-6)" '100 100 100 100 plays 0' "a clip as $kind"
done

# WebP serves as any clip does: in parts, beside others, through effects, and its damage is told.
cat >copy.json <<'END'
{"effectengine": 1, "nodes": [{"effect": "black-and-white", "parameters": {"kex_effect_enable": 0}}]}
END
expect 0 '' "$tool" render copy.json made.webp whole
expect 0 '' "$tool" render copy.json made.webp parts --chunk 1/2
expect 0 '' "$tool" render copy.json made.webp parts --chunk 2/2
same "$(hashes parts/manifest-*.json)" "$(hashes whole/manifest.json)" "WebP in parts"
expect 0 '' "$tool" video made.webp made.webm
same "$(ffprobe -v error -show_entries frame=pts_time -of csv=p=0 made.webm | tr -d , | paste -sd' ')" \
    '0.000000 0.100000 0.350000 0.390000' "times of frames"
expect 0 '' "$tool" transition push made.webp clip.mp4 joined.mp4 --at 0.3 --duration 0.2 --alpha drop
head -c 300 made.webp >cut.webp
"$tool" video cut.webp cut.gif 2>err.txt
code=$?
[ $code -eq 0 ] || [ $code -eq 4 ] || fail "a WebP that breaks off: $code $(cat err.txt)"
same "$(wc -l <err.txt)" 1 "a line about a WebP that breaks off: $(cat err.txt)"
expect 0 '' "$tool" video clip.mp4 'numbered%d.webp'
same "$(ls numbered?.webp | wc -l)" 4 "numbered WebP"

[ "$failures" -eq 0 ] && echo "animated pictures hold"
exit "$((failures > 0))"
