"""The hosted service: a reword with a session's token, and the request for a sign-in link. It refuses in plain words."""

from .request import Refused, is_number


def check_request(request, members):
    """A POST of an object with exactly these members, each of which its check accepts."""
    if request.method != "POST":
        raise Refused(405, "only POST is served here")
    if request.json is None:
        raise Refused(400, "the request is no JSON object")
    if set(request.json) != set(members):
        raise Refused(400, f"the members must be {', '.join(members)}")
    for name, accepts in members.items():
        if not accepts(request.member(name)):
            raise Refused(400, f"bad {name}")


def is_text(value):
    return isinstance(value, str)


class HostedReword:
    headers = ()

    @staticmethod
    def takes(path):
        return path == "/reword"

    @staticmethod
    def mark(request):
        return request.bearer

    @staticmethod
    def check(request, key):
        if not request.bearer or (key and request.bearer != key):
            raise Refused(401, "sign in first")
        check_request(request, {"text": is_text, "systemPrompt": is_text, "temperature": is_number})

    @staticmethod
    def text(request):
        return request.member("text")

    @staticmethod
    def answer(_request, text):
        return {"result": text}

    malformed = {
        "not-json": b"Hello.",
        "empty": b"",
        "half": b'{"result":"Hel',
        "string": b'"Hello."',
        "array": b'["Hello."]',
        "empty-object": b"{}",
        "other-member": b'{"text":"Hello."}',
        "null-result": b'{"result":null}',
        "number-result": b'{"result":42}',
        "object-result": b'{"result":{"text":"Hello."}}',
        "invalid-utf8": b'{"result":"Hel\xff\xfelo."}',
    }


class HostedLogin:
    """The link is mailed to nobody."""

    headers = ()

    @staticmethod
    def takes(path):
        return path == "/auth/login"

    @staticmethod
    def mark(request):
        return request.member("email")

    @staticmethod
    def check(request, _key):
        check_request(request, {"email": lambda value: is_text(value) and "@" in value})

    @staticmethod
    def text(_request):
        return ""

    @staticmethod
    def answer(_request, _text):
        return {}

    malformed = {"not-json": b"Hello.", "empty": b""}  # nobody reads the answer
