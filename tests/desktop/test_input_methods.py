"""The settings window under input methods: a text in the making is not disturbed by each letter being stored."""

from tavelle_desktop.configuration import add_application_settings
from tavelle_desktop.product import Profile
from tavelle_desktop.waiting import wait_until
from test_settings_window import SettingsWindowTest

TYPED_OVER = ["apostrophe", "E", "T"]  # on a keyboard with dead keys: "é" and "t"
HANGUL = ["G", "K", "S", "R", "M", "F"]  # on the Korean keyboard: "한글"


class InputMethodTest(SettingsWindowTest):
    def write(self, name, *keys):
        """Key by key, in place of what the field holds."""
        self.settings.select_all(name)
        self.desktop.keyboard.strike(*keys)

    def wait_for_profile(self, **expected):
        self.wait_for_stored(f"the profile with {expected}", lambda stored: expected.items() <= stored["rewriteProfiles"][0].items())


class DeadKeys(InputMethodTest):
    def test_write_into_every_field(self):
        self.desktop.set_layout("us", "-variant", "intl")
        self.settings.open()
        for name, field in (("Name:", "name"), ("Prompt", "systemPrompt")):
            self.write(name, *TYPED_OVER * 20)
            self.settings.wait_for_text(name, "ét" * 20)
            self.wait_for_profile(**{field: "ét" * 20})
        self.settings.choose_tab("Provider")
        self.write("API Key:", *TYPED_OVER * 3)
        wait_until(lambda: self.stored_key() == "ét" * 3, lambda: f"the key in the keyring; it holds {self.stored_key()!r}")

    def test_wait_for_their_letter_while_the_window_changes_around_them(self):
        self.desktop.set_layout("us", "-variant", "intl")
        self.settings.open()
        self.write("Name:", "A", "apostrophe")
        self.settings.wait_until_shown("list item", "a ⌘⇧R")  # drawn anew, with the accent still in the making
        self.desktop.keyboard.strike("E", "T")
        self.settings.wait_for_text("Name:", "aét")
        self.wait_for_profile(name="aét")


class ComposeKey(InputMethodTest):
    def test_writes_into_a_field(self):
        self.desktop.set_layout("us", "-option", "compose:ralt")
        self.settings.open()
        self.write("Name:", *["AltGr", "apostrophe", "E", "T"] * 10)
        self.settings.wait_for_text("Name:", "ét" * 10)
        self.wait_for_profile(name="ét" * 10)


class InputMethod(InputMethodTest):
    """IBus, with an engine that keeps each syllable open until the next begins.

    Its module loses keys in a bare field of the toolkit, too: those that come fast, the first over a selection, and those
    that delete. So it starts with nothing to delete, and sees each key on the screen before the next.
    """

    heavy = True

    def start_tavelle(self):
        self.desktop.environment["GTK_IM_MODULE"] = "ibus"
        add_application_settings(self.desktop.home / ".config", "[org/freedesktop/ibus/engine/hangul]\ninitial-input-mode='hangul'\n")
        self.desktop.processes.start("input-method", "ibus-daemon", "--panel=disable")
        wait_until(self.has_engine, "the input method's engine", within=20, every=0.2)
        return super().start_tavelle([Profile(name="", prompt="")])

    def has_engine(self):
        self.desktop.processes.run("ibus", "engine", "hangul", check=False)
        return self.desktop.processes.run("ibus", "engine", check=False).strip() == "hangul"

    def strike_and_see(self, *keys):
        for key in keys:
            before = self.desktop.screen.pixels(self.settings.window)
            self.desktop.keyboard.chord(key)
            wait_until(lambda before=before: self.desktop.screen.pixels(self.settings.window) != before, f"{key} is on the screen")

    def test_composes_syllables_in_the_name_and_in_the_prompt(self):
        self.settings.open()
        for name, field in (("Name:", "name"), ("Prompt", "systemPrompt")):
            self.settings.select_all(name)
            self.strike_and_see(*HANGUL * 20, "space")
            self.settings.wait_for_text(name, "한글" * 20 + " ")
            self.wait_for_profile(**{field: "한글" * 20 + " "})
