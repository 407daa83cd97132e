"""A web page with a text area that tells the tests what it holds."""

import html
import json
import threading
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

PAGE = """<!doctype html><meta charset="utf-8"><title>Writing</title>
<textarea id="t" style="width: 700px; height: 300px" autofocus>{text}</textarea>
<script>
const area = document.getElementById("t");
function tell() {{
  fetch("/state", {{method: "POST", body: JSON.stringify(
    {{text: area.value, isAllSelected: area.selectionStart == 0 && area.selectionEnd == area.value.length}})}});
}}
area.addEventListener("input", tell);
document.addEventListener("selectionchange", tell);
area.addEventListener("select", tell);
addEventListener("focus", () => area.focus());
area.focus();
tell();
</script>
"""


class WritingPage:
    """Serves the page; `text` and `is_all_selected` are what the page last told."""

    def __init__(self, text):
        self.text = None
        self.is_all_selected = False
        self._content = PAGE.format(text=html.escape(text)).encode()
        self._server = ThreadingHTTPServer(("127.0.0.1", 0), self._handler())
        self._server.daemon_threads = True
        threading.Thread(target=self._server.serve_forever, args=(0.05,), daemon=True).start()

    @property
    def loaded(self):
        return self.text is not None

    @property
    def url(self):
        return f"http://127.0.0.1:{self._server.server_address[1]}/"

    def close(self):
        self._server.shutdown()
        self._server.server_close()

    def _handler(self):
        page = self

        class Handler(BaseHTTPRequestHandler):
            def do_GET(self):
                self._send(200 if self.path == "/" else 404, page._content if self.path == "/" else b"")

            def do_POST(self):
                state = json.loads(self.rfile.read(int(self.headers["Content-Length"])))
                page.text, page.is_all_selected = state["text"], state["isAllSelected"]
                self._send(204, b"")

            def _send(self, status, content):
                self.send_response(status)
                self.send_header("Content-Type", "text/html; charset=utf-8")
                self.send_header("Content-Length", str(len(content)))
                self.end_headers()
                self.wfile.write(content)

            def log_message(self, *_arguments):
                pass

        return Handler
