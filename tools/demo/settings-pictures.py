#!/usr/bin/python3
"""Pictures of the settings window for the documentation: every tab and state, light and dark.

usage: tools/demo/settings-pictures.py [--program FILE] [FOLDER]        FOLDER is docs/images unless given
"""

import argparse
import base64
import itertools
import os
import sys
import threading
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tests" / "desktop"))

from tavelle_desktop.model import Model, answer  # noqa: E402
from tavelle_desktop.product import Profile, Tavelle  # noqa: E402
from tavelle_desktop.providers import PROVIDERS  # noqa: E402
from tavelle_desktop.session import Desktop, Options  # noqa: E402
from tavelle_desktop.settings_window import RECORDING, SettingsWindow  # noqa: E402
from tavelle_desktop.stand_in import StandIn  # noqa: E402

PROFILES = [
    Profile("Reword", prompt="Reword the following text. Keep its meaning and its language. Return ONLY the reworded text."),
    Profile("English", key_code=17, prompt="Translate the following text into English. Return ONLY the translation."),
    Profile("Shorter", key_code=5, prompt="Say the following in half as many words. Return ONLY the shorter text."),
]
ADDRESS = "someone@example.com"
CLAIMS = base64.urlsafe_b64encode(f'{{"email":"{ADDRESS}"}}'.encode()).decode().rstrip("=")
SIGN_IN_LINK = f"tavelle://auth?token=e30.{CLAIMS}.c2lnbmF0dXJl"


class Pictures:
    """One desktop, and Tavelle on it, of which one picture after the other is taken.

    It is the program that finds the hosted service where the stand-in listens, so that somebody can sign in.
    """

    def __init__(self, desktop, program, folder, look):
        self.desktop = desktop
        self.folder = folder
        self.look = look
        self.model = Model(self.behaviour)
        self.may_answer = threading.Event()
        self.status = 200
        hosted = PROVIDERS["tavelle"]
        self.service = StandIn(desktop, port=hosted.port(program)).start()
        self.tavelle = Tavelle(desktop, hosted.program(program), PROFILES)
        self.tavelle.configure(self.model.url, model="llama3.2")
        self.tavelle.store_key("made-up key")
        self.tavelle.start().wait_ready()
        self.window = SettingsWindow(desktop, self.tavelle)

    def behaviour(self, text):
        self.may_answer.wait(60)
        return answer(text) if self.status == 200 else (self.status, b'{"error":{"message":"Incorrect API key provided"}}')

    def close(self):
        self.may_answer.set()
        self.model.close()

    def take_all(self):
        """First what takes no key: from then on the window shows what has the keyboard."""
        self.window.open()
        self.window.wait_for_text("Name:", PROFILES[0].name)
        self.take("general", looks=10)  # its scroll bar goes after a while
        self.window.choose_tab("Provider")
        self.take_connection_tests()
        self.window.choose_tab("About")
        self.window.wait_for_label(lambda text: text.startswith("Version"), "the version")
        self.take("about")
        self.take_profiles()
        self.take_provider_without_key()
        self.take_account()

    def take_profiles(self):
        window = self.window
        window.choose_tab("General")
        window.scroll_to_end()
        self.take("general-below")
        window.select_row("English ⌘⇧T")
        window.wait_for_text("Name:", "English")
        window.press("⌘⇧T")
        window.wait_until_shown("push button", RECORDING)
        self.take("recording")
        self.desktop.keyboard.chord(*PROFILES[0].keys())
        window.wait_for_label(lambda text: text == 'Hotkey conflicts with "Reword"', "the conflict")
        window.scroll_to(window.element("label", 'Hotkey conflicts with "Reword"'))
        self.take("conflict")

    def take_connection_tests(self):
        self.window.press("Test Connection")
        self.window.wait_until_shown("push button", "Testing...")
        self.take("provider-testing", looks=1)  # it turns
        self.may_answer.set()
        self.wait_for_result("Success")
        self.take("provider")
        self.status = 401
        self.window.press("Test Connection")
        self.wait_for_result("Error")
        self.take("provider-error")

    def take_without_access(self):
        self.window.open()
        self.window.scroll_to_end()
        self.window.wait_for_label(lambda text: text == "Not Granted", "that access is missing")
        self.take("general-without-access", looks=10)

    def take_provider_without_key(self):
        self.window.choose_tab("Provider")
        self.window.choose_provider("Ollama")
        self.window.wait_for_text("Model:", "llama3.2")
        self.take("provider-without-key")

    def take_account(self):
        window = self.window
        window.choose_provider("Tavelle")
        window.element("text", "Email:")
        self.take("account")
        window.type_into("Email:", ADDRESS)
        self.service.hold()
        window.press("Send Login Link")
        window.wait_until_shown("push button", "Sending...")
        self.take("account-sending")
        self.service.let_go()
        window.wait_for_label(lambda text: text == "Check your email for a login link.", "that the link is sent")
        self.take("account-link-sent")
        self.desktop.processes.run(self.tavelle.program, SIGN_IN_LINK)
        window.wait_for_label(lambda text: text == ADDRESS, "who is signed in")
        self.take("account-signed-in")

    def wait_for_result(self, beginning):
        self.window.wait_for_label(lambda text: text.startswith(beginning), beginning)

    def take(self, name, looks=2):
        self.desktop.pointer.move(5, 400)
        self.window.wait_until_still(looks)
        self.window.picture(self.folder / f"settings-{name}-{self.look}.png")


def take(program, folder, look, synthetic_keys):
    options = Options(screen="1024x760", accessibility=True, dark=look == "dark", synthetic_keys=synthetic_keys)
    with Desktop(options) as desktop:
        pictures = Pictures(desktop, program, folder, look)
        try:
            if synthetic_keys:
                pictures.take_all()
            else:
                pictures.take_without_access()
        finally:
            pictures.close()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder", nargs="?", type=Path, default=ROOT / "docs" / "images")
    parser.add_argument("--program", type=Path, default=ROOT / "build/release/bin/tavelle")
    parser.add_argument("--look", choices=("light", "dark"), help=argparse.SUPPRESS)
    parser.add_argument("--without-synthetic-keys", action="store_true", help=argparse.SUPPRESS)
    options = parser.parse_args()
    if options.look:
        take(options.program.resolve(), options.folder.resolve(), options.look, not options.without_synthetic_keys)
        return 0
    # A process can join the accessibility bus of one desktop only.
    for look, more in itertools.product(("light", "dark"), ([], ["--without-synthetic-keys"])):
        command = [sys.executable, __file__, str(options.folder), "--program", str(options.program), "--look", look, *more]
        if os.spawnv(os.P_WAIT, sys.executable, command) != 0:
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
