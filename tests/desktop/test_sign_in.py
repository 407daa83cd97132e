"""Signing in: the link of the e-mail, opened by the desktop's own openers, brings its token into the keyring."""

import shutil
from pathlib import Path

from tavelle_desktop.journey import ROOT, DesktopTest, program
from tavelle_desktop.processes import wait_for_end
from tavelle_desktop.product import APPLICATION_ID
from tavelle_desktop.waiting import wait_until

XDG_OPEN = ["xdg-open"]  # leaves it to the desktop's own, which is Xfce's here and ends at once
PLAIN_XDG_OPEN = ["env", "XDG_CURRENT_DESKTOP=none", "xdg-open"]  # does it itself, and waits for what it starts
GIO_OPEN = ["gio", "open"]
BUS_OPEN = ["gapplication", "launch", APPLICATION_ID]  # over the session bus: the link is no argument of Tavelle's
TOKEN = "header.eyJlbWFpbCI6InNvbWVvbmUifQ.signature of + made-up/secret="
ENCODED = TOKEN.replace(" ", "%20").replace("+", "%2B")


def command_line(pid):
    """What the list of processes shows."""
    try:
        return Path(f"/proc/{pid}/cmdline").read_bytes()
    except OSError:
        return b""  # it has ended


def content(file):
    try:
        return file.read_bytes()
    except FileNotFoundError:
        return b""  # it has just gone


class SignIn(DesktopTest):
    def setUp(self):
        super().setUp()
        self.configure_tavelle()
        self.desktop_entry("install", program())
        # The private bus reads a folder of its own.
        shutil.copy(self.service_file(), self.desktop.folder / "services")
        self.call_bus("ReloadConfig")

    def desktop_entry(self, *arguments):
        return self.desktop.processes.run(ROOT / "tools" / "desktop-entry", *arguments)

    def data(self):
        return self.desktop.home / ".local" / "share"

    def service_file(self):
        return self.data() / "dbus-1" / "services" / f"{APPLICATION_ID}.service"

    def call_bus(self, method):
        self.desktop.bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, None, None, 0,
                                   5000, None)  # fmt: skip

    def open_link(self, opener, link):
        """Opens the link as the mail program does, and waits until the opener is done."""
        opening = self.desktop.processes.start("opener", *opener, link)
        self.assertEqual(wait_for_end(opening, f"{opener} is done"), 0)

    def stored_token(self):
        return self.tavelle.stored_secret("tavelle_auth_token")

    def wait_for_token(self, token):
        wait_until(lambda: self.stored_token() == token, lambda: f"the token is in the keyring, where {self.stored_token()!r} is")

    def assert_token_is_nowhere_else(self):
        for pid in self.desktop.processes.marked():
            self.assertNotIn(b"made-up/secret", command_line(pid))
        for folder in (self.desktop.logs, self.desktop.home / ".config", self.desktop.home / ".cache", self.data() / "applications"):
            for file in folder.rglob("*"):
                self.assertNotIn(b"made-up/secret", content(file) if file.is_file() else b"", file)
        self.assertEqual(self.desktop.notifications.bodies(), [])

    def check_running(self, opener):
        self.tavelle.start().wait_ready()
        self.open_link(opener, f"tavelle://auth?token={ENCODED}")
        self.wait_for_token(TOKEN)
        self.assert_token_is_nowhere_else()
        self.assertTrue(self.tavelle.runs(), self.tavelle.output())

    def check_starting(self, opener):
        self.open_link(opener, f"tavelle://auth?token={ENCODED}")
        self.wait_for_token(TOKEN)
        hotkey = self.tavelle.profiles[0].grab()
        wait_until(lambda: self.desktop.screen.hotkey_is_taken(*hotkey), "Tavelle runs, with its hotkeys")
        self.assert_token_is_nowhere_else()
        self.open_link(opener, "tavelle://auth?token=another")
        self.wait_for_token("another")

    def test_xdg_open_reaches_the_one_that_runs(self):
        self.check_running(XDG_OPEN)

    def test_xdg_open_starts_tavelle(self):
        self.check_starting(XDG_OPEN)

    def test_gio_open_reaches_the_one_that_runs(self):
        self.check_running(GIO_OPEN)

    def test_gio_open_starts_tavelle(self):
        self.check_starting(GIO_OPEN)

    def test_xdg_open_without_a_desktop_reaches_the_one_that_runs(self):
        self.check_running(PLAIN_XDG_OPEN)

    def test_xdg_open_without_a_desktop_starts_tavelle(self):
        self.check_starting(PLAIN_XDG_OPEN)

    def test_the_bus_reaches_the_one_that_runs(self):
        self.check_running(BUS_OPEN)

    def test_the_bus_starts_tavelle(self):
        self.check_starting(BUS_OPEN)

    def test_other_links_of_the_scheme_change_nothing(self):
        self.tavelle.start().wait_ready()
        self.open_link(BUS_OPEN, "tavelle://auth?token=a")
        self.wait_for_token("a")
        for link in ("tavelle://other?token=b", "tavelle://auth?Token=b", "tavelle:auth?token=b", "tavelle://auth?token=%FF"):
            self.open_link(BUS_OPEN, link)  # ends once Tavelle has answered
            self.assertEqual(self.stored_token(), "a", link)
        self.assertTrue(self.tavelle.runs(), self.tavelle.output())

    def test_the_desktop_entry_is_installed_once_and_removed_whole(self):
        self.assertEqual(self.desktop_entry("install", program()), "")
        choices = self.desktop.home / ".config" / "mimeapps.list"
        self.assertEqual(choices.read_text(encoding="utf-8").count(APPLICATION_ID), 1)
        self.desktop_entry("remove")
        self.assertFalse(self.service_file().exists())
        self.assertFalse((self.data() / "applications" / f"{APPLICATION_ID}.desktop").exists())
        self.assertNotIn(APPLICATION_ID, choices.read_text(encoding="utf-8"))
