"""A hotkey recorded by pressing it: any key, also one that is a hotkey already, and nothing else feels the press."""

from tavelle_desktop.product import Profile
from tavelle_desktop.screen import Screen
from tavelle_desktop.settings_journey import SettingsWindowTest
from tavelle_desktop.settings_window import RECORDING
from tavelle_desktop.tray import Tray
from tavelle_desktop.waiting import stays, wait_until

SECOND_ROW = "Second ⌘⇧T"
COMMAND_SHIFT_T = ("Super", "Shift", "T")


class Recording(SettingsWindowTest):
    def start_tavelle(self):
        self.reword, self.second = Profile(), Profile("Second", key_code=17)
        return super().start_tavelle([self.reword, self.second])

    def setUp(self):
        super().setUp()
        self.settings.open()

    def start_recording(self):
        self.settings.press("⌘⇧R")
        self.settings.wait_until_shown("push button", RECORDING)

    def move_into_window(self):
        place = self.settings.place
        self.desktop.pointer.move(place.x + place.width / 2, place.y + place.height / 2)

    def wait_for_keyboard(self, is_grabbed):
        """Until the window has every key for itself, or does not any more."""
        wait_until(lambda: self.desktop.screen.keyboard_is_grabbed() == is_grabbed, f"the keyboard is grabbed: {is_grabbed}")

    def wait_for_hotkey(self, shown, key_code, modifiers, index=0):
        self.settings.wait_until_shown("push button", shown)
        self.wait_for_stored(f"the hotkey {shown}", lambda _: self.stored_hotkey(index) == (key_code, modifiers))

    def assert_nothing_ran(self):
        self.assertEqual(self.model.requests, [])
        self.assertEqual(self.desktop.notifications.bodies(), [])


class Keys(Recording):
    def test_each_key_alone_is_taken_whatever_else_it_does(self):
        """Each of them is a hotkey from then on, also while the next one is recorded."""
        shown = "⌘⇧R"
        for key, code in (("Escape", 53), ("Return", 36), ("Tab", 48), ("space", 49), ("F13", 105), ("KP_1", 83),
                          ("KP_Enter", 76), ("KP_Add", 69), ("Up", 126), ("BackSpace", 51)):  # fmt: skip
            self.settings.record(shown, key)
            shown = f"Key{code}"
            self.wait_for_hotkey(shown, code, 0)
        self.assertTrue(self.settings.is_open())
        self.assert_nothing_ran()

    def test_the_keys_that_the_window_listens_to_are_taken_as_well(self):
        self.settings.record("⌘⇧R", "Control", "W")
        self.wait_for_hotkey("⌃W", 13, 0x1000)
        self.settings.record("⌃W", "Alt", "F2")
        self.wait_for_hotkey("⌥Key120", 120, 0x800)
        self.assertTrue(self.settings.is_open())

    def test_a_lock_is_no_part_of_it_and_a_modifier_alone_is_waited_past(self):
        self.start_recording()
        for key in ("CapsLock", "Shift", "Super"):
            self.desktop.keyboard.chord(key)
        self.desktop.keyboard.chord("Super", "G")
        self.wait_for_hotkey("⌘G", 5, 0x100)

    def test_nothing_else_gets_the_key_that_is_recorded(self):
        self.settings.type_into("Name:", "Typed")
        self.start_recording()
        self.desktop.keyboard.type("g")
        self.wait_for_hotkey("G", 5, 0)
        self.desktop.keyboard.type("h")
        self.settings.wait_for_text("Name:", "Typedh")

    def test_it_is_given_to_the_profile_that_is_chosen_meanwhile(self):
        self.start_recording()
        self.settings.select_row(SECOND_ROW)
        self.settings.wait_for_text("Name:", "Second")
        self.desktop.keyboard.chord("Super", "G")
        self.wait_for_hotkey("⌘G", 5, 0x100, index=1)
        self.assertEqual(self.stored_hotkey(0), (15, 0x300))


class KeysThatAreHotkeysAlready(Recording):
    def test_one_of_another_profile_is_recorded_and_told_as_a_conflict(self):
        self.settings.record("⌘⇧R", *COMMAND_SHIFT_T)
        self.wait_for_hotkey("⌘⇧T", 17, 0x300)
        self.settings.wait_for_label(lambda text: text == 'Hotkey conflicts with "Second"', "the conflict")
        self.assert_nothing_ran()

    def test_the_profiles_own_is_recorded_again_with_the_pointer_elsewhere(self):
        self.start_recording()
        self.move_into_window()
        self.desktop.pointer.move(5, 790)
        self.desktop.keyboard.chord("Super", "Shift", "R")
        self.wait_for_hotkey("⌘⇧R", 15, 0x300)
        self.assert_nothing_ran()
        self.assert_hotkeys_are_alive(self.reword)

    def test_one_of_another_program_is_recorded_and_told_as_taken(self):
        other = self._closed_later(Screen(self.desktop.display_name))
        other.take_hotkey(*Profile(key_code=5).grab())
        self.settings.record("⌘⇧R", "Super", "Shift", "G")
        self.wait_for_hotkey("⌘⇧G", 5, 0x300)
        self.wait_for_line("Failed to register hotkey for profile 'Reword': -9878\n")
        self.assert_hotkeys_are_alive(self.second)

    def test_a_new_one_that_is_held_on_runs_nothing(self):
        """The keys repeat after they have become a hotkey."""
        self.start_recording()
        with self.desktop.keyboard.held("Super", "Shift", "G"):
            self.wait_for_hotkey("⌘⇧G", 5, 0x300)
            self.tavelle.wait_hotkey(Profile(key_code=5))
            stays(lambda: not self.desktop.notifications.bodies(), "a run has begun", during=1.5)
        self.wait_for_keyboard(is_grabbed=False)
        self.assert_nothing_ran()
        self.assert_hotkeys_are_alive(Profile(key_code=5))


class AnotherWindowMeanwhile(Recording):
    def test_has_the_keyboard_and_the_hotkeys_while_recording_waits(self):
        self.start_recording()
        app = self.scripted()
        self.wait_for_keyboard(is_grabbed=False)
        self.desktop.keyboard.chord("G")
        wait_until(lambda: app.keys, "the letter arrives in the other window")
        self.press_and_wait()
        app.wait_for_paste()
        self.settings.wait_until_shown("push button", RECORDING)
        self.desktop.screen.activate(self.settings.window)
        self.record_at_last()

    def test_has_its_menus_while_recording_waits(self):
        self.move_into_window()
        self.start_recording()
        self.wait_for_keyboard(is_grabbed=True)
        Tray(self.desktop).open_menu()
        self.desktop.keyboard.chord("Escape")
        self.wait_for_keyboard(is_grabbed=False)
        self.move_into_window()
        self.record_at_last()

    def record_at_last(self):
        self.wait_for_keyboard(is_grabbed=True)
        self.desktop.keyboard.chord(*COMMAND_SHIFT_T)
        self.wait_for_hotkey("⌘⇧T", 17, 0x300)

    def test_has_the_keyboard_once_the_window_is_closed_in_mid_recording(self):
        self.start_recording()
        app = self.scripted()
        self.settings.close_by_its_button()
        self.desktop.keyboard.chord("G")
        wait_until(lambda: app.keys, "the letter arrives in the other window")
        self.settings.open().wait_until_shown("push button", RECORDING)
        self.desktop.keyboard.chord("Super", "G")
        self.wait_for_hotkey("⌘G", 5, 0x100)
