"""Manages a session as a desktop's session manager does, with the X session management protocol. Prints its address for
clients, then a line for each event. Reads commands from standard input: save, cancel, die."""

import ctypes
import select
import sys

sm = ctypes.CDLL("libSM.so.6")
ice = ctypes.CDLL("libICE.so.6")

POINTER = ctypes.c_void_p
ALL_CALLBACKS = 0x3ff
SAVE_BOTH, SAVE_LOCAL = 2, 1
INTERACT_NONE, INTERACT_ANY = 0, 2
PROCESSED = 0
ACCEPTED, PENDING = 1, 0

for function in (ice.IceAcceptConnection, ice.IceComposeNetworkIdList, sm.SmsGenerateClientID, sm.SmsGetIceConnection):
    function.restype = POINTER

clients = {}  # connections of the sessions, by their file descriptors
kept = []  # callbacks of the library, which must not be garbage-collected


def say(*words):
    print(*words, flush=True)


def callback(result, *arguments):
    def make(function):
        kept.append(ctypes.CFUNCTYPE(result, *arguments)(function))
        return kept[-1]
    return make


@callback(ctypes.c_int, POINTER, POINTER, POINTER)
def register_client(connection, _data, _previous):
    identity = sm.SmsGenerateClientID(POINTER(connection))
    sm.SmsRegisterClientReply(POINTER(connection), POINTER(identity))
    # The protocol demands a first save, which does not end anything.
    sm.SmsSaveYourself(POINTER(connection), SAVE_LOCAL, 0, INTERACT_NONE, 0)
    return 1


@callback(None, POINTER, POINTER, ctypes.c_int)
def interact_request(connection, _data, _kind):
    sm.SmsInteract(POINTER(connection))


@callback(None, POINTER, POINTER, ctypes.c_int)
def interact_done(_connection, _data, cancel):
    say("cancelled" if cancel else "asked")


@callback(None, POINTER, POINTER, ctypes.c_int, ctypes.c_int, ctypes.c_int, ctypes.c_int, ctypes.c_int)
def save_request(_connection, _data, *_how):
    pass


@callback(None, POINTER, POINTER)
def phase_two(connection, _data):
    sm.SmsSaveYourselfPhase2(POINTER(connection))


@callback(None, POINTER, POINTER, ctypes.c_int)
def save_done(connection, _data, success):
    sm.SmsSaveComplete(POINTER(connection))
    say("saved" if success else "failed")


@callback(None, POINTER, POINTER, ctypes.c_int, POINTER)
def close_connection(_connection, _data, _count, _reasons):
    pass


@callback(None, POINTER, POINTER, ctypes.c_int, POINTER)
def properties(_connection, _data, _count, _which):
    pass


@callback(None, POINTER, POINTER)
def get_properties(connection, _data):
    sm.SmsReturnProperties(POINTER(connection), 0, None)


@callback(ctypes.c_int, POINTER, POINTER, ctypes.POINTER(ctypes.c_ulong), ctypes.POINTER(POINTER), POINTER)
def new_client(connection, _data, mask, callbacks, _reason):
    mask[0] = ALL_CALLBACKS
    answers = (register_client, interact_request, interact_done, save_request, phase_two, save_done, close_connection, properties,
               properties, get_properties)
    for number, answer in enumerate(answers):
        callbacks[2 * number] = ctypes.cast(answer, POINTER)
        callbacks[2 * number + 1] = None
    link = sm.SmsGetIceConnection(POINTER(connection))
    clients[ice.IceConnectionNumber(POINTER(link))] = connection
    return 1


@callback(ctypes.c_int, ctypes.c_char_p)
def anyone(_host):
    return 1


@callback(None, POINTER)
def gone(_link):  # the library's default would end this process
    pass


def command(word):
    for connection in clients.values():
        if word == "save":
            sm.SmsSaveYourself(POINTER(connection), SAVE_BOTH, 1, INTERACT_ANY, 0)
        elif word == "cancel":
            sm.SmsShutdownCancelled(POINTER(connection))
        elif word == "die":
            sm.SmsDie(POINTER(connection))


def main():
    text = ctypes.create_string_buffer(256)
    if not sm.SmsInitialize(b"desk", b"1", new_client, None, anyone, len(text), text):
        sys.exit(text.value)
    count, listeners = ctypes.c_int(), ctypes.POINTER(POINTER)()
    if not ice.IceListenForConnections(ctypes.byref(count), ctypes.byref(listeners), len(text), text):
        sys.exit(text.value)
    ice.IceSetIOErrorHandler(gone)
    doors = {ice.IceGetListenConnectionNumber(POINTER(listeners[i])): listeners[i] for i in range(count.value)}
    for door in doors.values():
        ice.IceSetHostBasedAuthProc(POINTER(door), anyone)
    say(ctypes.string_at(ice.IceComposeNetworkIdList(count, listeners)).decode())
    links = {}
    while True:
        for file in select.select([0, *doors, *links], [], [])[0]:
            if file == 0:
                line = sys.stdin.readline()
                if not line:
                    return
                command(line.strip())
            elif file in doors:
                status = ctypes.c_int()
                link = ice.IceAcceptConnection(POINTER(doors[file]), ctypes.byref(status))
                if link:
                    links[ice.IceConnectionNumber(POINTER(link))] = link
            elif ice.IceProcessMessages(POINTER(links[file]), None, None) != PROCESSED:
                del links[file]
                if clients.pop(file, None):
                    say("gone")


main()
