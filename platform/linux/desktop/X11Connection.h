// Shared by the X11 parts of the front end: Qt's connection, property names, and replies that free themselves.
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace voxmate::qt
{

/// The value of _NET_WM_DESKTOP for a window on every workspace.
inline constexpr std::uint32_t EveryDesktop = 0xFFFFFFFF;

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};
/// A reply of the X server, freed automatically.
template <class T>
using Reply = std::unique_ptr<T, FreeReply>;

/// Qt's connection to the X server; nullptr on another kind of desktop.
xcb_connection_t* Connection();
/// The number of the screen Qt uses, which is at the end of DISPLAY, and its root window.
int ScreenNumber();
xcb_window_t RootWindow(xcb_connection_t* connection);
/// The atom of that name; the server is asked only once.
xcb_atom_t Atom(xcb_connection_t* connection, const char* name);

} // namespace voxmate::qt
