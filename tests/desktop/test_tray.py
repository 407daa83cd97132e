"""The status item in a real panel's tray, by click."""

from tavelle_desktop.journey import TEXT, DesktopTest
from tavelle_desktop.model import reworded
from tavelle_desktop.processes import wait_for_end
from tavelle_desktop.tray import FIRST, LAST, Tray
from tavelle_desktop.waiting import wait_until


class StatusItem(DesktopTest):
    def setUp(self):
        super().setUp()
        self.start_tavelle()
        self.tray = Tray(self.desktop)
        self.tray.wait_for_item()

    def test_its_menu_has_three_entries(self):
        self.assertEqual(self.tray.menu_labels(), ["Reword Selection", None, "Settings...", None, "Quit Tavelle"])

    def test_either_button_opens_its_menu(self):
        for button in (1, 3):
            self.tray.open_menu(button)
            self.desktop.keyboard.chord("Escape")
            self.tray.wait_for_closed_menu()

    def test_reword_selection_rewords_with_the_first_profile(self):
        self.open()
        self.own_clipboard()
        since = len(self.desktop.notifications.sent)
        self.tray.choose(FIRST)
        self.wait_for_last(since=since)
        self.assertEqual(self.model.texts(), [TEXT])
        self.assert_clipboard_is_back()
        self.assertEqual(self.app.text(), reworded(TEXT))

    def test_quit_ends_it(self):
        self.tray.choose(LAST)
        self.assertEqual(wait_for_end(self.tavelle.process, "Tavelle ends"), 0)
        wait_until(lambda: not self.desktop.tray_items(), "the status item has gone")

    def test_it_comes_back_with_a_panel_that_starts_again(self):
        self.desktop.end_tray()
        self.desktop.start_tray()
        wait_until(self.desktop.tray_items, "the status item again")
        self.open()
        self.tray.choose(FIRST)
        self.wait_for_last()
        self.assertEqual(self.app.text(), reworded(TEXT))
