#!/usr/bin/python3
"""A Secret Service whose keyring is locked, and which asks the person. It prints what it is asked, a line each; a line of input, "answer",
is the person's answer, after which the keyring is unlocked; "lock" locks it again. Secrets cross in the clear.

With "without-keyring" as its argument there is no keyring at all until the person has agreed to one."""

import sys

from gi.repository import Gio, GLib

SERVICE = """<node><interface name='org.freedesktop.Secret.Service'>
<method name='OpenSession'><arg type='s' direction='in'/><arg type='v' direction='in'/><arg type='v' direction='out'/><arg type='o' direction='out'/></method>
<method name='SearchItems'><arg type='a{ss}' direction='in'/><arg type='ao' direction='out'/><arg type='ao' direction='out'/></method>
<method name='Unlock'><arg type='ao' direction='in'/><arg type='ao' direction='out'/><arg type='o' direction='out'/></method>
<method name='ReadAlias'><arg type='s' direction='in'/><arg type='o' direction='out'/></method>
<method name='CreateCollection'><arg type='a{sv}' direction='in'/><arg type='s' direction='in'/><arg type='o' direction='out'/><arg type='o' direction='out'/></method>
<property name='Collections' type='ao' access='read'/>
</interface></node>"""
COLLECTION = """<node><interface name='org.freedesktop.Secret.Collection'>
<method name='CreateItem'><arg type='a{sv}' direction='in'/><arg type='(oayays)' direction='in'/><arg type='b' direction='in'/><arg type='o' direction='out'/><arg type='o' direction='out'/></method>
<property name='Locked' type='b' access='read'/>
</interface></node>"""
ITEM = """<node><interface name='org.freedesktop.Secret.Item'>
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


class Peer:
    def __init__(self, has_keyring):
        self.has_keyring = has_keyring
        self.locked = True
        self.prompts = 0
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        for path, xml in ((ROOT, SERVICE), (KEYRING, COLLECTION), (STORED, ITEM)):
            self.export(path, xml)
        Gio.bus_own_name_on_connection(self.bus, "org.freedesktop.secrets", 0, None, None)

    def export(self, path, xml):
        self.bus.register_object(path, Gio.DBusNodeInfo.new_for_xml(xml).interfaces[0], self.call, self.property, None)

    def new_prompt(self):
        self.prompts += 1
        path = f"{ROOT}/prompt/p{self.prompts}"
        self.export(path, PROMPT)
        return path

    def property(self, connection, sender, path, interface, name):
        return GLib.Variant("b", self.locked) if name == "Locked" else GLib.Variant("ao", [KEYRING])

    def call(self, connection, sender, path, interface, method, arguments, invocation):
        print(method, flush=True)
        if method == "OpenSession":
            if arguments.unpack()[0] != "plain":
                invocation.return_dbus_error("org.freedesktop.DBus.Error.NotSupported", "in the clear only")
                return
            reply = GLib.Variant("(vo)", (GLib.Variant("s", ""), ROOT + "/session/1"))
        elif method == "SearchItems":
            found = [STORED] if self.has_keyring else []
            reply = GLib.Variant("(aoao)", ([], found) if self.locked else (found, []))
        elif method == "Unlock":
            reply = GLib.Variant("(aoo)", ([], self.new_prompt()))
        elif method == "ReadAlias":
            reply = GLib.Variant("(o)", (KEYRING if self.has_keyring else "/",))
        elif method in ("CreateCollection", "CreateItem"):
            reply = GLib.Variant("(oo)", ("/", self.new_prompt()))
        elif method == "GetSecret":
            reply = GLib.Variant("((oayays))", ((ROOT + "/session/1", b"", b"the secret", "text/plain"),))
        elif method == "Delete":
            reply = GLib.Variant("(o)", (self.new_prompt(),))
        else:
            reply = None
        invocation.return_value(reply)

    def lock(self):
        self.locked = True
        print("locked", flush=True)

    def answered(self):
        self.locked = False
        path = f"{ROOT}/prompt/p{self.prompts}"
        self.bus.emit_signal(None, path, "org.freedesktop.Secret.Prompt", "Completed",
                             GLib.Variant("(bv)", (False, GLib.Variant("ao", [KEYRING]))))
        self.bus.flush_sync()
        print("answered", flush=True)


def main():
    peer = Peer("without-keyring" not in sys.argv)
    loop = GLib.MainLoop()

    def on_input(channel, condition):
        line = sys.stdin.readline()
        if line == "answer\n":
            peer.answered()
        elif line == "lock\n":
            peer.lock()
        else:
            loop.quit()
        return bool(line)

    GLib.io_add_watch(sys.stdin.fileno(), GLib.PRIORITY_DEFAULT, GLib.IOCondition.IN | GLib.IOCondition.HUP, on_input)
    loop.run()


if __name__ == "__main__":
    main()
