// The character on the desktop.
#pragma once

#include "qt/character/FrameScaler.h"
#include "qt/character/ShapedWindow.h"
#include "qt/widgets/FileDrops.h"

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

    /// Milliseconds after the program moves the window in which the desktop may still report older positions. A
    /// position reported in this time is compared only after it has passed.
    static constexpr int EchoTime = 150;
    /// Milliseconds in which window managers move windows after the screens have changed.
    static constexpr int ScreensTime = 500;

private:
    ShapedImage Draw(qreal ratio, bool cutOut);
    void PictureMade();
    void Await(int milliseconds);
    void ComparePlace();

    ShapedWindowPtr window_{new ShapedWindow(QString::fromLatin1(CharacterTitle))};
    FileDrops drops_{*window_, [this](const std::vector<std::string>& files) {
                         if (const auto dropped = FilesDropped)
                             dropped(files);
                     }};
    FrameScaler scaler_{[this] { PictureMade(); }};
    agent::Picture picture_;
    ShapedImage drawn_; ///< shown until the wanted picture is ready
    Point place_;       ///< the position last asked for or reported
    QTimer echoes_;
    bool screensChanged_ = false; ///< the next move is the window manager's, not the user's
    QObject context_;             ///< receives the desktop's signals, which are disconnected when it is destroyed
};

} // namespace voxmate::qt
