"""The person's clipboard comes back as it was, whoever owned it and however its owner behaves."""

from tavelle_desktop import apps
from tavelle_desktop.journey import DONE, NO_TEXT, REWRITING, TEXT, DesktopTest
from tavelle_desktop.model import answer, reworded
from tavelle_desktop.processes import wait_for_end
from tavelle_desktop.selections import Representation, difference, rich_contents
from tavelle_desktop.session import Options
from tavelle_desktop.waiting import wait_until

# What GTK offers to itself only: the address of an object in the owner's memory.
POINTERS = {"GTK_TEXT_BUFFER_CONTENTS"}
MEGABYTE = 1024 * 1024


def large_contents(size, count):
    """`count` types of `size` bytes, each of other bytes."""
    return [Representation(f"application/x-large-{number}", bytes((number + at) % 251 for at in range(251)) * (size // 251))
            for number in range(count)]  # fmt: skip


class Contents(DesktopTest):
    def run_with(self, contents, within=15.0):
        self.start_tavelle()
        app = self.scripted()
        self.own_clipboard(contents)
        self.press_and_wait(within=within)
        self.assertEqual(app.wait_for_paste(), reworded(TEXT))
        self.assert_clipboard_is_back()

    def test_every_type_comes_back_in_order(self):
        self.run_with(rich_contents())

    def test_every_type_comes_back_where_nothing_was_selected(self):
        self.start_tavelle()
        self.open()
        self.app.deselect()
        self.own_clipboard()
        self.press_and_wait(NO_TEXT)
        self.assert_clipboard_is_back()

    def test_a_hundred_megabytes_come_back(self):
        self.run_with(large_contents(5 * MEGABYTE, 20), within=60)

    def test_what_a_real_application_owns_comes_back(self):
        self.start_tavelle()
        owner = self.open(apps.Mousepad, "text of the first editor")
        owner.press([("Control", "C")])
        wait_until(lambda: self.reader.text() == "text of the first editor", "the first editor's copy")
        contents = [one for one in self.reader.contents() if one and one.target not in POINTERS]
        self.assertGreater(len(contents), 3)

        app = self.scripted()
        self.press_and_wait()
        self.assertEqual(app.wait_for_paste(), reworded(TEXT))
        restored = [one for one in self.reader.contents() if one and one.target not in POINTERS]
        self.assertEqual(difference(contents, restored), "")

    def test_the_answer_stays_where_the_clipboard_was_empty(self):
        self.start_tavelle()
        app = self.scripted()
        self.assertEqual(self.reader.owner(), 0)
        self.press_and_wait()
        self.assertEqual(app.wait_for_paste(), reworded(TEXT))
        self.assertEqual(self.reader.text(), reworded(TEXT))

    def test_an_empty_clipboard_stays_empty_where_nothing_was_selected(self):
        self.start_tavelle()
        self.open()
        self.app.deselect()
        self.press_and_wait(NO_TEXT)
        self.assertIsNone(self.reader.text())

    def test_an_answer_with_every_kind_of_character_is_pasted_whole(self):
        odd = "\"quotes\" 'and' \\ a NUL:\0 and 🙂, \u202eright to left\u202c, \x7f\x1b[31m, \ufeff, \U0010fffd"
        self.model.behaviour = lambda _text: answer(odd)
        self.start_tavelle()
        app = self.scripted()
        self.own_clipboard()
        self.press_and_wait()
        self.assertEqual(app.wait_for_paste(), odd)
        self.assert_clipboard_is_back()

    def test_an_empty_answer_is_pasted_as_it_is(self):
        self.model.behaviour = lambda _text: answer("")
        self.start_tavelle()
        app = self.scripted()
        self.own_clipboard()
        self.press_and_wait()
        self.assertEqual(app.wait_for_paste(), "")
        self.assert_clipboard_is_back()


class Owners(DesktopTest):
    def test_an_owner_that_never_answers_does_not_hold_up_the_run(self):
        self.start_tavelle()
        app = self.scripted()
        self.own_clipboard(manners="hung")
        self.press_and_wait(within=20)
        self.assertEqual(app.wait_for_paste(), reworded(TEXT))
        self.own_clipboard()
        self.press_and_wait()
        self.assert_clipboard_is_back()

    def test_an_owner_that_dies_half_way_does_not_hold_up_the_run(self):
        self.start_tavelle()
        app = self.scripted()
        self.own_clipboard(large_contents(MEGABYTE, 2), manners="dies")
        self.press_and_wait(within=20)
        self.assertEqual(app.wait_for_paste(), reworded(TEXT))
        self.own_clipboard()
        self.press_and_wait()
        self.assert_clipboard_is_back()


class SlowApplications(DesktopTest):
    def test_a_late_paste_still_receives_the_answer(self):
        """Only the application that was pasted into is owed it: everybody else reads what the person had copied."""
        self.start_tavelle()
        app = self.scripted(pastes_when_told=True)
        self.own_clipboard()
        self.press_and_wait()
        self.assert_clipboard_is_back()
        self.assertEqual(app.paste_now(), reworded(TEXT))
        self.assert_clipboard_is_back()

    def test_a_late_paste_of_a_busy_application_still_receives_the_answer(self):
        self.check(paste_after=0.4)

    def test_a_copy_that_takes_a_second_is_waited_for(self):
        self.check(copy_after=1.0)

    def test_a_copy_that_is_given_up_at_once_is_made_again(self):
        """As LibreOffice does on a busy machine, where the key comes while it looks at the clipboard that was just emptied."""
        self.check(gives_up=1)

    def check(self, **manners):
        self.start_tavelle()
        app = self.scripted(**manners)
        self.own_clipboard()
        self.press_and_wait()
        self.assertEqual(app.wait_for_paste(), reworded(TEXT))
        self.assert_clipboard_is_back()


class WithNoManager(DesktopTest):
    def test_the_clipboard_outlives_quitting_until_somebody_else_copies(self):
        self.start_tavelle()
        app = self.scripted()
        self.own_clipboard()
        self.press_and_wait()
        self.assertEqual(app.wait_for_paste(), reworded(TEXT))
        self.quit()
        wait_until(lambda: not self.desktop.tray_items(), "the status item has gone")
        self.assert_clipboard_is_back()
        self.own_clipboard()
        self.assertEqual(wait_for_end(self.tavelle.process, "Tavelle ends"), 0)

    def test_keeping_the_clipboard_ends_in_peace_with_the_screen(self):
        self.start_tavelle()
        self.scripted()
        self.own_clipboard()
        self.press_and_wait()
        self.quit()
        self.desktop.end_screen()
        self.assertEqual(wait_for_end(self.tavelle.process, "Tavelle ends"), 0, self.tavelle.output())

    def test_a_new_start_does_not_wait_for_the_clipboard(self):
        self.start_tavelle()
        app = self.scripted()
        self.own_clipboard()
        self.press_and_wait()
        first = self.tavelle.process
        self.quit()
        wait_until(lambda: not self.desktop.tray_items(), "the status item has gone")
        self.tavelle.start().wait_ready()
        wait_until(self.desktop.tray_items, "the new one's status item, which comes once it has looked which keys are down")
        self.press_and_wait()
        self.assertEqual(app.wait_for_paste(2), reworded(TEXT))
        self.assert_clipboard_is_back()
        self.assertEqual(wait_for_end(first, "the first one ends"), 0)

    def quit(self):
        self.tavelle.end_kindly()
        hotkey = self.tavelle.profiles[0].grab()
        wait_until(lambda: not self.desktop.screen.hotkey_is_taken(*hotkey), "the hotkey is free")


class WithXfsettingsd(DesktopTest):
    options = Options(clipboard_manager="xfsettingsd")

    def test_the_clipboard_comes_back(self):
        self.start_tavelle()
        self.open()
        self.own_clipboard()
        self.press_and_wait()
        self.assert_clipboard_is_back()
        self.assertEqual(self.app.text(), reworded(TEXT))

    def test_quitting_right_after_a_run_loses_nothing(self):
        self.start_tavelle()
        app = self.scripted()
        self.own_clipboard()
        self.press_and_wait()
        self.assertEqual(app.wait_for_paste(), reworded(TEXT))
        self.tavelle.end_kindly()
        wait_for_end(self.tavelle.process, "Tavelle ends")
        kept = sorted(self.reader.contents(), key=lambda one: one.target)  # the manager has an order of its own
        self.assertEqual(difference(sorted(self.clipboard, key=lambda one: one.target), kept), "")


class WithClipman(DesktopTest):
    options = Options(clipboard_manager="clipman")

    def test_the_clipboard_comes_back(self):
        """This manager takes over what it reads, and keeps the text of it."""
        self.start_tavelle()
        self.open()
        self.own_clipboard()
        self.press_and_wait()
        text = next(one.data.decode() for one in self.clipboard if one.target == "UTF8_STRING")
        wait_until(lambda: self.reader.text() == text, lambda: f"the clipboard holds {text!r}; it holds {self.reader.text()!r}")
        self.assertEqual(self.app.text(), reworded(TEXT))

    def test_quitting_right_after_a_run_loses_no_text(self):
        self.start_tavelle()
        app = self.scripted()
        self.own_clipboard()
        self.press_and_wait()
        self.assertEqual(app.wait_for_paste(), reworded(TEXT))
        self.tavelle.end_kindly()
        wait_for_end(self.tavelle.process, "Tavelle ends")
        text = next(one.data.decode() for one in self.clipboard if one.target == "UTF8_STRING")
        wait_until(lambda: self.reader.owner() and self.reader.text() == text, "the manager offers the person's text")


class LargeAnswers(DesktopTest):
    heavy = True

    def test_fifty_megabytes_are_pasted_whole(self):
        large = "All of it, word by word. " * (2 * MEGABYTE)
        self.model.behaviour = lambda _text: answer(large)
        self.start_tavelle()
        app = self.scripted()
        self.own_clipboard()
        self.press_and_wait(within=60)
        pasted = app.wait_for_paste(within=60)
        self.assertEqual((len(pasted), pasted == large.strip()), (len(large.strip()), True))
        self.assert_clipboard_is_back()
        self.assert_bodies(REWRITING, DONE)
