"""The clipboard seen from another program: an owner with any contents and any manners, and a reader of every byte."""

import os
import select
import threading
import time
from dataclasses import dataclass

from Xlib import X, Xatom, display, error
from Xlib.protocol import event

from .keyboard import close_display
from .waiting import TimedOut

PIECE = 128 * 1024  # the largest property that is sent at once; longer answers go piece by piece (INCR)
PROTOCOL_TARGETS = {"TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS", "DELETE"}


@dataclass(frozen=True)
class Representation:
    """One target with the type that its answer carries; the two differ for some, as TEXT does."""

    target: str
    data: bytes
    type: str = ""

    @property
    def answer_type(self):
        return self.type or self.target


def rich_contents(text="What the person had copied: häßlich, 漢字, 🙂"):
    """Text, HTML, an image and an application's private type, as an office program offers them."""
    plain = text.encode()
    picture = b"\x89PNG\r\n\x1a\n" + bytes(range(256)) * 40
    return [
        Representation("text/html", f"<p>What the <b>person</b> had copied: {text}</p>".encode()),
        Representation("UTF8_STRING", plain),
        Representation("text/plain;charset=utf-8", plain),
        Representation("STRING", text.encode("latin-1", "replace"), "STRING"),
        Representation("image/png", picture),
        Representation("application/x-office-private;windows_formatname=\"Object Descriptor (XML)\"", b"\0\x01\xff private \0"),
        Representation("application/x-empty", b""),
    ]


class Client:
    """A window and what both sides of a transfer need: on a connection of its own, or on an application's.

    On an application's connection, `others` takes the events that are not the transfer's.
    """

    def __init__(self, connection, others=lambda happened: None):
        self.display = connection
        self._others = others
        self.window = self.display.screen().root.create_window(
            0, 0, 1, 1, 0, X.CopyFromParent, event_mask=X.PropertyChangeMask)  # fmt: skip

    def atom(self, name):
        return self.display.intern_atom(name)

    def name(self, atom):
        return self.display.get_atom_name(atom) if atom else ""

    def wait(self, accept, what, within):
        """The next event that is accepted."""
        end = time.monotonic() + within
        while True:
            if not self.display.pending_events():
                select.select([self.display.fileno()], [], [], max(0.0, end - time.monotonic()))
            if self.display.pending_events():
                happened = self.display.next_event()
                if accept(happened):
                    return happened
                self._others(happened)
            elif time.monotonic() >= end:
                raise TimedOut(f"not within {within:g} s: {what}")

    def time(self):
        """The server's time, from a change that changes nothing."""
        mark = self.atom("TAVELLE_TIME")
        self.window.change_property(mark, Xatom.STRING, 8, b"", mode=X.PropModeAppend)
        return self.wait(lambda happened: happened.type == X.PropertyNotify and happened.atom == mark, "the time", 10).time


class SelectionOwner(threading.Thread):
    """Owns a selection and serves it on a thread until close().

    manners: "kind" answers everything; "hung" never answers; "dies" gives the first piece of an answer and goes away.
    """

    def __init__(self, display_name, contents, selection="CLIPBOARD", manners="kind"):
        super().__init__(daemon=True)
        self.asked = []
        self.owns = True
        self._client = Client(display.Display(display_name))
        self._contents = contents
        self._manners = manners
        self._selection = self._client.atom(selection)
        self._since = self._client.time()
        self._client.window.set_selection_owner(self._selection, self._since)
        self._client.display.sync()
        self._transfers = {}
        self._wake, self._waker = os.pipe()
        self.start()

    def run(self):
        try:
            self._serve()
        except error.ConnectionClosedError:
            pass  # the screen has ended

    def _serve(self):
        client = self._client
        while True:
            while client.display.pending_events():
                if not self._handle(client.display.next_event()):
                    return
            ready, _, _ = select.select([client.display.fileno(), self._wake], [], [])
            if self._wake in ready:
                client.display.close()
                return

    def close(self):
        os.close(self._waker)
        self.join()
        os.close(self._wake)

    def _handle(self, happened):
        if happened.type == X.SelectionClear:
            self.owns = False
        elif happened.type == X.SelectionRequest:
            self.asked.append(self._client.name(happened.target))
            if self._manners != "hung":
                self._answer(happened)
        elif happened.type == X.PropertyNotify and happened.state == X.PropertyDelete:
            if self._manners == "dies" and self._transfers:
                self._client.display.close()
                return False
            self._continue(happened)
        return True

    def _answer(self, request):
        wanted = request.property or request.target
        given = self._give(request.requestor, request.target, wanted)
        request.requestor.send_event(event.SelectionNotify(
            time=request.time, requestor=request.requestor, selection=request.selection, target=request.target,
            property=wanted if given else X.NONE))  # fmt: skip
        self._client.display.flush()

    def _give(self, requestor, target, wanted):
        client = self._client
        name = client.name(target)
        if name == "TARGETS":
            names = ["TIMESTAMP", "TARGETS", "MULTIPLE"] + [one.target for one in self._contents]
            requestor.change_property(wanted, Xatom.ATOM, 32, [client.atom(each) for each in names])
            return True
        if name == "TIMESTAMP":
            requestor.change_property(wanted, Xatom.INTEGER, 32, [self._since])
            return True
        if name == "MULTIPLE":
            return self._give_several(requestor, wanted)
        for one in self._contents:
            if one.target == name:
                self._give_data(requestor, wanted, client.atom(one.answer_type), one.data)
                return True
        return False

    def _give_several(self, requestor, wanted):
        pairs = list(requestor.get_full_property(wanted, X.AnyPropertyType).value)
        for at in range(0, len(pairs), 2):
            if not self._give(requestor, pairs[at], pairs[at + 1]):
                pairs[at + 1] = X.NONE
        requestor.change_property(wanted, self._client.atom("ATOM_PAIR"), 32, pairs)
        return True

    def _give_data(self, requestor, wanted, kind, data):
        if len(data) <= PIECE:
            requestor.change_property(wanted, kind, 8, data)
            return
        requestor.change_attributes(event_mask=X.PropertyChangeMask)
        requestor.change_property(wanted, self._client.atom("INCR"), 32, [len(data)])
        self._transfers[requestor.id, wanted] = (requestor, kind, memoryview(data))

    def _continue(self, happened):
        transfer = self._transfers.pop((happened.window.id, happened.atom), None)
        if not transfer:
            return
        requestor, kind, rest = transfer
        requestor.change_property(happened.atom, kind, 8, bytes(rest[:PIECE]))
        if len(rest) > 0:
            self._transfers[happened.window.id, happened.atom] = (requestor, kind, rest[PIECE:])
        self._client.display.flush()


