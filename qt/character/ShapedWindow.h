// A window without a frame that is exactly as large as what is drawn on it: the character, its balloon. It stays on
// top, never takes the keyboard, and clicks on what is not drawn go to what lies beneath. With a compositor it is truly
// translucent; without one its outline is cut out of the screen.
#pragma once

#include "agent/Stage.h"

#include <QImage>
#include <QRegion>
#include <QWidget>

#include <functional>
#include <memory>

namespace voxmate::qt
{

/// Title of the character's window, which nobody sees but who lists windows.
inline constexpr const char* CharacterTitle = "Voxmate character";

/// Where a premultiplied image is drawn: its pixels that are at least half opaque.
QRegion ShapeOf(const QImage& image);

/// What a window shows, and where of it it takes the mouse.
struct ShapedImage {
    QImage image; ///< premultiplied
    QRegion shape;
};

/// A premultiplied image and its shape; `cutOut`, for a screen without a compositor: what is drawn is fully opaque. May
/// run on any thread.
ShapedImage Shaped(QImage image, bool cutOut);

class ShapedWindow : public QWidget
{
public:
    explicit ShapedWindow(const QString& name);

    /// Draws what the window shows, in its size times `ratio`, cut out of the screen or not. A null image shows
    /// nothing.
    std::function<ShapedImage(qreal ratio, bool cutOut)> Draw;
    std::function<void(const agent::MouseEvent&)> OnMouse;
    /// The window stands elsewhere, for whatever reason; pos() tells where.
    std::function<void()> OnMove;
    /// The window is about to be shown, for whatever reason: a window manager may place it before it heeds where that
    /// is wanted.
    std::function<void()> OnShow;

    /// Lets these windows, announcements and the tray's icon take the mouse beside the modal window `modal`: the
    /// character is nobody's dialog to block, it may be moved aside or silenced while a message stands there. nullptr
    /// when the last modal window goes.
    static void LiveBeside(QWindow* modal);

    /// Shows or hides the window without activating it. Where another program's full-screen window fills the screen it
    /// is not shown before that has gone.
    void Display(bool visible);
    /// Moves the upper left corner to a point of the screen.
    void Place(QPoint topLeft);
    /// Draws anew and brings the window's shape in line. Does nothing before the window is first shown.
    void Refresh();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Tell(agent::MouseAction action, const QMouseEvent& event);
    bool InTheWay() const;
    void ComeOrGo();

    QImage image_;
    QRegion shape_;
    bool wanted_ = false;
    bool created_ = false;
    bool cutOut_ = false;
};

/// Destroys a window when that is safe: its owner may let it go in the middle of one of its own events.
struct DestroyLater {
    void operator()(ShapedWindow* window) const
    {
        window->Display(false);
        window->Draw = nullptr;
        window->OnMouse = nullptr;
        window->OnMove = nullptr;
        window->OnShow = nullptr;
        window->deleteLater();
    }
};
using ShapedWindowPtr = std::unique_ptr<ShapedWindow, DestroyLater>;

} // namespace voxmate::qt
