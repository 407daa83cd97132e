#!/usr/bin/python3
"""A stand-in for a model's server, on the loopback interface: it speaks the wire formats and rewords by simple rules.

It is what the demonstration, the tests and the benchmarks talk to. It misbehaves on request; README.md tells how.
"""

import argparse
import base64
import json
import os
import select
import signal
import socket
import ssl
import sys
import threading
from http import HTTPStatus
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from itertools import count

import behaviour as behaviours
from behaviour import Answer, Behaviour
from formats import encode, format_for
from formats.request import Refused, Request
from rewording import reword

SECRET_HEADERS = {"authorization", "proxy-authorization", "x-api-key", "api-key", "x-goog-api-key", "cookie"}


def as_utf8(value):
    """A header's value, which the base class reads as Latin-1, as the UTF-8 that it is; as it came where it is none."""
    try:
        return value.encode("latin-1").decode("utf-8")
    except UnicodeDecodeError:
        return value


class RequestLog:
    """One JSON line a request, written before the answer is sent."""

    def __init__(self, path, with_secrets):
        self.file = open(path, "a", encoding="utf-8") if path else None
        self.with_secrets = with_secrets
        self.lock = threading.Lock()

    def record(self, connection, method, path, headers, body):
        if not self.file:
            return
        if not self.with_secrets:
            path = path.partition("?")[0] + ("?(not shown)" if "?" in path else "")
            headers = [(name, "(not shown)" if name.lower() in SECRET_HEADERS else value) for name, value in headers]
        entry = {"connection": connection, "method": method, "path": path, "headers": headers}
        try:
            entry["body"] = body.decode("utf-8")
        except UnicodeDecodeError:
            entry["body_base64"] = base64.b64encode(body).decode("ascii")
        with self.lock:
            self.file.write(json.dumps(entry) + "\n")
            self.file.flush()


