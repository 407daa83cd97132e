"""Whether an application has come to the end of what it was sent, as a window manager asks it (_NET_WM_PING)."""

from Xlib import X
from Xlib.protocol import event

# Answers go to the root window: to whoever has selected its children's events, or its own, as Qt has it.
ANSWERS = X.SubstructureNotifyMask | X.StructureNotifyMask


class WindowPing:
    """Pings from a Client, whose events are its own while an answer is awaited."""

    def __init__(self, client):
        self._client = client
        self._root = client.display.screen().root
        self._protocols = client.atom("WM_PROTOCOLS")
        self._ping = client.atom("_NET_WM_PING")

    def wait_for_answer(self, window, within=30.0):
        """The window's application has fetched all events before the ping; no waiting where it has not promised an answer."""
        client = self._client
        window = client.display.create_resource_object("window", window.id)  # it may have come from another connection
        if not self._is_answered_by(window):
            return
        self._root.change_attributes(event_mask=ANSWERS)
        try:
            time = client.time()  # tells this ping from others
            window.send_event(event.ClientMessage(window=window, client_type=self._protocols,
                                                  data=(32, [self._ping, time, window.id, 0, 0])))  # fmt: skip
            client.wait(lambda happened: self._is_answer(happened, window, time), "the application answers a ping", within)
        finally:
            self._root.change_attributes(event_mask=X.NoEventMask)

    def _is_answered_by(self, window):
        promised = window.get_full_property(self._protocols, X.AnyPropertyType)
        return promised is not None and self._ping in promised.value

    def _is_answer(self, happened, window, time):
        return (happened.type == X.ClientMessage and happened.client_type == self._protocols and happened.window == self._root
                and list(happened.data[1][:3]) == [self._ping, time, window.id])  # fmt: skip
