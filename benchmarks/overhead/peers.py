"""The tools that are measured: the floor, Tavelle, and the shell pipeline. All run at once, each on its own hotkey."""

import contextlib
import json
import os
import shutil
import signal
import time
from pathlib import Path

from tavelle_desktop.processes import children
from tavelle_desktop.waiting import wait_until

from .usage import processor_seconds

KEYCODES = {"J": 44, "K": 45, "L": 46}  # X key codes


class Peer:
    """One tool. `note` says in the report what it is; `model_url` is the address of the chat-completions call."""

    name = note = ""
    key = ""
    keeps_all_formats = True

    def __init__(self, desktop, model_url):
        self.desktop = desktop
        self.model_url = model_url
        self.process = None
        self.prepare()

    @property
    def keycode(self):
        return KEYCODES[self.key]

    def prepare(self):
        pass

    def command(self):
        raise NotImplementedError

    def start(self):
        """Returns when that was, in nanoseconds of the monotonic clock."""
        started = time.monotonic_ns()
        self.process = self.desktop.processes.start(self.name, *self.command(), env={"BENCH_URL": self.model_url})
        return started

    def stop(self):
        os.kill(self.process.pid, signal.SIGTERM)
        wait_until(lambda: self.process.poll() is not None, f"{self.name} has ended")

    def is_busy(self, orphans):
        """Whether something of a run is still going on; `orphans` are the processes that a tool left behind."""
        return False

    def resident(self, orphans):
        """The processes that stay between runs."""
        return [self.process.pid]

    def processor_seconds(self, collected):
        """Up to now; `collected` is the time of those left behind that have ended."""
        return processor_seconds(self.process.pid)


class Floor(Peer):
    name = "floor"
    key = "K"
    note = "a bare C program: the keystrokes, the waits, one request over a plain socket, the clipboard with all its types"

    def __init__(self, desktop, model_url, program):
        self.program = program
        super().__init__(desktop, model_url)

    def command(self):
        return [self.program, self.keycode, self.model_url]


class Tavelle(Peer):
    name = "Tavelle"
    key = "J"
    note = "the release build, with a provider, a key in the keyring and one profile"
    PROFILE = {"id": "11111111-2222-4333-8444-555555555555", "name": "Reword", "keyCode": 38, "modifiers": 0x1000 + 0x800,
               "systemPrompt": "p"}  # fmt: skip

    def __init__(self, desktop, model_url, program, profiles=(PROFILE,)):
        self.program = program
        self.settings_folder = Path(desktop.environment["XDG_CONFIG_HOME"]) / "tavelle"
        self._profiles = profiles
        super().__init__(desktop, model_url)

    def prepare(self):
        settings = {"provider": "custom", "model": "bench", "temperature": 0.7, "rewriteProfiles": list(self._profiles),
                    "baseURL": self.model_url.removesuffix("/chat/completions")}  # fmt: skip
        self.settings_folder.mkdir(parents=True)
        (self.settings_folder / "settings.json").write_text(json.dumps(settings), encoding="utf-8")
        if self.desktop.options.keyring != "absent":
            self.desktop.processes.run("secret-tool", "store", "--label=Tavelle", "service", "app.tavelle.Tavelle",
                                       "account", "apiKey_custom", text="made-up key")  # fmt: skip

    def start(self):
        self._parts = {}  # processor seconds, by process: what a part of it used still counts once it has ended
        return super().start()

    def command(self):
        return [self.program]

    def resident(self, orphans):
        return [self.process.pid, *children(self.process.pid)]

    def processor_seconds(self, collected):
        for pid in self.resident(()):
            with contextlib.suppress(OSError):  # it has just ended
                self._parts[pid] = processor_seconds(pid)
        return sum(self._parts.values())


class Pipeline(Peer):
    name = "pipeline"
    key = "L"
    keeps_all_formats = False
    note = "xbindkeys, and a script of xclip, xdotool, curl and jq that first waits 250 ms for the hand to leave the hotkey"

    def prepare(self):
        script = Path(__file__).resolve().parents[1] / "reword.sh"
        self._bindings = Path(self.desktop.home) / "xbindkeysrc"
        self._bindings.write_text(f'"{script}"\n  release+control+alt + l\n', encoding="utf-8")

    def command(self):
        return ["xbindkeys", "-n", "-f", self._bindings]

    def is_busy(self, orphans):
        return any(_program(pid) in ("sh", "bash", "reword.sh") for pid in orphans)

    def resident(self, orphans):
        return [self.process.pid, *(pid for pid in orphans if _program(pid) == "xclip")]

    def processor_seconds(self, collected):
        return processor_seconds(self.process.pid) + collected

    @staticmethod
    def missing():
        return [program for program in ("xbindkeys", "xdotool", "xclip", "curl", "jq") if not shutil.which(program)]


def _program(pid):
    try:
        return Path(f"/proc/{pid}/comm").read_text(encoding="utf-8").strip()
    except FileNotFoundError:
        return ""
