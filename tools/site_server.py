"""A web server for the site and for test pages, on a free port of this machine alone.

It can be told to fail, puts scripts into the pages that it hands out, and keeps what these send
back: so any browser can be watched without a driver for it.
"""

import http.server
import mimetypes
import pathlib
import queue
import threading
import urllib.parse


class SiteServer(http.server.ThreadingHTTPServer):
    """Hands out folders, the first laid over the next, until the `with` block ends."""

    daemon_threads = True

    def __init__(self, *folders):
        super().__init__(("127.0.0.1", 0), _Handler)
        self.folders = [pathlib.Path(folder) for folder in folders]
        self.address = f"http://127.0.0.1:{self.server_address[1]}/"
        self.requests = []  # the paths that were asked for
        self.posted = queue.Queue()  # (path, bytes) of what pages have sent
        self.headers = {}  # sent with every answer
        self.scripts = []  # files that every page runs before its own
        # For a path: None, or how to fail: a status, "half" of the file as if it were the whole, or
        # "broken", a connection that ends in the middle of it.
        self.fault = lambda path: None

    def __enter__(self):
        threading.Thread(target=self.serve_forever, args=(0.05,), daemon=True).start()
        return self

    def __exit__(self, *_):
        self.shutdown()
        self.server_close()

    def find(self, path):
        """The file at a path of the address, or None."""
        parts = [part for part in path.split("/") if part not in ("", ".", "..")]
        if path.endswith("/"):
            parts.append("index.html")
        if parts[:1] == ["scripts"] and (script := self.script(parts[-1])):
            return script
        files = (folder.joinpath(*parts) for folder in self.folders)
        return next((file for file in files if file.is_file()), None)

    def script(self, name):
        """The file of this name among those that every page runs, or None."""
        return next((file for file in map(pathlib.Path, self.scripts) if file.name == name), None)

    def handle_error(self, request, client_address):
        """A browser that goes away is none."""


class _Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_GET(self):
        path = urllib.parse.unquote(urllib.parse.urlsplit(self.path).path)
        self.server.requests.append(path)
        file = self.server.find(path)
        fault = self.server.fault(path)
        if isinstance(fault, int) or file is None:
            self.answer(fault or 404, b"", "text/plain")
            return
        kind = mimetypes.guess_type(file.name)[0] or "application/octet-stream"
        content = file.read_bytes()
        if kind == "text/html" and self.server.scripts:
            tags = "".join(f'<script src="/scripts/{pathlib.Path(script).name}"></script>'
                           for script in self.server.scripts)
            content = content.replace(b"<head>", b"<head>" + tags.encode(), 1)
        half = content[:len(content) // 2]
        if fault == "broken":
            self.answer(200, half, kind, len(content))
            self.close_connection = True
        else:
            self.answer(200, half if fault == "half" else content, kind)

    def do_POST(self):
        content = self.rfile.read(int(self.headers["Content-Length"]))
        self.server.posted.put((urllib.parse.unquote(self.path), content))
        self.answer(204, b"", "text/plain")

    def answer(self, status, content, kind, length=None):
        self.send_response(status)
        for name, value in self.server.headers.items():
            self.send_header(name, value)
        if status != 204:
            self.send_header("Content-Type", kind)
            self.send_header("Content-Length", str(len(content) if length is None else length))
        self.end_headers()
        self.wfile.write(content)

    def log_message(self, *_):
        """Nothing: a test says what went wrong."""
