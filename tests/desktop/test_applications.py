"""The whole journey in real applications: select, press the hotkey, read the text again, find the clipboard untouched."""

from tavelle_desktop import apps
from tavelle_desktop.journey import DONE, NO_TEXT, REWRITING, TEXT, DesktopTest
from tavelle_desktop.model import answer, reworded

AT_ONCE = 8  # seconds; less than the ten that Tavelle gives an application that has promised to answer: its other waits are short


class Journey:
    application = None

    def test_rewords_the_selected_text(self):
        self.start_tavelle()
        self.open(self.application)
        self.own_clipboard()
        self.press_and_wait()
        self.assertEqual(self.model.texts(), [TEXT])
        self.assert_clipboard_is_back()
        self.assert_bodies(REWRITING, DONE)
        self.assert_no_key_is_down()
        self.assertEqual(self.app.text(), reworded(TEXT))
        self.app.wait_for_saved(reworded(TEXT))

    def test_rewords_again_what_it_reworded(self):
        self.start_tavelle()
        self.open(self.application)
        self.press_and_wait()
        self.assert_rewords(reworded(TEXT))

    def test_tells_at_once_that_nothing_is_selected(self):
        self.start_tavelle()
        self.open(self.application)
        self.app.deselect()
        self.own_clipboard()
        self.press_and_wait(NO_TEXT, within=AT_ONCE)
        self.assert_clipboard_is_back()
        self.assert_bodies(NO_TEXT)
        self.assertEqual(self.model.requests, [])
        self.assertEqual(self.app.text(), TEXT)


class EveryCharacter:
    def test_keeps_every_character(self):
        text = "Zwölf \"Anführungen\" & <b>keine</b> Auszeichnung,\nzweite Zeile\tmit Tabulator: 漢字, العربية, 🙂👩‍👩‍👧."
        self.model.behaviour = lambda selected: answer(f"«{selected}»")
        self.start_tavelle()
        self.open(self.application, text)
        self.press_and_wait()
        self.assertEqual(self.model.texts(), [text])
        self.assertEqual(self.app.text(), f"«{text}»")


class MousepadGTK3(Journey, EveryCharacter, DesktopTest):
    application = apps.Mousepad


class GnomeTextEditorGTK4(Journey, EveryCharacter, DesktopTest):
    application = apps.GnomeTextEditor

    def test_waits_for_a_selection_that_takes_long(self):
        """A megabyte takes this editor longer than the pipeline's own wait."""
        text = "\n".join(f"line {number} of a long text" for number in range(45_000))
        self.model.behaviour = lambda _text: answer("short")
        self.start_tavelle()
        self.open(self.application, text)
        self.own_clipboard()
        self.press_and_wait(within=30)
        self.assertEqual([len(sent) for sent in self.model.texts()], [len(text)])
        self.assertEqual(self.model.texts(), [text])
        self.assert_clipboard_is_back()
        self.assertEqual(self.app.text(), "short")


class FeatherPadQt(Journey, EveryCharacter, DesktopTest):
    application = apps.FeatherPad


class TkTextWidget(DesktopTest):
    def test_puts_the_answer_at_the_cursor(self):
        """Tk's text widget never replaces the selection when it pastes on X11: the answer stands beside it.

        All that is selected in it ends with the line end that the widget keeps behind every text.
        """
        self.start_tavelle()
        self.open(apps.TkText)
        self.own_clipboard()
        self.press_and_wait()
        self.assertEqual(self.model.texts(), [TEXT + "\n"])
        self.assert_clipboard_is_back()
        self.app.wait_for_saved(reworded(TEXT) + TEXT)


class Terminals(DesktopTest):
    """Control+C would end what runs in them."""

    def test_xterm_copies_nothing_and_interrupts_nothing(self):
        self.check_interrupts_nothing(apps.XTerm)

    def test_a_terminal_without_a_selection_interrupts_nothing(self):
        self.check_interrupts_nothing(apps.Xfce4Terminal, selects=False)

    def test_a_terminal_copies_and_pastes_with_shift(self):
        self.start_tavelle()
        self.open(apps.Xfce4Terminal, "word")
        self.own_clipboard()
        self.press_and_wait()
        self.assertEqual(self.model.texts(), ["word"])
        self.assert_clipboard_is_back()
        self.app.type_return()
        self.assertEqual(self.app.events(), ["ready", f"line {reworded('word')}"])

    def check_interrupts_nothing(self, application, selects=True):
        self.start_tavelle()
        self.open(application, "word", selects=selects)
        self.own_clipboard()
        self.press_and_wait(NO_TEXT, within=AT_ONCE)
        self.assert_clipboard_is_back()
        self.app.type_return()
        self.assertEqual(self.app.events(), ["ready", "line "])


class HeavyJourney(Journey):
    heavy = True


class ChromiumTextArea(HeavyJourney, EveryCharacter, DesktopTest):
    application = apps.Chromium


class FirefoxTextArea(HeavyJourney, EveryCharacter, DesktopTest):
    application = apps.Firefox


class LibreOfficeWriter(HeavyJourney, DesktopTest):
    application = apps.Writer


class EmacsWithCuaMode(HeavyJourney, DesktopTest):
    application = apps.Emacs

    def test_tells_at_once_that_nothing_is_selected(self):
        """Emacs takes Control+C without a selection as the beginning of a longer key: it is ended, and nothing is lost."""
        self.start_tavelle()
        self.open(self.application, selects=False)
        self.app.wait_for_document()
        self.own_clipboard()
        self.press_and_wait(NO_TEXT, within=AT_ONCE)
        self.assert_clipboard_is_back()
        self.assertEqual(self.model.requests, [])
        self.app.press([("Control", "G")])
        self.assertEqual(self.app.text(), TEXT)
