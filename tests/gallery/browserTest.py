#!/usr/bin/env python3
"""The gallery in headless Chromium: search, families, one effect, its sweep, keys.

browserTest.py TOOL [PICTURE [SCREENSHOT_DIRECTORY]]"""
import pathlib
import subprocess
import sys
import tempfile
import time

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "support"))
from browser import Browser, installed_browser


def visible(browser):
    return browser.run("return [...document.querySelectorAll('#cards > li')].filter(item => !item.hidden)"
                       ".map(item => item.querySelector('a').hash.slice(1))")


def wait_for(browser, script, what):
    deadline = time.monotonic() + 60
    while not browser.run("return " + script):
        assert time.monotonic() < deadline, what
        time.sleep(0.05)


def check(browser, page, shots):
    began = time.monotonic()
    browser.open(page.as_uri())
    print(f"open after {time.monotonic() - began:.2f} s")
    everything = visible(browser)
    assert {"hue-shift", "push", "delay-grab"} <= set(everything), everything
    if shots:
        browser.screenshot(shots / "cards.png")

    # Search looks at names, titles, summaries, GUIDs and parameters, and wants every word.
    browser.type("#search", "HUE angle")
    assert visible(browser) == ["hue-shift"], visible(browser)
    assert browser.run("return document.getElementById('count').textContent") == "1 effect"
    browser.run("const s = document.getElementById('search'); s.value = 'Vibrance'; s.dispatchEvent(new Event('input'))")
    assert visible(browser) == ["light-room"], visible(browser)
    browser.run("const s = document.getElementById('search'); s.value = 'no such'; s.dispatchEvent(new Event('input'))")
    assert visible(browser) == []
    browser.run("const s = document.getElementById('search'); s.value = ''; s.dispatchEvent(new Event('input'))")
    assert visible(browser) == everything

    # A family, and back to all; the slash leads to the search.
    browser.click("#families button[data-family=transition]")
    assert "push" in visible(browser) and "hue-shift" not in visible(browser), visible(browser)
    browser.click("#families button[data-family='']")
    assert visible(browser) == everything
    browser.run("document.activeElement.blur()")
    browser.press("/")
    assert browser.run("return document.activeElement.id") == "search"

    # A loop plays under the focus and stops without it.
    browser.run("document.querySelector('a[href=\"#push\"]').focus({focusVisible: true})")
    playing = "!!document.querySelector('a[href=\"#push\"] .strip.playing')"
    wait_for(browser, playing, "the loop plays")
    browser.run("document.activeElement.blur()")
    wait_for(browser, "!" + playing, "the loop stops")

    # An effect opens with the keyboard; a step of its sweep shows in large and in the command line.
    browser.run("document.querySelector('a[href=\"#hue-shift\"]').focus()")
    browser.press("Enter")
    wait_for(browser, "document.getElementById('detail').open", "the effect opens")
    assert browser.run("return document.querySelectorAll('.steps button').length") == 7
    browser.click(".steps button:nth-child(3)")
    assert browser.run("return document.querySelector('#detail pre').textContent") \
        == "effectengine apply hue-shift -p Hue=33 in.jpg out.png"
    assert browser.run("return document.querySelector('.stage .strip').getAttribute('aria-label')") \
        == "Hue Shift, Hue 33"
    assert browser.run("return document.querySelectorAll('#detail [aria-pressed=true]').length") == 1
    if shots:
        browser.screenshot(shots / "sweep.png")
    browser.press("Right")
    following = everything[(everything.index("hue-shift") + 1) % len(everything)]
    assert browser.run("return location.hash") == "#" + following
    browser.press("Escape")
    wait_for(browser, "!document.getElementById('detail').open && location.hash === ''", "Escape closes")

    # A link leads to an effect.
    browser.open(page.as_uri() + "#push")
    wait_for(browser, "document.querySelector('.stage .strip.playing.there')", "a transition plays")
    if shots:
        browser.screenshot(shots / "transition.png")
    browser.press("Escape")

    # Every file is there and is a picture.
    broken = browser.ask("POST", "/execute/async", {"args": [], "script": """
        const done = arguments[0];
        const data = JSON.parse(document.getElementById("data").textContent);
        const files = data.effects.flatMap(effect => [effect.pictures.still, effect.pictures.small,
            effect.pictures.loop, ...effect.pictures.sweeps.map(sweep => sweep.file)]).filter(file => file);
        const broken = [];
        let waiting = files.length;
        for (const file of files) {
            const image = new Image();
            image.onerror = () => { broken.push(file); if (!--waiting) done(broken); };
            image.onload = () => { if (!--waiting) done(broken); };
            image.src = "pictures/" + file;
        }"""})
    assert broken == [], broken

    # Pictures and controls have names for screen readers.
    nameless = browser.run("""
        return [...document.querySelectorAll("a, button, input")].filter(element =>
            !(element.textContent.trim() || element.ariaLabel || element.labels?.[0]?.textContent.trim()))
            .map(element => element.outerHTML)""")
    assert nameless == [], nameless
    assert browser.complaints() == []


def main():
    tool = pathlib.Path(sys.argv[1]).resolve()
    programs = installed_browser()
    if not programs:
        return 1
    shots = pathlib.Path(sys.argv[3]) if len(sys.argv) > 3 else None
    with tempfile.TemporaryDirectory() as work:
        work = pathlib.Path(work)
        if len(sys.argv) > 2:
            subprocess.run([tool, "gallery", work / "gallery", sys.argv[2]], check=True)
        else:
            (work / "photo.ppm").write_bytes(b"P6 320 200 255\n" + bytes(
                value for y in range(200) for x in range(320) for value in (x * 255 // 320, y, (x ^ y) & 255)))
            choice = [word for name in ("hue-shift", "push", "delay-grab", "am-snow", "light-room")
                      for word in ("-e", name)]
            subprocess.run([tool, "gallery", work / "gallery", work / "photo.ppm", *choice], check=True)
        for dark in (False, True):
            folder = shots and shots / ("dark" if dark else "light")
            if folder:
                folder.mkdir(parents=True, exist_ok=True)
            browser = Browser(*programs, work / f"profile{dark:d}", dark)
            try:
                check(browser, work / "gallery" / "index.html", folder)
            finally:
                browser.close()
    print("the gallery works in Chromium")
    return 0


if __name__ == "__main__":
    sys.exit(main())
