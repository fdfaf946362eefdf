#!/usr/bin/env bash
# What goes along with a clip's pictures: tracks of sound, titles, chapters, attached files, covers, notes and marks,
# as ffprobe finds them in the output, and the lines that say what has no place there.
source "$(dirname "$0")/../support/toolScript.sh" "$1"
source "$support/clipScript.sh"

# of STREAM ENTRIES FILE: values that ffprobe finds, with commas between.
of() { ffprobe -v error -select_streams "$1" -show_entries "$2" -of csv=p=0 "$3" | paste -sd' '; }
chapters() { ffprobe -v error -show_entries chapter=start_time,end_time:chapter_tags=title -of csv=p=0 "$1" | paste -sd' '; }
note() { ffprobe -v error -show_entries "format_tags=$1" -of csv=p=0 "$2"; }
# lost FILE TEXT...: exactly these lines came with the last run, each about the file.
lost() {
    local text file=$1 lines=$(($# - 1))
    shift
    same "$(wc -l <err.txt)" "$lines" "lines about $file: $(cat err.txt)"
    for text; do grep -qF "$text" err.txt || fail "$file: no \"$text\": $(cat err.txt)"; done
}

cat >titles.srt <<'END'
1
00:00:00,200 --> 00:00:00,900
One <i>title</i>

2
00:00:01,200 --> 00:00:01,900
Another
END
cat >notes.txt <<'END'
;FFMETADATA1
title=The film
date=2020-03-04
location=+47.3769+008.5417/
[CHAPTER]
TIMEBASE=1/1000
START=0
END=800
title=First
[CHAPTER]
TIMEBASE=1/1000
START=800
END=2000
title=Second
END
make -f lavfi -i color=red:s=32x32 -frames:v 1 cover.jpg
echo 'no font' >font.ttf
make -f lavfi -i testsrc2=s=96x64:r=25:d=2 -f lavfi -i sine=300:d=2 -f lavfi -i sine=600:d=2 -i titles.srt -i notes.txt \
    -map 0 -map 1 -map 2 -map 3 -map_metadata 4 -c:v libx264 -c:a aac -c:s srt -metadata:s:a:0 language=deu \
    -metadata:s:a:1 language=fra -metadata:s:a:1 title=Autre -disposition:a:0 0 -disposition:a:1 default \
    -metadata:s:s:0 language=eng -disposition:s:0 forced -attach font.ttf -metadata:s:t:0 mimetype=application/x-truetype-font \
    -attach cover.jpg -metadata:s:t:1 mimetype=image/jpeg -metadata:s:t:1 filename=cover.jpg all.mkv

# Matroska has a place for everything.
expect 0 '' "$tool" video all.mkv out.mkv
for entries in stream=codec_name stream_tags=language,title,filename,mimetype stream_disposition=default,forced,attached_pic; do
    same "$(of '' $entries out.mkv)" "$(of '' $entries all.mkv)" "$entries in Matroska"
done
same "$(chapters out.mkv)" "$(chapters all.mkv)" "chapters in Matroska"
same "$(note title out.mkv),$(note LOCATION out.mkv)" 'The film,+47.3769+008.5417/' "notes in Matroska"
make -dump_attachment:t:0 back.ttf -i out.mkv -map 0:v:0 -frames:v 1 -f null -
cmp -s back.ttf font.ttf || fail "the attached file"
make -i out.mkv -map 0:v:1 -c copy -update 1 -f image2 back.jpg
cmp -s back.jpg cover.jpg || fail "the cover"

# MP4 has no attached files; its titles are of another kind, and the cover is a track. From there to Matroska.
"$tool" video all.mkv out.mp4 2>err.txt || fail "to MP4"
lost out.mp4 'subtitles (track 4, eng, subrip) are written as mov_text' 'attachment (track 5, ttf) has no place'
same "$(of a stream_tags=language out.mp4) $(of a stream_disposition=default out.mp4)" 'deu fra 0 1' "sound in MP4"
same "$(of a:1 stream_tags=handler_name out.mp4)" Autre "the name of a track in MP4"
same "$(chapters out.mp4)" "$(chapters all.mkv)" "chapters in MP4"
same "$(note title out.mp4),$(note location out.mp4)" 'The film,+47.3769+008.5417/' "notes in MP4"
same "$(of v stream_disposition=attached_pic out.mp4)" '0 1' "a cover in MP4"
expect 0 'written as subrip' "$tool" video out.mp4 back.mkv
same "$(of a:1 stream_tags=language,title back.mkv)" fra,Autre "the name of a track from MP4"
same "$(of s stream=codec_name back.mkv) $(of s packet=pts_time,duration_time back.mkv)" \
    "subrip $(of s packet=pts_time,duration_time all.mkv)" "titles through MP4"
make -i back.mkv -map 0:s back.srt
grep -q 'One <i>title</i>' back.srt || fail "words of titles: $(cat back.srt)"
same "$(of t stream_tags=filename back.mkv)$(of v:1 stream_tags=filename back.mkv)" cover.jpg "the cover as a file"
"$tool" video all.mkv out.mov 2>err.txt || fail "to QuickTime"
same "$(of a stream_tags=language out.mov)" 'ger fra' "languages in QuickTime"
expect 0 'written as mov_text' "$tool" video back.mkv again.mp4
same "$(of v stream_disposition=attached_pic again.mp4)" '0 1' "a cover from Matroska"

# WebM, AVI, MPEG-TS and GIF have ever less place.
"$tool" video all.mkv out.webm 2>err.txt || fail "to WebM"
lost out.webm 'track 2, deu, aac) is encoded anew as opus' 'track 3, fra, aac) is' 'written as webvtt' 'attachment (' 'cover picture ('
same "$(of a stream_tags=language,title out.webm) $(of a stream_disposition=default out.webm)" 'deu fra,Autre 0 1' "marks of sound that is encoded"
"$tool" video all.mkv out.ts 2>err.txt || fail "to MPEG-TS"
lost out.ts 'subtitles (track 4' 'attachment (' 'cover picture (' 'chapters have no place'
same "$(of a stream=codec_name out.ts | xargs -n1 | sort -u)" aac "sound that MPEG-TS holds is copied"
"$tool" video all.mkv out.gif 2>err.txt || fail "to GIF"
lost out.gif 'sound (track 2' 'sound (track 3' 'subtitles (' 'attachment (' 'cover picture (' 'chapters have'
"$tool" video all.mkv out.flv 2>err.txt || fail "to FLV"
same "$(grep -c 'sound (track 3, fra, aac) has no place' err.txt)" 1 "FLV holds one track of sound"

# A part has its part of chapters and titles; a title that began before the part moves nothing.
expect 0 '' "$tool" video all.mkv part.mkv --frames 10-34
# Encoded sound begins before the pictures, so these begin a little late.
border=$(awk "BEGIN { printf \"%.6f\", 0.4 - $(of v:0 stream=start_time all.mkv) }")
same "$(chapters part.mkv)" "0.000000,$border,First $border,1.000000,Second" "chapters of a part"
ffmpeg -v error -i part.mkv -map 0:s part.srt
same "$(grep -c -- '-->' part.srt)" 2 "titles of a part"
same "$(of s packet=duration_time part.mkv)" '0.500000 0.200000' "titles are cut"
awk "BEGIN { exit !($(of v:0 packet=pts_time part.mkv | cut -d' ' -f1) < 0.03) }" || fail "a title moves the pictures"

# Timecodes count on; what has none of its own kind says so.
make -i all.mkv -map 0:v:0 -c copy -timecode 01:00:00:00 timed.mov
expect 0 '' "$tool" video timed.mov coded.mp4 --frames 30-40
same "$(of v:0 stream_tags=timecode coded.mp4)" 01:00:01:05 "timecode of a part"
expect 0 'the timecode has no place' "$tool" video timed.mov coded.webm
make -i all.mkv -f data -i font.ttf -map 0:v:0 -map 1 -c copy data.ts
expect 0 'data (track 2' "$tool" video data.ts data.mkv
make -i all.mkv -i all.mkv -map 0:v:0 -map 1:v:0 -c copy twice.mkv
expect 0 'pictures (track 2, h264) are left out' "$tool" video twice.mkv once.mkv

# Subtitles as pictures, whose end some files do not tell.
cat >draw.py <<'END'
import struct, sys
def segment(time, kind, body):
    return b'PG' + struct.pack('>IIBH', int(time * 90000), 0, kind, len(body)) + body
row = bytes([0, 0x90, 1, 0, 0])
drawing = struct.pack('>HBB', 0, 0, 0xc0) + (len(row) * 8 + 4).to_bytes(3, 'big') + struct.pack('>HH', 16, 8) + row * 8
for number, time in enumerate((0.2, 1.2)):
    place = struct.pack('>HHBHBBBBHBBHH', 96, 64, 16, number, 0x80, 0, 0, 1, 0, 0, 0, 10, 10)
    window = struct.pack('>BBHHHH', 1, 0, 10, 10, 16, 8)
    colours = bytes([0, 0, 0, 16, 128, 128, 0, 1, 235, 128, 128, 255])
    for kind, body in (0x16, place), (0x17, window), (0x14, colours), (0x15, drawing), (0x80, b''):
        sys.stdout.buffer.write(segment(time, kind, body))
END
/usr/bin/python3 draw.py >drawn.sup
make -i drawn.sup -i all.mkv -map 1:v:0 -map 0:s -c:v copy -c:s dvdsub drawn.mkv
expect 0 '' "$tool" video drawn.mkv drawn.mp4
same "$(of s:0 stream=codec_name drawn.mp4)" dvd_subtitle "subtitles of DVDs in MP4"
make -i drawn.sup -i all.mkv -map 1:v:0 -map 0:s -c copy blu-ray.mkv
expect 0 '' "$tool" video blu-ray.mkv blu-ray-out.mkv
same "$(of s:0 stream=codec_name blu-ray-out.mkv)" hdmv_pgs_subtitle "subtitles of Blu-ray discs in Matroska"
expect 0 'subtitles (track 2, hdmv_pgs_subtitle) have no place' "$tool" video blu-ray.mkv out.webm

# A camera's own notes, the light that a clip was graded for, and pictures that go all around.
make -i all.mkv -map 0:v:0 -c copy -movflags use_metadata_tags -metadata com.maker.model=K1 -metadata creation_time=2020-01-02T03:04:05Z camera.mov
expect 0 '' "$tool" video camera.mov camera.mp4
same "$(note com.maker.model camera.mp4) $(note creation_time camera.mp4)" 'K1 2020-01-02T03:04:05Z' "a camera's notes"
make -i all.mkv -map 0:v:0 -frames:v 3 -vf format=yuv420p10le -c:v libx265 -color_primaries bt2020 -color_trc smpte2084 -colorspace bt2020nc \
    -x265-params 'log-level=none:max-cll=900,300:master-display=G(13250,34500)B(7500,3000)R(34000,16000)WP(15635,16450)L(10000000,50)' light.mkv
expect 0 'kept as it is coded' "$tool" video light.mkv light.mp4
same "$(ffprobe -v error -show_streams light.mp4 | grep -E '^max_(content|luminance)=' | paste -sd' ')" \
    'max_luminance=10000000/10000 max_content=900' "the light of a mastering display"

[ "$failures" -eq 0 ] && echo "everything goes along"
exit "$((failures > 0))"
