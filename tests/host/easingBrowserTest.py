#!/usr/bin/env python3
"""Curves and eases of keyframes against the timing functions of CSS in Chromium: easingBrowserTest.py EASING_VALUES"""
import itertools
import pathlib
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from browser import Browser, installed_browser

ALLOWED = 1e-6
# Chromium finds the x of a curve to 1e-7: where curves are steeper than this, that alone exceeds what is allowed.
STEEPEST = 8
NAMES = ["linear", "ease", "ease-in", "ease-out", "ease-in-out"]
CURVES = [",".join(map(str, points)) for points in itertools.product(
    [0, 0.1, 0.35, 0.5, 0.8, 1], [-1.2, 0, 0.3, 1], [0, 0.2, 0.5, 0.65, 0.9, 1], [-0.4, 0, 0.7, 1, 1.9])]
STEPS = 40
DURATION = 1e6  # milliseconds; the browser keeps times to the microsecond

PROGRESS = """
    const [easings, steps, duration] = arguments;
    const element = document.body.appendChild(document.createElement("div"));
    return easings.map(easing => {
        const animation = element.animate([{opacity: 0}, {opacity: 1}], {duration, easing, fill: "both"});
        animation.pause();
        const values = [];
        for (let i = 0; i <= steps; ++i) {
            animation.currentTime = duration * i / steps;
            values.push(animation.effect.getComputedTiming().progress);
        }
        animation.cancel();
        return values;
    });"""


def main():
    programs = installed_browser()
    if not programs:
        return 1
    curves = NAMES + CURVES
    with tempfile.TemporaryDirectory() as profile:
        browser = Browser(*programs, profile)
        try:
            browser.open("data:text/html,<body></body>")
            css = [curve if curve in NAMES else f"cubic-bezier({curve})" for curve in curves]
            theirs = browser.run(PROGRESS, css, STEPS, DURATION)
        finally:
            browser.close()
    lines = "".join(f"{curve} {i / STEPS!r}\n" for curve in curves for i in range(STEPS + 1))
    ours = list(map(float, subprocess.run([sys.argv[1]], input=lines, text=True, stdout=subprocess.PIPE,
                                          check=True).stdout.split()))
    assert len(ours) == len(curves) * (STEPS + 1), len(ours)

    worst, compared, failures = 0, 0, 0
    for number, (curve, values) in enumerate(zip(curves, theirs)):
        own = ours[number * (STEPS + 1):][:STEPS + 1]
        for i, (mine, other) in enumerate(zip(own, values)):
            near = own[max(i - 1, 0):i + 2]
            if (max(near) - min(near)) * STEPS / (len(near) - 1) > STEEPEST:
                continue
            compared += 1
            worst = max(worst, abs(mine - other))
            if not abs(mine - other) < ALLOWED:
                failures += 1
                print(f"{curve} at {i / STEPS}: {mine} here, {other} in Chromium", file=sys.stderr)
    print(f"{len(curves)} curves, {compared} values compared; the largest difference is {worst:.2e}")
    assert compared > 0.9 * len(ours), "nearly everything is too steep"
    return failures > 0


if __name__ == "__main__":
    sys.exit(main())
