"""A private virtual desktop: screen, window manager, session bus, keyring, notification daemon, tray.

Nothing of the caller's environment reaches it, and nothing of it outlives it.
"""

import atexit
import os
import pwd
import shutil
import signal
import sys
import tempfile
from dataclasses import dataclass
from pathlib import Path

from gi.repository import GLib

from . import configuration
from .keyboard import Keyboard, Pointer
from .notifications import NotificationRecorder, connect
from .processes import MARK, Processes
from .screen import Screen
from .waiting import wait_until

SECRETS = "org.freedesktop.secrets"
KEYRING_PASSWORD = "of the private desktop"
PROMPTER = "(?i)gcr-prompter"
SERVICES = Path("/usr/share/dbus-1/services")


@dataclass(frozen=True)
class Options:
    """What a desktop has. Each can be absent on a person's desktop too."""

    keyring: str = "unlocked"  # or "locked" (once its keys are stored), or "absent"
    notifications: bool = True
    tray: bool = True
    physical_keyboard: bool = False  # a keyboard that is another device than the one synthetic keys come from
    synthetic_keys: bool = True  # whether its screen takes them (XTEST); the hand is on another one where not
    clipboard_manager: str = ""  # or "xfsettingsd", "clipman"
    accessibility: bool = False  # whether applications tell a screen reader what they show
    dark: bool = False  # whether applications are asked to be dark
    screen: str = "1280x800"


