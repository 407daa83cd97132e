"""Profiles in the settings window: many of them, with names and prompts of any kind, typed and pasted."""

from tavelle_desktop.product import Profile
from tavelle_desktop.settings_journey import SettingsWindowTest
from tavelle_desktop.waiting import wait_until

NAMES = {
    "emoji": "👩‍👩‍👧 é 🇫🇷",
    "right to left": "שלום עולם",
    "markup": '<b>bold</b> &amp; "quoted" %s',
    "lines": "two\nlines",
    "nothing": "",
}
LINE = "Keep the meaning, the language and the tone of the text, whatever it says.\n"


class Names(SettingsWindowTest):
    def test_are_shown_and_stored_as_they_are(self):
        self.settings.open()
        for kind, name in NAMES.items():
            with self.subTest(kind):
                if name:
                    self.paste_into("Name:", name)
                else:
                    self.settings.select_all("Name:")
                    self.desktop.keyboard.chord("BackSpace")
                self.settings.wait_for_text("Name:", name)
                self.wait_for_stored(f"the name {name!r}", lambda stored, name=name: stored["rewriteProfiles"][0]["name"] == name)
                self.settings.wait_until_shown("list item", f"{name} ⌘⇧R")

    def test_are_told_as_they_are_in_a_conflict(self):
        self.settings.open()
        self.paste_into("Name:", NAMES["markup"])
        self.settings.press("Add Profile")
        self.settings.record("None", "Super", "Shift", "R")
        self.settings.wait_for_label(lambda text: text == f'Hotkey conflicts with "{NAMES["markup"]}"', "the conflict")


class Typing(SettingsWindowTest):
    """In the middle of a text, as fast as keys can be pressed: each of them stores all profiles."""

    def test_a_name_keeps_its_cursor_and_every_letter(self):
        self.check("Name:", "name", "the quick brown fox jumps over the lazy dog")

    def test_a_prompt_keeps_its_cursor_and_every_letter(self):
        self.check("Prompt", "systemPrompt", "one line\nand another\n" * 3)

    def check(self, title, member, middle):
        self.settings.open()
        self.settings.type_into(title, "ad")
        self.desktop.keyboard.chord("Left")
        self.desktop.keyboard.type(middle)
        self.settings.wait_for_text(title, f"a{middle}d")
        self.wait_for_stored(title, lambda stored: stored["rewriteProfiles"][0][member] == f"a{middle}d")


class Hundred(SettingsWindowTest):
    def start_tavelle(self):
        others = [Profile(f"Number {number}", key_code=0, modifiers=0) for number in range(2, 101)]
        self.configure_tavelle([Profile(), *others]).start().wait_hotkey(self.tavelle.profiles[0])

    def test_are_shown_chosen_renamed_added_and_removed(self):
        self.settings.open().wait_until_shown("list item", "Number 100 None")
        self.assertEqual(len(self.names_shown()), 100)
        self.settings.select_row("Reword ⌘⇧R")
        self.desktop.keyboard.chord("End")
        self.desktop.keyboard.chord("space")
        self.settings.wait_for_text("Name:", "Number 100")
        self.settings.type_into("Name:", "The last")
        self.settings.wait_until_shown("list item", "The last None")
        self.settings.press("Add Profile")
        self.settings.wait_for_text("Name:", "New Profile")
        self.assertEqual(self.names_shown()[-2:], ["The last None", "New Profile None"])
        self.settings.press("Remove Profile")
        self.settings.wait_for_text("Name:", "Reword")
        self.wait_for_stored("the hundred", lambda stored: [one["name"] for one in stored["rewriteProfiles"]] == [
            "Reword", *(f"Number {number}" for number in range(2, 100)), "The last"])  # fmt: skip
        self.assert_hotkeys_are_alive()

    def names_shown(self):
        return [name for role, name in self.settings.shown() if role == "list item" and not name.endswith(":")]


class LongPrompt(SettingsWindowTest):
    def test_of_a_megabyte_is_pasted_edited_and_sent(self):
        prompt = LINE * (2**20 // len(LINE) + 1)
        self.settings.open()
        self.paste_into("Prompt", prompt)
        self.wait_for_prompt(prompt)
        self.desktop.keyboard.type("end")
        self.wait_for_prompt(prompt + "end")
        self.assert_hotkeys_are_alive()
        self.assertEqual(self.model.requests[-1][1]["messages"][0]["content"], prompt + "end")
        self.desktop.screen.activate(self.settings.window)
        self.settings.press("Reset to Default")
        wait_until(lambda: len(self.stored_prompt()) < 1000, "the default prompt is stored", within=60)

    def stored_prompt(self):
        return self.stored_profiles()[0]["systemPrompt"]

    def wait_for_prompt(self, prompt):
        wait_until(lambda: self.stored_prompt() == prompt,
                   lambda: f"the prompt of {len(prompt)} characters; stored are {len(self.stored_prompt())}",
                   within=60)  # fmt: skip
