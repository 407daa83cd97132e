#!/usr/bin/python3
"""A Secret Service whose keyring is locked, and which asks the person. It prints what it is asked, a line each; a line of input, "answer",
is the person's yes to the question that has been on the screen for the longest, which is then done, and "refuse" their no; "unlock" and
"lock" do that to the keyring without a question, and "reuse" puts an item of somebody else's at the path of the one there was. Secrets
cross in the clear.

Its arguments: with "without-keyring" there is no keyring at all until the person has agreed to one; with "asks-nobody" it answers its own
questions, and with "declines" it does so with a no; with "cannot-ask" it cannot show them; with "unlocked-first" it answers no search
before it is unlocked, and with "hides-locked" it finds nothing before."""

import sys

from gi.repository import Gio, GLib

SERVICE = """<node><interface name='org.freedesktop.Secret.Service'>
<method name='OpenSession'><arg type='s' direction='in'/><arg type='v' direction='in'/><arg type='v' direction='out'/><arg type='o' direction='out'/></method>
<method name='SearchItems'><arg type='a{ss}' direction='in'/><arg type='ao' direction='out'/><arg type='ao' direction='out'/></method>
<method name='Unlock'><arg type='ao' direction='in'/><arg type='ao' direction='out'/><arg type='o' direction='out'/></method>
<method name='ReadAlias'><arg type='s' direction='in'/><arg type='o' direction='out'/></method>
<method name='CreateCollection'><arg type='a{sv}' direction='in'/><arg type='s' direction='in'/><arg type='o' direction='out'/><arg type='o' direction='out'/></method>
<property name='Collections' type='ao' access='read'/>
<signal name='CollectionChanged'><arg type='o'/></signal>
</interface></node>"""
COLLECTION = """<node><interface name='org.freedesktop.Secret.Collection'>
<method name='CreateItem'><arg type='a{sv}' direction='in'/><arg type='(oayays)' direction='in'/><arg type='b' direction='in'/><arg type='o' direction='out'/><arg type='o' direction='out'/></method>
<property name='Locked' type='b' access='read'/>
</interface></node>"""
ITEM = """<node><interface name='org.freedesktop.Secret.Item'>
<property name='Attributes' type='a{ss}' access='read'/>
<method name='SetSecret'><arg type='(oayays)' direction='in'/></method>
<method name='GetSecret'><arg type='o' direction='in'/><arg type='(oayays)' direction='out'/></method>
<method name='Delete'><arg type='o' direction='out'/></method>
</interface></node>"""
PROMPT = """<node><interface name='org.freedesktop.Secret.Prompt'>
<method name='Prompt'><arg type='s' direction='in'/></method>
<signal name='Completed'><arg type='b'/><arg type='v'/></signal>
</interface></node>"""

ROOT = "/org/freedesktop/secrets"
KEYRING = ROOT + "/collection/login"
STORED = KEYRING + "/1"
ATTRIBUTES = {"service": "app.tavelle.Tavelle", "account": "apiKey_openai", "xdg:schema": "org.freedesktop.Secret.Generic"}


