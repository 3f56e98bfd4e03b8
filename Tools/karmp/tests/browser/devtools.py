"""Opens pages in headless Chromium and drives them by its DevTools protocol."""

import base64
import json
import os
import re
import shutil
import socket
import struct
import subprocess
import tempfile
import time
import urllib.request
import zlib

TIMEOUT = 120  # seconds, for any answer of the browser


class WebSocket:
    """A client of a WebSocket, as far as the protocol needs it: text, one message at a time."""

    def __init__(self, url):
        host, port, path = re.fullmatch(r"ws://([^:/]+):(\d+)(/.*)", url).groups()
        self.socket = socket.create_connection((host, int(port)), timeout=TIMEOUT)
        key = base64.b64encode(os.urandom(16)).decode()
        self.socket.sendall((
            f"GET {path} HTTP/1.1\r\nHost: {host}:{port}\r\nUpgrade: websocket\r\n"
            f"Connection: Upgrade\r\nSec-WebSocket-Key: {key}\r\nSec-WebSocket-Version: 13\r\n\r\n"
        ).encode())
        self.stream = self.socket.makefile("rb")
        status = self.stream.readline()
        if b" 101 " not in status:
            raise ConnectionError(f"no WebSocket: {status!r}")
        while self.stream.readline().strip():
            pass

    def send(self, text):
        data = text.encode()
        mask = os.urandom(4)
        if len(data) < 126:
            head = struct.pack("!BB", 0x81, 0x80 | len(data))
        elif len(data) < 1 << 16:
            head = struct.pack("!BBH", 0x81, 0x80 | 126, len(data))
        else:
            head = struct.pack("!BBQ", 0x81, 0x80 | 127, len(data))
        masked = bytes(byte ^ mask[i % 4] for i, byte in enumerate(data))
        self.socket.sendall(head + mask + masked)

    def receive(self):
        message = b""
        while True:
            first, second = self._read(2)
            length = second & 127
            if length == 126:
                (length,) = struct.unpack("!H", self._read(2))
            elif length == 127:
                (length,) = struct.unpack("!Q", self._read(8))
            data = self._read(length)
            if first & 15 == 8:
                raise ConnectionError("the browser closed the connection")
            if first & 15 < 3:
                message += data
                if first & 128:
                    return message.decode()

    def _read(self, count):
        data = self.stream.read(count)
        if len(data) != count:
            raise ConnectionError("the browser ended the connection")
        return data

    def close(self):
        self.stream.close()
        self.socket.close()


class Browser:
    """A headless Chromium that draws WebGL in software, as a context manager."""

    def __init__(self, width=1280, height=800):
        program = shutil.which("chromium") or shutil.which("chromium-browser")
        if program is None:
            raise FileNotFoundError("chromium is missing; scripts/setup --ci installs it")
        self.folder = tempfile.mkdtemp(prefix="karmp-browser-")
        self.log = open(os.path.join(self.folder, "log"), "w+b")
        self.process = subprocess.Popen(
            [program, "--headless=new", "--no-sandbox", "--disable-dev-shm-usage",
             "--use-gl=angle", "--use-angle=swiftshader", "--enable-unsafe-swiftshader",
             "--hide-scrollbars", "--no-first-run", "--disable-extensions",
             "--disable-background-networking", "--disable-component-update",
             "--remote-debugging-port=0", f"--user-data-dir={self.folder}/profile",
             f"--window-size={width},{height}", "about:blank"],
            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=self.log)
        try:
            self.port = self._wait_for_port()
        except BaseException:
            self.close()
            raise

    def _wait_for_port(self):
        end = time.monotonic() + TIMEOUT
        while time.monotonic() < end and self.process.poll() is None:
            with open(self.log.name, errors="replace") as log:
                found = re.search(r"DevTools listening on ws://[^:]+:(\d+)/", log.read())
            if found:
                return int(found.group(1))
            time.sleep(0.1)
        with open(self.log.name, errors="replace") as log:
            raise RuntimeError("chromium did not start:\n" + log.read()[-2000:])

    def open(self, path, **options):
        """Opens a file in a new tab."""
        request = urllib.request.Request(
            f"http://127.0.0.1:{self.port}/json/new?about:blank", method="PUT")
        with urllib.request.urlopen(request, timeout=TIMEOUT) as answer:
            tab = json.load(answer)
        return Page(WebSocket(tab["webSocketDebuggerUrl"]), path, **options)

    def close(self):
        self.process.terminate()
        try:
            self.process.wait(20)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        self.log.close()
        shutil.rmtree(self.folder, ignore_errors=True)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()


