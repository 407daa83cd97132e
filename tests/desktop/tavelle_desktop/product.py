"""Tavelle as a person starts it: the program, its settings file, its key in the keyring."""

import json
import os
import signal
import uuid

from .keyboard import KEYS
from .waiting import wait_until

APPLICATION_ID = "app.tavelle.Tavelle"
X_MODIFIERS = {0x100: 0x40, 0x200: 0x01, 0x800: 0x08, 0x1000: 0x04}  # Command, Shift, Option, Control as an X server's mask
KEY_NAMES = {0x100: "Super", 0x200: "Shift", 0x800: "Alt", 0x1000: "Control"}
VIRTUAL_KEYS = {15: "R", 17: "T", 5: "G"}


class Profile:
    def __init__(self, name="Reword", key_code=15, modifiers=0x300, prompt="Reword the text."):
        self.name = name
        self.key_code = key_code
        self.modifiers = modifiers
        self.prompt = prompt
        self.id = str(uuid.uuid4()).upper()

    def record(self):
        return {"id": self.id, "name": self.name, "keyCode": self.key_code, "modifiers": self.modifiers,
                "systemPrompt": self.prompt}  # fmt: skip

    def keys(self):
        """The keys of the hotkey in the order in which a hand presses them."""
        return [name for bit, name in KEY_NAMES.items() if self.modifiers & bit] + [VIRTUAL_KEYS[self.key_code]]

    def grab(self):
        mask = sum(mask for bit, mask in X_MODIFIERS.items() if self.modifiers & bit)
        return KEYS[VIRTUAL_KEYS[self.key_code]], mask


class Tavelle:
    def __init__(self, desktop, program, profiles=None):
        self.desktop = desktop
        self.program = program
        self.profiles = profiles if profiles is not None else [Profile()]
        self.process = None
        self._output = desktop.logs / "tavelle.out"

    @property
    def settings_file(self):
        return self.desktop.home / ".config" / "tavelle" / "settings.json"

    def configure(self, base_url, provider="custom", model="stand-in", temperature=0.7):
        self.write_settings(json.dumps({
            "provider": provider, "model": model, "baseURL": base_url, "temperature": temperature,
            "rewriteProfiles": [profile.record() for profile in self.profiles],
        }, ensure_ascii=False))  # fmt: skip

    def write_settings(self, content):
        self.settings_file.parent.mkdir(parents=True, exist_ok=True)
        self.settings_file.write_text(content, encoding="utf-8")

    def store_key(self, key, provider="custom"):
        """Puts an API key into the keyring."""
        self.store_secret(key, f"apiKey_{provider}")

    def store_secret(self, secret, account):
        """Puts a secret into the keyring; it is never an argument of a process."""
        self.desktop.processes.run("secret-tool", "store", "--label=Tavelle", "service", APPLICATION_ID,
                                   "account", account, text=secret)  # fmt: skip

    def stored_secret(self, account):
        """What the keyring holds; empty where it holds nothing."""
        return self.desktop.processes.run("secret-tool", "lookup", "service", APPLICATION_ID, "account", account, check=False)

    def start(self, under=()):
        """Starts it, under another command where one is given."""
        with open(self._output, "ab") as output:
            self.process = self.desktop.processes.start("tavelle", *under, self.program, output=output)
        return self

    def wait_ready(self, within=15.0):
        """Waits until every hotkey is live."""
        for profile in self.profiles:
            self.wait_hotkey(profile, within)
        return self

    def wait_hotkey(self, profile, within=15.0):
        def live():
            if self.process.poll() is not None:
                raise AssertionError(f"Tavelle ended with {self.process.returncode}; it said:\n{self.output()}")
            return self.desktop.screen.hotkey_is_taken(*profile.grab())

        wait_until(live, lambda: f"the hotkey of {profile.name!r} is live; Tavelle said:\n{self.output()}", within)

    def press_hotkey(self, profile=None, keyboard=None):
        (keyboard or self.desktop.keyboard).chord(*(profile or self.profiles[0]).keys())

    def output(self):
        return self._output.read_text(encoding="utf-8", errors="replace") if self._output.exists() else ""

    def runs(self):
        return self.process is not None and self.process.poll() is None

    def end_kindly(self):
        """Asks it to end, as a session does that closes."""
        os.kill(self.process.pid, signal.SIGTERM)

    def stop(self):
        if self.process:
            self.desktop.processes.end(self.process)
