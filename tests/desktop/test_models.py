"""A model that fails: the right words, the clipboard back, the text untouched, and the next run as if nothing had been."""

import json
import ssl
import subprocess
from pathlib import Path

from tavelle_desktop.journey import DONE, REWRITING, TEXT, DesktopTest
from tavelle_desktop.model import Model, answer, reworded
from tavelle_desktop.processes import children
from tavelle_desktop.waiting import wait_until

TOO_MANY = json.dumps({"error": {"message": "You <b>are</b> asking & asking", "type": "rate_limit", "code": None}})
UNTRUSTED = (
    "Error: The certificate for this server is invalid. You might be connecting to a server that is pretending to be “127.0.0.1” "
    "which could put your confidential information at risk."
)
NOT_JSON = "Error: The data couldn’t be read because it isn’t in the correct format."


class Failures(DesktopTest):
    def check(self, behaviour, expected):
        """`expected`: the notification that ends the run."""
        good = self.model.behaviour
        self.start_tavelle()
        self.open()
        self.own_clipboard()
        self.model.behaviour = behaviour
        ended = self.press_and_wait(expected)
        self.assert_clipboard_is_back()
        self.assert_bodies(REWRITING, expected)
        self.assertEqual(self.app.text(), TEXT)
        self.model.behaviour = good
        self.assert_rewords()
        self.assertNotIn("made-up key", self.tavelle.output())
        return ended

    def test_401(self):
        self.check(lambda _: (401, b"no such key"), "Error: API error (401): no such key")

    def test_429_with_a_json_body_shows_it_as_it_is(self):
        ended = self.check(lambda _: (429, TOO_MANY.encode()), f"Error: API error (429): {TOO_MANY}")
        self.assertNotIn("<b>", ended.markup)

    def test_500_with_a_body_that_is_not_utf_8(self):
        self.check(lambda _: (500, b"\xff\xfe broken \xc3"), "Error: API error (500): Unknown error")

    def test_201_is_an_error(self):
        self.check(lambda text: (201, answer(text)[1]), f"Error: API error (201): {answer(TEXT)[1].decode()}")

    def test_no_choices(self):
        self.check(lambda _: (200, b'{"choices":[]}'), "Error: Failed to parse response")

    def test_content_that_is_null(self):
        self.check(lambda _: (200, b'{"choices":[{"message":{"content":null}}]}'), "Error: Failed to parse response")

    def test_another_object(self):
        self.check(lambda _: (200, b'{"answer":"yes"}'), "Error: Failed to parse response")

    def test_an_array(self):
        self.check(lambda _: (200, b"[1, 2]"), "Error: Failed to parse response")

    def test_no_json_at_all(self):
        self.check(lambda _: (200, b"<html>It works!</html>"), NOT_JSON)

    def test_an_empty_body(self):
        self.check(lambda _: (200, b""), NOT_JSON)

    def test_a_bare_string(self):
        self.check(lambda _: (200, b'"text"'), NOT_JSON)

    def test_a_connection_that_ends_without_an_answer(self):
        self.check(lambda _: None, "Error: The network connection was lost.")


class Connection(DesktopTest):
    def test_a_refused_connection_is_told_and_the_next_run_works(self):
        self.start_tavelle()
        self.open()
        self.own_clipboard()
        port = self.model.port
        self.model.close()
        self.press_and_wait("Error: Could not connect to the server.")
        self.assert_clipboard_is_back()
        self.assertEqual(self.app.text(), TEXT)
        self.model = self._closed_later(Model(port=port))
        self.assert_rewords()

    def test_a_server_that_nobody_vouches_for_is_told_and_sent_nothing(self):
        self.model = self._closed_later(Model(tls=self.unknown_authority()))
        self.start_tavelle()
        self.open()
        self.own_clipboard()
        self.press_and_wait(UNTRUSTED)
        self.assert_clipboard_is_back()
        self.assertEqual(self.app.text(), TEXT)
        self.assertEqual(self.model.requests, [])

    def unknown_authority(self):
        """A certificate for the loopback interface that is signed with its own key."""
        key, certificate = (str(self.desktop.home / name) for name in ("key.pem", "certificate.pem"))
        subprocess.run(["openssl", "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-days", "2",
                        "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", key, "-out", certificate],
                       check=True, capture_output=True)  # fmt: skip
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(certificate, key)
        return context

    def test_the_stored_key_is_sent(self):
        self.start_tavelle()
        self.open()
        self.press_and_wait()
        self.assertEqual(self.model.requests[0][0]["Authorization"], "Bearer made-up key")

    def test_a_key_that_was_changed_since_the_last_run_is_sent(self):
        self.start_tavelle()
        self.scripted()
        self.press_and_wait()
        self.tavelle.store_secret("another key", "apiKey_custom")
        self.press_and_wait()
        keys = [headers["Authorization"] for headers, _ in self.model.requests]
        self.assertEqual(keys, ["Bearer made-up key", "Bearer another key"])

    def test_what_a_request_needs_is_got_while_the_copy_is_awaited(self):
        self.start_tavelle()
        self.scripted(copy_after=60, is_busy=False)
        self.tavelle.press_hotkey()
        wait_until(lambda: "tavelle-transfe" in self.names_of_children(), "the program that sends requests is there")
        self.assertEqual(self.model.requests, [])

    def names_of_children(self):
        return [Path(f"/proc/{child}/comm").read_text().strip() for child in children(self.tavelle.process.pid)]

    def test_every_notification_is_a_new_one(self):
        self.start_tavelle()
        self.open()
        self.press_and_wait()
        self.assert_rewords(reworded(TEXT))
        sent = self.desktop.notifications.sent
        self.assertEqual([(one.title, one.replaces, one.body) for one in sent],
                         [("Tavelle", 0, REWRITING), ("Tavelle", 0, DONE)] * 2)  # fmt: skip
