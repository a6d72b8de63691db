// The character on the desktop.
#pragma once

#include "platform/qt/ShapedWindow.h"

#include <QTimer>

namespace voxmate::qt
{

class QtCharacterWindow : public agent::CharacterWindow
{
public:
    QtCharacterWindow();

    void SetFrame(const Bitmap& frame, Size size) override;
    void MoveTo(Point topLeft) override;
    void SetVisible(bool visible) override;

    /// Milliseconds after a move of the program's own in which the desktop may still report older places: what differs
    /// then is looked at again when they have passed.
    static constexpr int EchoTime = 150;

private:
    QImage Draw(qreal ratio) const;
    void ComparePlace();

    ShapedWindowPtr window_{new ShapedWindow(QString::fromLatin1(CharacterTitle))};
    Bitmap frame_;
    Point place_; ///< as asked for or told last
    QTimer echoes_;
};

} // namespace voxmate::qt
