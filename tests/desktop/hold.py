"""Holds single threads of a program still, as a busy machine or a slow disk would."""

import contextlib
import ctypes
import os

SEIZE, INTERRUPT, DETACH = 0x4206, 0x4207, 17  # linux/ptrace.h
ALL = 0x40000000  # __WALL of linux/wait.h: threads, too

_ptrace = ctypes.CDLL(None, use_errno=True).ptrace
_ptrace.argtypes = [ctypes.c_long, ctypes.c_long, ctypes.c_void_p, ctypes.c_void_p]
_ptrace.restype = ctypes.c_long


def threads(pid):
    """The numbers of a program's threads."""
    return {int(name) for name in os.listdir(f"/proc/{pid}/task")}


def _trace(request, thread):
    if _ptrace(request, thread, None, None) != 0:
        raise OSError(ctypes.get_errno(), os.strerror(ctypes.get_errno()))


@contextlib.contextmanager
def held(some):
    """Within this context the threads with these numbers stand still."""
    stopped = []
    try:
        for thread in some:
            _trace(SEIZE, thread)
            _trace(INTERRUPT, thread)
            os.waitpid(thread, ALL)
            stopped.append(thread)
        yield
    finally:
        for thread in stopped:
            _trace(DETACH, thread)
