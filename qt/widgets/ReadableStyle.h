// The toolkit's own style with enough contrast. Desktops that bring a style of their own are left alone.
#pragma once

#include <QColor>
#include <QPalette>
#include <QProxyStyle>

#include <initializer_list>

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
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* answer) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                            const QWidget* widget) const override;
};

/// Makes this the application's style if the style is Fusion. Call it once, as soon as there is an application.
void UseReadableStyle();

} // namespace voxmate::qt
