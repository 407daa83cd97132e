"""A web page with a text area that tells the tests what it holds."""

import html
import threading

from .loopback import Handler, Server

HTML = "text/html; charset=utf-8"
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


class WritingPage(Server):
    """Serves the page; `text` and `is_all_selected` are what the page last told, unasked or asked by the key F2. A key is
    handled after those that came before it, so an answer holds what they did; `asked` counts the answers."""

    def __init__(self, text):
        self.text = None
        self.is_all_selected = False
        self.asked = 0
        self._told = 0
        self._lock = threading.Lock()
        self._content = PAGE.format(text=html.escape(text)).encode()
        super().__init__(self._handler())

    @property
    def loaded(self):
        return self.text is not None

    @property
    def url(self):
        return f"http://127.0.0.1:{self.port}/"

    def _take(self, state):
        with self._lock:  # each comes on a connection of its own, and may overtake another
            if state["told"] <= self._told:
                return
            self._told, self.asked = state["told"], state["asked"]
            self.text, self.is_all_selected = state["text"], state["isAllSelected"]

    def _handler(self):
        page = self

        class Page(Handler):
            def do_GET(self):
                page._told = 0  # the page counts anew whenever it is loaded
                found = self.path == "/"
                self.answer(200 if found else 404, HTML, page._content if found else b"")

            def do_POST(self):
                page._take(self.body())
                self.answer(204, HTML, b"")

        return Page
