// What the X11 parts of the front end share: Qt's connection, names of properties, and replies that are let go.
#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace voxmate::qt
{

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
/// A reply of the X server, which the caller owns.
template <class T>
using Reply = std::unique_ptr<T, FreeReply>;

/// The connection Qt has to the X server, or nullptr on another kind of desktop.
xcb_connection_t* Connection();
/// The number of the screen that Qt works on, which DISPLAY ends with, and its root window.
int ScreenNumber();
xcb_window_t RootWindow(xcb_connection_t* connection);
/// The atom of that name; asked for once.
xcb_atom_t Atom(xcb_connection_t* connection, const char* name);

} // namespace voxmate::qt
