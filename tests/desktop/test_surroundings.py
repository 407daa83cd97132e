"""A desktop on which something is missing, locked, broken or ends: no crash, no hang, nothing lost."""

import json
import os

from tavelle_desktop.journey import TEXT, DesktopTest, program
from tavelle_desktop.model import reworded
from tavelle_desktop.processes import wait_for_end
from tavelle_desktop.product import Tavelle
from tavelle_desktop.session import Options
from tavelle_desktop.settings_window import SettingsWindow
from tavelle_desktop.waiting import wait_until

NO_FILE_RIGHTS_FOR_ROOT = ["setpriv", "--bounding-set=-dac_override,-dac_read_search", "--inh-caps=-dac_override,-dac_read_search"]


class NoNotificationDaemon(DesktopTest):
    options = Options(notifications=False)

    def test_the_text_is_reworded_all_the_same(self):
        self.start_tavelle()
        app = self.scripted()
        self.own_clipboard()
        for number in (1, 2):
            self.tavelle.press_hotkey()
            self.assertEqual(app.wait_for_paste(number), reworded(TEXT))
            self.wait_for_clipboard()
        self.assertIn("there is no notification service on the session bus", self.tavelle.output())


class NoSecretService(DesktopTest):
    options = Options(keyring="absent")

    def test_a_request_goes_without_a_key(self):
        self.start_tavelle()
        self.open()
        self.own_clipboard()
        self.press_and_wait()
        self.assertNotIn("Authorization", self.model.requests[0][0])
        self.assert_clipboard_is_back()
        self.assertEqual(self.app.text(), reworded(TEXT))
        self.assertIn("no Secret Service answers on the session bus", self.tavelle.output())


class LockedKeyring(DesktopTest):
    def test_a_request_goes_without_a_key(self):
        self.configure_tavelle()
        self.desktop.lock_keyring()
        self.tavelle.start().wait_ready()
        self.open()
        self.own_clipboard()
        self.press_and_wait(within=20)
        self.assertNotIn("Authorization", self.model.requests[0][0])
        self.assert_clipboard_is_back()
        self.assertEqual(self.app.text(), reworded(TEXT))


class NoTray(DesktopTest):
    options = Options(tray=False)

    def test_the_status_item_comes_when_a_tray_does(self):
        self.start_tavelle()
        self.open()
        self.press_and_wait()
        self.assertEqual(self.app.text(), reworded(TEXT))
        self.assertIn("there is no panel yet that shows icons", self.tavelle.output())
        self.desktop.start_tray()
        wait_until(self.desktop.tray_items, "a status item")
        self.assert_rewords(reworded(TEXT))


class SessionBus(DesktopTest):
    def test_rewording_goes_on_when_the_session_bus_has_ended(self):
        self.start_tavelle()
        app = self.scripted()
        self.own_clipboard()
        self.desktop.end_session_bus()
        for number in (1, 2):
            self.tavelle.press_hotkey()
            self.assertEqual(app.wait_for_paste(number, within=20), reworded(TEXT))
            self.wait_for_clipboard()
        self.assertTrue(self.tavelle.runs(), self.tavelle.output())
        self.assertEqual(self.tavelle.output().count("Tavelle: the session bus has gone"), 1)

    def test_it_starts_and_works_without_a_session_bus(self):
        self.configure_tavelle()
        self.own_clipboard()
        self.desktop.end_session_bus()
        self.tavelle.start().wait_ready()
        app = self.scripted()
        self.tavelle.press_hotkey()
        self.assertEqual(app.wait_for_paste(within=20), reworded(TEXT))
        self.assertTrue(self.tavelle.runs(), self.tavelle.output())
        self.assertIn("there is no session bus", self.tavelle.output())


