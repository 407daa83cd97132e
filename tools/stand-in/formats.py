"""The wire formats that the stand-in speaks. A format knows its path, where a request keeps its text, and what an answer looks like."""

import json


class MalformedRequest(Exception):
    """The request is not of the format; the text says why."""


class ChatCompletions:
    """OpenAI-compatible chat completions."""

    path_end = "/chat/completions"

    @staticmethod
    def model(request):
        model = request.get("model", "")
        return model if isinstance(model, str) else ""

    @staticmethod
    def text(request):
        messages = request.get("messages")
        if not isinstance(messages, list):
            raise MalformedRequest("messages must be an array")
        for message in reversed(messages):
            if isinstance(message, dict) and message.get("role") == "user":
                if isinstance(message.get("content"), str):
                    return message["content"]
                raise MalformedRequest("the content of the user's message must be a string")
        raise MalformedRequest("there is no message of the user")

    @staticmethod
    def answer(text):
        return {
            "id": "stand-in",
            "object": "chat.completion",
            "model": "stand-in",
            "choices": [{"index": 0, "message": {"role": "assistant", "content": text}, "finish_reason": "stop"}],
        }

    @staticmethod
    def error(message):
        return {"error": {"message": message, "type": "stand_in_error"}}

    # Answers with status 200 that are not what the format promises, by name.
    malformed = {
        "not-json": b"Hello.",
        "empty": b"",
        "half": b'{"choices":[{"message":{"content":"Hel',
        "string": b'"Hello."',
        "array": b'[{"choices":[]}]',
        "empty-object": b"{}",
        "null-choices": b'{"choices":null}',
        "object-choices": b'{"choices":{"0":{"message":{"content":"Hello."}}}}',
        "empty-choices": b'{"choices":[]}',
        "string-choice": b'{"choices":["Hello."]}',
        "no-message": b'{"choices":[{"index":0}]}',
        "string-message": b'{"choices":[{"message":"Hello."}]}',
        "no-content": b'{"choices":[{"message":{"role":"assistant"}}]}',
        "null-content": b'{"choices":[{"message":{"role":"assistant","content":null,"tool_calls":[]}}]}',
        "number-content": b'{"choices":[{"message":{"content":42}}]}',
        "array-content": b'{"choices":[{"message":{"content":[{"type":"text","text":"Hello."}]}}]}',
        "invalid-utf8": b'{"choices":[{"message":{"content":"Hel\xff\xfelo."}}]}',
    }


FORMATS = [ChatCompletions]


def format_for(path):
    """The format whose requests arrive at `path`, or None."""
    return next((each for each in FORMATS if path.endswith(each.path_end)), None)


def encode(value):
    return json.dumps(value, ensure_ascii=False, separators=(",", ":")).encode("utf-8", "surrogatepass")
