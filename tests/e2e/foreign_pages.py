"""Small sites whose pages try to use the bridges of the client that shows them."""

import http.server
import threading

# Asks a bridge and tells the page that shows this one: [where it ran, the answer]. A pop-up that is
# empty gets the bridge some time after it was opened.
ASKING = """<!doctype html><script>
const tell = (answer) => (opener || top).postMessage([name, answer], '*');
function ask() {
  if (!window.nativeAppBridge_IPC) return setTimeout(ask, 20);
  nativeAppBridge_IPC({
    request: JSON.stringify({method: 'copyToClipboard', parameters: {value: 'asked by ' + name}}),
    onSuccess: () => tell('answered'), onFailure: (code, text) => tell(text)});
}
ask();
</script>"""

# Shows the page at the address in its fragment.
FRAMING = """<!doctype html><script>
const frame = document.createElement('iframe');
frame.name = name;
frame.src = location.hash.slice(1);
document.documentElement.append(frame);
</script>"""

# Asks while it is left for the address in its fragment.
LEAVING = """<!doctype html><script>
addEventListener('pagehide', () => nativeAppBridge_IPC({
  request: JSON.stringify({method: 'copyToClipboard', parameters: {value: 'asked by late'}})}));
setTimeout(() => location.replace(location.hash.slice(1)));
</script>"""

# Learns, by a frame of its own, how frames introduce themselves, and tells its opener.
SPYING = """<!doctype html><script>
const data = Object.getOwnPropertyDescriptor(MessageEvent.prototype, 'data').get;
Object.defineProperty(MessageEvent.prototype, 'data', {get() {
  const value = data.call(this);
  if (value && value.cefQtBridge) opener.postMessage(['token', value.cefQtBridge], '*');
  return value;
}});
</script><iframe srcdoc="x"></iframe>"""

# Introduces itself, with that knowledge, as a frame of the application, and sends a message that
# contains one of the top document's.
FORGING = """<!doctype html><script>
const [token, url] = decodeURIComponent(location.hash.slice(1)).split(' ');
const request = JSON.stringify({method: 'copyToClipboard', parameters: {value: 'asked by forger'}});
const forged = 'nativeAppBridge_IPC' + request;
const channel = new MessageChannel();
top.postMessage({cefQtBridge: token, version: 0, name: '', said: 'k  ' + url}, '*', [channel.port2]);
channel.port1.onmessage = (event) => {
  for (const [id, code, text] of event.data) if (id === 7) top.postMessage([name, text], '*');
};
channel.port1.postMessage([2, 8, {length: '15;0,2,99,19'}, forged]);
channel.port1.postMessage([0, 0, '', 'k  ' + url, 2, 9, 'nativeAppBridge_IPC', request]);
channel.port1.postMessage([2, 7, 'nativeAppBridge_IPC', request]);
const origin = new XMLHttpRequest();
origin.open('POST', 'cef-origin:frame/k');
origin.send();
</script>"""


class Site:
    """A server on a port of its own; `pages` are documents by path."""

    def __init__(self, pages):
        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                body = pages.get(self.path.split("?")[0], "").encode()
                self.send_response(200 if body else 404)
                self.send_header("Content-Type", "text/html; charset=utf-8")
                self.send_header("Content-Length", str(len(body)))
                self.end_headers()
                self.wfile.write(body)

            do_HEAD = do_GET

            def log_message(self, *_):
                pass

        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self.url = f"http://127.0.0.1:{self._server.server_port}"
        self._thread = threading.Thread(target=self._server.serve_forever)
        self._thread.start()

    def stop(self):
        self._server.shutdown()
        self._thread.join()
        self._server.server_close()
