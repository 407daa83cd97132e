"""What the programs of the bench tell, a JSON object a line, gathered in one place in the order in which it arrived."""

import json
import subprocess
import threading
import time


class Events:
    def __init__(self):
        self._seen = []
        self._changed = threading.Condition()

    def add(self, event):
        with self._changed:
            self._seen.append(event)
            self._changed.notify_all()

    def mark(self):
        with self._changed:
            return len(self._seen)

    def since(self, mark):
        with self._changed:
            return self._seen[mark:]

    def wait(self, mark, accept, within):
        """The first event from `mark` on that is accepted; none where it does not come in time."""
        end = time.monotonic() + within
        at = mark
        with self._changed:
            while True:
                for event in self._seen[at:]:
                    at += 1
                    if accept(event):
                        return event
                left = end - time.monotonic()
                if left <= 0:
                    return None
                self._changed.wait(left)

    def wait_for_quiet(self, gap, accept, within):
        """Returns when none that is accepted has come for `gap` seconds."""
        end = time.monotonic() + within
        mark = self.mark()
        while time.monotonic() < end and self.wait(mark, accept, gap):
            mark = self.mark()

    def forget(self):
        with self._changed:
            self._seen.clear()


class Teller:
    """A program that obeys lines and tells lines."""

    def __init__(self, processes, events, name, *command):
        self.name = name
        self._events = events
        self.process = processes.start(name, *command, output=subprocess.PIPE, stdin=subprocess.PIPE)
        self._log = processes.logs / f"{name}.log"
        for read in (self._read_lines, self._read_complaints):
            threading.Thread(target=read, daemon=True).start()
        self.ready = events.wait(0, lambda event: self.told(event, "ready"), 15)
        if not self.ready:
            raise RuntimeError(f"{name} did not start; see {self._log}")

    def told(self, event, kind):
        return event["by"] == self.name and event["event"] == kind

    def say(self, *words):
        self.process.stdin.write((" ".join(str(word) for word in words) + "\n").encode())
        self.process.stdin.flush()

    def ask(self, kind, *words, within=10.0):
        """Says it and waits for the line of that kind."""
        mark = self._events.mark()
        self.say(*words)
        event = self._events.wait(mark, lambda event: self.told(event, kind), within)
        if not event:
            raise RuntimeError(f"{self.name} did not answer {words!r} within {within:g} s")
        return event

    def _read_lines(self):
        for line in self.process.stdout:
            self._events.add({**json.loads(line), "by": self.name})

    def _read_complaints(self):
        with open(self._log, "ab", buffering=0) as log:
            for line in self.process.stderr:
                log.write(line)
