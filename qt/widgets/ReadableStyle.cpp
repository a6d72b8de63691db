#include "qt/widgets/ReadableStyle.h"

#include "qt/widgets/FontScale.h"
#include "qt/widgets/Widgets.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <cmath>

namespace voxmate::qt
{

namespace
{

// The guidelines ask for 4.5 for text and 3 for parts of the interface, and for nothing where something is disabled;
// here that gets 2.5. Some values are higher, because smoothing takes a little contrast from thin curves.
constexpr qreal TextContrast = 4.5;
constexpr qreal SelectedContrast = 5.2; // its background becomes lighter towards the top
constexpr qreal PartContrast = 3.2;
constexpr qreal DisabledContrast = 2.7;

constexpr qreal FieldRounding = 2;
constexpr qreal ArrowWidth = 7;  ///< of a drop-down list's arrow, at the usual font
constexpr qreal QuietText = 0.4; ///< how far a field's hint fades into its background, as long as it stays readable
constexpr qreal Rule = 0.35;     ///< how far a separator between a menu's items stands out

qreal Luminance(const QColor& colour)
{
    const auto linear = [](qreal part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
}

/// Black or white, whichever has more contrast with the colour.
QColor Stronger(const QColor& colour)
{
    return Contrast(colour, Qt::black) > Contrast(colour, Qt::white) ? Qt::black : Qt::white;
}

/// The background of a tab's page. Fusion makes it lighter than a button: a dark one by a fifth, a light one hardly.
QColor Page(const QPalette& palette)
{
    const QColor button = palette.color(QPalette::Button);
    return button.lighter(104 + std::max(1, (180 - qGray(button.rgb())) / 6));
}

/// The background of a frame with a title. Fusion makes it a little darker than what it stands on, a window or a page.
QColor InFrame(const QColor& ground)
{
    return ground.darker(103);
}

/// The lightest part of a button, at the top of Fusion's gradient.
QColor ButtonFace(const QPalette& palette)
{
    return Page(palette).lighter(115);
}

/// The colour of an element's outline.
QColor OutlineOf(const QStyleOption& option, bool focused)
{
    const QColor window = option.palette.color(QPalette::Window);
    if (!(option.state & QStyle::State_Enabled))
        return Mix(window, Outline(option.palette), 0.5);
    return focused
               ? Readable(option.palette.color(QPalette::Highlight), option.palette.color(QPalette::WindowText),
                          {window, InFrame(window), Page(option.palette), InFrame(Page(option.palette))}, PartContrast)
               : Outline(option.palette);
}

/// Calls `draw` with an outline's pen. Its coordinates are the middles of the pixels covered.
template <class Draw>
void DrawOutline(QPainter& painter, const QColor& colour, Draw draw)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(colour, 1));
    draw();
    painter.restore();
}

QRectF Middle(const QRect& rect)
{
    return QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5);
}

/// A list of files gives its first column's heading a picture one pixel high as a spacer, a new one whenever it is
/// drawn; the toolkit would keep a note of each for good.
bool IsSpacer(const QIcon& icon)
{
    const QList<QSize> sizes = icon.isNull() ? QList<QSize>() : icon.availableSizes();
    return sizes.size() == 1 && sizes.front().height() == 1;
}

} // namespace

qreal Contrast(const QColor& one, const QColor& other)
{
    const auto [dark, light] = std::minmax({Luminance(one), Luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

QColor Readable(const QColor& colour, const QColor& end, std::initializer_list<QColor> grounds, qreal least)
{
    constexpr int steps = 50;
    for (int step = 0; step < steps; ++step) {
        const QColor mixed = Mix(colour, end, qreal(step) / steps);
        if (std::all_of(grounds.begin(), grounds.end(),
                        [&](const QColor& ground) { return Contrast(mixed, ground) >= least; }))
            return mixed;
    }
    return end;
}

QColor Outline(const QPalette& palette)
{
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    return Readable(window, palette.color(QPalette::Active, QPalette::WindowText),
                    {window, InFrame(window), Page(palette), InFrame(Page(palette)),
                     palette.color(QPalette::Active, QPalette::Base)},
                    PartContrast);
}

ReadableStyle::ReadableStyle() : QProxyStyle(QStringLiteral("fusion")) {}

void ReadableStyle::polish(QPalette& palette)
{
    QProxyStyle::polish(palette);
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    const QColor base = palette.color(QPalette::Active, QPalette::Base);
    const QColor text = palette.color(QPalette::Active, QPalette::Text);
    palette.setColor(QPalette::PlaceholderText, Readable(Mix(text, base, QuietText), text, {base}, TextContrast));

    // In a light theme a stronger selection colour makes both the selection and its text clearer. In a dark theme the
    // selection must stay light to be seen, so its text is changed.
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        const QColor selection = palette.color(group, QPalette::Highlight);
        const QColor selected = palette.color(group, QPalette::HighlightedText);
        if (Contrast(selected, selection) >= SelectedContrast)
            continue;
        if (window.lightness() >= 128)
            palette.setColor(group, QPalette::Highlight,
                             Readable(selection, Stronger(selected), {selected}, SelectedContrast));
        else
            palette.setColor(group, QPalette::HighlightedText,
                             Contrast(base, selection) >= SelectedContrast ? base : Stronger(selection));
    }

    const QColor disabledBase = palette.color(QPalette::Disabled, QPalette::Base);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role,
                         Readable(palette.color(QPalette::Disabled, role),
                                  palette.color(QPalette::Active, QPalette::WindowText),
                                  {window, Page(palette), ButtonFace(palette), disabledBase}, DisabledContrast));
}

void ReadableStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                  const QWidget* widget) const
{
    QProxyStyle::drawPrimitive(element, option, painter, widget);
    const QRectF edge = Middle(option->rect);
    const bool focus = option->state & State_HasFocus;
    const bool byKeys = focus && option->state & State_KeyboardFocusChange;
    switch (element) {
    case PE_IndicatorCheckBox:
        DrawOutline(*painter, OutlineOf(*option, byKeys), [&] { painter->drawRect(edge); });
        break;
    case PE_IndicatorRadioButton: {
        const QPointF middle = option->rect.center() + QPoint(1, 1);
        const qreal radius = (option->rect.width() | 1) / 2.0 - 1;
        DrawOutline(*painter, OutlineOf(*option, byKeys), [&] { painter->drawEllipse(middle, radius, radius); });
        break;
    }
    case PE_FrameLineEdit:
        DrawOutline(*painter, OutlineOf(*option, focus),
                    [&] { painter->drawRoundedRect(edge, FieldRounding, FieldRounding); });
        break;
    case PE_Frame:
        // The frame of an open list is the menu's.
        if (!widget || !widget->inherits("QComboBoxPrivateContainer"))
            DrawOutline(*painter, OutlineOf(*option, focus), [&] { painter->drawRect(edge); });
        break;
    case PE_FrameMenu:
    case PE_PanelMenu:
        DrawOutline(*painter, Outline(option->palette), [&] { painter->drawRect(edge); });
        break;
    case PE_PanelButtonCommand: {
        const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
        const bool flat = button && button->features & QStyleOptionButton::Flat;
        const bool isDefault = button && button->features & QStyleOptionButton::DefaultButton;
        if (!flat)
            DrawOutline(*painter, OutlineOf(*option, byKeys || isDefault),
                        [&] { painter->drawRoundedRect(edge, FieldRounding, FieldRounding); });
        break;
    }
    default:
        break;
    }
}