class Settings(DesktopTest):
    def test_a_damaged_file_is_kept_aside_and_told(self):
        self.tavelle = Tavelle(self.desktop, program())
        damaged = '{"provider": "custom", "model": "half a fi'
        self.tavelle.write_settings(damaged)
        self.tavelle.start().wait_ready()
        folder = self.tavelle.settings_file.parent
        wait_until(lambda: any(file.read_text() == damaged for file in folder.iterdir()), "the damaged file is kept")
        self.assertIn("settings.json", self.tavelle.output())

    def test_profiles_that_cannot_be_read_are_kept_beside_the_first_one(self):
        self.configure_tavelle()
        written = json.loads(self.tavelle.settings_file.read_text())
        written["rewriteProfiles"][0]["id"] = "no UUID"
        self.tavelle.write_settings(json.dumps(written))
        self.tavelle.start().wait_ready()
        stored = json.loads(self.tavelle.settings_file.read_text())
        self.assertEqual(stored["damagedRewriteProfiles"], written["rewriteProfiles"])
        self.assertEqual([profile["name"] for profile in stored["rewriteProfiles"]], ["Reword"])

    def test_a_first_start_has_one_profile_and_writes_it(self):
        self.tavelle = Tavelle(self.desktop, program())
        self.tavelle.start().wait_ready()
        wait_until(self.tavelle.settings_file.exists, "the settings file")
        wait_until(lambda: '"Reword"' in self.tavelle.settings_file.read_text(), "the first profile in it")

    def test_a_folder_that_cannot_be_written_stops_nothing(self):
        self.tavelle = Tavelle(self.desktop, program())
        folder = self.tavelle.settings_file.parent
        folder.mkdir(parents=True)
        folder.chmod(0o500)
        self.addCleanup(folder.chmod, 0o700)
        self.tavelle.start(NO_FILE_RIGHTS_FOR_ROOT if os.getuid() == 0 else []).wait_ready()
        self.assertEqual(list(folder.iterdir()), [])
        self.assertIn("settings.json", self.tavelle.output())

    def test_a_file_that_cannot_be_written_is_read(self):
        self.configure_tavelle()
        file = self.tavelle.settings_file
        before = file.read_bytes()
        file.chmod(0o400)
        file.parent.chmod(0o500)
        self.addCleanup(file.parent.chmod, 0o700)
        self.tavelle.start(NO_FILE_RIGHTS_FOR_ROOT if os.getuid() == 0 else []).wait_ready()
        self.open()
        self.press_and_wait()
        self.assertEqual(self.app.text(), reworded(TEXT))
        self.assertEqual(file.read_bytes(), before)


class SecondStart(DesktopTest):
    options = Options(accessibility=True)

    def test_there_is_never_a_second_instance(self):
        self.start_tavelle()
        app = self.scripted()
        settings = SettingsWindow(self.desktop, self.tavelle)
        for number in range(1, 4):
            second = self.desktop.processes.start("second", program())
            self.assertEqual(wait_for_end(second, "the second one ends"), 0)
            self.assertTrue(self.tavelle.runs())
            settings.wait_for().close()
            self.desktop.screen.activate(app.window)
            self.press_and_wait()
            self.assertEqual(app.wait_for_paste(number), reworded(TEXT))
        self.assertEqual((len(self.model.requests), len(app.pasted)), (3, 3))

    def test_two_at_the_same_moment_are_one(self):
        self.configure_tavelle()
        pair = [self.desktop.processes.start(f"tavelle-{number}", program()) for number in (1, 2)]
        wait_until(lambda: sum(process.poll() is None for process in pair) == 1, "one of them has ended", within=15)
        self.tavelle.process = next(process for process in pair if process.poll() is None)
        self.tavelle.wait_ready()
        SettingsWindow(self.desktop, self.tavelle).wait_for().close()  # the one that ended asked the other for it
        app = self.scripted()
        self.press_and_wait()
        self.assertEqual(app.wait_for_paste(), reworded(TEXT))
        self.assertEqual(len(self.model.requests), 1)

    def test_there_is_no_second_instance_without_a_session_bus(self):
        self.configure_tavelle()
        self.desktop.end_session_bus()
        self.tavelle.start().wait_ready()
        second = self.desktop.processes.start("second", program())
        wait_for_end(second, "the second one ends")
        self.assertTrue(self.tavelle.runs())


class Ending(DesktopTest):
    def test_it_ends_kindly_when_the_session_ends(self):
        self.start_tavelle()
        self.tavelle.end_kindly()
        wait_for_end(self.tavelle.process, "Tavelle ends", within=5)
        self.assertFalse(self.desktop.screen.hotkey_is_taken(*self.tavelle.profiles[0].grab()))

    def test_it_ends_with_the_screen(self):
        self.start_tavelle()
        self.desktop.end_screen()
        self.assertEqual(wait_for_end(self.tavelle.process, "Tavelle ends", within=5), 1)
        self.assertIn("Tavelle: the X11 display is gone", self.tavelle.output())
