"""The program's own hosts, which answer what the test says, behind a proxy on this machine.

The program finds them by the proxy of its environment: it names the host that it wants, and whatever comes then is
meant for that host alone, encrypted.
"""

import contextlib
import json
import os
import socket
import ssl
import threading

from waiting import wait_until

HOSTS = ("api.quellon.example", "updates.quellon.example")
PATIENCE = 20.0


class Hosts:
    """Answers requests until it is closed; `folder` has the certificate. What was asked stands in `requests`, each as
    the host, the first line, the header and the body.
    """

    def __init__(self, folder: str):
        self.requests = []
        self.replies = {}
        self.held = {}
        self.context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        self.context.load_cert_chain(os.path.join(folder, "hosts.pem"), os.path.join(folder, "hosts.key"))
        self.listener = socket.create_server(("127.0.0.1", 0))
        threading.Thread(target=self._accept, daemon=True).start()

    @property
    def proxy(self) -> str:
        return f"http://127.0.0.1:{self.listener.getsockname()[1]}"

    def reply(self, host: str, path: str, value: dict, held: bool = False):
        """What the host answers from now on, as JSON; not before it is released when `held`."""
        self.held[host, path] = threading.Event()
        self.replies[host, path] = json.dumps(value).encode()
        if not held:
            self.held[host, path].set()

    def release(self, host: str, path: str):
        self.held[host, path].set()

    def wait_for_request(self, count: int) -> tuple:
        """The request of this number, the first is 1, once it has come."""
        wait_until(lambda: len(self.requests) >= count, f"request {count} of {self.requests}")
        return self.requests[count - 1]

    def close(self):
        self.listener.close()

    def _accept(self):
        with contextlib.suppress(OSError):
            while True:
                link, _ = self.listener.accept()
                threading.Thread(target=self._serve, args=(link,), daemon=True).start()

    def _serve(self, link: socket.socket):
        link.settimeout(PATIENCE)
        # Whoever goes away in the middle is the test's business, not the server's.
        with contextlib.suppress(OSError), link:
            method, target, _ = read_head(link)[0].split()
            host, _, port = target.partition(":")
            if (method, port) != ("CONNECT", "443"):
                self.requests.append((target, method, {}, b""))
                return
            link.sendall(b"HTTP/1.1 200 Connection established\r\n\r\n")
            with self.context.wrap_socket(link, server_side=True) as secured:
                self._answer(secured, host)

    def _answer(self, secured: ssl.SSLSocket, host: str):
        first, *lines = read_head(secured)
        header = dict(line.split(": ", 1) for line in lines)
        body = b""
        while len(body) < int(header.get("Content-Length", "0")):
            body += secured.recv(65536)
        self.requests.append((host, first, header, body))
        place = host, first.split()[1]
        reply = self.replies.get(place)
        if reply is None:
            secured.sendall(b"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n")
            return
        self.held[place].wait(PATIENCE)
        secured.sendall(b"HTTP/1.1 200 OK\r\nContent-Type: application/json\r\n"
                        + f"Content-Length: {len(reply)}\r\n\r\n".encode() + reply)
        secured.unwrap()


def read_head(link) -> list:
    """The lines before the empty one. No byte behind it is taken."""
    head = b""
    while not head.endswith(b"\r\n\r\n"):
        byte = link.recv(1)
        if not byte:
            raise ConnectionError
        head += byte
    return head.decode("latin-1").split("\r\n")[:-2]
