"""A request as the formats read it, and its refusal."""

import json
from functools import cached_property
from urllib.parse import parse_qs


class Refused(Exception):
    """How the provider refuses a request: the status, and the body as a JSON value or as plain text."""

    def __init__(self, status, body):
        super().__init__(f"refused with {status}")
        self.status = status
        self.body = body


class Request:
    def __init__(self, method, path, headers, body):
        """`path` comes with its query and without a behaviour, `headers` as pairs."""
        self.method = method
        self.path, _, query = path.partition("?")
        self.query = parse_qs(query, keep_blank_values=True)
        self._headers = {name.lower(): value for name, value in headers}
        self._body = body

    def header(self, name):
        """The header's value, or None."""
        return self._headers.get(name.lower())

    @property
    def bearer(self):
        """The token of the Authorization header; empty where there is none."""
        scheme, _, token = (self.header("Authorization") or "").partition(" ")
        return token if scheme.lower() == "bearer" else ""

    @cached_property
    def json(self):
        """The body, if it is a JSON object; else None."""
        try:
            value = json.loads(self._body)
        except ValueError:
            return None
        return value if isinstance(value, dict) else None

    def member(self, name):
        return (self.json or {}).get(name)


def is_number(value):
    return isinstance(value, (int, float)) and not isinstance(value, bool)


def is_unknown_model(model):
    """The stand-in has every model but those whose name says that there is none."""
    return model.startswith("no-such-")


def tokens(text):
    """About as many as a provider would count; at least one."""
    return max(1, len(text) // 4)


def last_of_user(messages):
    """What the person said last, in the two formats that are a list of messages."""
    return next((each["content"] for each in reversed(messages) if each["role"] == "user"), "")
