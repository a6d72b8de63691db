// Window calls that keep the names, constants and arguments of the Win32 functions they stand for, so that tests can
// check exactly what is called; and the drawing a form does itself. Pixels are device-independent: 15 twips at any
// scale. A drawing is stored with its window and painted at the screen's own resolution; its device context is the
// window's handle.
#pragma once

#include "controls/Form.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace voxmate
{

// SystemParametersInfoA, SetWindowPos, GetWindowLongA and SetLayeredWindowAttributes (winuser.h).
inline constexpr std::uint32_t SPI_GETWORKAREA = 48;
inline constexpr std::int32_t HWND_TOPMOST = -1;
inline constexpr std::int32_t HWND_NOTOPMOST = -2;
inline constexpr std::uint32_t SWP_NOSIZE = 0x1;
inline constexpr std::uint32_t SWP_NOMOVE = 0x2;
inline constexpr std::uint32_t SWP_NOACTIVATE = 0x10;
inline constexpr std::uint32_t SWP_FRAMECHANGED = 0x20;
inline constexpr std::uint32_t SWP_SHOWWINDOW = 0x40;
inline constexpr std::uint32_t SWP_NOOWNERZORDER = 0x200;
inline constexpr int GWL_EXSTYLE = -20;
inline constexpr std::int32_t WS_EX_LAYERED = 0x80000;
inline constexpr std::uint32_t LWA_ALPHA = 2;

// GetVersionExA (winnt.h): the family of the system.
inline constexpr std::uint32_t VER_PLATFORM_WIN32_WINDOWS = 1;
inline constexpr std::uint32_t VER_PLATFORM_WIN32_NT = 2;

// GradientFill (wingdi.h).
inline constexpr std::uint32_t GRADIENT_FILL_RECT_V = 1;
inline constexpr std::uint32_t GRADIENT_FILL_TRIANGLE = 2;

/// OSVERSIONINFOA in its fixed layout.
struct OsVersionInfo {
    std::uint32_t dwOSVersionInfoSize = 0;
    std::uint32_t dwMajorVersion = 0;
    std::uint32_t dwMinorVersion = 0;
    std::uint32_t dwBuildNumber = 0;
    std::uint32_t dwPlatformId = 0;
    std::array<char, 128> szCSDVersion{};
};
static_assert(sizeof(OsVersionInfo) == 148);

/// A rectangle by its edges; right and bottom are the first pixels outside.
struct WinRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
    bool operator==(const WinRect&) const = default;
};

/// A point of a gradient; each channel is an unsigned 16-bit number (0xFF00 is full) kept in a signed one.
struct TriVertex {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int16_t Red = 0;
    std::int16_t Green = 0;
    std::int16_t Blue = 0;
    std::int16_t Alpha = 0;
    bool operator==(const TriVertex&) const = default;
};
/// An element of a gradient mesh; it refers to its vertices by index, from 0.
struct GradientTriangle {
    std::uint32_t Vertex1 = 0;
    std::uint32_t Vertex2 = 0;
    std::uint32_t Vertex3 = 0;
    bool operator==(const GradientTriangle&) const = default;
};
struct GradientRect {
    std::uint32_t UpperLeft = 0;
    std::uint32_t LowerRight = 0;
    bool operator==(const GradientRect&) const = default;
};

/// Handle of a region; 0: none.
using RegionHandle = std::uint32_t;
/// The target of a drawing: the window's handle.
using DeviceContext = WindowHandle;

class WindowCalls
{
public:
    virtual ~WindowCalls() = default;

    /// The system's version; false when `dwOSVersionInfoSize` is not 148, the record's size.
    virtual bool GetVersionExA(OsVersionInfo& info) = 0;
    /// With SPI_GETWORKAREA and two zeros: the part of the primary screen that no panel covers, in pixels. False for
    /// anything else.
    virtual bool SystemParametersInfoA(std::uint32_t action, std::uint32_t parameter, WinRect& rect,
                                       std::uint32_t winIni) = 0;
    /// Keeps a window above all others (HWND_TOPMOST) or lets them cover it again (HWND_NOTOPMOST). Position and size
    /// never change: SWP_NOMOVE and SWP_NOSIZE must be given. SWP_SHOWWINDOW shows the window. False for other
    /// arguments and for a window that is not loaded.
    virtual bool SetWindowPos(WindowHandle window, std::int32_t insertAfter, int x, int y, int width, int height,
                              std::uint32_t flags) = 0;
    /// Creates a rectangle from (left, top) up to but not including (right, bottom). Its corners are quarters of an
    /// ellipse of the given size.
    virtual RegionHandle CreateRoundRectRgn(int left, int top, int right, int bottom, int ellipseWidth,
                                            int ellipseHeight) = 0;
    /// Gives the window the shape of a region, which then belongs to the window; 0 when it fails.
    virtual int SetWindowRgn(WindowHandle window, RegionHandle region, bool redraw) = 0;
    /// With GWL_EXSTYLE: the window's extended style bits. SetWindowLongA sets them and returns the old ones.
    virtual std::int32_t GetWindowLongA(WindowHandle window, int index) = 0;
    virtual std::int32_t SetWindowLongA(WindowHandle window, int index, std::int32_t value) = 0;
    /// With LWA_ALPHA: sets the opacity of a layered window, 0 to 255. False for a window without WS_EX_LAYERED.
    virtual bool SetLayeredWindowAttributes(WindowHandle window, std::uint32_t colourKey, std::uint8_t alpha,
                                            std::uint32_t flags) = 0;
    /// Draws the outline of a rounded rectangle, one pixel wide and not filled, from (left, top) up to but not
    /// including (right, bottom), in the window's ForeColor.
    virtual bool RoundRect(DeviceContext context, int left, int top, int right, int bottom, int ellipseWidth,
                           int ellipseHeight) = 0;
    /// Fills triangles with colours interpolated between the vertices (GRADIENT_FILL_TRIANGLE).
    virtual bool GradientFill(DeviceContext context, std::span<const TriVertex> vertices,
                              std::span<const GradientTriangle> mesh, std::uint32_t mode) = 0;
    /// Fills rectangles, without their right and bottom edges, with a gradient from top to bottom
    /// (GRADIENT_FILL_RECT_V).
    virtual bool GradientFill(DeviceContext context, std::span<const TriVertex> vertices,
                              std::span<const GradientRect> mesh, std::uint32_t mode) = 0;

    // A form's own drawing. Colours are 0x00BBGGRR or system-colour values.

    /// Fills the window with a colour and discards what was drawn before.
    virtual void SetBackColor(WindowHandle window, std::uint32_t colour) = 0;
    /// Sets the colour of outlines drawn from now on.
    virtual void SetForeColor(WindowHandle window, std::uint32_t colour) = 0;
    /// Keeps what is drawn from now on, so that it reappears after the window was covered.
    virtual void SetAutoRedraw(WindowHandle window, bool on) = 0;
    /// Draws a line one pixel wide from the first point up to but not including the second.
    virtual void Line(WindowHandle window, int x1, int y1, int x2, int y2, std::uint32_t colour) = 0;
    /// The height in pixels of a text broken into lines of `width` pixels.
    virtual int TextHeight(WindowHandle window, const FontSpec& font, const std::string& text, int width) = 0;

    /// The height of a pixel in twips, and the lower edge of the primary screen in twips.
    virtual double TwipsPerPixelY() = 0;
    virtual std::int32_t ScreenHeight() = 0;
};

} // namespace voxmate
