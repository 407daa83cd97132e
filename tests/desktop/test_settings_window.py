"""The settings window on the screen: opened, read as a screen reader reads it, and used by pointer and keys."""

from pathlib import Path

from tavelle_desktop.journey import DONE, TEXT
from tavelle_desktop.model import reworded
from tavelle_desktop.product import Profile
from tavelle_desktop.settings_journey import SettingsWindowTest
from tavelle_desktop.tray import MIDDLE, Tray
from tavelle_desktop.waiting import wait_until


class Window(SettingsWindowTest):
    def test_a_second_start_opens_it_in_the_middle_with_the_general_tab(self):
        self.settings.open()
        self.assertEqual(self.desktop.screen.title(self.settings.window), "Tavelle Settings")
        self.assertTrue(self.settings.element("page tab", "General").is_("selected"))
        self.wait_for_middle()

    def wait_for_middle(self):
        def is_in_the_middle():
            place = self.settings.place
            return abs(2 * place.x + place.width - 1280) < 4 and abs(2 * place.y + place.height - 800) < 4

        wait_until(is_in_the_middle, lambda: f"the window in the middle; it is at {self.settings.place}")

    def test_the_menu_opens_it(self):
        tray = Tray(self.desktop)
        tray.choose(MIDDLE)
        self.settings.wait_for()

    def test_its_content_is_480_by_500_points_on_every_tab(self):
        self.settings.open()
        for tab in ("General", "Provider", "About"):
            self.settings.choose_tab(tab)
            content = self.settings.content_place()
            self.assertEqual((content.width, content.height), (480, 500), tab)

    def test_its_size_cannot_be_changed(self):
        self.settings.open()
        self.assertFalse(self.desktop.screen.is_resizable(self.settings.window))

    def test_closed_and_opened_again_it_stands_where_it_stood_on_the_same_tab(self):
        self.settings.open()
        self.settings.choose_tab("Provider")
        self.wait_for_middle()
        self.settings.window.configure(x=200, y=120)
        wait_until(lambda: (self.settings.place.x, self.settings.place.y) == (200, 120), "the window is moved")
        self.settings.close()
        self.settings.open()
        wait_until(lambda: (self.settings.place.x, self.settings.place.y) == (200, 120),
                   lambda: f"the window where it stood; it is at {self.settings.place}")  # fmt: skip
        self.assertTrue(self.settings.element("page tab", "Provider").is_("selected"))

    def test_asked_for_again_it_comes_to_the_front_with_the_keyboard(self):
        self.settings.open()
        self.wait_for_middle()
        self.settings.window.configure(x=200, y=120)
        for ask in (self.settings.ask_for, lambda: Tray(self.desktop).choose(MIDDLE)):
            other = self.scripted()
            self.desktop.screen.activate(other.window)
            ask()
            wait_until(lambda: self.desktop.screen.has_keyboard(self.settings.window), "the settings window has the keyboard")
            self.assertEqual((self.settings.place.x, self.settings.place.y), (200, 120))

    def test_asked_for_again_it_comes_back_from_the_task_list(self):
        self.settings.open()
        self.desktop.screen.minimise(self.settings.window)
        self.settings.ask_for()
        wait_until(lambda: self.desktop.screen.has_keyboard(self.settings.window), "the settings window has the keyboard")
        self.assertTrue(self.desktop.screen.is_shown(self.settings.window))

    def test_the_keyboard_alone_reaches_every_control(self):
        self.settings.open()
        self.settings.choose_tab("About")
        self.settings.choose_tab("General")
        wanted = {("page tab", "General"), ("push button", "Add Profile"), ("push button", "⌘⇧R"), ("text", "Prompt"),
                  ("push button", "Reset to Default"), ("slider", "Temperature")}  # fmt: skip
        seen = set()

        def all_seen():
            self.desktop.keyboard.chord("Tab")
            seen.update(self.settings.focused())
            return wanted <= seen

        wait_until(all_seen, lambda: f"the focus on each of {wanted - seen}", within=60, every=0.1)


class Icons(SettingsWindowTest):
    """They are drawn in the colour of the text; what stands for one that is missing is not."""

    DARK = 0x90

    def start_tavelle(self):
        """On a desktop that has no icons at all."""
        data = self.desktop.folder / "data"
        data.mkdir()
        for name in ("glib-2.0", "mime", "fonts"):
            (data / name).symlink_to(Path("/usr/share") / name)
        return self.configure_tavelle().start(["env", f"XDG_DATA_DIRS={data}"]).wait_ready()

    def test_are_all_there_on_a_desktop_that_has_none(self):
        self.settings.open()
        for tab in ("General", "Provider"):
            self.settings.choose_tab(tab)
            self.desktop.pointer.move(5, 400)
            self.settings.wait_until_still()
            darkest = [self.settings.darkest(icon) for icon in self.settings.icons()]
            self.assertEqual([dark for dark in darkest if dark > self.DARK], [], tab)
        self.assertGreater(len(darkest), 3, "more than those of the tabs")


