// Computes the free part of a screen, in device pixels of the whole desktop and independent of any toolkit.
#pragma once

#include <QList>
#include <QRect>
#include <QSize>

namespace voxmate::qt
{

/// The space a panel reserves along an edge of the whole desktop (_NET_WM_STRUT_PARTIAL): `depth` pixels from that edge
/// inwards, from `start` to `end` along it, both included.
struct Strut {
    enum Edge { Left, Right, Top, Bottom };
    Edge edge = Bottom;
    int depth = 0;
    int start = 0;
    int end = 0;
};

/// `screen` without the space that panels reserve, on a desktop of `desktop` pixels. A strut's depth counts from the
/// edge of the desktop, so a panel at a screen's inner edge also reserves all of the neighbouring screen: a strut that
/// takes a whole screen is ignored for that screen.
QRect WithoutPanels(const QRect& screen, const QSize& desktop, const QList<Strut>& struts);

/// The device-independent pixels that lie wholly in `area`, which is part of a screen whose first pixel is `origin` in
/// both kinds of pixels.
QRect WholePixels(const QRect& area, QPoint origin, qreal ratio);

/// A visible window from a window manager's list.
struct ListedWindow {
    QRect rect;
    bool fullScreen = false;
    /// A window people work in: not a panel, dialog or notification, and not kept above all others.
    bool ordinary = true;
    bool own = false;    ///< belongs to this program
    bool active = false; ///< has the keyboard focus
};

/// Whether another program's full-screen window covers a screen, that is, whether it is the uppermost of the ordinary
/// windows there. This program's windows count only while they are active, that is, when the user has turned to them.
/// `windows` has the lowest first, as _NET_CLIENT_LIST_STACKING.
bool IsFilled(const QRect& screen, const QList<ListedWindow>& windows);

} // namespace voxmate::qt
