"""What the settings window costs: the time until it is drawn, memory, and a letter typed where many profiles are stored."""

import subprocess
import time
import uuid
from collections import defaultdict
from contextlib import contextmanager

from tavelle_desktop.session import Desktop, Options
from tavelle_desktop.tray import MIDDLE, Tray
from tavelle_desktop.waiting import wait_until

from .events import Events, Teller
from .peers import Floor, Tavelle
from .usage import memory, processor_seconds, wait_until_idle

UNUSED_URL = "http://127.0.0.1:9/v1/chat/completions"
RENDERER = "tavelle-settings"
LETTER_A = 38  # X key code
MILLISECOND = 1e6
NEARLY_ALL = 0.02  # of a window's pixels may still be missing from what is called drawn: its title is not active yet
REST = 300  # seconds that a renderer stays after its window was closed

# A cursor that blinks draws as well.
STILL = "[Settings]\ngtk-cursor-blink=false\n"


def many_profiles(count=1000, with_hotkeys=100):
    letters = [1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 15, 16, 17, 31, 32, 34, 35, 37, 38, 40, 45, 46]
    hotkeys = [(key, modifiers) for modifiers in (0x900, 0x1100, 0x1A00, 0x1900) for key in letters][:with_hotkeys]
    for number in range(count):
        key, modifiers = hotkeys[number] if number < len(hotkeys) else (0, 0)
        yield {"id": str(uuid.UUID(int=number + 1)).upper(), "name": f"Profile {number}", "keyCode": key, "modifiers": modifiers,
               "systemPrompt": "Reword the following text to improve clarity, grammar, and flow. Return ONLY the text. " * 3}  # fmt: skip


class Stage:
    """A desktop of its own, and the person who looks at it."""

    def __init__(self, desktop, programs, profiles):
        folder = desktop.home / ".config" / "gtk-4.0"
        folder.mkdir(parents=True)
        (folder / "settings.ini").write_text(STILL, encoding="ascii")
        self.desktop = desktop
        self.programs = programs
        self.tavelle = Tavelle(desktop, UNUSED_URL, programs.tavelle, profiles)
        self.events = Events()
        self.viewer = Teller(desktop.processes, self.events, "viewer", programs.folder / "bench-viewer", self.tavelle.settings_folder)
        self._tray = Tray(desktop)

    def start(self):
        self.tavelle.start()
        self._tray.wait_for_item()

    def renderer(self):
        return self.desktop.processes.find(RENDERER)

    def residents(self):
        return [pid for pid in (self.tavelle.process.pid, self.renderer()) if pid]

    def wait_until_still(self, quiet=0.7):
        self.events.wait_for_quiet(quiet, lambda event: event["event"] == "drawn", 10)

    def open_by_menu(self):
        """Milliseconds from the click to the window drawn."""
        x, y = self._tray.point_at(MIDDLE)
        self.viewer.ask("looking", "look")
        self.wait_until_still()
        self.viewer.ask("seen", "seen", 0, 0, 1, 1)
        return self.drawn(lambda: self.viewer.ask("did", "click", x, y)["t"], "(?i)app.tavelle")

    def drawn(self, act, window_class):
        """Milliseconds from `act`, which tells when that was, to the window drawn."""
        self.viewer.ask("looking", "look")
        began = act()
        self.window = self.desktop.screen.wait_for_window(window_class)
        self.wait_until_still()
        place = self.desktop.screen.place(self.window)
        pictures = self._seen(place)
        enough = NEARLY_ALL * place.width * place.height
        return next((picture["t"] - began) / MILLISECOND for picture in pictures if picture["left"] <= enough)

    def letter(self):
        """Milliseconds from a key press to the letter drawn, to everything drawn, and to stored."""
        self.viewer.ask("looking", "look")
        mark = self.events.mark()
        pressed = self.viewer.ask("did", "key", LETTER_A)["t"]
        self.wait_until_still(0.3)
        pictures = self._seen(self.desktop.screen.place(self.window))
        drawn = next(picture["t"] for picture in pictures if picture["changed"])
        all_drawn = next(picture["t"] for picture in pictures if not picture["left"])
        stored = (event["t"] for event in self.events.since(mark) if event["event"] == "stored")
        return [(at - pressed) / MILLISECOND for at in (drawn, all_drawn, *stored)]

    def close(self):
        self.desktop.screen.activate(self.window)
        self.desktop.keyboard.chord("Control", "W")
        wait_until(lambda: not self.is_open(), "the window is closed")

    def is_open(self):
        return self.desktop.screen.window_of_class("(?i)app.tavelle") is not None

    def _seen(self, place):
        return self.viewer.ask("seen", "seen", place.x, place.y, place.width, place.height, within=30)["pictures"]


