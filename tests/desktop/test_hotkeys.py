"""Hotkeys as hands press them: held, repeated, with locks on, under every layout, and those that another program has."""

import threading
import time

from Xlib import X

from tavelle_desktop import apps
from tavelle_desktop.journey import TEXT, DesktopTest
from tavelle_desktop.model import answer, reworded
from tavelle_desktop.product import Profile
from tavelle_desktop.screen import Screen
from tavelle_desktop.session import Options
from tavelle_desktop.waiting import stays, wait_until

SECOND = Profile("Second", key_code=17)


class HeldOnAKeyboardOfItsOwn(DesktopTest):
    """The person's keyboard is another device than the one that synthetic keys come from, as it is on a real desktop."""

    options = Options(physical_keyboard=True)

    def test_survives_a_hotkey_held_down_long(self):
        self.start_tavelle()
        self.open()
        self.own_clipboard()
        with self.desktop.keyboard.held(*self.tavelle.profiles[0].keys()):
            self.wait_for_last()
            stays(self.tavelle.runs, "Tavelle ended", during=1.5)
        self.assert_nothing_is_damaged()
        self.assert_rewords(reworded(TEXT))

    def test_survives_a_hotkey_let_go_at_any_moment(self):
        self.start_tavelle()
        self.open()
        for order in ("key first", "modifiers first"):
            for after in (0, 0.001, 0.002, 0.005, 0.01, 0.02, 0.05, 0.14, 0.15, 0.16, 0.2, 0.3, 0.35, 0.6):
                with self.subTest(order=order, after=after):
                    self.check_let_go(order, after)

    def test_types_as_before_after_a_long_hold(self):
        self.start_tavelle()
        app = self.scripted("words")
        with self.desktop.keyboard.held(*self.tavelle.profiles[0].keys()):
            self.wait_for_last()
            stays(self.tavelle.runs, "Tavelle ended", during=0.8)
        # Sooner than after the ten seconds of silence in which Tavelle gives up on a release.
        wait_until(lambda: not self.desktop.screen.keyboard_is_grabbed(), "the keyboard is free again", within=8)
        before = len(app.keys)
        self.desktop.keyboard.chord("T")
        wait_until(lambda: len(app.keys) > before, "the letter arrives")
        self.assertEqual(app.keys[before:], [(28, 0)])

    def check_let_go(self, order, after):
        self.model.requests.clear()
        self.model.behaviour = lambda _text: answer(TEXT)  # the same again, for the next moment
        self.app.select_all()
        self.own_clipboard()
        since = len(self.desktop.notifications.sent)
        keyboard, keys = self.desktop.keyboard, self.tavelle.profiles[0].keys()
        for key in keys:
            keyboard.press(key)
        time.sleep(after)
        for key in reversed(keys) if order == "key first" else keys:
            keyboard.release(key)
        self.wait_for_last(since=since)
        self.assert_nothing_is_damaged(TEXT)

    def assert_nothing_is_damaged(self, text=reworded(TEXT)):
        wait_until(lambda: not self.desktop.screen.keys_down(), lambda: f"all keys are up; {self.desktop.screen.keys_down()}")
        self.assert_no_key_is_down()
        self.assertEqual(self.model.texts(), [TEXT])
        self.assert_clipboard_is_back()
        self.assertEqual(self.app.text(), text)


class Autorepeat(DesktopTest):
    def test_a_repeated_hotkey_is_one_press(self):
        """The key is held for longer than three runs would take."""
        self.start_tavelle()
        self.scripted("words")
        with self.desktop.keyboard.held(*self.tavelle.profiles[0].keys()):
            self.wait_for_last()
            stays(self.tavelle.runs, "Tavelle ended", during=1.2)
        self.assertEqual(self.model.texts(), ["words"])


class Locks(DesktopTest):
    def test_num_lock_and_caps_lock_do_not_matter(self):
        self.start_tavelle()
        self.open()
        text = TEXT
        for lock in ("NumLock", "CapsLock"):  # one more each time
            with self.subTest(lock=lock):
                before = self.desktop.screen.locks_on()
                self.desktop.keyboard.chord(lock)
                wait_until(lambda: self.desktop.screen.locks_on() != before, f"{lock} is on")
                locks = self.desktop.screen.locks_on()
                self.assert_rewords(text)
                self.assertEqual(self.desktop.screen.locks_on(), locks)
                text = reworded(text)
        self.assertEqual(self.desktop.screen.locks_on(), X.LockMask | X.Mod2Mask)


