"""What the desktop tests share: a desktop, a model and Tavelle on it, and one run from the press to the last word."""

import os
import shutil
import unittest
from pathlib import Path

from . import apps
from .model import Model, reworded
from .product import Tavelle
from .scripted import ScriptedApplication
from .selections import SelectionOwner, SelectionReader, difference, rich_contents
from .session import Desktop, Options
from .waiting import wait_until

ROOT = Path(__file__).resolve().parents[3]
DONE = "Done!"
NO_TEXT = "No text selected."
REWRITING = "Rewriting..."
TEXT = "some words that could be put better"


def program():
    """The Tavelle under test: TAVELLE_PROGRAM, else the newest of the builds."""
    named = os.environ.get("TAVELLE_PROGRAM")
    if named:
        return Path(named).resolve()
    built = sorted(ROOT.glob("build/*/bin/tavelle"), key=lambda path: path.stat().st_mtime)
    if not built:
        raise FileNotFoundError("no Tavelle is built; try: cmake --preset release && cmake --build --preset release")
    return built[-1]


class DesktopTest(unittest.TestCase):
    """Each test has a desktop of its own, so that what one breaks on purpose is not the next one's trouble."""

    options = Options()
    app = None  # which open() opens

    def setUp(self):
        name = self.id().rpartition(".")[2]
        logs = Path(os.environ.get("TAVELLE_LOGS", ROOT / "out" / "desktop-tests")) / type(self).__name__ / name
        shutil.rmtree(logs, ignore_errors=True)  # what is read there was written in this run
        self.desktop = Desktop(self.options, logs)
        self.addCleanup(self.desktop.stop)
        self.desktop.start()
        self.model = Model()
        self.addCleanup(self.model.close)
        self.reader = self._closed_later(SelectionReader(self.desktop.display_name))

    def tearDown(self):
        """Where a test failed, its folder keeps how the screen looked."""
        outcome = self._outcome.result
        if self.desktop.screen_runs() and any(test is self for test, _ in outcome.failures + outcome.errors):
            self.desktop.screenshot(self.desktop.logs / "failed.png")

    # What a person has and does.

    def start_tavelle(self, profiles=None, **settings):
        """Tavelle with the test's model and its hotkeys live."""
        return self.configure_tavelle(profiles, **settings).start().wait_ready()

    def configure_tavelle(self, profiles=None, **settings):
        self.tavelle = Tavelle(self.desktop, program(), profiles)
        self.tavelle.configure(settings.pop("base_url", self.model.url), **settings)
        if self.options.keyring != "absent":
            self.tavelle.store_key("made-up key")
        return self.tavelle

    def open(self, application=apps.Mousepad, text=TEXT, selects=True):
        """An application with the text in it, all of it selected."""
        self.app = application(self.desktop)
        self.addCleanup(self.app.close)
        self.app.start(text)
        if selects:
            self.app.select_all()
        return self.app

    def scripted(self, text=TEXT, **manners):
        """An application with manners of its own, in which `text` is selected for ever."""
        return self._closed_later(ScriptedApplication(self.desktop, text, **manners))

    def own_clipboard(self, contents=None, manners="kind"):
        self.clipboard = rich_contents() if contents is None else contents
        return self._closed_later(SelectionOwner(self.desktop.display_name, self.clipboard, manners=manners))

    def press_and_wait(self, last=DONE, within=15.0, profile=None):
        """Presses the hotkey and waits for the notification that ends the run; `last` is what it must be, if given."""
        since = len(self.desktop.notifications.sent)
        self.tavelle.press_hotkey(profile)
        return self.wait_for_last(last, since, within)

    def wait_for_last(self, last=DONE, since=0, within=15.0):
        """A run tells that it is done whether or not the application has come to the paste: what the test does to it next
        must not come between."""
        ended = self.desktop.notifications.wait_for_one(lambda one: one.body != REWRITING, "that ends the run", since, within)
        if last is not None:
            self.assertEqual(ended.body, last)
        if self.app and ended.body == DONE:
            self.app.wait_until_pasted()
        return ended

    # What must hold.

    def assert_clipboard_is_back(self):
        self.assertEqual(difference(self.clipboard, self.reader.contents()), "")

    def wait_for_clipboard(self):
        """For a run whose end nobody tells."""
        wait_until(lambda: not difference(self.clipboard, self.reader.contents()),
                   lambda: f"the clipboard as it was: {difference(self.clipboard, self.reader.contents())}")  # fmt: skip

    def assert_bodies(self, *bodies, since=0):
        self.assertEqual(self.desktop.notifications.bodies(since), list(bodies))

    def assert_no_key_is_down(self):
        self.assertEqual((self.desktop.screen.keys_down(), self.desktop.screen.modifiers_down()), ([], 0))

    def assert_rewords(self, text=TEXT):
        """One more whole run in the application at hand: what came before left nothing behind."""
        self.app.select_all()
        self.own_clipboard()
        before = len(self.model.requests)
        self.press_and_wait()
        self.assertEqual(self.model.texts()[before:], [text])
        self.assert_clipboard_is_back()
        self.assertEqual(self.app.text(), reworded(text))

    def _closed_later(self, resource):
        self.addCleanup(resource.close)
        return resource
