"""The program that draws the settings window is missing, ends or stands still: it is told, and nothing else suffers."""

import os
import shutil
import signal

from tavelle_desktop.journey import program
from tavelle_desktop.settings_journey import SettingsWindowTest
from tavelle_desktop.waiting import wait_until

NOT_OPENED = "The settings window could not be opened."
ENDED = "The settings window has ended. Open it again."
NO_ANSWER = "The settings window did not answer. Open it again."


class Missing(SettingsWindowTest):
    def start_tavelle(self):
        """From a folder of its own, in which there is everything but the window's program."""
        self.configure_tavelle()
        self.folder = self.desktop.home / "program" / "bin"
        self.folder.mkdir(parents=True)
        self.tavelle.program = shutil.copy2(program(), self.folder)
        (self.folder / "tavelle-transfers").symlink_to(program().with_name("tavelle-transfers"))
        return self.tavelle.start().wait_ready()

    def test_it_is_told_and_opens_once_it_is_there(self):
        self.settings.ask_for()
        self.wait_for_notification(NOT_OPENED)
        self.wait_for_line(f"Tavelle: {NOT_OPENED} (")
        self.assertIn("No such file or directory", self.tavelle.output())
        self.assert_hotkeys_are_alive()
        (self.folder / "tavelle-settings").symlink_to(program().with_name("tavelle-settings"))
        self.settings.open()


class RendererTest(SettingsWindowTest):
    def open_with_state(self):
        """Another tab than the first, with a field that was typed into."""
        self.settings.open()
        self.settings.choose_tab("Provider")
        self.settings.type_into("Model:", "typed")
        self.renderer = self.settings.renderer()

    def assert_opens_again_with_its_state(self):
        self.settings.open()
        self.assertNotIn(self.settings.renderer(), (None, self.renderer))
        self.assertTrue(self.settings.element("page tab", "Provider").is_("selected"))
        self.assertEqual(self.settings.text("Model:"), "typed")

    def assert_told(self, trouble, cause):
        self.wait_for_notification(trouble)
        self.wait_for_line(f"Tavelle: {trouble} ({cause})\n")
        self.assertEqual(self.desktop.notifications.bodies().count(trouble), 1)


class Killed(RendererTest):
    def kill(self):
        os.kill(self.renderer, signal.SIGKILL)
        self.assert_told(ENDED, "it has closed the connection")

    def test_while_the_window_is_open(self):
        self.open_with_state()
        self.kill()
        self.settings.wait_for_closed()
        self.assert_hotkeys_are_alive()
        self.assert_opens_again_with_its_state()

    def test_while_the_window_is_closed(self):
        self.open_with_state()
        self.settings.close()
        self.kill()
        self.assert_hotkeys_are_alive()
        self.assert_opens_again_with_its_state()


class Frozen(RendererTest):
    def freeze(self):
        os.kill(self.renderer, signal.SIGSTOP)
        self.assert_hotkeys_are_alive()

    def open_in_vain(self):
        self.settings.ask_for()
        self.assert_told(NO_ANSWER, "no answer in time")
        wait_until(lambda: self.settings.renderer() is None, "the frozen renderer has been ended")
        self.settings.wait_for_closed()
        self.assert_hotkeys_are_alive()

    def test_while_the_window_is_open(self):
        self.open_with_state()
        self.freeze()
        self.open_in_vain()
        self.assert_opens_again_with_its_state()

    def test_while_the_window_is_closed(self):
        self.open_with_state()
        self.settings.close()
        self.freeze()
        self.open_in_vain()
        self.assert_opens_again_with_its_state()

    def test_it_ends_with_tavelle_all_the_same(self):
        self.open_with_state()
        os.kill(self.renderer, signal.SIGSTOP)
        self.tavelle.end_kindly()
        wait_until(lambda: self.settings.renderer() is None, "the frozen renderer has ended")


class Ending(RendererTest):
    def test_it_ends_with_tavelle(self):
        self.open_with_state()
        self.tavelle.end_kindly()
        wait_until(lambda: self.settings.renderer() is None, "the renderer has ended")

    def test_it_is_not_there_before_the_window_is_opened(self):
        self.assertIsNone(self.settings.renderer())
