"""A browser driven over the WebDriver protocol by a chromedriver of its own."""

import atexit
import base64
import http.client
import json
import pathlib
import shutil
import subprocess
import tempfile
import time

ELEMENT = "element-6066-11e4-a52e-4f735466cecf"
PATIENCE = 10


class Failed(Exception):
    """What the driver answered instead of a value."""


class Browser:
    """A headless Chromium with an empty profile; use as a context manager."""

    def __init__(self):
        self._connection = http.client.HTTPConnection("127.0.0.1")
        self._profile = tempfile.mkdtemp(prefix="console-browser-")
        self._driver = subprocess.Popen(
            ["chromedriver", "--port=0"], stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
            text=True)
        try:
            port = self._port()
            self._connection = http.client.HTTPConnection("127.0.0.1", port, timeout=30)
            options = {
                "args": ["--headless=new", "--no-sandbox", "--disable-gpu", "--no-proxy-server",
                         "--disable-dev-shm-usage", "--disable-background-networking",
                         "--hide-scrollbars", "--autoplay-policy=no-user-gesture-required",
                         f"--user-data-dir={self._profile}", "--window-size=1280,900"],
            }
            self._session = ""
            answer = self._call("POST", "/session", {"capabilities": {"alwaysMatch": {
                "goog:chromeOptions": options, "goog:loggingPrefs": {"browser": "ALL"}}}})
            self._session = "/session/" + answer["sessionId"]
            atexit.register(self.close)
        except BaseException:
            self._end()
            raise

    def _port(self):
        deadline = time.monotonic() + 20
        while time.monotonic() < deadline:
            line = self._driver.stdout.readline()
            if not line:
                break
            if "successfully on port " in line:
                return int(line.rsplit("on port ", 1)[1].split(".")[0])
        raise Failed("chromedriver did not start")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        atexit.unregister(self.close)
        # An answer may still be on its way to an interrupted command.
        self._connection.close()
        try:
            self._call("DELETE", self._session)
        except (OSError, http.client.HTTPException):  # the driver was ended before us
            pass
        finally:
            self._end()

    def _end(self):
        self._connection.close()
        self._driver.terminate()
        try:
            self._driver.wait(5)
        except subprocess.TimeoutExpired:
            self._driver.kill()
            self._driver.wait()
        self._driver.stdout.close()
        shutil.rmtree(self._profile, ignore_errors=True)

    def _call(self, method, path, body=None):
        text = None if body is None else json.dumps(body)
        self._connection.request(method, path, text, {"Content-Type": "application/json"})
        answer = self._connection.getresponse()
        value = json.loads(answer.read())["value"]
        if answer.status != 200:
            raise Failed(f"{value['error']}: {value['message'].splitlines()[0]}")
        return value

    def _do(self, method, path, body=None):
        return self._call(method, self._session + path, body)

    def open(self, url):
        self._do("POST", "/url", {"url": url})

    def reload(self):
        self._do("POST", "/refresh", {})

    def url(self):
        return self._do("GET", "/url")

    def title(self):
        return self._do("GET", "/title")

    def run(self, script, *arguments):
        """The value that the script returns; a promise is awaited."""
        return self._do("POST", "/execute/sync", {"script": script, "args": list(arguments)})

    def find(self, css):
        return self._do("POST", "/element", {"using": "css selector", "value": css})[ELEMENT]

    def count(self, css):
        return self.run("return document.querySelectorAll(arguments[0]).length", css)

    def text(self, css):
        return self.run("return document.querySelector(arguments[0])?.innerText ?? null", css)

    def click(self, css):
        self._do("POST", f"/element/{self.find(css)}/click", {})

    def type(self, css, text):
        element = self.find(css)
        self._do("POST", f"/element/{element}/clear", {})
        self._do("POST", f"/element/{element}/value", {"text": text})

    def press(self, *keys):
        """Presses keys, wherever the focus is."""
        actions = [step for key in keys
                   for step in ({"type": "keyDown", "value": key}, {"type": "keyUp", "value": key})]
        self._do("POST", "/actions", {"actions": [{"type": "key", "id": "keys",
                                                   "actions": actions}]})

    def wait(self, script, *arguments, patience=PATIENCE):
        """What the script returns once it is true."""
        deadline = time.monotonic() + patience
        while True:
            value = self.run(script, *arguments)
            if value:
                return value
            if time.monotonic() > deadline:
                raise Failed("never true: " + script)
            time.sleep(0.02)

    def devtools(self, command, **parameters):
        return self._do("POST", "/goog/cdp/execute", {"cmd": command, "params": parameters})

    def resize(self, width, height, dark=False):
        self.devtools("Emulation.setDeviceMetricsOverride", width=width, height=height,
                      deviceScaleFactor=1, mobile=False)
        self.devtools("Emulation.setEmulatedMedia", features=[
            {"name": "prefers-color-scheme", "value": "dark" if dark else "light"},
            {"name": "prefers-reduced-motion", "value": "reduce"}])

    def complaints(self):
        """What the pages complained about since the last call: errors and refused content."""
        return [entry["message"] for entry in self._do("POST", "/se/log", {"type": "browser"})
                if entry["level"] in ("SEVERE", "WARNING")]

    def picture(self, path):
        """The whole page as a PNG."""
        data = self.devtools("Page.captureScreenshot", captureBeyondViewport=True)["data"]
        pathlib.Path(path).write_bytes(base64.b64decode(data))
