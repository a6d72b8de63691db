// A frameless window that is exactly as large as what is drawn on it: the character or its balloon. It stays on top and
// never takes the keyboard focus; clicks outside the drawing go to what lies beneath. With a compositor it is
// translucent, without one its outline is cut out of the screen.
#pragma once

#include "agent/Stage.h"

#include <QImage>
#include <QRegion>
#include <QWidget>

#include <functional>
#include <memory>

namespace voxmate::qt
{

/// Title of the character's window. Only programs that list windows show it.
inline constexpr const char* CharacterTitle = "Voxmate character";

/// The drawn part of a premultiplied image: its pixels that are at least half opaque.
QRegion ShapeOf(const QImage& image);

/// What a window shows, and the part of it that takes the mouse.
struct ShapedImage {
    QImage image; ///< premultiplied
    QRegion shape;
};

/// A premultiplied image with its shape. `cutOut` is for a screen without a compositor: what is drawn becomes fully
/// opaque. May run on any thread.
ShapedImage Shaped(QImage image, bool cutOut);

class ShapedWindow : public QWidget
{
public:
    explicit ShapedWindow(const QString& name);

    /// Called to draw the window's content in its size times `ratio`; `cutOut` as for Shaped. A null image shows
    /// nothing.
    std::function<ShapedImage(qreal ratio, bool cutOut)> Draw;
    std::function<void(const agent::MouseEvent&)> OnMouse;
    /// The window has moved, for whatever reason; pos() is its new position.
    std::function<void()> OnMove;
    /// The window is about to be shown, for whatever reason. A window manager may first place it elsewhere, before it
    /// honours the position asked for.
    std::function<void()> OnShow;

    /// Lets character, balloon, announcements and the tray's icon take the mouse while the modal window `modal` is up,
    /// so that the user can move the character aside or silence it while a message is shown. nullptr when the last
    /// modal window goes.
    static void LiveBeside(QWindow* modal);

    /// Shows or hides the window without activating it. While another program's full-screen window fills the screen it
    /// stays hidden, and it appears when that window has gone.
    void Display(bool visible);
    /// Moves the upper left corner to a point of the screen.
    void Place(QPoint topLeft);
    /// Draws the content again and updates the window's shape. Does nothing before the window is first shown.
    void Refresh();
    /// The part of the window that takes the mouse, in device-independent pixels, where it stands in a StageWindow.
    QRegion TakesMouse() const;

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
    void ComeOrGoOnStage();
    void StayOnTop();
    void DragStage(const QMouseEvent& event);

    QImage image_;
    QRegion shape_;
    bool wanted_ = false;
    bool created_ = false;
    bool cutOut_ = false;
    bool held_ = false; ///< the left button is down, and has not begun to move a StageWindow
    QPoint heldAt_;
};

/// Destroys a window later: its owner may release it inside one of the window's own events.
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
