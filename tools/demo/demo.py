#!/usr/bin/python3
"""Tavelle at work on a private virtual desktop: a text is selected in an editor, the hotkey pressed, the text reworded.

Prints what happened and keeps screenshots. The exit status is 0 only if everything held.
"""

import argparse
import http.client
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tests" / "desktop"))

from tavelle_desktop import apps  # noqa: E402
from tavelle_desktop.processes import wait_for_end  # noqa: E402
from tavelle_desktop.product import Tavelle  # noqa: E402
from tavelle_desktop.providers import PROVIDERS  # noqa: E402
from tavelle_desktop.selections import SelectionOwner, SelectionReader, difference, rich_contents  # noqa: E402
from tavelle_desktop.session import Desktop, Options  # noqa: E402
from tavelle_desktop.stand_in import StandIn  # noqa: E402
from tavelle_desktop.tray import LAST, Tray  # noqa: E402
from tavelle_desktop.waiting import wait_until  # noqa: E402

OLLAMA = ("127.0.0.1", 11434)
SECRET = "made-up-secret"  # for the stand-in, who takes no other
TYPED = "hey, i dont know if u recieved my msg about teh meeting tommorow. it was moved to 3 pm.   pls lemme know asap , thx"


class Failed(Exception):
    """Something that a person would have noticed; its text says what."""


class Demonstration:
    def __init__(self, desktop, options):
        self.desktop = desktop
        self.options = options
        self.pictures = options.out
        self.reader = SelectionReader(desktop.display_name)
        self.editor = apps.Mousepad(desktop)
        self.provider = PROVIDERS[options.provider]
        self.tavelle = Tavelle(desktop, self.provider.program(options.program.resolve()))

    def run(self):
        self.start_tavelle()
        self.write_text()
        before = self.editor.text()
        print(f"\nbefore:\n{indented(before)}")
        clipboard = rich_contents()
        owner = SelectionOwner(self.desktop.display_name, clipboard)
        self.picture("1-editor-before")

        print(f"\npressing {'+'.join(self.tavelle.profiles[0].keys())} ...")
        self.tavelle.press_hotkey()
        self.wait_for_last_word()
        self.wait_for_shown_notification()
        self.picture("2-notification")
        changed = difference(clipboard, self.reader.contents())
        owner.close()
        self.check_text(before)
        self.check_clipboard(clipboard, changed)
        self.picture("3-editor-after")
        self.tray.open_menu()
        self.picture("4-tray-menu")
        self.desktop.keyboard.chord("Escape")
        self.quit(clipboard)

    def start_tavelle(self):
        if self.options.ollama:
            base_url = f"http://{OLLAMA[0]}:{OLLAMA[1]}/v1"
            self.tavelle.configure(base_url, provider="ollama", model=self.options.ollama)
            print(f"model: {self.options.ollama}, served by Ollama at {base_url}")
        else:
            self.start_stand_in()
        self.tavelle.start().wait_ready()
        self.tray = Tray(self.desktop)
        self.tray.wait_for_item()
        print("Tavelle runs: its hotkey is live, its icon is in the tray")

    def start_stand_in(self):
        provider = self.provider
        port = provider.port(self.options.program.resolve())
        stand_in = StandIn(self.desktop, SECRET if provider.account else None, port).start()
        self.tavelle.configure(stand_in.url + provider.version, provider=provider.name, model=provider.model)
        if provider.account:
            self.tavelle.store_secret(SECRET, provider.account)
        print(f"provider: {provider.name}")
        print(f"model: none; a stand-in at {stand_in.url} speaks the provider's format and rewords by simple rules")
        if provider.is_hosted:
            print("this Tavelle was built to find the hosted service there; the one that is shipped cannot be pointed anywhere")

    def write_text(self):
        """The person's own text stands in a copy of their file; the usual one is typed in front of everybody's eyes."""
        if self.options.file:
            self.editor.start(self.options.file.read_text(encoding="utf-8"))
        else:
            self.editor.start(" ")
            self.editor.select_all()
            self.desktop.keyboard.type(TYPED)
        self.editor.select_all()

    def wait_for_last_word(self):
        def is_last(notification):
            return notification.body not in ("Rewriting...",)

        try:
            last = self.desktop.notifications.wait_for_one(is_last, "that ends the run", within=self.options.patience)
        finally:
            sent = self.desktop.notifications.sent
            print("\nnotifications:\n" + indented("\n".join(f"{one.title}: {one.body}" for one in sent) or "none"))
        if last.body != "Done!":
            raise Failed(f"the run ended with {last.body!r}")
        self.editor.wait_until_pasted()

    def wait_for_shown_notification(self):
        wait_until(lambda: self.desktop.screen.find_windows(lambda names, _title: "Dunst" in names), "a notification on the screen")

    def check_text(self, before):
        after = self.editor.text()
        print(f"\nafter:\n{indented(after)}")
        for name, text in (("before", before), ("after", after)):
            (self.pictures / f"{name}.txt").write_text(text, encoding="utf-8")
        if after == before:
            raise Failed("the text is the same as before")

    def check_clipboard(self, clipboard, changed):
        if changed:
            raise Failed(f"the clipboard did not come back: {changed}")
        size = sum(len(one.data) for one in clipboard)
        print(f"\nclipboard: {len(clipboard)} types, {size:,} bytes, in their order and every byte as before")

    def quit(self, clipboard):
        """What Tavelle owns of the clipboard outlives its quitting, until somebody copies something else."""
        self.tray.choose(LAST)
        wait_until(lambda: not self.desktop.tray_items(), "the status item has gone")
        changed = difference(clipboard, self.reader.contents())
        if changed:
            raise Failed(f"quitting changed the clipboard: {changed}")
        self.reader.take("CLIPBOARD")
        if wait_for_end(self.tavelle.process, "Tavelle ends") != 0:
            raise Failed(f"Tavelle ended with {self.tavelle.process.returncode}")
        print("\nQuit Tavelle, by the menu: it ended, and the clipboard outlived it")

    def picture(self, name):
        self.desktop.screenshot(self.pictures / f"{name}.png")

    def close(self):
        self.editor.close()
        self.reader.close()


