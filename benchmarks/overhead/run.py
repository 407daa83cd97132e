"""One run: a text selected in the editor, the hotkey pressed as a hand does it, and what happened until all was quiet."""

import random
from dataclasses import dataclass, field

KEY_C, KEY_V = 54, 55
WAIT = 150.0
MILLISECOND = 1e6
CAPITALS = str.maketrans("abcdefghijklmnopqrstuvwxyz", "ABCDEFGHIJKLMNOPQRSTUVWXYZ")
WORDS = ["the", "quick", "Reword", "this", "line", "please", "and", "caf\u00e9", '"quoted"', "back\\slash", "it's", "100%",
         "sentence", "of", "words", "\u65e5\u672c\u8a9e", "<tag>", "&amp;"]  # fmt: skip


@dataclass
class Outcome:
    """Milliseconds, where there is no other unit. What went wrong is in `failure`."""

    failure: str = ""
    values: dict = field(default_factory=dict)
    lost_types: int = 0
    lost_bytes: int = 0


def text_of(size):
    """So many bytes of words in lines."""
    choice = random.Random(size)
    words, length, column = [], 0, 0
    while length < size:
        column = 0 if column > 64 else column + 1
        word = choice.choice(WORDS) + ("\n" if column == 0 else " ")
        column += len(word) if column else 0
        words.append(word)
        length += len(word.encode())
    text = "".join(words).encode()[:size].decode(errors="ignore").rstrip()
    return text + "x" * (size - len(text.encode()))


def hand(number):
    """How long the key is held and how much later the modifiers go up, in microseconds; the same for every tool."""
    choice = random.Random(number)
    return int(min(140, max(40, choice.gauss(80, 15))) * 1000), int(choice.uniform(5, 70) * 1000)


class Stage:
    """The editor, the onlooker and the model, and a run among them."""

    def __init__(self, events, observer, editor, model, folder):
        self.events = events
        self.observer = observer
        self.editor = editor
        self.model = model
        self.folder = folder
        self._settled = 0

    def own_clipboard(self, contents):
        """`contents` are (type, bytes) in the order in which they are offered."""
        lines = []
        for number, (kind, content) in enumerate(contents):
            file = self.folder / f"clipboard-{number}"
            file.write_bytes(content)
            lines.append(f"{kind}\t{file}\n")
        listed = self.folder / "clipboard"
        listed.write_text("".join(lines), encoding="utf-8")
        self.observer.ask("owned", "own", listed)
        self.events.wait_for_quiet(0.1, lambda event: event["event"] == "owner", 2)

    def run(self, peer, text, contents, number, within=5.0):
        self._prepare(text, contents)
        mark = self.events.mark()
        pressed = self.observer.ask("pressed", "press", peer.keycode, *hand(number))["t"]
        outcome = Outcome()
        self._await_end(mark, outcome, within)
        happened = self.events.since(mark)
        if not outcome.failure:
            outcome.values = durations(happened, pressed)
        return outcome

    def check(self, text, outcome):
        """Whether the text was replaced, and what the clipboard lost. Once nothing of the run is going on any more."""
        if outcome.failure:
            self.events.wait_for_quiet(1.5, lambda event: True, 15)
        found = self.folder / "found"
        self.editor.ask("stored", "text", found, within=30)
        if not outcome.failure and found.read_text(encoding="utf-8") != text.translate(CAPITALS):
            outcome.failure = "the text is not the answer"
        compared = self.observer.ask("compared", "compare", within=60)
        outcome.lost_types, outcome.lost_bytes = compared["lostTypes"], compared["lostBytes"]
        outcome.values["read back"] = compared["took"] / MILLISECOND
        if self.observer.ask("keys", "keys")["down"] and not outcome.failure:
            outcome.failure = "a key was left down"

    def _prepare(self, text, contents):
        file = self.folder / "text"
        file.write_text(text, encoding="utf-8")
        self.editor.say("load", file)
        self._settled += 1
        self.editor.ask("settled", "settle", self._settled, within=60)
        self.own_clipboard(contents)

    def _await_end(self, mark, outcome, within):
        waits = [("no copy came", lambda event: is_stroke(event, KEY_C)), ("no paste came", lambda event: is_stroke(event, KEY_V)),
                 ("the paste brought nothing", lambda event: event["event"] == "pasted")]  # fmt: skip
        for failure, accept in waits:
            if not self.events.wait(mark, accept, within):
                outcome.failure = failure
                break
        if not outcome.failure and not self._wait_for_restore(mark):
            outcome.failure = "the clipboard was not put back"
        self.events.wait(mark, lambda event: event["event"] == "released", 5)
        self.events.wait_for_quiet(0.1, lambda event: event["event"] in ("owner", "pasted", "request", "key"), 5)

    def _wait_for_restore(self, mark):
        pasted = next(event["t"] for event in self.events.since(mark) if is_stroke(event, KEY_V))
        return self.events.wait(mark, lambda event: is_restore(event, pasted), 3)


def is_stroke(event, keycode):
    """The application has seen Control and the key."""
    return event["event"] == "key" and event["down"] and event["keycode"] == keycode and event["control"]


def is_sent(event, keycode):
    """The X server has had the key from a tool."""
    return event["event"] == "raw" and event["down"] and event["keycode"] == keycode and not event["physical"]


def is_restore(event, pasted):
    """The clipboard has a new owner, so long after the paste that it cannot be the paste's own."""
    return event["event"] == "owner" and not event["own"] and event["t"] > pasted + WAIT * MILLISECOND * 2 / 3


def durations(happened, pressed):
    """Everything that the report needs, in milliseconds."""
    first = lambda accept: min(event["t"] for event in happened if accept(event))  # noqa: E731
    copy_sent, paste_sent = (first(lambda event, key=key: is_sent(event, key) or is_stroke(event, key)) for key in (KEY_C, KEY_V))
    pasted = first(lambda event: event["event"] == "pasted")
    request = next(event for event in happened if event["event"] == "request")
    restored = [event["t"] for event in happened if is_restore(event, paste_sent)]
    server = request["sent"] - request["received"]
    nanoseconds = {
        "copy seen": first(lambda event: is_stroke(event, KEY_C)) - pressed,
        "copy sent": copy_sent - pressed,
        "copy to request": request["received"] - copy_sent - WAIT * MILLISECOND,
        "answer to paste": paste_sent - request["sent"],
        "replaced": pasted - pressed - WAIT * MILLISECOND - server,
        "restore": restored[-1] - paste_sent - WAIT * MILLISECOND,
        "whole": restored[-1] - pressed - 2 * WAIT * MILLISECOND - server,
    }
    return {name: value / MILLISECOND for name, value in nanoseconds.items()}