class SelectionReader:
    """Reads a selection as any application does, with a bound on every step."""

    def __init__(self, display_name, within=10.0, client=None):
        self._client = client or Client(display.Display(display_name))
        self._within = within

    def close(self):
        close_display(self._client.display)

    def owner(self, selection="CLIPBOARD"):
        owner = self._client.display.get_selection_owner(self._client.atom(selection))
        return owner.id if owner else 0

    def take(self, selection):
        """Becomes the owner, with nothing to offer."""
        self._client.window.set_selection_owner(self._client.atom(selection), self._client.time())
        self._client.display.sync()

    def is_anothers(self, selection):
        """Whether the selection has an owner, and another than this reader."""
        return self.owner(selection) not in (0, self._client.window.id)

    def targets(self, selection="CLIPBOARD"):
        """The owner's targets in its order; none where the selection has no owner or offers nothing."""
        answer = self._convert(selection, "TARGETS")
        return [self._client.name(atom) for atom in answer[1]] if answer else []

    def read(self, target, selection="CLIPBOARD"):
        """The Representation of one target, or none where the owner refuses it."""
        answer = self._convert(selection, target)
        if not answer:
            return None
        kind, data = answer
        return Representation(target, data if isinstance(data, bytes) else bytes(data), kind)

    def text(self, selection="CLIPBOARD"):
        answer = self.read("UTF8_STRING", selection)
        return answer.data.decode() if answer else None

    def contents(self, selection="CLIPBOARD"):
        """Every representation but the protocol's own, in the owner's order."""
        names = [name for name in self.targets(selection) if name not in PROTOCOL_TARGETS]
        return [self.read(name, selection) for name in names]

    def _convert(self, selection, target):
        client = self._client
        wanted = client.atom("TAVELLE_READ")
        client.window.delete_property(wanted)
        client.window.convert_selection(client.atom(selection), client.atom(target), wanted, client.time())
        client.display.flush()
        told = self._wait(lambda happened: happened.type == X.SelectionNotify, f"an answer to {target} of {selection}")
        if not told.property:
            return None
        kind, value = self._take_property(wanted)
        if kind != client.atom("INCR"):
            return client.name(kind), value
        pieces = bytearray()
        while True:
            self._wait(lambda happened: happened.type == X.PropertyNotify and happened.atom == wanted
                       and happened.state == X.PropertyNewValue, f"the next piece of {target}")  # fmt: skip
            kind, value = self._take_property(wanted)
            if not value:
                return client.name(kind), bytes(pieces)
            pieces += value

    def _take_property(self, name):
        found = self._client.window.get_full_property(name, X.AnyPropertyType, sizehint=1024 * 1024)
        self._client.window.delete_property(name)
        self._client.display.flush()
        if not found:
            return 0, b""
        return found.property_type, found.value

    def _wait(self, accept, what):
        return self._client.wait(accept, what, self._within)


def difference(expected, actual):
    """In words, how two lists of representations differ; empty where they do not."""
    def names(contents):
        return [one.target if one else None for one in contents]

    if names(expected) != names(actual):
        return f"targets {names(expected)} became {names(actual)}"
    for before, after in zip(expected, actual):
        if before.data != after.data:
            return f"{before.target}: {len(before.data)} bytes became {len(after.data)} others"
        if before.answer_type != after.answer_type:
            return f"{before.target}: type {before.answer_type} became {after.answer_type}"
    return ""