def indented(text):
    return "    " + text.rstrip("\n").replace("\n", "\n    ")


def ollama_answers():
    connection = http.client.HTTPConnection(*OLLAMA, timeout=3)
    try:
        connection.request("GET", "/v1/models")
        return connection.getresponse().status == 200
    except OSError:
        return False
    finally:
        connection.close()


def readable_text(path):
    """The file, if it is one with a text in it that a person could select."""
    path = Path(path)
    try:
        text = path.read_text(encoding="utf-8")
    except (OSError, UnicodeDecodeError) as error:
        raise argparse.ArgumentTypeError(f"cannot read {path} as UTF-8 text: {error}") from None
    if not text.strip():
        raise argparse.ArgumentTypeError(f"{path} has no text in it")
    return path


def main():
    parser = argparse.ArgumentParser(prog="./run --demo", description=__doc__.splitlines()[0])
    parser.add_argument("file", nargs="?", type=readable_text, help="a text of your own; the file itself is not touched")
    model = parser.add_mutually_exclusive_group()
    model.add_argument("--provider", choices=PROVIDERS, default="custom", help="reword through this provider's format (custom)")
    model.add_argument("--ollama", metavar="MODEL", help="reword with this model of the Ollama that runs on this machine")
    parser.add_argument("--program", type=Path, default=ROOT / "build/release/bin/tavelle", help=argparse.SUPPRESS)
    parser.add_argument("--out", type=Path, default=ROOT / "out" / "demo", help="the folder for screenshots and logs")
    options = parser.parse_args()
    options.patience = 180 if options.ollama else 30
    options.out = options.out.resolve()
    options.out.mkdir(parents=True, exist_ok=True)
    for picture in options.out.glob("*.png"):
        picture.unlink()  # of an earlier time
    if options.ollama and not ollama_answers():
        print(f"demo: no Ollama answers at http://{OLLAMA[0]}:{OLLAMA[1]}", file=sys.stderr)
        return 1

    logs = options.out / "logs"
    try:
        with Desktop(Options(screen="1024x640"), logs) as desktop:
            demonstrate(desktop, options)
    except (Failed, AssertionError, RuntimeError, OSError) as trouble:
        print(f"\ndemo: FAILED: {trouble}\nscreenshots: {options.out}\nlogs: {logs}", file=sys.stderr)
        return 1
    except KeyboardInterrupt:
        return 130
    print(f"\nscreenshots: {options.out}\ndemo: everything held")
    return 0


def demonstrate(desktop, options):
    demonstration = Demonstration(desktop, options)
    try:
        demonstration.run()
    except BaseException:
        demonstration.picture("failed")
        raise
    finally:
        demonstration.close()


if __name__ == "__main__":
    sys.exit(main())
