"""Hosts status-notifier icons as a desktop's panel does, and prints the bus name of each one that registers."""

from gi.repository import Gio, GLib

INTERFACE = """
<node><interface name="org.kde.StatusNotifierWatcher">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
  <property name="ProtocolVersion" type="i" access="read"/>
  <signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
</interface></node>"""

items = []


def called(_connection, sender, _path, _interface, method, _parameters, invocation):
    if method == "RegisterStatusNotifierItem":
        items.append(sender)
        print(sender, flush=True)
    invocation.return_value(None)


def property_value(_connection, _sender, _path, _interface, name):
    return {"RegisteredStatusNotifierItems": GLib.Variant("as", items),
            "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
            "ProtocolVersion": GLib.Variant("i", 0)}[name]


def on_bus(connection, _name):
    interface = Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0]
    connection.register_object("/StatusNotifierWatcher", interface, called, property_value, None)


Gio.bus_own_name(Gio.BusType.SESSION, "org.kde.StatusNotifierWatcher", Gio.BusNameOwnerFlags.NONE, on_bus,
                 lambda *_: print("ready", flush=True), None)
GLib.MainLoop().run()
