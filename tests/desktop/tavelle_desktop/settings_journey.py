"""What the tests of the settings window share: Tavelle with its window, what it has stored, and other programs around it."""

import json

from .journey import DesktopTest
from .scripted import ScriptedApplication
from .selections import Representation
from .session import Options
from .settings_window import SettingsWindow
from .waiting import wait_until


class SettingsWindowTest(DesktopTest):
    options = Options(accessibility=True)

    def setUp(self):
        super().setUp()
        self.start_tavelle()
        self.settings = SettingsWindow(self.desktop, self.tavelle)

    # What is stored.

    def stored(self):
        return json.loads(self.tavelle.settings_file.read_text(encoding="utf-8"))

    def stored_profiles(self):
        profiles = self.stored()["rewriteProfiles"]
        return json.loads(profiles["$data"]) if "$data" in profiles else profiles  # a large list is kept as one text

    def stored_hotkey(self, index=0):
        profile = self.stored_profiles()[index]
        return profile["keyCode"], profile["modifiers"]

    def wait_for_stored(self, what, is_stored):
        wait_until(lambda: is_stored(self.stored()), lambda: f"{what} is stored; stored is {shortened(self.stored())}")

    def stored_key(self, provider="custom"):
        return self.tavelle.stored_secret(f"apiKey_{provider}")

    def wait_for_key(self, key, provider="custom"):
        wait_until(lambda: self.stored_key(provider) == key,
                   lambda: f"the key {key!r} in the keyring; it holds {self.stored_key(provider)!r}")  # fmt: skip

    # What happens around the window.

    def restart_tavelle(self, under=()):
        self.tavelle.end_kindly()
        self.reader.take("CLIPBOARD")  # or it would stay for as long as the person may want to paste
        wait_until(lambda: not self.tavelle.runs(), "Tavelle has ended")
        self.settings.wait_for_closed()  # its renderer ends after it
        self.tavelle.start(under).wait_ready()

    def own_text(self, text):
        """Another program has this text in the clipboard."""
        data = text.encode()
        return self.own_clipboard([Representation(target, data) for target in ("text/plain;charset=utf-8", "UTF8_STRING")])

    def paste_into(self, name, text):
        """Pastes it in place of what the field holds."""
        owner = self.own_text(text)
        self.settings.select_all(name)
        self.desktop.keyboard.chord("Control", "V")
        return owner

    def wait_for_notification(self, body, since=0, within=30.0):
        self.desktop.notifications.wait_for(body, since, within)

    def wait_for_line(self, line):
        wait_until(lambda: line in self.tavelle.output(), lambda: f"{line!r}; Tavelle said {self.tavelle.output()!r}")

    def assert_hotkeys_are_alive(self, profile=None):
        """One run in an application that has the keyboard meanwhile."""
        app = ScriptedApplication(self.desktop, "words")
        try:
            before = len(self.model.requests)
            self.press_and_wait(profile=profile)
            self.assertEqual(self.model.texts()[before:], ["words"])
            app.wait_for_paste()
        finally:
            app.close()


def shortened(value):
    text = str(value)
    return text if len(text) < 2000 else f"{text[:1000]} ... {text[-1000:]}"