class Peer:
    def __init__(self, manners):
        self.has_keyring = "without-keyring" not in manners
        self.declines = "declines" in manners
        self.asks_nobody = "asks-nobody" in manners
        self.cannot_ask = "cannot-ask" in manners
        self.unlocked_first = "unlocked-first" in manners
        self.hides_locked = "hides-locked" in manners
        self.attributes = ATTRIBUTES
        self.stored = b"the secret"
        self.locked = True
        self.questions = {}  # what is done once the person has agreed, by the prompt's path
        self.shown = []
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        for path, xml in ((ROOT, SERVICE), (KEYRING, COLLECTION), (STORED, ITEM)):
            self.export(path, xml)
        Gio.bus_own_name_on_connection(self.bus, "org.freedesktop.secrets", 0, None, None)

    def export(self, path, xml):
        self.bus.register_object(path, Gio.DBusNodeInfo.new_for_xml(xml).interfaces[0], self.call, self.property, None)

    def question(self, agreed):
        path = f"{ROOT}/prompt/p{len(self.questions) + 1}"
        self.questions[path] = agreed
        self.export(path, PROMPT)
        return path

    def property(self, connection, sender, path, interface, name):
        if name == "Attributes":
            return GLib.Variant("a{ss}", self.attributes)
        return GLib.Variant("b", self.locked) if name == "Locked" else GLib.Variant("ao", [KEYRING])

    def call(self, connection, sender, path, interface, method, arguments, invocation):
        print(method, flush=True)
        if method == "OpenSession":
            if arguments.unpack()[0] != "plain":
                invocation.return_dbus_error("org.freedesktop.DBus.Error.NotSupported", "in the clear only")
                return
            reply = GLib.Variant("(vo)", (GLib.Variant("s", ""), ROOT + "/session/1"))
        elif method == "SearchItems" and self.unlocked_first and self.locked:
            return
        elif method == "SearchItems":
            found = [STORED] if self.has(arguments.unpack()[0]) else []
            reply = GLib.Variant("(aoao)", ([], found) if self.locked else (found, []))
        elif method == "Prompt" and self.cannot_ask:
            invocation.return_dbus_error("org.freedesktop.DBus.Error.Failed", "there is no screen")
            return
        elif method == "Unlock":
            reply = GLib.Variant("(aoo)", ([], self.question(self.open)))
        elif method == "ReadAlias":
            reply = GLib.Variant("(o)", (KEYRING if self.has_keyring else "/",))
        elif method == "CreateCollection":
            reply = GLib.Variant("(oo)", ("/", self.question(self.open)))
        elif method == "CreateItem":
            properties, secret, _ = arguments.unpack()
            item = properties["org.freedesktop.Secret.Item.Attributes"], bytes(secret[2])
            reply = GLib.Variant("(oo)", ("/", self.question(lambda: self.store(*item))))
        elif method in ("GetSecret", "SetSecret") and self.locked:
            invocation.return_dbus_error("org.freedesktop.Secret.Error.IsLocked", "it is locked")
            return
        elif method == "GetSecret":
            reply = GLib.Variant("((oayays))", ((ROOT + "/session/1", b"", self.stored, "text/plain"),))
        elif method == "SetSecret":
            self.stored = bytes(arguments.unpack()[0][2])
            reply = None
        elif method == "Delete":
            reply = GLib.Variant("(o)", (self.question(lambda: self.store(self.attributes, None)),))
        else:
            reply = None
        invocation.return_value(reply)
        if method == "Prompt":
            self.shown.append(path)
            if self.declines or self.asks_nobody:
                self.answer(is_yes=self.asks_nobody)

    def has(self, attributes):
        is_there = self.has_keyring and self.stored is not None
        is_hidden = self.hides_locked and self.locked
        return is_there and not is_hidden and attributes.items() <= self.attributes.items()

    def open(self):
        self.locked = False
        self.has_keyring = True

    def store(self, attributes, value):
        self.attributes = attributes
        self.stored = value

    def lock(self):
        self.locked = True
        print("locked", flush=True)

    def unlock(self):
        self.locked = False
        self.emit(ROOT, "org.freedesktop.Secret.Service", "CollectionChanged", GLib.Variant("(o)", (KEYRING,)))
        print("unlocked", flush=True)

    def reuse(self):
        self.attributes = {"service": "of another program"}
        print("reused", flush=True)

    def answer(self, is_yes):
        path = self.shown.pop(0)
        if is_yes:
            self.questions[path]()
        self.emit(path, "org.freedesktop.Secret.Prompt", "Completed", GLib.Variant("(bv)", (not is_yes, GLib.Variant("ao", [KEYRING]))))
        print("answered", flush=True)

    def emit(self, path, interface, signal, arguments):
        self.bus.emit_signal(None, path, interface, signal, arguments)
        self.bus.flush_sync()


def main():
    peer = Peer(sys.argv[1:])
    loop = GLib.MainLoop()

    def on_input(channel, condition):
        line = sys.stdin.readline()
        if line == "answer\n":
            peer.answer(is_yes=True)
        elif line == "refuse\n":
            peer.answer(is_yes=False)
        elif line == "lock\n":
            peer.lock()
        elif line == "unlock\n":
            peer.unlock()
        elif line == "reuse\n":
            peer.reuse()
        else:
            loop.quit()
        return bool(line)

    GLib.io_add_watch(sys.stdin.fileno(), GLib.PRIORITY_DEFAULT, GLib.IOCondition.IN | GLib.IOCondition.HUP, on_input)
    loop.run()


if __name__ == "__main__":
    main()
