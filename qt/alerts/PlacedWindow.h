// A frameless window that stands exactly where its form says, above all others, and never takes the keyboard focus.
// Drawing calls on it are recorded, so that they can be repeated at any screen's resolution.
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

/// The position for a window of the form's `rect` at which its right and lower edges, in device pixels too, stay within
/// those of `rect`. Where `ratio` is not a whole number it may be one pixel further left or up.
QPoint WithinDevicePixels(const QRect& rect, qreal ratio);

class PlacedWindow : public QWidget
{
public:
    PlacedWindow();

    /// Moves the window to `rect`, in device-independent pixels of the screen.
    void Place(const QRect& rect);
    void Display();
    /// True raises the window above all others; false leaves it where it is among them.
    void SetTopmost(bool topmost);
    void SetOpacity(int alpha);
    void SetShape(const RoundShape& shape);

    using Drawing = std::function<void(QImage&)>;
    /// Draws on the window and records `drawing`, which is run again whenever the window is painted at another
    /// resolution.
    void Draw(Drawing drawing);
    /// Fills the window with one colour and forgets earlier drawings.
    void Clear(std::uint32_t colour);
    /// The drawing at the window's own resolution, without controls and not cut to the shape.
    QImage Drawn();

    std::function<void()> OnClick;

    std::uint32_t ForeColor = 0;    ///< colour of outlines, in the form the drawing calls use
    std::int32_t ExtendedStyle = 0; ///< the window's GWL_EXSTYLE bits

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
    QImage drawn_; ///< null: must be drawn again
    QImage shown_; ///< the same, cut to the shape
    bool created_ = false;
};

/// Converts a colour of the drawing calls: 0x00BBGGRR, or a system colour, which comes from the desktop's theme.
QColor ToQColor(std::uint32_t colour, const QPalette& palette);

} // namespace voxmate::qt
