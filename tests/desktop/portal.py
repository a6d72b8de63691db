"""Stands in for the portal GlobalShortcuts: prints what is asked of it, one line each. A line on the standard input
makes it activate the shortcut of that name. With --refuse it binds none."""

import sys
import threading

from gi.repository import Gio, GLib

PATH = "/org/freedesktop/portal/desktop"
SHORTCUTS = "org.freedesktop.portal.GlobalShortcuts"
INTERFACE = f"""
<node><interface name="{SHORTCUTS}">
  <method name="CreateSession"><arg type="a{{sv}}" direction="in"/><arg type="o" direction="out"/></method>
  <method name="BindShortcuts">
    <arg type="o" direction="in"/><arg type="a(sa{{sv}})" direction="in"/><arg type="s" direction="in"/>
    <arg type="a{{sv}}" direction="in"/><arg type="o" direction="out"/>
  </method>
  <property name="version" type="u" access="read"/>
  <signal name="Activated"><arg type="o"/><arg type="s"/><arg type="t"/><arg type="a{{sv}}"/></signal>
</interface></node>"""
SESSION = '<node><interface name="org.freedesktop.portal.Session"><method name="Close"/></interface></node>'

sessions = []


def called(connection, sender, _path, _interface, method, parameters, invocation):
    arguments = parameters.unpack()
    options = arguments[-1]
    name = sender[1:].replace(".", "_")
    request = f"{PATH}/request/{name}/{options['handle_token']}"
    invocation.return_value(GLib.Variant("(o)", (request,)))
    if method == "CreateSession":
        session = f"{PATH}/session/{name}/{options['session_handle_token']}"
        sessions.append(session)
        connection.register_object(session, Gio.DBusNodeInfo.new_for_xml(SESSION).interfaces[0], closed, None, None)
        response, results = 0, {"session_handle": GLib.Variant("s", session)}
    else:
        assert arguments[0] == sessions[-1], arguments
        for identifier, properties in arguments[1]:
            print("bind", identifier, properties["preferred_trigger"], properties["description"], flush=True)
        bound = [] if "--refuse" in sys.argv else [(identifier, {"trigger_description": GLib.Variant("s", "Meta+F7")})
                                                   for identifier, _ in arguments[1]]
        response, results = 0, {"shortcuts": GLib.Variant("a(sa{sv})", bound)}
    connection.emit_signal(sender, request, "org.freedesktop.portal.Request", "Response",
                           GLib.Variant("(ua{sv})", (response, results)))


def closed(_connection, _sender, path, _interface, _method, _parameters, invocation):
    sessions.remove(path)
    print("close", flush=True)
    invocation.return_value(None)


def on_bus(connection, _name):
    interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
    connection.register_object(PATH, interface, called, lambda *_: GLib.Variant("u", 1), None)

    def listen():
        for line in sys.stdin:
            GLib.idle_add(lambda name=line.strip(): connection.emit_signal(
                None, PATH, SHORTCUTS, "Activated", GLib.Variant("(osta{sv})", (sessions[-1], name, 0, {}))) and False)

    threading.Thread(target=listen, daemon=True).start()


Gio.bus_own_name(Gio.BusType.SESSION, "org.freedesktop.portal.Desktop", Gio.BusNameOwnerFlags.NONE, on_bus,
                 lambda *_: print("ready", flush=True), None)
GLib.MainLoop().run()
