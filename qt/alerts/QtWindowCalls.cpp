#include "qt/alerts/QtWindowCalls.h"

#include "qt/alerts/ClassicDrawing.h"
#include "qt/alerts/PlacedLabel.h"
#include "qt/forms/ControlPeers.h"
#include "qt/system/Desktop.h"
#include "qt/system/DesktopWatch.h"
#include "qt/system/QtTray.h"
#include "qt/widgets/QtText.h"

#include <QApplication>
#include <QScreen>
#include <QWindow>

#include <cmath>
#include <utility>
#include <vector>

namespace voxmate::qt
{

namespace
{

template <class T>
std::vector<T> Copy(std::span<const T> values)
{
    return {values.begin(), values.end()};
}

} // namespace

void QtWindowCalls::Register(const Form& form, QWidget* window)
{
    std::erase_if(windows_, [](const auto& entry) { return entry.second.isNull(); });
    windows_[form.Handle()] = window;
}

QWidget* QtWindowCalls::Find(voxmate::WindowHandle window) const
{
    const auto found = windows_.find(window);
    return found == windows_.end() ? nullptr : found->second.data();
}

PlacedWindow* QtWindowCalls::FindPlaced(voxmate::WindowHandle window) const
{
    return dynamic_cast<PlacedWindow*>(Find(window));
}

bool QtWindowCalls::GetVersionExA(OsVersionInfo& info)
{
    if (info.dwOSVersionInfoSize != sizeof info)
        return false;
    // Reports the oldest system with this desktop's abilities; transparent windows need a compositor.
    const bool transparent = Compositor::Instance().Running();
    info.dwPlatformId = transparent ? VER_PLATFORM_WIN32_NT : VER_PLATFORM_WIN32_WINDOWS;
    info.dwMajorVersion = transparent ? 5 : 4;
    info.dwMinorVersion = transparent ? 0 : 10;
    return true;
}

bool QtWindowCalls::SystemParametersInfoA(std::uint32_t action, std::uint32_t parameter, WinRect& rect,
                                          std::uint32_t winIni)
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (action != SPI_GETWORKAREA || parameter != 0 || winIni != 0 || !screen)
        return false;
    const QRect area = DesktopWatch::Instance().WorkArea(*screen);
    rect = {area.x(), area.y(), area.x() + area.width(), area.y() + area.height()};
    return true;
}

bool QtWindowCalls::SetWindowPos(voxmate::WindowHandle window, std::int32_t insertAfter, int /*x*/, int /*y*/,
                                 int /*width*/, int /*height*/, std::uint32_t flags)
{
    QWidget* widget = Find(window);
    const bool known = insertAfter == HWND_TOPMOST || insertAfter == HWND_NOTOPMOST;
    if (!widget || !known || (flags & SWP_NOMOVE) == 0 || (flags & SWP_NOSIZE) == 0)
        return false;
    const bool topmost = insertAfter == HWND_TOPMOST;
    if (auto* placed = dynamic_cast<PlacedWindow*>(widget)) {
        if ((flags & SWP_SHOWWINDOW) != 0)
            placed->Display();
        placed->SetTopmost(topmost);
        return true;
    }
    // Changes an ordinary window without hiding it, which the widget's own setWindowFlag would do.
    Qt::WindowFlags hints = widget->windowFlags();
    hints.setFlag(Qt::WindowStaysOnTopHint, topmost);
    widget->overrideWindowFlags(hints);
    if (QWindow* native = widget->windowHandle())
        native->setFlag(Qt::WindowStaysOnTopHint, topmost);
    if ((flags & SWP_SHOWWINDOW) != 0)
        widget->show();
    return true;
}

RegionHandle QtWindowCalls::CreateRoundRectRgn(int left, int top, int right, int bottom, int ellipseWidth,
                                               int ellipseHeight)
{
    regions_[++lastRegion_] = {QRect(left, top, right - left, bottom - top), QSize(ellipseWidth, ellipseHeight)};
    return lastRegion_;
}

int QtWindowCalls::SetWindowRgn(voxmate::WindowHandle window, RegionHandle region, bool /*redraw*/)
{
    PlacedWindow* placed = FindPlaced(window);
    const auto shape = regions_.extract(region);
    if (!placed || shape.empty())
        return 0;
    placed->SetShape(shape.mapped());
    return 1;
}

