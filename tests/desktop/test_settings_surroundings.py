"""The settings window under a hand that stays on the keyboard, on other screens, in the dark, and frozen."""

import os
import signal

from tavelle_desktop import configuration
from tavelle_desktop.product import Profile
from tavelle_desktop.session import Options
from tavelle_desktop.waiting import wait_until
from test_settings_window import SettingsWindowTest


class WithoutSyntheticKeys(SettingsWindowTest):
    options = Options(accessibility=True, synthetic_keys=False)

    def test_the_window_says_that_access_is_missing_and_tells_who_asks_for_it(self):
        self.settings.open()
        self.settings.scroll_to_end()
        self.settings.wait_for_label(lambda text: text == "Not Granted", "that access is missing")
        told = "this screen takes no synthetic keys"
        self.assertEqual(self.tavelle.output().count(told), 1)  # at the start
        self.settings.press("Grant Access")
        wait_until(lambda: self.tavelle.output().count(told) == 2, "what it needs")


class Letters(SettingsWindowTest):
    def wait_for_focus(self, role, name):
        wait_until(lambda: (role, name) in self.settings.focused(),
                   lambda: f"the focus on the {role} {name!r}; it is on {self.settings.focused()}")  # fmt: skip

    def test_of_the_titles_lead_to_their_controls(self):
        self.settings.open()
        self.settings.wait_until_shown("push button", "Reset to Default")  # the name has no mark of its letter
        self.desktop.keyboard.chord("Alt", "N")
        self.wait_for_focus("text", "Name:")
        self.desktop.keyboard.type("Named")
        self.settings.wait_for_text("Name:", "Named")
        self.desktop.keyboard.chord("Alt", "H")
        self.settings.wait_until_shown("push button", "Press keys...")
        self.desktop.keyboard.chord("Alt", "R")  # recorded, and no letter that leads anywhere
        self.settings.wait_until_shown("push button", "⌥R")
        self.desktop.keyboard.chord("Alt", "P")
        self.wait_for_focus("page tab", "Provider")
        self.desktop.keyboard.chord("Alt", "M")
        self.wait_for_focus("text", "Model:")
        self.desktop.keyboard.chord("Alt", "K")
        self.wait_for_focus("password text", "API Key:")
        self.desktop.keyboard.chord("Alt", "V")
        self.settings.wait_for_label(lambda text: text == "Gemini", "the providers to choose from")
        self.desktop.keyboard.chord("Escape")
        self.wait_for_focus("combo box", "Provider:")
        self.desktop.keyboard.chord("Alt", "G")
        self.settings.wait_until_shown("text", "Prompt")


class DarkMode(SettingsWindowTest):
    def brightness(self):
        """Of the window's pixels on the average, 0 to 255."""
        some = self.desktop.screen.pixels(self.settings.window)[:: 4 * 499]
        return sum(some) / len(some)

    def test_is_followed_while_the_window_is_open(self):
        self.settings.open()
        wait_until(lambda: self.brightness() > 200, lambda: f"a light window; its brightness is {self.brightness()}")
        for is_dark, is_shown in ((True, lambda: self.brightness() < 80), (False, lambda: self.brightness() > 200)):
            configuration.write_application_settings(self.desktop.home / ".config", is_dark)
            wait_until(is_shown, lambda is_dark=is_dark: f"the window with dark mode {is_dark}; its brightness is {self.brightness()}")


class DenseScreen(SettingsWindowTest):
    options = Options(accessibility=True, screen="1400x1300")

    def start_tavelle(self, *arguments, **settings):
        self.desktop.environment["GDK_SCALE"] = "2"
        return super().start_tavelle(*arguments, **settings)

    def wait_for_place(self, x, y):
        wait_until(lambda: (self.settings.place.x, self.settings.place.y) == (x, y),
                   lambda: f"the window at {x}, {y}; it is at {self.settings.place}")  # fmt: skip

    def test_the_window_has_its_size_in_points_and_stands_where_it_stood(self):
        self.settings.open()
        content = self.settings.content_place()
        self.assertEqual((content.width, content.height), (480, 500))
        self.assertGreater(self.settings.place.width, 2 * content.width)
        self.settings.window.configure(x=100, y=60)
        self.wait_for_place(100, 60)
        self.settings.close()
        self.settings.open()
        self.wait_for_place(100, 60)


class LargeTexts(SettingsWindowTest):
    options = Options(accessibility=True, screen="1400x1300")

    def start_tavelle(self, *arguments, **settings):
        self.desktop.processes.run("xrdb", "-merge", text="Xft.dpi: 192\n")
        return super().start_tavelle(*arguments, **settings)

    def test_have_the_window_grow(self):
        self.settings.open()
        content = self.settings.content_place()
        self.assertEqual((content.width, content.height), (960, 1000))


class LongLine(SettingsWindowTest):
    TEXT = "words without any end, " * 20_000

    def start_tavelle(self):
        return super().start_tavelle([Profile(prompt=self.TEXT)])

    def test_in_the_prompt_is_shown_and_can_be_gone_on_with(self):
        self.settings.open()
        wait_until(lambda: self.editor_height() > 150, lambda: f"an editor of many lines; it is {self.editor_height()} high")
        self.settings.click("text", "Prompt")
        self.desktop.keyboard.chord("Control", "End")
        self.desktop.keyboard.type("end")
        wait_until(lambda: self.settings.text("Prompt") == self.TEXT + "end", "the text with its new end", within=30)

    def editor_height(self):
        return self.settings.place_of("text", "Prompt").height


class Frozen(SettingsWindowTest):
    def test_it_is_told_of_once_the_person_clicks_and_opens_again(self):
        self.settings.open()
        frozen = self.settings.renderer()
        os.kill(frozen, signal.SIGSTOP)
        place = self.settings.place
        self.desktop.pointer.click(place.x + place.width / 2, place.y + place.height / 2)
        self.desktop.notifications.wait_for("The settings window did not answer. Open it again.", within=20)
        self.settings.wait_for_closed()
        self.settings.open()
        self.assertNotEqual(self.settings.renderer(), frozen)
