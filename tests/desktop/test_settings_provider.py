"""The provider's side of the settings window: keys that are never mixed up, and what does not answer."""

import threading

from tavelle_desktop.model import answer, reworded
from tavelle_desktop.settings_journey import SettingsWindowTest
from tavelle_desktop.settings_window import PROVIDERS
from tavelle_desktop.waiting import wait_until

KEYS = {"OpenAI": "sk-one", "Anthropic": "the-second-key", "Gemini": "a key that is the longest of all three"}
MODELS = {"OpenAI": "gpt-4o", "Anthropic": "claude-sonnet-4-20250514", "Gemini": "gemini-2.0-flash", "Ollama": "llama3.2"}
LOCKED = "Tavelle: the keyring is locked: API keys cannot be read or saved until it is unlocked\n"


class ProviderTabTest(SettingsWindowTest):
    def setUp(self):
        super().setUp()
        self.settings.open()
        self.settings.choose_tab("Provider")

    def wait_for_result(self, result):
        self.settings.wait_for_label(lambda text: text == result, f"the result {result!r}")


class Keys(ProviderTabTest):
    def start_tavelle(self):
        self.configure_tavelle(provider="gemini", base_url="https://generativelanguage.googleapis.com/v1beta", model="any")
        for provider, key in KEYS.items():
            self.tavelle.store_key(key, provider.lower())
        self.tavelle.start().wait_ready()

    def test_changes_of_provider_show_each_ones_own_key_and_keep_all(self):
        self.change_provider(6)

    def test_fifty_changes_of_provider_show_each_ones_own_key_and_keep_all(self):
        self.change_provider(50)

    test_fifty_changes_of_provider_show_each_ones_own_key_and_keep_all.heavy = True

    def change_provider(self, times):
        for turn in range(times):
            provider = PROVIDERS[(turn * 5 + 1) % len(PROVIDERS)]
            self.settings.choose_provider(provider)
            self.wait_for_stored(provider, lambda stored, provider=provider: stored["provider"] == provider.lower())
            self.assert_shown(provider)
        self.assertEqual({provider: self.stored_key(provider.lower()) for provider in KEYS}, KEYS)
        self.assertEqual(self.stored_key("custom"), "made-up key")
        self.assertEqual(self.stored_key("ollama"), "")

    def assert_shown(self, provider):
        if provider in MODELS:
            self.settings.wait_for_text("Model:", MODELS[provider])
        if provider in KEYS:
            self.settings.wait_for_text("API Key:", KEYS[provider])


class Pasting(ProviderTabTest):
    def test_a_key_with_a_newline_at_its_end_is_stored_as_it_came_and_a_test_tells_of_it(self):
        self.paste_into("API Key:", "pasted key\n")
        self.wait_for_key("pasted key\n")
        self.settings.press("Test Connection")
        self.wait_for_result("Error: The header “Authorization” of the request holds a line break.")
        self.assertEqual(self.model.requests, [])


class Testing(ProviderTabTest):
    def setUp(self):
        super().setUp()
        self.release = threading.Event()
        self.addCleanup(self.release.set)

        def behaviour(text):
            self.release.wait(60)
            return answer(reworded(text))

        self.model.behaviour = behaviour

    def test_one_without_an_answer_goes_on_while_the_window_is_closed_and_opened_again(self):
        self.settings.press("Test Connection")
        self.wait_for_test()
        self.settings.close()
        self.assert_hotkeys_are_taken()
        self.settings.open()
        self.wait_for_test()
        wait_until(lambda: self.model.requests, "the request")
        self.assertEqual(len(self.model.requests), 1)
        self.settings.choose_tab("About")
        self.settings.choose_tab("Provider")  # a tab starts afresh each time that it is shown
        self.settings.press("Test Connection")
        self.wait_for_test()
        self.release.set()
        self.wait_for_result(f'Success: "{reworded("Hello world")}"')
        self.assertEqual(len(self.model.requests), 2)

    def test_its_answer_is_there_when_the_window_is_opened_again(self):
        self.settings.press("Test Connection")
        self.wait_for_test()
        self.settings.close()
        self.release.set()
        self.settings.open()
        self.wait_for_result(f'Success: "{reworded("Hello world")}"')

    def wait_for_test(self):
        self.assertFalse(self.settings.element("push button", "Testing...").is_("sensitive"))

    def assert_hotkeys_are_taken(self):
        self.assertTrue(self.desktop.screen.hotkey_is_taken(*self.tavelle.profiles[0].grab()))


class LockedKeyring(ProviderTabTest):
    def test_a_key_that_was_pasted_is_stored_once_the_person_has_unlocked_the_keyring(self):
        self.desktop.lock_keyring()
        self.desktop.start_keyring_prompter()
        self.paste_into("API Key:", "pasted while locked")
        self.wait_for_line(LOCKED)
        self.desktop.unlock_keyring_as_asked()
        self.wait_for_key("pasted while locked")
        self.assert_hotkeys_are_alive()
        self.assertEqual(self.model.requests[-1][0]["Authorization"], "Bearer pasted while locked")

    def test_what_is_typed_stays_in_the_field_and_is_stored_once_the_keyring_is_unlocked(self):
        self.desktop.lock_keyring()
        self.settings.type_into("API Key:", "typed while locked")
        self.wait_for_line(LOCKED)
        self.assert_hotkeys_are_alive()
        self.desktop.unlock_keyring()
        self.assertEqual(self.stored_key(), "made-up key")
        self.desktop.screen.activate(self.settings.window)
        self.settings.select_all("API Key:")
        self.desktop.keyboard.chord("End")
        self.desktop.keyboard.type("!")
        self.wait_for_key("typed while locked!")