class TakenByAnotherProgram(DesktopTest):
    def test_the_other_profiles_are_registered(self):
        first = Profile("First “one”")
        other = self._closed_later(Screen(self.desktop.display_name))
        other.take_hotkey(*first.grab())
        self.start_tavelle([first, SECOND])
        line = "Failed to register hotkey for profile 'First “one”': -9878\n"
        wait_until(lambda: line in self.tavelle.output(), lambda: f"{line!r}; Tavelle said {self.tavelle.output()!r}")
        self.open()
        self.press_and_wait(profile=SECOND)
        self.assertEqual(self.app.text(), reworded(TEXT))
        self.assertEqual(self.model.requests[0][1]["messages"][0]["content"], SECOND.prompt)

    def test_says_nothing_where_all_are_registered(self):
        self.start_tavelle([Profile(), SECOND])
        self.assertNotIn("Failed to register", self.tavelle.output())


class Profiles(DesktopTest):
    def test_each_hotkey_sends_its_own_prompt(self):
        first, second = Profile(prompt="First prompt."), Profile("Second", 17, 0x1A00, "Second prompt.")
        self.start_tavelle([first, second])
        self.open()
        self.press_and_wait(profile=second)
        self.app.select_all()
        self.press_and_wait(profile=first)
        prompts = [request["messages"][0]["content"] for _headers, request in self.model.requests]
        self.assertEqual(prompts, ["Second prompt.", "First prompt."])


class Layouts(DesktopTest):
    """Another layout comes while Tavelle runs. The hotkey stays where it is on the keyboard; copy and paste go by letter."""

    def check(self, *layout, application=apps.Mousepad):
        self.start_tavelle()
        self.open(application)
        self.own_clipboard()
        self.desktop.set_layout(*layout)
        self.press_and_wait()
        self.assertEqual(self.model.texts(), [TEXT])
        self.assert_clipboard_is_back()
        self.assert_no_key_is_down()
        self.desktop.set_layout("us")
        self.assertEqual(self.app.text(), reworded(TEXT))

    def test_german(self):
        self.check("de")

    def test_french(self):
        self.check("fr")

    def test_dvorak(self):
        self.check("us", "dvorak")

    def test_russian_with_no_latin_letter_at_all(self):
        self.check("ru")

    def test_russian_with_no_latin_letter_in_gtk_4(self):
        self.check("ru", application=apps.GnomeTextEditor)

    def test_russian_with_no_latin_letter_in_qt(self):
        self.check("ru", application=apps.FeatherPad)

    def test_russian_as_the_second_of_two(self):
        self.start_tavelle()
        self.open()
        self.own_clipboard()
        self.desktop.set_layout("us,ru", "-option", "grp:caps_toggle")
        self.desktop.keyboard.chord("CapsLock")
        wait_until(lambda: self.desktop.screen.layout_group() == 1, "the second layout is active")
        self.press_and_wait()
        self.assertEqual(self.model.texts(), [TEXT])
        self.assert_clipboard_is_back()
        self.assertEqual(self.desktop.screen.layout_group(), 1)
        self.desktop.set_layout("us", "-option")
        self.assertEqual(self.app.text(), reworded(TEXT))


class ManyPresses(DesktopTest):
    def press(self, times):
        self.start_tavelle()
        app = self.scripted("words")
        for number in range(1, times + 1):
            self.press_and_wait()
            self.assertEqual(app.wait_for_paste(number), reworded("words"), f"press {number}")
        self.assertEqual(len(self.model.requests), times)
        self.assert_no_key_is_down()

    def test_forty_in_a_row(self):
        self.press(40)

    def test_two_thousand_in_a_row(self):
        self.press(2000)

    test_two_thousand_in_a_row.heavy = True

    def test_presses_during_a_run_are_dropped(self):
        self.start_tavelle()
        app = self.scripted("words")
        self.press_and_wait_for_request()
        for _ in range(5):
            self.tavelle.press_hotkey()
        self.release_model.set()
        self.wait_for_last()
        self.assertEqual(len(self.model.requests), 1)
        self.press_and_wait()
        app.wait_for_paste(2)
        self.assertEqual((len(self.model.requests), len(app.pasted)), (2, 2))

    def press_and_wait_for_request(self):
        self.release_model = threading.Event()

        def behaviour(text):
            self.release_model.wait(20)
            return answer(reworded(text))

        self.model.behaviour = behaviour
        self.tavelle.press_hotkey()
        wait_until(lambda: self.model.requests, "the request")
