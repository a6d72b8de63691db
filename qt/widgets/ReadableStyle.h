// The toolkit's own style with enough contrast. Desktops that bring a style of their own are left alone.
#pragma once

#include <QColor>
#include <QIcon>
#include <QPalette>
#include <QProxyStyle>

#include <initializer_list>
#include <map>
#include <utility>

namespace voxmate::qt
{

/// Contrast of two opaque colours as defined by the Web Content Accessibility Guidelines 2.1: 1 (none) to 21.
qreal Contrast(const QColor& one, const QColor& other);

/// `colour`, moved towards `end` only as far as needed for a contrast of `least` with every one of `grounds`; `end` if
/// nothing before it has that.
QColor Readable(const QColor& colour, const QColor& end, std::initializer_list<QColor> grounds, qreal least);

/// The outline of what can be filled in or pressed. Its contrast with windows, tab pages and fields is 3 to 1 or more.
QColor Outline(const QPalette& palette);

/// Fusion is the style on desktops that bring none. It draws outlines darker than the window and takes whatever colours
/// the desktop has, so that empty boxes and fields can hardly be seen in a dark theme. Here outlines stand out, and
/// texts too faint for their background are made stronger: 4.5 to 1 for what is read, 2.5 to 1 for what is disabled.
class ReadableStyle : public QProxyStyle
{
public:
    ReadableStyle();

    using QProxyStyle::polish;
    void polish(QPalette& palette) override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    /// Marks and small icons grow with the desktop's font.
    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* answer) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
    /// The same icon each time, and so with the same pictures: the toolkit keeps a note of each picture it has drawn
    /// for good, some 150 bytes, and a file dialog would leave new ones behind.
    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const override;

private:
    mutable std::map<std::pair<StandardPixmap, Qt::LayoutDirection>, QIcon> icons_;
};

/// Makes this the application's style if the style is Fusion. Call it once, as soon as there is an application.
void UseReadableStyle();

} // namespace voxmate::qt
