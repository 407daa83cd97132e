"""A model server on the loopback interface that answers as a test wants it to, and remembers what it was asked."""

import json
import threading
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer


def answer(text):
    """The answer of a well-behaved server in the chat-completions format."""
    return 200, json.dumps({"choices": [{"message": {"role": "assistant", "content": text}}]}).encode()


class Model:
    """`behaviour` takes the selected text and returns (status, body); None ends the connection without an answer."""

    def __init__(self, behaviour=lambda text: answer(reworded(text)), port=0):
        self.behaviour = behaviour
        self.requests = []
        self._server = ThreadingHTTPServer(("127.0.0.1", port), self._handler())
        self._server.daemon_threads = True
        self.port = self._server.server_address[1]
        self._thread = threading.Thread(target=self._server.serve_forever, args=(0.05,), daemon=True)
        self._thread.start()

    @property
    def url(self):
        return f"http://127.0.0.1:{self.port}/v1"

    def texts(self):
        """The selections that were sent, oldest first."""
        return [request["messages"][-1]["content"] for _headers, request in self.requests]

    def close(self):
        self._server.shutdown()
        self._server.server_close()

    def _handler(self):
        model = self

        class Handler(BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def do_POST(self):
                body = json.loads(self.rfile.read(int(self.headers["Content-Length"])))
                model.requests.append((dict(self.headers), body))
                result = model.behaviour(body["messages"][-1]["content"])
                if result is None:
                    self.close_connection = True
                    return
                status, content = result
                self.send_response(status)
                self.send_header("Content-Type", "application/json")
                self.send_header("Content-Length", str(len(content)))
                self.end_headers()
                self.wfile.write(content)

            def log_message(self, *_arguments):
                pass

        return Handler


def reworded(text):
    """What the well-behaved model makes of a text: unmistakable, and another text than the one selected."""
    return f"Reworded: {text.strip().upper()}"