class Desktop:
    """Use as a context manager, or start() and stop()."""

    def __init__(self, options=Options(), logs=None):
        self.options = options
        self._person = person_name()
        self.folder = Path(tempfile.mkdtemp(prefix="tavelle-desktop-"))
        self.home = self.folder / "home"
        self.documents = self.home / "documents"
        self.logs = Path(logs) if logs else self.folder / "logs"
        for folder in (self.home, self.documents, self.folder / "run", self.folder / "services", self.folder / "tmp"):
            folder.mkdir(mode=0o700)
        self.logs.mkdir(parents=True, exist_ok=True)
        self.processes = Processes(self._clean_environment(), self.logs)
        self.screen = self.keyboard = self.pointer = self.bus = self.notifications = None
        self._server = self._bus_daemon = self._keyring = self._panel = None
        self._closing = []

    def __enter__(self):
        return self.start()

    def __exit__(self, *_exception):
        self.stop()

    def start(self):
        atexit.register(self.stop)  # for a program that is interrupted
        end_in_order_when_told_to()
        try:
            self._start()
        except BaseException:
            self.stop()
            raise
        return self

    def stop(self):
        atexit.unregister(self.stop)
        for close in reversed(self._closing):
            close()
        self._closing.clear()
        self.processes.end_all()
        shutil.rmtree(self.folder, ignore_errors=True)

    @property
    def environment(self):
        return self.processes.environment

    @property
    def display_name(self):
        return self.environment["DISPLAY"]

    def screenshot(self, path):
        self.processes.run("import", "-display", self.display_name, "-window", "root", path, within=20)
        return path

    def call(self, name, path, interface, method, arguments):
        """Calls a method on the session bus and returns what it answers."""
        return self.bus.call_sync(name, path, interface, method, arguments, None, 0, 5000, None).unpack()

    def property(self, name, path, interface, member):
        return self.call(name, path, "org.freedesktop.DBus.Properties", "Get", GLib.Variant("(ss)", (interface, member)))[0]

    def name_is_owned(self, name):
        return self.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "NameHasOwner",
                         GLib.Variant("(s)", (name,)))[0]  # fmt: skip

    def wait_for_name(self, name, within=15.0):
        wait_until(lambda: self.name_is_owned(name), f"{name} is on the session bus", within)

    def tray_items(self):
        """The service names of the status items that the tray host knows."""
        watcher = "org.kde.StatusNotifierWatcher"
        return self.property(watcher, "/StatusNotifierWatcher", watcher, "RegisteredStatusNotifierItems")

    def start_tray(self):
        """A panel with a task list and a status tray, the tray at its right end."""
        configuration.write_panel(self.home / ".config")
        self._panel = self.processes.start("panel", "xfce4-panel", "--disable-wm-check", "--sm-client-disable")
        self.wait_for_name("org.kde.StatusNotifierWatcher", within=20)

    def end_tray(self):
        self.processes.end(self._panel)
        wait_until(lambda: not self.name_is_owned("org.kde.StatusNotifierWatcher"), "the panel has ended")

    def start_clipboard_manager(self):
        if self.options.clipboard_manager == "xfsettingsd":
            self.processes.start("clipboard-manager", "xfsettingsd", "--disable-wm-check", "--no-daemon")
        else:
            self.processes.start("clipboard-manager", "xfce4-clipman")
        wait_until(lambda: self.screen.selection_owner("CLIPBOARD_MANAGER"), "a clipboard manager")

    def lock_keyring(self):
        """The daemon starts again without its password, as after a log-in without one."""
        self._restart_keyring(unlock=False)

    def unlock_keyring(self):
        self._restart_keyring(unlock=True)

    def start_keyring_prompter(self):
        """What asks the person for the keyring's password, as the bus of a real session would start it."""
        service = (SERVICES / "org.gnome.keyring.SystemPrompter.service").read_text(encoding="utf-8")
        command = next(line.removeprefix("Exec=") for line in service.splitlines() if line.startswith("Exec="))
        self.processes.start("keyring-prompter", *command.split())
        self.wait_for_name("org.gnome.keyring.SystemPrompter")

    def unlock_keyring_as_asked(self):
        """Gives the prompter the password, and waits until it is satisfied."""
        self.screen.wait_for_window(PROMPTER)
        wait_until(self.screen.keyboard_is_grabbed, "the prompter has the keyboard")
        self.keyboard.type(KEYRING_PASSWORD)
        self.keyboard.chord("Return")
        wait_until(lambda: not self.screen.window_of_class(PROMPTER), "the prompter is satisfied")

    def end_session_bus(self):
        self.processes.end(self._bus_daemon)

    def end_screen(self):
        """The X server goes, and with it every window."""
        self.processes.end(self._server)

    def screen_runs(self):
        return self._server.poll() is None

    def set_layout(self, *arguments):
        """Changes the layout as a person's settings do: set_layout("de"), set_layout("us,ru", "-option", ...)."""
        self.processes.run("setxkbmap", *arguments)

    def _start(self):
        self._start_screen()
        self._start_bus()
        openbox = self.processes.start("window-manager", "openbox", "--sm-disable")
        wait_until(self.screen.window_manager_runs, lambda: f"a window manager ({openbox.poll()})")
        if self.options.keyring != "absent":
            self._start_keyring(unlock=True)
        if self.options.notifications:
            self._start_notification_daemon()
        self.notifications = self._keep(NotificationRecorder(self.environment["DBUS_SESSION_BUS_ADDRESS"]))
        if self.options.tray:
            self.start_tray()
        if self.options.clipboard_manager:
            self.start_clipboard_manager()

    def _start_screen(self):
        size = self.options.screen
        if self.options.physical_keyboard or not self.options.synthetic_keys:
            host = self._x_server("host-screen", "Xvfb", "-screen", "0", f"{size}x24")
            self.environment["DISPLAY"] = host
            lacks = [] if self.options.synthetic_keys else ["-extension", "XTEST"]
            self.environment["DISPLAY"] = self._x_server("screen", "Xephyr", "-screen", size, "-no-host-grab", *lacks)
            self.keyboard = self._keep(Keyboard(host))
            host_screen = self._keep(Screen(host))
            host_screen.focus_without_window_manager(host_screen.find_windows(lambda names, _title: "Xephyr" in names)[0])
        else:
            self.environment["DISPLAY"] = self._x_server("screen", "Xvfb", "-screen", "0", f"{size}x24")
            self.keyboard = self._keep(Keyboard(self.display_name))
        self.synthetic_keyboard = self._keep(Keyboard(self.display_name))
        self.pointer = self._keep(Pointer(self.display_name if self.options.synthetic_keys else host))
        self.screen = self._keep(Screen(self.display_name))
        self.processes.run("xsetroot", "-solid", "#37526b")

    def _x_server(self, name, *command):
        """Starts a server on a free display, which it tells through a pipe once it serves."""
        told, tells = os.pipe()
        try:
            server = self.processes.start(name, *command, "-noreset", "-nolisten", "tcp", "-displayfd", tells, pass_fds=[tells])
        finally:
            os.close(tells)
        with os.fdopen(told) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise RuntimeError(f"{command[0]} did not start ({server.wait()}); see {self.logs / name}.log")
        self._server = server
        return f":{number}"

    def _start_bus(self):
        config = self.folder / "bus.conf"
        config.write_text(configuration.bus(self.folder), encoding="utf-8")
        configuration.copy_services(self.folder / "services")
        self._bus_daemon = self.processes.start("bus", "dbus-daemon", f"--config-file={config}", "--nofork", "--nopidfile")
        self.bus = wait_until(self._connect_to_bus, "a session bus")

    def _connect_to_bus(self):
        try:
            return connect(self.environment["DBUS_SESSION_BUS_ADDRESS"])
        except GLib.Error:
            return None  # it does not listen yet

    def _restart_keyring(self, unlock):
        self.processes.end(self._keyring)
        wait_until(lambda: not self.name_is_owned(SECRETS), "the keyring has ended")
        self._start_keyring(unlock)

    def _start_keyring(self, unlock):
        data = self.home / ".local" / "share" / "keyrings"
        data.mkdir(parents=True, exist_ok=True)
        (data / "default").write_text("login", encoding="ascii")
        command = ["gnome-keyring-daemon", "--foreground", "--components=secrets",
                   f"--control-directory={self.folder / 'run' / 'keyring'}"]  # fmt: skip
        self._keyring = self.processes.start_reading(KEYRING_PASSWORD, "keyring", *command, *(["--unlock"] if unlock else []))
        self.wait_for_name(SECRETS)
        if unlock:
            wait_until(self._keyring_is_open, "the keyring is unlocked")

    def _keyring_is_open(self):
        """Its name is on the bus before it has been unlocked, or made where there was none."""
        try:
            (keyring,) = self.call(SECRETS, "/org/freedesktop/secrets", "org.freedesktop.Secret.Service", "ReadAlias",
                                   GLib.Variant("(s)", ("default",)))  # fmt: skip
            return keyring != "/" and not self.property(SECRETS, keyring, "org.freedesktop.Secret.Collection", "Locked")
        except GLib.Error:
            return False  # it does not serve yet what it names

    def _start_notification_daemon(self):
        config = configuration.write_dunst(self.home / ".config")
        self.processes.start("notification-daemon", "dunst", "-conf", config)
        self.wait_for_name("org.freedesktop.Notifications")

    def _keep(self, resource):
        self._closing.append(resource.close)
        return resource

    def _clean_environment(self):
        config = self.home / ".config"
        configuration.write_application_settings(config, self.options.dark)
        silent = {} if self.options.accessibility else {"NO_AT_BRIDGE": "1", "GTK_A11Y": "none"}
        return {
            MARK: str(self.folder), "HOME": str(self.home), "USER": self._person, "LOGNAME": self._person, "SHELL": "/bin/sh",
            "PATH": "/usr/local/bin:/usr/bin:/bin", "LANG": "C.UTF-8", "XDG_RUNTIME_DIR": str(self.folder / "run"),
            "TMPDIR": str(self.folder / "tmp"),
            "XDG_CONFIG_HOME": str(config), "XDG_DATA_HOME": str(self.home / ".local" / "share"),
            "XDG_CACHE_HOME": str(self.home / ".cache"), "XDG_STATE_HOME": str(self.home / ".local" / "state"),
            "XDG_CONFIG_DIRS": str(self.home / "none"), "XDG_DATA_DIRS": "/usr/local/share:/usr/share",
            "XDG_SESSION_TYPE": "x11", "XDG_CURRENT_DESKTOP": "XFCE", "GDK_BACKEND": "x11", "QT_QPA_PLATFORM": "xcb",
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.folder / 'run' / 'bus'}",
            "GSETTINGS_BACKEND": "keyfile", "GIO_USE_VFS": "local",
            "GSK_RENDERER": "cairo", "LIBGL_ALWAYS_SOFTWARE": "1", **silent,
        }  # fmt: skip


def end_in_order_when_told_to():
    """A signal to end takes the desktop down as well."""
    for number in (signal.SIGTERM, signal.SIGHUP):
        if signal.getsignal(number) is signal.SIG_DFL:
            signal.signal(number, lambda received, _frame: sys.exit(128 + received))


def person_name():
    try:
        return pwd.getpwuid(os.getuid()).pw_name
    except KeyError:
        raise RuntimeError(f"user {os.getuid()} has no name here, and a session bus serves nobody without one") from None
