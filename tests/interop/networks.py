"""Downloads over real networks that are slow and go away, through a proxy, and from a real web server."""

import shutil
import signal
import socket
import subprocess
import time

from client import Client, check_files, wait_for
from file_server import FileServer, made_files
from volumes import run

MIB = 1024 * 1024


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def _answers(port):
    with socket.socket() as probe:
        return probe.connect_ex(("127.0.0.1", port)) == 0


class _Line:
    """Two ends of a line: the client's in a network of its own, the server's here."""

    NAMESPACE = "zt-interop"
    SERVER, CLIENT = "10.231.77.1", "10.231.77.2"

    def __init__(self, rate):
        run("ip", "netns", "add", self.NAMESPACE)
        try:
            self._connect(rate)
        except RuntimeError:
            self.close()
            raise

    def _connect(self, rate):
        run("ip", "link", "add", "zt-here", "type", "veth", "peer", "name", "zt-there")
        run("ip", "link", "set", "zt-there", "netns", self.NAMESPACE)
        run("ip", "address", "add", f"{self.SERVER}/24", "dev", "zt-here")
        run("ip", "link", "set", "zt-here", "up")
        self.inside("ip", "address", "add", f"{self.CLIENT}/24", "dev", "zt-there")
        self.inside("ip", "link", "set", "zt-there", "up")
        quality = ("tbf", "rate", rate, "burst", "32kbit", "latency", "400ms")
        run("tc", "qdisc", "add", "dev", "zt-here", "root", *quality)
        self.inside("tc", "qdisc", "add", "dev", "zt-there", "root", *quality)

    @property
    def prefix(self):
        return ("ip", "netns", "exec", self.NAMESPACE)

    def inside(self, *command):
        run(*self.prefix, *command)

    def set_up(self, up):
        run("ip", "link", "set", "zt-here", "up" if up else "down")

    def close(self):
        run("ip", "netns", "delete", self.NAMESPACE)


def arrives_over_a_slow_line_that_goes_away(probe, folder):
    line = _Line("16mbit")
    server = FileServer(made_files(20, 100_000) | {"20": b"x" * 8 * MIB}, address=_Line.SERVER)
    (folder / "target").mkdir()
    client = Client(probe, folder, server, prefix=line.prefix)
    try:
        client.start()
        wait_for(lambda: server.sent > 1 * MIB, "some bytes")
        line.set_up(False)
        time.sleep(20)  # the outage itself
        line.set_up(True)
        client.finish()
        check_files(folder / "target", server)
    finally:
        server.close()
        line.close()


class _Service:
    def __init__(self, command, port):
        self.process = subprocess.Popen(
            command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL
        )
        wait_for(lambda: _answers(port), command[0], 20)

    def close(self):
        self.process.send_signal(signal.SIGTERM)
        self.process.wait(20)


def _proxy(folder, port):
    settings = folder / "tinyproxy.conf"
    settings.write_text(f"Port {port}\nListen 127.0.0.1\nTimeout 60\nMaxClients 50\n")
    return _Service(["tinyproxy", "-d", "-c", str(settings)], port)


def arrives_through_a_proxy_that_is_away_for_a_while(probe, folder):
    server = FileServer(made_files(30, 400_000), rate=200_000)
    (folder / "target").mkdir()
    port = free_port()
    proxy = _proxy(folder, port)
    client = Client(
        probe, folder, server, environment={"http_proxy": f"http://127.0.0.1:{port}", "no_proxy": ""}
    )
    try:
        client.start()
        wait_for(lambda: server.sent > 2 * MIB, "some bytes")
        proxy.close()
        time.sleep(40)  # the outage itself
        proxy = _proxy(folder, port)
        client.finish()
        check_files(folder / "target", server)
    finally:
        proxy.close()
        server.close()


NGINX = """
daemon off;
worker_processes 1;
pid {folder}/nginx.pid;
error_log /dev/null;
events {{ worker_connections 256; }}
http {{
  access_log off;
  client_body_temp_path {folder}/body; proxy_temp_path {folder}/proxy;
  fastcgi_temp_path {folder}/fastcgi; uwsgi_temp_path {folder}/uwsgi; scgi_temp_path {folder}/scgi;
  server {{ listen 127.0.0.1:{port}; location /down/ {{ alias {folder}/www/; }} }}
}}
"""


class _Files:
    """Has what a client needs to know of a server that is not ours."""

    def __init__(self, url, files):
        self.url, self.files = url, files


def goes_on_when_a_real_web_server_is_restarted(probe, folder):
    files = made_files(40, 2 * MIB)
    (folder / "www").mkdir()
    (folder / "target").mkdir()
    for name, content in files.items():
        (folder / "www" / name).write_bytes(content)
    port = free_port()
    settings = folder / "nginx.conf"
    settings.write_text(NGINX.format(folder=folder, port=port))
    folder.chmod(0o755)
    command = ["nginx", "-c", str(settings)]
    client = Client(probe, folder, _Files(f"http://127.0.0.1:{port}", files))
    client.start()
    time.sleep(8)  # refused: nobody listens yet
    nginx = _Service(command, port)
    try:
        wait_for(lambda: any((folder / "target").glob("file*")), "a first file")
        nginx.close()
        time.sleep(5)
        nginx = _Service(command, port)
        client.finish()
        check_files(folder / "target", _Files("", files))
    finally:
        nginx.close()


def needs():
    return [tool for tool in ("ip", "tc", "tinyproxy", "nginx") if shutil.which(tool) is None]


CASES = [
    arrives_over_a_slow_line_that_goes_away,
    arrives_through_a_proxy_that_is_away_for_a_while,
    goes_on_when_a_real_web_server_is_restarted,
]
