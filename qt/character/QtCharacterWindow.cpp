#include "qt/character/QtCharacterWindow.h"

#include "qt/character/StageWindow.h"
#include "qt/system/DesktopWatch.h"

#include <cstdlib>
#include <utility>

namespace voxmate::qt
{

QtCharacterWindow::QtCharacterWindow()
{
    window_->Draw = [this](qreal ratio, bool cutOut) { return Draw(ratio, cutOut); };
    window_->OnMouse = [this](const agent::MouseEvent& event) {
        if (const auto mouse = Mouse)
            mouse(event);
    };
    window_->OnMove = [this] {
        if (!echoes_.isActive())
            ComparePlace();
    };
    // A window manager may first place a new window elsewhere, before it honours the position asked for.
    window_->OnShow = [this] { Await(EchoTime); };
    echoes_.setSingleShot(true);
    QObject::connect(&echoes_, &QTimer::timeout, &context_, [this] { ComparePlace(); });
    QObject::connect(&DesktopWatch::Instance(), &DesktopWatch::ScreensChanging, &context_, [this] {
        screensChanged_ = true;
        Await(ScreensTime);
    });
}

/// Compares the window's position after so many milliseconds, and not before.
void QtCharacterWindow::Await(int milliseconds)
{
    if (!echoes_.isActive() || echoes_.remainingTime() < milliseconds)
        echoes_.start(milliseconds);
}

void QtCharacterWindow::SetFrame(const agent::Picture& picture, Size size)
{
    const QSize newSize(size.width, size.height);
    if (picture_.bitmap && picture.key == picture_.key && newSize == window_->size())
        return;
    picture_ = picture;
    if (newSize != window_->size()) {
        if (auto* stage = StageWindow::Instance())
            stage->MakeRoom(newSize);
        window_->setFixedSize(newSize);
    }
    window_->Refresh();
}

void QtCharacterWindow::MoveTo(Point topLeft)
{
    place_ = topLeft;
    Await(EchoTime);
    window_->Place({topLeft.x, topLeft.y});
}

void QtCharacterWindow::SetVisible(bool visible)
{
    window_->Display(visible);
}

void QtCharacterWindow::ComparePlace()
{
    const bool forTheScreens = std::exchange(screensChanged_, false);
    if (!window_->isVisible())
        return;
    const Point place{window_->x(), window_->y()};
    // Where a device-independent pixel is not a whole number of the screen's, the reported position is rounded.
    if (std::abs(place.x - place_.x) <= 1 && std::abs(place.y - place_.y) <= 1)
        return;
    if (forTheScreens) {
        MoveTo(place_);
        return;
    }
    place_ = place;
    if (const auto moved = Moved)
        moved(place);
}

ShapedImage QtCharacterWindow::Draw(qreal ratio, bool cutOut)
{
    const QSize size = (QSizeF(window_->size()) * ratio).toSize();
    if (!picture_.bitmap || size.isEmpty())
        return {};
    if (const ShapedImage* made = scaler_.Get(picture_, size, cutOut))
        drawn_ = *made;
    return drawn_;
}

/// A large picture is ready; by now a different one may be wanted.
void QtCharacterWindow::PictureMade()
{
    window_->Refresh();
    if (const auto ready = Ready; ready && !Busy())
        ready();
}

} // namespace voxmate::qt