class Handler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    disable_nagle_algorithm = True
    wbufsize = 0
    numbers = count(1)

    def setup(self):
        super().setup()
        self.number = next(Handler.numbers)

    def handle(self):
        try:
            super().handle()
        except (ConnectionError, ssl.SSLError, TimeoutError):
            pass  # The client has gone, as clients do.

    def log_message(self, format, *args):
        pass  # The base class would write request lines, and with them keys, to standard error.

    def read_body(self):
        if self.headers.get("Transfer-Encoding", "").lower() != "chunked":
            return self.rfile.read(int(self.headers.get("Content-Length", 0)))
        chunks = []
        while size := int(self.rfile.readline().split(b";")[0], 16):
            chunks.append(self.rfile.read(size))
            self.rfile.readline()
        while self.rfile.readline().strip():
            pass
        return b"".join(chunks)

    def do_GET(self):
        self.respond(self.read_body())

    do_POST = do_PUT = do_DELETE = do_HEAD = do_CONNECT = do_GET

    def respond(self, body):
        headers = [(name, as_utf8(value)) for name, value in self.headers.items()]
        self.server.log.record(self.number, self.command, self.path, headers, body)
        answer = self.make_answer(headers, body)
        self.close_connection = self.close_connection or answer.closes
        answer.send(self)

    def make_answer(self, headers, body):
        try:
            behaviour, path = behaviours.from_path(self.path)
            request = Request(self.command, path, headers, body)
            wire = format_for(request.path)
            behaviour = behaviour or (wire and behaviours.from_mark(wire.mark(request))) or Behaviour()
            if "redirect" in behaviour:
                return self.redirect(behaviour, path)
            if "status" in behaviour or "body" in behaviour or "invalid-utf8" in behaviour:
                return Answer(behaviour, int(behaviour.number("status", 200)), self.plain_body(behaviour), "text/plain")
            if not wire:
                return self.simple_page(behaviour, path)
            if "shape" in behaviour:
                return Answer(behaviour, 200, wire.malformed[behaviour.get("shape")])
            return self.answer_in_format(wire, behaviour, request)
        except (behaviours.UnknownBehaviour, KeyError, ValueError) as error:
            return Answer(Behaviour(), 501, encode({"error": {"message": f"misused: {error}"}}))

    def answer_in_format(self, wire, behaviour, request):
        try:
            wire.check(request, self.server.key)
            answer = Answer(behaviour, 200, encode(wire.answer(request, self.answer_text(wire, behaviour, request))))
        except Refused as refusal:
            if isinstance(refusal.body, str):
                answer = Answer(behaviour, refusal.status, refusal.body.encode(), "text/plain")
            else:
                answer = Answer(behaviour, refusal.status, encode(refusal.body))
        answer.headers += wire.headers
        return answer

    @staticmethod
    def answer_text(wire, behaviour, request):
        if "odd-text" in behaviour:
            return behaviours.ODD_TEXT
        if "size" in behaviour:
            return ("All work and no play. " * (int(behaviour.number("size")) // 22 + 1))[: int(behaviour.number("size"))]
        return behaviour.get("text") or reword(wire.text(request))

    @staticmethod
    def plain_body(behaviour):
        return b"\xff\xfe\xc3(" if "invalid-utf8" in behaviour else behaviour.get("body").encode()

    def simple_page(self, behaviour, path):
        if self.command in ("GET", "HEAD") and path == "/":
            return Answer(behaviour, 200, b"A stand-in for a model's server. It rewords by simple rules.\n", "text/plain")
        return Answer(behaviour, 404, encode({"error": {"message": "the stand-in serves nothing here"}}))

    @staticmethod
    def redirect(behaviour, path):
        """To the address in `to`, or to this path again: `times` more, then without the redirection."""
        left = int(behaviour.number("times", 1)) - 1
        rest = behaviour.written(times=left) if left else behaviour.written(redirect=None, times=None, to=None)
        answer = Answer(behaviour, int(behaviour.number("redirect", 302)), b"moved")
        answer.headers.append(("Location", behaviour.get("to", behaviours.into_path(rest, path))))
        return answer

    # What an Answer is sent through.

    def write(self, data):
        if self.command != "HEAD":
            self.connection.sendall(data)
        else:
            self.connection.sendall(data.partition(b"\r\n\r\n")[0] + b"\r\n\r\n")

    def reason(self, status):
        return next((each.phrase for each in HTTPStatus if each == status), "Unknown")

    def wait_for_close(self, seconds=None):
        """True once the client has closed the connection; False when `seconds` have passed."""
        readable, _, _ = select.select([self.connection], [], [], seconds)
        if not readable:
            return False
        self.close_connection = True
        return True


class Server(ThreadingHTTPServer):
    daemon_threads = True
    request_queue_size = 128

    def __init__(self, port, tls, log, key):
        super().__init__(("127.0.0.1", port), Handler)
        self.log = log
        self.key = key
        self.tls = None
        if tls:
            self.tls = ssl.create_default_context(ssl.Purpose.CLIENT_AUTH)
            self.tls.load_cert_chain(*tls)

    def finish_request(self, request, client_address):
        # On the connection's own thread, so that a client which stops half way through a handshake holds up nobody else.
        request.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        if self.tls:
            try:
                request = self.tls.wrap_socket(request, server_side=True)
            except (OSError, ssl.SSLError):
                return
        super().finish_request(request, client_address)

    def shutdown_request(self, request):
        if self.tls:
            self.close_request(request)
        else:
            super().shutdown_request(request)

    def handle_error(self, request, client_address):
        error = sys.exc_info()[1]
        if not isinstance(error, ConnectionError):
            print(f"stand-in: {type(error).__name__}: {error}", file=sys.stderr)


def save_port(path, port):
    with open(path + ".new", "w", encoding="ascii") as file:
        file.write(f"{port}\n")
    os.replace(path + ".new", path)


def stop_when_input_closes():
    while sys.stdin.buffer.read(4096):
        pass
    os._exit(0)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--port", type=int, default=0, help="0, the default: any free one")
    parser.add_argument("--port-file", metavar="FILE", help="where to save the port once it listens")
    parser.add_argument("--log", metavar="FILE", help="append every request as a line of JSON")
    parser.add_argument("--log-secrets", action="store_true", help="with the keys in it; for tests with made-up keys")
    parser.add_argument("--key", help="the only key, or token, that it takes: a made-up one")
    parser.add_argument("--tls", nargs=2, metavar=("CERTIFICATE", "KEY"), help="speak HTTPS")
    parser.add_argument("--deaf", action="store_true", help="take connections and never read from them")
    parser.add_argument("--until-input-closes", action="store_true", help="end when standard input does")
    options = parser.parse_args()

    try:
        server = Server(options.port, options.tls, RequestLog(options.log, options.log_secrets), options.key)
    except OSError as error:
        sys.exit(f"stand-in: cannot listen on port {options.port}: {error.strerror}")
    port = server.server_address[1]
    if options.port_file:
        save_port(options.port_file, port)
    print(f"stand-in listening on 127.0.0.1 port {port}", flush=True)

    signal.signal(signal.SIGTERM, lambda *_: os._exit(0))
    if options.until_input_closes:
        threading.Thread(target=stop_when_input_closes, daemon=True).start()
    try:
        if options.deaf:
            threading.Event().wait()
        server.serve_forever()
    except KeyboardInterrupt:
        pass


if __name__ == "__main__":
    main()
