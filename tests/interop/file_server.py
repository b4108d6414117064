"""Serves files over HTTP with ranges and strong tags, and remembers what it was asked for."""

import hashlib
import http.server
import random
import re
import threading
import time


class _Server(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, request, client_address):
        pass  # the client has gone


class FileServer:
    def __init__(self, files, rate=None, address="127.0.0.1"):
        self.files = files  # content by name
        self.rate = rate  # bytes a second of one response; None: as fast as it goes
        self.sent = 0
        self.requests = []  # (name, first byte)
        self._server = _Server((address, 0), self._handler())
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    @property
    def url(self):
        host, port = self._server.server_address[:2]
        return f"http://{host}:{port}"

    def close(self):
        self._server.shutdown()
        self._server.server_close()

    def _handler(self):
        server = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def log_message(self, *_):
                pass

            def do_GET(self):
                server._answer(self)

        return Handler

    def _answer(self, request):
        name = request.path.rsplit("/", 1)[-1]
        content = self.files[name]
        asked = re.fullmatch(r"bytes=(\d+)-(\d*)", request.headers.get("Range", ""))
        begin, end = 0, len(content)
        if asked:
            begin = int(asked[1])
            end = min(end, int(asked[2]) + 1 if asked[2] else end)
        self.requests.append((name, begin))
        if begin >= len(content) and asked:
            request.send_response(416)
            request.send_header("Content-Range", f"bytes */{len(content)}")
            request.send_header("Content-Length", "0")
            request.end_headers()
            return
        request.send_response(206 if asked else 200)
        if asked:
            request.send_header("Content-Range", f"bytes {begin}-{end - 1}/{len(content)}")
        request.send_header("Accept-Ranges", "bytes")
        request.send_header("ETag", '"' + hashlib.md5(content).hexdigest() + '"')
        request.send_header("Content-Length", str(end - begin))
        request.end_headers()
        self._send(request, memoryview(content)[begin:end])

    def _send(self, request, body):
        step = 64 * 1024
        try:
            for at in range(0, len(body), step):
                piece = body[at : at + step]
                request.wfile.write(piece)
                self.sent += len(piece)
                if self.rate:
                    time.sleep(len(piece) / self.rate)
        except OSError:
            pass  # the client has gone


def made_files(count, size):
    return {str(number): random.Random(number).randbytes(size) for number in range(count)}
