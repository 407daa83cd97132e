"""Anthropic's messages."""

from .request import Refused, is_number, is_unknown_model, last_of_user, tokens

MEMBERS = {
    "model", "max_tokens", "messages", "system", "temperature", "top_k", "top_p", "stop_sequences", "stream", "metadata",
    "service_tier", "thinking", "tools", "tool_choice", "container", "context_management", "mcp_servers",
}  # fmt: skip
VERSIONS = ("2023-01-01", "2023-06-01")


def refused(status, kind, message):
    return Refused(status, {"type": "error", "error": {"type": kind, "message": message}, "request_id": "req_stand_in"})


def invalid(message):
    return refused(400, "invalid_request_error", message)


class Messages:
    headers = (("request-id", "req_stand_in"),)

    @staticmethod
    def takes(path):
        return path.endswith("/v1/messages")

    @staticmethod
    def mark(request):
        return request.member("model")

    @classmethod
    def check(cls, request, key):
        if request.method != "POST":
            raise refused(405, "invalid_request_error", "Method Not Allowed")
        if not request.header("x-api-key"):
            raise refused(401, "authentication_error", "x-api-key header is required")
        if key and request.header("x-api-key") != key:
            raise refused(401, "authentication_error", "invalid x-api-key")
        version = request.header("anthropic-version")
        if not version:
            raise invalid("anthropic-version: header is required")
        if version not in VERSIONS:
            raise invalid(f'anthropic-version: "{version}" is not a valid version')
        if request.json is None:
            raise invalid("The request body is not valid JSON")
        cls._check_body(request.json)
        if is_unknown_model(request.member("model")):
            raise refused(404, "not_found_error", f"model: {request.member('model')}")

    @classmethod
    def _check_body(cls, body):
        for name in ("model", "max_tokens", "messages"):
            if name not in body:
                raise invalid(f"{name}: Field required")
        for name in body:
            if name not in MEMBERS:
                raise invalid(f"{name}: Extra inputs are not permitted")
        if not isinstance(body["model"], str):
            raise invalid("model: Input should be a valid string")
        if not isinstance(body["max_tokens"], int) or isinstance(body["max_tokens"], bool):
            raise invalid("max_tokens: Input should be a valid integer")
        if body["max_tokens"] < 1:
            raise invalid("max_tokens: must be greater than or equal to 1")
        if not isinstance(body.get("system", ""), str):
            raise invalid("system: Input should be a valid string")
        temperature = body.get("temperature", 1)
        if not is_number(temperature):
            raise invalid("temperature: Input should be a valid number")
        if not 0 <= temperature <= 1:
            raise invalid("temperature: range: 0..1")
        if body.get("stream"):
            raise invalid("stream: the stand-in does not stream")
        cls._check_messages(body["messages"])

    @staticmethod
    def _check_messages(messages):
        if not isinstance(messages, list):
            raise invalid("messages: Input should be a valid list")
        if not messages:
            raise invalid("messages: at least one message is required")
        for index, message in enumerate(messages):
            role = message.get("role") if isinstance(message, dict) else None
            if role not in ("user", "assistant"):
                raise invalid(f'messages: Unexpected role "{role}". The Messages API accepts a top-level `system` parameter, '
                              'not "system" as an input message role.' if role == "system"
                              else f"messages.{index}.role: Input should be 'user' or 'assistant'")  # fmt: skip
            if not isinstance(message.get("content"), str):
                raise invalid(f"messages.{index}.content: Input should be a valid string")
            if not message["content"]:
                raise invalid(f"messages.{index}: {role} messages must have non-empty content")

    @staticmethod
    def text(request):
        return last_of_user(request.member("messages"))

    @classmethod
    def answer(cls, request, text):
        usage = {"input_tokens": tokens(cls.text(request)), "output_tokens": tokens(text), "cache_creation": None,
                 "cache_creation_input_tokens": 0, "cache_read_input_tokens": 0, "output_tokens_details": None,
                 "server_tool_use": None, "service_tier": "standard", "inference_geo": None, "speed": None}  # fmt: skip
        return {
            "id": "msg_stand_in",
            "type": "message",
            "role": "assistant",
            "model": request.member("model"),
            "content": [{"type": "text", "text": text, "citations": None}],
            "stop_reason": "end_turn",
            "stop_sequence": None,
            "stop_details": None,
            "container": None,
            "diagnostics": None,
            "usage": usage,
        }

    malformed = {
        "not-json": b"Hello.",
        "empty": b"",
        "half": b'{"content":[{"type":"text","text":"Hel',
        "string": b'"Hello."',
        "array": b'[{"type":"text","text":"Hello."}]',
        "empty-object": b"{}",
        "null-content": b'{"content":null}',
        "string-content": b'{"content":"Hello."}',
        "object-content": b'{"content":{"0":{"type":"text","text":"Hello."}}}',
        "empty-content": b'{"content":[]}',
        "string-block": b'{"content":["Hello."]}',
        "late-text": b'{"content":[{"type":"tool_use","id":"t","name":"n","input":{}},{"type":"text","text":"Hello."}]}',
        "null-text": b'{"content":[{"type":"text","text":null}]}',
        "number-text": b'{"content":[{"type":"text","text":42}]}',
        "invalid-utf8": b'{"content":[{"type":"text","text":"Hel\xff\xfelo."}]}',
    }
