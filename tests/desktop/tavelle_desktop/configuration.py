"""The files that the programs of a private desktop are configured by."""

import shutil
from pathlib import Path

SERVICES = Path("/usr/share/dbus-1/services")
ACTIVATABLE = ["org.xfce.Xfconf", "org.a11y.Bus"]  # everything else is started by the desktop, or is absent on purpose

BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
  "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <keep_umask/>
  <listen>unix:path={folder}/run/bus</listen>
  <auth>EXTERNAL</auth>
  <servicedir>{folder}/services</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
"""

PANEL = """<?xml version="1.0" encoding="UTF-8"?>
<channel name="xfce4-panel" version="1.0">
  <property name="configver" type="int" value="2"/>
  <property name="panels" type="array">
    <value type="int" value="1"/>
    <property name="panel-1" type="empty">
      <property name="position" type="string" value="p=6;x=0;y=0"/>
      <property name="length" type="uint" value="100"/>
      <property name="position-locked" type="bool" value="true"/>
      <property name="size" type="uint" value="32"/>
      <property name="plugin-ids" type="array">
        <value type="int" value="1"/><value type="int" value="2"/><value type="int" value="3"/>
      </property>
    </property>
  </property>
  <property name="plugins" type="empty">
    <property name="plugin-1" type="string" value="tasklist"/>
    <property name="plugin-2" type="string" value="separator">
      <property name="expand" type="bool" value="true"/>
      <property name="style" type="uint" value="0"/>
    </property>
    <property name="plugin-3" type="string" value="systray">
      <property name="square-icons" type="bool" value="true"/>
      <property name="icon-size" type="int" value="22"/>
    </property>
  </property>
</channel>
"""

DUNST = """[global]
follow=none
width=(300, 420)
height=200
origin=bottom-right
offset=16x16
font=DejaVu Sans 11
markup=full
frame_width=1
corner_radius=4
history_length=200
idle_threshold=0

[urgency_low]
timeout=20
[urgency_normal]
timeout=20
"""

APPLICATION_SETTINGS_FILE = "glib-2.0/settings/keyfile"

# No questions about an earlier session, no checks whether this is the default program.
APPLICATION_SETTINGS = """[org/xfce/mousepad/preferences/file]
session-restore='never'
[org/xfce/mousepad/preferences/view]
word-wrap=true
use-default-monospace-font=false
font-name='DejaVu Sans Mono 12'
[org/xfce/mousepad/preferences/window]
path-in-title=false
[org/gnome/TextEditor]
restore-session=false
spellcheck=false
"""

DARK = """[org/gnome/desktop/interface]
color-scheme='prefer-dark'
"""


def bus(folder):
    return BUS.format(folder=folder)


def copy_services(folder):
    for name in ACTIVATABLE:
        service = SERVICES / f"{name}.service"
        if service.exists():
            shutil.copy(service, folder)


def write_panel(config):
    _write(config / "xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml", PANEL)


def write_dunst(config):
    return _write(config / "dunst/dunstrc", DUNST)


def write_application_settings(config, dark):
    _write(config / APPLICATION_SETTINGS_FILE, APPLICATION_SETTINGS + (DARK if dark else ""))


def add_application_settings(config, settings):
    with open(config / APPLICATION_SETTINGS_FILE, "a", encoding="utf-8") as file:
        file.write(settings)


def _write(path, content):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(content, encoding="utf-8")
    return path
