"""Holds the key Ctrl+Alt+S of the whole display, as another program would; prints "held" and stays until it is ended."""

import ctypes
import time

CONTROL, ALT, ASYNC = 1 << 2, 1 << 3, 1

xlib = ctypes.CDLL("libX11.so.6")
xlib.XOpenDisplay.restype = ctypes.c_void_p
xlib.XDefaultRootWindow.restype = ctypes.c_ulong
display = ctypes.c_void_p(xlib.XOpenDisplay(None))
code = xlib.XKeysymToKeycode(display, ctypes.c_ulong(ord("s")))
xlib.XGrabKey(display, code & 0xFF, CONTROL | ALT, ctypes.c_ulong(xlib.XDefaultRootWindow(display)), 0, ASYNC, ASYNC)
xlib.XSync(display, 0)
print("held", flush=True)
while True:
    time.sleep(1)
