#!/usr/bin/python3
"""Pictures of the settings window for the README: each tab, light and dark, on a private virtual desktop.

usage: tools/demo/settings-pictures.py [--program FILE] [FOLDER]        FOLDER is docs/images unless given
"""

import argparse
import os
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tests" / "desktop"))

from tavelle_desktop.model import Model, answer  # noqa: E402
from tavelle_desktop.product import Profile, Tavelle  # noqa: E402
from tavelle_desktop.session import Desktop, Options  # noqa: E402
from tavelle_desktop.settings_window import SettingsWindow  # noqa: E402

PROFILES = [
    Profile("Reword", prompt="Reword the following text. Keep its meaning and its language. Return ONLY the reworded text."),
    Profile("English", key_code=17, prompt="Translate the following text into English. Return ONLY the translation."),
    Profile("Shorter", key_code=5, prompt="Say the following in half as many words. Return ONLY the shorter text."),
]


def take(program, folder, look):
    with Desktop(Options(screen="1024x760", accessibility=True, dark=look == "dark")) as desktop:
        model = Model(lambda text: answer(text))
        try:
            tavelle = Tavelle(desktop, program, PROFILES)
            tavelle.configure(model.url, model="llama3.2")
            tavelle.store_key("made-up key")
            tavelle.start().wait_ready()
            window = SettingsWindow(desktop, tavelle).open()
            for tab, wait in (("General", wait_for_general), ("Provider", test_connection), ("About", wait_for_about)):
                window.choose_tab(tab)
                wait(window)
                desktop.pointer.move(5, 400)
                window.wait_until_still()
                window.picture(folder / f"settings-{tab.lower()}-{look}.png")
        finally:
            model.close()


def wait_for_general(window):
    window.wait_for_text("Name:", PROFILES[0].name)


def test_connection(window):
    window.press("Test Connection")
    window.wait_for_label(lambda text: text.startswith("Success"), "the success")


def wait_for_about(window):
    window.wait_for_label(lambda text: text.startswith("Version"), "the version")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder", nargs="?", type=Path, default=ROOT / "docs" / "images")
    parser.add_argument("--program", type=Path, default=ROOT / "build/release/bin/tavelle")
    parser.add_argument("--look", choices=("light", "dark"), help=argparse.SUPPRESS)
    options = parser.parse_args()
    if options.look:
        take(options.program.resolve(), options.folder.resolve(), options.look)
        return 0
    # A process can join the accessibility bus of one desktop only.
    for look in ("light", "dark"):
        command = [sys.executable, __file__, str(options.folder), "--program", str(options.program), "--look", look]
        if os.spawnv(os.P_WAIT, sys.executable, command) != 0:
            return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
