"""Every provider from the hotkey to the pasted answer, in front of a stand-in that is as strict as the provider."""

from tavelle_desktop.journey import DONE, REWRITING, ROOT, TEXT, DesktopTest, program
from tavelle_desktop.processes import wait_for_end
from tavelle_desktop.product import Tavelle
from tavelle_desktop.providers import PROVIDERS
from tavelle_desktop.stand_in import StandIn
from tavelle_desktop.waiting import wait_until

SECRET = "made-up-secret"
REWORDED = "Some words that could be put better."
SIGN_IN = "Please sign in to your Tavelle account in Settings."
PROMPT = "Reword the text."


class ProviderTest(DesktopTest):
    def set_up(self, name, secret=SECRET, expected=SECRET):
        """Tavelle with this provider and its secret in the keyring, in front of a stand-in that expects one."""
        provider = PROVIDERS[name]
        self.stand_in = StandIn(self.desktop, expected if provider.account else None, provider.port(program())).start()
        self.tavelle = Tavelle(self.desktop, provider.program(program()))
        self.tavelle.configure(self.stand_in.url + provider.version, provider.name, provider.model)
        if provider.account and secret is not None:
            self.tavelle.store_secret(secret, provider.account)
        self.tavelle.start().wait_ready()
        self.open()
        self.own_clipboard()

    def reword_by(self, name):
        """One run that ends well; the request that it sent."""
        self.set_up(name)
        self.press_and_wait(DONE)
        self.assert_bodies(REWRITING, DONE)
        self.assert_clipboard_is_back()
        self.assertEqual(self.app.text(), REWORDED)
        self.assert_secret_is_kept()
        (request,) = self.stand_in.requests()
        return request

    def fail_with(self, words):
        """One run that fails, and leaves everything as it was."""
        self.press_and_wait(words, within=30)
        self.assert_clipboard_is_back()
        self.assertEqual(self.app.text(), TEXT)
        self.assert_secret_is_kept()

    def assert_secret_is_kept(self):
        """In the keyring, and nowhere else that somebody could read."""
        with open(f"/proc/{self.tavelle.process.pid}/cmdline", "rb") as arguments:
            self.assertNotIn(SECRET.encode(), arguments.read())
        self.assertNotIn(SECRET, self.tavelle.output())
        self.assertNotIn(SECRET, self.tavelle.settings_file.read_text(encoding="utf-8"))
        self.assertNotIn(SECRET, " ".join(self.desktop.notifications.bodies()))


class Rewording(ProviderTest):
    CHAT = [{"role": "system", "content": PROMPT}, {"role": "user", "content": TEXT}]

    def test_openai(self):
        request = self.reword_by("openai")
        self.assertEqual((request["method"], request["path"]), ("POST", "/v1/chat/completions"))
        self.assertEqual(request["headers"]["authorization"], f"Bearer {SECRET}")
        self.assertEqual(request["body"], {"model": "gpt-4o", "temperature": 0.7, "messages": self.CHAT})

    def test_anthropic(self):
        request = self.reword_by("anthropic")
        self.assertEqual((request["method"], request["path"]), ("POST", "/v1/messages"))
        self.assertEqual((request["headers"]["x-api-key"], request["headers"]["anthropic-version"]), (SECRET, "2023-06-01"))
        self.assertEqual(request["body"], {"model": "claude-sonnet-4-20250514", "max_tokens": 4096, "temperature": 0.7,
                                           "system": PROMPT, "messages": self.CHAT[1:]})  # fmt: skip

    def test_gemini(self):
        request = self.reword_by("gemini")
        self.assertEqual(request["path"], f"/v1beta/models/gemini-2.0-flash:generateContent?key={SECRET}")
        self.assertNotIn(SECRET, str(request["headers"]))
        self.assertEqual(request["body"], {"systemInstruction": {"parts": [{"text": PROMPT}]},
                                           "contents": [{"role": "user", "parts": [{"text": TEXT}]}],
                                           "generationConfig": {"temperature": 0.7, "maxOutputTokens": 4096}})  # fmt: skip

    def test_ollama(self):
        request = self.reword_by("ollama")
        self.assertEqual(request["path"], "/v1/chat/completions")
        self.assertNotIn("authorization", request["headers"])
        self.assertEqual(request["body"], {"model": "llama3.2", "temperature": 0.7, "messages": self.CHAT})

    def test_custom(self):
        request = self.reword_by("custom")
        self.assertEqual((request["path"], request["headers"]["authorization"]), ("/v1/chat/completions", f"Bearer {SECRET}"))
        self.assertEqual(request["body"], {"model": "stand-in", "temperature": 0.7, "messages": self.CHAT})

    def test_tavelle(self):
        request = self.reword_by("tavelle")
        self.assertEqual((request["method"], request["path"]), ("POST", "/reword"))
        self.assertEqual(request["headers"]["authorization"], f"Bearer {SECRET}")
        self.assertEqual(request["body"], {"text": TEXT, "systemPrompt": PROMPT, "temperature": 0.7})


