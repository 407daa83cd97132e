"""The applications that people write in, driven by keys, and their texts read without Tavelle's help."""

import os
import shutil

from Xlib import display

from .page import WritingPage
from .ping import WindowPing
from .selections import Client, SelectionReader
from .waiting import TimedOut, stays, wait_until

# Answers to pings before it is certain that what was sent earlier has had its effect.
KEY_STEPS = 2  # GTK 4 answers the first when it has fetched the key into a queue of its own
PASTE_STEPS = KEY_STEPS + 2  # the clipboard's targets, and its text


class Application:
    """One program with one document in one window.

    `command()` starts it; `window_class` finds its window. Most applications own PRIMARY as soon as something is selected in
    them: that tells when "select all" has worked, and gives their text without touching the clipboard.
    """

    name = ""
    window_class = ""
    select_all_keys = [("Control", "A")]
    save_keys = [("Control", "S")]
    shows_selection_in = "PRIMARY"

    def __init__(self, desktop):
        self.desktop = desktop
        self.document = desktop.documents / f"{self.name}.txt"
        self.window = None
        self.process = None
        client = Client(display.Display(desktop.display_name))
        self._reader = SelectionReader(desktop.display_name, client=client)
        self._ping = WindowPing(client)

    def command(self):
        raise NotImplementedError

    def environment(self):
        return {}

    def start(self, text):
        self.prepare(text)
        self.process = self.desktop.processes.start(self.name, *self.command(), env=self.environment())
        self.window = self.desktop.screen.wait_for_window(self.window_class, within=60)
        self.focus()
        return self

    def prepare(self, text):
        self.document.write_text(text, encoding="utf-8")

    def focus(self):
        self.desktop.screen.activate(self.window)

    def press(self, chords):
        for keys in chords:
            self.desktop.synthetic_keyboard.chord(*keys)

    def select_all(self):
        """Selects the whole text."""
        self._reader.take(self.shows_selection_in)
        self._until_selected(lambda: self.press(self.select_all_keys), self._shows_selection)

    def deselect(self):
        self.press([("End",)])

    def text(self):
        """The document's text as the application has it now; it is never empty."""
        def read():
            self.deselect()
            self.select_all()
            return self._reader.text(self.shows_selection_in)

        return wait_until(read, f"{self.name} hands over its text", within=10)

    def wait_until_pasted(self):
        """Waits until it has handled the keys that it was sent, and what a paste among them has asked of the clipboard.

        It answers pings in the order of its events, and the clipboard's owner answers it before us.
        """
        for _ in range(PASTE_STEPS):
            self._ping.wait_for_answer(self.window)
            self._reader.targets("CLIPBOARD")

    def wait_for_saved(self, text, within=10.0):
        """Saves, and waits until the file holds the text."""
        self.deselect()
        self.press(self.save_keys)
        wait_until(lambda: self._file() == text, lambda: f"{self.document.name} holds {text!r}; it holds {self._file()!r}", within)

    def close(self):
        self._reader.close()
        if self.process:
            self.desktop.processes.end(self.process)

    def _wait_until_handled(self):
        """Waits until it has handled the keys that it was sent."""
        for _ in range(KEY_STEPS):
            self._ping.wait_for_answer(self.window)

    def _shows_selection(self):
        return self._reader.is_anothers(self.shows_selection_in)

    def _until_selected(self, select, is_selected):
        """Selects; a program that has only just come up is asked until it does."""
        def selected():
            select()
            try:
                return wait_until(is_selected, "a selection", within=1.0)
            except TimedOut:
                # Keys that are only late must not be pressed again: they would select once more when the test has gone on.
                self._wait_until_handled()
                return is_selected()

        wait_until(selected, f"{self.name} selects its text", within=30)

    def _file(self):
        return self.document.read_text(encoding="utf-8-sig").removesuffix("\n")


class Mousepad(Application):
    name = "mousepad"  # GTK 3
    window_class = "(?i)mousepad"

    def command(self):
        return ["mousepad", "--disable-server", self.document]


class GnomeTextEditor(Application):
    name = "gnome-text-editor"  # GTK 4
    window_class = "gnome-text-editor|org.gnome.TextEditor"

    def command(self):
        return ["/usr/bin/gnome-text-editor", "--standalone", self.document]

    def start(self, text):
        """It reads its file while its window is there already, and takes any selection back when it has."""
        super().start(text)

        def has_read_its_file():
            if self.text() != text:
                return False
            try:
                stays(self._shows_selection, "the selection has gone", during=0.4)
                return True
            except AssertionError:
                return False

        wait_until(has_read_its_file, "the editor has read its file", within=60)
        return self


