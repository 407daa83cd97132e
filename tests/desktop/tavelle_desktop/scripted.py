"""An application whose manners are the test's choice: how late it copies, how late it asks for what is pasted."""

import os
import select
import threading
import time
from collections import deque

from Xlib import X, Xutil, display, error

from .keyboard import KEYS, close_display
from .selections import Client, Representation, SelectionOwner, SelectionReader
from .waiting import wait_until

WINDOW_CLASS = "TavelleScripted"


class ScriptedApplication:
    """A window that answers Control+C with `text`, and writes down what Control+V brings.

    copy_after, paste_after: seconds between the key and what follows from it. A busy application answers nothing meanwhile,
    not even the question whether it is alive; one that is not busy does, as a program does that works on a thread.
    With pastes_when_told it asks for what is pasted when paste_now() is called. The first copies, so many as gives_up says, take the
    clipboard and give it up again at once.
    """

    name = "scripted"

    def __init__(self, desktop, text, copy_after=0.0, paste_after=0.0, is_busy=True, pastes_when_told=False, gives_up=0):
        self.desktop = desktop
        self.selected = text
        self.pasted = []
        self.keys = []
        self._copy_after = copy_after
        self._paste_after = paste_after
        self._is_busy = is_busy
        self._pastes_when_told = pastes_when_told
        self._gives_up = gives_up
        self._owner = None
        self._ends = False
        self._later = []
        self._pastes_due = 0
        self._display = display.Display(desktop.display_name)
        self._waiting = deque()  # events that came while a paste was being read
        self._reader = SelectionReader(desktop.display_name, client=Client(self._display, self._waiting.append))
        self._wake, self._waker = os.pipe()
        self._make_window()
        self._thread = threading.Thread(target=self._run, daemon=True)
        self._thread.start()
        self.window = desktop.screen.wait_for_window(WINDOW_CLASS)
        desktop.screen.activate(self.window)

    def wait_for_paste(self, count=1, within=10.0):
        wait_until(lambda: len(self.pasted) >= count, lambda: f"{count} pastes; {len(self.pasted)} came", within)
        return self.pasted[count - 1]

    def paste_now(self):
        """Asks for the paste that the key began, however long ago; returns what came."""
        wait_until(lambda: self._pastes_due, "Control+V")
        self._later.append((time.monotonic(), self._paste))
        os.write(self._waker, b"later")
        return self.wait_for_paste(len(self.pasted) + 1)

    def close(self):
        self._ends = True
        os.close(self._waker)
        self._thread.join()
        os.close(self._wake)
        if self._owner:
            self._owner.close()

    def _make_window(self):
        screen = self._display.screen()
        self._own = screen.root.create_window(50, 50, 300, 200, 0, screen.root_depth, background_pixel=screen.white_pixel,
                                              event_mask=X.KeyPressMask)  # fmt: skip
        self._own.set_wm_class("scripted", WINDOW_CLASS)
        self._own.set_wm_name("Scripted")
        self._own.set_wm_hints(flags=Xutil.InputHint, input=1)
        self._protocols = self._display.intern_atom("WM_PROTOCOLS")
        self._ping = self._display.intern_atom("_NET_WM_PING")
        self._own.set_wm_protocols([self._ping])
        self._own.map()
        self._display.flush()

    def _run(self):
        try:
            while True:
                while self._waiting or self._display.pending_events():
                    self._handle(self._waiting.popleft() if self._waiting else self._display.next_event())
                self._do_what_is_due()
                next_due = min((due for due, _ in self._later), default=None)
                patience = None if next_due is None else max(0.0, next_due - time.monotonic())
                ready, _, _ = select.select([self._display.fileno(), self._wake], [], [], patience)
                if self._wake in ready:
                    os.read(self._wake, 100)
                    if self._ends:
                        return
        except error.ConnectionClosedError:
            pass  # the screen has ended
        finally:
            close_display(self._display)

    def _handle(self, happened):
        if happened.type == X.KeyPress:
            self.keys.append((happened.detail, happened.state))
            if happened.state & X.ControlMask and happened.detail == KEYS["C"]:
                self._do_after(self._copy_after, self._copy)
            elif happened.state & X.ControlMask and happened.detail == KEYS["V"]:
                self._pastes_due += 1
                if not self._pastes_when_told:
                    self._do_after(self._paste_after, self._paste)
        elif happened.type == X.ClientMessage and happened.client_type == self._protocols and happened.data[1][0] == self._ping:
            self._answer_ping(happened)

    def _answer_ping(self, ping):
        root = self._display.screen().root
        ping.window = root
        root.send_event(ping, event_mask=X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        self._display.flush()

    def _do_after(self, seconds, action):
        if self._is_busy:
            time.sleep(seconds)
            action()
        else:
            self._later.append((time.monotonic() + seconds, action))

    def _do_what_is_due(self):
        now = time.monotonic()
        for entry in [entry for entry in self._later if entry[0] <= now]:
            self._later.remove(entry)
            entry[1]()

    def _copy(self):
        if self._owner:
            self._owner.close()
        self._owner = SelectionOwner(self.desktop.display_name, [Representation("UTF8_STRING", self.selected.encode())])
        if self._gives_up > 0:
            self._gives_up -= 1
            self._owner.close()
            self._owner = None

    def _paste(self):
        self.pasted.append(self._reader.text())