QIcon ReadableStyle::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const
{
    const auto direction = option ? option->direction : widget ? widget->layoutDirection() : qApp->layoutDirection();
    QIcon& known = icons_[{icon, direction}];
    if (known.isNull())
        known = QProxyStyle::standardIcon(icon, option, widget);
    return known;
}

void ReadableStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                                const QWidget* widget) const
{
    if (const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option);
        element == CE_HeaderLabel && header && IsSpacer(header->icon)) {
        QStyleOptionHeader plain(*header);
        plain.icon = QIcon();
        QProxyStyle::drawControl(element, &plain, painter, widget);
        return;
    }
    if (const auto* list = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        element == CE_ComboBoxLabel && list && !list->editable) {
        // The toolkit cuts a text that is too long in the middle of a letter.
        constexpr int margin = 4; // between the text and its room's edges
        const int room = subControlRect(CC_ComboBox, list, SC_ComboBoxEditField, widget).width() - margin;
        QStyleOptionComboBox fitting(*list);
        fitting.currentText = list->fontMetrics.elidedText(list->currentText, Qt::ElideRight, room);
        QProxyStyle::drawControl(element, &fitting, painter, widget);
        return;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
    const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
    if (element == CE_MenuItem && item && item->menuItemType == QStyleOptionMenuItem::Separator &&
        item->text.isEmpty()) {
        constexpr int margin = 5;
        const QPoint middle = item->rect.center();
        painter->fillRect(item->rect.left() + margin, middle.y(), item->rect.width() - 2 * margin, 1,
                          Mix(item->palette.color(QPalette::Base), item->palette.color(QPalette::Text), Rule));
    }
}

void ReadableStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                       const QWidget* widget) const
{
    const auto* list = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    if (const qreal scale = FontScale(); control == CC_ComboBox && list && scale > 1) {
        // The toolkit's arrow has one size.
        QStyleOptionComboBox bare(*list);
        bare.subControls &= ~SC_ComboBoxArrow;
        QProxyStyle::drawComplexControl(control, &bare, painter, widget);
        const QPointF middle = QRectF(subControlRect(control, list, SC_ComboBoxArrow, widget)).center();
        const QPointF half(ArrowWidth / 2 * scale, ArrowWidth / 4 * scale);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(list->palette.color(QPalette::ButtonText));
        painter->drawPolygon(
            QPolygonF{middle - half, middle + QPointF(half.x(), -half.y()), middle + QPointF(0, half.y())});
        painter->restore();
        return;
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_SpinBox)
        DrawOutline(*painter, OutlineOf(*option, option->state & State_HasFocus), [&] {
            painter->drawRoundedRect(Middle(option->rect).adjusted(0, 1, 0, -1), FieldRounding, FieldRounding);
        });
}

int ReadableStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const
{
    const int size = QProxyStyle::pixelMetric(metric, option, widget);
    switch (metric) {
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
    case PM_SmallIconSize:
    case PM_ListViewIconSize:
    case PM_ButtonIconSize:
    case PM_ToolBarIconSize:
    case PM_MenuButtonIndicator:
    case PM_HeaderMarkSize:
    case PM_ScrollBarExtent:
    case PM_ScrollBarSliderMin:
        return Scaled(size);
    default:
        return size;
    }
}

int ReadableStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                             QStyleHintReturn* answer) const
{
    // The program's drop-down lists open below their fields and scroll.
    return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, answer);
}

void UseReadableStyle()
{
    if (QApplication::style()->name() == QLatin1String("fusion"))
        QApplication::setStyle(new ReadableStyle);
}

} // namespace voxmate::qt
