"""Debian's Chromium without a window, driven over its debugging pipe."""

import base64
import json
import os
import subprocess
import tempfile


class Browser:
    """A page at a time. What goes wrong in it is in `messages`."""

    def __init__(self, program):
        self.messages, self.events, self.last = [], [], 0
        self.profile = tempfile.TemporaryDirectory(
            ignore_cleanup_errors=True)
        from_browser, browser_end = os.pipe()
        program_end, to_browser = os.pipe()

        def take_pipes():  # which have the numbers 3 and 4 in the browser
            ends = [os.dup(end) for end in (program_end, browser_end)]
            for number, end in enumerate(ends, 3):
                os.dup2(end, number)

        # Root may not have the sandbox, and drivers under test are not for it.
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("LD_LIBRARY_PATH", "LD_PRELOAD")}
        self.process = subprocess.Popen(
            [program, "--headless", "--no-sandbox", "--disable-gpu",
             "--disable-dev-shm-usage", "--remote-debugging-pipe",
             f"--user-data-dir={self.profile.name}"],
            preexec_fn=take_pipes, close_fds=False, env=environment,
            stderr=subprocess.DEVNULL)
        os.close(program_end)
        os.close(browser_end)
        self.writer = os.fdopen(to_browser, "wb")
        self.reader = os.fdopen(from_browser, "rb")
        self.received = b""
        target = self.call("Target.createTarget", url="about:blank")
        self.session = self.call("Target.attachToTarget", flatten=True,
                                 targetId=target["targetId"])["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(f"{domain}.enable")

    def __enter__(self):
        return self

    def __exit__(self, *error):
        # Closes itself when its pipes are, with all its processes.
        self.writer.close()
        self.reader.close()
        try:
            self.process.wait(timeout=20)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        self.profile.cleanup()

    def _receive(self):
        while b"\0" not in self.received:
            piece = os.read(self.reader.fileno(), 1 << 16)
            if not piece:
                raise RuntimeError("the browser has ended")
            self.received += piece
        text, _, self.received = self.received.partition(b"\0")
        return json.loads(text)

    def _note(self, event):
        name, params = event.get("method"), event.get("params")
        self.events.append(name)
        if name in ("Runtime.exceptionThrown", "Log.entryAdded",
                    "Runtime.consoleAPICalled", "Network.loadingFailed"):
            self.messages.append(json.dumps(params))

    def call(self, method, **params):
        self.last += 1
        request = {"id": self.last, "method": method, "params": params}
        if hasattr(self, "session"):
            request["sessionId"] = self.session
        self.writer.write(json.dumps(request).encode() + b"\0")
        self.writer.flush()
        while (reply := self._receive()).get("id") != self.last:
            self._note(reply)
        if "error" in reply:
            raise RuntimeError(f"{method}: {reply['error']}")
        return reply["result"]

    def open(self, path, width, height, dark=False):
        """Shows the file in a window of that size; returns once it is loaded."""
        self.call("Emulation.setDeviceMetricsOverride", width=width,
                  height=height, deviceScaleFactor=1, mobile=False)
        self.call("Emulation.setEmulatedMedia", features=[
            {"name": "prefers-color-scheme",
             "value": "dark" if dark else "light"}])
        self.events = []
        self.call("Page.navigate", url="file://" + path)
        while "Page.loadEventFired" not in self.events:
            self._note(self._receive())

    def run(self, script):
        """The value of an expression, or of what it promises."""
        reply = self.call("Runtime.evaluate", expression=script,
                          awaitPromise=True, returnByValue=True)
        if "exceptionDetails" in reply:
            raise RuntimeError(f"{script}: {reply['exceptionDetails']}")
        return reply["result"].get("value")

    def press(self, key, code):
        for kind in ("rawKeyDown", "keyUp"):
            self.call("Input.dispatchKeyEvent", type=kind, key=key, code=key,
                      windowsVirtualKeyCode=code)

    def screenshot(self, box=None):
        """PNG; of a part, given as x, y, width and height."""
        part = {"clip": dict(box, scale=1)} if box else {}
        shot = self.call("Page.captureScreenshot", **part)
        return base64.b64decode(shot["data"])
