"""The web server in front of a simulated router: lighttpd or nginx, with the snippet that a router's gets installed."""

from __future__ import annotations

import os
import shutil
import subprocess
import textwrap
from pathlib import Path

import console_server
import sandbox

NAMES = ("lighttpd", "nginx")
SNIPPETS = Path(__file__).resolve().parent.parent / "packaging" / "openwrt" / "files"
_SOCKET = "/var/run/router-api.socket"
_SEARCHED = "/usr/sbin:/usr/bin:/usr/local/sbin"


def snippet(name: str, socket: Path) -> str:
    """A file of packaging/openwrt/files as it is, but for the responder's socket."""
    text = (SNIPPETS / name).read_text(encoding="utf-8")
    if _SOCKET not in text:
        raise sandbox.SandboxError(f"{SNIPPETS / name} does not name {_SOCKET}")
    return text.replace(_SOCKET, str(socket))


def start(name: str, directory: Path, port: int) -> subprocess.Popen:
    """Starts a server of NAMES on a loopback port, before the responder at directory/fcgi.sock. Its log is
    directory/<name>.log; it ends with this process."""
    server = shutil.which(name, path=_SEARCHED)
    if server is None:
        raise sandbox.SandboxError(f"{name} is missing: script/setup installs it (package {'nginx-light' if name == 'nginx' else name})")
    (directory / "uploads").mkdir()
    configuration = directory / f"{name}.conf"
    configuration.write_text(_lighttpd(directory, port) if name == "lighttpd" else _nginx(directory, port))
    command = [server, "-D", "-f", configuration] if name == "lighttpd" else \
        [server, "-c", configuration, "-e", directory / "nginx.log"]
    with open(directory / f"{name}.log", "ab") as log:
        return subprocess.Popen(["setpriv", "--pdeathsig", "TERM", *map(str, command)],
                                stdin=subprocess.DEVNULL, stdout=log, stderr=log)


def _lighttpd(directory: Path, port: int) -> str:
    return textwrap.dedent(f"""\
        server.modules = ("mod_setenv", "mod_proxy")
        server.bind = "127.0.0.1"
        server.port = {port}
        server.document-root = "{console_server.PAGES}"
        index-file.names = ("index.html")
        mimetype.assign = (".html" => "text/html; charset=utf-8", ".css" => "text/css; charset=utf-8",
                           ".js" => "text/javascript; charset=utf-8", ".svg" => "image/svg+xml")
        server.errorlog = "{directory}/lighttpd.log"
        server.upload-dirs = ("{directory}/uploads")
        server.max-connections = 64
        # The program compares the URI as the client sent it.
        server.http-parseopts = ("header-strict" => "enable", "host-strict" => "enable",
                                 "host-normalize" => "enable", "url-normalize" => "disable")
        proxy.server = ("/console/" => (("socket" => "{directory}/console.sock")))
        $HTTP["url"] !~ "^/api/" {{
          setenv.set-response-header = ("Content-Security-Policy" => "{console_server.POLICY}",
                                        "X-Content-Type-Options" => "nosniff", "Referrer-Policy" => "no-referrer",
                                        "Cache-Control" => "no-cache")
        }}
        """) + snippet("lighttpd-socket.conf", directory / "fcgi.sock")


def _nginx(directory: Path, port: int) -> str:
    places = "".join(f"  {kind}_temp_path {directory}/uploads/{kind};\n"
                     for kind in ("client_body", "fastcgi", "proxy", "uwsgi", "scgi"))
    user = "user root;\n" if os.geteuid() == 0 else ""
    return (f"{user}daemon off;\nworker_processes 1;\npid {directory}/nginx.pid;\nevents {{ worker_connections 128; }}\n"
            f"http {{\n  access_log off;\n{places}  server {{\n    listen 127.0.0.1:{port};\n"
            f"{snippet('nginx.locations', directory / 'fcgi.sock')}  }}\n}}\n")
