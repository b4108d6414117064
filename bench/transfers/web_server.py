"""A private nginx on loopback: serves one folder and accepts uploads into another."""

import os
import pathlib
import urllib.error
import urllib.request

from harness import process
from harness.page import free_port
from harness.wait import wait_until

CONFIGURATION = """\
load_module /usr/lib/nginx/modules/ngx_http_dav_ext_module.so;
daemon off;
{user}
pid {work}/nginx.pid;
error_log {work}/error.log;
worker_processes auto;
events {{ worker_connections 1024; }}
http {{
  access_log off;
  sendfile on;
  tcp_nopush on;
  tcp_nodelay on;
  keepalive_requests 1000000;
  client_max_body_size 0;
  client_body_temp_path {work}/bodies;
  proxy_temp_path {work}/proxy;
  fastcgi_temp_path {work}/fastcgi;
  uwsgi_temp_path {work}/uwsgi;
  scgi_temp_path {work}/scgi;
  server {{
    listen 127.0.0.1:{port};
    location /down/ {{ alias {down}/; }}
    location /up/ {{
      alias {up}/;
      dav_methods PUT MKCOL;
      dav_ext_methods PROPFIND OPTIONS;
      create_full_put_path on;
    }}
  }}
}}
"""


class WebServer:
    """`url` ends with a slash; below it are down/ and up/."""

    def __init__(self, work, down, up):
        self._work = pathlib.Path(work)
        self._work.mkdir()
        port = free_port()
        self.url = f"http://127.0.0.1:{port}/"
        configuration = self._work / "nginx.conf"
        configuration.write_text(CONFIGURATION.format(
            # As root it would serve with an account that cannot read our folders.
            user="user root;" if os.geteuid() == 0 else "", work=work, port=port, down=down, up=up))
        self._process = process.start(["/usr/sbin/nginx", "-e", self._work / "error.log",
                                       "-c", configuration])
        wait_until(self._answers, 30, "nginx")

    def _answers(self):
        if self._process.poll() is not None:
            raise process.Failure("nginx does not start: " + (self._work / "error.log").read_text())
        try:
            urllib.request.urlopen(self.url + "down/", timeout=5).close()
        except urllib.error.HTTPError:
            return True
        except OSError:
            return False
        return True

    def stop(self):
        process.stop(self._process)
