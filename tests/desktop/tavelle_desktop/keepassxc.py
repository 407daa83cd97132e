"""KeePassXC as the desktop's Secret Service: a password manager that asks the person, and keeps what is deleted in a bin."""

import base64
import uuid
from dataclasses import dataclass
from xml.etree import ElementTree

from .product import APPLICATION_ID
from .waiting import wait_until

NAME = "Passwords"
OPEN = f"{NAME} - KeePassXC"  # its window's title
PASSWORD = "of the database"
ENTRY = "The key of my model"
NOTES = "to be renewed in May"
SETTINGS = """[General]
AutoSaveAfterEveryChange=false
ConfigVersion=2
UpdateCheckMessageShown=true

[GUI]
CheckForUpdates=false

[FdoSecrets]
Enabled=true
ConfirmAccessItem={asks}
"""
DATABASE = """<?xml version="1.0" encoding="UTF-8"?>
<KeePassFile>
<Meta><DatabaseName>{name}</DatabaseName><CustomData><Item><Key>FDO_SECRETS_EXPOSED_GROUP</Key><Value>{{{group}}}</Value></Item></CustomData></Meta>
<Root><Group><UUID>{group_uuid}</UUID><Name>Root</Name>{entries}</Group></Root>
</KeePassFile>"""


@dataclass(frozen=True)
class Entry:
    group: str
    title: str
    password: str
    notes: str


class KeePassXC:
    """A database that is open and shared with other programs. It has the person's own entry for the provider "custom", with this key,
    or none where that is empty. Where it asks, the person must let each program have each entry. Its file is written when it is
    locked: where each change is, one that comes while another is being written may be left out for good."""

    def __init__(self, desktop, key, asks):
        self._desktop = desktop
        self._database = desktop.home / "keys.kdbx"
        settings = desktop.home / ".config" / "keepassxc" / "keepassxc.ini"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text(SETTINGS.format(asks=str(asks).lower()), encoding="ascii")
        self._make_database(key)
        self._start()

    def entries(self):
        """As another of its programs reads them from the file."""
        file = self._command("export", "--format", "xml", self._database)
        return [entry for group in ElementTree.fromstring(file).iter("Group") for entry in entries_of(group)]

    def lock(self):
        self._desktop.processes.run("keepassxc", "--lock")
        self._wait_for_window("[Locked]")

    def unlock(self):
        """In the window in which it asks for that by itself."""
        self._desktop.screen.activate(self._wait_for_window("Unlock Database"))
        self._desktop.keyboard.chord("Control", "A")  # an answer may have been pasted there
        self._desktop.keyboard.type(PASSWORD + "\n")
        wait_until(lambda: self._windows(OPEN) and not self._windows("Unlock Database"), "the database is unlocked")

    def allow(self):
        """Lets the program that asks have what it asks for."""
        self._desktop.screen.activate(self._wait_for_window("Access Request"))
        self._desktop.keyboard.chord("Return")
        wait_until(lambda: not self._windows("Access Request"), "the question is answered")

    def _make_database(self, key):
        group, file = uuid.uuid4(), self._desktop.home / "keys.xml"
        texts = {"Title": ENTRY, "Password": key, "Notes": NOTES, "service": APPLICATION_ID, "account": "apiKey_custom"}
        strings = "".join(f"<String><Key>{name}</Key><Value>{text}</Value></String>" for name, text in texts.items())
        entry = f"<Entry><UUID>{encoded(uuid.uuid4())}</UUID>{strings}</Entry>" if key else ""
        file.write_text(DATABASE.format(name=NAME, group=group, group_uuid=encoded(group), entries=entry), encoding="utf-8")
        self._command("import", "--set-password", file, self._database, password=f"{PASSWORD}\n{PASSWORD}\n")

    def _start(self):
        self._desktop.processes.start_reading(f"{PASSWORD}\n", "keepassxc", "keepassxc", "--pw-stdin", self._database)
        self._desktop.wait_for_name("org.freedesktop.secrets")
        self._wait_for_window(OPEN)

    def _command(self, *arguments, password=f"{PASSWORD}\n"):
        return self._desktop.processes.run("keepassxc-cli", *arguments, text=password)

    def _windows(self, title):
        return self._desktop.screen.find_windows(lambda _names, shown: title in shown)

    def _wait_for_window(self, title):
        return wait_until(lambda: self._windows(title), f"a window {title!r}", within=20)[0]


def entries_of(group):
    """Those of the group itself, without their histories."""
    for entry in group.findall("Entry"):
        texts = {string.findtext("Key"): string.findtext("Value") or "" for string in entry.findall("String")}
        yield Entry(group.findtext("Name"), texts["Title"], texts["Password"], texts.get("Notes", ""))


def encoded(identifier):
    return base64.b64encode(identifier.bytes).decode()
