#!/usr/bin/python3
"""The model of the bench: a chat-completions server on loopback that answers with the text in capitals (a to z only).

One JSON line on standard output for each request: when its last byte had come, and when its answer began to be sent.
Between the two lies the server's own time, which is nobody's overhead.
"""

import json
import socket
import threading
import time

CAPITALS = str.maketrans("abcdefghijklmnopqrstuvwxyz", "ABCDEFGHIJKLMNOPQRSTUVWXYZ")
PIECE = 1 << 18


def tell(**values):
    print(json.dumps(values), flush=True)


def answer(body):
    text = json.loads(body)["messages"][-1]["content"].translate(CAPITALS)
    reply = {"choices": [{"message": {"role": "assistant", "content": text}}]}
    return json.dumps(reply, ensure_ascii=False, separators=(",", ":")).encode()


class Client:
    """One connection; requests on it follow each other."""

    def __init__(self, connection):
        self._connection = connection
        self._unread = b""

    def serve(self):
        with self._connection:
            self._connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            try:
                while self._serve_one():
                    pass
            except (ConnectionError, EOFError):
                pass  # the client has what it wanted

    def _serve_one(self):
        head, fields = self._read_head()
        if fields.get("expect"):
            self._connection.sendall(b"HTTP/1.1 100 Continue\r\n\r\n")
        body = self._read_body(int(fields["content-length"]))
        received = time.monotonic_ns()
        reply = answer(body)
        closes = fields.get("connection", "").lower() == "close"
        head = (f"HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: {len(reply)}\r\n"
                f"Connection: {'close' if closes else 'keep-alive'}\r\n\r\n")  # fmt: skip
        sent = time.monotonic_ns()
        self._connection.sendall(head.encode() + reply)
        tell(event="request", t=sent, received=received, sent=sent, done=time.monotonic_ns())
        return not closes

    def _read_head(self):
        while b"\r\n\r\n" not in self._unread:
            self._receive()
        head, _, self._unread = self._unread.partition(b"\r\n\r\n")
        first, *lines = head.decode("latin-1").split("\r\n")
        return first, {name.strip().lower(): value.strip() for name, _, value in (line.partition(":") for line in lines)}

    def _read_body(self, size):
        pieces, missing = [self._unread], size - len(self._unread)
        while missing > 0:
            piece = self._connection.recv(PIECE)
            if not piece:
                raise EOFError
            pieces.append(piece)
            missing -= len(piece)
        everything = b"".join(pieces)
        self._unread = everything[size:]
        return everything[:size]

    def _receive(self):
        piece = self._connection.recv(PIECE)
        if not piece:
            raise EOFError
        self._unread += piece


def main():
    listener = socket.create_server(("127.0.0.1", 0), backlog=64)
    tell(event="ready", port=listener.getsockname()[1])
    while True:
        connection, _ = listener.accept()
        threading.Thread(target=Client(connection).serve, daemon=True).start()


if __name__ == "__main__":
    main()
