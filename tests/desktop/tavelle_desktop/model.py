"""A model server on the loopback interface that answers as a test wants it to, and remembers what it was asked."""

import json

from .loopback import Handler, Server


def answer(text):
    """The answer of a well-behaved server in the chat-completions format."""
    return 200, json.dumps({"choices": [{"message": {"role": "assistant", "content": text}}]}).encode()


class Model(Server):
    """`behaviour` takes the selected text and returns (status, body); None ends the connection without an answer."""

    def __init__(self, behaviour=lambda text: answer(reworded(text)), port=0, tls=None):
        self.behaviour = behaviour
        self.requests = []
        self._scheme = "https" if tls else "http"
        super().__init__(self._handler(), port, tls)

    @property
    def url(self):
        return f"{self._scheme}://127.0.0.1:{self.port}/v1"

    def texts(self):
        """The selections that were sent, oldest first."""
        return [request["messages"][-1]["content"] for _headers, request in self.requests]

    def _handler(self):
        model = self

        class Completions(Handler):
            protocol_version = "HTTP/1.1"

            def do_POST(self):
                body = self.body()
                model.requests.append((dict(self.headers), body))
                result = model.behaviour(body["messages"][-1]["content"])
                if result is None:
                    self.close_connection = True
                else:
                    self.answer(result[0], "application/json", result[1])

        return Completions


def reworded(text):
    """What the well-behaved model makes of a text: unmistakable, and another text than the one selected."""
    return f"Reworded: {text.strip().upper()}"
