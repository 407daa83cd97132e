"""How an answer misbehaves, on request.

A behaviour is written "name=value,name=value,..."; a value is percent-encoded and may be left out. It travels in the path,
/v1/_behave/<behaviour>/chat/completions, or as the request's mark, "misbehave:<behaviour>": its model; the token of a hosted
reword, the address of a sign-in. README.md lists the names.
"""

import gzip
import time
from urllib.parse import quote, unquote

PATH_MARK = "/_behave/"
MARK = "misbehave:"

ODD_TEXT = "He said \"it's a \\ 'test'\", then\u0000 a NUL,\ttab, 👩‍👩‍👧‍👦 family, ﷽, \u202eright to left\u202c and </script>."

NAMES = {
    "status", "body", "invalid-utf8", "shape", "text", "odd-text", "size", "type", "header",
    "delay", "silence", "silence-after-head", "trickle", "trickle-all",
    "close", "close-after", "garbage", "truncate", "chunked", "chunked-cut", "gzip", "gzip-damaged", "gzip-cut",
    "redirect", "to", "times",
}


class UnknownBehaviour(Exception):
    pass


class Behaviour:
    def __init__(self, text=""):
        self.values = {}
        for part in filter(None, text.split(",")):
            name, _, value = part.partition("=")
            if name not in NAMES:
                raise UnknownBehaviour(f"the stand-in knows no behaviour named {name}")
            self.values[name] = unquote(value)

    def __contains__(self, name):
        return name in self.values

    def get(self, name, default=""):
        return self.values.get(name) or default

    def number(self, name, default=0.0):
        return float(self.get(name, default))

    def written(self, **changes):
        values = {**self.values, **changes}
        return ",".join(f"{name}={quote(str(value), safe='')}" for name, value in values.items() if value is not None)


def from_path(path):
    """The behaviour in `path`, None where there is none, and the path without it."""
    before, mark, after = path.partition(PATH_MARK)
    if not mark:
        return None, path
    text, slash, rest = after.partition("/")
    return Behaviour(text), before + slash + rest


def into_path(written, path):
    return PATH_MARK + written + path


def from_mark(mark):
    return Behaviour(mark[len(MARK):]) if isinstance(mark, str) and mark.startswith(MARK) else None


class Answer:
    """One HTTP answer, and how it is sent."""

    def __init__(self, behaviour, status, body, content_type="application/json"):
        self.behaviour = behaviour
        self.status = status
        self.body = body
        self.headers = [("Content-Type", behaviour.get("type", content_type))]
        if "header" in behaviour:
            self.headers.append(tuple(behaviour.get("header").split(":", 1)))

    @property
    def closes(self):
        return any(name in self.behaviour for name in ("close", "close-after", "garbage", "truncate", "chunked-cut"))

    def send(self, connection):
        """Sends the answer. `connection` has write(), wait_for_close(), reason()."""
        behaviour = self.behaviour
        if "silence" in behaviour:
            connection.wait_for_close()
            return
        time.sleep(behaviour.number("delay"))
        if "close" in behaviour:
            return
        if "garbage" in behaviour:
            connection.write(behaviour.get("garbage", "This is no HTTP.\r\n").encode())
            return
        payload = self.payload()
        head = self.head(connection.reason(self.status))
        if "silence-after-head" in behaviour:
            connection.write(head)
            connection.wait_for_close()
        elif "trickle-all" in behaviour:
            self.trickle(connection, head + payload, behaviour.number("trickle-all", 0.05))
        elif "trickle" in behaviour:
            connection.write(head)
            self.trickle(connection, payload, behaviour.number("trickle", 0.05))
        else:
            connection.write(head + payload)

    def head(self, reason):
        lines = [f"HTTP/1.1 {self.status} {reason}"] + [f"{name}: {value}" for name, value in self.headers]
        return "\r\n".join(lines).encode("latin-1") + b"\r\n\r\n"

    def payload(self):
        """The bytes after the head; adds the headers that describe them."""
        behaviour, body = self.behaviour, self.body
        if any(name in behaviour for name in ("gzip", "gzip-damaged", "gzip-cut")):
            self.headers.append(("Content-Encoding", "gzip"))
            body = gzip.compress(body)
            if "gzip-damaged" in behaviour:
                body = body[:2] + b"\xff" * 8 + body[10:]
            if "gzip-cut" in behaviour:
                body = body[: len(body) // 2]
        if "chunked" in behaviour or "chunked-cut" in behaviour:
            self.headers.append(("Transfer-Encoding", "chunked"))
            return self.in_chunks(body)
        self.headers.append(("Content-Length", len(body)))
        return body[: len(body) // 2] if "truncate" in behaviour else body

    def in_chunks(self, body):
        size = int(self.behaviour.get("chunked", "4096"))
        chunks = [b"%x\r\n%s\r\n" % (len(body[at:at + size]), body[at:at + size]) for at in range(0, len(body), size)]
        return b"".join(chunks) + (b"" if "chunked-cut" in self.behaviour else b"0\r\n\r\n")

    @staticmethod
    def trickle(connection, data, interval):
        for at in range(len(data)):
            connection.write(data[at:at + 1])
            if connection.wait_for_close(interval):
                return
