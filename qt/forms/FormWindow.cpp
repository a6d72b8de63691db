#include "qt/forms/FormWindow.h"

#include "qt/character/ShapedWindow.h"
#include "qt/system/Desktop.h"
#include "qt/widgets/AccessibleRole.h"
#include "qt/widgets/Widgets.h"

#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QWindow>

#include <algorithm>

namespace voxmate::qt
{

namespace
{

constexpr qreal CardRounding = 14;

} // namespace

FormWindow::FormWindow(BorderStyle border)
{
    setContextMenuPolicy(Qt::NoContextMenu);
    if (border == BorderStyle::FixedSingle)
        setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                       Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
}

void FormWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
    // Copied, because the form may release its window inside the call.
    if (const auto close = OnClose)
        close();
}

void FormWindow::keyPressEvent(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (const auto press = enter                            ? OnEnter
                           : event->key() == Qt::Key_Escape ? OnEscape
                                                            : nullptr;
        press && !event->isAutoRepeat()) {
        press();
        return;
    }
    QMainWindow::keyPressEvent(event);
}

void FormWindow::TellGeometry()
{
    if (const auto tell = OnGeometry; tell && isVisible() && !isMinimized())
        tell();
}

void FormWindow::moveEvent(QMoveEvent* event)
{
    QMainWindow::moveEvent(event);
    TellGeometry();
}

void FormWindow::resizeEvent(QResizeEvent* event)
{
    QMainWindow::resizeEvent(event);
    TellGeometry();
}

void FormWindow::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange)
        TellGeometry();
}

// The screen changes a little after the place.
void FormWindow::showEvent(QShowEvent* event)
{
    QMainWindow::showEvent(event);
    connect(windowHandle(), &QWindow::screenChanged, this, &FormWindow::TellGeometry, Qt::UniqueConnection);
}

void FormWindow::SetDefaultButton(QPushButton* button)
{
    button->setDefault(true);
    connect(qApp, &QApplication::focusChanged, button, [this, button](QWidget*, QWidget* now) {
        if (!now || now->window() != this)
            return;
        auto* pressed = qobject_cast<QPushButton*>(now);
        for (QPushButton* each : findChildren<QPushButton*>())
            each->setDefault(each == (pressed ? pressed : button));
    });
}

SplashWindow::SplashWindow()
    : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    SetAccessibleRole(*this, QAccessible::Window);
    Quieten();
    connect(&Compositor::Instance(), &Compositor::Changed, this, [this] {
        UpdateShape();
        update();
    });
}

// Draws the text below the product's name fainter than the name.
void SplashWindow::Quieten()
{
    const QColor ink = Mix(palette().color(QPalette::Text), palette().color(QPalette::Base), 0.28);
    // Setting the palette raises a change event, too.
    if (palette().color(QPalette::WindowText) == ink)
        return;
    QPalette quiet;
    quiet.setColor(QPalette::WindowText, ink);
    setPalette(quiet);
}

void SplashWindow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        Quieten();
}

bool SplashWindow::AnyShown()
{
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && dynamic_cast<const SplashWindow*>(window))
            return true;
    }
    return false;
}

QRectF SplashWindow::Card() const
{
    return QRectF(rect()).adjusted(ShadowMargin, ShadowMargin, -ShadowMargin, -ShadowMargin);
}

void SplashWindow::UpdateShape()
{
    if (!windowHandle())
        return;
    if (Compositor::Instance().Running()) {
        ClearBoundingShape(*windowHandle());
        return;
    }
    const qreal ratio = devicePixelRatioF();
    QImage card((QSizeF(size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    card.fill(Qt::transparent);
    card.setDevicePixelRatio(ratio);
    QPainter painter(&card);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::black);
    painter.drawRoundedRect(Card().adjusted(0.5, 0.5, -0.5, -0.5), CardRounding, CardRounding);
    painter.end();
    SetBoundingShape(*windowHandle(), ShapeOf(card));
}

void SplashWindow::paintEvent(QPaintEvent* /*event*/)
{
    const QColor base = palette().color(QPalette::Base);
    const QColor accent = palette().color(QPalette::Highlight);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (Compositor::Instance().Running()) {
        for (int width = 2; width <= 2 * (ShadowMargin - 2); width += 3) {
            painter.setPen(QPen(QColor(0, 0, 0, 9), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            painter.drawRoundedRect(Card().translated(0, 2), CardRounding, CardRounding);
        }
    }
    QLinearGradient gradient(Card().topLeft(), Card().bottomRight());
    gradient.setColorAt(0, base);
    gradient.setColorAt(1, Mix(base, accent, 0.22));
    const bool cutOut = !Compositor::Instance().Running();
    // The cut-out has hard edges; its smooth corners must not blend with the black behind them.
    if (cutOut)
        painter.fillRect(Card(), Mix(base, palette().color(QPalette::Text), 0.25));
    painter.setPen(QPen(Mix(base, palette().color(QPalette::Text), 0.25), 1));
    painter.setBrush(gradient);
    painter.drawRoundedRect(Card().adjusted(0.5, 0.5, -0.5, -0.5), CardRounding, CardRounding);
}

void SplashWindow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    UpdateShape();
}

void SplashWindow::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    UpdateShape();
}

// Only the program closes it.
void SplashWindow::closeEvent(QCloseEvent* event)
{
    event->ignore();
}

} // namespace voxmate::qt
