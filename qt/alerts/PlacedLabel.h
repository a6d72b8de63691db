// A label that stands by pixels: plain text, broken where it must be, in smaller letters where the window would end
// first.
#pragma once

#include "controls/Control.h"

#include <QFont>
#include <QLabel>

#include <functional>

namespace voxmate::qt
{

/// Pixels that a plain text needs in height, broken into lines of `width` pixels.
int PlainTextHeight(const QString& text, const QFont& font, int width);

class PlacedLabel : public QLabel
{
public:
    explicit PlacedLabel(QWidget* parent);

    std::function<void()> OnClick;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
};

} // namespace voxmate::qt
