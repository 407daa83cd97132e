"""The account of the hosted service in the settings window: a link asked for, the link opened, signed out."""

from tavelle_desktop.journey import program
from tavelle_desktop.processes import wait_for_end
from tavelle_desktop.providers import PROVIDERS
from tavelle_desktop.settings_journey import SettingsWindowTest
from tavelle_desktop.stand_in import StandIn

ADDRESS = "someone@example.com"
TOKEN = "e30.eyJlbWFpbCI6InNvbWVvbmVAZXhhbXBsZS5jb20ifQ.c2lnbmF0dXJl"  # whose claims are {"email":"someone@example.com"}
HINT = "Check your email for a login link."


class Account(SettingsWindowTest):
    def start_tavelle(self):
        """The program that finds the stand-in where it looks for the hosted service."""
        hosted = PROVIDERS["tavelle"]
        self.stand_in = StandIn(self.desktop, TOKEN, hosted.port(program())).start()
        self.configure_tavelle(provider="openai", base_url="https://api.openai.com/v1", model="gpt-4o")
        self.tavelle.program = hosted.program(program())
        return self.tavelle.start().wait_ready()

    def test_a_link_signs_in_and_the_hosted_service_can_be_tested(self):
        settings = self.settings.open()
        settings.choose_tab("Provider")
        settings.choose_provider("Tavelle")
        self.assertFalse(settings.element("push button", "Send Login Link").is_("sensitive"))
        settings.press("Test Connection")
        self.wait_for_label("Error: Sign in to Tavelle required")

        settings.type_into("Email:", ADDRESS)
        settings.press("Send Login Link")
        self.wait_for_label(HINT)
        self.assertEqual(self.stand_in.requests()[-1]["body"], {"email": ADDRESS})
        opening = self.desktop.processes.start("opener", self.tavelle.program, f"tavelle://auth?token={TOKEN}")
        self.assertEqual(wait_for_end(opening, "the link was opened"), 0)
        self.wait_for_label(ADDRESS)
        self.assertFalse(settings.shows("text", "Email:"))
        self.assertEqual(self.tavelle.stored_secret("tavelle_auth_token"), TOKEN)
        settings.press("Test Connection")
        settings.wait_for_label(lambda text: text.startswith('Success: "'), "the success")
        self.assertEqual(self.stand_in.requests()[-1]["body"]["text"], "Hello world")

        settings.press("Sign Out")
        settings.wait_for_text("Email:", ADDRESS)
        self.wait_for_label(HINT)
        self.assertEqual(self.tavelle.stored_secret("tavelle_auth_token"), "")

    def test_a_refused_address_is_told_nowhere_but_the_hint_is_there(self):
        settings = self.settings.open()
        settings.choose_tab("Provider")
        settings.choose_provider("Tavelle")
        settings.type_into("Email:", "no address")
        settings.press("Send Login Link")
        self.wait_for_label(HINT)
        self.assertTrue(settings.element("push button", "Send Login Link").is_("sensitive"))

    def wait_for_label(self, label):
        self.settings.wait_for_label(lambda text: text == label, repr(label))
