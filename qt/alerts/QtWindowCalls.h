// Window calls on a Qt desktop: each finds the window that a handle names and does what the call says.
#pragma once

#include "platform/WindowSystem.h"
#include "qt/alerts/PlacedWindow.h"

#include <QPointer>
#include <QWidget>

#include <map>

namespace voxmate::qt
{

class QtWindowCalls : public WindowSystem
{
public:
    bool GetVersionExA(OsVersionInfo& info) override;
    bool SystemParametersInfoA(std::uint32_t action, std::uint32_t parameter, WinRect& rect,
                               std::uint32_t winIni) override;
    bool SetWindowPos(voxmate::WindowHandle window, std::int32_t insertAfter, int x, int y, int width, int height,
                      std::uint32_t flags) override;
    RegionHandle CreateRoundRectRgn(int left, int top, int right, int bottom, int ellipseWidth,
                                    int ellipseHeight) override;
    int SetWindowRgn(voxmate::WindowHandle window, RegionHandle region, bool redraw) override;
    std::int32_t GetWindowLongA(voxmate::WindowHandle window, int index) override;
    std::int32_t SetWindowLongA(voxmate::WindowHandle window, int index, std::int32_t value) override;
    bool SetLayeredWindowAttributes(voxmate::WindowHandle window, std::uint32_t colourKey, std::uint8_t alpha,
                                    std::uint32_t flags) override;
    bool RoundRect(DeviceContext context, int left, int top, int right, int bottom, int ellipseWidth,
                   int ellipseHeight) override;
    bool GradientFill(DeviceContext context, std::span<const TriVertex> vertices,
                      std::span<const GradientTriangle> mesh, std::uint32_t mode) override;
    bool GradientFill(DeviceContext context, std::span<const TriVertex> vertices, std::span<const GradientRect> mesh,
                      std::uint32_t mode) override;
    void SetBackColor(voxmate::WindowHandle window, std::uint32_t colour) override;
    void SetForeColor(voxmate::WindowHandle window, std::uint32_t colour) override;
    void SetAutoRedraw(voxmate::WindowHandle window, bool on) override;
    void Line(voxmate::WindowHandle window, int x1, int y1, int x2, int y2, std::uint32_t colour) override;
    int TextHeight(voxmate::WindowHandle window, const FontSpec& font, const std::string& text, int width) override;
    double TwipsPerPixelY() override;
    std::int32_t ScreenHeight() override;

protected:
    /// Makes the handle of `form` name this window from now on.
    void Register(const Form& form, QWidget* window);

private:
    /// The window of a handle; nullptr when it no longer exists or (FindPlaced) cannot be drawn on.
    QWidget* Find(voxmate::WindowHandle window) const;
    PlacedWindow* FindPlaced(voxmate::WindowHandle window) const;

    std::map<voxmate::WindowHandle, QPointer<QWidget>> windows_;
    std::map<RegionHandle, RoundShape> regions_; ///< made and not yet given to a window
    RegionHandle lastRegion_ = 0;
};

} // namespace voxmate::qt
