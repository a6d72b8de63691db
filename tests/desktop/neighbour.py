"""Shows a window of another program: neighbour.py TITLE [--at X,Y,WIDTH,HEIGHT] [--state NAME]... [--type NAME]
[--strut 12 NUMBERS]. NAME is the end of the property's value, as FULLSCREEN of _NET_WM_STATE_FULLSCREEN. The window's
number is told on standard output. It stays until this program is ended."""

import argparse
import ctypes
import time

XA_ATOM, XA_CARDINAL = 4, 6

options = argparse.ArgumentParser()
options.add_argument("title")
options.add_argument("--at", default="300,200,400,300")
options.add_argument("--state", action="append", default=[])
options.add_argument("--type", default="NORMAL")
options.add_argument("--strut", nargs=12, type=int)
asked = options.parse_args()

xlib = ctypes.CDLL("libX11.so.6")
xlib.XOpenDisplay.restype = ctypes.c_void_p
xlib.XDefaultRootWindow.restype = xlib.XCreateSimpleWindow.restype = xlib.XInternAtom.restype = ctypes.c_ulong
display = ctypes.c_void_p(xlib.XOpenDisplay(None))
x, y, width, height = map(int, asked.at.split(","))
window = ctypes.c_ulong(xlib.XCreateSimpleWindow(display, ctypes.c_ulong(xlib.XDefaultRootWindow(display)), x, y, width, height, 0,
                                                 ctypes.c_ulong(0), ctypes.c_ulong(0x202020)))


def atom(name):
    return xlib.XInternAtom(display, name.encode(), 0)


def put(name, kind, values):
    data = (ctypes.c_ulong * len(values))(*values)
    xlib.XChangeProperty(display, window, ctypes.c_ulong(atom(name)), ctypes.c_ulong(kind), 32, 0, data, len(values))


class SizeHints(ctypes.Structure):
    """XSizeHints: USPosition and USSize mean that the user chose the position and size."""
    _fields_ = [("flags", ctypes.c_long)] + [(name, ctypes.c_int) for name in ("x", "y", "width", "height")] + [
        ("rest", ctypes.c_int * 13)]


hints = SizeHints(flags=3, x=x, y=y, width=width, height=height)
xlib.XStoreName(display, window, asked.title.encode())
xlib.XSetWMNormalHints(display, window, ctypes.byref(hints))
put("_NET_WM_WINDOW_TYPE", XA_ATOM, [atom("_NET_WM_WINDOW_TYPE_" + asked.type)])
if asked.state:
    put("_NET_WM_STATE", XA_ATOM, [atom("_NET_WM_STATE_" + state) for state in asked.state])
if asked.strut:
    put("_NET_WM_STRUT_PARTIAL", XA_CARDINAL, asked.strut)
xlib.XMapWindow(display, window)
xlib.XSync(display, 0)
print(window.value, flush=True)
while True:
    time.sleep(1)
