"""Headless Chromium for tests, driven by the WebDriver protocol."""
import base64
import json
import shutil
import subprocess
import sys
import urllib.error
import urllib.request

# As root, in a container, without a network: the page is all there is to load.
QUIET = ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run", "--disable-sync",
    "--disable-background-networking", "--disable-component-update", "--hide-scrollbars", "--window-size=1280,1000"]
KEYS = {"Escape": "\ue00c", "Right": "\ue014", "Enter": "\ue007"}
ELEMENT = "element-6066-11e4-a52e-4f735466cecf"


class Browser:
    """As much of the WebDriver protocol as is needed here."""

    def __init__(self, chromium, driver, profile, dark=False):
        self.driver = subprocess.Popen([driver, "--port=0"], stdout=subprocess.PIPE, text=True)
        for line in self.driver.stdout:
            if "successfully on port " in line:
                port = line.rsplit("on port ", 1)[1].strip(" .\n")
                break
        self.base = f"http://127.0.0.1:{port}"
        arguments = [*QUIET, f"--user-data-dir={profile}"]
        if dark:
            arguments.append("--blink-settings=preferredColorScheme=0")
        options = {"binary": chromium, "args": arguments}
        answer = self.ask("POST", "/session", {"capabilities": {"alwaysMatch": {
            "browserName": "chrome", "goog:chromeOptions": options, "goog:loggingPrefs": {"browser": "ALL"}}}})
        self.base += "/session/" + answer["sessionId"]

    def ask(self, method, path, body=None):
        request = urllib.request.Request(self.base + path, method=method,
            data=None if body is None else json.dumps(body).encode(), headers={"Content-Type": "application/json"})
        try:
            with urllib.request.urlopen(request, timeout=120) as answer:
                return json.load(answer)["value"]
        except urllib.error.HTTPError as error:
            raise RuntimeError(error.read().decode()) from None

    def open(self, address):
        self.ask("POST", "/url", {"url": address})

    def run(self, script, *arguments):
        return self.ask("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def element(self, selector):
        return self.ask("POST", "/element", {"using": "css selector", "value": selector})[ELEMENT]

    def click(self, selector):
        self.ask("POST", f"/element/{self.element(selector)}/click", {})

    def type(self, selector, text):
        self.ask("POST", f"/element/{self.element(selector)}/value", {"text": text})

    def press(self, key):
        keys = [{"type": kind, "value": KEYS.get(key, key)} for kind in ("keyDown", "keyUp")]
        self.ask("POST", "/actions", {"actions": [{"type": "key", "id": "keys", "actions": keys}]})

    def screenshot(self, file):
        file.write_bytes(base64.b64decode(self.ask("GET", "/screenshot")))

    def complaints(self):
        return [entry["message"] for entry in self.ask("POST", "/se/log", {"type": "browser"})]

    def close(self):
        try:
            self.ask("DELETE", "")
        finally:
            self.driver.terminate()
            self.driver.wait()


def installed_browser():
    """Paths of Chromium and its driver; None, and a line on stderr, where they are missing."""
    programs = shutil.which("chromium"), shutil.which("chromedriver")
    if all(programs):
        return programs
    print("chromium and chromedriver are not installed; scripts/setup does that", file=sys.stderr)
    return None