class WindowBench:
    def __init__(self, programs, plan, logs, tell):
        self.programs = programs
        self.plan = plan
        self.logs = logs
        self.tell = tell
        self.values = defaultdict(list)

    def take_all(self):
        with self._stage("window", (Tavelle.PROFILE,)) as stage:
            self.tell(f"{self.plan.openings} first openings of the settings window, and as many after")
            self._measure_floor(stage)
            self._measure_openings(stage)
            self._measure_memory(stage)
        with self._stage("letters", tuple(many_profiles())) as stage:
            self.tell(f"{self.plan.letters} letters into a name among 1,000 profiles")
            self._measure_letters(stage)

    @contextmanager
    def _stage(self, name, profiles):
        options = Options(keyring="unlocked", notifications=True, tray=True, screen="800x700")
        with Desktop(options, self.logs / name) as desktop:
            yield Stage(desktop, self.programs, profiles)

    def _measure_floor(self, stage):
        """A bare window of the same toolkit: its start, its showing again, a letter in its field."""
        for number in range(self.plan.openings + 1):
            window = Window(stage)
            first = stage.drawn(window.start, Window.NAME)
            window.hide()
            again = stage.drawn(window.show, Window.NAME)
            letter, _all = stage.letter()
            if number > 0:  # the first time the files it needs were not in memory yet
                self._add(Floor.name, {"window first": first, "window again": again, "letter drawn": letter})
            if number == self.plan.openings:
                self._add_memory(Floor.name, "renderer open", [window.process.pid])
            window.end()

    def _measure_openings(self, stage):
        for number in range(self.plan.openings + 1):
            stage.start()
            if number == self.plan.openings:
                self._settle(stage)
                self._add_memory(Tavelle.name, "before the window", [stage.tavelle.process.pid])
            first = stage.open_by_menu()
            stage.close()
            again = stage.open_by_menu()
            if number > 0:
                self._add(Tavelle.name, {"window first": first, "window again": again})
            if number < self.plan.openings:
                stage.tavelle.stop()
                wait_until(lambda: not stage.renderer(), "the renderer has ended")

    def _measure_memory(self, stage):
        """After the last of the openings."""
        self._settle(stage)
        self._add_memory(Tavelle.name, "window open", [stage.tavelle.process.pid])
        self._add_memory(Tavelle.name, "renderer open", [stage.renderer()])
        stage.close()
        self._settle(stage)
        self._add_memory(Tavelle.name, "window closed", [stage.tavelle.process.pid])
        if self.plan.is_quick:
            return
        self.tell(f"until the renderer ends, {REST} s after the window was closed")
        wait_until(lambda: not stage.renderer(), "the renderer has ended", within=REST + 30, every=1)
        self._settle(stage)
        self._add_memory(Tavelle.name, "renderer ended", [stage.tavelle.process.pid])

    def _measure_letters(self, stage):
        stage.start()
        self.values["window many", Tavelle.name] = [stage.open_by_menu()]
        stage.desktop.screen.activate(stage.window)
        stage.desktop.keyboard.chord("Alt", "N")
        stage.desktop.keyboard.chord("End")
        for number in range(self.plan.letters + 2):
            self._settle(stage, 0.2)
            used = [processor_seconds(pid) for pid in stage.residents()]
            drawn, all_drawn, stored = stage.letter()
            host, renderer = ((processor_seconds(pid) - before) * 1000 for pid, before in zip(stage.residents(), used))
            if number > 1:
                self._add(Tavelle.name, {"letter drawn": drawn, "letter everywhere": all_drawn, "letter stored": stored,
                                         "letter processor": host, "letter processor of the renderer": renderer})  # fmt: skip

    def _settle(self, stage, quiet=1.5):
        wait_until_idle(stage.residents, quiet)

    def _add(self, peer, measured):
        for name, value in measured.items():
            self.values[name, peer].append(value)

    def _add_memory(self, peer, when, pids):
        self._add(peer, {f"{kind} {when}": megabytes for kind, megabytes in memory(pids).items()})


class Window:
    """A window of the toolkit that does nothing else."""

    NAME = "bench-window"

    def __init__(self, stage):
        self._stage = stage
        self.process = None

    def start(self):
        began = time.monotonic_ns()
        self.process = self._stage.desktop.processes.start(self.NAME, self._stage.programs.folder / self.NAME, stdin=subprocess.PIPE)
        return began

    def hide(self):
        self._say("hide")
        self._wait_until_gone()

    def show(self):
        began = time.monotonic_ns()
        self._say("show")
        return began

    def end(self):
        self._stage.desktop.processes.end(self.process)
        self._wait_until_gone()

    def _wait_until_gone(self):
        wait_until(lambda: not self._stage.desktop.screen.window_of_class(self.NAME), "the window is gone")

    def _say(self, what):
        self.process.stdin.write(f"{what}\n".encode())
        self.process.stdin.flush()
