// What an X11 window manager tells of the desktop and of the windows on it, read in one go.
#pragma once

#include "platform/qt/Screens.h"

#include <QSet>

#include <cstdint>

namespace voxmate::qt::x11
{

struct Desktop {
    QRect extent;                ///< all screens together; empty on a desktop that is not X11
    QList<QRect> monitors;       ///< none where the X server does not tell
    QList<QRect> workAreas;      ///< of the workspace on show
    QList<Strut> struts;         ///< of the panels on show
    QList<ListedWindow> windows; ///< those on show, the lowest first
    QSet<std::uint32_t> watched; ///< the other programs' windows, on show or not
};

/// Reads the desktop, and has changes of it told to the program's connection. `watched` are the windows of which that
/// is asked already.
Desktop LookAtDesktop(const QSet<std::uint32_t>& watched);

/// Whether an event of the X server is one after which LookAtDesktop may answer differently.
bool TellsOfDesktop(const void* event, const QSet<std::uint32_t>& watched);

} // namespace voxmate::qt::x11
