// The toolkit's own style with enough contrast. Desktops with a style of their own are not touched.
#pragma once

#include <QColor>
#include <QPalette>
#include <QProxyStyle>

#include <initializer_list>

namespace voxmate::qt
{

/// Contrast of two opaque colours as the Web Content Accessibility Guidelines 2.1 measure it: 1 (none) to 21.
qreal Contrast(const QColor& one, const QColor& other);

/// `colour`, or as little further towards `end` as gives it `least` contrast with every one of `grounds`; `end` if
/// nothing before does.
QColor Readable(const QColor& colour, const QColor& end, std::initializer_list<QColor> grounds, qreal least);

/// The outline of what can be filled in or pressed: stands out from windows, tab pages and fields, 3 to 1.
QColor Outline(const QPalette& palette);

/// Fusion, the style of desktops that bring none, draws outlines darker than the window and takes over whatever colours
/// the desktop has: in a dark theme empty boxes and fields can hardly be seen. Here outlines stand out, and texts that
/// are too faint for their ground are made stronger: 4.5 to 1 for what is read, 2.5 to 1 for what is disabled.
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

/// Makes the application's style this one, if it is Fusion; once, as soon as there is an application.
void UseReadableStyle();

} // namespace voxmate::qt