class Page:
    """A page in a tab. `problems` are what its console and the browser complained of, `requests`
    the addresses that it loaded."""

    def __init__(self, web_socket, path, dark=False, width=1280, height=800):
        self.web_socket = web_socket
        self.count = 0
        self.problems = []
        self.requests = []
        self.is_loaded = False
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(f"{domain}.enable")
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height,
                  deviceScaleFactor=1, mobile=False)
        self.call("Emulation.setEmulatedMedia",
                  features=[{"name": "prefers-color-scheme", "value": "dark" if dark else "light"}])
        self.call("Page.navigate", url="file://" + os.path.abspath(path))
        while not self.is_loaded:
            self._take(json.loads(self.web_socket.receive()))
        self.settle()

    def call(self, method, **parameters):
        self.count += 1
        number = self.count
        self.web_socket.send(json.dumps({"id": number, "method": method, "params": parameters}))
        while True:
            message = json.loads(self.web_socket.receive())
            if message.get("id") == number:
                if "error" in message:
                    raise RuntimeError(f"{method}: {message['error']}")
                return message["result"]
            self._take(message)

    def _take(self, event):
        method, values = event.get("method"), event.get("params", {})
        if method == "Page.loadEventFired":
            self.is_loaded = True
        elif method == "Runtime.exceptionThrown":
            self.problems.append(str(values["exceptionDetails"]))
        elif method == "Runtime.consoleAPICalled" and values["type"] in ("error", "warning"):
            self.problems.append(str(values["args"]))
        elif method == "Log.entryAdded" and values["entry"]["level"] in ("error", "warning"):
            # The software's own note on reading pixels back tells nothing of the page.
            if "GPU stall due to ReadPixels" not in values["entry"]["text"]:
                self.problems.append(values["entry"]["text"])
        elif method == "Network.requestWillBeSent":
            self.requests.append(values["request"]["url"])

    def run(self, expression):
        """The value of an expression in the page."""
        result = self.call("Runtime.evaluate", expression=expression, returnByValue=True,
                           awaitPromise=True)
        if "exceptionDetails" in result:
            raise RuntimeError(str(result["exceptionDetails"]))
        return result["result"].get("value")

    def settle(self):
        """Waits until the page has drawn what it was told."""
        self.run("new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done)))")

    def mouse(self, kind, x, y, **options):
        self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, **options)

    def click(self, x, y, count=1):
        self.mouse("mouseMoved", x, y)
        for kind in ("mousePressed", "mouseReleased"):
            self.mouse(kind, x, y, button="left", clickCount=count)
        self.settle()

    def drag(self, start, end):
        self.mouse("mousePressed", *start, button="left", buttons=1, clickCount=1)
        for step in (0.5, 1.0):
            self.mouse("mouseMoved", start[0] + (end[0] - start[0]) * step,
                       start[1] + (end[1] - start[1]) * step, button="left", buttons=1)
        self.mouse("mouseReleased", *end, button="left", clickCount=1)
        self.settle()

    def press(self, key, text=None):
        self.call("Input.dispatchKeyEvent", type="keyDown", key=key,
                  **({"text": text} if text else {}))
        self.call("Input.dispatchKeyEvent", type="keyUp", key=key)
        self.settle()

    def type(self, text):
        self.call("Input.insertText", text=text)
        self.settle()

    def screenshot(self, path=None):
        data = base64.b64decode(self.call("Page.captureScreenshot", format="png")["data"])
        if path:
            with open(path, "wb") as file:
                file.write(data)
        return Picture(data)

    def close(self):
        self.call("Page.close")
        self.web_socket.close()


class Picture:
    """The pixels of a PNG of eight bits without interlacing, as red, green and blue."""

    def __init__(self, data):
        position, compressed = 8, b""
        while position < len(data):
            length, kind = struct.unpack("!I4s", data[position:position + 8])
            chunk = data[position + 8:position + 8 + length]
            if kind == b"IHDR":
                self.width, self.height, _, colour = struct.unpack("!IIBB", chunk[:10])
                self.depth = {2: 3, 6: 4}[colour]
            elif kind == b"IDAT":
                compressed += chunk
            position += 12 + length
        self.rows = self._unfiltered(zlib.decompress(compressed))

    def _unfiltered(self, data):
        stride, depth = self.width * self.depth, self.depth
        rows, above = [], bytearray(stride)
        for start in range(0, self.height * (stride + 1), stride + 1):
            kind, row = data[start], bytearray(data[start + 1:start + 1 + stride])
            for i in range(stride if kind else 0):
                left = row[i - depth] if i >= depth else 0
                corner = above[i - depth] if i >= depth else 0
                row[i] = (row[i] + self._predicted(kind, left, above[i], corner)) & 255
            rows.append(row)
            above = row
        return rows

    @staticmethod
    def _predicted(kind, left, above, corner):
        if kind == 4:
            estimate = left + above - corner
            return min((abs(estimate - value), order, value)
                       for order, value in enumerate((left, above, corner)))[2]
        return (0, left, above, (left + above) // 2)[kind]

    def at(self, x, y):
        start = int(x) * self.depth
        return tuple(self.rows[int(y)][start:start + 3])

    def around(self, x, y, reach):
        """The pixels of a square about a point."""
        return [self.at(column, row)
                for row in range(max(0, int(y) - reach), min(self.height, int(y) + reach + 1))
                for column in range(max(0, int(x) - reach), min(self.width, int(x) + reach + 1))]
