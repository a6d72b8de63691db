"""Stands for the desktop's notification server: prints what is asked of it, one line of JSON each. A line on the standard
input lets the user do something: "press ID BUTTON" or "close ID", or the server: "expire ID", "inhibit" and "allow" (its
do-not-disturb). With --plain its notifications have no buttons; with --silent it never answers."""

import json
import sys
import threading

from gi.repository import Gio, GLib

PATH = "/org/freedesktop/Notifications"
NAME = "org.freedesktop.Notifications"
INTERFACE = f"""
<node><interface name="{NAME}">
  <method name="GetCapabilities"><arg type="as" direction="out"/></method>
  <method name="Notify">
    <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/><arg type="s" direction="in"/>
    <arg type="s" direction="in"/><arg type="as" direction="in"/><arg type="a{{sv}}" direction="in"/>
    <arg type="i" direction="in"/><arg type="u" direction="out"/>
  </method>
  <method name="CloseNotification"><arg type="u" direction="in"/></method>
  <property name="Inhibited" type="b" access="read"/>
  <signal name="ActionInvoked"><arg type="u"/><arg type="s"/></signal>
  <signal name="NotificationClosed"><arg type="u"/><arg type="u"/></signal>
</interface></node>"""
EXPIRED, BY_USER, BY_CALL = 1, 2, 3

shown = set()
last = [0]
inhibited = [False]


def tell(**what):
    print(json.dumps(what), flush=True)


def closed(connection, number, reason):
    if number in shown:
        shown.remove(number)
        connection.emit_signal(None, PATH, NAME, "NotificationClosed", GLib.Variant("(uu)", (number, reason)))


def called(connection, _sender, _path, _interface, method, parameters, invocation):
    if "--silent" in sys.argv:
        tell(unanswered=method)
    elif method == "GetCapabilities":
        plain = ["body"] if "--plain" in sys.argv else ["actions", "body", "body-markup"]
        invocation.return_value(GLib.Variant("(as)", (plain,)))
    elif method == "Notify":
        name, replaces, icon, title, text, actions, hints, time = parameters.unpack()
        last[0] += 0 if replaces else 1
        number = replaces or last[0]
        shown.add(number)
        tell(notify=number, name=name, icon=icon, title=title, text=text, actions=actions, hints=hints, time=time)
        invocation.return_value(GLib.Variant("(u)", (number,)))
    else:
        number = parameters.unpack()[0]
        if number in shown:
            tell(close=number)
        closed(connection, number, BY_CALL)
        invocation.return_value(None)


def asked(*_):
    tell(asked="Inhibited", now=inhibited[0])
    return GLib.Variant("b", inhibited[0])


def act(connection, line):
    word, *rest = line.split()
    if word == "press":
        connection.emit_signal(None, PATH, NAME, "ActionInvoked", GLib.Variant("(us)", (int(rest[0]), rest[1])))
    if word in ("press", "close"):
        closed(connection, int(rest[0]), BY_USER)
    elif word == "expire":
        closed(connection, int(rest[0]), EXPIRED)
    else:
        inhibited[0] = word == "inhibit"


def on_bus(connection, _name):
    connection.register_object(PATH, Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0], called, asked, None)

    def listen():
        for line in sys.stdin:
            GLib.idle_add(lambda line=line: act(connection, line) and False)

    threading.Thread(target=listen, daemon=True).start()


Gio.bus_own_name(Gio.BusType.SESSION, NAME, Gio.BusNameOwnerFlags.NONE, on_bus, lambda *_: tell(ready=True), None)
GLib.MainLoop().run()