class FeatherPad(Application):
    name = "featherpad"  # Qt, which owns PRIMARY only for what the mouse selects: a copy has to show the selection
    window_class = "(?i)featherpad"
    select_all_keys = [("Control", "A"), ("Control", "C")]
    shows_selection_in = "CLIPBOARD"

    def command(self):
        return ["featherpad", "--standalone", self.document]


class Writer(Application):
    name = "libreoffice-writer"
    window_class = "libreoffice-writer"

    def prepare(self, text):
        super().prepare(text)
        profile = self.desktop.home / "libreoffice" / "user"
        profile.mkdir(parents=True, exist_ok=True)
        (profile / "registrymodifications.xcu").write_text(WRITER_SETTINGS, encoding="utf-8")

    def command(self):
        return ["soffice", "--norestore", "--nologo", "--nofirststartwizard", "--writer",
                f"-env:UserInstallation=file://{self.desktop.home}/libreoffice", self.document]  # fmt: skip


class Emacs(Application):
    """With cua-mode, where Control+C copies after a moment's wait for a second key, and the region kept after a copy."""

    name = "emacs"
    window_class = "(?i)emacs"
    select_all_keys = [("Control", "X"), ("H",)]
    save_keys = [("Control", "X"), ("Control", "S")]

    def command(self):
        settings = "(setq cua-keep-region-after-copy t inhibit-startup-screen t make-backup-files nil)"
        return ["emacs", "-Q", "--eval", settings, "--eval", "(cua-mode 1)", self.document]

    def wait_for_document(self):
        title = self.desktop.screen.title
        wait_until(lambda: self.document.name in title(self.window), "Emacs shows the document", within=30)

    def deselect(self):
        """Not needed: every "select all" takes PRIMARY anew, while moving the cursor would only shrink the selection."""


class TkText(Application):
    name = "tk"
    window_class = "(?i)tavelletk"
    select_all_keys = [("Control", "slash")]

    def command(self):
        script = self.desktop.documents / "text.tcl"
        script.write_text(TK_SCRIPT, encoding="utf-8")
        return ["wish", "-encoding", "utf-8", script, "-name", "tavelletk", "--", self.document]

    def wait_for_saved(self, text, within=10.0):
        """The script writes the file at every change."""
        wait_until(lambda: self._file() == text, lambda: f"the text is {text!r}; it is {self._file()!r}", within)


class Browser(Application):
    """A page with a text area, which tells its server what it holds and what of it is selected."""

    def prepare(self, text):
        self.page = WritingPage(text)

    def start(self, text):
        super().start(text)
        wait_until(lambda: self.page.loaded, f"{self.name} shows the page", within=60)
        return self

    def select_all(self):
        self._until_selected(lambda: self.press(self.select_all_keys), lambda: self.page.is_all_selected)

    def text(self):
        before = self.page.asked
        self.press([("F2",)])
        wait_until(lambda: self.page.asked > before, f"{self.name} tells its text", within=10)
        return self.page.text

    def wait_for_saved(self, text, within=10.0):
        wait_until(lambda: self.page.text == text, lambda: f"the page holds {text!r}; it holds {self.page.text!r}", within)

    def close(self):
        super().close()
        self.page.close()


class Chromium(Browser):
    name = "chromium"
    window_class = "(?i)chromium"

    def command(self):
        # Chromium refuses its own sandbox to root.
        sandbox = ["--no-sandbox"] if os.getuid() == 0 else []
        return ["chromium", *sandbox, "--disable-gpu", "--no-first-run", "--disable-background-networking", "--disable-sync",
                "--disable-component-update", "--no-default-browser-check", "--password-store=basic",
                f"--user-data-dir={self.desktop.home}/chromium", "--window-size=900,700", self.page.url]  # fmt: skip


class Firefox(Browser):
    name = "firefox"
    window_class = "(?i)firefox"

    def prepare(self, text):
        super().prepare(text)
        profile = self.desktop.home / "firefox"
        profile.mkdir(exist_ok=True)
        (profile / "user.js").write_text(FIREFOX_SETTINGS, encoding="utf-8")

    def command(self):
        program = "firefox-esr" if shutil.which("firefox-esr") else "firefox"
        return [program, "--no-remote", "--profile", self.desktop.home / "firefox", self.page.url]


