"""Stands for the desktop's portal: shows no dialog, prints each question for a file as a line of JSON, and answers it
with the next line of its input: a path, "cancel", "refuse", or "leave" to go away."""

import json
import os
import sys
import threading

from gi.repository import Gio, GLib

XML = """
<node>
  <interface name="org.freedesktop.portal.FileChooser">
    <method name="OpenFile">
      <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="a{sv}" direction="in"/>
      <arg type="o" direction="out"/>
    </method>
  </interface>
</node>"""
CHOOSER = Gio.DBusNodeInfo.new_for_xml(XML).interfaces[0]
OLD = "--old" in sys.argv  # chooses the path of its requests itself, as the first portals did


def tell(**values):
    print(json.dumps(values), flush=True)


def answered(connection, path, answer):
    if answer == "leave":
        os._exit(0)
    chosen = answer != "cancel"
    results = {"uris": GLib.Variant("as", [GLib.filename_to_uri(answer)])} if chosen else {}
    connection.emit_signal(None, path, "org.freedesktop.portal.Request", "Response", GLib.Variant("(ua{sv})", (0 if chosen else 1, results)))


def asked(connection, sender, _path, _interface, _method, parameters, invocation):
    over, title, options = parameters.unpack()
    token = "own" if OLD else options["handle_token"]
    path = f"/org/freedesktop/portal/desktop/request/{sender[1:].replace('.', '_')}/{token}"
    folder = bytes(options.get("current_folder", [])).decode().rstrip("\0")
    tell(over=over, title=title, folder=folder, directory=options.get("directory", False), filters=options.get("filters", []))
    if REFUSE:
        invocation.return_dbus_error("org.freedesktop.DBus.Error.UnknownMethod", "no such interface")
        return
    invocation.return_value(GLib.Variant("(o)", (path,)))

    def wait():
        answer = sys.stdin.readline().strip()
        GLib.idle_add(answered, connection, path, answer)

    threading.Thread(target=wait, daemon=True).start()


def on_bus(connection, _name):
    connection.register_object("/org/freedesktop/portal/desktop", CHOOSER, asked, None, None)


REFUSE = "--refuse" in sys.argv
Gio.bus_own_name(Gio.BusType.SESSION, "org.freedesktop.portal.Desktop", Gio.BusNameOwnerFlags.NONE, on_bus,
                 lambda *_: tell(ready=True), None)
GLib.MainLoop().run()
