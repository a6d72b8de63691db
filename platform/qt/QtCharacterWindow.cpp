#include "platform/qt/QtCharacterWindow.h"

#include "platform/qt/Scaling.h"

#include <cstdlib>

namespace voxmate::qt
{

QtCharacterWindow::QtCharacterWindow()
{
    window_->Draw = [this](qreal ratio) { return Draw(ratio); };
    window_->OnMouse = [this](const agent::MouseEvent& event) {
        if (const auto mouse = Mouse)
            mouse(event);
    };
    window_->OnMove = [this] {
        if (!echoes_.isActive())
            ComparePlace();
    };
    echoes_.setSingleShot(true);
    echoes_.setInterval(EchoTime);
    QObject::connect(&echoes_, &QTimer::timeout, &echoes_, [this] { ComparePlace(); });
}

void QtCharacterWindow::SetFrame(const Bitmap& frame, Size size)
{
    const QSize newSize(size.width, size.height);
    if (frame == frame_ && newSize == window_->size())
        return;
    frame_ = frame;
    if (newSize != window_->size())
        window_->setFixedSize(newSize);
    window_->Refresh();
}

void QtCharacterWindow::MoveTo(Point topLeft)
{
    place_ = topLeft;
    echoes_.start();
    window_->move(topLeft.x, topLeft.y);
}

void QtCharacterWindow::SetVisible(bool visible)
{
    // A window manager may place a new window before it heeds where that is wanted.
    echoes_.start();
    window_->Display(visible);
}

void QtCharacterWindow::ComparePlace()
{
    if (!window_->isVisible())
        return;
    const Point place{window_->x(), window_->y()};
    // Where a pixel of the screen is a fraction of ours, a place comes back rounded.
    if (std::abs(place.x - place_.x) <= 1 && std::abs(place.y - place_.y) <= 1)
        return;
    place_ = place;
    if (const auto moved = Moved)
        moved(place);
}

QImage QtCharacterWindow::Draw(qreal ratio) const
{
    return Scaled(frame_, (QSizeF(window_->size()) * ratio).toSize());
}

} // namespace voxmate::qt