class XTerm(Application):
    """A terminal whose program takes down every line it is given and every interrupt."""

    name = "xterm"  # copies by mouse only
    window_class = "XTerm"
    word = (20, 10)  # a place in the first word that it shows

    def __init__(self, desktop):
        super().__init__(desktop)
        self.said = desktop.documents / "terminal.log"

    def prepare(self, text):
        self.said.write_text("", encoding="utf-8")
        self._shown = text
        self._program = ["/bin/sh", self.desktop.documents / "terminal.sh", self.said, text]
        self._program[1].write_text(TERMINAL_SCRIPT, encoding="utf-8")

    def command(self):
        return ["xterm", "-e", *self._program]

    def start(self, text):
        super().start(text)
        wait_until(lambda: "ready" in self.events(), "the terminal's program runs")
        return self

    def select_all(self):
        """Selects the shown word by a double click."""
        place = self.desktop.screen.place(self.window)
        self._reader.take("PRIMARY")

        def double_click():
            for _ in range(2):
                self.desktop.pointer.click(place.x + self.word[0], place.y + self.word[1])

        # The program's line may be written before the terminal shows it.
        self._until_selected(double_click, lambda: self._shows_selection() and self._reader.text("PRIMARY") == self._shown)

    def events(self):
        return self.said.read_text(encoding="utf-8").splitlines()

    def type_return(self):
        """Ends the line, and waits until the program has it."""
        self.press([("Return",)])
        wait_until(lambda: any(event.startswith("line") for event in self.events()), "the terminal's program has its line")


class Xfce4Terminal(XTerm):
    name = "xfce4-terminal"  # Control+Shift+C copies, Control+Shift+V pastes, as in most terminals
    window_class = "(?i)xfce4-terminal"
    word = (20, 14)

    def command(self):
        return ["xfce4-terminal", "--disable-server", "--hide-menubar", "--hide-toolbar", "--hide-scrollbar", "-x", *self._program]


TK_SCRIPT = """
wm title . {Tk text}
set document [lindex $argv end]
text .t -width 80 -height 20 -undo 1
pack .t -fill both -expand 1
set file [open $document r]
fconfigure $file -encoding utf-8
.t insert 1.0 [read -nonewline $file]
close $file
.t mark set insert 1.0
proc report {} {
  .t edit modified 0
  set file [open $::document.new w]
  fconfigure $file -encoding utf-8
  puts -nonewline $file [.t get 1.0 end-1c]
  close $file
  file rename -force $::document.new $::document
}
.t edit modified 0
bind .t <<Modified>> { if {[.t edit modified]} { after idle report } }
focus -force .t
"""

TERMINAL_SCRIPT = """
trap 'echo interrupted >> "$1"' INT
printf '%s\\n' "$2"
echo ready >> "$1"
while true; do
  if IFS= read -r line; then printf 'line %s\\n' "$line" >> "$1"; fi
done
"""

WRITER_SETTINGS = """<?xml version="1.0" encoding="UTF-8"?>
<oor:items xmlns:oor="http://openoffice.org/2001/registry">
<item oor:path="/org.openoffice.Office.Common/Save/Document"><prop oor:name="WarnAlienFormat" oor:op="fuse">
<value>false</value></prop></item>
<item oor:path="/org.openoffice.Office.Common/Misc"><prop oor:name="ShowTipOfTheDay" oor:op="fuse"><value>false</value></prop>
</item>
<item oor:path="/org.openoffice.Setup/Product"><prop oor:name="ooSetupLastVersion" oor:op="fuse"><value>99.9</value></prop>
</item>
</oor:items>
"""

FIREFOX_SETTINGS = "".join(f'user_pref("{name}", {value});\n' for name, value in {
    "browser.shell.checkDefaultBrowser": "false",
    "browser.aboutwelcome.enabled": "false",
    "browser.preonboarding.enabled": "false",
    "datareporting.policy.dataSubmissionEnabled": "false",
    "toolkit.telemetry.reportingpolicy.firstRun": "false",
    "termsofuse.bypassNotification": "true",
    "app.normandy.enabled": "false",
    "app.update.enabled": "false",
    "extensions.update.enabled": "false",
}.items())  # fmt: skip

