#!/usr/bin/python3
"""The web server behind the lab's phone: any number of bytes, at any rate.

    GET /bytes/N         N bytes, as fast as they go
    GET /bytes/N/RATE    N bytes at RATE bytes per second
    POST /upload         takes the body and answers with its length

The byte at a given offset is always the same (see content), so that a receiver can check what it got. Ranges, HEAD and
kept-alive connections work as usual.

    phone_server.py PORT ADDRESS...

listens on these addresses only and prints one line, "listening", once all of them are open.
"""

import random
import re
import socket
import sys
import threading
import time
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

# A prime, so that no power of two of lost or doubled bytes goes unnoticed.
BLOCK_SIZE = 65521
BLOCK = random.Random(1).randbytes(BLOCK_SIZE)
CHUNK = 4 * BLOCK_SIZE
LONG_BLOCK = BLOCK * (CHUNK // BLOCK_SIZE + 1)
PIECES_PER_SECOND = 20


def content(offset: int, length: int) -> bytes:
    """The bytes [offset, offset + length) of the endless text that every /bytes answer is the beginning of."""
    start = offset % BLOCK_SIZE
    repeats = (start + length) // BLOCK_SIZE + 1
    return (BLOCK * repeats)[start:start + length]


def byte_range(header: str, size: int):
    """The half-open range that a Range header asks of `size` bytes; None: the whole (absent or not understood).

    A range outside the content raises ValueError.
    """
    match = re.fullmatch(r"bytes=(\d*)-(\d*)", header.strip())
    if not match or match.group(0) == "bytes=-":
        return None
    first, last = match.groups()
    if not first:
        if int(last) == 0:
            raise ValueError("empty range")
        return max(0, size - int(last)), size
    start = int(first)
    end = min(size, int(last) + 1) if last else size
    if start >= size or (last and int(last) < start):
        raise ValueError("range outside the content")
    return start, end


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    server_version = "phone"
    sys_version = ""
    disable_nagle_algorithm = True
    # Headers and body leave in as few segments as the socket likes.
    wbufsize = -1

    def do_GET(self):
        self.answer(with_body=True)

    def do_HEAD(self):
        self.answer(with_body=False)

    def do_POST(self):
        if self.path != "/upload":
            self.send_error(404)
            return
        left = int(self.headers.get("Content-Length", "0"))
        taken = 0
        while taken < left:
            data = self.rfile.read(min(CHUNK, left - taken))
            if not data:
                break
            taken += len(data)
        body = f"{taken}\n".encode()
        self.send_response(200)
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def answer(self, with_body: bool):
        match = re.fullmatch(r"/bytes/(\d+)(?:/([1-9]\d*))?", self.path)
        if not match:
            self.send_error(404)
            return
        size = int(match.group(1))
        rate = int(match.group(2)) if match.group(2) else None
        try:
            wanted = byte_range(self.headers.get("Range", ""), size)
        except ValueError:
            self.send_response(416)
            self.send_header("Content-Range", f"bytes */{size}")
            self.send_header("Content-Length", "0")
            self.end_headers()
            return
        start, end = wanted or (0, size)
        self.send_response(206 if wanted else 200)
        if wanted:
            self.send_header("Content-Range", f"bytes {start}-{end - 1}/{size}")
        self.send_header("Accept-Ranges", "bytes")
        self.send_header("Content-Type", "application/octet-stream")
        self.send_header("Content-Length", str(end - start))
        self.end_headers()
        if with_body:
            self.send_content(start, end, rate)

    def send_content(self, start: int, end: int, rate):
        piece = CHUNK if rate is None else max(1, min(CHUNK, rate // PIECES_PER_SECOND))
        begun = time.monotonic()
        offset = start
        while offset < end:
            length = min(piece, end - offset)
            inside = offset % BLOCK_SIZE
            self.wfile.write(LONG_BLOCK[inside:inside + length])
            offset += length
            if rate is not None:
                self.wfile.flush()
                ahead = (offset - start) / rate - (time.monotonic() - begun)
                if ahead > 0:
                    time.sleep(ahead)

    def log_message(self, *_):
        pass


class Server(ThreadingHTTPServer):
    daemon_threads = True
    request_queue_size = 256

    def __init__(self, address: str, port: int):
        self.address_family = socket.AF_INET6 if ":" in address else socket.AF_INET
        super().__init__((address, port), Handler)

    def handle_error(self, *_):
        # A client that hangs up in the middle is everyday life for a phone.
        if not isinstance(sys.exc_info()[1], OSError):
            super().handle_error(*_)


def main() -> int:
    if len(sys.argv) < 3 or not sys.argv[1].isdigit():
        print("usage: phone_server.py PORT ADDRESS...", file=sys.stderr)
        return 2
    servers = [Server(address, int(sys.argv[1])) for address in sys.argv[2:]]
    threads = [threading.Thread(target=server.serve_forever) for server in servers]
    for thread in threads:
        thread.start()
    print("listening", flush=True)
    for thread in threads:
        thread.join()
    return 0


if __name__ == "__main__":
    sys.exit(main())
