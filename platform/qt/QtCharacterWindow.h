// The character on the desktop.
#pragma once

#include "platform/qt/ShapedWindow.h"

namespace voxmate::qt
{

class QtCharacterWindow : public agent::CharacterWindow
{
public:
    QtCharacterWindow();

    void SetFrame(const Bitmap& frame, Size size) override;
    void MoveTo(Point topLeft) override;
    void SetVisible(bool visible) override { window_->Display(visible); }

private:
    QImage Draw(qreal ratio) const;

    ShapedWindowPtr window_{new ShapedWindow(QStringLiteral("Voxmate character"))};
    Bitmap frame_;
};

} // namespace voxmate::qt
