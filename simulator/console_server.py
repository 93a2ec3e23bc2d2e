"""What the console asks besides the API: how the router is set up, its description, and what it did. Read-only."""

from __future__ import annotations

import http.server
import json
import re
import socketserver
import sys
import threading
from pathlib import Path

from history import History

TOP = Path(__file__).resolve().parent.parent
PAGES = Path(__file__).resolve().parent / "console"
TIMEOUT_S = 10
# A name that somebody else's page made resolve to this machine is none of these.
LOOPBACK = re.compile(r"(127\.0\.0\.1|localhost|\[::1\])(:\d{1,5})?", re.I)
SAME_ORIGIN = ("same-origin", "none", None)
POLICY = ("default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; connect-src 'self'; "
          "base-uri 'none'; form-action 'none'; frame-ancestors 'none'")


class Refused(Exception):
    def __init__(self, status: int, reason: str):
        super().__init__(reason)
        self.status = status


class ConsoleServer(socketserver.ThreadingMixIn, socketserver.UnixStreamServer):
    """Serves /console/... on a unix socket, behind the simulator's web server."""

    daemon_threads = True
    request_queue_size = 64

    def __init__(self, socket_path: Path, root, about):
        """`about()` gives what /console/router.json tells."""
        super().__init__(str(socket_path), _Handler)
        self._about = about
        self._history = History(root)
        self._description: bytes | None = None
        self._description_lock = threading.Lock()
        self._thread = threading.Thread(target=self.serve_forever, kwargs={"poll_interval": 0.1}, daemon=True)
        self._thread.start()

    def stop(self) -> None:
        self.shutdown()
        self._thread.join()
        self.server_close()

    def handle_error(self, request, client_address) -> None:
        if not isinstance(sys.exc_info()[1], ConnectionError):  # an asker that has gone is no error
            super().handle_error(request, client_address)

    def answer(self, target: str) -> bytes:
        """The JSON text for a path with its query."""
        path, _, query = target.partition("?")
        if path == "/console/router.json":
            return _json(self._about())
        if path == "/console/openapi.json":
            return self.description()
        if path == "/console/trace":
            return _json(self.trace(query))
        raise Refused(404, "there is /console/router.json, /console/openapi.json, /console/trace?since=N")

    def trace(self, query: str) -> dict:
        if query == "":
            return self._history.now()
        number = re.fullmatch(r"since=(\d{1,9})", query)
        if number is None:
            raise Refused(400, "since=N, N being a \"next\" of an earlier answer or 0")
        return self._history.since(int(number[1]))

    def description(self) -> bytes:
        """docs/openapi.yaml as JSON; made when it is first asked for."""
        with self._description_lock:
            if self._description is None:
                try:
                    import yaml  # not needed by a router that nobody looks at
                except ImportError:
                    raise Refused(503, "python3-yaml is missing: script/setup installs it") from None
                text = (TOP / "docs" / "openapi.yaml").read_text(encoding="utf-8")
                self._description = _json(yaml.load(text, getattr(yaml, "CSafeLoader", yaml.SafeLoader)))
            return self._description


def _json(value) -> bytes:
    return json.dumps(value).encode()


class _Handler(http.server.BaseHTTPRequestHandler):
    server: ConsoleServer
    server_version = "simulator"
    sys_version = ""
    timeout = TIMEOUT_S

    def do_GET(self) -> None:
        try:
            self._check_asker()
            self._send(200, self.server.answer(self.path))
        except Refused as refused:
            self._send(refused.status, _json({"error": str(refused)}))

    def _check_asker(self) -> None:
        if LOOPBACK.fullmatch(self.headers.get("Host", "")) is None:
            raise Refused(403, "ask for 127.0.0.1")
        if self.headers.get("Sec-Fetch-Site") not in SAME_ORIGIN:
            raise Refused(403, "this is for the console's own page")

    def _send(self, status: int, body: bytes) -> None:
        self.send_response(status)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def address_string(self) -> str:
        return "console"

    def log_message(self, *_args) -> None:
        """A request for the console is nothing that the router logs."""