class Refusals(ProviderTest):
    """In the provider's own words, whatever the key is made of."""

    def test_openai_refuses_another_key(self):
        self.set_up("openai", expected="another")
        self.fail_with('Error: API error (401): {"error":{"message":"Incorrect API key provided: (not shown).",'
                       '"type":"invalid_request_error","param":null,"code":"invalid_api_key"}}')  # fmt: skip

    def test_anthropic_refuses_a_missing_key(self):
        self.set_up("anthropic", secret=None)
        self.fail_with('Error: API error (401): {"type":"error","error":{"type":"authentication_error",'
                       '"message":"x-api-key header is required"},"request_id":"req_stand_in"}')  # fmt: skip

    def test_gemini_gets_half_of_a_key_with_an_ampersand(self):
        self.set_up("gemini", secret=f"{SECRET}&more", expected=f"{SECRET}&more")
        self.fail_with('Error: API error (400): {"error":{"code":400,"message":"API key not valid. Please pass a valid API key.",'
                       '"status":"INVALID_ARGUMENT","details":[{"@type":"type.googleapis.com/google.rpc.ErrorInfo",'
                       '"reason":"API_KEY_INVALID","domain":"googleapis.com",'
                       '"metadata":{"service":"generativelanguage.googleapis.com"}}]}}')  # fmt: skip

    def test_the_hosted_service_asks_for_a_sign_in_when_it_refuses_the_token(self):
        self.set_up("tavelle", expected="another")
        self.fail_with(SIGN_IN)
        self.assertEqual(len(self.stand_in.requests()), 1)

    def test_the_hosted_service_asks_for_a_sign_in_without_a_token_and_is_sent_nothing(self):
        self.set_up("tavelle", secret=None)
        self.fail_with(SIGN_IN)
        self.assertEqual(self.stand_in.requests(), [])


class SignedInByTheLink(ProviderTest):
    def test_the_hosted_provider_rewords_with_the_token_of_the_link(self):
        self.set_up("tavelle", secret=None)
        self.fail_with(SIGN_IN)
        self.desktop.processes.run(ROOT / "tools" / "desktop-entry", "install", self.tavelle.program)
        opening = self.desktop.processes.start("opener", "xdg-open", f"tavelle://auth?token={SECRET}")
        self.assertEqual(wait_for_end(opening, "the link was opened"), 0)
        wait_until(lambda: self.tavelle.stored_secret("tavelle_auth_token") == SECRET, "the token is in the keyring")
        since = len(self.desktop.notifications.sent)
        self.app.select_all()
        self.own_clipboard()
        self.press_and_wait(DONE)
        self.assert_bodies(REWRITING, DONE, since=since)
        self.assert_clipboard_is_back()
        self.assertEqual(self.app.text(), REWORDED)
        self.assert_secret_is_kept()
        (request,) = self.stand_in.requests()
        self.assertEqual(request["headers"]["authorization"], f"Bearer {SECRET}")


class TheShippedProgram(ProviderTest):
    def test_sends_what_is_the_hosted_services_to_no_address_of_the_settings(self):
        """Its own address is one that nobody has; the base URL of the settings leads to a server that would answer."""
        hosted = PROVIDERS["tavelle"]
        self.stand_in = StandIn(self.desktop, SECRET, hosted.port(program())).start()
        self.tavelle = Tavelle(self.desktop, program())
        self.tavelle.configure(self.stand_in.url, hosted.name, hosted.model)
        self.tavelle.store_secret(SECRET, hosted.account)
        self.tavelle.start().wait_ready()
        self.open()
        self.own_clipboard()
        self.fail_with("Error: A server with the specified hostname could not be found.")
        self.assertEqual(self.stand_in.requests(), [])
