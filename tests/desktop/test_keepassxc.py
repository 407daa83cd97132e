"""A password manager as the keyring: it asks the person, and the entries in it are the person's own."""

from tavelle_desktop.keepassxc import ENTRY, NOTES, Entry, KeePassXC
from tavelle_desktop.session import Options
from tavelle_desktop.settings_journey import SettingsWindowTest
from tavelle_desktop.waiting import wait_until

LOCKED = "Tavelle: the keyring is locked: API keys cannot be read or saved until it is unlocked\n"


class PasswordManagerTest(SettingsWindowTest):
    options = Options(keyring="absent", accessibility=True)
    key = "made-up key"
    asks = False

    def start_tavelle(self):
        self.manager = KeePassXC(self.desktop, self.key, self.asks)
        super().start_tavelle()
        self.editor = self.scripted("words")

    def assert_sent(self, authorization):
        self.desktop.screen.activate(self.editor.window)
        before = len(self.model.requests)
        self.press_and_wait()
        self.assertEqual([headers.get("Authorization") for headers, _ in self.model.requests[before:]], [authorization])

    def open_provider_tab(self):
        self.settings.open()
        self.settings.choose_tab("Provider")
        self.settings.wait_for_text("API Key:", self.key)

    def wait_for_entries(self, *entries):
        """It writes its file when it is locked."""
        self.manager.lock()
        wait_until(lambda: self.manager.entries() == list(entries),
                   lambda: f"{entries} in the database; it has {self.manager.entries()}", every=0.2)  # fmt: skip


class PasswordManager(PasswordManagerTest):
    def test_a_key_is_sent_at_the_first_press(self):
        self.assert_sent("Bearer made-up key")
        self.assertEqual(self.tavelle.output(), "")

    def test_one_that_is_locked_asks_to_be_unlocked(self):
        self.assert_sent("Bearer made-up key")
        self.manager.lock()
        self.assert_sent(None)
        self.wait_for_line(LOCKED)
        self.manager.unlock()
        self.assert_sent("Bearer made-up key")

    def test_a_key_typed_anew_changes_the_persons_own_entry_and_deletes_nothing(self):
        self.open_provider_tab()
        for key in ("first key", "second key"):
            self.settings.type_into("API Key:", key)
            self.wait_for_key(key)
        self.wait_for_entries(Entry("Root", ENTRY, "second key", NOTES))

    def test_a_key_that_is_pasted_while_it_is_locked_is_stored_once_it_is_unlocked(self):
        self.open_provider_tab()
        self.manager.lock()
        self.desktop.screen.activate(self.settings.window)
        self.paste_into("API Key:", "pasted while locked")
        self.wait_for_line(LOCKED)
        self.manager.unlock()
        self.wait_for_key("pasted while locked")
        self.assert_sent("Bearer pasted while locked")
        self.wait_for_entries(Entry("Root", ENTRY, "pasted while locked", NOTES))

    def test_a_key_that_is_cleared_goes_where_the_person_finds_it_again(self):
        self.open_provider_tab()
        self.settings.select_all("API Key:")
        self.desktop.keyboard.chord("BackSpace")
        self.wait_for_key("")
        self.wait_for_entries(Entry("Recycle Bin", ENTRY, "made-up key", NOTES))


class AskingPasswordManager(PasswordManagerTest):
    asks = True

    def test_a_key_is_sent_once_the_person_has_let_tavelle_have_it(self):
        self.assert_sent(None)
        self.wait_for_line(LOCKED)
        self.manager.allow()
        self.assert_sent("Bearer made-up key")


class EmptyPasswordManager(PasswordManagerTest):
    key = ""

    def test_a_key_typed_letter_by_letter_becomes_one_entry(self):
        self.open_provider_tab()
        self.settings.type_into("API Key:", "t")
        self.wait_for_key("t")  # a busy manager may make its entry only after Tavelle has stopped waiting for that
        self.desktop.keyboard.type("yped key")
        self.wait_for_key("typed key")
        self.wait_for_entries(Entry("Root", "Tavelle: apiKey_custom", "typed key", ""))
