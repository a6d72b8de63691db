// A window without a frame that stands exactly where its form says, above all others, and never takes the keyboard.
// What is drawn on it is kept as calls, so that it can be painted at any screen's resolution.
#pragma once

#include "controls/PlacedForm.h"

#include <QImage>
#include <QRect>
#include <QSize>
#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

namespace voxmate::qt
{

/// A rounded rectangle that a window is cut to, in device-independent pixels.
struct RoundShape {
    QRect rect;
    QSize ellipse;
};

/// Where a window is put so that in device pixels, too, its right and lower edges lie within those of `rect`: there, or
/// one pixel further left or up, where `ratio` is no whole number.
QPoint WithinDevicePixels(const QRect& rect, qreal ratio);

class PlacedWindow : public QWidget
{
public:
    PlacedWindow();

    /// Where the form wants it to stand, on the screen.
    void Place(const QRect& rect);
    void Display();
    /// Puts it above all other windows; without, it stays where it is among them.
    void SetTopmost(bool topmost);
    void SetOpacity(int alpha);
    void SetShape(const RoundShape& shape);

    using Drawing = std::function<void(QImage&)>;
    /// Draws on the window for good; `drawing` is run again whenever it has to be painted at another resolution.
    void Draw(Drawing drawing);
    /// Fills the window; what was drawn before is gone.
    void Clear(std::uint32_t colour);
    /// What is drawn, without controls and not cut to the shape, at the window's own resolution.
    QImage Drawn();

    std::function<void()> OnClick;

    std::uint32_t ForeColor = 0;    ///< of outlines, as the drawing calls name colours
    std::int32_t ExtendedStyle = 0; ///< the bits that GWL_EXSTYLE stands for

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Press();
    void UpdateShape();
    void Invalidate();

    std::vector<Drawing> drawings_;
    std::optional<RoundShape> shape_;
    QImage drawn_; ///< null: to be drawn anew
    QImage shown_; ///< the same, cut to the shape
    bool created_ = false;
};

/// A colour as the drawing calls name it: 0x00BBGGRR or a system colour of the desktop's theme.
QColor ToQColor(std::uint32_t colour, const QPalette& palette);

} // namespace voxmate::qt
