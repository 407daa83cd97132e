"""A small web server on the loopback interface, for what the tests serve."""

import json
import threading
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer


class Handler(BaseHTTPRequestHandler):
    """What the servers' handlers share: bodies are JSON, and nothing is logged."""

    def body(self):
        return json.loads(self.rfile.read(int(self.headers["Content-Length"])))

    def answer(self, status, kind, content):
        self.send_response(status)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(content)))
        self.end_headers()
        self.wfile.write(content)

    def log_message(self, *_arguments):
        pass


class Server:
    def __init__(self, handler, port=0, tls=None):
        """`tls`: an ssl.SSLContext with a certificate, where the server is to speak TLS."""
        self._server = ThreadingHTTPServer(("127.0.0.1", port), handler)
        if tls:
            self._server.socket = tls.wrap_socket(self._server.socket, server_side=True)
        self._server.daemon_threads = True
        self.port = self._server.server_address[1]
        threading.Thread(target=self._server.serve_forever, args=(0.05,), daemon=True).start()

    def close(self):
        self._server.shutdown()
        self._server.server_close()
