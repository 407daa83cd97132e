"""Gemini's generateContent."""

import re
from urllib.parse import unquote

from .request import Refused, is_number, is_unknown_model, tokens

PATH = re.compile(r"/v1beta/models/([^/]+):generateContent$")
MEMBERS = {"contents", "systemInstruction", "generationConfig", "safetySettings", "tools", "toolConfig", "cachedContent", "labels"}
SETTINGS = {"temperature", "maxOutputTokens", "topP", "topK", "candidateCount", "stopSequences", "seed", "responseMimeType",
            "responseSchema", "presencePenalty", "frequencyPenalty", "thinkingConfig"}  # fmt: skip


def refused(code, status, message, **more):
    return Refused(code, {"error": {"code": code, "message": message, "status": status, **more}})


def invalid(message):
    return refused(400, "INVALID_ARGUMENT", message)


def bad_key():
    reason = {"@type": "type.googleapis.com/google.rpc.ErrorInfo", "reason": "API_KEY_INVALID", "domain": "googleapis.com",
              "metadata": {"service": "generativelanguage.googleapis.com"}}  # fmt: skip
    return refused(400, "INVALID_ARGUMENT", "API key not valid. Please pass a valid API key.", details=[reason])


class GenerateContent:
    headers = ()

    @staticmethod
    def takes(path):
        return bool(PATH.search(path))

    @staticmethod
    def mark(request):
        return unquote(PATH.search(request.path)[1])

    @classmethod
    def check(cls, request, key):
        if request.method != "POST":
            raise refused(404, "NOT_FOUND", "Requested entity was not found.")
        given = request.header("x-goog-api-key") or "".join(request.query.get("key", [])[:1])
        if not given:
            raise refused(403, "PERMISSION_DENIED", "Method doesn't allow unregistered callers (callers without established "
                          "identity). Please use API Key or other form of API consumer identity to call this API.")  # fmt: skip
        if key and given != key:
            raise bad_key()
        if request.json is None:
            raise invalid("Invalid JSON payload received.")
        model = cls.mark(request)
        if is_unknown_model(model):
            raise refused(404, "NOT_FOUND", f"models/{model} is not found for API version v1beta, "
                          "or is not supported for generateContent.")  # fmt: skip
        cls._check_names(request.json, MEMBERS, "")
        cls._check_content("system_instruction", request.json.get("systemInstruction", {"parts": [{"text": ""}]}))
        cls._check_contents(request.member("contents"))
        cls._check_settings(request.json.get("generationConfig", {}))

    @staticmethod
    def _check_names(value, known, place):
        if not isinstance(value, dict):
            raise invalid(f"Invalid value at '{place}': an object is expected.")
        for name in value:
            if name not in known:
                raise invalid(f'Invalid JSON payload received. Unknown name "{name}"' + (f" at '{place}'" if place else "")
                              + ": Cannot find field.")  # fmt: skip

    @classmethod
    def _check_contents(cls, contents):
        if not isinstance(contents, list) or not contents:
            raise invalid("* GenerateContentRequest.contents: contents is not specified\n")
        for index, content in enumerate(contents):
            cls._check_content(f"contents[{index}]", content)
            if content.get("role", "user") not in ("user", "model"):
                raise invalid("Please use a valid role: user, model.")

    @classmethod
    def _check_content(cls, place, content):
        cls._check_names(content, {"role", "parts"}, place)
        parts = content.get("parts")
        if not isinstance(parts, list) or not parts:
            raise invalid(f"* GenerateContentRequest.{place}.parts: contents.parts must not be empty.\n")
        for index, part in enumerate(parts):
            cls._check_names(part, {"text"}, f"{place}.parts[{index}]")
            if not isinstance(part.get("text"), str):
                raise invalid(f"* GenerateContentRequest.{place}.parts[{index}].data: "
                              "required oneof field 'data' must have one initialized field\n")  # fmt: skip

    @classmethod
    def _check_settings(cls, settings):
        cls._check_names(settings, SETTINGS, "generation_config")
        temperature = settings.get("temperature", 1)
        if not is_number(temperature):
            raise invalid("Invalid value at 'generation_config.temperature' (TYPE_FLOAT)")
        if not 0 <= temperature <= 2:
            raise invalid("* GenerateContentRequest.generation_config.temperature: temperature must be in the range [0.0, 2.0].\n")
        most = settings.get("maxOutputTokens", 1)
        if not is_number(most) or most != int(most) or most < 1:
            raise invalid("Invalid value at 'generation_config.max_output_tokens' (TYPE_INT32)")

    @staticmethod
    def text(request):
        last = next(each for each in reversed(request.member("contents")) if each.get("role", "user") == "user")
        return "".join(part["text"] for part in last["parts"])

    @classmethod
    def answer(cls, request, text):
        sent, made = tokens(cls.text(request)), tokens(text)
        return {
            "candidates": [{"content": {"parts": [{"text": text}], "role": "model"}, "finishReason": "STOP", "index": 0}],
            "usageMetadata": {"promptTokenCount": sent, "candidatesTokenCount": made, "totalTokenCount": sent + made},
            "modelVersion": cls.mark(request),
            "responseId": "stand-in",
        }

    malformed = {
        "not-json": b"Hello.",
        "empty": b"",
        "half": b'{"candidates":[{"content":{"parts":[{"text":"Hel',
        "string": b'"Hello."',
        "array": b'[{"candidates":[]}]',
        "empty-object": b"{}",
        "null-candidates": b'{"candidates":null}',
        "empty-candidates": b'{"candidates":[]}',
        "string-candidate": b'{"candidates":["Hello."]}',
        "blocked": b'{"candidates":[{"finishReason":"SAFETY","index":0}]}',
        "blocked-prompt": b'{"promptFeedback":{"blockReason":"SAFETY"}}',
        "string-content": b'{"candidates":[{"content":"Hello."}]}',
        "no-parts": b'{"candidates":[{"content":{"role":"model"}}]}',
        "empty-parts": b'{"candidates":[{"content":{"parts":[]}}]}',
        "late-text": b'{"candidates":[{"content":{"parts":[{"functionCall":{"name":"n"}},{"text":"Hello."}]}}]}',
        "null-text": b'{"candidates":[{"content":{"parts":[{"text":null}]}}]}',
        "number-text": b'{"candidates":[{"content":{"parts":[{"text":42}]}}]}',
        "invalid-utf8": b'{"candidates":[{"content":{"parts":[{"text":"Hel\xff\xfelo."}]}}]}',
    }
