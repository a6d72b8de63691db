// The speech balloon: a rounded bubble whose tail points at the character.
#pragma once

#include "qt/character/ShapedWindow.h"
#include "qt/widgets/FileDrops.h"

#include <QFont>

namespace voxmate::qt
{

/// The font of a balloon, or the desktop's own sans serif where the named one is not installed. Text is measured and
/// drawn with the same font.
QFont ToQFont(const agent::BalloonFont& font);

class QtBalloonWindow : public agent::BalloonWindow
{
public:
    QtBalloonWindow();

    void Show(const agent::BalloonView& view) override;
    void Hide() override { window_->Display(false); }

private:
    QImage Draw(qreal ratio) const;

    ShapedWindowPtr window_{new ShapedWindow(QStringLiteral("Voxmate balloon"))};
    FileDrops drops_{*window_, [this](const std::vector<std::string>& files) {
                         if (const auto dropped = FilesDropped)
                             dropped(files);
                     }};
    agent::BalloonView view_;
};

} // namespace voxmate::qt
