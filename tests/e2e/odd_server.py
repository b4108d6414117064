"""A server that serves one content in a way that a storage should not."""

import hashlib
import http.server
import itertools
import threading


class OddServer:
    """Answers every GET with `content`; `ways` says how, one request after the other, the last for the rest.

    A way is a function that gets the request's handler and the content. `ranges` are the Range headers
    that came, None for none.
    """

    def __init__(self, content, *ways):
        self.ranges = []
        self._lock = threading.Lock()
        self._ways = itertools.chain(ways, itertools.repeat(ways[-1]))
        odd = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def do_GET(self):
                odd._next_way(self.headers.get("Range"))(self, content)
                self.close_connection = True

            def log_message(self, *_):
                pass

        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self._thread = threading.Thread(target=self._server.serve_forever)
        self._thread.start()

    @property
    def url(self):
        return f"http://127.0.0.1:{self._server.server_port}/file"

    def _next_way(self, asked):
        with self._lock:
            self.ranges.append(asked)
            return next(self._ways)

    def stop(self):
        self._server.shutdown()
        self._server.server_close()
        self._thread.join()


def whole(etag='"one"', cut_after=None):
    """Sends the whole content, whatever was asked for; `cut_after` bytes the connection ends."""
    def answer(handler, content):
        handler.send_response(200)
        handler.send_header("Content-Length", str(len(content)))
        if etag:
            handler.send_header("ETag", etag)
        handler.end_headers()
        handler.wfile.write(content[:cut_after])
    return answer


def with_changing_etag(cut_after=None):
    """Sends the whole content under an ETag that no other answer has."""
    numbers = itertools.count()

    def answer(handler, content):
        etag = hashlib.md5(str(next(numbers)).encode()).hexdigest()
        whole(f'"{etag}"', cut_after)(handler, content)
    return answer
