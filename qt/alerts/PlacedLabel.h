// A label placed by pixels. It shows plain text, breaks long lines, and uses smaller letters where the text would not
// fit into the window.
#pragma once

#include "controls/Control.h"

#include <QFont>
#include <QLabel>

#include <functional>

namespace voxmate::qt
{

/// The height in pixels of a plain text that is broken into lines of `width` pixels.
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
