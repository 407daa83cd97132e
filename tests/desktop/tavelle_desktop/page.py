"""A web page with a text area that tells the tests what it holds."""

import html
import json
import threading
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer

PAGE = """<!doctype html><meta charset="utf-8"><title>Writing</title>
<textarea id="t" style="width: 700px; height: 300px" autofocus>{text}</textarea>
<script>
const area = document.getElementById("t");
let told = 0;
let asked = 0;
function tell() {{
  fetch("/state", {{method: "POST", body: JSON.stringify(
    {{told: ++told, asked, text: area.value,
      isAllSelected: area.selectionStart == 0 && area.selectionEnd == area.value.length}})}});
}}
area.addEventListener("input", tell);
document.addEventListener("selectionchange", tell);
area.addEventListener("select", tell);
addEventListener("keydown", event => {{
  if (event.key != "F2") return;
  ++asked;
  tell();
}});
addEventListener("focus", () => area.focus());
area.focus();
tell();
</script>
"""


class WritingPage:
    """Serves the page; `text` and `is_all_selected` are what the page last told, unasked or asked by the key F2. A key is
    handled after those that came before it, so an answer holds what they did; `asked` counts the answers."""

    def __init__(self, text):
        self.text = None
        self.is_all_selected = False
        self.asked = 0
        self._told = 0
        self._lock = threading.Lock()
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

    def _take(self, state):
        with self._lock:  # each comes on a connection of its own, and may overtake another
            if state["told"] <= self._told:
                return
            self._told, self.asked = state["told"], state["asked"]
            self.text, self.is_all_selected = state["text"], state["isAllSelected"]

    def _handler(self):
        page = self

        class Handler(BaseHTTPRequestHandler):
            def do_GET(self):
                page._told = 0  # the page counts anew whenever it is loaded
                self._send(200 if self.path == "/" else 404, page._content if self.path == "/" else b"")

            def do_POST(self):
                state = json.loads(self.rfile.read(int(self.headers["Content-Length"])))
                page._take(state)
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
