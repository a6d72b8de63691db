// The character on the desktop.
#pragma once

#include "qt/character/FrameScaler.h"
#include "qt/character/ShapedWindow.h"

#include <QTimer>

namespace voxmate::qt
{

class QtCharacterWindow : public agent::CharacterWindow
{
public:
    QtCharacterWindow();

    void SetFrame(const agent::Picture& picture, Size size) override;
    bool Busy() const override { return scaler_.Busy(); }
    void MoveTo(Point topLeft) override;
    void SetVisible(bool visible) override;

    /// Milliseconds after a move of the program's own in which the desktop may still report older places: what differs
    /// then is looked at again when they have passed.
    static constexpr int EchoTime = 150;
    /// Milliseconds in which window managers move windows when the screens have become others.
    static constexpr int ScreensTime = 500;

private:
    ShapedImage Draw(qreal ratio, bool cutOut);
    void PictureMade();
    void Await(int milliseconds);
    void ComparePlace();

    ShapedWindowPtr window_{new ShapedWindow(QString::fromLatin1(CharacterTitle))};
    FrameScaler scaler_{[this] { PictureMade(); }};
    agent::Picture picture_;
    ShapedImage drawn_; ///< what stays until the picture is ready
    Point place_;       ///< as asked for or told last
    QTimer echoes_;
    bool screensChanged_ = false; ///< what the window manager has done since then is not what the user wants
    QObject context_;             ///< receiver of the desktop's signals: they end with this
};

} // namespace voxmate::qt
