#!/usr/bin/env python3
"""A project of GStreamer Editing Services with a keyframed effect and a transition gives the tool's pictures, and keeps
its values: editingTest.py TOOL"""
import os
import pathlib
import subprocess
import sys
import tempfile

import gi

for name in ("Gst", "GES", "GstController"):
    gi.require_version(name, "1.0")
from gi.repository import GES, Gst, GstController  # noqa: E402

LOOK = """{"effectengine": 1, "nodes": [
    {"id": "light", "effect": "light-room", "parameters": {"exposure": {"keyframes": [
        {"time": 0, "value": -25}, {"time": 1, "value": 24.3}]}}},
    {"id": "change", "effect": "push", "inputs": ["light", "source-2"], "start": 0, "duration": 1}]}"""


def raw(arguments):
    command = ["ffmpeg", "-loglevel", "error", *arguments, "-f", "rawvideo", "-pix_fmt", "rgb24", "-"]
    return subprocess.run(command, check=True, capture_output=True).stdout


def project(clip, other):
    timeline = GES.Timeline.new()
    track = GES.VideoTrack.new()
    timeline.add_track(track)
    track.props.restriction_caps = Gst.Caps.from_string("video/x-raw,width=160,height=120,framerate=20/1")
    asset = GES.UriClipAsset.request_sync(Gst.filename_to_uri(clip))
    placed = timeline.append_layer().add_asset(asset, 0, 0, asset.get_duration(), GES.TrackType.VIDEO)
    # Effects that are added first come last.
    assert placed.add(GES.Effect.new(
        "videoconvert ! ee-transition-push name=t duration=1000000000 "
        f"filesrc location={other} ! matroskademux ! avdec_ffv1 ! videoconvert ! t."))
    light = GES.Effect.new("ee-light-room")
    assert placed.add(light)
    curve = GstController.InterpolationControlSource()
    curve.props.mode = GstController.InterpolationMode.LINEAR
    assert light.set_control_source(curve, "exposure", "direct-absolute")
    curve.set(0, -25)
    curve.set(Gst.SECOND, 24.3)
    return timeline


def main(tool):
    Gst.init(None)
    GES.init()
    with tempfile.TemporaryDirectory() as directory:
        os.chdir(directory)
        for name, source in (("in.mkv", "testsrc2=size=160x120:rate=20"), ("other.mkv", "mandelbrot=size=160x120:rate=20")):
            subprocess.run(["ffmpeg", "-loglevel", "error", "-f", "lavfi", "-i", source, "-t", "1.4", "-c:v", "ffv1",
                            "-pix_fmt", "bgr0", name], check=True)
        here = pathlib.Path(directory)
        timeline = project(str(here / "in.mkv"), str(here / "other.mkv"))
        saved = Gst.filename_to_uri(str(here / "project.xges"))
        assert timeline.save_to_uri(saved, None, True)
        text = (here / "project.xges").read_text()
        assert "property='exposure'" in text and "0:-25" in text and "1000000000:24.3" in text, text

        # Opened again and saved, it says the same of the effects.
        again = GES.Timeline.new_from_uri(saved)
        loop_until_loaded(again)
        assert again.save_to_uri(Gst.filename_to_uri(str(here / "again.xges")), None, True)
        assert effects_of(text) == effects_of((here / "again.xges").read_text())

        subprocess.run(["ges-launch-1.0", "--load", "project.xges", "-o", Gst.filename_to_uri(str(here / "out.mkv")),
                        "-f", "video/x-matroska:video/x-ffv"], check=True, capture_output=True, timeout=120)
        (here / "look.json").write_text(LOOK)
        (here / "tool").mkdir()
        subprocess.run([tool, "video", "in.mkv", "tool/%03d.png", "--graph", "look.json", "--with", "other.mkv"], check=True)
        expected = raw(["-i", "tool/%03d.png"])
        got = raw(["-i", "out.mkv"])
        size = 160 * 120 * 3
        assert len(got) == len(expected) == 28 * size, (len(got), len(expected))
        # The two compute values between keyframes in different ways, so the last bit of one may differ. And
        # ges-launch itself shows a frame twice now and then, without effects too.
        apart = [max(abs(a - b) for a, b in zip(got[i:i + size], expected[i:i + size]))
                 for i in range(0, len(got), size)]
        assert sum(difference <= 1 for difference in apart) >= len(apart) - 2, apart


def effects_of(text):
    return [line.strip() for line in text.splitlines() if "<binding" in line or "<effect" in line]


def loop_until_loaded(timeline):
    from gi.repository import GLib
    loop = GLib.MainLoop()
    timeline.get_asset().connect("loaded", lambda *_: loop.quit())
    GLib.timeout_add_seconds(30, loop.quit)
    loop.run()


main(os.path.abspath(sys.argv[1]))
