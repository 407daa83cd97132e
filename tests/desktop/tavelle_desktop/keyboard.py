"""Keys as a person presses them: by their place on the keyboard, whatever letter the layout puts there."""

from contextlib import contextmanager

from Xlib import X, XK, display, error
from Xlib.ext import xtest

from .waiting import wait_until

# X key codes: the evdev code of the key and 8.
KEYS = {
    "E": 26, "P": 33, "F": 41, "K": 45, "apostrophe": 48, "N": 57, "M": 58, "AltGr": 108,
    "Escape": 9, "BackSpace": 22, "Tab": 23, "W": 25, "R": 27, "T": 28, "Return": 36, "Control": 37, "A": 38, "S": 39, "G": 42,
    "H": 43, "Shift": 50, "X": 53, "C": 54, "V": 55, "slash": 61, "Alt": 64, "space": 65, "CapsLock": 66, "F2": 68, "NumLock": 77,
    "Home": 110, "Up": 111, "Left": 113, "Right": 114, "End": 115, "Down": 116, "Super": 133,
    "KP_Add": 86, "KP_1": 87, "KP_Enter": 104, "F13": 191,
}  # fmt: skip

ANY_BUTTON = X.Button1Mask | X.Button2Mask | X.Button3Mask | X.Button4Mask | X.Button5Mask


def close_display(connection):
    try:
        connection.close()
    except error.ConnectionClosedError:
        pass  # the server has ended already


class Keyboard:
    """The keyboard of one X server, by XTEST."""

    def __init__(self, display_name):
        self._display = display.Display(display_name)

    def close(self):
        close_display(self._display)

    def press(self, key):
        self._key(X.KeyPress, key)

    def release(self, key):
        self._key(X.KeyRelease, key)

    def chord(self, *keys):
        """All down in order, then up in the opposite order: chord("Control", "A")."""
        with self.held(*keys):
            pass

    def strike(self, *keys):
        """One after the other: strike("C", "A", "T")."""
        for key in keys:
            self.chord(key)

    @contextmanager
    def held(self, *keys):
        for key in keys:
            self.press(key)
        try:
            yield
        finally:
            for key in reversed(keys):
                self.release(key)

    def type(self, text):
        """Types what the layout has keys for."""
        for character in text:
            keysym = XK.XK_Return if character == "\n" else ord(character)
            code, level = next(iter(self._display.keysym_to_keycodes(keysym)))
            with self.held(*["Shift"] * level):
                for event in (X.KeyPress, X.KeyRelease):
                    xtest.fake_input(self._display, event, code)
            self._display.sync()

    def _key(self, event, key):
        xtest.fake_input(self._display, event, KEYS[key])
        self._display.sync()


class Pointer:
    """The pointer of one X server."""

    def __init__(self, display_name):
        self._display = display.Display(display_name)

    def close(self):
        close_display(self._display)

    def click(self, x, y, button=1):
        """Returns once it has gone out: a window manager that looks at it first holds it back, and not the keys after it."""
        xtest.fake_input(self._display, X.MotionNotify, x=int(x), y=int(y))
        xtest.fake_input(self._display, X.ButtonPress, button)
        xtest.fake_input(self._display, X.ButtonRelease, button)
        wait_until(lambda: not self._display.screen().root.query_pointer().mask & ANY_BUTTON, "the click has gone out")

    def move(self, x, y):
        xtest.fake_input(self._display, X.MotionNotify, x=int(x), y=int(y))
        self._display.sync()
