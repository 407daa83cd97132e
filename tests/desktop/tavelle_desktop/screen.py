"""What stands on a screen: windows, which of them has the keyboard, which keys are down, which hotkeys are taken."""

import re
from contextlib import contextmanager
from dataclasses import dataclass

from Xlib import X, Xutil, display, error
from Xlib.protocol import event

from .keyboard import close_display
from .waiting import wait_until

LOCKS = X.LockMask | X.Mod2Mask
MODIFIERS = X.ShiftMask | X.ControlMask | X.Mod1Mask | X.Mod3Mask | X.Mod4Mask | X.Mod5Mask


@dataclass(frozen=True)
class Rectangle:
    x: int
    y: int
    width: int
    height: int


class Screen:
    def __init__(self, display_name):
        self._display = display.Display(display_name)
        self._root = self._display.screen().root

    def close(self):
        close_display(self._display)

    def window_manager_runs(self):
        return bool(self._property(self._root, "_NET_SUPPORTING_WM_CHECK"))

    def window_of_class(self, pattern):
        """The newest managed window whose class or instance name fits, or none."""
        for window in reversed(self._property(self._root, "_NET_CLIENT_LIST") or []):
            window = self._display.create_resource_object("window", window)
            if re.search(pattern, " ".join(self._window_class(window))):
                return window
        return None

    def wait_for_window(self, pattern, within=30.0):
        return wait_until(lambda: self.window_of_class(pattern), f"a window of class {pattern}", within)

    def title(self, window):
        try:
            title = window.get_full_property(self._atom("_NET_WM_NAME"), X.AnyPropertyType)
        except error.XError:
            return ""
        return title.value.decode(errors="replace") if title else ""

    def activate(self, window):
        """Brings a window to the front as a panel does, and waits until it has the keyboard."""
        request = event.ClientMessage(window=window, client_type=self._atom("_NET_ACTIVE_WINDOW"),
                                      data=(32, [2, X.CurrentTime, 0, 0, 0]))  # fmt: skip
        self._root.send_event(request, event_mask=X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        wait_until(lambda: self.has_keyboard(window), f"the window {self.title(window)!r} has the keyboard")

    def has_keyboard(self, window):
        active = self._property(self._root, "_NET_ACTIVE_WINDOW")
        return bool(active) and active[0] == window.id

    def minimise(self, window):
        """As the window's entry in a task list does, and waits until it is gone from the screen."""
        iconic = 3
        request = event.ClientMessage(window=window, client_type=self._atom("WM_CHANGE_STATE"), data=(32, [iconic, 0, 0, 0, 0]))
        self._root.send_event(request, event_mask=X.SubstructureRedirectMask | X.SubstructureNotifyMask)
        wait_until(lambda: not self.is_shown(window), f"the window {self.title(window)!r} is minimised")

    def is_shown(self, window):
        return window.get_attributes().map_state == X.IsViewable

    def focus_without_window_manager(self, window):
        window.set_input_focus(X.RevertToPointerRoot, X.CurrentTime)
        self._display.sync()

    def top_windows(self):
        """The mapped children of the root with their places; menus and notifications stand among them."""
        found = []
        for window in self._root.query_tree().children:
            try:
                attributes = window.get_attributes()
                if attributes.map_state == X.IsViewable and attributes.win_class == X.InputOutput:
                    found.append((window, self.place(window)))
            except error.XError:
                continue  # gone meanwhile
        return found

    def find_windows(self, accept):
        """Every mapped window of the tree whose (class names, title) are accepted."""
        found, open_windows = [], [self._root]
        while open_windows:
            window = open_windows.pop()
            try:
                if window is not self._root and accept(self._window_class(window), self._name(window)):
                    if window.get_attributes().map_state == X.IsViewable:
                        found.append(window)
                open_windows.extend(window.query_tree().children)
            except error.XError:
                continue
        return found

    def place(self, window):
        geometry = window.get_geometry()
        corner = self._root.translate_coords(window, 0, 0)
        return Rectangle(corner.x, corner.y, geometry.width, geometry.height)

    def is_resizable(self, window):
        """Whether its program lets a window manager change its size."""
        hints = window.get_wm_normal_hints()
        fixed = Xutil.PMinSize | Xutil.PMaxSize
        return hints.flags & fixed != fixed or (hints.min_width, hints.min_height) != (hints.max_width, hints.max_height)

    def pixels(self, window):
        geometry = window.get_geometry()
        return window.get_image(0, 0, geometry.width, geometry.height, X.ZPixmap, 0xFFFFFFFF).data

    def darkest(self, window, *rectangle):
        """The green of the darkest pixel."""
        return min(window.get_image(*rectangle, X.ZPixmap, 0xFFFFFFFF).data[1::4])

    def hotkey_is_taken(self, keycode, modifiers):
        """Whether another client holds the passive grab."""
        refused = error.CatchError(error.BadAccess)
        with self._alone():
            self._root.grab_key(keycode, modifiers, True, X.GrabModeAsync, X.GrabModeAsync, onerror=refused)
            self._display.sync()
            if not refused.get_error():
                self._root.ungrab_key(keycode, modifiers)
        return bool(refused.get_error())

    def take_hotkey(self, keycode, modifiers):
        """Holds a combination as another program would, with every state of the locks, until close()."""
        for locks in (0, X.LockMask, X.Mod2Mask, LOCKS):
            self._root.grab_key(keycode, modifiers | locks, True, X.GrabModeAsync, X.GrabModeAsync)
        self._display.sync()

    def keyboard_is_grabbed(self):
        """Whether another client holds the whole keyboard now."""
        with self._alone():
            status = self._root.grab_keyboard(False, X.GrabModeAsync, X.GrabModeAsync, X.CurrentTime)
            if status == X.GrabSuccess:
                self._display.ungrab_keyboard(X.CurrentTime)
        return status != X.GrabSuccess

    def keys_down(self):
        keymap = self._display.query_keymap()
        return [code for code in range(256) if keymap[code // 8] >> (code % 8) & 1]

    def modifiers_down(self):
        return self._root.query_pointer().mask & MODIFIERS

    def locks_on(self):
        return self._root.query_pointer().mask & LOCKS

    def layout_group(self):
        """Which of the configured layouts is active, from 0."""
        return self._root.query_pointer().mask >> 13 & 3

    def selection_owner(self, selection):
        owner = self._display.get_selection_owner(self._atom(selection))
        return owner.id if owner else 0

    @contextmanager
    def _alone(self):
        """The server serves nobody else, so that an attempt can never be what makes another client's fail."""
        self._display.grab_server()
        try:
            yield
        finally:
            self._display.ungrab_server()
            self._display.sync()

    def _window_class(self, window):
        try:
            return window.get_wm_class() or ()
        except error.XError:
            return ()

    def _name(self, window):
        name = window.get_wm_name()
        return name if isinstance(name, str) else ""

    def _property(self, window, name):
        value = window.get_full_property(self._atom(name), X.AnyPropertyType)
        return list(value.value) if value else None

    def _atom(self, name):
        return self._display.intern_atom(name)
