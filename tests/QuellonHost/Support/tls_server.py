#!/usr/bin/env python3
"""A server on loopback whose replies a test writes byte by byte.

    tls_server.py FOLDER

Makes certificates in FOLDER, prints one JSON line about itself, and then answers each JSON line on standard input with
one on standard output. Ends with its standard input. Bytes are written in hexadecimal digits.

Listeners, each on a port of its own:
    valid, wrongHost, expired, unknown  TLS with a certificate of that kind
    garbage                             sends something that is not TLS
    plain                               says nothing and hangs up; its connections are counted
    silent                              takes connections and never says a word
    full                                drops whoever wants to connect
"""
import gzip
import json
import os
import socket
import ssl
import subprocess
import sys
import threading
import time

HOSTS = "DNS:api.quellon.example,DNS:other.quellon.example"
# Longer than any test waits, so that nothing is left behind for long.
PATIENCE = 20.0


class Certificates:
    """Authorities and what they signed, as files."""

    def __init__(self, folder):
        self.folder = folder
        self.authority("authority")
        self.authority("stranger")
        self.sign("valid", HOSTS, "authority", 2)
        self.sign("wrongHost", "DNS:elsewhere.example", "authority", 2)
        self.sign("expired", HOSTS, "authority", -1)
        self.sign("unknown", HOSTS, "stranger", 2)

    def path(self, name, kind="pem"):
        return os.path.join(self.folder, f"{name}.{kind}")

    def openssl(self, *words):
        subprocess.run(("openssl", *words), check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)

    def request(self, name, *words):
        self.openssl("req", *words, "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-keyout",
                     self.path(name, "key"), "-subj", f"/CN={name}")

    def authority(self, name):
        self.request(name, "-x509", "-days", "2", "-out", self.path(name))

    def sign(self, name, hosts, authority, days):
        self.request(name, "-addext", f"subjectAltName={hosts}", "-out", self.path(name, "csr"))
        self.openssl("x509", "-req", "-in", self.path(name, "csr"), "-CA", self.path(authority), "-CAkey",
                     self.path(authority, "key"), "-CAcreateserial", "-days", str(days), "-copy_extensions", "copy",
                     "-out", self.path(name))

    def context(self, name):
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(self.path(name), self.path(name, "key"))
        context.set_alpn_protocols(["h2", "http/1.1"])
        return context


class Server:
    """The listeners, what they are to say, and what they have heard. `changed` guards all of it."""

    def __init__(self, certificates):
        self.changed = threading.Condition()
        self.replies = {}
        self.exchanges = []
        self.connections = {}
        self.ports = {}
        self.kept = []
        for name in ("valid", "wrongHost", "expired", "unknown"):
            context = certificates.context(name)
            self.listen(name, lambda link, context=context: self.talk(context, link))
        self.listen("garbage", lambda link: link.sendall(b"+OK ready\r\n" * 100))
        self.listen("plain", lambda link: None)
        self.listen("silent", None)
        full = self.listen("full", None, backlog=0)
        # The one place in the queue is taken, and stays so.
        self.kept.append(socket.create_connection(full.getsockname()))

    def listen(self, name, serve, backlog=64):
        listener = socket.socket()
        listener.bind(("127.0.0.1", 0))
        listener.listen(backlog)
        self.ports[name] = listener.getsockname()[1]
        self.connections[name] = 0
        self.kept.append(listener)
        if serve:
            threading.Thread(target=self.accept, args=(name, listener, serve), daemon=True).start()
        return listener

    def accept(self, name, listener, serve):
        while True:
            link, _ = listener.accept()
            with self.changed:
                self.connections[name] += 1
            threading.Thread(target=self.serve, args=(serve, link), daemon=True).start()

    @staticmethod
    def serve(serve, link):
        link.settimeout(PATIENCE)
        link.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        with link:
            try:
                serve(link)
            except OSError:  # the other side has gone, as TLS errors say as well
                pass

    def talk(self, context, link):
        with context.wrap_socket(link, server_side=True, suppress_ragged_eofs=True) as secured:
            exchange = {"bytes": b"", "received": False, "closed": False}
            with self.changed:
                self.exchanges.append(exchange)
            try:
                self.read_request(secured, exchange)
                self.note(exchange, "received")
                self.answer(secured, exchange)
            finally:
                self.note(exchange, "closed")

    def note(self, exchange, what):
        with self.changed:
            exchange[what] = True
            self.changed.notify_all()

    @staticmethod
    def read_more(secured, exchange):
        more = secured.recv(65536)
        exchange["bytes"] += more
        return bool(more)

    def read_request(self, secured, exchange):
        while b"\r\n\r\n" not in exchange["bytes"]:
            if not self.read_more(secured, exchange):
                raise ConnectionError
        head, _, _ = exchange["bytes"].partition(b"\r\n\r\n")
        length = 0
        for line in head.split(b"\r\n")[1:]:
            name, _, value = line.partition(b":")
            if name.lower() == b"content-length":
                length = int(value)
        while len(exchange["bytes"]) < len(head) + 4 + length:
            if not self.read_more(secured, exchange):
                raise ConnectionError

    def answer(self, secured, exchange):
        path = exchange["bytes"].split(b" ")[1].decode("latin-1")
        with self.changed:
            reply = self.replies.get(path, {"steps": [], "end": "close"})
        deadline = time.monotonic() + PATIENCE
        for step in reply["steps"]:
            unit = bytes.fromhex(step["bytes"])
            secured.sendall(unit)
            # Until the other side has gone, which is an error.
            while "every" in step and time.monotonic() < deadline:
                time.sleep(step["every"])
                secured.sendall(unit)
        if reply["end"] == "close":
            secured.unwrap()
        elif reply["end"] == "cut":
            secured.shutdown(socket.SHUT_RDWR)
        else:
            while self.read_more(secured, exchange):
                pass

    def command(self, command):
        if command["do"] == "gzip":
            return {"bytes": gzip.compress(bytes(command["zeros"])).hex()}
        with self.changed:
            if command["do"] == "reply":
                self.replies[command["path"]] = command
            elif command["do"] == "forget":
                self.replies.clear()
                self.exchanges.clear()
                for name in self.connections:
                    self.connections[name] = 0
            elif command["do"] == "await":
                what, count = command["what"], command["count"]
                self.changed.wait_for(lambda: sum(each[what] for each in self.exchanges) >= count, PATIENCE / 2)
            return {"exchanges": [each["bytes"].hex() for each in self.exchanges if each["received"]],
                    "connections": self.connections}


def main():
    certificates = Certificates(sys.argv[1])
    server = Server(certificates)
    print(json.dumps({"authority": certificates.path("authority"), "ports": server.ports}), flush=True)
    for line in sys.stdin:
        print(json.dumps(server.command(json.loads(line))), flush=True)
    os._exit(0)  # at once, whatever the connections do


main()