class General(SettingsWindowTest):
    def test_a_new_profile_is_named_given_a_hotkey_and_a_prompt_and_rewords_under_it(self):
        self.settings.open()
        self.settings.press("Add Profile")
        self.settings.wait_for_text("Name:", "New Profile")
        self.settings.type_into("Name:", "Shout")
        self.settings.press("None")
        self.settings.wait_until_shown("push button", "Press keys...")
        self.desktop.keyboard.chord("Super", "Shift", "T")
        self.settings.wait_until_shown("push button", "⌘⇧T")
        self.assertEqual(self.settings.text("Name:"), "Shout")
        self.settings.type_into("Prompt", "Shout it.")
        self.settings.wait_until_shown("list item", "Shout ⌘⇧T")
        self.wait_for_stored("the profile", lambda stored: [
            (one["name"], one["keyCode"], one["modifiers"], one["systemPrompt"]) for one in stored["rewriteProfiles"][1:]
        ] == [("Shout", 17, 768, "Shout it.")])  # fmt: skip

        shout = Profile("Shout", key_code=17)
        self.tavelle.wait_hotkey(shout)
        self.open()
        self.own_clipboard()
        self.press_and_wait(DONE, profile=shout)
        self.assertEqual(self.model.requests[-1][1]["messages"][0], {"role": "system", "content": "Shout it."})
        self.assertEqual(self.app.text(), reworded(TEXT))
        self.assert_clipboard_is_back()

        self.tavelle.profiles.append(shout)
        self.restart_tavelle()
        self.settings.open().wait_until_shown("list item", "Shout ⌘⇧T")

    def test_keys_that_move_and_press_are_recorded_as_any_other(self):
        self.settings.open()
        self.settings.press("Add Profile")
        hotkey = "None"
        for key, shown in (("Tab", "Key48"), ("Return", "Key36"), ("Escape", "Key53"), ("space", "Key49")):
            self.settings.press(hotkey)
            self.settings.wait_until_shown("push button", "Press keys...")
            self.desktop.keyboard.chord("Control", "Alt", key)
            hotkey = f"⌥⌃{shown}"
            self.settings.wait_until_shown("push button", hotkey)

    def test_the_temperature_goes_in_tenths_from_0_to_2(self):
        self.settings.open()
        self.settings.click("slider", "Temperature")
        wait_until(lambda: ("slider", "Temperature") in self.settings.focused(), "the slider has the keyboard")
        for keys, shown in (("Home", "0.0"), ("Right", "0.1"), ("Right", "0.2"), ("Left", "0.1"), ("End", "2.0"), ("Right", "2.0")):
            self.desktop.keyboard.chord(keys)
            self.settings.wait_until_shown("label", shown)
            self.wait_for_stored(shown, lambda stored, shown=shown: stored["temperature"] == float(shown))

    def test_fast_typing_loses_no_letter(self):
        name = "the quick brown fox jumps over the lazy dog " * 4 + "and rests"
        self.settings.open()
        self.settings.type_into("Name:", name)
        self.wait_for_stored("the name", lambda stored: stored["rewriteProfiles"][0]["name"] == name)

    def test_a_profile_is_removed_while_its_name_is_being_typed(self):
        self.settings.open()
        self.settings.press("Add Profile")
        self.settings.wait_for_text("Name:", "New Profile")
        self.settings.type_into("Name:", "Passing")
        self.settings.press("Remove Profile")
        self.settings.wait_for_text("Name:", "Reword")
        self.wait_for_stored("one profile", lambda stored: [one["name"] for one in stored["rewriteProfiles"]] == ["Reword"])
        self.assertFalse(self.settings.element("push button", "Remove Profile").is_("sensitive"))


class Provider(SettingsWindowTest):
    def setUp(self):
        super().setUp()
        self.settings.open()
        self.settings.choose_tab("Provider")

    def start_tavelle(self, profiles=None, **_settings):
        return super().start_tavelle(profiles, provider="openAI", base_url="https://api.openai.com/v1", model="gpt-4o")

    def test_a_provider_is_chosen_its_key_kept_in_the_keyring_and_the_connection_tested(self):
        self.settings.choose_provider("Custom")
        self.settings.wait_for_text("Base URL:", "")
        self.settings.type_into("Base URL:", self.model.url)
        self.settings.type_into("Model:", "stand-in")
        self.settings.select_all("API Key:")  # which the desktop's keyring starts with
        self.desktop.keyboard.type("typed key")
        self.wait_for_key("typed key")
        self.settings.press("Test Connection")
        self.settings.wait_for_label(lambda text: text == f'Success: "{reworded("Hello world")}"', "the success")
        self.assertEqual(self.model.requests[-1][0]["Authorization"], "Bearer typed key")
        self.assertNotIn("typed key", self.tavelle.settings_file.read_text(encoding="utf-8") + self.tavelle.output())

        self.restart_tavelle()
        self.settings.open()
        self.settings.choose_tab("Provider")
        self.settings.wait_for_text("Base URL:", self.model.url)
        self.settings.wait_for_text("Model:", "stand-in")
        self.assertEqual(self.stored_key(), "typed key")
