"""The notifications that were sent on a session bus, as they were sent, whether or not anybody showed them."""

import html
import time
from dataclasses import dataclass, field

from gi.repository import Gio, GLib

from .waiting import wait_until

RULE = "type='method_call',interface='org.freedesktop.Notifications',member='Notify'"


@dataclass(frozen=True)
class Notification:
    app_name: str
    replaces: int
    icon: str
    title: str
    markup: str  # the body as it went over the bus
    actions: list = field(default_factory=list)
    hints: dict = field(default_factory=dict)
    at: float = 0.0

    @property
    def body(self):
        """The body as a person reads it."""
        return html.unescape(self.markup)


class NotificationRecorder:
    """A monitor on the bus. `sent` grows by one with every Notify call."""

    def __init__(self, address):
        self.sent = []
        self._connection = connect(address)
        self._connection.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Monitoring",
                                   "BecomeMonitor", GLib.Variant("(asu)", ([RULE], 0)), None, 0, 5000, None)  # fmt: skip
        # A monitor may not answer: from here on everything that comes is taken here.
        self._connection.add_filter(self._see)

    def close(self):
        if not self._connection.is_closed():
            self._connection.close_sync(None)

    def bodies(self, since=0):
        return [one.body for one in self.sent[since:]]

    def wait_for(self, body, since=0, within=10.0):
        """Waits until a notification with this body was sent, from the given place in the list on."""
        return self.wait_for_one(lambda one: one.body == body, repr(body), since, within)

    def wait_for_one(self, accept, what, since=0, within=10.0):
        return wait_until(lambda: next(filter(accept, self.sent[since:]), None),
                          lambda: f"the notification {what}; sent were {self.bodies(since)}", within)  # fmt: skip

    def _see(self, _connection, message, incoming):
        if incoming and message.get_member() == "Notify":
            app_name, replaces, icon, title, markup, actions, hints, _timeout = message.get_body().unpack()
            self.sent.append(Notification(app_name, replaces, icon, title, markup, actions, hints, time.monotonic()))
        return None


def connect(address):
    """A connection of our own to a bus, by its address and never by the caller's environment."""
    flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
    return Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
