"""A FastCGI client for one request at a time, which can also break off, lie and leave things out."""

from __future__ import annotations

import socket
import struct
from dataclasses import dataclass, field

BEGIN_REQUEST, ABORT_REQUEST, END_REQUEST, PARAMS, STDIN, STDOUT, STDERR = 1, 2, 3, 4, 5, 6, 7
_HEADER = struct.Struct("!BBHHBx")
_REQUEST_ID = 1
_MOST = 65535


@dataclass
class Response:
    stdout: bytes = b""
    stderr: bytes = b""
    ended: bool = False  # END_REQUEST came; False when the connection was closed before it
    app_status: int = 0
    records: list[int] = field(default_factory=list)  # record types, in order


def record(kind: int, content: bytes = b"") -> bytes:
    return _HEADER.pack(1, kind, _REQUEST_ID, len(content), 0) + content


def stream(kind: int, data: bytes) -> bytes:
    """`data` as records of one kind, without the empty record that ends the stream."""
    return b"".join(record(kind, data[at:at + _MOST]) for at in range(0, len(data), _MOST))


def _length(size: int) -> bytes:
    return bytes([size]) if size < 128 else struct.pack("!I", size | 0x80000000)


def name_values(params: dict[str, str | bytes]) -> bytes:
    data = b""
    for name, value in params.items():
        key = name.encode()
        content = value if isinstance(value, bytes) else value.encode("utf-8", "surrogateescape")
        data += _length(len(key)) + _length(len(content)) + key + content
    return data


def begin(keep_connection: bool = False) -> bytes:
    return record(BEGIN_REQUEST, struct.pack("!HB5x", 1, 1 if keep_connection else 0))


def request(params: dict[str, str | bytes], body: bytes = b"") -> bytes:
    return (begin() + stream(PARAMS, name_values(params)) + record(PARAMS) + stream(STDIN, body) + record(STDIN))


def connect(path: str, timeout_s: float) -> socket.socket:
    connection = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
    connection.settimeout(timeout_s)
    connection.connect(path)
    return connection


def read_response(connection: socket.socket) -> Response:
    """All records up to END_REQUEST or the end of the connection."""
    response, stdout, stderr = Response(), [], []
    with connection.makefile("rb") as stream_in:
        while not response.ended:
            try:
                header = stream_in.read(_HEADER.size)
            except ConnectionResetError:
                break
            if len(header) < _HEADER.size:
                break
            _, kind, _, length, padding = _HEADER.unpack(header)
            content = stream_in.read(length + padding)[:length]
            response.records.append(kind)
            if kind == STDOUT:
                stdout.append(content)
            elif kind == STDERR:
                stderr.append(content)
            elif kind == END_REQUEST:
                response.app_status = struct.unpack("!I", content[:4])[0]
                response.ended = True
    response.stdout, response.stderr = b"".join(stdout), b"".join(stderr)
    return response
