"""OpenAI's chat completions, which others speak as well: a local server among them wants no key."""

from .request import Refused, is_number, is_unknown_model, last_of_user, tokens

MEMBERS = {
    "model", "messages", "temperature", "top_p", "n", "stream", "stream_options", "stop", "max_tokens", "max_completion_tokens",
    "presence_penalty", "frequency_penalty", "logit_bias", "logprobs", "top_logprobs", "user", "seed", "tools", "tool_choice",
    "parallel_tool_calls", "response_format", "reasoning_effort", "metadata", "store", "service_tier",
}  # fmt: skip
ROLES = ("system", "assistant", "user", "function", "tool", "developer")


def refused(status, message, param=None, code=None):
    return Refused(status, {"error": {"message": message, "type": "invalid_request_error", "param": param, "code": code}})


class ChatCompletions:
    headers = (("x-request-id", "req_stand_in"),)

    @staticmethod
    def takes(path):
        return path.endswith("/chat/completions")

    @staticmethod
    def mark(request):
        return request.member("model")

    @classmethod
    def check(cls, request, key):
        if request.method != "POST":
            raise refused(405, f"Not allowed to {request.method} on {request.path}. "
                          "(HINT: Perhaps you meant to use a different HTTP method?)", code="method_not_supported")  # fmt: skip
        if key and not request.bearer:
            raise refused(401, "You didn't provide an API key. You need to provide your API key in an Authorization header using "
                          "Bearer auth (i.e. Authorization: Bearer YOUR_KEY).")  # fmt: skip
        if key and request.bearer != key:
            raise refused(401, "Incorrect API key provided: (not shown).", code="invalid_api_key")
        if request.json is None:
            raise refused(400, "We could not parse the JSON body of your request.")
        cls._check_model(request.member("model"))
        for name in request.json:
            if name not in MEMBERS:
                raise refused(400, f"Unrecognized request argument supplied: {name}")
        if request.member("stream"):
            raise refused(400, "The stand-in does not stream.", "stream", "unsupported_value")
        cls._check_messages(request.member("messages"))
        cls._check_temperature(request.json.get("temperature", 1))

    @staticmethod
    def _check_model(model):
        if not isinstance(model, str) or not model:
            raise refused(400, "you must provide a model parameter")
        if is_unknown_model(model):
            raise refused(404, f"The model `{model}` does not exist or you do not have access to it.", code="model_not_found")

    @staticmethod
    def _check_messages(messages):
        if messages is None:
            raise refused(400, "Missing required parameter: 'messages'.", "messages", "missing_required_parameter")
        if not isinstance(messages, list):
            raise refused(400, "Invalid type for 'messages': expected an array of objects.", "messages", "invalid_type")
        if not messages:
            raise refused(400, "Invalid 'messages': empty array. Expected an array with minimum length 1.", "messages",
                          "empty_array")  # fmt: skip
        for index, message in enumerate(messages):
            place = f"messages[{index}]"
            if not isinstance(message, dict):
                raise refused(400, f"Invalid type for '{place}': expected an object.", place, "invalid_type")
            if message.get("role") not in ROLES:
                raise refused(400, f"Invalid value: '{message.get('role')}'. Supported values are: {', '.join(map(repr, ROLES))}.",
                              f"{place}.role", "invalid_value")  # fmt: skip
            if not isinstance(message.get("content"), str):
                raise refused(400, f"Invalid value for 'content': expected a string, got {type(message.get('content')).__name__}.",
                              f"{place}.content")  # fmt: skip

    @staticmethod
    def _check_temperature(temperature):
        if not is_number(temperature):
            raise refused(400, "Invalid type for 'temperature': expected a decimal.", "temperature", "invalid_type")
        if not 0 <= temperature <= 2:
            raise refused(400, f"Invalid 'temperature': expected a value between 0 and 2, but got {temperature} instead.",
                          "temperature", "decimal_above_max_value" if temperature > 2 else "decimal_below_min_value")  # fmt: skip

    @staticmethod
    def text(request):
        return last_of_user(request.member("messages"))

    @classmethod
    def answer(cls, request, text):
        sent, made = tokens(cls.text(request)), tokens(text)
        message = {"role": "assistant", "content": text, "refusal": None, "annotations": []}
        return {
            "id": "chatcmpl-stand-in",
            "object": "chat.completion",
            "created": 1735689600,
            "model": request.member("model"),
            "choices": [{"index": 0, "message": message, "logprobs": None, "finish_reason": "stop"}],
            "usage": {"prompt_tokens": sent, "completion_tokens": made, "total_tokens": sent + made},
            "service_tier": "default",
        }

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
