"""OpenStack Swift with its S3 interface, as a store below one folder."""

import os
import pathlib
import shutil
import signal
import subprocess
import urllib.error
import urllib.request

from client import wait_for
from signed_urls import Signer
from volumes import run

USER = "root"  # only root can mount
KINDS = ("account", "container", "object")

STORAGE = """
[DEFAULT]
swift_dir = {folder}/etc
devices = {folder}/srv
mount_check = false
bind_ip = 127.0.0.1
bind_port = {port}
workers = 0
user = {user}
[pipeline:main]
pipeline = {kind}-server
[app:{kind}-server]
use = egg:swift#{kind}
"""

PROXY = """
[DEFAULT]
swift_dir = {folder}/etc
bind_ip = 127.0.0.1
bind_port = {port}
workers = 0
user = {user}
[pipeline:main]
pipeline = catch_errors gatekeeper healthcheck cache listing_formats bulk s3api tempauth slo dlo proxy-server
[app:proxy-server]
use = egg:swift#proxy
account_autocreate = true
[filter:catch_errors]
use = egg:swift#catch_errors
[filter:gatekeeper]
use = egg:swift#gatekeeper
[filter:healthcheck]
use = egg:swift#healthcheck
[filter:listing_formats]
use = egg:swift#listing_formats
[filter:bulk]
use = egg:swift#bulk
[filter:slo]
use = egg:swift#slo
[filter:dlo]
use = egg:swift#dlo
[filter:s3api]
use = egg:swift#s3api
location = us-east-1
[filter:tempauth]
use = egg:swift#tempauth
user_test_tester = testing .admin
[filter:cache]
use = egg:swift#memcache
memcache_servers = 127.0.0.1:{memory_port}
"""

NAMES = """
[swift-hash]
swift_hash_path_suffix = interop
swift_hash_path_prefix = interop
[storage-policy:0]
name = Policy-0
default = yes
"""


class SwiftStore:
    """Runs until it is closed. `ports` are five free ones. Has the bucket "objects"."""

    BUCKET = "/objects"

    def __init__(self, folder, ports):
        self.folder = pathlib.Path(folder)
        self.ports = dict(zip((*KINDS, "memory", "proxy"), ports))
        self.address = f"http://127.0.0.1:{self.ports['proxy']}"
        self.signer = Signer("test:tester", "testing")
        self.processes = []
        for name in ("etc", "srv/d1", "log"):
            (self.folder / name).mkdir(parents=True)
        self._write_settings()
        self._make_rings()
        self.start()
        self.request("PUT", self.BUCKET)

    def start(self):
        self._run("memcached", "-u", USER, "-l", f"127.0.0.1:{self.ports['memory']}")
        for kind in (*KINDS, "proxy"):
            self._run(f"swift-{kind}-server", str(self.folder / "etc" / f"{kind}.conf"))
        wait_for(self._is_healthy, "the store", 60)

    def close(self):
        for process in self.processes:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait(20)
        self.processes = []

    def signed(self, method, name, **options):
        return self.signer.url(method, self.address, f"{self.BUCKET}/{name}", **options)

    def content(self, name):
        return self.request("GET", f"{self.BUCKET}/{name}")

    def request(self, method, path):
        asked = urllib.request.Request(self.signer.url(method, self.address, path), method=method)
        with urllib.request.urlopen(asked, timeout=60) as response:
            return response.read()

    def _write_settings(self):
        values = {"folder": self.folder, "user": USER, "memory_port": self.ports["memory"]}
        etc = self.folder / "etc"
        (etc / "swift.conf").write_text(NAMES)
        (etc / "proxy.conf").write_text(PROXY.format(port=self.ports["proxy"], **values))
        for kind in KINDS:
            text = STORAGE.format(kind=kind, port=self.ports[kind], **values)
            (etc / f"{kind}.conf").write_text(text)

    def _make_rings(self):
        for kind in KINDS:
            ring = str(self.folder / "etc" / f"{kind}.builder")
            run("swift-ring-builder", ring, "create", "8", "1", "1")
            run("swift-ring-builder", ring, "add", f"r1z1-127.0.0.1:{self.ports[kind]}/d1", "1")
            run("swift-ring-builder", ring, "rebalance")

    def _run(self, *command):
        """Its servers look for some settings in /etc/swift, whatever they are told."""
        private = 'mount --bind "$1" /etc/swift && shift && exec "$@"'
        with (self.folder / "log" / command[0]).open("ab") as log:
            self.processes.append(
                subprocess.Popen(
                    ["unshare", "--mount", "sh", "-c", private, "sh", self.folder / "etc", *command],
                    stdout=log,
                    stderr=log,
                    start_new_session=True,
                )
            )

    def _is_healthy(self):
        try:
            with urllib.request.urlopen(self.address + "/healthcheck", timeout=5) as response:
                return response.read() == b"OK"
        except (urllib.error.URLError, OSError):
            return False


def needs():
    tools = ("swift-proxy-server", "swift-ring-builder", "memcached", "unshare")
    return [tool for tool in tools if shutil.which(tool) is None]
