"""The wire formats that the stand-in speaks, one a module.

A format is a class: `takes(path)` tells whether requests of it arrive there; `mark(request)` is the value of a request that may
hold a behaviour; `check(request, key)` raises Refused as the provider refuses; `text(request)` is what to reword; `answer(request,
text)` is the whole answer, `headers` what goes with it; `malformed` has answers that break the format's promise, by name.
"""

import json

from .chat_completions import ChatCompletions
from .generate_content import GenerateContent
from .hosted import HostedLogin, HostedReword
from .messages import Messages

FORMATS = [ChatCompletions, Messages, GenerateContent, HostedReword, HostedLogin]


def format_for(path):
    """The format whose requests arrive at `path`, or None."""
    return next((each for each in FORMATS if each.takes(path)), None)


def encode(value):
    return json.dumps(value, ensure_ascii=False, separators=(",", ":")).encode("utf-8", "surrogatepass")
