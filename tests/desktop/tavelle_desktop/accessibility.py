"""What a screen reader is told of the applications of a desktop: names, roles, texts, states, places."""

import os
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

# The interfaces themselves are what is asked; only their older spelling is in this version.
warnings.filterwarnings("ignore", category=DeprecationWarning, message="Atspi.*")

HIDDEN_TEXT = "password text"  # a field that does not show what it holds is found as a text as well

_joined = None


def join(desktop):
    """Joins the accessibility bus of a desktop. A process can join one only: each test has a process of its own."""
    global _joined
    if _joined not in (None, desktop.folder):
        raise RuntimeError("this process has joined the accessibility bus of another desktop")
    if _joined:
        return
    address = desktop.bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None,
                                    GLib.VariantType("(s)"), 0, 10000, None)  # fmt: skip
    os.environ["AT_SPI_BUS_ADDRESS"] = address.unpack()[0]
    os.environ["DISPLAY"] = desktop.display_name
    Atspi.init()
    Atspi.set_timeout(10_000, 15_000)  # it is 800 ms for what has run for 15 s, which a busy machine takes now and then
    _joined = desktop.folder


def applications():
    return list(Element(Atspi.get_desktop(0)).children())


class Element:
    """One accessible object; it may go at any time, and is then nothing more than a false answer."""

    def __init__(self, accessible):
        self._accessible = accessible

    @property
    def role(self):
        return self._accessible.get_role_name()

    @property
    def name(self):
        return self._accessible.get_name()

    @property
    def text(self):
        return Atspi.Text.get_text(self._accessible, 0, Atspi.Text.get_character_count(self._accessible))

    @property
    def is_all_selected(self):
        count = Atspi.Text.get_character_count(self._accessible)
        if not Atspi.Text.get_n_selections(self._accessible):
            return count == 0
        selected = Atspi.Text.get_selection(self._accessible, 0)
        return (selected.start_offset, selected.end_offset) == (0, count)

    @property
    def place(self):
        return Atspi.Component.get_extents(self._accessible, Atspi.CoordType.WINDOW)

    def is_(self, state):
        return self._accessible.get_state_set().contains(getattr(Atspi.StateType, state.upper()))

    def press(self):
        if not Atspi.Action.do_action(self._accessible, 0):
            raise AssertionError(f"{self.role} {self.name!r} cannot be pressed")

    def children(self):
        for index in range(self._accessible.get_child_count()):
            child = self._accessible.get_child_at_index(index)
            if child:
                yield Element(child)

    def all(self):
        """This and everything in it, from the top."""
        yield self
        for child in self.children():
            yield from child.all()

    def find(self, role, name=None):
        """The first that is so called, or none."""
        for element in self.all():
            if (element.role == role or (role == "text" and element.role == HIDDEN_TEXT)) and name in (None, element.name):
                return element
        return None
