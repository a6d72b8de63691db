// What of a screen is free: the sums, in device pixels of the whole desktop and free of any toolkit's desktop.
#pragma once

#include <QList>
#include <QRect>
#include <QSize>

namespace voxmate::qt
{

/// What a panel keeps for itself along an edge of the whole desktop (_NET_WM_STRUT_PARTIAL): so many pixels from that
/// edge inwards, from `start` to `end` along it, both included.
struct Strut {
    enum Edge { Left, Right, Top, Bottom };
    Edge edge = Bottom;
    int depth = 0;
    int start = 0;
    int end = 0;
};

/// `screen` without what panels keep of it, on a desktop of `desktop` pixels. A panel at a screen's inner edge keeps
/// all of the neighbouring screen, too, as its depth counts from the edge of the desktop: one that would take a whole
/// screen is not that screen's.
QRect WithoutPanels(const QRect& screen, const QSize& desktop, const QList<Strut>& struts);

/// The device-independent pixels that lie wholly in `area`, a part of a screen whose first pixel is `origin` in both.
QRect WholePixels(const QRect& area, QPoint origin, qreal ratio);

/// A window that a window manager lists, as far as it is on show.
struct ListedWindow {
    QRect rect;
    bool fullScreen = false;
    /// One that people work in: no panel, dialog or notice, and not kept above all others.
    bool ordinary = true;
    bool own = false;    ///< this program's
    bool active = false; ///< has the keyboard
};

/// Whether another program's full-screen window is what is seen of a screen: whether it is the uppermost of the
/// ordinary windows there. Those of this program count only when they are active, that is, when the user has turned to
/// them. The lowest window comes first, as in _NET_CLIENT_LIST_STACKING.
bool IsFilled(const QRect& screen, const QList<ListedWindow>& windows);

} // namespace voxmate::qt