std::int32_t QtWindowCalls::GetWindowLongA(voxmate::WindowHandle window, int index)
{
    const PlacedWindow* placed = FindPlaced(window);
    return placed && index == GWL_EXSTYLE ? placed->ExtendedStyle : 0;
}

std::int32_t QtWindowCalls::SetWindowLongA(voxmate::WindowHandle window, int index, std::int32_t value)
{
    PlacedWindow* placed = FindPlaced(window);
    return placed && index == GWL_EXSTYLE ? std::exchange(placed->ExtendedStyle, value) : 0;
}

bool QtWindowCalls::SetLayeredWindowAttributes(voxmate::WindowHandle window, std::uint32_t /*colourKey*/,
                                               std::uint8_t alpha, std::uint32_t flags)
{
    PlacedWindow* placed = FindPlaced(window);
    if (!placed || flags != LWA_ALPHA || (placed->ExtendedStyle & WS_EX_LAYERED) == 0)
        return false;
    placed->SetOpacity(alpha);
    return true;
}

bool QtWindowCalls::RoundRect(DeviceContext context, int left, int top, int right, int bottom, int ellipseWidth,
                              int ellipseHeight)
{
    PlacedWindow* placed = FindPlaced(context);
    if (!placed)
        return false;
    const QRect rect(left, top, right - left, bottom - top);
    placed->Draw([placed, rect, ellipse = QSize(ellipseWidth, ellipseHeight), colour = placed->ForeColor](
                     QImage& image) { DrawRoundRect(image, rect, ellipse, ToQColor(colour, placed->palette())); });
    return true;
}

bool QtWindowCalls::GradientFill(DeviceContext context, std::span<const TriVertex> vertices,
                                 std::span<const GradientTriangle> mesh, std::uint32_t mode)
{
    PlacedWindow* placed = FindPlaced(context);
    if (!placed || mode != GRADIENT_FILL_TRIANGLE)
        return false;
    placed->Draw(
        [points = Copy(vertices), triangles = Copy(mesh)](QImage& image) { FillTriangles(image, points, triangles); });
    return true;
}

bool QtWindowCalls::GradientFill(DeviceContext context, std::span<const TriVertex> vertices,
                                 std::span<const GradientRect> mesh, std::uint32_t mode)
{
    PlacedWindow* placed = FindPlaced(context);
    if (!placed || mode != GRADIENT_FILL_RECT_V)
        return false;
    placed->Draw([points = Copy(vertices), rects = Copy(mesh)](QImage& image) { FillRectsDown(image, points, rects); });
    return true;
}

void QtWindowCalls::SetBackColor(voxmate::WindowHandle window, std::uint32_t colour)
{
    if (PlacedWindow* placed = FindPlaced(window))
        placed->Clear(colour);
}

void QtWindowCalls::SetForeColor(voxmate::WindowHandle window, std::uint32_t colour)
{
    if (PlacedWindow* placed = FindPlaced(window))
        placed->ForeColor = colour;
}

// Drawings are always kept, whatever is asked for, because a modern desktop cannot show any others.
void QtWindowCalls::SetAutoRedraw(voxmate::WindowHandle /*window*/, bool /*on*/) {}

void QtWindowCalls::Line(voxmate::WindowHandle window, int x1, int y1, int x2, int y2, std::uint32_t colour)
{
    if (PlacedWindow* placed = FindPlaced(window))
        placed->Draw([placed, from = QPoint(x1, y1), to = QPoint(x2, y2), colour](QImage& image) {
            DrawLine(image, from, to, ToQColor(colour, placed->palette()));
        });
}

int QtWindowCalls::TextHeight(voxmate::WindowHandle /*window*/, const FontSpec& font, const std::string& text,
                              int width)
{
    return PlainTextHeight(ToQt(text), ToQFont(font, QApplication::font()), width);
}

double QtWindowCalls::TwipsPerPixelY()
{
    return TwipsPerPixel();
}

std::int32_t QtWindowCalls::ScreenHeight()
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen)
        return 0;
    const QRect area = screen->geometry();
    return static_cast<std::int32_t>(std::lround((area.y() + area.height()) * TwipsPerPixel()));
}

} // namespace voxmate::qt
